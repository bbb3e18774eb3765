#!/usr/bin/python3
"""The browser of an old in-cab terminal: Debian's QtWebEngine, without a screen, remote-controlled.

Reads one JSON command per line from standard input and answers each with one line:
  {"goto": URL}                      {"value": true} when the page has loaded, otherwise false
  {"run": SCRIPT}                    {"value": the result of the script}
  {"click": [X, Y]}                  {"value": null} after a press of the left button there
  {"type": TEXT}                     {"value": null} after these keys
  {"grab": FILE}                     {"value": true} when the window's picture is in the file
  {"colours": [[X, Y], ...]}         {"value": ["#rrggbb", ...]} at these places, as painted
Script errors are in "errors" of the next answer. Exits at the end of its input.
"""
import json
import sys

from PyQt5.QtCore import QPoint, QSocketNotifier, Qt, QUrl
from PyQt5.QtTest import QTest
from PyQt5.QtWebEngineWidgets import QWebEnginePage, QWebEngineProfile, QWebEngineView
from PyQt5.QtWidgets import QApplication


class Page(QWebEnginePage):
    def __init__(self, *args):
        super().__init__(*args)
        self.errors = []

    def javaScriptConsoleMessage(self, level, message, line, source):  # Qt's name
        if level == QWebEnginePage.ErrorMessageLevel:
            self.errors.append(f"{source}:{line}: {message}")


class Terminal:
    def __init__(self, language):
        self._profile = QWebEngineProfile()  # without a name it keeps nothing on the disk
        self._profile.setHttpAcceptLanguage(language)
        self._page = Page(self._profile)
        self._view = QWebEngineView()
        self._view.setPage(self._page)
        self._view.resize(800, 480)
        self._view.show()
        self._page.loadFinished.connect(self._loaded)
        self._loading = False

    def _answer(self, value):
        print(json.dumps({"value": value, "errors": self._page.errors}), flush=True)
        self._page.errors = []

    def _loaded(self, good):
        if self._loading:
            self._loading = False
            self._answer(good)

    def _goto(self, url):
        self._loading = True
        self._page.setUrl(QUrl(url))

    def _run(self, script):
        self._page.runJavaScript(script, self._answer)

    def _click(self, place):
        QTest.mouseClick(self._view.focusProxy(), Qt.LeftButton, Qt.NoModifier, QPoint(*place))
        self._answer(None)

    def _type(self, text):
        QTest.keyClicks(self._view.focusProxy(), text)
        self._answer(None)

    def _grab(self, path):
        self._answer(self._view.grab().save(path))

    def _colours(self, places):
        image = self._view.grab().toImage()
        self._answer([image.pixelColor(x, y).name() for x, y in places])

    def obey(self, command):
        (name, argument), = command.items()
        {"goto": self._goto, "run": self._run, "click": self._click, "type": self._type,
         "grab": self._grab, "colours": self._colours}[name](argument)


def main():
    app = QApplication(sys.argv)
    terminal = Terminal(sys.argv[1])

    def read():
        line = sys.stdin.readline()
        if line:
            terminal.obey(json.loads(line))
        else:
            app.quit()

    notifier = QSocketNotifier(sys.stdin.fileno(), QSocketNotifier.Read)
    notifier.activated.connect(read)
    app.exec_()


if __name__ == "__main__":
    main()
