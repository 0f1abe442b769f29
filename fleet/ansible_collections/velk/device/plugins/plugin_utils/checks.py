# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Checks the names and the types of settings before anything is sent to a device."""

from ansible_collections.velk.device.plugins.plugin_utils.catalogue import SETTINGS
from ansible_collections.velk.device.plugins.plugin_utils.spelling import find_setting, unknown_setting

JSON_TYPES = ((bool, "boolean"), ((int, float), "number"), (str, "string"), ((list, tuple), "array"), (dict, "object"))
SWITCH = ["on", "off"]
NONE = "none"


class Problem(Exception):
    """A value or name that velkctl would refuse: the message, and the advice."""

    def __init__(self, message, remedy):
        super().__init__(message)
        self.message = message
        self.remedy = remedy


def json_type(value):
    """Returns None for a type of YAML alone, such as a date."""
    if value is None:
        return "null"
    return next((name for types, name in JSON_TYPES if isinstance(value, types)), None)


def decrypted(value):
    """Returns the text of a value that the playbook has encrypted with !vault."""
    if isinstance(value, (list, tuple)):
        return [decrypted(element) for element in value]
    return str(value) if getattr(value, "__ENCRYPTED__", False) else value


def as_meant(setting, value):
    """Returns the value before YAML or a template has changed its type, if only one can be meant."""
    if isinstance(value, bool) and all(word in setting["values"] for word in SWITCH):
        return "on" if value else "off"
    if value is False and "off" in setting["values"]:
        return "off"
    if isinstance(value, int) and not isinstance(value, bool) and str(value) in setting["values"]:
        return str(value) if setting["type"] == "string" else value
    if setting["type"] == "number" and isinstance(value, str) and value.isdecimal() and value.isascii():
        return int(value)
    return value


def _check_type(name, setting, value):
    found, advice = json_type(value), f"give {setting['expected']}"
    if found == "null" and setting["null"]:
        return
    if setting["type"] == "array" and value == NONE:
        return
    if found is None:
        raise Problem(f"{name}: its type is {type(value).__name__}, not {setting['type']}", advice)
    if found != setting["type"]:
        raise Problem(f"{name}: its JSON type is {found}, not {setting['type']}", advice)
    if found == "array" and not all(isinstance(element, str) for element in value):
        raise Problem(f"{name}: an element of it is not a string", advice)
    if isinstance(value, float) and not value.is_integer():
        raise Problem(f"{name}: {value} is not a whole number", advice)


def checked_setting(word, value):
    """Returns the full name and the value to send. Raises Problem."""
    name = find_setting(word)
    if name is None:
        raise Problem(*unknown_setting(word))
    setting = SETTINGS[name]
    if not setting["set"]:
        raise Problem(f"{name}: cannot be set, only read", "leave it out")
    value = as_meant(setting, decrypted(value))
    _check_type(name, setting, value)
    return name, value
