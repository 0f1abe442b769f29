# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""/etc/resolv.dnsmasq.conf: the DNS servers (108)."""

from __future__ import annotations

from .device import FAILURE, SUCCESS, Answer, Device, Request, joined, lines

PATH = "/etc/resolv.dnsmasq.conf"
KEY = b"nameserver"
SLOT, SLOTS = 16, 3


def get(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(PATH)
    if text is None:
        return FAILURE
    counted = [line for line in lines(text) if line.startswith(KEY)][:SLOTS]
    for slot, line in enumerate(counted):
        words = line.split(b"\0", 1)[0].split()
        # A line without an address empties its slot, also if the address before ran on into it.
        address = words[1][: SLOT * (SLOTS - slot)] if len(words) > 1 else bytes(SLOT)
        answer.data[slot * SLOT : slot * SLOT + len(address)] = address
    return SUCCESS


def set(device: Device, request: Request) -> int:
    servers = []
    for slot in range(SLOTS):
        server = request.data[slot * SLOT : slot * SLOT + SLOT]
        if server[0] == 0:
            break
        servers.append(server if server[-1] else server.split(b"\0", 1)[0])
    new = joined([KEY + b" " + server for server in servers])
    return SUCCESS if device.write(PATH, new) else FAILURE
