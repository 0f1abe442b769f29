# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The documentation of velk.device.confirm; the action plugin of this name does the work."""

# Written by fleet/generate.

DOCUMENTATION = r"""
module: confirm
short_description: Keep a change that waits on a device, or put it back
version_added: 1.0.0
description:
  - Ends the old connection, meets the device with a new one, and confirms the change that M(velk.device.settings)
    made with O(confirm_within). A confirmation over the new connection proves that the device can be reached.
  - With C(state=reverted), as in the C(rescue) of a block, puts the change back. It is no failure if the device
    has done that by itself.
options:
  state:
    description: The state of the change afterwards.
    type: str
    choices: [confirmed, reverted]
    default: confirmed
  id:
    description: The change. Without it, the one that waits.
    type: str
  addresses:
    description:
      - Addresses at which to look for the device, in this order. Without them, the one of the inventory.
      - With a connection that has no option C(host), leave it out.
    type: list
    elements: str
    default: []
  reach_within:
    description: Look for the device for this number of seconds.
    type: int
    default: 120
extends_documentation_fragment:
  - velk.device.velkctl
author:
  - The libvelk authors (@libvelk)
"""

EXAMPLES = r"""
- name: Move the device
  block:
    - name: Apply the new address
      velk.device.settings:
        settings:
          eth0.address: "{{ new_address }}"
        confirm_within: 300
      register: change

    - name: Confirm it at the new address
      velk.device.confirm:
        addresses: ["{{ new_address }}"]
      when: change is changed
  rescue:
    - name: Put the change back
      velk.device.confirm:
        state: reverted
        addresses: ["{{ new_address }}", "{{ ansible_host }}"]
      when: change is changed
"""

RETURN = r"""
id:
  description: The change.
  returned: always
  type: str
state:
  description: The state of the change afterwards.
  returned: always
  type: str
"""
