#!/usr/bin/python3
"""What brimvault-scan finds on a whole desktop: desktop.py PROGRAM TRIAL-HOME SAMPLE-HOME GOLDEN-LIST."""

import json
import os
import subprocess
import sys
import tempfile

from home import scan

program, trial_home, sample_home, golden = sys.argv[1:]
# An application from Flatpak runs: this very process.
RUNNING = """
instance=$XDG_RUNTIME_DIR/.flatpak/1
mkdir -p "$instance"
printf '[Application]\\nname=org.example.Running\\n' >"$instance/info"
printf '%s' "$$" >"$instance/pid"
exec "$@"
"""
IMAGE = {
    ".var/app/org.example.Image/cache/fontconfig",
    ".var/app/org.example.Image/cache/pypoetry/cache",
    ".var/app/org.example.Image/cache/tmp/old",
    ".var/app/org.example.Image/cache/x",
    ".var/app/org.example.Image/.cache/x",
}


def line(item):
    path = os.path.relpath(item["path"], home)
    ticked = "ticked" if item["ticked"] else "unticked"
    return f"{item['rule']} {path} {item['bytes']} {ticked}{' admin' if item['admin'] else ''} {item.get('note', '-')}"


with tempfile.TemporaryDirectory() as made:
    home = os.path.join(os.path.realpath(made), "home")
    subprocess.run([sample_home, home, "--linux-desktop"], check=True, stdout=subprocess.DEVNULL)
    ended = scan(trial_home, home, ["sh", "-c", RUNNING, "sh", program, "--json", "--section", "caches",
                                    "--section", "logs"])
    assert ended.returncode == 0 and not ended.stderr, ended.stderr
    items = [item for section in json.loads(ended.stdout)["sections"] for item in section["items"]]
    assert not [item for item in items if not item["path"].startswith(home + "/")]
    # The sample home has caches and logs of its own in the Library folder.
    found = {line(item) for item in items if f"{home}/Library/" not in item["path"]}
    with open(golden) as lines:
        expected = {text for text in lines.read().splitlines() if not text.startswith("#")}
    assert found == expected, found ^ expected
    by_path = {(item["rule"], os.path.relpath(item["path"], home)): item for item in items}
    image = by_path["flatpak.cache", ".var/app/org.example.Image/cache"]
    assert {os.path.relpath(target, home) for target in image["targets"]} == IMAGE, image["targets"]
    running = by_path["flatpak.cache", ".var/app/org.example.Running/cache"]
    assert running["noteArgument"] == "org.example.Running", running
print("It found what there is.")
