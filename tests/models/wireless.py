# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The wireless daemon: its configuration (302 to 304, 306 to 312, 314, 318) and state (4, 5, 301, 305, 315 to 317).

Also the restart (1), which notifies it."""

from __future__ import annotations

import struct
from typing import Dict, Optional, Tuple

from . import live
from .device import (ANSWERS, FAILURE, INVALID, LOG, MESSAGE, NO_ADAPTER, NO_DAEMON, SUCCESS, Answer, Device, Request)

BODY_SIZE = 236
RESTARTED, STORE, REPORT, STATE = 1, 2, 3, 4
REPLY_PATH = "/tmp/WlanAplFromWlanSock"
NOTIFY_ONLY = 2

# Offsets in the configuration.
SSID, SERVICE_SET, STANDARDS, CHANNEL, AUTHENTICATION, ENCRYPTION, DEFAULT_KEY = 0, 34, 36, 38, 40, 42, 44
KEYS, KEY_SIZE, PSK = 48, 30, 168
SIZES = {SSID: 32, PSK: 64}
WEP = 1

# Offsets of numbers in the configuration, with the byte of a request for each value of the daemon.
CODES: Dict[int, Tuple[int, Dict[int, int]]] = {
    302: (SERVICE_SET, {0: 2, 1: 1}),
    306: (ENCRYPTION, {0: 1, 1: 2, 2: 3, 3: 4}),
    307: (AUTHENTICATION, {0: 1, 1: 2, 2: 3, 3: 4}),
    318: (STANDARDS, {0: 2, 1: 3}),
}
NUMBERS = {304: (CHANNEL, 13), 312: (DEFAULT_KEY, 4)}


def _number(record: bytes, offset: int) -> int:
    (number,) = struct.unpack_from("=H", record, offset)
    return int(number)


def _send(device: Device, kind: int, body: bytes = b"") -> int:
    if device.scene.daemon == NO_DAEMON:
        device.events.append((LOG, b"SendWlanRequestMessage connect:errno=2:No such file or directory"))
        return FAILURE
    device.events.append((MESSAGE, struct.pack("=hxx", kind) + body.ljust(BODY_SIZE, b"\0")))
    return SUCCESS


def _query(device: Device, kind: int) -> Optional[bytes]:
    """The body of the daemon's reply; bytes that it lacks are zero."""
    if _send(device, kind) != SUCCESS:
        return None
    device.files.pop(REPLY_PATH, None)
    if device.scene.daemon != ANSWERS:
        device.log("RecvWlanResponseMessage select timeout")
        return None
    body = device.scene.configuration if kind == REPORT else device.scene.state
    return body[:BODY_SIZE].ljust(BODY_SIZE, b"\0")


# ---- Configuration -----------------------------------------------------------------------------


def _get_bytes(record: bytes, offset: int, size: int, answer: Answer) -> int:
    length = _number(record, offset)
    if length > size:
        return FAILURE
    answer.data[:length] = record[offset + 2 : offset + 2 + length]
    return SUCCESS


def get_configuration(device: Device, request: Request, answer: Answer) -> int:
    record = _query(device, REPORT)
    if record is None:
        return FAILURE
    number = request.id
    if number in NUMBERS:
        answer.put_byte(_number(record, NUMBERS[number][0]))
        return SUCCESS
    if number in CODES:
        offset, bytes_of = CODES[number]
        value = _number(record, offset)
        if value in bytes_of:
            answer.put_byte(bytes_of[value])
            return SUCCESS
        if number == 318:
            answer.put_byte(3)
        return FAILURE
    if number == 303:
        return _get_bytes(record, SSID, SIZES[SSID], answer)
    if number == 314:
        return _get_bytes(record, PSK, SIZES[PSK], answer)
    return _get_bytes(record, KEYS + KEY_SIZE * (number - 308), KEY_SIZE - 2, answer)


def _replaced(record: bytes, offset: int, new: bytes) -> bytes:
    return record[:offset] + new + record[offset + len(new) :]


def _with_key(record: bytes, key: int, text: bytes) -> Optional[bytes]:
    if len(text) not in (0, 5, 10, 13, 26):
        return None
    if not text and _number(record, ENCRYPTION) == WEP and _number(record, DEFAULT_KEY) == key:
        return None
    # The end of a longer key stays.
    return _replaced(record, KEYS + KEY_SIZE * (key - 1), struct.pack("=H", len(text)) + text)


def _with_value(record: bytes, request: Request) -> Optional[bytes]:
    """The configuration with the request's value; None if that is not valid."""
    number, text, byte = request.id, request.text, request.data[0]
    if number in NUMBERS:
        offset, last = NUMBERS[number]
        return _replaced(record, offset, struct.pack("=H", byte)) if 1 <= byte <= last else None
    if number in CODES:
        offset, bytes_of = CODES[number]
        values = {code: value for value, code in bytes_of.items()}
        return _replaced(record, offset, struct.pack("=H", values[byte])) if byte in values else None
    if number in (303, 314):
        offset = SSID if number == 303 else PSK
        size = SIZES[offset]
        new = struct.pack("=H", len(text)) + text.ljust(size, b"\0")
        return _replaced(record, offset, new) if len(text) <= size else None
    return _with_key(record, number - 307, text)


def set_configuration(device: Device, request: Request) -> int:
    record = _query(device, REPORT)
    if record is None:
        return FAILURE
    new = _with_value(record, request)
    return INVALID if new is None else _send(device, STORE, new)


# ---- State -------------------------------------------------------------------------------------


def _get_code(value: int, other: int, answer: Answer) -> int:
    answer.put_byte(value + 1 if value <= 2 else other)
    return SUCCESS if value <= 2 else FAILURE


def get_state(device: Device, request: Request, answer: Answer) -> int:
    result = live.refuse_wireless(device, request)
    if result != SUCCESS:
        return result
    record = _query(device, STATE)
    if record is None:
        return FAILURE
    if request.id == 4:
        found = record[:64].split(b"\0", 1)[0].split(b"Rev= ", 1)
        answer.put_text(found[1] if len(found) > 1 else b"")
    elif request.id == 5:
        answer.put_text(record[64:96].split(b"\0", 1)[0])
    elif request.id == 301:
        return _get_code(_number(record, 152), 3, answer)
    elif request.id == 305:
        return _get_code(_number(record, 96), 1, answer)
    elif request.id == 315:
        answer.data[:4] = record[156:160]
    elif request.id == 316:
        answer.put_text(record[142:148].hex().upper().encode())
    else:
        answer.data[:4] = record[160:164]
    return SUCCESS


# ---- Restart -----------------------------------------------------------------------------------


def restart(device: Device, request: Request) -> int:
    if request.name == b"eth0":
        return _restart_wired(device)
    if not live.has_adapter(device):
        return NO_ADAPTER
    if request.data[0] == NOTIFY_ONLY:
        return SUCCESS if live.is_wired_linked(device) else _send(device, RESTARTED)
    device.run(b"sudo ifdown eth1")
    device.sleep(1)
    if live.is_wired_linked(device):
        device.run(b"sudo ifconfig eth1 up")
        return SUCCESS
    device.run(b"sudo ifup eth1 &")
    return _send(device, RESTARTED)


def _restart_wired(device: Device) -> int:
    device.run(b"sudo ifdown eth0")
    device.sleep(1)
    device.run(b"sudo ifup eth0")
    if not live.has_adapter(device):
        return SUCCESS
    device.sleep(5)
    if live.is_wired_linked(device):
        for _ in range(2):
            device.sleep(30)
            device.run(b"sudo ifdown eth1")
            device.run(b"sudo ifup eth1")
    return SUCCESS
