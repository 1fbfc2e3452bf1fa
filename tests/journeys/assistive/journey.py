#!/usr/bin/python3
"""Scan, review and clean as someone does who cannot see the window: journey.py SAMPLE-HOME PROGRAM TRIAL-HOME.

Every row and size is compared with a count of its own, one item is spared, and then the folders are looked at.
"""

import os
import stat
import sys
import tempfile

from client import Window, act, children, exchange, find, wait_for
from trial import make_home, running, size_text

# What the user leaves or makes unticked, by section; the other sections' items come ticked.
SPARED = {
    "Caches": {"com.vendor.photos"},
    "Logs": {"system.log"},
    "Downloads": {"installer.iso", "invoice.txt"},
    "Trash": {"holiday.jpg"},
}
DESKTOP_TRASH = ".local/share/Trash"


def logical_size(path):
    """Lengths of all that is no folder, links as themselves."""
    status = os.lstat(path)
    if not stat.S_ISDIR(status.st_mode):
        return status.st_size
    return sum(logical_size(entry.path) for entry in os.scandir(path))


def visible(folder):
    return [name for name in os.listdir(folder) if not name.startswith(".")] if os.path.isdir(folder) else []


def containers(home, inside):
    folder = os.path.join(home, "Library/Containers")
    return [(name, os.path.join(folder, name, inside)) for name in visible(folder)]


def entries(folder):
    return [(name, os.path.join(folder, name)) for name in visible(folder)]


def expected_rows(home):
    """Section to name to path, of everything that holds something; written from the rules, not from the program."""
    logs = [
        (name, path)
        for name, path in entries(os.path.join(home, "Library/Logs"))
        if name not in ("CrashReporter", "Ubiquity") and not name.startswith("talagent.log")
    ]
    logs += entries(os.path.join(home, "Library/Application Support/CrashReporter"))
    for _, folder in containers(home, "Data/Library/Logs"):
        logs += entries(folder)
    logs += containers(home, "Data/Library/Logs")
    sections = {
        "Caches": entries(os.path.join(home, "Library/Caches")) + containers(home, "Data/Library/Caches"),
        "Logs": logs,
        "Downloads": entries(os.path.join(home, "Downloads")),
        "Trash": entries(os.path.join(home, ".Trash")) + entries(os.path.join(home, DESKTOP_TRASH, "files")),
    }
    rows = {}
    for section, listed in sections.items():
        rows[section] = {name: path for name, path in listed if os.path.lexists(path) and logical_size(path) > 0}
    return rows


def snapshot(home):
    """Every path of the home with its kind, length and link target; settings and the like excepted."""
    found = {}
    for folder, folders, files in os.walk(home):
        if folder == home:
            folders[:] = [name for name in folders if name not in (".config", ".cache")]
        for name in folders + files:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            target = os.readlink(path) if stat.S_ISLNK(status.st_mode) else ""
            length = 0 if stat.S_ISDIR(status.st_mode) else status.st_size
            found[path] = (stat.S_IFMT(status.st_mode), length, target)
    return found


def without(before, home, gone):
    """What is to be left of a snapshot: the items that go, with all in them, and the records of trashed ones."""
    trash = os.path.join(home, DESKTOP_TRASH)
    records = [
        os.path.join(trash, "info", os.path.basename(path) + ".trashinfo")
        for path in gone
        if os.path.dirname(path) == os.path.join(trash, "files")
    ]
    lost = [*gone, *records]
    return {
        path: what
        for path, what in before.items()
        if not any(path == top or path.startswith(top + "/") for top in lost)
    }


def review(window, section, expected):
    """Compares every row of a section with the count, and unticks or ticks what is to stay or to go."""
    window.show_section(section)
    rows = wait_for(f"the rows of {section}", lambda: window.rows(section))
    assert rows.keys() == expected.keys(), rows.keys() ^ expected.keys()
    for name, (text, checked, check) in rows.items():
        assert checked == (section != "Downloads"), (section, name)
        assert text == size_text(logical_size(expected[name])), (name, text)
        if checked == (name in SPARED[section]):
            act(check, "Toggle")
    wait_for(
        f"the check boxes of {section}",
        lambda: all(on == (name not in SPARED[section]) for name, (_, on, _) in window.rows(section).items()),
    )


def journey(home):
    expected = expected_rows(home)
    before = snapshot(home)
    window = Window()
    assert window.section("Caches").get_description() == "Not scanned"
    act(window.section("Downloads"), "Toggle")
    act(window.section("Language Resources"), "Toggle")  # they have a journey of their own
    window.press("Start Scan")
    wait_for("the end of the scan", lambda: window.is_enabled("Scan") and window.is_enabled("Clean"))
    for section, rows in expected.items():
        review(window, section, rows)

    window.press("Clean")
    window.answer("Delete")
    wait_for("the end of the clean", lambda: window.rows("Trash").keys() == SPARED["Trash"])
    wait_for("the scan button", lambda: window.is_enabled("Scan"))
    gone = [path for section, rows in expected.items() for name, path in rows.items() if name not in SPARED[section]]
    after, right = snapshot(home), without(before, home, gone)
    assert after == right, set(after.items()) ^ set(right.items())


def report(home):
    """An item whose folder is another one by then stays, and is told of when the clean has ended."""
    container = "com.vendor.reader"
    kept = os.path.join(home, "Library/Containers", container, "Data/Library/Logs/kept.log")
    os.makedirs(os.path.dirname(kept), exist_ok=True)
    with open(kept, "w", encoding="ascii") as file:
        file.write("to be kept")
    window = Window()
    window.press("Scan")
    wait_for("the second scan", lambda: window.is_enabled("Clean") and window.is_enabled("Scan"))
    window.show_section("Logs")
    act(wait_for("the container", lambda: window.rows("Logs")[container])[2], "Toggle")
    wait_for("the log with it", lambda: not window.rows("Logs")["kept.log"][1])
    act(window.rows("Logs")["kept.log"][2], "Toggle")
    wait_for("the log alone", lambda: window.rows("Logs")["kept.log"][1] and not window.rows("Logs")[container][1])
    exchange(os.path.dirname(kept))
    window.press("Clean")
    window.answer("Delete")
    sheet = wait_for("the report", lambda: find(window.frame, "dialog", "Some items were not removed"))
    lines = [line.get_name() for line in children(find(sheet, "list", "Items that were not removed"))]
    assert lines == ["Logs", "kept.log - Its folder is not the one that was scanned any more"], lines
    act(find(sheet, "push button", "Close"), "Press")
    wait_for("the end of the report", lambda: find(window.frame, "dialog") is None)
    assert os.path.exists(kept)


def main():
    sample_home, program, trial_home = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        home = os.path.join(folder, "home")
        make_home(sample_home, home)
        with running([trial_home, home, program]):
            journey(home)
            report(home)


main()
print("The assistive client saw every row as it is, and the folders are as they should be.")
