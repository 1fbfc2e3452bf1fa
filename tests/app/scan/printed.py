#!/usr/bin/python3
"""What brimvault-scan prints of a small home, and how it ends: printed.py PROGRAM TRIAL-HOME SILENT-FOLDER."""

import os
import re
import signal
import subprocess
import sys
import tempfile
import time
import urllib.parse
from json import loads as json_of

from home import english, make_home, scan

program, trial_home, silent_folder = sys.argv[1:]
FOUND, NOTHING, USAGE, INCOMPLETE, INTERRUPTED = 0, 1, 2, 3, 130
# Notes the number of the process, and tells its end by a signal from an exit.
STARTER = """
import os, subprocess, sys
process = subprocess.Popen(sys.argv[2:])
with open(sys.argv[1] + ".new", "w") as number:
    number.write(str(process.pid))
os.rename(number.name, sys.argv[1])
sys.exit(process.wait() % 256)
"""


def item(rule, path, size, more="", ticked="true"):
    return (f'{{"rule":"{rule}","path":"HOME/{path}"{more},"bytes":{size},"frees":N,"ticked":{ticked},'
            '"admin":false}')


def section(name, size, *items):
    return f'{{"id":"{name}","bytes":{size},"items":[{",".join(items)}]}}'


LOCALIZATIONS = ",".join(f'"HOME/Applications/Reader.app/Contents/Resources/{name}.lproj"' for name in ("de", "it"))
CAFE = item("caches", "Library/Caches/com.vendor.caf%E9%25", 4000, ',"pathEncoding":"percent"')
HUNDRED = item("caches", "Library/Caches/com.vendor.100%", 3000)
CACHES = section(
    "caches",
    13000,
    CAFE,
    HUNDRED,
    item("caches", r'Library/Caches/com.vendor.\u001b[2J\"\\', 2000),
    item("caches", "Library/Caches/com.vendor.twin-a", 2000),
    item("caches", "Library/Caches/com.vendor.twin-b", 2000),
)
LANGUAGES = section("languages", 1000,
                    item("languages", "Applications/Reader.app", 1000, f',"targets":[{LOCALIZATIONS}]'))
LOGS = section("logs", 700, item("logs", "Library/Logs/sync.log", 700))
DOWNLOADS = section("downloads", 1_500_000, item("downloads", "Downloads/film.iso", 1_500_000, ticked="false"))
TRASH = section("trash", 300, item("trash", ".local/share/Trash/files/old.txt", 300))

TABLE = r"""Caches: 7 KB
  [x]     4 KB  HOME/Library/Caches/com.vendor.caf~%
  [x]     3 KB  HOME/Library/Caches/com.vendor.100%

Downloads: 1.5 MB
  [ ]   1.5 MB  HOME/Downloads/film.iso

Trash: nothing found
"""


def expect(home, options, code, printed=None, told=b""):
    ended = scan(trial_home, home, [program, *options])
    assert ended.returncode == code, (options, ended)
    assert told in ended.stderr if told else not ended.stderr, (options, ended.stderr)
    if printed is not None:
        expect_text(home, ended.stdout, printed)


def expect_text(home, text, printed):
    """What an item frees depends on the file system."""
    for found in (json_of(text) if text.startswith(b"{") else {"sections": []})["sections"]:
        for one in found["items"]:
            assert one["frees"] == allocated(one), one
    assert re.sub(rb'"frees":\d+', b'"frees":N', text) == printed.replace("HOME", home).encode(), (text, printed)


def allocated(found):
    """The bytes on disk of all files and folders that a clean of the item would remove."""
    raw = urllib.parse.unquote_to_bytes if "pathEncoding" in found else os.fsencode
    files = []
    for path in map(raw, found.get("targets", [found["path"]])):
        files.append(path)
        files += [os.path.join(folder, name) for folder, inner, names in os.walk(path) for name in inner + names]
    return sum(os.lstat(file).st_blocks * 512 for file in files)


def json(*sections):
    return f'{{"version":1,"sections":[{",".join(sections)}]}}\n'


def expect_table(home):
    table = TABLE.replace("~", "\N{REPLACEMENT CHARACTER}")
    expect(home, ["--section", "trash", "--section", "caches", "--section=downloads", "--min-size=2.5kB"], FOUND, table)
    control = scan(trial_home, home, [program, "--section", "caches"])
    assert b"com.vendor.\xef\xbf\xbd[2J" in control.stdout and b"\x1b" not in control.stdout, control.stdout


def expect_usage(home):
    for wrong in (["--clean"], ["--section", "mail"], ["--min-size", "12 parsecs"], ["--min-size", "99999999999GB"],
                  ["caches"]):
        expect(home, wrong, USAGE, "", told=b"brimvault-scan: ")
    for asked, answer in (("--help", b"--min-size <SIZE>"), ("--version", b"brimvault-scan ")):
        ended = scan(trial_home, home, [program, asked])
        assert ended.returncode == FOUND and answer in ended.stdout and not ended.stderr, ended
    written = scan(trial_home, home, ["sh", "-c", f"exec '{program}' --json >/dev/full"])
    assert written.returncode == INCOMPLETE and b"could not be written" in written.stderr, written


def expect_refusal(home):
    """The downloads folder leads to the home folder: it is not looked into, and the rest is printed."""
    downloads = os.path.join(home, "Downloads")
    os.rename(downloads, downloads + "-elsewhere")
    os.symlink(home, downloads)
    expect(home, ["--json", "--section", "downloads", "--section", "logs"], INCOMPLETE,
           json(LOGS, section("downloads", 0)), told=b"it is your home folder")


def expect_interrupt(home, folder):
    """The caches lie on a volume that does not answer."""
    number = os.path.join(folder, "number")
    environment = english(LD_PRELOAD=silent_folder, BRIMVAULT_SILENT_FOLDER=os.path.join(home, "Library/Caches"))
    command = [trial_home, home, sys.executable, "-c", STARTER, number, program, "--json"]
    with subprocess.Popen(command, stdout=subprocess.PIPE, env=environment) as running:
        try:
            await_handler(running, number)
            time.sleep(0.5)  # by then it waits for the volume
            os.kill(int(open(number).read()), signal.SIGINT)
            printed = running.communicate(timeout=10)[0]
        finally:
            if running.poll() is None:
                os.kill(int(open(number).read()), signal.SIGKILL)
    assert running.returncode == INTERRUPTED and not printed, (running.returncode, printed)


def expect_silent_volume_passed_over(home):
    """A volume that does not answer is mounted where a rule looks: nobody asks it anything."""
    place = os.path.join(home, ".npm")
    os.mkdir(place)
    mounted = ["unshare", "--mount", "sh", "-c", 'mount -t tmpfs none "$0" && exec "$@"', place]
    if subprocess.run([*mounted, "true"], capture_output=True).returncode != 0:
        print("No volume can be mounted: not tried.")
        return
    silent = ["env", f"LD_PRELOAD={silent_folder}", f"BRIMVAULT_SILENT_FOLDER={place}"]
    command = [*mounted, *silent, trial_home, home, program, "--json", "--section", "caches"]
    ended = subprocess.run(command, stdout=subprocess.PIPE, env=english(), timeout=30)
    expect_text(home, ended.stdout, json(CACHES))


def await_handler(running, number):
    deadline = time.monotonic() + 30
    while not os.path.exists(number) or not heeds_interrupts(open(number).read()):
        assert running.poll() is None and time.monotonic() < deadline, running.returncode
        time.sleep(0.05)


def heeds_interrupts(number):
    """Whether the process is the scan and has a handler for the signal."""
    status = dict(line.split(":", 1) for line in open(f"/proc/{number}/status"))
    return "brimvault" in status["Name"] and int(status["SigCgt"], 16) & 1 << signal.SIGINT - 1


with tempfile.TemporaryDirectory() as made:
    place = os.path.realpath(made)
    user = os.path.join(place, "home")
    make_home(os.fsencode(user))
    expect(user, ["--json"], FOUND, json(CACHES, LANGUAGES, LOGS, DOWNLOADS, TRASH))
    expect(user, ["--json", "--section", "caches", "--min-size", "3000"], FOUND,
           json(section("caches", 7000, CAFE, HUNDRED)))
    expect(user, ["--json", "--section", "trash", "--min-size", "1MB"], NOTHING, json(section("trash", 0)))
    expect_table(user)
    expect_usage(user)
    expect_interrupt(user, place)
    expect_silent_volume_passed_over(user)
    expect_refusal(user)
print("It printed what there is.")
