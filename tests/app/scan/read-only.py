#!/usr/bin/python3
"""The scan, and whatever it starts, changes no file: read-only.py PROGRAM TRIAL-HOME.

Its system calls are looked at while it scans a home with damaged settings, for a user of a desktop whose keyboard
layouts are asked of dconf, and without a runtime folder, where dconf would make a file in the home.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

from home import english, make_home, scan, settings_of, write

program, trial_home = sys.argv[1:]
WHOLE = re.compile(r"(unlink|rmdir|rename|truncate|mkdir|mknod|link|chmod|chown|utime|setxattr|removexattr|creat|"
                   r"fallocate|copy_file_range|sendfile)\w*\(")
OPENED = re.compile(r'open(?:at2?)?\(.*(?:O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|O_TMPFILE)')
NOWHERE = '"/dev/null'  # nothing can be below it either


def skip(reason):
    print(reason)
    sys.exit(77)


def fingerprint(home):
    found = {}
    for folder, folders, files in os.walk(os.fsencode(home)):
        for path in (os.path.join(folder, name) for name in folders + files):
            status = os.lstat(path)
            found[path] = (status.st_mode, status.st_ino, status.st_size, status.st_mtime_ns, status.st_ctime_ns)
    return found


def changes(log):
    """The calls that change a file, or would."""
    with open(log, errors="replace") as lines:
        for line in lines:
            call = re.sub(r"^\d+ +", "", line)
            if NOWHERE not in line and (WHOLE.match(call) or OPENED.match(call)):
                yield line


if shutil.which("strace") is None:
    skip("there is no strace")
if subprocess.run(["strace", "-f", "true"], stderr=subprocess.DEVNULL).returncode != 0:
    skip("No process may trace another here.")
with tempfile.TemporaryDirectory() as made:
    folder = os.path.realpath(made)
    home, log = os.path.join(folder, "home"), os.path.join(folder, "log")
    make_home(os.fsencode(home))
    write(settings_of(os.fsencode(home)), b"[General]\nLK_fr=true\n\0")
    write(os.fsencode(os.path.join(home, ".config/dconf/user")), b"")
    before = fingerprint(home)
    traced = ["strace", "-f", "-s", "4096", "-o", log, "-e", "trace=%file,%desc,clone,clone3,execve"]
    # The runtime folder of the trial is taken away again.
    command = [*traced, "env", "-u", "XDG_RUNTIME_DIR", "-u", "DBUS_SESSION_BUS_ADDRESS", program, "--json"]
    ended = scan(trial_home, home, command, env=english(XDG_CURRENT_DESKTOP="GNOME"))
    assert ended.returncode == 0 and not ended.stderr, ended
    calls = open(log, errors="replace").read()
    for looked_into in (f"{home}/Library/Caches", f"{home}/.config/com.quorvel.brimvault/defaults.ini", "/bin/sh"):
        assert looked_into in calls, looked_into
    found = list(changes(log))
    assert not found, "".join(found)
    assert fingerprint(home) == before
print("Nothing was changed.")
