#!/usr/bin/python3
"""The caches lie on a volume that never answers: silent-volume.py SAMPLE-HOME PROGRAM TRIAL-HOME SILENT-FOLDER.

After Stop the window is as it was, the other sections can be scanned and cleaned, and whatever is under way, closing
the window ends the process within two seconds.
"""

import os
import signal
import subprocess
import sys
import tempfile
import time

from client import Atspi, Window, find, wait_for
from trial import make_home

TO_END = 2.0  # seconds
CONTROL, Q = 37, 24  # codes of keys
PRESS, RELEASE = Atspi.KeySynthType.PRESS, Atspi.KeySynthType.RELEASE


class Run:
    """The program over a home whose caches cannot be listed."""

    def __init__(self, home):
        sample_home, program, trial_home, library = sys.argv[1:]
        make_home(sample_home, home)
        silent = {"LD_PRELOAD": library, "SILENT_FOLDER": os.path.join(home, "Library/Caches")}
        self.process = subprocess.Popen(
            [trial_home, home, program], start_new_session=True, env={**os.environ, **silent}
        )
        self.window = Window()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            os.killpg(self.process.pid, signal.SIGKILL)
            self.process.wait()

    def note(self, title):
        return self.window.section(title).get_description().rpartition(". ")[2]

    def is_idle(self):
        return find(self.window.frame, "push button", "Scan") and self.window.is_enabled("Scan")

    def scan_until_only_the_caches_are_left(self):
        self.window.press("Start Scan")
        wait_for("a scan under way", lambda: self.window.is_enabled("Stop Scanning"))
        wait_for("the logs", lambda: self.window.section("Logs").get_description().endswith(" Selected"))

    def close_and_be_gone(self):
        asked = time.monotonic()
        for key, kind in ((CONTROL, PRESS), (Q, PRESS), (Q, RELEASE), (CONTROL, RELEASE)):
            Atspi.generate_keyboard_event(key, None, kind)
        assert self.process.wait(timeout=30) == 0, self.process.returncode
        took = time.monotonic() - asked
        print(f"The process was gone after {took:.2f} s.")
        assert took < TO_END, took


def stop(run):
    run.scan_until_only_the_caches_are_left()
    run.window.press("Stop Scanning")
    wait_for("the controls", run.is_idle)
    wait_for("something to clean", lambda: run.window.is_enabled("Clean"))
    wait_for("that it was stopped", lambda: run.note("Caches") == "Stopped, nothing found so far")


def clean(run):
    run.window.press("Clean")
    run.window.answer("Delete")
    wait_for("the logs to be gone", lambda: run.note("Logs").endswith(" cleaned"))


def scan_the_others(run):
    run.window.press("Scan")
    wait_for("that it is left out", lambda: run.note("Caches") == "Does not answer, skipped")
    wait_for("the end of the scan", run.is_idle)


def main():
    with tempfile.TemporaryDirectory() as folder:
        with Run(os.path.join(folder, "first")) as run:
            stop(run)
            clean(run)
            scan_the_others(run)
        with Run(os.path.join(folder, "second")) as run:
            stop(run)
            scan_the_others(run)
            run.close_and_be_gone()
        with Run(os.path.join(folder, "third")) as run:
            run.scan_until_only_the_caches_are_left()
            run.close_and_be_gone()


main()
print("What never answers kept nobody waiting.")
