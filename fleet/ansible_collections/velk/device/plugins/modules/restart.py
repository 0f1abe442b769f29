# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The documentation of velk.device.restart; the action plugin of this name does the work."""

# Written by fleet/generate.

DOCUMENTATION = r"""
module: restart
short_description: Restart an interface of a device
version_added: 1.0.0
description:
  - Runs C(velkctl restart). M(velk.device.settings) restarts the interfaces that need it by itself.
  - Each restart is a change. With O(only_if_differs), a device that runs as configured is left alone.
options:
  interface:
    description: The interface.
    type: str
    choices: [eth0, eth1]
    required: true
  only_if_differs:
    description: Restart the interface only if C(velkctl status) shows that it does not run as configured.
    type: bool
    default: false
extends_documentation_fragment:
  - velk.device.velkctl
  - velk.device.velkctl.times
author:
  - The libvelk authors (@libvelk)
"""

EXAMPLES = r"""
- name: Restart the wired port where it does not run as configured
  velk.device.restart:
    interface: eth0
    only_if_differs: true
"""

RETURN = r"""
state:
  description: The state of the interface, with up, address and source. Null without a restart.
  returned: always
  type: dict
"""
