#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Twenty simulated devices, over the connection of the sandbox."""

import json
import subprocess
import unittest

import kit

COUNT = 20
SETTINGS = {"eth0.dns": ["10.0.0.1", "10.0.0.2"], "ntp": "on", "location": "Hall 7, \"north\" \\ row"}
ALSO_SECRET = {"eth1.psk": kit.KEY, **SETTINGS}

# Ansible forks a process for each task of a device, and velkctl and the shell take some milliseconds: a tenth of a
# second was measured (docs/fleet.md). Three times that: a copied module and its Python on each device would
# take more.
LONGEST_SECONDS_OF_A_DEVICE = 0.3


class FleetTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.fleet = kit.Fleet(COUNT)
        cls.addClassCleanup(cls.fleet.end)

    def run_tasks(self, tasks, *words, **more):
        return kit.playbook(kit.write_playbook(tasks), self.fleet.inventory(), *words, **more)

    def test_1_the_inventory_has_these_devices_alone(self):
        run = self.run_tasks("- name: Facts\n  velk.device.facts:\n")
        self.assertEqual(sorted(run.of("ok")), self.fleet.names(), run.output)
        facts = run.of("ok")[self.fleet.names()[0]]["ansible_facts"]["velk"]
        self.assertEqual(facts["settings"]["eth0.address"], "192.168.0.10")
        self.assertEqual(facts["states"]["eth0.link"]["running"], "up")
        self.assertEqual(facts["settings"]["eth1.psk"], "********")

    def test_2_check_mode_leaves_every_file_as_it_was(self):
        before = [device.run(kit.ALL_FILES) for device in self.fleet.devices]
        run = self.run_tasks(kit.settings_task(ALSO_SECRET, restart="never"), "--check", "--diff")
        self.assertEqual(run.changed(), self.fleet.names(), run.output)
        self.assertIn("+nameserver 10.0.0.1\n", run.output)
        self.assertIn("-eth1.psk: (old secret)\n", run.output)
        self.assertIn("+eth1.psk: (new secret)\n", run.output)
        self.assertEqual([device.run(kit.ALL_FILES) for device in self.fleet.devices], before)

    def test_2_check_mode_needs_no_namespaces(self):
        device = self.fleet.devices[8]
        # A process in another root folder may make none.
        limits = "setpriv --bounding-set=-all --inh-caps=-all"
        device.run("mount --rbind / /mnt")
        device.write_program("/run/limited", f'exec chroot /mnt {limits} {kit.BUILD}/velkctl "$@"')
        tasks = kit.settings_task(SETTINGS, restart="never")
        words = ["--check", "-l", device.name, "-e", "velk_device_program=/run/limited"]
        run = self.run_tasks(tasks, *words)
        self.assertEqual(run.changed(), [device.name], run.output)
        warning = "The device cannot preview changes of files, because its kernel refuses namespaces."
        self.assertEqual(run.of("ok")[device.name]["warnings"], [warning])
        self.assertEqual(device.value("eth0.dns"), "192.168.0.1 192.168.0.2")
        self.run_tasks(tasks, "-l", device.name)
        run = self.run_tasks(tasks, *words)
        self.assertEqual((run.changed(), run.of("ok")[device.name].get("warnings")), ([], None), run.output)
        device.run("velkctl undo --quiet")

    def test_3_the_second_run_changes_nothing(self):
        tasks = kit.settings_task(ALSO_SECRET, restart="never")
        first = self.run_tasks(tasks)
        self.assertEqual(first.changed(), self.fleet.names(), first.output)
        for device in self.fleet.devices:
            self.assertEqual(device.value("eth0.dns"), "10.0.0.1 10.0.0.2")
            self.assertEqual(device.value("location"), SETTINGS["location"])
            self.assertEqual(device.run("velkctl get --show-secrets eth1.psk").strip(), kit.KEY)
        second = self.run_tasks(tasks)
        self.assertEqual(sorted(second.of("ok")), self.fleet.names(), second.output)
        self.assertEqual(second.changed(), [])
        for run in first, second:
            self.assertLess(run.seconds / COUNT, LONGEST_SECONDS_OF_A_DEVICE)

    def test_4_no_line_of_the_most_verbose_output_has_the_key(self):
        other_key = kit.KEY[::-1]
        tasks = kit.settings_task({"eth1.psk": other_key, "eth0.dns": "10.0.0.1"}, restart="never")
        refused = self.run_tasks(tasks, "-vvvv", "--diff", ANSIBLE_DEBUG="1")
        self.assertEqual(sorted(refused.failed()), self.fleet.names())
        tasks = kit.settings_task({"eth1.psk": other_key}, restart="never")
        for words in ["--check"], []:
            run = self.run_tasks(tasks, "-vvvv", "--diff", *words, ANSIBLE_DEBUG="1")
            self.assertEqual(run.changed(), self.fleet.names(), run.output)
            self.assertNotIn(other_key, run.output)
        self.assertNotIn(other_key, refused.output)

    def test_5_only_devices_with_a_reason_fail(self):
        locked, stubborn, dead = self.fleet.devices[:3]
        locked.run("flock /var/tmp/vklib_lock sleep 600 >/dev/null 2>&1 & sleep 0.2")
        stubborn.run(
            "mount --bind /etc/resolv.dnsmasq.conf /etc/resolv.dnsmasq.conf && "
            "mount -o remount,bind,ro /etc/resolv.dnsmasq.conf"
        )
        dead.end()
        names = self.fleet.names()
        hosts = "".join(f"    {name}: {{}}\n" for name in names)
        inventory = kit.TMP / "hosts.yml"
        inventory.write_text(
            f"devices:\n  hosts:\n{kit.indent(hosts, 0)}  vars:\n    ansible_connection: velk.device.sandbox\n"
            f"    velk_sandbox_program: {kit.SANDBOX}\n"
        )
        task = kit.write_playbook(kit.settings_task({"eth0.dns": ["10.0.0.9"]}, restart="never"))
        run = kit.playbook(task, inventory)
        self.assertEqual(sorted(run.failed()), [locked.name, stubborn.name], run.output)
        self.assertEqual(run.changed(), names[3:])
        self.assertEqual(run.failed()[locked.name]["status"], 3)
        self.assertIn("another program is changing settings", run.failed()[locked.name]["msg"])
        self.assertIn("(flock, ", run.failed()[locked.name]["msg"])
        self.assertIn("eth0.dns", run.failed()[stubborn.name]["msg"])
        self.assertIn("/etc/resolv.dnsmasq.conf", run.failed()[stubborn.name]["msg"])
        self.assertEqual(sorted(run.of("unreachable")), [dead.name])
        self.assertIn(f"no device named {dead.name} is running", run.of("unreachable")[dead.name]["msg"])

    def test_6_a_device_without_velkctl_fails_with_the_remedy(self):
        run = self.run_tasks(
            "- name: Facts\n  velk.device.facts:\n", "-e", "velk_device_program=/nowhere/velkctl", "-l", "*-05"
        )
        self.assertEqual(
            run.failed()[self.fleet.names()[4]]["msg"],
            "/nowhere/velkctl is not on the device; fix: install the package velk-tools on it, or set "
            "velk_device_program to its path",
        )

    def test_6_the_report_has_a_device_on_which_velkctl_fails(self):
        report, playbook = kit.TMP / "report.csv", kit.SOURCE / "fleet/playbooks/report.yml"
        values = f"report={report} velk_device_program=/nowhere/velkctl"
        run = kit.playbook(playbook, self.fleet.inventory(), "-e", values)
        lines = report.read_text().splitlines() if report.exists() else []
        running = [device.name for device in self.fleet.devices if device.process.poll() is None]
        self.assertEqual(lines[1:], [f"{name},yes,unknown,unknown,unknown,unknown" for name in running], run.output)

    def test_6_a_change_that_is_left_in_part_is_a_change(self):
        device = self.fleet.devices[4]
        error = {"message": "apply: eth0.dns was not put back", "detail": "why", "remedy": "do so", "setting": None}
        answer = {
            "schema": 3, "verb": "apply", "status": 9, "notes": [], "errors": [error],
            "changes": [{"name": "eth0.dns", "old": [], "new": ["10.0.0.1"]}],
        }
        device.write_program("/run/fake", kit.shell("echo", json.dumps(answer)))
        tasks = kit.settings_task({"eth0.dns": ["10.0.0.1"]})
        failed = self.run_tasks(tasks, "-l", device.name, "-e", "velk_device_program=/run/fake").failed()[device.name]
        self.assertEqual(failed["msg"], "apply: eth0.dns was not put back; why; fix: do so")
        self.assertEqual((failed["changed"], failed["status"]), (True, 9))

    def test_6_a_program_that_is_not_velkctl_fails(self):
        run = self.run_tasks(
            "- name: Facts\n  velk.device.facts:\n", "-e", "velk_device_program=/bin/echo", "-l", "*-05"
        )
        self.assertEqual(
            run.failed()[self.fleet.names()[4]]["msg"],
            "velkctl printed no JSON document, exit status 0: show --json",
        )

    def test_6_an_address_that_is_not_applied_leaves_the_task_changed(self):
        device = self.fleet.devices[9]
        settings = {"eth0.method": "dhcp", "eth0.address": "192.168.0.44"}
        run = self.run_tasks(kit.settings_task(settings, restart="never"), "-l", device.name, "--check")
        self.assertEqual(run.changed(), [device.name], run.output)
        self.assertEqual(run.of("ok")[device.name]["not_applied"], ["eth0.address"])

    def test_6_a_value_may_be_encrypted_in_the_playbook(self):
        device, key = self.fleet.devices[9], kit.KEY.upper()
        password = kit.TMP / "password"
        password.write_text("of-the-vault\n")
        words = ["--vault-password-file", str(password)]
        command = ["ansible-vault", "encrypt_string", *words, key]
        encrypted = subprocess.run(command, capture_output=True, text=True, check=True, env=kit.environment()).stdout
        tasks = "- name: Apply\n  velk.device.settings:\n    restart: never\n    settings:\n      eth1.psk: "
        run = self.run_tasks(tasks + kit.indent(encrypted, 8).lstrip(), "-l", device.name, "-vvvv", *words)
        self.assertEqual(run.changed(), [device.name], run.output)
        self.assertEqual(device.run("velkctl get --show-secrets eth1.psk").strip(), key)
        self.assertNotIn(key, run.output)

    def test_6_the_metrics_pass_the_check_of_the_agent(self):
        device = self.fleet.devices[9]
        metrics, checker = device.run("velkctl metrics"), ["promtool", "check", "metrics"]
        checked = subprocess.run(checker, input=metrics, capture_output=True, text=True, check=False)
        self.assertEqual((checked.returncode, checked.stdout + checked.stderr), (0, ""))

    def test_6_a_velkctl_of_another_schema_fails_with_the_remedy(self):
        device = self.fleet.devices[4]
        device.write_program("/run/fake", kit.shell("echo", '{"schema": 2, "status": 0, "values": []}'))
        run = self.run_tasks(
            "- name: Facts\n  velk.device.facts:\n", "-l", device.name, "-e", "velk_device_program=/run/fake"
        )
        self.assertEqual(
            run.failed()[device.name]["msg"],
            "velkctl on the device answers with schema 2, and the collection reads schema 3; fix: install the package "
            "velk-tools and the collection of the same release",
        )

    def test_7_the_doctor_fails_on_problems_alone(self):
        device = self.fleet.devices[5]
        doctor = "- name: Doctor\n  velk.device.doctor:\n"
        device.run("sed -i '/ntpdate/d' /var/cron/tabs/root")
        run = self.run_tasks(doctor, "-l", device.name)
        self.assertIn("no entry runs ntpdate", run.failed()[device.name]["msg"])
        self.assertEqual(run.failed()[device.name]["problems"], 1)
        run = self.run_tasks(doctor + "    fail_on: never\n", "-l", device.name)
        self.assertEqual(run.of("ok")[device.name]["problems"], 1)

    def test_8_a_restart_changes_a_device_that_differs(self):
        device = self.fleet.devices[6]
        device.run("velk-sandbox adapter out")
        restart = "- name: Restart\n  velk.device.restart:\n    interface: eth0\n    only_if_differs: true\n"
        run = self.run_tasks(restart, "-l", device.name)
        self.assertFalse(run.of("ok")[device.name]["changed"], run.output)
        device.run("sed -i s/192.168.0.10/192.168.0.77/ /etc/network/interfaces")
        checked = self.run_tasks(restart, "-l", device.name, "--check")
        self.assertEqual(checked.changed(), [device.name], checked.output)
        run = self.run_tasks(restart, "-l", device.name)
        self.assertTrue(run.of("ok")[device.name]["changed"], run.output)
        self.assertEqual(
            run.of("ok")[device.name]["state"], {"up": True, "address": "192.168.0.77", "source": "static"}
        )
        self.assertFalse(self.run_tasks(restart, "-l", device.name).of("ok")[device.name]["changed"])

    def test_9_a_change_is_confirmed_or_put_back(self):
        device = self.fleet.devices[7]
        device.run("velk-sandbox adapter out")
        confirm = "- name: Confirm\n  velk.device.confirm:\n"
        revert = confirm + "    state: reverted\n"

        def apply(address, *tasks):
            settings = kit.settings_task({"eth0.address": address, "ntp": False}, confirm_within=300)
            return self.run_tasks(settings + "".join(tasks), "-l", device.name)

        run = apply("192.168.0.20", confirm)
        self.assertEqual(run.of("ok", "Apply")[device.name]["state"], "waiting", run.output)
        self.assertEqual(run.of("ok", "Confirm")[device.name]["state"], "confirmed")
        self.assertEqual((device.value("eth0.address"), device.value("ntp")), ("192.168.0.20", "off"))
        run = apply("192.168.0.30", revert, revert)
        self.assertEqual([row["result"]["changed"] for row in run.results], [True, True, False], run.output)
        self.assertEqual(device.value("eth0.address"), "192.168.0.20")
        run = self.run_tasks(confirm, "-l", device.name)
        self.assertRegex(
            run.failed()[device.name]["msg"],
            r"^confirm: change \w{4} of \d\d:\d\d has been put back; 'velkctl revert' has asked for it$",
        )

    def move(self, device, next_device, program):
        """Moves two devices, one after the other. The program takes the place of velkctl on the first."""
        device.write_program("/run/other", program)
        hosts = f"    {device.name}: {{velk_device_program: /run/other}}\n    {next_device.name}: {{}}\n"
        inventory = kit.TMP / "two.yml"
        inventory.write_text(
            f"devices:\n  hosts:\n{hosts}  vars:\n    ansible_connection: velk.device.sandbox\n"
            f"    velk_sandbox_program: {kit.SANDBOX}\n    new_address: 192.168.0.60\n"
            "    new_netmask: 255.255.255.0\n    new_gateway: 192.168.0.1\n"
        )
        playbook = kit.SOURCE / "fleet/playbooks/move.yml"
        return kit.playbook(playbook, inventory, "-e", "at_a_time=1 patience=10 window=60")

    def test_9_a_device_that_dies_stops_the_move(self):
        device, next_device = self.fleet.devices[10:12]
        # The doctor meets the device, and the next task does not.
        run = self.move(device, next_device, 'test "$1" = doctor || exit 125; exec velkctl "$@"')
        self.assertEqual(sorted(run.of("failed", "Stop before the next quarter")), [device.name], run.output)
        self.assertEqual(run.of("ok", "Apply the new address"), {}, run.output)
        self.assertEqual(next_device.value("eth0.address"), "192.168.0.10")

    def test_9_a_refused_move_leaves_another_waiting_change(self):
        device, next_device = self.fleet.devices[12:14]
        device.run("velkctl apply location=Hall9 --confirm-within 600 --quiet")
        run = self.move(device, next_device, 'exec velkctl "$@"')
        self.assertEqual(sorted(run.of("failed", "Stop before the next quarter")), [device.name], run.output)
        self.assertEqual(json.loads(device.run("velkctl pending --json"))["pending"]["state"], "waiting")
        self.assertEqual(device.value("location"), "Hall9")


if __name__ == "__main__":
    unittest.main(verbosity=2)
