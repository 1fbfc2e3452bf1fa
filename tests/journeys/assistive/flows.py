#!/usr/bin/python3
"""Whatever the window can be asked for, and its edges, by someone who cannot see it: flows.py SAMPLE-HOME PROGRAM
TRIAL-HOME.

Two runs over one made-up home: all from the start page to a clean with a report, and then, for someone who reads
German, what the second run still knows. After each clean the whole home is compared with what it was before.
"""

import glob
import os
import pathlib
import re
import stat
import sys
import tempfile

from client import (Atspi, Ear, Window, act, actions, children, everything, exchange, find, has_state, is_showing,
                    make_home, running, wait_for)
from gi.repository import Gio

SECTIONS = ("Caches", "Language Resources", "Logs", "Downloads", "Trash")
LIST_CONTROLS = ("Show Information", "Show in File Manager")
SURE = "Are you sure you want to  completely delete the selected items?"
STAYS = "Library/Containers/com.vendor.reader/Data/Library/Logs/kept.log"
NAME, DESCRIPTION, VALUE = (f"object:property-change:accessible-{what}" for what in ("name", "description", "value"))
GERMAN_USER = {"LANG": "de_DE.UTF-8", "LC_ALL": "de_DE.UTF-8", "LANGUAGE": "de:en"}


class Desk(Window):
    """The window as its user knows it."""

    def labels(self):
        labels = (part for part in everything(self.frame) if part.get_role_name() == "label")
        return [label.get_name() for label in labels if is_showing(label)]

    def ticked(self, titles=SECTIONS):
        return [title for title in titles if has_state(self.section(title), Atspi.StateType.CHECKED)]

    def tick_only(self, *titles):
        for title in SECTIONS:
            if (title in self.ticked()) != (title in titles):
                act(self.section(title), "Toggle")
        wait_for("the ticks", lambda: self.ticked() == [title for title in SECTIONS if title in titles])

    def subtitle(self, title):
        return self.section(title).get_description()

    def list_on_show(self):
        tables = (part for part in everything(self.frame) if part.get_role_name() == "table" and is_showing(part))
        return next((table.get_name() for table in tables if table.get_name() != "Languages"), None)

    def is_drawer_out(self):
        return is_showing(find(self.frame, "table", "Languages"))

    def select_all(self):
        return find(self.frame, "check box", "Select All")

    def status(self):
        """The large text and the small one of the panel below the lists, or the small one alone."""
        bar = self.select_all().get_parent()
        return next(part for part in children(bar) if part.get_name() not in ("Select All", "Clean", "Stop Cleaning"))

    def is_idle(self):
        return find(self.frame, "push button", "Scan") and self.is_enabled("Scan")


def snapshot(home):
    """Every path of the home with its kind, length and link target; settings and the like excepted."""
    found = {}
    for folder, folders, files in os.walk(home):
        if folder == home:
            folders[:] = [name for name in folders if name not in (".config", ".cache")]
        for path in (os.path.join(folder, name) for name in folders + files):
            status = os.lstat(path)
            target = os.readlink(path) if stat.S_ISLNK(status.st_mode) else ""
            length = 0 if stat.S_ISDIR(status.st_mode) else status.st_size
            found[path] = (stat.S_IFMT(status.st_mode), length, target)
    return found


def expect_gone(home, before, gone):
    """Nothing else is gone from the home, and nothing has changed."""
    right = {path: what for path, what in before.items() if not any((path + "/").startswith(top + "/") for top in gone)}
    after = snapshot(home)
    assert after == right, set(after.items()) ^ set(right.items())


def make_outside(folder, asked):
    """In the place of xdg-open stands a script that notes what it is to open, and the bus starts as file manager one
    that notes it and fails."""
    opener = pathlib.Path(folder, "xdg-open")
    opener.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >>'{asked}'\n")
    opener.chmod(0o755)
    name = "org.freedesktop.FileManager1"
    service = pathlib.Path(os.environ["XDG_RUNTIME_DIR"], f"dbus-1/services/{name}.service")
    service.write_text(f"[D-BUS Service]\nName={name}\nExec=/bin/sh -c 'echo started >>{asked}; exit 1'\n")
    bus = "org.freedesktop.DBus"
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    session.call_sync(bus, "/org/freedesktop/DBus", bus, "ReloadConfig", None, None, Gio.DBusCallFlags.NONE, -1)
    return {"PATH": folder + os.pathsep + os.environ["PATH"]}


# --- Before the first scan --------------------------------------------------------------------------------------


def start_page(desk):
    assert "Select sections and press Scan button" in desk.labels(), desk.labels()
    assert [desk.subtitle(title) for title in SECTIONS] == ["Not scanned"] * len(SECTIONS)
    assert desk.ticked() == ["Caches", "Language Resources", "Logs", "Trash"], desk.ticked()
    assert not is_showing(desk.button("Clean"))


def drawer_before_a_scan(desk):
    languages = desk.button("Languages")
    assert not is_showing(languages)
    desk.show_section("Language Resources")
    wait_for("the languages button", lambda: is_showing(languages))
    assert has_state(languages, Atspi.StateType.EXPANDABLE) and not has_state(languages, Atspi.StateType.EXPANDED)
    desk.press("Languages")
    wait_for("the drawer", desk.is_drawer_out)
    assert has_state(languages, Atspi.StateType.EXPANDED) and languages.get_description() == "Open"
    desk.press("Languages")
    wait_for("a closed drawer", lambda: not desk.is_drawer_out())
    assert desk.list_on_show() is None


# --- Scanning ---------------------------------------------------------------------------------------------------


def nothing_to_scan(desk):
    desk.tick_only()
    desk.press("Start Scan")
    text = desk.question_text()
    assert text == ["No category selected", "You should select category to scan.\nSelect all and scan?"], text
    desk.answer("OK")
    wait_for("all sections", lambda: desk.ticked() == list(SECTIONS))


def scan_under_way(desk):
    """A volume does not answer, so that the scan of the Trash goes on and on."""
    wait_for("the stop button", lambda: desk.is_enabled("Stop Scanning"))
    bar = find(desk.frame, "progress bar", "Scan progress")
    wait_for("four sections of five", lambda: bar.get_value_iface().get_current_value() == 80)
    assert is_showing(bar) and has_state(bar, Atspi.StateType.BUSY)
    assert not any(desk.is_enabled(name) for name in ("Clean", *LIST_CONTROLS))
    assert not has_state(desk.select_all(), Atspi.StateType.ENABLED)
    assert "Toggle" not in actions(desk.section("Caches"))
    for title in ("Downloads", "Language Resources"):
        desk.show_section(title)
        wait_for(f"the list of {title}", lambda: desk.list_on_show() == title)
    desk.press("Stop Scanning")
    wait_for("the scan button", desk.is_idle)
    assert not is_showing(bar)
    wait_for("a list that can be cleaned", lambda: desk.is_enabled("Clean"))
    assert "Toggle" in actions(desk.section("Caches"))


def shown_outside(desk, home, asked):
    """The bus starts a file manager, which fails, and then a program for folders is asked."""
    desk.show_section("Downloads")
    desk.press("Show in File Manager")
    uri = pathlib.Path(home, "Downloads").as_uri()
    wait_for("the program for folders", lambda: asked.exists() and asked.read_text().split() == ["1", uri])
    desk.select("Downloads", "invoice.txt")
    desk.press("Show in File Manager")
    wait_for("the file manager", lambda: asked.read_text().split() == ["1", uri, "started", "1", uri])


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


# --- The list ---------------------------------------------------------------------------------------------------


def states_of_select_all(desk, ear):
    def is_mark(state):
        return has_state(desk.select_all(), state)

    desk.show_section("Caches")
    rows = wait_for("the caches", lambda: desk.rows("Caches"))
    wait_for("the mark of all", lambda: is_mark(Atspi.StateType.CHECKED))
    assert rows["com.vendor.mail"][:2] == ("612.3 MB", True), rows
    act(rows["com.vendor.mail"][2], "Toggle")
    wait_for("the news of a tick", lambda: ear.has_told("object:state-changed:checked", "com.vendor.mail"))
    wait_for("the mark of some", lambda: is_mark(Atspi.StateType.INDETERMINATE))
    act(desk.select_all(), "Toggle")
    wait_for("all again", lambda: is_mark(Atspi.StateType.CHECKED) and desk.rows("Caches")["com.vendor.mail"][1])


def sorting(desk, ear):
    """A header says how the rows are sorted, and sorts them."""
    def headers():
        table = desk.table("Caches")
        return {table.get_column_header(column).get_name(): table.get_column_header(column) for column in (0, 2, 3)}

    assert headers()["Name"].get_description() == "Sorted ascending"
    act(headers()["Size"], "Press")
    wait_for("another order", lambda: headers()["Size"].get_description() == "Sorted descending")
    wait_for("the news of the order", lambda: ear.has_told(DESCRIPTION, "Size"))
    assert headers()["Name"].get_description() == ""


# --- Cleaning ---------------------------------------------------------------------------------------------------


def question_before_a_clean(desk):
    desk.press("Clean")
    text = desk.question_text()
    assert text[:2] == [SURE, "Files will be  permanently removed from your Hard Drive."], text
    assert re.fullmatch(r"[\d,]+ items, [\d.]+ [KMG]?B", text[2]) and text[3].startswith("Caches "), text
    act(find(desk.question(), "check box", "Do not show this message again"), "Toggle")
    desk.answer("Cancel")
    wait_for("the end of the question", lambda: desk.question() is None)


def clean_with_a_report(desk, home, ear):
    """No question comes any more. The drawer makes room for the report, and nothing behind that can be used."""
    desk.tick_only("Logs")
    desk.show_section("Logs")
    container = STAYS.split("/")[2]
    act(wait_for("the container", lambda: desk.rows("Logs")[container])[2], "Toggle")
    wait_for("the log with it", lambda: not desk.rows("Logs")["kept.log"][1])
    act(desk.rows("Logs")["kept.log"][2], "Toggle")
    wait_for("the log alone", lambda: desk.rows("Logs")["kept.log"][1] and not desk.rows("Logs")[container][1])
    exchange(os.path.dirname(os.path.join(home, STAYS)))
    desk.show_section("Language Resources")
    desk.press("Languages")
    wait_for("the drawer", desk.is_drawer_out)
    ear.heard.clear()
    before = snapshot(home)
    desk.press("Clean")
    sheet = wait_for("the report", lambda: find(desk.frame, "dialog", "Some items were not removed"))
    assert desk.question() == sheet, "a question that was to come no more"
    lines = [line.get_name() for line in children(find(sheet, "list", "Items that were not removed"))]
    assert lines == ["Logs", "kept.log - Its folder is not the one that was scanned any more"], lines
    logs = ("com.vendor.browser", "system.log", "backup 2.log", "backup 10.log")
    gone = [f"{home}/Library/Logs/{name}" for name in logs]
    expect_gone(home, before, [*gone, f"{home}/Library/Application Support/CrashReporter/editor_2024.crash"])
    wait_for("a closed drawer", lambda: not desk.is_drawer_out())
    wait_for("the progress", lambda: "Clean progress" in ear.names(VALUE, "progress bar"))
    for name in ("Scan", "Clean", "Languages"):
        assert not desk.is_enabled(name) and actions(desk.button(name)) == [], name
    assert [actions(desk.section(title)) for title in SECTIONS] == [[]] * len(SECTIONS)
    act(find(sheet, "push button", "Close"), "Press")
    wait_for("the drawer again", desk.is_drawer_out)
    assert desk.is_idle() and "Press" in actions(desk.button("Scan"))
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
        with open(os.path.join(home, STAYS), "w", encoding="ascii") as file:
            file.write("to be kept")
        os.mkdir(scratch)
        asked = pathlib.Path(folder, "asked")
        opener = make_outside(folder, asked)
        ear = Ear()
        with running([trial_home, home, program], {"TMPDIR": scratch, **opener}):
            desk = Desk()
            start_page(desk)
            drawer_before_a_scan(desk)
            # The table of mounts of this trial never ends, as one with a volume that does not answer.
            [root] = glob.glob(os.path.join(scratch, "*/root"))
            mounts = os.path.join(root, "proc/self/mountinfo")
            os.makedirs(os.path.dirname(mounts))
            os.mkfifo(mounts)
            nothing_to_scan(desk)
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
