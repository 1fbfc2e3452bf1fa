"""Remembers in what a check found nothing, so that only what has changed is looked at again.

Remembered are stamps: empty files below ~/.cache, named after all that the result depends on, kept for a month.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import time

MAX_AGE = 30 * 24 * 3600  # seconds
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
INCLUDE_FOLDERS = [pathlib.Path(name) for name in ("src", "tests", ".")]


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def library_versions():
    """The packages whose headers are included."""
    return output("dpkg-query", "-W", "*-dev", "libstdc++*", "*-dev-*")


def flags_of(command):
    """The words of a compile command that decide what the compiler makes of a text."""
    words = shlex.split(command)
    is_flag = [word.startswith(("-D", "-I", "-W", "-std=", "-isystem", "-f")) for word in words]
    return [word for n, word in enumerate(words) if is_flag[n] or words[n - 1] == "-isystem"]


@functools.lru_cache(maxsize=None)
def text_and_includes(file):
    """What the file says, and the files of ours that it includes, as far as they are there."""
    text = file.read_text()
    places = [file.parent, *INCLUDE_FOLDERS]
    found = ([place / name for place in places if (place / name).is_file()][:1] for name in INCLUDE.findall(text))
    return text, [pathlib.Path(os.path.normpath(one)) for places_of_one in found for one in places_of_one]


def everything_included(source):
    seen, pending = {}, [pathlib.Path(source)]
    while pending:
        file = pending.pop()
        if file not in seen:
            seen[file], included = text_and_includes(file)
            pending.extend(included)
    return sorted((str(file), text) for file, text in seen.items())


class CheckedBefore:
    """The memory of one check. May be used by several threads at once."""

    def __init__(self, name, surroundings):
        """surroundings: texts that all results depend on, such as the version of the checking program."""
        self.surroundings = surroundings
        cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache")
        self.folder = cache / "brimvault" / name
        self.folder.mkdir(parents=True, exist_ok=True)
        for old in self.folder.iterdir():
            if time.time() - old.stat().st_mtime > MAX_AGE:
                old.unlink(missing_ok=True)

    def check(self, file, flags, command, text=None):
        """Whether the command finds nothing in the file, now or before; prints what it finds."""
        seen = json.dumps([self.surroundings, file, everything_included(file), flags]).replace(os.getcwd(), "")
        stamp = self.folder / hashlib.sha256(seen.encode()).hexdigest()
        if not stamp.exists():
            result = subprocess.run(command, input=text, capture_output=True, text=True)
            if result.returncode != 0:
                print(file, result.stdout, result.stderr, sep="\n", flush=True)
                return False
        stamp.touch()
        return True


def check_all(check, files):
    """Calls the check for each file, on all processors; whether each returned true."""
    # The largest first, so that no processor is left with one at the end.
    ordered = sorted(files, key=lambda file: -os.path.getsize(file))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return all(list(pool.map(check, ordered)))
