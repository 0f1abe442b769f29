# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""/etc/network/interfaces: method (102), address (104), mask (105) and gateway (106)."""

from __future__ import annotations

from typing import List, Optional

from . import dhcp, live
from .device import FAILURE, INVALID, SUCCESS, Answer, Device, Request, joined, lines

PATH = "/etc/network/interfaces"
STATIC, DHCP = 1, 2
KEYS = {104: b"address ", 105: b"netmask ", 106: b"gateway "}


def _header(name: bytes) -> bytes:
    return b"iface %s inet " % name


def _body(text: bytes, name: bytes) -> Optional[List[bytes]]:
    """The interface's first stanza; its first line is the rest of the line with its name."""
    header = _header(name)
    stanza: Optional[List[bytes]] = None
    for line in lines(text):
        if stanza is None:
            if line.startswith(header):
                stanza = [line[len(header) :]]
        elif line.startswith(b"iface"):
            break
        else:
            stanza.append(line)
    return stanza


def _method(device: Device, name: bytes) -> int:
    text = device.read(PATH)
    stanza = None if text is None else _body(text, name)
    if stanza is None:
        return FAILURE
    if stanza[0].startswith(b"dhcp"):
        return DHCP
    return STATIC if stanza[0].startswith(b"static") else FAILURE


def get_method(device: Device, request: Request, answer: Answer) -> int:
    method = _method(device, request.name)
    if method == FAILURE:
        return FAILURE
    answer.put_byte(method)
    return SUCCESS


def _configured(device: Device, request: Request, answer: Answer) -> int:
    key = KEYS[request.id]
    text = device.read(PATH)
    if text is None:
        return FAILURE
    for line in (_body(text, request.name) or [])[1:]:
        at = line.find(key)
        if at >= 0:
            answer.put_text(line[at + len(key) :])
            break
    return SUCCESS


def get_value(device: Device, request: Request, answer: Answer) -> int:
    method = _method(device, request.name)
    if method == FAILURE:
        return FAILURE
    if method == STATIC:
        return _configured(device, request, answer)
    if request.name == b"eth1" and live.is_wired_linked(device):
        return SUCCESS
    if request.id == 106:
        return live.get_gateway(device, request, answer)
    return live.get_address(device, request, answer)


def set_method(device: Device, request: Request) -> int:
    method = request.data[0]
    result = _replace_method(device, request, method)
    if request.name == b"eth0" and method == DHCP:
        device.run(b"rm -f /tmp/oldIPAddress")
    return result


def _replace_method(device: Device, request: Request, method: int) -> int:
    parts = device.edit(PATH)
    if method not in (STATIC, DHCP):
        return INVALID
    if parts is None:
        return FAILURE
    header = _header(request.name)
    word = b"static" if method == STATIC else b"dhcp"
    device.place(PATH, joined([header + word if part.startswith(header) else part for part in parts]))
    return dhcp.switch_block(device, request.name, method == DHCP)


def set_value(device: Device, request: Request) -> int:
    key, value = KEYS[request.id], request.text
    parts = device.edit(PATH)
    if parts is None:
        return FAILURE
    removes = request.id == 106 and not value
    new = [] if removes else [b"\t" + key + value]
    header = _header(request.name)
    edited: List[bytes] = []
    rest = iter(parts)
    for part in rest:
        edited.append(part)
        if not part.startswith(header):
            continue
        for line in rest:
            if line.startswith(b"iface"):
                edited += [*new, line]
                break
            if key in line:
                edited += new
                break
            edited.append(line)
    device.place(PATH, joined(edited))
    return SUCCESS
