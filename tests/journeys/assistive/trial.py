"""The program in a trial: over a home folder of its own, until what is to be shown is shown."""

import contextlib
import os
import signal
import subprocess


@contextlib.contextmanager
def running(command, environment=()):
    """The program under way; it is to be still so at the end, and is ended then."""
    # A group of its own, so that the wrappers and the program in them end together.
    process = subprocess.Popen(command, start_new_session=True, env={**os.environ, **dict(environment)})
    try:
        yield
        assert process.poll() is None, "the program ended"
    finally:
        os.killpg(process.pid, signal.SIGTERM)
        process.wait()


def make_home(sample_home, home):
    subprocess.run([sample_home, home], check=True, stdout=subprocess.DEVNULL)


def size_text(size):
    """As the window writes sizes; counted anew here."""
    value, units = float(size), ["B", "KB", "MB", "GB", "TB", "PB"]
    while value >= 1000 and len(units) > 1:
        value, units = value / 1000, units[1:]
    text = f"{value:.{2 if value < 100 else 1}f}".rstrip("0").rstrip(".")
    return f"{text} {units[0]}"
