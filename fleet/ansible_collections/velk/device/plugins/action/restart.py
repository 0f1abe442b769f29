# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Restarts an interface of a device."""

from ansible_collections.velk.device.plugins.plugin_utils.velkctl import (
    TIME_ARGUMENTS,
    DeviceAction,
    time_words,
)

STATES_DIFFER = 1


class ActionModule(DeviceAction):
    ARGUMENTS = {
        "interface": {"type": "str", "choices": ["eth0", "eth1"], "required": True},
        "only_if_differs": {"type": "bool", "default": False},
        **TIME_ARGUMENTS,
    }

    def act(self, arguments):
        interface = arguments["interface"]
        if arguments["only_if_differs"] and not self._differs(interface):
            return {"changed": False, "state": None}
        words = ["restart", interface] + time_words(arguments)
        if self._task.check_mode:
            self.checked(words + ["--dry-run"])
            return {"changed": True, "state": None}
        return {"changed": True, "state": self.checked(words).get("state")}

    def _differs(self, interface):
        states = self.checked(["status", interface], accepted=(0, STATES_DIFFER))["states"]
        return any(state["differs"] for state in states)
