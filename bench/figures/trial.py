"""Trees made for the purpose, and what is measured on them."""

import os
import statistics
import subprocess
import tempfile

from table import Table, machine
from turns import Contender, Failed, cores, few_descriptors, measure, run

PARTS = ("measure", "scan", "memory", "chain", "remove", "cold")


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


def drop_caches():
    """The system forgets what it has read of the disk."""
    subprocess.run(["sync"], check=True)
    try:
        with open("/proc/sys/vm/drop_caches", "w", encoding="ascii") as caches:
            caches.write("3")
    except OSError as problem:
        raise Failed(f"the system's caches can be dropped by an administrator only ({problem})") from problem


def disk_of(folder):
    """Its name, and whether it turns."""
    device = subprocess.run(["df", "--output=source", folder], stdout=subprocess.PIPE, text=True, check=True)
    name = os.path.basename(device.stdout.split()[-1])
    block = os.path.realpath(os.path.join("/sys/class/block", name))
    for place in (block, os.path.dirname(block)):
        turns = os.path.join(place, "queue/rotational")
        if os.path.exists(turns):
            with open(turns, encoding="ascii") as answer:
                return f"{name} ({'turning' if answer.read().strip() == '1' else 'not turning, or said to be so'})"
    return name


def cold(trees, table, rounds):
    """A folder of single files, of which the system knows nothing. The others' programs are read beforehand."""
    home, made = trees.make("single")
    others = [Contender("du -s", ["du", "-s"], check=False), Contender("gdu -npc", ["gdu", "-npc"], check=False)]
    scans = []
    for _ in range(rounds):
        for other in others:
            drop_caches()
            run([other.command[0], "--help"], check=False)
            other.seconds.append(other.take_turn(os.path.join(home, "Downloads")).seconds)
        scans.append(scan_once(trees, home, made, "cold"))
    ours = statistics.median(scan.number("seconds") for scan in scans)
    rows = statistics.median(scan.number("first-rows-seconds") for scan in scans)
    what = f"100,000 single files, cold, on {disk_of(home)}"
    for other, limit in zip(others, (1.0, None)):
        table.ratio(what, ours, other.median, other.name, limit)
    table.figure("the first rows of these", rows, "s", 0.3)


def trial(programs, rounds, parts, written):
    with Trees(programs, written) as trees:
        print(machine(trees.folder, cores()))
        contents = "contents" if written else "lengths and no contents"
        print(f"Medians of {rounds} rounds in turn; files have {contents}.\n")
        table = Table()
        work = {
            "measure": measuring,
            "scan": scanning,
            "memory": memory,
            "chain": chain,
            "remove": removing,
            "cold": cold,
        }
        for part in parts:
            work[part](trees, table, rounds)
        print(f"\n{table.missed} of the limits are missed." if table.missed else "\nAll limits are kept.")
