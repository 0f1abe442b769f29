# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The examples of docs/json.md, run on simulated devices: velkctl prints each there, or a document that it is a part of."""
import concurrent.futures
import json
import re
import shutil
import subprocess
import sys
import unittest

import tables

EXAMPLES = [json.loads(text) for text in re.findall(r"^```json\n(.*?)^```$", tables.read("docs/json.md"), re.S | re.M)]

# The shell lines before each example, and its command. Without the adapter, eth0 restarts within a second.
ALONE = "velk-sandbox adapter out"
WAITING = f"{ALONE}; velkctl apply eth0.address=192.168.0.77 --confirm-within 300 --quiet"
SCRIPTS = [
    ("own=$(cat /run/velk-sandbox/wland.pid); kill $own; while kill -0 $own 2>/dev/null; do sleep 0.01; done", "get eth1.ssid"),
    ("", "get eth0.method eth0.dns"),
    ("", "show eth1"),
    ("", "set eth0.gateway 192.168.0.1"),
    ("", "set eth0.address=192.168.0.9 eth0.netmask=255.255.255.0"),
    ("", "set eth0.dns 10.0.0.53 --dry-run"),
    (ALONE, "restart eth0"),
    (f"{ALONE}; sed -i '/^iface eth0/s/static/dhcp/' /etc/network/interfaces; ip addr flush dev eth0",
     "apply eth0.method=static eth0.address=192.168.0.10 --confirm-within 300"),
    ("""echo '{"schema": 1, "settings": {"eth0.apipa": "yes"}}' >net.json""", "import net.json"),
    ("velk-sandbox cable out; velkctl set eth0.gateway none", "export"),
    ("velkctl export >net.json; velkctl set eth0.address 192.168.0.99", "diff net.json"),
    ("", "list"),
    ("", "describe eth1.psk"),
    ("", "explain -3"),
    ("", "explain 3"),
    ("velkctl set eth0.address 192.168.0.99", "status"),
    ("sed -i /ntpdate/d /var/cron/tabs/root", "doctor"),
    ("", "metrics"),
    ("", "selftest"),
    ("", "capture device.tar"),
    (WAITING, "confirm"),
    (WAITING, "extend 540"),
    (WAITING, "revert"),
    (WAITING, "pending"),
    (f"{ALONE}; velkctl set eth0.address 192.168.0.77", "undo"),
    ("velkctl set eth0.address 192.168.0.77", "history"),
    ("""printf '%s\\n' '#!/bin/sh' 'echo $$ >/tmp/started' 'exec sleep 60' >/tmp/snmpd; chmod +x /tmp/snmpd
        mount --bind /tmp/snmpd /etc/init.d/snmpd
        velkctl set location there & own=$!; while ! [ -s /tmp/started ]; do sleep 0.01; done
        kill -9 $own $(cat /tmp/started); umount /etc/init.d/snmpd
        flock /var/tmp/vklib_lock true; flock /var/libvelk/journal/lock true""", "recover"),
    ("velkctl set eth0.dns 192.168.0.1", "call get 108 eth0"),
]

# Members that have another value on each device or in each run.
VARIABLE = {"time", "seconds", "seconds_left", "problems", "warnings"}
# Members with some of the keys only.
IN_PART = {"settings", "facts", "labels"}


def problem(example, printed, path="document"):
    """Returns the first difference between an example and a document; empty if none."""
    name = path.split(".")[-1]
    if type(example) is not type(printed):
        return f"{path}: {example!r} is {printed!r}"
    if isinstance(example, dict):
        found = [key for key in printed if key in example] if name in IN_PART else list(printed)
        if found != list(example):
            return f"{path} has {list(example)}, not {found}"
        return next(filter(None, (problem(example[key], printed[key], f"{path}.{key}") for key in example)), "")
    if isinstance(example, list):
        return problem_of_lists(example, printed, path)
    return "" if name in VARIABLE or example == printed else f"{path}: {example!r} is {printed!r}"


def problem_of_lists(example, printed, path):
    """Each item of an example has to be in the document, in the same order; none in an empty one."""
    if bool(example) != bool(printed):
        return f"{path}: {example} is {printed}"
    rest = iter(printed)
    for item in example:
        problems = []
        for one in rest:
            problems.append(problem(item, one, path))
            if not problems[-1]:
                break
        else:
            return problems[0] if len(problems) == 1 else f"{path} lacks {item}"
    return ""


def run(script):
    """Runs the command of an example on a device of its own."""
    before, command = script
    lines = f"cd /tmp; {{ {before or ':'}\n}} >/dev/null 2>&1; velkctl {command} --json"
    finished = subprocess.run([tables.BUILD / "velk-sandbox", "--quiet", "--", "sh", "-c", lines], capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, timeout=60, check=False)
    return json.loads(finished.stdout) if finished.stdout else finished.stderr


class Examples(tables.TestCase):
    def test_each_has_a_script(self):
        verbs = [command.split()[0] for _, command in SCRIPTS]
        self.assertEqual([example["verb"] for example in EXAMPLES], verbs)

    def test_velkctl_prints_each(self):
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            for number, printed in enumerate(pool.map(run, SCRIPTS)):
                with self.subTest(number=number, command=SCRIPTS[number][1]):
                    self.assertEqual(problem(EXAMPLES[number], printed), "")


if __name__ == "__main__":
    if not shutil.which("ifup", path="/usr/sbin:/sbin"):
        print("SKIPPED: ifup is not installed")
        sys.exit(77)
    made = subprocess.run([tables.BUILD / "velk-sandbox", "--quiet", "true"], capture_output=True, text=True, check=False)
    if made.returncode:
        print(f"SKIPPED: no sandbox here: {made.stderr}")
        sys.exit(77)
    unittest.main()
