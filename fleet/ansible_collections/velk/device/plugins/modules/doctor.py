# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The documentation of velk.device.doctor; the action plugin of this name does the work."""

# Written by fleet/generate.

DOCUMENTATION = r"""
module: doctor
short_description: Look for problems with files, tools and daemons of a device
version_added: 1.0.0
description:
  - Runs C(velkctl doctor). Changes nothing.
options:
  fail_on:
    description: The least severe finding that fails the task.
    type: str
    choices: [problem, warning, never]
    default: problem
extends_documentation_fragment:
  - velk.device.velkctl
author:
  - The libvelk authors (@libvelk)
"""

EXAMPLES = r"""
- name: Stop before a change of a device with problems
  velk.device.doctor:
"""

RETURN = r"""
findings:
  description: The findings, each with severity, subject, effect, description, cause, remedy and settings.
  returned: if the device has answered
  type: list
  elements: dict
problems:
  description: The number of problems.
  returned: if the device has answered
  type: int
warning_count:
  description: The number of warnings.
  returned: if the device has answered
  type: int
device:
  description: False if most of the device's files are missing, as on another machine.
  returned: if the device has answered
  type: bool
"""
