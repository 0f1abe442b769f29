# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The scripts of the DHCP client: /etc/dhclient-exit-hooks and /sbin/dhclient-script."""

from __future__ import annotations

from .device import FAILURE, SUCCESS, Answer, Device, Request, lines
from .words import Branches, find_word, has_word, switched

HOOKS = "/etc/dhclient-exit-hooks"
SCRIPT = "/sbin/dhclient-script"
ON, OFF = 1, 2
APIPA = b"/usr/sbin/avahi-autoipd"
NTPDATE = b"/usr/bin/ntpdate"
NOTICES = (b"/sbin/printdhcpnotice.pl", b"/sbin/printdhcpstart.pl")


def switch_command(device: Device, request: Request, command: bytes) -> int:
    parts = device.edit(HOOKS)
    if parts is None:
        return FAILURE
    switch = request.data[0]
    branches = Branches(b"$interface", request.name)
    edited = []
    for part in parts:
        line = part + b"\n"
        is_active = branches.runs(line) or not request.name
        at = line.find(command)
        if is_active and at >= 0 and switch in (ON, OFF):
            line = switched(line, at, switch == ON)
        edited.append(line)
    device.place(HOOKS, b"".join(edited))
    return SUCCESS


def get_apipa(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(HOOKS)
    if text is None:
        return FAILURE
    answer.put_byte(OFF)
    branches = Branches(b"$interface", request.name)
    for part in lines(text):
        line = part + b"\n"
        if branches.runs(line) and has_word(line, APIPA):
            answer.put_byte(ON)
            break
    return SUCCESS


def set_apipa(device: Device, request: Request) -> int:
    return switch_command(device, request, APIPA)


def set_notices(device: Device, request: Request) -> int:
    for command in NOTICES:
        result = switch_command(device, request, command)
        if result != SUCCESS:
            return result
    return SUCCESS


def switch_resolver(device: Device, name: bytes, enable: bool) -> int:
    parts = device.edit(SCRIPT)
    if parts is None:
        return FAILURE
    branches = Branches(b"interface", name)
    edited = []
    for part in parts:
        line = part + b"\n"
        at = find_word(line, b"make_resolv_conf", False)
        if branches.runs(line) and at >= 0:
            line = switched(line, at, enable)
        edited.append(line)
    device.place(SCRIPT, b"".join(edited))
    return SUCCESS
