"""Prints the figures as a Markdown table, which a README can take as it is."""

import os
import platform
import subprocess


def _first(path, beginning):
    with open(path, encoding="utf-8") as lines:
        return next((line.split(":", 1)[1].strip() for line in lines if line.startswith(beginning)), "?")


def machine(folder, cores):
    memory = int(_first("/proc/meminfo", "MemTotal").split()[0]) / (1 << 20)
    system = subprocess.run(
        ["df", "--output=fstype", folder], stdout=subprocess.PIPE, text=True, check=True
    ).stdout.split()[-1]
    with open("/proc/loadavg", encoding="utf-8") as load:
        busy = load.read().split()[0]
    return (
        f"{cores} cores ({_first('/proc/cpuinfo', 'model name')}), {memory:.0f} GiB, {platform.system()} "
        f"{platform.release()}, {system} in {os.path.dirname(folder)}; load at the start: {busy}"
    )


class Table:
    def __init__(self):
        print("| what | Brimvault | beside | takes | ratio | at most | |")
        print("|---|---|---|---|---|---|---|", flush=True)
        self.missed = 0

    def _row(self, what, figure, beside, takes, ratio, limit, missed):
        self.missed += missed
        mark = "missed" if missed else ""
        print(f"| {what} | {figure} | {beside} | {takes} | {ratio} | {limit} | {mark} |", flush=True)

    def ratio(self, what, ours, other, other_name, limit=None):
        ratio = ours / other
        self._row(
            what, f"{ours:.3f} s", other_name, f"{other:.3f} s", f"{ratio:.2f}", "" if limit is None else f"{limit:g}",
            limit is not None and ratio > limit,
        )

    def figure(self, what, value, unit, limit=None, beside="", takes=""):
        at_most = "" if limit is None else f"{limit:g} {unit}"
        self._row(what, f"{value:.1f} {unit}", beside, takes, "", at_most, limit is not None and value > limit)

    def failed(self, what, why, limit):
        self._row(what, why, "", "", "", limit, True)
