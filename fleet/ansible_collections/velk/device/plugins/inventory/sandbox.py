# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Lists the simulated devices that run on this machine."""

import subprocess

from ansible.errors import AnsibleParserError
from ansible.plugins.inventory import BaseInventoryPlugin, Constructable

DOCUMENTATION = r"""
name: sandbox
short_description: Simulated devices as an inventory
description:
  - Takes the names of the simulated devices that C(velk-sandbox list) prints as hosts, with the connection
    C(velk.device.sandbox).
author: The libvelk authors (@libvelk)
version_added: 1.0.0
extends_documentation_fragment:
  - constructed
options:
  plugin:
    description: C(velk.device.sandbox), in a file with a name that ends with C(sandbox.yml).
    required: true
    choices: [velk.device.sandbox]
  program:
    description: The program that simulates devices.
    type: str
    default: velk-sandbox
    env:
      - name: VELK_SANDBOX
  prefix:
    description: Take only devices with names that begin with this text.
    type: str
    default: ""
  group:
    description: Name of the group of these devices.
    type: str
    default: devices
"""

EXAMPLES = r"""
plugin: velk.device.sandbox
prefix: plant-
"""


class InventoryModule(BaseInventoryPlugin, Constructable):
    NAME = "velk.device.sandbox"

    def verify_file(self, path):
        return super().verify_file(path) and path.endswith(("sandbox.yml", "sandbox.yaml"))

    def parse(self, inventory, loader, path, cache=True):
        super().parse(inventory, loader, path, cache)
        self._read_config_data(path)
        group = self.inventory.add_group(self.get_option("group"))
        strict = self.get_option("strict")
        for name in self._names():
            self.inventory.add_host(name, group=group)
            self.inventory.set_variable(name, "ansible_connection", "velk.device.sandbox")
            self.inventory.set_variable(name, "velk_sandbox_program", self.get_option("program"))
            variables = self.inventory.get_host(name).get_vars()
            self._set_composite_vars(self.get_option("compose"), variables, name, strict=strict)
            self._add_host_to_composed_groups(self.get_option("groups"), variables, name, strict=strict)
            self._add_host_to_keyed_groups(self.get_option("keyed_groups"), variables, name, strict=strict)

    def _names(self):
        program = self.get_option("program")
        try:
            done = subprocess.run([program, "list"], capture_output=True, text=True, check=True)
        except OSError as error:
            raise AnsibleParserError(f"{program}: {error.strerror}") from error
        except subprocess.CalledProcessError as error:
            raise AnsibleParserError(f"{program} list: {error.stderr.strip()}") from error
        # On a device, the line of the device itself has more words after its name.
        names = [line.split()[0] for line in done.stdout.splitlines() if line.strip()]
        return [name for name in names if name.startswith(self.get_option("prefix"))]
