"""What ../run executes: the first argument is the folder of the built programs, the rest are those of ../run."""

import argparse
import signal
import sys

from given import measure_given, remove_given
from trial import PARTS, trial
from turns import Failed


def rounds(text):
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError("at least one round")
    return number


def main(programs, words):
    if words[:1] == ["remove"]:
        if len(words) < 2:
            sys.exit("usage: bench/run remove DIR...")
        return remove_given(programs, words[1:])
    if words[:1] == ["cold"]:
        words = ["--only", "cold", *words[1:]]
    parser = argparse.ArgumentParser(prog="bench/run")
    parser.add_argument("--rounds", type=rounds, default=5)
    if words[:1] == ["measure"]:
        parser.prog += " measure"
        parser.add_argument("folder", metavar="DIR")
        given = parser.parse_args(words[1:])
        measure_given(programs, given.folder, given.rounds)
        return 0
    parser.add_argument("--only", choices=PARTS, action="append")
    parser.add_argument("--written", action="store_true", help="files have contents, not lengths alone")
    given = parser.parse_args(words)
    trial(programs, given.rounds, given.only or [part for part in PARTS if part != "cold"], given.written)
    return 0


def end(*_):
    """Exits by an exception, so that the trees are removed first; a second SIGTERM is ignored."""
    signal.signal(signal.SIGTERM, signal.SIG_IGN)
    sys.exit(1)


signal.signal(signal.SIGTERM, end)
try:
    sys.exit(main(sys.argv[1], sys.argv[2:]))
except (Failed, OSError) as problem:
    sys.exit(f"bench/run: {problem}")
