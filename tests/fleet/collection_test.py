#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The collection: its documentation is that of the catalogue, the linter is content, and it can be installed."""

import json
import shutil
import subprocess
import unittest

import kit

COLLECTION = kit.SOURCE / "fleet/ansible_collections/velk/device"
MODULES = ("confirm", "doctor", "facts", "restart", "settings")
REQUIRED = {"restart": "    interface: eth0\n", "settings": "    settings: {}\n"}


def run(*command, **more):
    folder = more.pop("folder", kit.TMP)
    return subprocess.run(
        [str(word) for word in command], capture_output=True, text=True, check=False, cwd=folder, input="",
        env=kit.environment(**more),
    )


class CollectionTest(unittest.TestCase):
    def test_the_catalogue_and_the_documentation_are_up_to_date(self):
        done = run(kit.SOURCE / "fleet/generate", "--check")
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_ansible_doc_describes_every_setting(self):
        documented = json.loads(run("ansible-doc", "--json", "velk.device.settings").stdout)
        options = documented["velk.device.settings"]["doc"]["options"]["settings"]["suboptions"]
        listed = json.loads(run(kit.SANDBOX, "--quiet", "--", "velkctl", "list", "--json").stdout)["settings"]
        self.assertEqual(sorted(options), sorted(setting["name"] for setting in listed if setting["set"]))
        self.assertEqual(options["eth0.dns"]["type"], "list")

    def test_ansible_doc_takes_every_plugin(self):
        for kind, names in {"module": MODULES, "connection": ["sandbox"], "inventory": ["sandbox"]}.items():
            for name in names:
                done = run("ansible-doc", "-t", kind, f"velk.device.{name}")
                self.assertEqual((done.returncode, done.stderr), (0, ""), name)

    def test_the_options_of_an_action_are_those_of_its_documentation(self):
        for name in MODULES:
            documented = json.loads(run("ansible-doc", "--json", f"velk.device.{name}").stdout)
            options = documented[f"velk.device.{name}"]["doc"]["options"]
            required = REQUIRED.get(name, "")
            path = kit.write_playbook(f"- name: Wrong\n  velk.device.{name}:\n    wrong_option: 1\n{required}")
            inventory = kit.TMP / "nowhere.yml"
            inventory.write_text("devices:\n  hosts:\n    nowhere:\n      ansible_connection: velk.device.sandbox\n")
            message = kit.playbook(path, inventory).failed()["nowhere"]["msg"]
            supported = message.partition("Supported parameters include: ")[2].rstrip(".").split(", ")
            self.assertEqual(sorted(supported), sorted(options), message)

    def test_the_linter_has_no_findings(self):
        for folder in COLLECTION, kit.SOURCE / "fleet/playbooks":
            copy = kit.TMP / "lint" / folder.name
            shutil.copytree(folder, copy)
            subprocess.run(["git", "init", "-q", copy], check=True)
            if folder == COLLECTION:
                # There is no address of the sources yet: the publisher of the collection writes one.
                with open(copy / "galaxy.yml", "a", encoding="utf-8") as file:
                    file.write("repository: https://example.com/libvelk\n")
            done = run("ansible-lint", "--offline", "--profile", "production", "-q", folder=copy)
            self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)

    def test_the_collection_is_built_and_installed_offline(self):
        built = run("ansible-galaxy", "collection", "build", COLLECTION, "--output-path", kit.TMP)
        self.assertEqual(built.returncode, 0, built.stderr)
        installed = kit.TMP / "installed"
        archive = kit.TMP / "velk-device-1.0.0.tar.gz"
        done = run("ansible-galaxy", "collection", "install", "--offline", archive, "-p", installed)
        self.assertEqual(done.returncode, 0, done.stderr)
        fleet = kit.Fleet(1)
        self.addCleanup(fleet.end)
        path = kit.write_playbook("- name: Facts\n  velk.device.facts:\n")
        run_ = kit.playbook(path, fleet.inventory(), ANSIBLE_COLLECTIONS_PATH=str(installed))
        self.assertEqual(list(run_.of("ok")), fleet.names(), run_.output)


if __name__ == "__main__":
    unittest.main(verbosity=2)
