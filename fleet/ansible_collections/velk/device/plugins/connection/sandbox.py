# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Runs commands on a simulated device of velk-sandbox."""

import shlex
import subprocess

from ansible.errors import AnsibleConnectionFailure, AnsibleError
from ansible.plugins.connection import ConnectionBase
from ansible.utils.display import Display

DOCUMENTATION = r"""
name: sandbox
short_description: Run commands on a simulated device
description:
  - Runs commands on a device of C(velk-sandbox --name NAME) on this machine.
  - Needs no network, and no server on the device.
author: The libvelk authors (@libvelk)
version_added: 1.0.0
options:
  device_name:
    description: Name of the simulated device. Without it, the name of the host in the inventory.
    type: str
    default: inventory_hostname
    vars:
      - name: inventory_hostname
      - name: velk_sandbox_name
  program:
    description: The program that simulates devices.
    type: str
    default: velk-sandbox
    env:
      - name: VELK_SANDBOX
    vars:
      - name: velk_sandbox_program
"""

NOT_REACHED = 125

display = Display()


class Connection(ConnectionBase):
    transport = "velk.device.sandbox"
    has_pipelining = True

    def _connect(self):
        self._connected = True
        return self

    def exec_command(self, cmd, in_data=None, sudoable=True):
        super().exec_command(cmd, in_data=in_data, sudoable=sudoable)
        name = self.get_option("device_name")
        display.vvv(f"EXEC {cmd}", host=name)
        return self._enter(name, ["/bin/sh", "-c", cmd], in_data)

    def put_file(self, in_path, out_path):
        super().put_file(in_path, out_path)
        with open(in_path, "rb") as file:
            self._copy(f"cat >{shlex.quote(out_path)}", file.read())

    def fetch_file(self, in_path, out_path):
        super().fetch_file(in_path, out_path)
        contents = self._copy(f"cat {shlex.quote(in_path)}", b"")
        with open(out_path, "wb") as file:
            file.write(contents)

    def close(self):
        self._connected = False

    def reset(self):
        self.close()

    def _copy(self, command, data):
        status, output, errors = self._enter(self.get_option("device_name"), ["/bin/sh", "-c", command], data)
        if status != 0:
            raise AnsibleError(errors.decode(errors="replace").strip())
        return output

    def _enter(self, name, command, data):
        arguments = [self.get_option("program"), "enter", "--name", name, "--"] + command
        try:
            done = subprocess.run(arguments, input=data or b"", capture_output=True, check=False)
        except OSError as error:
            raise AnsibleConnectionFailure(f"{arguments[0]}: {error.strerror}") from error
        if done.returncode == NOT_REACHED:
            raise AnsibleConnectionFailure(" ".join(done.stderr.decode(errors="replace").split()))
        return done.returncode, done.stdout, done.stderr
