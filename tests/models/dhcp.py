# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""/etc/dhclient.conf: the requested options (7 and 107) and the blocks of the interfaces."""

from __future__ import annotations

from . import hooks
from .device import FAILURE, SUCCESS, Answer, Device, Request, lines
from .words import find_word, has_word

PATH = "/etc/dhclient.conf"
ON, OFF = 1, 2
NTP_SERVERS = b"ntp-servers"
NAME_SERVERS = b"domain-name-servers"
_LETTERS = b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"


class _Blocks:
    """Which lines may apply to an interface; the empty name is every interface."""

    def __init__(self, name: bytes, ignores_comments: bool) -> None:
        self._name = name
        self._ignores_comments = ignores_comments
        self.in_block = not name
        self._in_other = False

    def applies(self, line: bytes) -> bool:
        if self._in_other:
            self._in_other = not has_word(line, b"}", self._ignores_comments)
            return False
        if self.in_block:
            self.in_block = not has_word(line, b"}", self._ignores_comments)
            return True
        if not has_word(line, b"interface", self._ignores_comments):
            return True
        if self._name in line:
            self.in_block = True
            return True
        self._in_other = b"}" not in line
        return False


class _Statements:
    """Which lines belong to a request statement that applies to an interface."""

    def __init__(self, name: bytes, ignores_comments: bool) -> None:
        self._blocks = _Blocks(name, ignores_comments)
        self._ignores_comments = ignores_comments
        self.is_open = False

    def has(self, line: bytes) -> bool:
        if not self._blocks.applies(line):
            return False
        if not self._blocks.in_block and b"#" in line:
            return False
        self.is_open = self.is_open or has_word(line, b"request", self._ignores_comments)
        return self.is_open


def _get_option(device: Device, request: Request, answer: Answer, option: bytes, ignores_comments: bool) -> int:
    text = device.read(PATH)
    if text is None:
        return FAILURE
    is_requested = False
    statements = _Statements(request.name, ignores_comments)
    for part in lines(text):
        line = part + b"\n"
        if statements.has(line):
            is_requested = option in line
            if is_requested or b";" in line:
                break
    answer.put_byte(ON if is_requested else OFF)
    return SUCCESS


def get_ntp(device: Device, request: Request, answer: Answer) -> int:
    return _get_option(device, request, answer, NTP_SERVERS, False)


def get_dns(device: Device, request: Request, answer: Answer) -> int:
    return _get_option(device, request, answer, NAME_SERVERS, True)


def _without(line: bytes, option: bytes, at: int) -> bytes:
    end = at + len(option)
    if option + b"," in line:
        return line[:at] + line[end + 1 :]
    rest = line[end:]
    # The character in column one always stays.
    while at > 1 and line[at - 1] not in _LETTERS:
        at -= 1
    return line[:at] + rest


def _set_option(device: Device, name: bytes, option: bytes, add: bool, ignores_comments: bool) -> int:
    parts = device.edit(PATH)
    if parts is None:
        return FAILURE
    statements = _Statements(name, ignores_comments)
    edited = []
    for part in parts:
        line = part + b"\n"
        if statements.has(line):
            at = find_word(line, option, ignores_comments)
            end = line.find(b";")
            if at >= 0:
                line = line if add else _without(line, option, at)
            elif end >= 0:
                line = line[:end] + b"," + option + line[end:] if add else line
                statements.is_open = False
        edited.append(line)
    device.place(PATH, b"".join(edited))
    return SUCCESS


def set_ntp(device: Device, request: Request) -> int:
    result = _set_option(device, request.name, NTP_SERVERS, request.data[0] == ON, False)
    return result if result != SUCCESS else hooks.switch_command(device, request, hooks.NTPDATE)


def set_dns(device: Device, request: Request) -> int:
    enable = request.data[0] == ON
    result = _set_option(device, request.name, NAME_SERVERS, enable, True)
    return result if result != SUCCESS else hooks.switch_resolver(device, request.name, enable)


def switch_block(device: Device, name: bytes, enable: bool) -> int:
    """Switches the interface's block on or off."""
    parts = device.edit(PATH)
    if parts is None:
        return FAILURE
    blocks = _Blocks(name, False)
    edited = []
    for part in parts:
        line = part + b"\n"
        if blocks.applies(line) and (blocks.in_block or b"}" in line):
            mark = line.find(b"#")
            if mark < 0 and not enable:
                line = b"#" + line
            elif mark >= 0 and enable:
                line = line[:mark] + line[mark + 1 :]
        edited.append(line)
    device.place(PATH, b"".join(edited))
    return SUCCESS
