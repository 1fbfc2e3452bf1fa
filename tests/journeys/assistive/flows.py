#!/usr/bin/python3
"""Whatever the window can be asked for, and its edges, by someone who cannot see it: flows.py SAMPLE-HOME PROGRAM
TRIAL-HOME.

Two runs over one made-up home: all from the start page to a clean with a report, and what the second run still knows.
"""

import glob
import os
import re
import sys
import tempfile
import time

from client import (Atspi, Ear, Window, act, actions, children, everything, exchange, find, has_state, is_showing,
                    wait_for)
from trial import make_home, running

SECTIONS = ("Caches", "Language Resources", "Logs", "Downloads", "Trash")
LIST_CONTROLS = ("Show Information", "Show in File Manager")
SURE = "Are you sure you want to  completely delete the selected items?"
STAYS = "Library/Containers/com.vendor.reader/Data/Library/Logs/kept.log"
NAME, DESCRIPTION, VALUE = (f"object:property-change:accessible-{what}" for what in ("name", "description", "value"))
UNTIL_IT_WOULD_HAVE_COME = 1.0  # seconds


class Desk:
    """The window as its user knows it."""

    def __init__(self):
        self.window = Window()
        self.frame = self.window.frame

    def labels(self):
        labels = (part for part in everything(self.frame) if part.get_role_name() == "label")
        return [label.get_name() for label in labels if is_showing(label)]

    def ticked(self):
        return [title for title in SECTIONS if has_state(self.window.section(title), Atspi.StateType.CHECKED)]

    def tick_only(self, *titles):
        for title in SECTIONS:
            if (title in self.ticked()) != (title in titles):
                act(self.window.section(title), "Toggle")
        wait_for("the ticks", lambda: self.ticked() == [title for title in SECTIONS if title in titles])

    def subtitle(self, title):
        return self.window.section(title).get_description()

    def list_on_show(self):
        tables = (part for part in everything(self.frame) if part.get_role_name() == "table" and is_showing(part))
        return next((table.get_name() for table in tables if table.get_name() != "Languages"), None)

    def is_drawer_out(self):
        return is_showing(find(self.frame, "table", "Languages"))

    def select_all(self):
        return find(self.frame, "check box", "Select All")

    def select_all_state(self):
        state = self.select_all()
        if has_state(state, Atspi.StateType.INDETERMINATE):
            return "some"
        return "all" if has_state(state, Atspi.StateType.CHECKED) else "none"

    def status(self):
        """The large text and the small one of the panel below the lists, or the small one alone."""
        bar = self.select_all().get_parent()
        return next(part for part in children(bar) if part.get_name() not in ("Select All", "Clean", "Stop Cleaning"))

    def progress(self, name):
        return find(self.frame, "progress bar", name)

    def is_idle(self):
        return self.window.is_enabled("Scan")

    def scan(self):
        self.window.press("Scan")
        wait_for("the end of the scan", lambda: find(self.frame, "push button", "Scan") and self.is_idle())

    def question_text(self):
        question = wait_for("a question", self.window.question)
        return [part.get_name() for part in everything(question) if part.get_role_name() == "label" and part.get_name()]

    def no_question_comes(self):
        stays_so("no question", lambda: self.window.question() is None)


def stays_so(what, probe):
    """Holds now, and for as long as something that was started would need."""
    deadline = time.monotonic() + UNTIL_IT_WOULD_HAVE_COME
    while time.monotonic() < deadline:
        assert probe(), what
        time.sleep(0.05)


# --- Before the first scan --------------------------------------------------------------------------------------


def start_page(desk):
    assert "Select sections and press Scan button" in desk.labels(), desk.labels()
    assert [desk.subtitle(title) for title in SECTIONS] == ["Not scanned"] * len(SECTIONS)
    assert desk.ticked() == ["Caches", "Language Resources", "Logs", "Trash"], desk.ticked()
    assert not is_showing(desk.window.button("Clean"))


def sections_before_a_scan(desk):
    """No list comes; the drawer of the languages follows the section all the same, and is remembered."""
    languages = desk.window.button("Languages")
    assert not is_showing(languages)
    desk.window.show_section("Language Resources")
    wait_for("the languages button", lambda: is_showing(languages))
    assert has_state(languages, Atspi.StateType.EXPANDABLE) and not has_state(languages, Atspi.StateType.EXPANDED)
    desk.window.press("Languages")
    wait_for("the drawer", desk.is_drawer_out)
    assert has_state(languages, Atspi.StateType.EXPANDED) and languages.get_description() == "Open"
    desk.window.show_section("Caches")
    wait_for("a window without drawer", lambda: not desk.is_drawer_out() and not is_showing(languages))
    desk.window.show_section("Language Resources")
    wait_for("the drawer again", desk.is_drawer_out)
    desk.window.press("Languages")
    wait_for("a closed drawer", lambda: not desk.is_drawer_out())
    desk.window.show_section("Caches")
    wait_for("the closed drawer's button to go", lambda: not is_showing(languages))
    desk.window.show_section("Language Resources")
    wait_for("the button without the drawer", lambda: is_showing(languages) and not desk.is_drawer_out())
    assert desk.list_on_show() is None


# --- Scanning ---------------------------------------------------------------------------------------------------


def nothing_to_scan(desk):
    """The question: a no leaves everything as it is, a yes ticks all and scans them half a second later."""
    desk.tick_only()
    desk.window.press("Start Scan")
    text = desk.question_text()
    assert text == ["No category selected", "You should select category to scan.\nSelect all and scan?"], text
    desk.window.answer("Cancel")
    wait_for("the end of the question", lambda: desk.window.question() is None)
    stays_so("nothing begins", lambda: desk.ticked() == [] and desk.subtitle("Caches") == "Not scanned")
    desk.window.press("Start Scan")
    desk.window.answer("OK")
    wait_for("all sections", lambda: desk.ticked() == list(SECTIONS))


def scan_under_way(desk):
    """A volume does not answer, so that the scan of the Trash goes on and on."""
    wait_for("the stop button", lambda: desk.window.is_enabled("Stop Scanning"))
    bar = desk.progress("Scan progress")
    wait_for("four sections of five", lambda: bar.get_value_iface().get_current_value() == 80)
    assert is_showing(bar) and has_state(bar, Atspi.StateType.BUSY)
    assert not desk.window.is_enabled("Clean")
    assert not any(desk.window.is_enabled(name) for name in LIST_CONTROLS)
    assert not has_state(desk.select_all(), Atspi.StateType.ENABLED)
    assert "Toggle" not in actions(desk.window.section("Caches"))
    for title in ("Downloads", "Language Resources"):
        desk.window.show_section(title)
        wait_for(f"the list of {title}", lambda: desk.list_on_show() == title)


def stop(desk):
    desk.window.press("Stop Scanning")
    wait_for("the scan button", lambda: find(desk.frame, "push button", "Scan") and desk.is_idle())
    assert not is_showing(desk.progress("Scan progress"))
    wait_for("a list that can be cleaned", lambda: desk.window.is_enabled("Clean"))
    assert "Toggle" in actions(desk.window.section("Caches"))


def scan_again(desk, ear):
    ear.heard.clear()
    desk.scan()
    wait_for("the last per cent", lambda: "Scan progress" in ear.names(VALUE, "progress bar"))
    wait_for("the last subtitle", lambda: "Trash" in ear.names(DESCRIPTION, "list item"))
    assert ear.names(NAME, "push button"), "the status and the button tell of the end"
    assert desk.subtitle("Trash").endswith(" Selected"), desk.subtitle("Trash")
    print(f"{ear.most_in_a_second()} events in a second at most")
    assert ear.most_in_a_second() < 100, ear.most_in_a_second()


# --- What is selected -------------------------------------------------------------------------------------------


def states_of_select_all(desk):
    """A section with no item ticked stays ticked itself; when nothing else is ticked there is nothing to clean."""
    desk.window.show_section("Caches")
    rows = wait_for("the caches", lambda: desk.window.rows("Caches"))
    wait_for("the mark of all", lambda: desk.select_all_state() == "all")
    act(next(iter(rows.values()))[2], "Toggle")
    wait_for("the mark of some", lambda: desk.select_all_state() == "some")
    act(desk.select_all(), "Toggle")
    wait_for("all again", lambda: desk.select_all_state() == "all")
    desk.tick_only("Caches")
    act(desk.select_all(), "Toggle")
    wait_for("the mark of none", lambda: desk.select_all_state() == "none")
    assert not any(checked for _, checked, _ in desk.window.rows("Caches").values())
    assert desk.ticked() == ["Caches"]
    assert desk.status().get_name().startswith("Zero Bytes, Selected of "), desk.status().get_name()
    assert not desk.window.is_enabled("Clean") and "Press" not in actions(desk.window.button("Clean"))
    act(desk.select_all(), "Toggle")
    wait_for("something to clean", lambda: desk.window.is_enabled("Clean"))


def sorting(desk):
    """A header says how the rows are sorted, and sorts them."""
    def headers():
        table = desk.window.table("Caches")
        return {table.get_column_header(column).get_name(): table.get_column_header(column) for column in (0, 2, 3)}

    assert headers()["Name"].get_description() == "Sorted ascending"
    act(headers()["Size"], "Press")
    wait_for("another order", lambda: headers()["Size"].get_description() == "Sorted descending")
    assert headers()["Name"].get_description() == ""
    act(headers()["Name"], "Press")
    wait_for("the first order", lambda: headers()["Name"].get_description() == "Sorted ascending")


def status_panel(desk, other):
    sizes = desk.status().get_name()
    assert "Selected of" in sizes, sizes
    act(desk.status(), "Press")
    wait_for(f"{other!r} in the status panel", lambda: desk.status().get_name() == other)
    act(desk.status(), "Press")
    wait_for("the sizes in the status panel", lambda: desk.status().get_name() == sizes)


# --- Cleaning ---------------------------------------------------------------------------------------------------


def question_before_a_clean(desk, home):
    caches = os.listdir(os.path.join(home, "Library/Caches"))
    desk.window.press("Clean")
    text = desk.question_text()
    assert text[:2] == [SURE, "Files will be  permanently removed from your Hard Drive."], text
    assert re.fullmatch(r"[\d,]+ items, [\d.]+ [KMG]?B", text[2]) and text[3].startswith("Caches "), text
    desk.window.answer("Cancel")
    wait_for("the end of the question", lambda: desk.window.question() is None)
    desk.window.press("Clean")
    question = wait_for("a question", desk.window.question)
    act(find(question, "check box", "Do not show this message again"), "Toggle")
    desk.window.answer("Cancel")
    wait_for("the end of the question", lambda: desk.window.question() is None)
    stays_so("nothing goes", lambda: os.listdir(os.path.join(home, "Library/Caches")) == caches)


def clean_with_a_report(desk, home, ear):
    """No question comes any more. The drawer makes room for the report, and nothing behind that can be used."""
    desk.tick_only("Logs")
    desk.window.show_section("Logs")
    container = STAYS.split("/")[2]
    act(wait_for("the container", lambda: desk.window.rows("Logs")[container])[2], "Toggle")
    wait_for("the log with it", lambda: not desk.window.rows("Logs")["kept.log"][1])
    act(desk.window.rows("Logs")["kept.log"][2], "Toggle")
    wait_for("the log alone", lambda: desk.window.rows("Logs")["kept.log"][1])
    exchange(os.path.dirname(os.path.join(home, STAYS)))
    desk.window.show_section("Language Resources")
    desk.window.press("Languages")
    wait_for("the drawer", desk.is_drawer_out)
    ear.heard.clear()
    desk.window.press("Clean")
    sheet = wait_for("the report", lambda: find(desk.frame, "dialog", "Some items were not removed"))
    assert desk.window.question() == sheet, "a question that was to come no more"
    wait_for("a closed drawer", lambda: not desk.is_drawer_out())
    wait_for("the progress", lambda: "Clean progress" in ear.names(VALUE, "progress bar"))
    behind(desk)
    act(find(sheet, "push button", "Close"), "Press")
    wait_for("the drawer again", desk.is_drawer_out)
    assert desk.is_idle() and "Press" in actions(desk.window.button("Scan"))
    assert os.path.exists(os.path.join(home, STAYS))
    summary = desk.status().get_name()
    assert " cleaned, " in summary and summary.endswith(" cleaned in total"), summary
    act(desk.status(), "Press")
    wait_for("the sizes", lambda: "Selected of" in desk.status().get_name())


def behind(desk):
    for name in ("Scan", "Clean", "Languages"):
        button = desk.window.button(name)
        assert not desk.window.is_enabled(name) and actions(button) == [], name
    for title in SECTIONS:
        assert actions(desk.window.section(title)) == []
    stays_so("nothing behind the report is used", lambda: not is_showing(desk.progress("Scan progress")))


def second_run(desk):
    """Nothing was freed in this run yet. The ticks are those of the last click, and no question is asked."""
    assert desk.ticked() == ["Logs"], desk.ticked()
    desk.tick_only("Logs", "Downloads")
    desk.window.press("Start Scan")
    wait_for("the end of the scan", lambda: desk.is_idle() and desk.subtitle("Logs") != "Not scanned")
    desk.window.show_section("Downloads")
    act(wait_for("the download", lambda: desk.window.rows("Downloads")["invoice.txt"])[2], "Toggle")
    wait_for("something to clean", lambda: desk.window.is_enabled("Clean"))
    act(desk.status(), "Press")
    wait_for("the cleaned sum", lambda: desk.status().get_name().endswith(" cleaned before"))
    desk.window.press("Clean")
    wait_for("the cleaned summary", lambda: desk.status().get_name().endswith(" cleaned in total"))
    desk.no_question_comes()


def main():
    sample_home, program, trial_home = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        home, scratch = os.path.join(folder, "home"), os.path.join(folder, "scratch")
        make_home(sample_home, home)
        os.makedirs(os.path.dirname(os.path.join(home, STAYS)), exist_ok=True)
        with open(os.path.join(home, STAYS), "w", encoding="ascii") as file:
            file.write("to be kept")
        os.mkdir(scratch)
        ear = Ear()
        with running([trial_home, home, program], {"TMPDIR": scratch}):
            desk = Desk()
            start_page(desk)
            sections_before_a_scan(desk)
            # The table of mounts of this trial never ends, as one with a volume that does not answer.
            [root] = glob.glob(os.path.join(scratch, "*/root"))
            mounts = os.path.join(root, "proc/self/mountinfo")
            os.makedirs(os.path.dirname(mounts))
            os.mkfifo(mounts)
            nothing_to_scan(desk)
            scan_under_way(desk)
            stop(desk)
            os.remove(mounts)
            scan_again(desk, ear)
            states_of_select_all(desk)
            sorting(desk)
            status_panel(desk, "Select files to clean")
            question_before_a_clean(desk, home)
            clean_with_a_report(desk, home, ear)
        with running([trial_home, home, program]):
            second_run(Desk())


main()
print("Everything that was asked for came, and was told of.")
