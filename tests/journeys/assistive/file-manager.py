#!/usr/bin/python3
"""An item is shown in a real file manager, which the session bus starts and whose window is read as that of the
program is: file-manager.py SAMPLE-HOME PROGRAM TRIAL-HOME; 77 and the reason where there is none."""

import os
import shutil
import signal
import sys
import tempfile

from client import Window, application, children, find, make_home, running, wait_for
from gi.repository import Atspi, Gio, GLib

BUS = "org.freedesktop.DBus"


def call_bus(method, name):
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    call = GLib.Variant("(s)", (name,))
    return bus.call_sync(BUS, "/org/freedesktop/DBus", BUS, method, call, None, Gio.DBusCallFlags.NONE, -1).unpack()[0]


def end_services():
    """What the bus has started goes before the folders that it may still write to."""
    for name in ("org.xfce.Thunar", "org.xfce.Xfconf"):
        if call_bus("NameHasOwner", name):
            os.kill(call_bus("GetConnectionUnixProcessID", name), signal.SIGTERM)
            wait_for(f"the end of {name}", lambda: not call_bus("NameHasOwner", name))


def folders_on_show():
    """What stands in the address lines of the file manager's windows."""
    thunar = application("Thunar")
    lines = [find(window, "text") for window in children(thunar)] if thunar else []
    return [Atspi.Text.get_text(line.get_text_iface(), 0, -1).rstrip("/") for line in lines if line]


def main():
    sample_home, program, trial_home = sys.argv[1:]
    if not shutil.which("thunar"):
        print("Skipped: there is no file manager (thunar)")
        sys.exit(77)
    with tempfile.TemporaryDirectory() as folder:
        home = os.path.join(folder, "höme 100% #1")
        make_home(sample_home, home)
        os.symlink("/bin/false", os.path.join(folder, "xdg-open"))  # which would open the folder as well
        try:
            with running([trial_home, home, program], {"PATH": folder + os.pathsep + os.environ["PATH"]}):
                window = Window()
                window.press("Start Scan")
                window.show_section("Logs")
                wait_for("the end of the scan", window.is_idle)
                window.select("Logs", "system.log")
                window.press("Show in File Manager")
                wait_for("the folder of the item", lambda: os.path.join(home, "Library/Logs") in folders_on_show())
        finally:
            end_services()


main()
