#!/usr/bin/python3
"""The languages of real applications, as an assistive client sees them: languages.py SAMPLE-HOME PROGRAM TRIAL-HOME.

Applications of another desktop, which Debian packages as bundles with localizations inside, are put into the user's
own Applications folder. What the program shows of them is compared with what du counts, whatever languages are kept.
The user reads German, and so do all texts of the program.
77 and the reason where they are missing.
"""

import collections
import os
import shutil
import subprocess
import sys
import tempfile

from client import Atspi, Moved, Window, act, actions, find, has_state, wait_for
from trial import make_home, running, size_text

BUNDLES = "/usr/share/GNUstep"
NAMES = ("AddressManager.app", "Cynthiune.app", "Terminal.app")
SECTION = "Sprachressourcen"
GERMAN_USER = {"LANG": "de_DE.UTF-8", "LC_ALL": "de_DE.UTF-8", "LANGUAGE": "de:en"}
# What the names that stand in the bundles mean.
IDENTIFIERS = {"English": "en", "German": "de", "French": "fr", "pt_BR": "pt", "pt_PT": "pt-PT", "zh_CN": "zh-Hans"}
FRENCH, PORTUGUESE = "Französisch", "Portugiesisch (Portugal)"


def counted_by_du(folder):
    """Bytes of all that is no folder."""
    listed = subprocess.run(["find", folder, "!", "-type", "d", "-print0"], check=True, capture_output=True).stdout
    if not listed:
        return 0
    counted = subprocess.run(["du", "-bc", "--files0-from=-"], input=listed, check=True, capture_output=True)
    return int(counted.stdout.split()[-2])


def unneeded(bundle, kept):
    """The localizations that are not kept, with none left out: in these bundles English stands in every folder."""
    groups = collections.defaultdict(set)
    for folder, folders, _ in os.walk(bundle):
        for name in folders:
            stem, extension = os.path.splitext(name)
            if extension == ".lproj" and stem != "Base":
                groups[folder].add(name)
    going = []
    for folder, names in groups.items():
        staying = {name for name in names if IDENTIFIERS.get(name[: -len(".lproj")], name[: -len(".lproj")]) in kept}
        assert staying, folder
        going += [os.path.join(folder, name) for name in names - staying]
    return going


def expected_rows(home, kept):
    rows = {}
    for name in os.listdir(os.path.join(home, "Applications")):
        going = unneeded(os.path.join(home, "Applications", name), kept)
        size = sum(map(counted_by_du, going))
        stems = (os.path.basename(path).removesuffix(".lproj") for path in going)
        languages = {IDENTIFIERS.get(stem, stem) for stem in stems}
        if size > 0:
            rows[name[: -len(".app")]] = (size_text(size), str(len(languages)))
    return rows


def shown_rows(window):
    table = window.table(SECTION)
    rows = {}
    for row in range(table.get_n_rows()):
        cells = [table.get_accessible_at(row, column) for column in (2, 3, 4)]
        if None in cells:
            raise Moved
        name, size, count = (cell.get_name() for cell in cells)
        rows[name] = (size, count)
    return rows


def expect_rows(window, home, kept):
    right = expected_rows(home, kept)
    try:
        wait_for("the rows", lambda: shown_rows(window) == right)
    except AssertionError:
        raise AssertionError(f"{shown_rows(window)} is not {right}") from None


def languages(window):
    """Name to check cell of every row of the drawer, in order."""
    table = wait_for("the drawer", lambda: find(window.frame, "table", "Sprachen")).get_table_iface()
    cells = [(table.get_accessible_at(row, 2), table.get_accessible_at(row, 0)) for row in range(table.get_n_rows())]
    return {name.get_name(): check for name, check in cells}


def is_checked(window, name):
    return has_state(languages(window)[name], Atspi.StateType.CHECKED)


def paths_below(folder):
    return {os.path.join(where, name) for where, folders, files in os.walk(folder) for name in folders + files}


def journey(home):
    window = Window(sections="Bereiche")
    for section in ("Caches", "Protokolle", "Papierkorb"):
        act(window.section(section), "Toggle")
    window.press("Scan starten")
    wait_for("the end of the scan", lambda: window.is_enabled("Scannen"))
    window.show_section(SECTION)
    expect_rows(window, home, {"en", "de"})

    window.press("Sprachen")
    names = list(languages(window))
    assert names[:2] == ["Englisch", "Deutsch"], names
    assert [name for name in names if is_checked(window, name)] == ["Englisch", "Deutsch"], names
    assert "Toggle" not in actions(languages(window)["Englisch"]), "English can be given up"
    kept = {"en", "de"}
    for name, identifier in ((FRENCH, "fr"), (PORTUGUESE, "pt-PT"), ("Deutsch", "de")):
        act(languages(window)[name], "Toggle")
        kept ^= {identifier}
        wait_for(f"the check box of {name}", lambda: is_checked(window, name) == (identifier in kept))
        expect_rows(window, home, kept)

    folder = os.path.join(home, "Applications")
    before = paths_below(folder)
    going = [path for name in os.listdir(folder) for path in unneeded(os.path.join(folder, name), kept)]
    window.press("Bereinigen")
    window.answer("Löschen")
    wait_for("the end of the clean", lambda: window.is_enabled("Scannen") and window.section(SECTION).get_description())
    nothing = "Nichts Überflüssiges gefunden. "
    wait_for("an empty list", lambda: window.section(SECTION).get_description().startswith(nothing))
    right = {path for path in before if not any(path == gone or path.startswith(gone + "/") for gone in going)}
    assert paths_below(folder) == right, paths_below(folder) ^ right


def main():
    sample_home, program, trial_home = sys.argv[1:]
    missing = [name for name in NAMES if not os.path.isdir(os.path.join(BUNDLES, name))]
    if missing:
        print(f"skipped: {', '.join(missing)} not in {BUNDLES}")
        sys.exit(77)
    with tempfile.TemporaryDirectory() as folder:
        home = os.path.join(folder, "home")
        make_home(sample_home, home)
        for name in NAMES:
            shutil.copytree(os.path.join(BUNDLES, name), os.path.join(home, "Applications", name), symlinks=True)
        with running([trial_home, home, program], GERMAN_USER):
            journey(home)


main()
print("The assistive client saw what du counts, and the folders are as they should be.")
