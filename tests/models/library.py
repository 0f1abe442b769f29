# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The model of execute_velk_command()."""

from __future__ import annotations

import errno
import struct
from typing import Callable, Dict, Tuple

from . import crontab, dhcp, hooks, identity, interfaces, live, resolver, wireless
from .device import FAILURE, GET, INVALID, LOCK, RESTART, SET, Answer, Device, Outcome, Pair, Request

Getter = Callable[[Device, Request, Answer], int]
Setter = Callable[[Device, Request], int]

NONE: Tuple[bytes, ...] = (b"",)
BOTH: Tuple[bytes, ...] = (b"eth0", b"eth1")
WIRED: Tuple[bytes, ...] = (b"eth0",)
WIRELESS: Tuple[bytes, ...] = (b"eth1",)
CONFIGURATION = (302, 303, 304, 306, 307, 308, 309, 310, 311, 312, 314, 318)
STATE = (4, 5, 301, 305, 315, 316, 317)

GETTERS: Dict[int, Tuple[Tuple[bytes, ...], Getter]] = {
    2: (NONE, identity.get),
    3: (NONE, identity.get),
    6: (NONE, crontab.get_ntp),
    7: (NONE, dhcp.get_ntp),
    9: (NONE, crontab.get_server),
    10: (NONE, crontab.get_result),
    11: (NONE, crontab.get_schedule),
    101: (BOTH, live.get_mac),
    102: (BOTH, interfaces.get_method),
    103: (BOTH, hooks.get_apipa),
    104: (BOTH, interfaces.get_value),
    105: (BOTH, interfaces.get_value),
    106: (BOTH, interfaces.get_value),
    107: (BOTH, dhcp.get_dns),
    108: (BOTH, resolver.get),
    201: (WIRED, live.get_speed),
    **{number: (WIRELESS, wireless.get_configuration) for number in CONFIGURATION},
    **{number: (WIRELESS, wireless.get_state) for number in STATE},
}
SETTERS: Dict[int, Tuple[Tuple[bytes, ...], Setter]] = {
    2: (NONE, identity.set),
    3: (NONE, identity.set),
    6: (NONE, crontab.set_ntp),
    7: (NONE, dhcp.set_ntp),
    9: (NONE, crontab.set_server),
    11: (NONE, crontab.set_schedule),
    102: (BOTH, interfaces.set_method),
    103: (BOTH, hooks.set_apipa),
    104: (BOTH, interfaces.set_value),
    105: (BOTH, interfaces.set_value),
    106: (BOTH, interfaces.set_value),
    107: (BOTH, dhcp.set_dns),
    108: (BOTH, resolver.set),
    109: (WIRED, hooks.set_notices),
    201: (WIRED, live.set_speed),
    **{number: (WIRELESS, wireless.set_configuration) for number in CONFIGURATION},
}
RESTARTS: Dict[int, Tuple[Tuple[bytes, ...], Setter]] = {1: (BOTH, wireless.restart)}


def _lock(device: Device) -> bool:
    file = device.files.get(LOCK)
    if file is None:
        device.make(LOCK, 0o666)
    elif file.is_folder:
        device.error = errno.EISDIR
        device.log_error("VkLibLock open2")
        device.log("lockking")
        return False
    else:
        device.log("VkLibLock indelible")
    return True


def _run(device: Device, request: Request, answer: Answer) -> int:
    if request.type in (SET, RESTART) and not _lock(device):
        return FAILURE
    if request.type not in (GET, SET, RESTART):
        (number,) = struct.unpack("=i", struct.pack("=I", request.type))
        device.log(f"command_type = {number}")
        return INVALID
    names: Tuple[bytes, ...] = ()
    if request.type == GET and request.id in GETTERS:
        names, getter = GETTERS[request.id]
        run: Callable[[], int] = lambda: getter(device, request, answer)
    elif request.type != GET and request.id in (SETTERS if request.type == SET else RESTARTS):
        names, setter = (SETTERS if request.type == SET else RESTARTS)[request.id]
        run = lambda: setter(device, request)
    else:
        return INVALID
    if request.name not in names:
        device.log("paramater matching")
        return INVALID
    return run()


def execute(pair: Pair) -> Outcome:
    request = pair.request
    device = Device(pair.scene)
    answer = Answer()
    result = _run(device, request, answer)
    header = struct.pack("=16sII", request.name[:15], request.type, request.id)
    return Outcome(result, header + bytes(answer.data), device.events, device.files)
