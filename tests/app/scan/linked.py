#!/usr/bin/python3
"""Nothing that removes, renames, shortens or makes a file is linked into the scan: linked.py SCAN REMOVER.

What its libraries have counts no more than what they have for any program: these calls are not asked of them. The
remover, which does remove, shows that such calls would be found.
"""

import re
import subprocess
import sys

CALLS = re.compile(r"^(remove|unlink(at)?|rmdir|rename(at2?)?|f?truncate(64)?|mk(dir|nod)(at)?|mk[od]?s?temp(64)?|"
                   r"creat(64)?|(sym)?link(at)?|syscall_unlink)$")
LIBRARIES = re.compile(r"^(std::filesystem::(__cxx11::)?(remove|rename|resize_file|create_|copy|permissions)|"
                       r"Q(Temporary|Save|Lock)File\b|QFile::(remove|rename|link|copy|resize|moveToTrash)|"
                       r"QDir::(remove|rename|rmdir|rmpath|mkdir|mkpath)|QSettings\b|g_(remove|rename|unlink|mkdir)|"
                       r"g_file_(delete|trash|move|replace|create|set_contents)|g_settings_set)")


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def changing(program):
    names = (line.split(maxsplit=1)[1] for line in output("nm", "-DC", "--undefined-only", program).splitlines())
    plain = {name.split("@")[0] for name in names}
    return sorted(name for name in plain if CALLS.match(name) or LIBRARIES.match(name))


scan, remover = sys.argv[1:]
if "__gcov_" in output("nm", scan):
    print("There is no use in looking at what gcov links: it writes files of its own.")
    sys.exit(77)
assert "unlinkat" in changing(remover), changing(remover)
assert not changing(scan), changing(scan)
needed = re.findall(r"\(NEEDED\).*\[(.*)\]", output("readelf", "-d", scan))
assert any("Qt6Core" in library for library in needed), needed
assert not [library for library in needed if "Qt6" in library and "Qt6Core" not in library], needed
print("Nothing that changes files is linked.")
