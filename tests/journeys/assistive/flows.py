#!/usr/bin/python3
"""Whatever the window can be asked for, and its edges, by someone who cannot see it: flows.py SAMPLE-HOME PROGRAM
TRIAL-HOME.

Two runs over one made-up home: all from the start page to a clean with a report, and then, for someone who reads
German, what the second run still knows. After each clean the whole home is compared with what it was before.
"""

import glob
import json
import os
import pathlib
import re
import stat
import sys
import tempfile

from client import (Atspi, Ear, Window, act, actions, children, find, has_state, is_showing, make_home, running,
                    wait_for)

SECTIONS = ("Caches", "Language Resources", "Logs", "Downloads", "Trash")
SURE = "Are you sure you want to  completely delete the selected items?"
NAME, DESCRIPTION, VALUE = (f"object:property-change:accessible-{what}" for what in ("name", "description", "value"))
GERMAN_USER = {"LANG": "de_DE.UTF-8", "LC_ALL": "de_DE.UTF-8", "LANGUAGE": "de:en"}


class Desk(Window):
    """The window as its user knows it."""

    def ticked(self, titles=SECTIONS):
        return [title for title in titles if has_state(self.section(title), Atspi.StateType.CHECKED)]

    def tick_only(self, *titles):
        for title in SECTIONS:
            if (title in self.ticked()) != (title in titles):
                act(self.section(title), "Toggle")
        wait_for("the ticks", lambda: self.ticked() == [title for title in SECTIONS if title in titles])

    def subtitle(self, title):
        return self.section(title).get_description()

    def select_all(self):
        return find(self.frame, "check box", "Select All")

    def status(self):
        """The large text and the small one of the panel below the lists, or the small one alone."""
        bar = self.select_all().get_parent()
        return next(part for part in children(bar) if part.get_name() not in ("Select All", "Clean", "Stop Cleaning"))


def snapshot(home):
    """Every path of the home with its kind, length and link target; settings, the history and the like excepted."""
    found = {}
    state = f"{home}/.local/state"
    for folder, folders, files in os.walk(home):
        if folder == home:
            folders[:] = [name for name in folders if name not in (".config", ".cache")]
        if folder == state:
            folders[:] = [name for name in folders if name != "brimvault"]
        for path in (os.path.join(folder, name) for name in folders + files):
            status = os.lstat(path)
            target = os.readlink(path) if stat.S_ISLNK(status.st_mode) else ""
            length = 0 if stat.S_ISDIR(status.st_mode) else status.st_size
            found[path] = (stat.S_IFMT(status.st_mode), length, target)
    found.pop(state, None)
    return found


def expect_gone(home, before, gone):
    """Nothing else is gone from the home, and nothing has changed."""
    right = {path: what for path, what in before.items() if not any((path + "/").startswith(top + "/") for top in gone)}
    after = snapshot(home)
    assert after == right, set(after.items()) ^ set(right.items())


def history_of(home, beside):
    """The paths in the history by result, without those inside of one that has gone as a whole."""
    file = pathlib.Path(home, ".local/state/brimvault/history.jsonl")
    results = {}
    for line in map(json.loads, file.read_text("utf-8").splitlines() if file.exists() else ()):
        if not line["path"].startswith(beside + "/"):
            results.setdefault(line["result"], set()).add(line["path"])
    return results


def make_opener(folder, asked):
    """In the place of xdg-open stands a script that notes what it is to open."""
    opener = pathlib.Path(folder, "xdg-open")
    opener.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >>'{asked}'\n")
    opener.chmod(0o755)
    return {"PATH": folder + os.pathsep + os.environ["PATH"]}


def start_page(desk):
    assert is_showing(find(desk.frame, "label", "Select sections and press Scan button"))
    assert [desk.subtitle(title) for title in SECTIONS] == ["Not scanned"] * len(SECTIONS)
    assert not is_showing(desk.button("Clean"))


def scan_under_way(desk):
    """A volume does not answer, so that the scan of the Trash goes on and on."""
    wait_for("the stop button", lambda: desk.is_enabled("Stop Scanning"))
    bar = find(desk.frame, "progress bar", "Scan progress")
    wait_for("four sections of five", lambda: bar.get_value_iface().get_current_value() == 80)
    assert is_showing(bar) and has_state(bar, Atspi.StateType.BUSY)
    desk.press("Stop Scanning")
    wait_for("the scan button", desk.is_idle)
    assert not is_showing(bar)
    wait_for("a list that can be cleaned", lambda: desk.is_enabled("Clean"))


def shown_outside(desk, home, asked):
    desk.show_section("Downloads")
    desk.press("Show in File Manager")
    uri = pathlib.Path(home, "Downloads").as_uri()
    wait_for("the program for folders", lambda: asked.exists() and asked.read_text().split() == ["1", uri])


def scan_again(desk, ear):
    ear.heard.clear()
    desk.press("Scan")
    wait_for("the end of the scan", desk.is_idle)
    wait_for("the last per cent", lambda: "Scan progress" in ear.names(VALUE, "progress bar"))
    wait_for("the last subtitle", lambda: "Trash" in ear.names(DESCRIPTION, "list item"))
    assert ear.names(NAME, "push button"), "the status and the button tell of the end"
    assert desk.subtitle("Trash").endswith(" Selected"), desk.subtitle("Trash")
    print(f"{ear.most_in_a_second()} events in a second at most")
    assert ear.most_in_a_second() < 100, ear.most_in_a_second()


def states_of_select_all(desk, ear):
    def is_mark(state):
        return has_state(desk.select_all(), state)

    desk.show_section("Caches")
    rows = wait_for("the caches", lambda: desk.rows("Caches"))
    assert rows["com.vendor.mail"][:2] == ("61.23 MB", True), rows
    act(rows["com.vendor.mail"][2], "Toggle")
    wait_for("the news of a tick", lambda: ear.has_told("object:state-changed:checked", "com.vendor.mail"))
    wait_for("the mark of some", lambda: is_mark(Atspi.StateType.INDETERMINATE))
    act(desk.select_all(), "Toggle")
    wait_for("all again", lambda: is_mark(Atspi.StateType.CHECKED) and desk.rows("Caches")["com.vendor.mail"][1])


def sorting(desk, ear):
    act(desk.table("Caches").get_column_header(3), "Press")
    wait_for("the news of the order", lambda: ear.has_told(DESCRIPTION, "Size"))


def question_before_a_clean(desk):
    desk.press("Clean")
    text = desk.question_text()
    assert text[:2] == [SURE, "Files will be  permanently removed from your Hard Drive."], text
    assert re.fullmatch(r"[\d,]+ items, [\d.]+ [KMG]?B", text[2]) and text[3].startswith("Caches "), text
    act(find(desk.question(), "check box", "Do not show this message again"), "Toggle")
    desk.answer("Cancel")
    wait_for("the end of the question", lambda: desk.question() is None)


def clean_with_a_report(desk, home, ear):
    """No question comes any more."""
    desk.tick_only("Logs")
    crashes = f"{home}/Library/Application Support/CrashReporter"
    os.rename(crashes, crashes + ".scanned")
    os.mkdir(crashes)
    open(f"{crashes}/editor_2024.crash", "xb").close()
    ear.heard.clear()
    before = snapshot(home)
    desk.press("Clean")
    sheet = wait_for("the report", lambda: find(desk.frame, "dialog", "Some items were not removed"))
    assert desk.question() == sheet, "a question that was to come no more"
    lines = [line.get_name() for line in children(find(sheet, "list", "Items that were not removed"))]
    assert lines == ["Logs", "editor_2024.crash - Its folder is not the one that was scanned any more"], lines
    logs = ("com.vendor.browser", "system.log", "backup 2.log", "backup 10.log")
    reader = f"{home}/Library/Containers/com.vendor.reader/Data/Library/Logs"
    gone = [*(f"{home}/Library/Logs/{name}" for name in logs), reader]
    expect_gone(home, before, gone)
    expected = {"removed": set(gone), "failed": {f"{crashes}/editor_2024.crash"}}
    wait_for("the history", lambda: history_of(home, beside=reader) == expected)
    wait_for("the progress", lambda: "Clean progress" in ear.names(VALUE, "progress bar"))
    assert not desk.is_enabled("Scan") and actions(desk.button("Scan")) == actions(desk.section("Caches")) == []
    act(find(sheet, "push button", "Close"), "Press")
    wait_for("the controls again", desk.is_idle)
    summary = desk.status().get_name()
    assert " cleaned, " in summary and summary.endswith(" cleaned in total"), summary
    act(desk.status(), "Press")
    wait_for("the sizes", lambda: "Selected of" in desk.status().get_name())


def second_run(desk, home):
    """The ticks are those of the last click, and no question is asked. What stays: the languages of the user and one
    more, an application that is spared, and what came after the scan."""
    section = "Sprachressourcen"
    titles = ("Caches", section, "Protokolle", "Downloads", "Papierkorb")
    assert desk.ticked(titles) == ["Protokolle"], desk.ticked(titles)
    for title in (section, "Protokolle"):
        act(desk.section(title), "Toggle")
    desk.press("Scan starten")
    desk.show_section(section)
    wait_for("the end of the scan", lambda: desk.is_enabled("Scannen") and desk.is_enabled("Bereinigen"))
    desk.press("Sprachen")
    table = wait_for("the drawer", lambda: find(desk.frame, "table", "Sprachen")).get_table_iface()
    cells = [[table.get_accessible_at(row, column) for column in (2, 0)] for row in range(table.get_n_rows())]
    checks = {name.get_name(): check for name, check in cells}
    kept = [name for name, check in checks.items() if has_state(check, Atspi.StateType.CHECKED)]
    assert kept == ["Englisch", "Deutsch"], kept
    assert "Toggle" not in actions(checks["Englisch"]), "English can be given up"
    act(checks["Französisch"], "Toggle")
    wait_for("the check box", lambda: has_state(checks["Französisch"], Atspi.StateType.CHECKED))
    act(desk.rows(section)["Music"][2], "Toggle")
    wait_for("the spared application", lambda: not desk.rows(section)["Music"][1])
    os.mkdir(f"{home}/Applications/Office Writer.app/Contents/Resources/late.lproj")
    before = snapshot(home)
    desk.press("Bereinigen")
    wait_for("the last application", lambda: list(desk.rows(section)) == ["Music"])
    wait_for("the end of the clean", lambda: desk.is_enabled("Scannen"))
    assert desk.question() is None
    stay = ("Base.lproj", "en.lproj", "German.lproj", "French.lproj", "late.lproj")
    localizations = (path for path in before if path.endswith(".lproj") and "Music.app" not in path)
    expect_gone(home, before, [path for path in localizations if os.path.basename(path) not in stay])


def main():
    sample_home, program, trial_home = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        home, scratch = os.path.join(folder, "höme 100% #1"), os.path.join(folder, "scratch")
        make_home(sample_home, home)
        os.mkdir(scratch)
        asked = pathlib.Path(folder, "asked")
        opener = make_opener(folder, asked)
        ear = Ear()
        with running([trial_home, home, program], {"TMPDIR": scratch, **opener}):
            desk = Desk()
            start_page(desk)
            # The table of mounts of this trial never ends, as one with a volume that does not answer.
            [root] = glob.glob(os.path.join(scratch, "*/root"))
            mounts = os.path.join(root, "proc/self/mountinfo")
            os.makedirs(os.path.dirname(mounts))
            os.mkfifo(mounts)
            desk.tick_only(*SECTIONS)
            desk.press("Start Scan")
            scan_under_way(desk)
            os.remove(mounts)
            scan_again(desk, ear)
            states_of_select_all(desk, ear)
            sorting(desk, ear)
            shown_outside(desk, home, asked)
            question_before_a_clean(desk)
            clean_with_a_report(desk, home, ear)
        with running([trial_home, home, program], GERMAN_USER):
            second_run(Desk(sections="Bereiche"), home)


main()
print("Everything that was asked for came, and was told of.")
