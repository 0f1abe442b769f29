#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""generate.py VELKCTL - prints src/velk/catalogue.py, from the settings that velkctl lists.

Each setting gets its kind of value: by its type, and by its values where several kinds have one type. A kind that
is not known here needs a class in src/velk/values.py.
"""
import json
import subprocess
import sys

BY_TYPE = {
    "switch": "switch",
    "host": "host",
    "schedule": "schedule",
    "addresses": "servers",
    "mac-address": "mac-address",
    "hex": "rate",
    "numbers": "signal",
}
CHOICES = {
    ("static", "dhcp"): "method",
    ("reached", "not-reached", "no-result"): "ntp-result",
    ("auto", "100-full", "100-half", "10-full", "10-half"): "link-speed",
    ("infrastructure", "ad-hoc"): "service-set",
    ("1", "wep", "3", "4"): "encryption",
}
# Addresses and texts, by their valid values. A text that can only be read has none.
BY_EXPECTED = {
    "an IPv4 address such as 192.168.0.10": "address",
    "an IPv4 address such as 192.168.0.1, or none": "gateway",
    "an IPv4 mask such as 255.255.255.0": "netmask",
    "a text of at most 511 bytes": "text",
    "a text of at most 32 bytes": "ssid",
    "a text of 1 to 64 bytes, or none": "psk",
    "a text of 5 or 13 bytes, 10 or 26 hex digits, or none": "wep-key",
    None: "shown-text",
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
    values = row["values"]
    if row["type"] == "number":
        kind = f"{values[0]}-to-{values[-1]}"
    elif row["type"] == "choice":
        kind = CHOICES.get(tuple(values))
    else:
        kind = BY_TYPE.get(row["type"]) or BY_EXPECTED.get(row["expected"])
    if not any(kind in kinds for _, kinds in TYPE_NAMES):
        sys.exit(f"generate: {row['name']} has a new kind of value; add it here and in values.py")
    return kind


def names_of(row, rows):
    """The names of a setting: also the one without its interface, if no other setting has it."""
    own_name = row["name"].rpartition(".")[2]
    is_only = sum(other["name"].rpartition(".")[2] == own_name for other in rows) == 1
    return [row["name"], own_name] if is_only and own_name != row["name"] else [row["name"]]


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
        names = [text(name) for row in rows if kind_of(row) in kinds for name in names_of(row, rows)]
        print(wrapped(f"{name} = Literal[", names, "]"))
    print("\nSETTINGS = (")
    for row in rows:
        print(printed(row))
    print(")")


main(sys.argv[1])
