#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Twenty simulated devices over ssh: a server in each device, which ssh reaches through a proxy command. No port
of the machine is open. For root only, because the server changes its user."""

import json
import os
import subprocess
import unittest

import kit

COUNT = 20
OLD_ADDRESS = "192.168.0.10"
PLAYBOOKS = kit.SOURCE / "fleet/playbooks"

# The server looks for the keys in the home folder of root, which belongs to the machine. The device has its own
# list of users. Without an adapter, a restart of eth0 takes a second.
START = (
    "mkdir -p /run/home/.ssh /run/programs && chmod 700 /run/home /run/home/.ssh && "
    "cp {public} /run/home/.ssh/authorized_keys && cp {host_key} /run/host_key && "
    "printf 'root:x:0:0:root:/run/home:/bin/sh\\n' >/run/passwd && mount --bind /run/passwd /etc/passwd && "
    "ip link set lo up; velk-sandbox adapter out && dropbear -E -s -p 22 -r /run/host_key -P /run/dropbear.pid "
    "2>/run/dropbear.log"
)

# As over the sandbox. Of the processor time of a device, only that of the connection counts here.
LONGEST_SECONDS_OF_A_DEVICE = 0.3


def new_address(number):
    return f"192.168.7.{100 + number}"


@unittest.skipUnless(os.geteuid() == 0, "only root may run the server of a device")
class SshTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # A folder that is visible on the devices, unlike /tmp.
        cls.keys = kit.BUILD / f"fleet-keys-{os.getpid()}"
        cls.keys.mkdir(mode=0o700)
        cls.addClassCleanup(kit.remove, cls.keys)
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", cls.keys / "user"], check=True)
        made = subprocess.run(
            ["dropbearkey", "-t", "ed25519", "-f", cls.keys / "host"], check=True, capture_output=True, text=True
        )
        cls.host_key = next(line for line in made.stdout.splitlines() if line.startswith("ssh-ed25519"))
        start = START.format(public=cls.keys / "user.pub", host_key=cls.keys / "host")
        cls.fleet = kit.Fleet(COUNT, start)
        cls.addClassCleanup(cls.fleet.end)
        for device in cls.fleet.devices:
            kit.wait_until(lambda device=device: device.run("cat /run/dropbear.pid", check=False), "no ssh server")
        # Each device is known by its name, at any address.
        known = "".join(f"{device.name} {cls.host_key}\n" for device in cls.fleet.devices)
        (cls.keys / "known_hosts").write_text(known)
        cls.inventory = kit.TMP / "ssh.yml"
        cls.write_inventory({})

    @classmethod
    def write_inventory(cls, addresses):
        """Writes the inventory. `addresses` has those of devices that have moved."""
        lines = ["devices:", "  vars:", "    ansible_connection: ssh", "    ansible_user: root"]
        lines += [
            f"    ansible_ssh_private_key_file: {cls.keys / 'user'}",
            f"    velk_device_program: {kit.BUILD / 'velkctl'}",
            "    new_netmask: 255.255.255.0",
            "    new_gateway: 192.168.7.1",
            "  hosts:",
        ]
        for number, device in enumerate(cls.fleet.devices, 1):
            proxy = kit.shell(kit.SANDBOX, "enter", "--name", device.name, "--", "busybox", "nc") + " %h 22"
            lines += [
                f"    {device.name}:",
                f"      ansible_host: {addresses.get(device.name, OLD_ADDRESS)}",
                f"      new_address: {new_address(number)}",
                f"      ansible_ssh_common_args: -o ControlPath=none -o UserKnownHostsFile={cls.keys / 'known_hosts'} "
                f"-o HostKeyAlias={device.name} -o ProxyCommand=\"{proxy}\"",
            ]
        cls.inventory.write_text("\n".join(lines) + "\n")

    def run_tasks(self, tasks, *words, **more):
        return kit.playbook(kit.write_playbook(tasks), self.inventory, *words, **more)

    def addresses(self):
        return [device.value("eth0.address") for device in self.fleet.devices]

    def test_1_check_mode_leaves_every_file_as_it_was(self):
        before = [device.run(kit.ALL_FILES) for device in self.fleet.devices]
        run = self.run_tasks(kit.settings_task({"eth0.dns": ["10.0.0.1"]}), "--check")
        self.assertEqual(run.changed(), self.fleet.names(), run.output)
        self.assertEqual([device.run(kit.ALL_FILES) for device in self.fleet.devices], before)

    def test_2_the_second_run_changes_nothing(self):
        tasks = kit.settings_task({"eth0.dns": ["10.0.0.1"], "location": "Hall 7"})
        first = self.run_tasks(tasks)
        self.assertEqual(first.changed(), self.fleet.names(), first.output)
        second = self.run_tasks(tasks)
        self.assertEqual(sorted(second.of("ok")), self.fleet.names(), second.output)
        self.assertEqual(second.changed(), [])
        self.assertLess(second.seconds / COUNT, LONGEST_SECONDS_OF_A_DEVICE)

    def test_3_no_line_of_the_most_verbose_output_has_the_key(self):
        # The wireless daemon does not run without an adapter, so the task fails after the key was sent.
        tasks = kit.settings_task({"eth1.psk": kit.KEY})
        run = self.run_tasks(tasks, "-vvvvv", "--diff", "-l", self.fleet.names()[0], ANSIBLE_DEBUG="1")
        self.assertIn("eth1.psk", run.failed()[self.fleet.names()[0]]["msg"])
        self.assertIn("SSH: EXEC", run.output)
        # A device that falls silent is given up after 210 s.
        self.assertIn("ServerAliveInterval=5 -o ServerAliveCountMax=42", run.output)
        self.assertNotIn(kit.KEY, run.output)

    def test_4_a_device_sent_to_a_wrong_network_is_back_by_itself(self):
        device = self.fleet.devices[0]
        files = device.run("cat /etc/network/interfaces")
        # Nobody looks for the device at its wrong address.
        run = self.run_tasks(
            kit.settings_task({"eth0.address": "192.168.99.9", "eth0.gateway": "192.168.99.1"}, confirm_within=15)
            + "- name: Confirm\n  velk.device.confirm:\n    addresses: [192.168.7.101]\n    reach_within: 6\n",
            "-l", device.name,
        )
        self.assertEqual(sorted(run.failed()), [device.name], run.output)
        self.assertIn("no confirmation within 6 s at 192.168.7.101; ", run.failed()[device.name]["msg"])
        applied = run.of("ok", "Apply")[device.name]
        self.assertTrue(applied["changed"])
        kit.wait_until(lambda: device.value("eth0.address") == OLD_ADDRESS, "the device is not back")
        self.assertEqual(device.run("cat /etc/network/interfaces"), files)
        change = json.loads(device.run("velkctl history --json"))["changes"][0]
        self.assertEqual((change["state"], change["settings"][0]["new"]), ("reverted", "192.168.99.9"))
        kit.wait_until(lambda: "inet 192.168.0.10/24" in device.run("ip -4 address show eth0"), "eth0 is not back")
        facts = self.run_tasks("- name: Facts\n  velk.device.facts:\n", "-l", device.name)
        self.assertEqual(sorted(facts.of("ok")), [device.name], facts.output)

    def test_5_a_failure_stops_before_the_next_quarter(self):
        # The third device of the first quarter cannot be reached in the network to which it is sent.
        lost = self.fleet.devices[2]
        lost.run("ip rule add pref 10 lookup local && ip rule del pref 0")
        lost.run("ip rule add pref 5 to 192.168.7.103 blackhole")
        run = kit.playbook(PLAYBOOKS / "move.yml", self.inventory, "-e", "window=60 patience=40", forks=10)
        self.assertNotEqual(run.status, 0)
        self.assertEqual(sorted(run.of("failed", "Stop before the next quarter")), [lost.name], run.output)
        moved = [new_address(number) for number in (1, 2, 4, 5)]
        expected = [*moved[:2], OLD_ADDRESS, *moved[2:], *[OLD_ADDRESS] * (COUNT - 5)]
        self.assertEqual(self.addresses(), expected)
        for device in self.fleet.devices:
            self.assertIn("no change waits", device.run("velkctl pending"))
        lost.run("ip rule del pref 5")

    def test_6_the_next_run_moves_the_others(self):
        moved = {d.name: a for d, a in zip(self.fleet.devices, self.addresses()) if a != OLD_ADDRESS}
        self.write_inventory(moved)
        run = kit.playbook(PLAYBOOKS / "move.yml", self.inventory, "-e", "at_a_time=100%", forks=COUNT)
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(len(run.changed("Apply the new address")), COUNT - len(moved))
        self.assertEqual(self.addresses(), [new_address(number) for number in range(1, COUNT + 1)])
        self.write_inventory({d.name: a for d, a in zip(self.fleet.devices, self.addresses())})
        again = kit.playbook(PLAYBOOKS / "move.yml", self.inventory, forks=10)
        self.assertEqual(again.changed(), [], again.output)

    def test_7_the_report_has_a_line_for_each_device(self):
        report = kit.TMP / "report.csv"
        self.fleet.devices[-1].end()
        run = kit.playbook(PLAYBOOKS / "report.yml", self.inventory, "-e", f"report={report}", forks=10)
        lines = report.read_text().splitlines()
        self.assertEqual(lines[0], "device,answers,address,runs as configured,problems,warnings", run.output)
        names = self.fleet.names()
        expected = [f"{name},yes,{new_address(n)},yes,0,2" for n, name in enumerate(names[:-1], 1)]
        self.assertEqual(lines[1:], expected + [f"{names[-1]},no,,,,"])

    def test_8_a_dead_device_stops_its_quarter_before_a_change(self):
        dead = self.fleet.names()[-1]
        run = kit.playbook(PLAYBOOKS / "move.yml", self.inventory, "-e", "at_a_time=100%", forks=10)
        self.assertNotEqual(run.status, 0)
        self.assertEqual(list(run.of("unreachable")), [dead], run.output)
        self.assertIn(f"no device named {dead} is running", run.of("unreachable")[dead]["msg"])
        self.assertEqual(run.of("ok", "Apply the new address"), {})


if __name__ == "__main__":
    unittest.main(verbosity=2)
