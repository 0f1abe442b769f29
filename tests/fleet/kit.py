# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Simulated devices, and runs of ansible-playbook on them. FLEET_BUILD is the build folder."""

import atexit
import itertools
import json
import os
import pathlib
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("FLEET_BUILD", SOURCE / "build/release"))
SANDBOX = str(BUILD / "velk-sandbox")
COLLECTIONS = SOURCE / "fleet"
FOLDER = tempfile.TemporaryDirectory(prefix="fleet-", dir="/tmp")
TMP = pathlib.Path(FOLDER.name)
LONGEST_START = 60
KEY = "correct-horse-battery"

# The files of the device, with their times: a check must not even write the same text again.
ALL_FILES = (
    "find /etc/network /etc/resolv.dnsmasq.conf /etc/dhclient.conf /etc/dhclient-exit-hooks /sbin/dhclient-script "
    "/var/cron/tabs /var/libvelk /usr/local/share /tmp /var/tmp -type f "
    "-printf '%p %T@ %C@ %s %m\\n' -exec sha256sum {} + | sort"
)


# A test that is ended ends its devices.
signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(128 + number))


class Device:
    """A simulated device. It ends with end()."""

    def __init__(self, name, start="true"):
        self.name = name
        command = [SANDBOX, "--quiet", "--name", name, "--", "sh", "-c", f"{start}; exec sleep infinity"]
        self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, cwd=BUILD)

    def run(self, command, check=True, text=""):
        """Runs a line of the shell on the device, with a text as its input, and returns its output."""
        arguments = [SANDBOX, "enter", "--name", self.name, "--", "sh", "-c", command]
        return subprocess.run(arguments, input=text, capture_output=True, text=True, check=check).stdout

    def write_program(self, path, line):
        """Writes a script of one line on the device."""
        self.run(f"cat >{path} && chmod +x {path}", text=f"#!/bin/sh\n{line}\n")

    def value(self, name):
        return self.run(f"velkctl get --value {name}").strip()

    def end(self):
        self.process.terminate()
        self.process.wait()


def wait_until(condition, message, seconds=LONGEST_START):
    ends = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > ends:
            raise AssertionError(message)
        time.sleep(0.1)


class Fleet:
    """Devices with names of their own, so that others of this machine are left alone."""

    # The name of a device is free some time after its end.
    numbers = itertools.count(1)

    def __init__(self, count, start="true"):
        self.prefix = f"fleet{os.getpid()}-{next(self.numbers)}-"
        self.devices = [Device(f"{self.prefix}{number:02}", start) for number in range(1, count + 1)]
        atexit.register(self.end)
        wait_until(self._all_listed, "not all devices have started")

    def _all_listed(self):
        listed = subprocess.run([SANDBOX, "list"], capture_output=True, text=True, check=True).stdout.split()
        return all(device.name in listed for device in self.devices)

    def names(self):
        return [device.name for device in self.devices]

    def end(self):
        for device in self.devices:
            device.end()

    def inventory(self):
        path = TMP / "devices.sandbox.yml"
        path.write_text(f"plugin: velk.device.sandbox\nprefix: {self.prefix}\nprogram: {SANDBOX}\n")
        return path


class Run:
    """The output of a run, its results, and the processor time that it took."""

    def __init__(self, status, output, results, seconds):
        self.status = status
        self.output = output
        self.results = results
        self.seconds = seconds

    def of(self, kind, task=None):
        rows = [row for row in self.results if row["kind"] == kind]
        return {row["host"]: row["result"] for row in rows if task is None or row["task"] == task}

    def failed(self):
        return self.of("failed")

    def changed(self, task=None):
        return sorted(host for host, result in self.of("ok", task).items() if result.get("changed"))


def environment(**more):
    return {
        "PATH": f"{BUILD}:{os.environ['PATH']}",
        "HOME": str(TMP),
        "LC_ALL": "C.UTF-8",
        "ANSIBLE_COLLECTIONS_PATH": str(COLLECTIONS),
        "ANSIBLE_LOCAL_TEMP": str(TMP / "local"),
        "ANSIBLE_CALLBACK_PLUGINS": str(SOURCE / "tests/fleet/callback"),
        "ANSIBLE_CALLBACKS_ENABLED": "results",
        "ANSIBLE_INVENTORY_ENABLED": "velk.device.sandbox,yaml,host_list",
        "ANSIBLE_RETRY_FILES_ENABLED": "False",
        "PYTHONDONTWRITEBYTECODE": "1",
        "ANSIBLE_NOCOLOR": "1",
        "FLEET_RESULTS": str(TMP / "results"),
        **more,
    }


def playbook(path, inventory, *words, forks=5, **more):
    """Runs a playbook, and returns its Run."""
    results = TMP / "results"
    results.write_text("")
    command = ["ansible-playbook", "-i", str(inventory), "-f", str(forks), *words, str(path)]
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run(
        command, input="", capture_output=True, text=True, check=False, cwd=TMP, env=environment(**more)
    )
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    seconds = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
    rows = [json.loads(line) for line in results.read_text().splitlines()]
    return Run(done.returncode, done.stdout + done.stderr, rows, seconds)


def write_playbook(tasks, name="play.yml"):
    """Writes a playbook with these tasks and returns its path."""
    path = TMP / name
    path.write_text(f"- name: Test\n  hosts: devices\n  gather_facts: false\n  tasks:\n{indent(tasks, 4)}")
    return path


def settings_task(settings, **options):
    """Returns a task that applies settings, given as JSON."""
    lines = ["- name: Apply", "  velk.device.settings:", f"    settings: {json.dumps(settings)}"]
    lines += [f"    {name}: {json.dumps(value)}" for name, value in options.items()]
    return "\n".join(lines) + "\n"


def indent(text, columns):
    return "".join(" " * columns + line + "\n" for line in text.splitlines())


def shell(*words):
    return " ".join(shlex.quote(str(word)) for word in words)


def remove(folder):
    shutil.rmtree(folder, ignore_errors=True)
