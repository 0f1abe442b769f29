#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""generate.py VELKCTL - prints src/velk/catalogue.py, from the settings that velkctl lists.

Each setting gets its kind of value: by the valid values or, if it can only be read, by the values or by its name.
A kind that is not known here needs a class in src/velk/values.py.
"""
import json
import subprocess
import sys

BY_EXPECTED = {
    "an IPv4 address such as 192.168.0.10": "address",
    "an IPv4 address such as 192.168.0.1, or none": "gateway",
    "an IPv4 mask such as 255.255.255.0": "netmask",
    "one to three IPv4 addresses such as 192.168.0.1, or none": "servers",
    "a host name or address such as 192.168.0.1, or none": "host",
    "every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off": "schedule",
    "on or off": "switch",
    "static or dhcp": "method",
    "auto, 100-full, 100-half, 10-full or 10-half": "link-speed",
    "infrastructure or ad-hoc": "service-set",
    "1, 2 (wep), 3 or 4": "encryption",
    "a number from 1 to 4": "1-to-4",
    "a number from 1 to 13": "1-to-13",
    "2 or 3": "2-to-3",
    "a text of at most 511 bytes": "text",
    "a text of at most 32 bytes": "ssid",
    "a text of 1 to 64 bytes, or none": "psk",
    "a text of 5 or 13 bytes, 10 or 26 hex digits, or none": "wep-key",
}
BY_VALUES = {
    ("reached", "not-reached", "no-result"): "ntp-result",
    ("1", "2", "3"): "1-to-3",
}
BY_NAME = {
    "mac-address": "mac-address",
    "access-point": "mac-address",
    "hardware-version": "shown-text",
    "software-version": "shown-text",
    "rate": "rate",
    "signal": "signal",
}

# Groups of settings with values of the same type in Python, for the overloads of get() and set().
TYPE_NAMES = [
    ("SwitchName", ["switch"]),
    ("NumberName", ["1-to-3", "1-to-4", "2-to-3", "1-to-13"]),
    ("TextName", ["text", "ssid"]),
    ("ShownName", ["shown-text", "mac-address"]),
    ("HostName", ["host"]),
    ("AddressName", ["address", "netmask"]),
    ("GatewayName", ["gateway"]),
    ("ServersName", ["servers"]),
    ("ScheduleName", ["schedule"]),
    ("SecretName", ["psk", "wep-key"]),
    ("MethodName", ["method"]),
    ("NtpResultName", ["ntp-result"]),
    ("LinkSpeedName", ["link-speed"]),
    ("ServiceSetName", ["service-set"]),
    ("EncryptionName", ["encryption"]),
    ("RateName", ["rate"]),
    ("SignalName", ["signal"]),
]

HEAD = '''\
# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The settings of the device. Printed by generate.py from the list of velkctl: do not edit."""

from __future__ import annotations

from typing import Literal

from .setting import Setting
'''


def text(value):
    """A text in double quotes, as the sources have it."""
    return json.dumps(value) if isinstance(value, str) else repr(value)


def kind_of(row):
    kind = (BY_EXPECTED.get(row["expected"]) or BY_VALUES.get(tuple(row["values"])) or
            BY_NAME.get(row["name"].rpartition(".")[2]))
    return kind or sys.exit(f"generate: {row['name']} has a new kind of value; add it here and in values.py")


def wrapped(start, items, end, indent=""):
    """Items in brackets, in one line if they fit into 120 characters."""
    line = indent + start + ", ".join(items) + end
    if len(line) <= 120:
        return line
    lines = [indent + start]
    for item in items:
        if len(lines) == 1 or len(lines[-1]) + len(item) > 117:
            lines.append(f"{indent}    {item},")
        else:
            lines[-1] += f" {item},"
    return "\n".join([*lines, indent + end])


def printed(row):
    values = [text(value) for value in row["values"]]
    fields = {"name": row["name"], "id": row["id"], "interface": row["interface"] or "", "readable": row["get"],
              "writable": row["set"], "secret": row["secret"], "kind": kind_of(row),
              "description": row["description"], "expected": row["expected"],
              "longest_seconds": row["longest_seconds"], "takes_effect": row["takes_effect"]}
    lines = [f"        {name}={text(value)}," for name, value in fields.items()]
    lines.append(wrapped("values=(", values, ")", "        ") + ",")
    return "\n".join(["    Setting(", *lines, "    ),"])


def main(velkctl):
    listed = subprocess.run([velkctl, "list", "--json"], check=True, capture_output=True, text=True)
    rows = json.loads(listed.stdout)["settings"]
    print(HEAD)
    for name, kinds in TYPE_NAMES:
        names = [text(row["name"]) for row in rows if kind_of(row) in kinds]
        print(wrapped(f"{name} = Literal[", names, "]"))
    print("\nSETTINGS = (")
    for row in rows:
        print(printed(row))
    print(")")


main(sys.argv[1])
