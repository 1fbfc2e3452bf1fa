#!/usr/bin/python3
"""A rule of places that says nothing sensible ends the build: senseless-rules.py SOURCES."""

import pathlib
import shutil
import subprocess
import sys
import tempfile

sources = pathlib.Path(sys.argv[1])
GOOD = {"id": '"x"', "base": '"HOME"', "patterns": '[".x/cache"]', "answer": '"ticked"', "about": '"Something."'}
# What is changed of a good rule; None takes a field away.
SENSELESS = [
    {"id": None},
    {"id": '"X y"'},
    {"base": '"ROOT"'},
    {"base": None},
    {"patterns": "[]"},
    {"patterns": '["*"]'},
    {"patterns": '["*/cache"]'},
    {"patterns": '["/etc"]'},
    {"patterns": '["../x"]'},
    {"patterns": '[".x/../y"]'},
    {"patterns": '[".x//y"]'},
    {"patterns": '[".x/**"]'},
    {"patterns": '["."]', "shape": '"children"'},
    {"patterns": '["Documents"]'},
    {"patterns": '[".x/cache", ".x/cache"]'},
    {"base": '"cache"', "patterns": '["a/b/c"]'},
    {"base": '"cache"', "patterns": '["*"]'},
    {"answer": '"perhaps"'},
    {"answer": '"unticked"'},
    {"answer": '"unticked"', "note": '"unknown"'},
    {"note": '"work"'},
    {"about": None},
    {"about": '"no sentence"'},
    {"evidence": '["new"]'},
    {"shape": '"tree"'},
    {"row": '".y"'},
    {"running": '"flatpak"'},
    {"keep": '["a/b"]', "shape": '"children"'},
    {"ticked": '"yes"'},
    {"title": '"a\\u202eb"'},
]
GRAMMARS = r"""[grammar]
good = '^a\.log$'
open = 'a\.log$'
two = '^a$|^b$'
wrong = '^a($'
"""
LOGS = {**GOOD, "patterns": '["*/logs"]', "shape": '"files"', "grammar": '"good"', "depth": "1"}
SENSELESS_LOGS = [
    {"grammar": None},
    {"grammar": '"none"'},
    {"grammar": '"open"'},
    {"grammar": '"two"'},
    {"grammar": '"wrong"'},
    {"base": '"anywhere"', "shape": None, "grammar": None, "depth": None, "patterns": '["x"]'},
    {"base": '"anywhere"', "shape": None, "grammar": None, "depth": None, "answer": '"spared"', "patterns": '["X"]'},
    {"depth": "5"},
    {"depth": "true"},
    {"patterns": '["."]'},
    {"shape": '"children"', "depth": None},
    {"base": '"system"', "shape": None, "grammar": None, "depth": None, "patterns": '["var/crash"]'},
]


def rows(*rules):
    return "\n".join("[[rule]]\n" + "".join(f"{key} = {value}\n" for key, value in rule.items()) for rule in rules)


with tempfile.TemporaryDirectory() as made:
    root = pathlib.Path(made)
    (root / "scripts").mkdir()
    (root / "resources/places").mkdir(parents=True)
    script = shutil.copy(sources / "scripts/compile-places", root / "scripts")

    def compiles(text):
        (root / "resources/places/caches.toml").write_text(text)
        (root / "out.cpp").unlink(missing_ok=True)
        ended = subprocess.run([sys.executable, script, "caches", root / "out.cpp"], capture_output=True, text=True)
        assert "Traceback" not in ended.stderr, ended.stderr
        assert (ended.returncode == 0) == (root / "out.cpp").exists()
        return ended.returncode == 0

    assert compiles(rows(GOOD))
    for change in SENSELESS:
        changed = {key: value for key, value in {**GOOD, **change}.items() if value is not None}
        assert not compiles(rows(changed)), change
    assert not compiles(rows(GOOD, {**GOOD, "patterns": '[".y/cache"]'})), "one identifier for two rules"
    assert not compiles(rows(GOOD, {**GOOD, "id": '"y"'})), "one pattern in two rules"
    assert not compiles("[[rule]\n")
    assert compiles(GRAMMARS + rows(LOGS))
    for change in SENSELESS_LOGS:
        changed = {key: value for key, value in {**LOGS, **change}.items() if value is not None}
        assert not compiles(GRAMMARS + rows(changed)), change
print("None of them is compiled.")
