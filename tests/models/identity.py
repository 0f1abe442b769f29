# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""/var/libvelk/libvelk: administrator (2) and location (3)."""

from __future__ import annotations

from .device import FAILURE, SUCCESS, Answer, Device, Request, joined, lines

PATH = "/var/libvelk/libvelk"
KEYS = {2: b"ADMINISTRATOR=", 3: b"LOCATION="}
DIRECTIVES = {2: b"syscontact", 3: b"syslocation"}
ESCAPES = {ord("\\"): b"\\\\", ord("&"): b"\\&", ord('"'): b'\\"', ord("'"): b"'\\''", ord("/"): b"\\/"}


def get(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(PATH)
    if text is None:
        device.log_error("GetSettingFile ifstream")
        return FAILURE
    key = KEYS[request.id]
    for line in lines(text):
        if line.startswith(key):
            answer.put_text(line[len(key) :])
            break
    return SUCCESS


def set(device: Device, request: Request) -> int:
    text = device.read(PATH)
    if text is None:
        device.log_error("SetSettingFile ifstream")
    if not device.open_copy(PATH):
        device.log_error("SetSettingFile ofstream")
        return FAILURE
    if text is None:
        return FAILURE
    key = KEYS[request.id]
    new = key + request.text
    parts = [new if part.startswith(key) else part for part in lines(text)]
    if not any(part.startswith(key) for part in lines(text)):
        parts.append(new)
    device.place(PATH, joined(parts))
    directive = DIRECTIVES[request.id]
    value = b"".join(ESCAPES.get(byte, bytes([byte])) for byte in request.text) or b'""'
    device.run(b"sudo sed -i 's/%s.*/%s %s/' /usr/local/share/etc/snmp/snmpd.conf" % (directive, directive, value))
    device.run(b"sudo /etc/init.d/snmpd restart > /dev/null 2>&1")
    return SUCCESS
