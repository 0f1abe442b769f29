#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""measure.py [--ssh] [COUNT...] - prints the time and the memory of a run on COUNT simulated devices (default:
1 20 100), for docs/fleet.md. The processor time is that of the engine, of its connections and of the devices together; with
--ssh, it is without the server and velkctl on the devices."""

import os
import resource
import sys
import time

import kit
import ssh_test

FORKS = 10
SETTINGS = {"eth0.dns": ["10.0.0.1"], "location": "Hall 7"}


def peak_megabytes():
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024


def measure(name, path, inventory, count, *words):
    begin = time.monotonic()
    run = kit.playbook(path, inventory, *words, forks=FORKS)
    seconds = time.monotonic() - begin
    if run.status != 0:
        sys.exit(run.output)
    print(
        f"{count:4} {name:18} {seconds:7.1f} s  {run.seconds:7.1f} s processor  "
        f"{run.seconds / count * 1000:6.0f} ms a device  {peak_megabytes()} MB",
        flush=True,
    )


def devices(count, over_ssh):
    """Returns an inventory of new devices, and the function that ends them."""
    if not over_ssh:
        fleet = kit.Fleet(count)
        return fleet.inventory(), fleet.end
    ssh_test.COUNT = count
    ssh_test.SshTest.setUpClass()
    return ssh_test.SshTest.inventory, ssh_test.SshTest.doClassCleanups


def main():
    words = sys.argv[1:]
    over_ssh = "--ssh" in words
    print(f"{os.cpu_count()} processors, {FORKS} forks")
    apply = kit.write_playbook(kit.settings_task(SETTINGS, restart="never"), "apply.yml")
    facts = kit.write_playbook("- name: Facts\n  velk.device.facts:\n", "facts.yml")
    for count in [int(word) for word in words if word != "--ssh"] or [1, 20, 100]:
        inventory, end = devices(count, over_ssh)
        measure("check", apply, inventory, count, "--check")
        measure("apply", apply, inventory, count)
        measure("apply again", apply, inventory, count)
        measure("facts", facts, inventory, count)
        end()


main()
