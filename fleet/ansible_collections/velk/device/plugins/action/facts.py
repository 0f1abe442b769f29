# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Reads all values of a device, and the state of its interfaces."""

from ansible_collections.velk.device.plugins.plugin_utils.velkctl import DeviceAction, one_line, time_words

STATES_DIFFER = 1


class ActionModule(DeviceAction):
    ARGUMENTS = {"timeout": {"type": "int"}}

    def act(self, arguments):
        times = time_words(arguments)
        settings = self.checked(["show"] + times)["settings"]
        states = self.checked(["status"] + times, accepted=(0, STATES_DIFFER))["states"]
        return {
            "changed": False,
            "ansible_facts": {
                "velk": {
                    "settings": {s["name"]: s["value"] for s in settings if s["error"] is None},
                    "unread": {s["name"]: one_line(s["error"]) for s in settings if s["error"] is not None},
                    "states": {s["name"]: {key: s[key] for key in s if key != "name"} for s in states},
                    "differs": any(s["differs"] for s in states),
                }
            },
        }
