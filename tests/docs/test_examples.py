"""The examples of the documents do what they show.

Each fenced block marked "console run" is run against the daemon and the simulated recorder, one
pair per document, and its output compared. A block marked "xml sent" shows the datagrams that the
console block above it caused. A block marked "file NAME" after its language is a file in the folder
of the console blocks. The commands of a block marked "console start" are started instead of that
pair, and keep running.
"""

import pytest
from documents import as_pattern, blocks, commands, documents
from recorder import Recorder

CONSOLE, SENT, START = "console run", "xml sent", "console start"


def _examples():
    """Console blocks with the datagrams below each (None: not given)."""
    found = []
    for document in documents():
        for block in blocks(document):
            if block.kind == CONSOLE:
                found.append([block, None])
            if block.kind == SENT:
                assert found and found[-1][0].document == document, block
                found[-1][1] = block.text.split("\n")
    return found


def _files(document):
    """Name and content of each file in a document."""
    for block in blocks(document):
        words = block.kind.split(" ")
        if words[1:2] == ["file"]:
            yield words[2], block.text + "\n"


def _started(document):
    started = [block for block in blocks(document) if block.kind == START]
    return [command for block in started for command, _ in commands(block.text)]


EXAMPLES = _examples()


@pytest.fixture(scope="module")
def recorder_of(tmp_path_factory):
    """The recorder of a document; the one of another document is closed first."""
    current = {}

    def recorder_of(document):
        if document not in current:
            close()
            folder = tmp_path_factory.mktemp("examples")
            current[document] = Recorder(folder, started=_started(document))
            for name, text in _files(document):
                (folder / name).write_text(text, encoding="utf-8")
        return current[document]

    def close():
        for recorder in current.values():
            recorder.close()
        current.clear()

    yield recorder_of
    close()


@pytest.mark.parametrize(
    "block, sent", EXAMPLES, ids=[f"{block.document}:{block.line}" for block, _ in EXAMPLES]
)
def test_example_does_what_it_shows(recorder_of, block, sent):
    recorder = recorder_of(block.document)
    before = len(recorder.received())
    for command, expected in commands(block.text):
        output = recorder.run(command)
        if not as_pattern(expected).fullmatch(output):
            assert output == expected, command
    if sent is not None:
        assert recorder.received()[before:] == sent


@pytest.mark.offline
def test_there_are_examples():
    assert {"docs/api.md", "docs/architecture.md"} <= {block.document for block, _ in EXAMPLES}
