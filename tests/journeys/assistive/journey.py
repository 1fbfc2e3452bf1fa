#!/usr/bin/python3
"""Scan, review and clean as someone does who cannot see the window: journey.py SAMPLE-HOME PROGRAM TRIAL-HOME.

Every row and size is compared with a count of its own, one item is spared, and then the folders are looked at.
"""

import os
import signal
import stat
import subprocess
import sys
import tempfile

from client import Window, act, wait_for

SPARED = "com.vendor.photos"


def logical_size(path):
    """Lengths of all that is no folder, links as themselves."""
    status = os.lstat(path)
    if not stat.S_ISDIR(status.st_mode):
        return status.st_size
    return sum(logical_size(entry.path) for entry in os.scandir(path))


def size_text(size):
    value, units = float(size), ["B", "KB", "MB", "GB", "TB", "PB"]
    while value >= 1000 and len(units) > 1:
        value, units = value / 1000, units[1:]
    text = f"{value:.{2 if value < 100 else 1}f}".rstrip("0").rstrip(".")
    return f"{text} {units[0]}"


def expected_rows(home):
    paths = {}
    caches = os.path.join(home, "Library/Caches")
    for name in os.listdir(caches):
        if not name.startswith("."):
            paths[name] = os.path.join(caches, name)
    containers = os.path.join(home, "Library/Containers")
    for name in os.listdir(containers):
        path = os.path.join(containers, name, "Data/Library/Caches")
        if os.path.lexists(path):
            paths[name] = path
    return {name: path for name, path in paths.items() if logical_size(path) > 0}


def snapshot(home):
    """Every path outside the caches, with its kind, length and link target."""
    found = {}
    for folder, folders, files in os.walk(home):
        if folder == home:
            folders[:] = [name for name in folders if name not in (".config", ".cache")]
        if folder.endswith("Library/Caches"):
            folders[:] = []
            continue
        for name in folders + files:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            target = os.readlink(path) if stat.S_ISLNK(status.st_mode) else ""
            length = 0 if stat.S_ISDIR(status.st_mode) else status.st_size
            if not path.endswith("Library/Caches"):
                found[path] = (stat.S_IFMT(status.st_mode), length, target)
    return found


def journey(home):
    expected = expected_rows(home)
    before = snapshot(home)
    window = Window()
    assert window.section("Caches").get_description() == "Not scanned"
    window.press("Start Scan")
    wait_for("the end of the scan", lambda: window.section("Caches").get_description().endswith("Selected"))
    wait_for("the scan button", lambda: window.is_enabled("Scan") and window.is_enabled("Clean"))

    rows = window.rows("Caches")
    assert rows.keys() == expected.keys(), rows.keys() ^ expected.keys()
    for name, (text, checked, _) in rows.items():
        assert checked, name
        assert text == size_text(logical_size(expected[name])), (name, text)

    act(rows[SPARED][2], "Toggle")
    wait_for("the row to be unticked", lambda: not window.rows("Caches")[SPARED][1])
    window.press("Clean")
    window.answer("OK")
    wait_for("the end of the clean", lambda: list(window.rows("Caches")) == [SPARED])

    left = {name for name, path in expected.items() if os.path.lexists(path)}
    assert left == {SPARED}, left
    assert snapshot(home) == before, "something outside the caches was touched"


def main():
    sample_home, program, trial_home = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        home = os.path.join(folder, "home")
        subprocess.run([sample_home, home], check=True, stdout=subprocess.DEVNULL)
        # A group of its own, so that the wrapper and the program in it end together.
        process = subprocess.Popen([trial_home, home, program], start_new_session=True)
        try:
            journey(home)
            assert process.poll() is None, "the program ended"
        finally:
            os.killpg(process.pid, signal.SIGTERM)
            process.wait()


main()
print("The assistive client saw every row as it is, and the folders are as they should be.")
