"""A small made-up home folder, and the scan of it."""

import os
import subprocess

APPLICATION = b"Applications/Reader.app"
PROPERTIES = b"""<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>com.vendor.reader</string></dict></plist>
"""
# Path to length.
FILES = {
    b"Library/Caches/com.vendor.100%/data": 3000,
    b"Library/Caches/com.vendor.caf\xe9%/data": 4000,
    b"Library/Caches/com.vendor.empty": 0,
    b"Library/Caches/com.vendor.\x1b[2J\"\\": 2000,
    b"Library/Caches/com.vendor.twin-b": 2000,
    b"Library/Caches/com.vendor.twin-a": 2000,
    b"Library/Logs/sync.log": 700,
    b"Downloads/film.iso": 1_500_000,
    b".local/share/Trash/files/old.txt": 300,
    APPLICATION + b"/Contents/Resources/en.lproj/texts": 100,
    APPLICATION + b"/Contents/Resources/de.lproj/texts": 200,
    APPLICATION + b"/Contents/Resources/fr.lproj/texts": 400,
    APPLICATION + b"/Contents/Resources/it.lproj/texts": 800,
}


def make_home(home):
    """home is bytes. French is kept by the user's own choice."""
    for name, length in FILES.items():
        write(os.path.join(home, name), b"x" * length)
    write(os.path.join(home, APPLICATION, b"Contents/Info.plist"), PROPERTIES)
    write(settings_of(home), b"[General]\nLK_fr=true\n")


def settings_of(home):
    return os.path.join(home, b".config/com.quorvel.brimvault/defaults.ini")


def write(file, contents):
    os.makedirs(os.path.dirname(file), exist_ok=True)
    with open(file, "wb") as stream:
        stream.write(contents)


def english(**more):
    """The environment of a user who reads English and has no desktop."""
    desktop = ("XDG_CURRENT_DESKTOP", "LC_ALL", "LC_MESSAGES")
    kept = {name: value for name, value in os.environ.items() if name not in desktop}
    return {**kept, "LANG": "C.UTF-8", "LANGUAGE": "en", **more}


def scan(trial_home, home, command, **options):
    """What the command, which begins with the program, printed and how it ended."""
    options.setdefault("env", english())
    return subprocess.run([trial_home, home, *command], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120,
                          **options)
