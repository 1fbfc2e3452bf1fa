"""Trees made for the purpose, and what is measured on them."""

import os
import statistics
import subprocess
import tempfile

from table import Table, machine
from turns import Contender, Failed, cores, few_descriptors, measure, run

PARTS = ("measure", "scan", "memory", "chain", "remove")


class Trees:
    """A temporary folder in which trees are made; nothing of it stays.

    Measured trees are removed at the end only: after so many removals some file systems search very long for free
    places, and that would be part of what is timed next.
    """

    def __init__(self, programs, written):
        self.programs = programs
        self.how = ["written"] if written else []

    def __enter__(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="brimvault-bench-"))
        return self

    def __exit__(self, *_):
        self.remove(self.folder)

    def make(self, kind, name=None):
        """Makes a tree and flushes it to the disk; returns its path and what was made."""
        path = os.path.join(self.folder, name or kind)
        made = run([os.path.join(self.programs, "brimvault-trees"), kind, path, *self.how])
        subprocess.run(["sync", "-f", self.folder], check=True)
        return path, made

    @staticmethod
    def remove(path):
        """As deep as it may be."""
        subprocess.run(["rm", "-rf", path], check=True)


def expect_same(what, found, made):
    if found != made:
        raise Failed(f"{what}: {found} found, {made} made")


def measuring(trees, table, rounds):
    limits = {("cache", "du -sb"): 0.45, ("cache", "gdu -npc"): 0.35, ("cache", "floor on two threads"): 1.15}
    names = {"cache": "measuring the cache", "flat": "the flat folder", "tiny": "the tiny entries"}
    for kind, name in names.items():
        path, made = trees.make(kind)
        ours, *others = measure(trees.programs, path, rounds)
        for other in others:
            if other.check:
                expect_same(other.name, other.last.count("bytes"), made.count("bytes"))
            shown = "floor on two threads" if other.name == "floor" and cores() == 2 else other.name
            table.ratio(name, ours.median, other.median, shown, limits.get((kind, shown)))
        expect_same(ours.name, ours.last.count("bytes"), made.count("bytes"))


def removing(trees, table, rounds):
    """All trees are made before the first is removed; see Trees."""
    files = os.path.join(trees.programs, "brimvault-files")
    ours, theirs = Contender("brimvault", [files, "remove"]), Contender("rm -rf", ["rm", "-rf"])
    limits = {"cache": 0.65, "flat": 1.05}
    names = {"cache": "removing the cache", "flat": "the flat folder"}
    made = [(kind, number, who) for kind in names for number in range(rounds) for who in (ours, theirs)]
    paths = [trees.make(kind, f"{kind} {number} of {who.name}")[0] for kind, number, who in made]
    for kind, name in names.items():
        ours.seconds, theirs.seconds = [], []
        for (this, _, who), path in zip(made, paths):
            if this == kind:
                who.seconds.append(who.take_turn(path).seconds)
                expect_same(f"{who.name}: left of {path}", os.path.lexists(path), False)
        table.ratio(name, ours.median, theirs.median, theirs.name, limits[kind])


def chain(trees, table, rounds):
    name, limit = "removing the chain with 64 descriptors, 8 MiB of stack", 5
    seconds = []
    for path in [trees.make("chain", f"chain {number}")[0] for number in range(rounds)]:
        try:
            command = [os.path.join(trees.programs, "brimvault-files"), "remove", path]
            seconds.append(run(command, limits=few_descriptors).seconds)
        except Failed as problem:
            table.failed(name, str(problem), f"{limit} s")
            raise
        expect_same(f"left of {path}", os.path.lexists(path), False)
    table.figure(name, statistics.median(seconds), "s", limit)


def scan_once(trees, home, made, *more):
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": trees.folder}
    scan = run([os.path.join(trees.programs, "brimvault-scan-time"), home, *more], environment=environment)
    for what in ("listed", "items", "applications"):
        expect_same(f"the scan: {what}", scan.count(what), made.count(what))
    return scan


def scanning(trees, table, rounds):
    home, made = trees.make("home")
    inside = ("Library/Caches", "Library/Containers", "Library/Logs", "Downloads", ".Trash", "Applications")
    floor = [os.path.join(trees.programs, "brimvault-floor"), "measure", str(cores())]
    floor += [os.path.join(home, folder) for folder in inside]
    run(floor)
    idle = scan_once(trees, home, made, "idle")
    floors, scans = [], []
    for _ in range(rounds):
        floors.append(run(floor))
        scans.append(scan_once(trees, home, made))
    expect_same("floor", floors[-1].count("bytes"), made.count("bytes"))
    floor_median = statistics.median(floor.seconds for floor in floors)
    for which in ("first", "second"):
        median = statistics.median(scan.number(f"{which}-seconds") for scan in scans)
        table.ratio(f"the {which} scan of five sections", median, floor_median, "floor", 1.4)
    stretches(table, scans, "300,000 files")
    wake_ups(table, scans, idle)


def wake_ups(table, scans, idle):
    """Of all threads of the process together: voluntary context switches, so that a busy machine adds none."""
    for which in ("first", "second"):
        rate = statistics.median(scan.number(f"{which}-wake-ups-per-second") for scan in scans)
        count = statistics.median(scan.number(f"{which}-wake-ups") for scan in scans)
        table.figure(f"wake-ups, {which} scan of 300,000 files", rate, "per s", beside="in all", takes=f"{count:.0f}")
    for when in ("before", "after"):
        count = idle.count(f"idle-{when}-wake-ups")
        table.figure(f"wake-ups of the idle window in 5 s, {when} the scans", count, "in all", 0)


def stretches(table, scans, over):
    """Wall-clock time, and beside it the CPU time of the thread: on a busy machine they differ."""
    for which in ("first", "second"):
        longest = statistics.median(scan.number(f"{which}-longest") for scan in scans)
        worked = statistics.median(scan.number(f"{which}-longest-of-a-processor") for scan in scans)
        name = f"longest stretch of the main thread, {which} scan of {over}"
        table.figure(name, longest, "ms", 16, "of a processor", f"{worked:.1f} ms")


def memory(trees, table, rounds):
    home, made = trees.make("listed")
    scans = [scan_once(trees, home, made) for _ in range(rounds)]
    for which in ("first", "second"):
        above = [scan.count(f"{which}-peak-bytes") - scan.count("idle-bytes") for scan in scans]
        name = f"memory above the idle window, {which} scan, 100,000 items listed"
        table.figure(name, statistics.median(above) / (1 << 20), "MiB", 40)
    stretches(table, scans, "100,000 items")


def trial(programs, rounds, parts, written):
    with Trees(programs, written) as trees:
        print(machine(trees.folder, cores()))
        contents = "contents" if written else "lengths and no contents"
        print(f"Medians of {rounds} rounds in turn; files have {contents}.\n")
        table = Table()
        work = {"measure": measuring, "scan": scanning, "memory": memory, "chain": chain, "remove": removing}
        for part in parts:
            work[part](trees, table, rounds)
        print(f"\n{table.missed} of the limits are missed." if table.missed else "\nAll limits are kept.")
