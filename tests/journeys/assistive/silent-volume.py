#!/usr/bin/python3
"""The caches lie on a volume that never answers: silent-volume.py SAMPLE-HOME PROGRAM TRIAL-HOME SILENT-FOLDER.

After Stop the window is as it was, the other sections can be scanned and cleaned, and closing the window ends the
process within two seconds.
"""

import os
import sys
import tempfile

from client import Atspi, Window, make_home, running, wait_for

TO_END = 2.0  # seconds
CONTROL, Q = 37, 24  # codes of keys
PRESS, RELEASE = Atspi.KeySynthType.PRESS, Atspi.KeySynthType.RELEASE


def stop_and_scan_the_others(window, cleans):
    def note(title):
        return window.section(title).get_description().rpartition(". ")[2]

    window.press("Start Scan")
    wait_for("a scan under way", lambda: window.is_enabled("Stop Scanning"))
    wait_for("the logs", lambda: window.section("Logs").get_description().endswith(" Selected"))
    window.press("Stop Scanning")
    wait_for("the controls", window.is_idle)
    wait_for("something to clean", lambda: window.is_enabled("Clean"))
    wait_for("that it was stopped", lambda: note("Caches") == "Stopped, nothing found so far")
    if cleans:
        window.press("Clean")
        window.answer("Delete")
        wait_for("the logs to be gone", lambda: note("Logs").endswith(" cleaned"))
        wait_for("the controls again", window.is_idle)
    window.press("Scan")
    wait_for("that it is left out", lambda: note("Caches") == "Does not answer, skipped")
    wait_for("the end of the scan", window.is_idle)


def main():
    sample_home, program, trial_home, library = sys.argv[1:]
    for cleans in (True, False):
        with tempfile.TemporaryDirectory() as folder:
            home = os.path.join(folder, "home")
            make_home(sample_home, home)
            silent = {"LD_PRELOAD": library, "BRIMVAULT_SILENT_FOLDER": os.path.join(home, "Library/Caches")}
            with running([trial_home, home, program], silent, ends_itself=not cleans) as process:
                stop_and_scan_the_others(Window(), cleans)
                if not cleans:  # without a question before, since nobody gives the window the keyboard again here
                    for key, kind in ((CONTROL, PRESS), (Q, PRESS), (Q, RELEASE), (CONTROL, RELEASE)):
                        Atspi.generate_keyboard_event(key, None, kind)
                    assert process.wait(timeout=TO_END) == 0, process.returncode


main()
print("What never answers kept nobody waiting.")
