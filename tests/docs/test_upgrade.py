"""The upgrade of the archive with the commands of docs/deployment.md, in a folder in place of /."""

import re
import subprocess
import tarfile

import pytest
from documents import blocks, commands, read

PAGES = "opt/webctrl/bin/web_root"
OLD = {"app.html": "old", "assets/app.0123456789.js": "old", "assets/app.0123456789.js.gz": "old"}
NEW = {"app.html": "new", "assets/app.abcdef0123.js": "new"}


def put(folder, files):
    for name, text in files.items():
        path = folder / PAGES / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)


def upgrade_commands(top):
    """Each command as written, but below `top`."""
    (block,) = [block for block in blocks("docs/deployment.md") if block.kind == "console upgrade"]
    script = "\n".join(command for command, _ in commands(block.text))
    script = re.sub(r"(?<![\w$])/(opt/|etc/|$)", rf"{top}/\1", script, flags=re.M)
    paths = re.findall(r"(?:^|[\s=])(/\S*)", script)
    assert paths and all(path.startswith(str(top)) for path in paths), paths
    return script


@pytest.mark.parametrize("own", [{}, {"labels.json": "{}"}])
def test_upgrade_leaves_the_new_pages_and_the_labels_alone(tmp_path, own):
    top, new = tmp_path / "top", tmp_path / "new"
    put(top, {**OLD, **own})
    put(new, NEW)
    name = f"webctrl-{read('VERSION').strip()}-linux-armhf.tar.gz"
    with tarfile.open(tmp_path / name, "w:gz") as archive:
        archive.add(new / "opt", "opt")
    script = top / "etc/init.d/S90webctrl"
    script.parent.mkdir(parents=True)
    script.write_text(f"#!/bin/sh\necho $1 $(ls {top}/{PAGES} | wc -l)\n")
    script.chmod(0o755)
    done = subprocess.run(["sh", "-e", "-c", upgrade_commands(top)], cwd=tmp_path, text=True,
                          stdout=subprocess.PIPE, check=True)  # fmt: skip
    count = 2 + len(own)
    assert done.stdout == f"stop {count}\nstart {count}\n"
    pages = [path for path in (top / PAGES).rglob("*") if path.is_file()]
    found = {str(path.relative_to(top / PAGES)): path.read_text() for path in pages}
    assert found == {**NEW, **own}
    assert [path.name for path in (top / PAGES).parent.iterdir()] == ["web_root"]
