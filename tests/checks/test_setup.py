"""What a newcomer sees of scripts/run.sh: help, Ctrl-C, and messages that name the true cause."""

import http.server
import os
import shutil
import signal
import ssl
import subprocess
import threading
import time

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SCRIPTS = os.path.join(ROOT, "scripts")

# A stand-in for apt-get: reports which step has begun, and exits when the file "go" exists.
APT_GET = """#!/bin/sh
step=install
case "$*" in *update) exit 0 ;; *--download-only*) step=download ;; esac
[ $step = "$SLOW" ] || exit 0
echo begun >"$HERE/begun"
until [ -e "$HERE/go" ]; do sleep 0.05; done
echo ended >"$HERE/ended"
"""
STUBS = {"apt-get": APT_GET, "dpkg-query": "#!/bin/sh\n", "id": "#!/bin/sh\necho 0\n"}


@pytest.mark.parametrize("script", ["run.sh", "test.sh"])
def test_help_through_a_link_from_anywhere(tmp_path, script):
    os.symlink(os.path.join(SCRIPTS, script), tmp_path / "link")
    done = subprocess.run(["./link", "--help"], cwd=tmp_path, capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.startswith(script)
    assert "common.sh" not in done.stdout


def wait_for(path):
    deadline = time.monotonic() + 20
    while not path.exists():
        assert time.monotonic() < deadline, f"{path} does not come"
        time.sleep(0.02)


@pytest.fixture
def newcomer(tmp_path):
    """Starts run.sh in a copy of the scripts, where every package is missing."""
    shutil.copytree(SCRIPTS, tmp_path / "tree/scripts")
    (tmp_path / "bin").mkdir()
    for name, text in STUBS.items():
        (tmp_path / "bin" / name).write_text(text)
        (tmp_path / "bin" / name).chmod(0o755)
    started = []

    def start(slow):
        environment = {**os.environ, "PATH": f"{tmp_path}/bin:{os.environ['PATH']}", "SLOW": slow,
                       "HERE": str(tmp_path)}  # fmt: skip
        started.append(subprocess.Popen(
            [tmp_path / "tree/scripts/run.sh"], env=environment, start_new_session=True, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT))  # fmt: skip
        wait_for(tmp_path / "begun")
        return started[0]

    yield start
    (tmp_path / "go").touch()
    for process in started:
        process.communicate(timeout=20)


def test_interrupt_ends_a_download_at_once(newcomer, tmp_path):
    process = newcomer("download")
    os.killpg(process.pid, signal.SIGINT)
    text = process.communicate(timeout=20)[0]
    assert process.returncode == 130
    assert "building" not in text
    assert not (tmp_path / "ended").exists()


def test_interrupt_lets_an_installation_end_and_nothing_follow(newcomer, tmp_path):
    process = newcomer("install")
    os.killpg(process.pid, signal.SIGINT)
    assert "installing" in process.stdout.readline()
    assert "stopping as soon as" in process.stdout.readline()
    assert process.poll() is None
    (tmp_path / "go").touch()
    text = process.communicate(timeout=20)[0]
    assert process.returncode == 130
    assert text == ""
    assert (tmp_path / "ended").exists()


def cause_in(text, tmp_path):
    (tmp_path / "log").write_text(text)
    tell = '. "$0/watched.sh"; cause_in "$1"'
    done = subprocess.run(["bash", "-euc", tell, SCRIPTS, tmp_path / "log"], check=True,
                          capture_output=True, text=True)  # fmt: skip
    return done.stdout


def apt_get(folder, source, *words):
    """The output of the real apt-get with its own state in `folder`."""
    for name in ("lists/partial", "cache/archives/partial", "dpkg/updates", "parts"):
        (folder / name).mkdir(parents=True, exist_ok=True)
    (folder / "sources").write_text(source)
    (folder / "dpkg/status").touch()
    options = {"Dir::Etc::sourcelist": "sources", "Dir::Etc::sourceparts": "parts",
               "Dir::State": "", "Dir::State::Lists": "lists", "Dir::State::status": "dpkg/status",
               "Dir::Cache": "cache"}  # fmt: skip
    command = ["apt-get", "-q", "-o", "APT::Sandbox::User=root", "-o", "Acquire::Retries=0"]
    for name, path in options.items():
        command += ["-o", f"{name}={folder / path}"]
    environment = {"PATH": os.environ["PATH"], "LC_ALL": "C"}  # and no proxy
    done = subprocess.run([*command, *words], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, env=environment, cwd=folder)  # fmt: skip
    return done.stdout


def test_cause_is_a_machine_that_cannot_be_found(tmp_path):
    text = apt_get(tmp_path, "deb http://nowhere.invalid/debian bookworm main\n", "update")
    text += apt_get(tmp_path, "", "install", "no-such-package")
    assert "Unable to locate" in text
    assert cause_in(text, tmp_path).startswith("there is no network")


def test_cause_is_a_port_where_nobody_listens(tmp_path):
    text = apt_get(tmp_path, "deb http://127.0.0.1:1/debian bookworm main\n", "update")
    assert cause_in(text, tmp_path).startswith("there is no network")


@pytest.mark.parametrize("words", [("install", "no-such-package"), ("source", "no-such-package")])
def test_cause_is_a_missing_source(tmp_path, words):
    text = apt_get(tmp_path, "", *words)
    assert cause_in(text, tmp_path).startswith("the package sources of this machine do not have it")


def test_cause_is_an_interrupted_installation(tmp_path):
    (tmp_path / "dpkg/updates").mkdir(parents=True)
    (tmp_path / "dpkg/updates/0001").touch()
    text = apt_get(tmp_path, "", "install")
    assert cause_in(text, tmp_path).startswith("an earlier installation was interrupted")


def test_cause_is_a_certificate(tmp_path):
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "key",
                    "-out", "certificate", "-subj", "/CN=localhost"],
                   cwd=tmp_path, check=True, capture_output=True)  # fmt: skip
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(tmp_path / "certificate", tmp_path / "key")
    server = http.server.HTTPServer(("127.0.0.1", 0), http.server.SimpleHTTPRequestHandler)
    server.socket = context.wrap_socket(server.socket, server_side=True)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    source = f"deb https://localhost:{server.server_port}/debian bookworm main\n"
    text = apt_get(tmp_path, source, "update")
    server.shutdown()
    server.server_close()
    assert cause_in(text, tmp_path).startswith("a server's certificate is not accepted"), text


# Causes that cannot be produced here, in the words of apt-get and npm.
TOLD = [
    ("E: Could not get lock /var/lib/dpkg/lock-frontend. It is held by process 7 (apt-get)",
     "another package manager"),
    ("E: You don't have enough free space in /var/cache/apt/archives/.", "the disk is full"),
    ("E: Release file for http://deb.debian.org/debian/dists/bookworm/InRelease is not valid yet "
     "(invalid for another 2h 3min 4s).", "a date is wrong"),
    ("npm ERR! code SELF_SIGNED_CERT_IN_CHAIN", "a server's certificate"),
    ("npm ERR! code ENOTFOUND", "there is no network"),
    ("npm ERR! code EINTEGRITY", "a downloaded module"),
    ("Setting up ca-certificates (20230311) ...\nE: Sub-process /usr/bin/dpkg returned an error code (1)",
     "E: Sub-process /usr/bin/dpkg returned"),
]  # fmt: skip


@pytest.mark.parametrize("text, cause", TOLD, ids=[row[1] for row in TOLD])
def test_cause_is_told_of_what_the_programs_say(tmp_path, text, cause):
    assert cause_in(text + "\n", tmp_path).startswith(cause)
