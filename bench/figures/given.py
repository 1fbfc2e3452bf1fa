"""Measures or removes folders named on the command line."""

import os
import sys

from turns import Failed, measure, run


def measure_given(programs, folder, rounds):
    if not os.path.isdir(folder):
        raise Failed(f"{folder} is no folder")
    folder = os.path.realpath(folder)
    contenders = measure(programs, folder, rounds)
    ours, *others = contenders
    print(f"folder {folder}")
    print(f"rounds {rounds}")
    print(f"{ours.name} {ours.median:.4f} s")
    for other in others:
        print(f"{other.name} {other.median:.4f} s ratio {ours.median / other.median:.2f}")
    print(f"bytes {ours.last.count('bytes')}")
    if any(other.check and other.last.count("bytes") != ours.last.count("bytes") for other in others):
        print(f"The floor found {others[-1].last.count('bytes')} bytes: mounts below, or a change", file=sys.stderr)


def absolute(path):
    """Follows no link: a link at the end is removed itself, and one on the way must be refused."""
    path = path.rstrip("/") or "/"
    if path.startswith("/"):
        return path
    folder = os.getcwd()
    words = [word for word in path.split("/") if word not in ("", ".")]
    while words and words[0] == "..":
        folder = os.path.dirname(folder)
        words.pop(0)
    return os.path.join(folder, *words)


def remove_given(programs, folders):
    """brimvault-files prints on standard error what it keeps, and why."""
    kept = False
    for folder in map(absolute, folders):
        try:
            taken = run([os.path.join(programs, "brimvault-files"), "remove", folder])
            print(f"brimvault {taken.seconds:.4f} s {folder}", flush=True)
        except Failed:
            kept = True
    return 1 if kept else 0
