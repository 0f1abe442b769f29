# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Confirms the change that waits on a device, or puts it back, over a new connection."""

import time

from ansible.errors import AnsibleConnectionFailure
from ansible_collections.velk.device.plugins.plugin_utils.connection import connect_anew
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
        change, addresses = arguments["id"], arguments["addresses"] or [None]
        ends = time.monotonic() + arguments["reach_within"]
        while True:
            reason = "the change is still not in effect"
            for address in addresses:
                connect_anew(self._connection, address)
                try:
                    pending = self.checked(["pending"])["pending"]
                    if pending is None or pending["state"] == WAITING:
                        change = change or (pending or {}).get("id")
                        return self._decide(VERBS[arguments["state"]], change, pending)
                except AnsibleConnectionFailure as lost:
                    # The restart of the interfaces may also cut the connection before the answer of the verb,
                    # which can be repeated with the id of the change.
                    reason = " ".join(str(lost).split())
            if time.monotonic() + SECONDS_BETWEEN >= ends:
                raise Failure(self._not_met(arguments, reason))
            time.sleep(SECONDS_BETWEEN)

    def _not_met(self, arguments, reason):
        """A failure, not an unreachable host: that would skip the rescue of a block."""
        places = " or ".join(arguments["addresses"]) or "its address"
        return (
            f"no confirmation within {arguments['reach_within']} s at {places}; {reason}; the device takes the "
            "change back when its time is over"
        )

    def _decide(self, verb, change, pending):
        if verb == "revert" and change is None:
            return {"changed": False, "id": None, "state": None}
        if self._task.check_mode:
            return {"changed": pending is not None, "id": change, "state": None}
        answer = self.checked([verb] + ([change] if change else []))
        return {"changed": pending is not None, "id": answer["id"], "state": answer["state"]}
