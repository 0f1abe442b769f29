# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""/var/cron/tabs/root: the time client (6 and 9) and the web contents updater (11). The log of the former (10)."""

from __future__ import annotations

import re
from typing import List, Optional

from .device import DATA_SIZE, FAILURE, INVALID, SUCCESS, Answer, Device, File, Request, copy_of, joined, lines
from .words import switched

PATH = "/var/cron/tabs/root"
RESULT_LOG = "/var/libvelk/ntp.log"
CLIENT = b"ntpdate"
UPDATER = b"web_contents_updater"
ON, OFF = 1, 2
REACHED, NOT_REACHED, NO_RESULT = 1, 2, 3
HOURS, DAILY, WEEKLY, MONTHLY, NEVER = 1, 2, 3, 4, 99
_NAME_BEGIN = re.compile(rb"[A-Za-z0-9]")
_DIGITS = re.compile(rb"[0-9]+")
_NUMBER = re.compile(rb"-?[0-9]+")  # a set of weekday 0 writes -1


class NoPlaceError(Exception):
    """A line has no place for the server."""


# ---- The time client ---------------------------------------------------------------------------


def get_ntp(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(PATH)
    if text is None:
        device.log_error("GetNtpMethod ifstream")
        return FAILURE
    answer.put_byte(OFF)
    for line in lines(text):
        at = line.find(CLIENT)
        if at >= 0 and b"#" not in line[:at]:
            answer.put_byte(ON)
            break
    return SUCCESS


def set_ntp(device: Device, request: Request) -> int:
    parts = device.edit(PATH)
    switch = request.data[0]
    if switch not in (ON, OFF):
        return INVALID
    if parts is None:
        return FAILURE
    edited = []
    for part in parts:
        at = part.find(CLIENT)
        edited.append(part if at < 0 else switched(part, at, switch == ON))
    device.place(PATH, joined(edited))
    if switch == OFF:
        device.run(b"rm " + RESULT_LOG.encode())
    return SUCCESS


def _server(line: bytes) -> bytes:
    """The server of a line with the client; empty if there is none."""
    for word in line[line.find(CLIENT) + len(CLIENT) :].split(b" "):
        if _NAME_BEGIN.match(word):
            return word
        if b">" in word:
            break
    return b""


def get_server(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(PATH)
    if text is None:
        return FAILURE
    for line in lines(text):
        if CLIENT in line:
            answer.put_text(_server(line))
            break
    return SUCCESS


def _with_server(line: bytes, server: bytes) -> bytes:
    """The line, which has its end, with another server."""
    old = _server(line)
    if old:
        return line.replace(old, server, 1)
    arrow = line.find(b">")
    if arrow < 0:
        raise NoPlaceError
    blank = line.rfind(b" ", 1, arrow)
    at = blank if blank >= 0 else arrow
    return line[:at] + server + line[at:]


def set_server(device: Device, request: Request) -> int:
    parts = device.edit(PATH)
    if parts is None:
        return FAILURE
    edited = []
    try:
        for part in parts:
            edited.append(_with_server(part + b"\n", request.text) if CLIENT in part else part + b"\n")
    except NoPlaceError:
        device.log("execute_velk_command exception basic_string::at")
        # The edit copy remains, normally empty: a long text may have been written in part.
        device.files[copy_of(PATH)] = File(b"".join(edited), 0o600, is_same=False, may_be_cut=True)
        return FAILURE
    device.place(PATH, b"".join(edited))
    return SUCCESS


def get_result(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(RESULT_LOG)
    if text is None:
        answer.put_byte(NO_RESULT)
        return SUCCESS
    last = (lines(text) or [b""])[-1]
    answer.put_byte(REACHED if last.find(b"time server", 11) >= 0 else NOT_REACHED)
    return SUCCESS


# ---- The updater -------------------------------------------------------------------------------


def _put_schedule(answer: Answer, kind: int, value: int, time: bytes) -> int:
    answer.data[0] = kind
    answer.data[1] = value & 0xFF
    answer.put_text(time[: DATA_SIZE - 3], 2)
    return SUCCESS


def _number(text: bytes) -> int:
    found = _NUMBER.match(text)
    number = int(found[0]) if found else 0
    return number if -(1 << 31) <= number < 1 << 31 else 0


def get_schedule(device: Device, request: Request, answer: Answer) -> int:
    text = device.read(PATH)
    if text is None:
        return FAILURE
    line = next((part for part in lines(text) if UPDATER in part), None)
    if line is None:
        return _put_schedule(answer, NEVER, NEVER, b"00:00")
    minute, hour, day, month, weekday = (line.split(b" ") + [b""] * 5)[:5]
    if hour.startswith(b"*/"):
        return _put_schedule(answer, HOURS, _number(hour[2:]), b"00:00")
    time = hour + b":" + minute
    if day != b"*":
        return _put_schedule(answer, MONTHLY, _number(day), time)
    if month != b"*":
        return FAILURE
    if weekday != b"*":
        return _put_schedule(answer, WEEKLY, _number(weekday) + 1, time)
    return _put_schedule(answer, DAILY, 1, time)


def _schedule_lines(request: Request) -> Optional[List[bytes]]:
    kind, value = request.data[0], request.data[1]
    hour, colon, minute = request.data[2:].split(b"\0", 1)[0].partition(b":")
    if not colon or not _DIGITS.fullmatch(hour) or not _DIGITS.fullmatch(minute):
        return None
    number = str(value).encode()
    fields: List[bytes] = []
    if kind == HOURS:
        fields = [b"00 */%s * * *" % number]
    elif kind == DAILY:
        fields = [b"%s %s * * *" % (minute, hour)]
    elif kind == WEEKLY:
        fields = [b"%s %s * * %d" % (minute, hour, value - 1)]
    elif kind == MONTHLY and 1 <= value <= 31:
        days = [number + b" *"]
        if value in (29, 30):
            days = [number + b" 1,4-12", b"1," + number + b" 3"]
        elif value == 31:
            days = [b"31 1,8", b"1,31 3,5,7,10,12"]
        fields = [b"%s %s %s *" % (minute, hour, part) for part in days]
    elif kind != NEVER:
        return None
    return [part + b" perl /usr/bin/web_contents_updater.pl" for part in fields]


def set_schedule(device: Device, request: Request) -> int:
    new = _schedule_lines(request)
    if new is None:
        return FAILURE
    parts = device.edit(PATH)
    if parts is None:
        return FAILURE
    device.place(PATH, joined([part for part in parts if UPDATER not in part] + new))
    return SUCCESS
