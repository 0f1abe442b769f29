# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Confirms the change that waits on a device, or puts it back, over a new connection."""

import time

from ansible.errors import AnsibleConnectionFailure
from ansible_collections.velk.device.plugins.plugin_utils.connection import use_address
from ansible_collections.velk.device.plugins.plugin_utils.velkctl import DeviceAction, Failure

VERBS = {"confirmed": "confirm", "reverted": "revert"}
WAITING = "waiting"
SECONDS_BETWEEN = 2


class ActionModule(DeviceAction):
    ARGUMENTS = {
        "state": {"type": "str", "choices": list(VERBS), "default": "confirmed"},
        "id": {"type": "str"},
        "addresses": {"type": "list", "elements": "str", "default": []},
        "reach_within": {"type": "int", "default": 120},
    }

    def act(self, arguments):
        change = arguments["id"]
        ends = time.monotonic() + arguments["reach_within"]
        while True:
            try:
                pending = self._meet(arguments["addresses"], ends)
                change = change or (pending or {}).get("id")
                return self._decide(VERBS[arguments["state"]], change, pending)
            except AnsibleConnectionFailure as lost:
                # The restart of the interfaces may cut the connection before the answer. Both verbs can be
                # repeated with the id of the change.
                self._pause(ends, lost)

    def _meet(self, addresses, ends):
        """Returns the change that waits, from the first address at which the device answers."""
        while True:
            lost = None
            for address in addresses or [None]:
                use_address(self._connection, address)
                try:
                    pending = self.checked(["pending"])["pending"]
                except AnsibleConnectionFailure as failure:
                    lost = failure
                    continue
                if pending is None or pending["state"] == WAITING:
                    return pending
            self._pause(ends, lost)

    def _pause(self, ends, lost):
        if time.monotonic() + SECONDS_BETWEEN >= ends:
            raise lost or Failure("the change on the device is still not in effect; fix: raise reach_within")
        time.sleep(SECONDS_BETWEEN)

    def _decide(self, verb, change, pending):
        if verb == "revert" and change is None:
            return {"changed": False, "id": None, "state": None}
        if self._task.check_mode:
            return {"changed": pending is not None, "id": change, "state": None}
        answer = self.checked([verb] + ([change] if change else []))
        return {"changed": pending is not None, "id": answer["id"], "state": answer["state"]}
