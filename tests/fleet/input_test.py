#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Bad input fails a task before anything is sent, with the message of velkctl and its place in the playbook."""

import json
import subprocess
import unittest

import kit

# Hosts that nobody can reach: a task that sends anything is unreachable instead of failed.
NOWHERE = "devices:\n  hosts:\n    nowhere:\n      ansible_connection: velk.device.sandbox\n"

UNKNOWN_NAMES = (
    "eth0.addrxss", "eth0.ddress", "eth1.PSK", "ddress", "address", "dns", "dsn", "eth2.dns", "eth1.link-speed",
    "eth0.ssid", "eth0.ip", "gw", "eth1.key", "password", "mask", "foo", "eth0", "eth1", "ethO", "eth9", "x", "",
    "eth0.", ".dns", "eth0.dns=1", "eth*.dns", "eth0.d?s", "web", "wep", "wep-key", "stand", "104", "eth0.104",
    "999", "Eth0.Address", "ntpserver", "ntp_server", "time-server", "a" * 65, "schedule", "eth0.dhcp", "speed",
)
WRONG_VALUES = (None, True, 5, 1.5, "5", [], [5], ["5"], {}, "none")
NOT_OF_TYPE = ("its JSON type is", "an element of it is not", "is not a whole number")


def velkctl(document, *words):
    """Returns the errors of velkctl about a document, on a new simulated device."""
    command = [kit.SANDBOX, "--quiet", "--", "velkctl", "apply", "-", "--dry-run", "--json", *words]
    done = subprocess.run(command, input=json.dumps(document), capture_output=True, text=True, check=False)
    return json.loads(done.stdout)["errors"]


class InputTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.inventory = kit.TMP / "nowhere.yml"
        cls.inventory.write_text(NOWHERE)

    def apply(self, settings):
        run = kit.playbook(kit.write_playbook(kit.settings_task(settings)), self.inventory)
        return run

    def test_a_message_has_the_place_in_the_playbook(self):
        tasks = "- name: Apply\n  velk.device.settings:\n    settings:\n      ntp: true\n      eth0.addrxss: 10.0.0.1\n"
        path = kit.write_playbook(tasks)
        run = kit.playbook(path, self.inventory)
        self.assertEqual(
            run.failed()["nowhere"]["msg"],
            f"unknown setting 'eth0.addrxss'; at {path}, line 9, column 11; did you mean eth0.address?",
        )
        self.assertEqual(run.of("unreachable"), {})

    def test_a_value_of_a_template_has_the_place_of_its_task(self):
        tasks = "- name: Apply\n  velk.device.settings:\n    settings: \"{{ {'eth0.dns': 5} }}\"\n"
        path = kit.write_playbook(tasks)
        run = kit.playbook(path, self.inventory)
        self.assertEqual(
            run.failed()["nowhere"]["msg"],
            f"eth0.dns: its JSON type is number, not array; at {path}, line 5, column 7; fix: give one to three "
            "IPv4 addresses such as 192.168.0.1, or none",
        )

    def test_a_type_of_yaml_alone_is_refused(self):
        for written, name, setting, wanted in (
            ("2026-11-22", "date", "location", "string"),
            ("!!binary aGVsbG8=", "bytes", "eth1.psk", "string"),
            ("!!set {10.0.0.1}", "set", "eth0.dns", "array"),
        ):
            tasks = f"- name: Apply\n  velk.device.settings:\n    settings:\n      {setting}: {written}\n"
            run = kit.playbook(kit.write_playbook(tasks), self.inventory)
            begin = f"{setting}: its type is {name}, not {wanted}; at "
            self.assertEqual(run.failed()["nowhere"]["msg"].partition(begin)[0], "", run.output)
            self.assertIn("line 8, column 11; fix: give ", run.failed()["nowhere"]["msg"])

    def test_settings_that_are_no_object_have_the_place_of_their_task(self):
        for written in "[a]", "5", "eth1.psk=a-key-of-the-user":
            path = kit.write_playbook(f"- name: Apply\n  velk.device.settings:\n    settings: {written}\n")
            run = kit.playbook(path, self.inventory, "-vvvv")
            self.assertEqual(
                run.failed()["nowhere"]["msg"],
                f"settings: not an object; at {path}, line 5, column 7; fix: give names and values",
            )

    def test_a_key_after_a_name_is_not_repeated(self):
        path = kit.write_playbook(kit.settings_task({f"eth1.psk={kit.KEY}": None}))
        run = kit.playbook(path, self.inventory, "-vvvv")
        self.assertIn("'eth1.psk' is followed by '='", run.failed()["nowhere"]["msg"])
        self.assertNotIn(kit.KEY, run.output)

    def test_unknown_names_get_the_words_of_velkctl(self):
        expected = {}
        for error in velkctl({"schema": 1, "settings": {name: "x" for name in UNKNOWN_NAMES}}):
            name = error["detail"].removeprefix("at /settings/").partition("=")[0] if error["detail"] else ""
            expected[name] = (error["message"].removeprefix("standard input: "), error["remedy"])
        run = self.apply({name: "x" for name in UNKNOWN_NAMES})
        found = {
            error["setting"]: (error["message"], error["remedy"]) for error in run.failed()["nowhere"]["errors"]
        }
        self.maxDiff = None
        self.assertEqual(found, expected)
        self.assertEqual(len(found), len(UNKNOWN_NAMES))

    def test_wrong_types_get_the_words_of_velkctl(self):
        listing = [kit.SANDBOX, "--quiet", "--", "velkctl", "list", "--json"]
        done = subprocess.run(listing, capture_output=True, check=True)
        names = [setting["name"] for setting in json.loads(done.stdout)["settings"] if setting["set"]]
        compared = 0
        for value in WRONG_VALUES:
            errors = velkctl({"schema": 1, "settings": {name: value for name in names}})
            expected = {e["setting"]: (e["message"], e["remedy"]) for e in errors if is_of_type(e)}
            run = self.apply({name: value for name in names})
            errors = run.failed().get("nowhere", {}).get("errors", [])
            found = {e["setting"]: (e["message"], e["remedy"]) for e in errors}
            # These are meant: YAML has made them of the right words.
            meant = {name for name in expected if name not in found}
            self.assertEqual(found, {name: expected[name] for name in expected if name not in meant}, value)
            self.assertEqual(meant, MEANT.get(json.dumps(value), set()), value)
            compared += len(found)
        self.assertGreater(compared, 200)


def is_of_type(error):
    return any(text in error["message"] for text in NOT_OF_TYPE)


SWITCHES = {
    "ntp", "dhcp-ntp", "eth0.apipa", "eth1.apipa", "eth0.dhcp-dns", "eth1.dhcp-dns", "eth0.dhcp-notice",
}
NUMBERS = {"eth1.authentication", "eth1.channel", "eth1.standards-enabled", "eth1.wep-default-key"}
MEANT = {"true": SWITCHES, '"5"': NUMBERS}

if __name__ == "__main__":
    unittest.main(verbosity=2)
