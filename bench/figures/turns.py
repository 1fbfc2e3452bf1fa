"""Programs that are timed in turn, each as a whole process and all started in the same way."""

import os
import resource
import statistics
import subprocess
import tempfile
import time


class Failed(Exception):
    """Something did not work, as opposed to being slow."""


class Run:
    """What one process took, and what it printed."""

    def __init__(self, seconds, output):
        self.seconds = seconds
        self.output = output

    def value(self, name):
        """The rest of the line that begins with the name."""
        for line in self.output.splitlines():
            if line.startswith(name + " "):
                return line[len(name) + 1 :]
        raise Failed(f"no line {name!r} in what was printed:\n{self.output}")

    def number(self, name):
        return float(self.value(name))

    def count(self, name):
        return int(self.value(name))


def few_descriptors():
    """64 descriptors, 8 MiB of stack."""
    resource.setrlimit(resource.RLIMIT_NOFILE, (64, 64))
    resource.setrlimit(resource.RLIMIT_STACK, (8 << 20, 8 << 20))


def run(command, check=True, limits=None, environment=None):
    """Runs a command to its end. With `check` it must succeed; without, its output is discarded at no cost to it."""
    with tempfile.TemporaryFile("w+", errors="surrogateescape") as printed:
        begin = time.perf_counter()
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=printed if check else subprocess.DEVNULL,
            stderr=None if check else subprocess.DEVNULL, preexec_fn=limits, env=environment,
        )
        try:
            status = process.wait()
        except BaseException:  # interrupted: end the command too
            process.kill()
            process.wait()
            raise
        seconds = time.perf_counter() - begin
        if check and status != 0:
            how = f"was ended by signal {-status}" if status < 0 else f"ended with {status}"
            raise Failed(f"{' '.join(command)} {how}")
        printed.seek(0)
        return Run(seconds, printed.read())


class Contender:
    def __init__(self, name, command, check=True):
        self.name = name
        self.command = command
        self.check = check
        self.seconds = []
        self.last = None

    def take_turn(self, path):
        self.last = run([*self.command, path], self.check)
        return self.last

    @property
    def median(self):
        return statistics.median(self.seconds)


def cores():
    return len(os.sched_getaffinity(0))


def measurers(programs):
    """Ours first, the floor on all cores last. du and gdu may fail where they cannot read: not checked."""
    floor = [os.path.join(programs, "brimvault-floor"), "measure"]
    contenders = [
        Contender("brimvault", [os.path.join(programs, "brimvault-files"), "measure"]),
        Contender("du -sb", ["du", "-sb"], check=False),
        Contender("gdu -npc", ["gdu", "-npc"], check=False),
    ]
    if cores() != 2:
        contenders.append(Contender("floor on two threads", [*floor, "2"]))
    return [*contenders, Contender("floor", [*floor, str(cores())])]


def measure(programs, folder, rounds):
    """Each contender measures the folder once to warm the cache, and then in turn."""
    contenders = measurers(programs)
    for contender in contenders:
        contender.take_turn(folder)
    for _ in range(rounds):
        for contender in contenders:
            contender.seconds.append(contender.take_turn(folder).seconds)
    return contenders
