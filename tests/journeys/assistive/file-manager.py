#!/usr/bin/python3
"""Items shown outside the window: file-manager.py with|without SAMPLE-HOME PROGRAM TRIAL-HOME.

With a file manager, Thunar comes when it is called over the session bus, and its windows are read as those of the
program are; 77 and the reason where it is missing. Without one, on a session bus that starts nothing, the program has
to help itself.
"""

import grp
import os
import pathlib
import pwd
import shutil
import signal
import stat
import sys
import tempfile

from client import Atspi, Moved, Window, application, children, everything, find, wait_for
from gi.repository import Gio, GLib
from trial import make_home, running, size_text

FILE_MANAGER = "org.freedesktop.FileManager1"
LOGS = "Library/Logs"
# Names with what an address has to escape, with what a list cannot show, and with bytes that are no text.
ODD_FILE = "50% of a\nlög #1;?.log"
ODD_FILE_SHOWN = "50% of a\N{REPLACEMENT CHARACTER}lög #1;?.log"
NO_TEXT_FILE = os.fsdecode(b"caf\xe9.log")
NO_TEXT_FILE_SHOWN = "caf\N{REPLACEMENT CHARACTER}.log"
FOLDER = "a folder of logs"
ODD_LENGTH = 1_234_567
ODD_MODE = 0o4751


def call(service, path, interface, method, arguments=None):
    """What a service of the session bus answers."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    return bus.call_sync(service, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, -1).unpack()


def call_bus(method, *names):
    arguments = GLib.Variant.new_tuple(*map(GLib.Variant.new_string, names))
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments)[0]


def has_owner(name):
    return call_bus("NameHasOwner", name)


def end_service(name):
    """Ends what the bus has started, before the folders go that it may still write to."""
    if has_owner(name):
        os.kill(call_bus("GetConnectionUnixProcessID", name), signal.SIGTERM)
        wait_for(f"the end of {name}", lambda: not has_owner(name))


def furnish(home):
    """Adds what is looked at to the made-up home."""
    logs = os.path.join(home, LOGS)
    with open(os.path.join(logs, ODD_FILE), "wb") as file:
        file.truncate(ODD_LENGTH)
    os.chmod(os.path.join(logs, ODD_FILE), ODD_MODE)
    os.mkdir(os.path.join(logs, FOLDER))
    for path in (os.path.join(logs, FOLDER, "inside.log"), os.path.join(logs, NO_TEXT_FILE)):
        with open(path, "wb") as file:
            file.write(b"a line\n")


class Opener:
    """Stands first in the PATH in the place of xdg-open and notes what it is asked to open. Which program then opens a
    folder is the desktop's affair, and here there is no desktop to choose one; what is asked for is the program's."""

    def __init__(self, folder):
        self.folder = folder
        self.record = os.path.join(folder, "record")
        os.mkdir(folder)
        script = os.path.join(folder, "xdg-open")
        with open(script, "w") as file:
            file.write(f"#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >>'{self.record}'\n")
        os.chmod(script, 0o755)

    def environment(self):
        return {"PATH": self.folder + os.pathsep + os.environ["PATH"]}

    def asked(self):
        """Of each call the number of its arguments and then these, a line each."""
        return pathlib.Path(self.record).read_text().splitlines() if os.path.exists(self.record) else []


def scanned():
    window = Window()
    window.press("Start Scan")
    wait_for("the end of the scan", lambda: window.is_enabled("Scan") and window.is_enabled("Clean"))
    window.show_section("Logs")
    return window


# --- With a file manager ----------------------------------------------------------------------------------------


def part_of(node, role, name=None):
    """As a window that is still being built has not all parts yet, what is not there may come."""
    part = find(node, role, name)
    if part is None:
        raise Moved
    return part


def shown_folder(frame):
    return Atspi.Text.get_text(part_of(frame, "text").get_text_iface(), 0, -1).rstrip("/")


def selected_files(frame):
    """Names of all that is selected in a window of the file manager."""
    files = part_of(part_of(frame, "directory pane", "Details view"), "table").get_table_iface()
    cells = [files.get_accessible_at(row, 0) for row in files.get_selected_rows()]
    if None in cells:
        raise Moved
    return [part.get_name() for cell in cells for part in everything(cell) if part.get_name()]


def file_manager_windows(role):
    thunar = application("Thunar")
    return [window for window in children(thunar) if window.get_role_name() == role] if thunar else []


def check_reveal(window, folder, row, file_name):
    window.select("Logs", row)
    window.press("Show in File Manager")
    seen = []

    def is_shown():
        seen[:] = [(shown_folder(frame), selected_files(frame)) for frame in file_manager_windows("frame")]
        return (folder, [file_name]) in seen

    try:
        wait_for(f"a window with {file_name!r} selected", is_shown)
    except AssertionError as missing:
        raise AssertionError(f"{missing}, but {seen}") from None


def check_properties(window, folder, row, file_name):
    window.select("Logs", row)
    window.press("Show Information")

    def shown():
        titles = {dialog.get_name(): dialog for dialog in file_manager_windows("dialog")}
        return titles.get(f"{file_name} - Properties")

    dialog = wait_for(f"the properties of {file_name!r}", shown)
    wait_for(f"the folder of {file_name!r}", lambda: find(dialog, "label", folder))


def journey_with_file_manager(window, home, opener):
    assert not has_owner(FILE_MANAGER), "the file manager came unasked"
    # Its list with columns tells which files are selected, its icons do not.
    view = GLib.Variant("(ssv)", ("thunar", "/default-view", GLib.Variant("s", "ThunarDetailsView")))
    call("org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "SetProperty", view)
    folder = os.path.join(home, LOGS)
    check_reveal(window, folder, ODD_FILE_SHOWN, ODD_FILE)
    check_reveal(window, folder, NO_TEXT_FILE_SHOWN, f"{NO_TEXT_FILE_SHOWN} (invalid encoding)")
    check_reveal(window, folder, FOLDER, FOLDER)
    check_properties(window, folder, ODD_FILE_SHOWN, ODD_FILE)
    check_properties(window, folder, FOLDER, FOLDER)
    assert opener.asked() == [], opener.asked()
    assert find(window.application, "dialog") is None, "the program tells as well what the file manager has told"


# --- Without one ------------------------------------------------------------------------------------------------


def expected_information(path, kind, size):
    status = os.lstat(path)
    owner, group = pwd.getpwuid(status.st_uid).pw_name, grp.getgrgid(status.st_gid).gr_name
    return {
        "Kind": kind,
        "Size": f"{size_text(size)} ({size:,} bytes)",
        "Where": os.path.dirname(path),
        "Owner": f"{owner}, group {group}",
        "Permissions": f"{stat.filemode(status.st_mode)[1:]} ({stat.S_IMODE(status.st_mode):04o})",
    }


def check_information(window, row, expected):
    window.select("Logs", row)
    window.press("Show Information")
    dialog = wait_for("the information", lambda: find(window.application, "dialog", f"Information: {row}"))

    def values():
        named = (part.get_name().partition(": ") for part in everything(dialog))
        told = {name: value for name, separator, value in named if separator}
        return told if told.get("Size") not in (None, "Calculating...") else None

    told = wait_for("all of the information", values)
    assert {name: told.get(name) for name in expected} == expected, told


def check_folder_opened(window, opener, folder):
    window.select("Logs", ODD_FILE_SHOWN)
    window.press("Show in File Manager")
    asked = wait_for("xdg-open", opener.asked)
    assert asked == ["1", pathlib.Path(folder).as_uri()], asked


def journey_without_file_manager(window, home, opener):
    assert FILE_MANAGER not in call_bus("ListActivatableNames"), "the bus has a file manager"
    folder = os.path.join(home, LOGS)
    odd_file = os.path.join(folder, ODD_FILE)
    kind = Gio.content_type_get_description(Gio.content_type_guess(ODD_FILE)[0])
    check_information(window, ODD_FILE_SHOWN, expected_information(odd_file, kind, os.lstat(odd_file).st_size))
    inside = os.lstat(os.path.join(folder, FOLDER, "inside.log")).st_size
    check_information(window, FOLDER, expected_information(os.path.join(folder, FOLDER), "Folder", inside))
    check_folder_opened(window, opener, folder)


# --- Both -------------------------------------------------------------------------------------------------------

JOURNEYS = {"with": journey_with_file_manager, "without": journey_without_file_manager}


def main():
    journey, sample_home, program, trial_home = sys.argv[1:]
    if journey == "with" and not (shutil.which("thunar") and FILE_MANAGER in call_bus("ListActivatableNames")):
        print("Skipped: there is no file manager to be called (thunar)")
        sys.exit(77)
    # A bus that starts nothing does not start this one either.
    wait_for("the accessibility bus", lambda: has_owner("org.a11y.Bus"))
    with tempfile.TemporaryDirectory() as folder:
        home = os.path.join(folder, "höme 100% #1")
        make_home(sample_home, home)
        furnish(home)
        opener = Opener(os.path.join(folder, "opener"))
        try:
            with running([trial_home, home, program], opener.environment()):
                JOURNEYS[journey](scanned(), home, opener)
        finally:
            end_service("org.xfce.Thunar")
            end_service("org.xfce.Xfconf")


main()
print("Every item was shown as it was asked for.")
