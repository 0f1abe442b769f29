# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The state of the interfaces: link, adapter, live values (104 to 106), hardware address (101), speed (201)."""

from __future__ import annotations

import re
from typing import Iterator, List, Optional

from .device import (FAILURE, INVALID, NO_ADAPTER, RESULT, SUCCESS, WIRED_LINKED, Answer, Device, Request, lines)

ROUTES = "/proc/net/route"
ADAPTERS = "/usr/local/share/apps/wlan/supportlist.ini"
USB_DEVICES = "/proc/bus/usb/devices"
LINK_LOG = "/var/log/syslog/syslog_info.log."
RUNS = 60
LONGEST_LINE = 65536
_HEXADECIMAL = re.compile(rb"[ \t\n\v\f\r]*([+-]?)(?:0[xX](?=[0-9a-fA-F]))?([0-9a-fA-F]+)")
_ROUTE_NUMBER = re.compile(rb"(?:0[xX]|(?!0[xX]))[0-9a-fA-F]+")  # the kernel's numbers have no sign
MODES = {2: (100, b"full"), 3: (100, b"half"), 4: (10, b"full"), 5: (10, b"half")}


def _run_tool(device: Device, tool: bytes) -> Optional[bytes]:
    """The output of a tool, which is still in the result file; None if there is none."""
    file = device.files.get(RESULT)
    if file is None and not device.make(RESULT, 0o600):
        return None
    if file is not None and file.is_folder:
        return None
    device.run(tool + b" > " + RESULT.encode())
    return device.read(RESULT)


def _output_lines(output: bytes) -> Iterator[bytes]:
    """The lines of a tool's output up to one that is too long with its end."""
    begin = 0
    for line in lines(output):
        end = min(begin + len(line) + 1, len(output))
        if end - begin > LONGEST_LINE:
            return
        yield line
        begin = end


def _remove_result(device: Device) -> None:
    device.run(b"rm " + RESULT.encode())


# ---- Link and adapter --------------------------------------------------------------------------


def is_wired_linked(device: Device) -> bool:
    for run in range(RUNS):
        output = _run_tool(device, b"sudo /usr/sbin/ethtool eth0")
        if not output:
            device.log("IsWiredLinked ifstream")
        else:
            _remove_result(device)
            for line in _output_lines(output):
                if b"Link detected: yes" in line:
                    return True
                if b"Link detected: no" in line:
                    return False
        device.sleep(1)
        if run == RUNS - 1:
            device.log("(ETHTOOL_RETRY - 1) == i)")
    return _is_linked_in_log(device)


def _is_linked_in_log(device: Device) -> bool:
    for number in (b"0", b"1"):
        output = _run_tool(device, b'grep "eth0: link" ' + LINK_LOG.encode() + number)
        if not output:
            device.log("Error ifs.")
            continue
        state: Optional[bool] = None
        for line in _output_lines(output):
            if b"link up" in line:
                state = True
            elif b"link down" in line:
                state = False
        _remove_result(device)
        if state is not None:
            return state
    return False


def _hexadecimal(text: bytes) -> int:
    found = _HEXADECIMAL.match(text)
    if not found:
        return 0
    number = int(found[2], 16)
    return (-number if found[1] == b"-" else number) & 0xFFFFFFFF


def has_adapter(device: Device) -> bool:
    adapters: List[bytes] = [b"QT4408RKM"]
    vendor = 0
    for line in lines(device.read(ADAPTERS) or b""):
        if b"VID=" in line:
            vendor = _hexadecimal(line[4:])
        if b"PID=" in line:
            adapters.append(b"Vendor=%04x ProdID=%04x" % (vendor, _hexadecimal(line[4:])))
    attached = lines(device.read(USB_DEVICES) or b"")
    return any(adapter in line for line in attached for adapter in adapters)


# ---- Properties --------------------------------------------------------------------------------


def refuse_wireless(device: Device, request: Request) -> int:
    if request.name != b"eth1":
        return SUCCESS
    if not has_adapter(device):
        return NO_ADAPTER
    return WIRED_LINKED if is_wired_linked(device) else SUCCESS


def get_mac(device: Device, request: Request, answer: Answer) -> int:
    result = refuse_wireless(device, request)
    if result == SUCCESS:
        device.log("ioctl errno=19:No such device")  # the private network has no interfaces
    return result


def get_gateway(device: Device, request: Request, answer: Answer) -> int:
    result = refuse_wireless(device, request)
    if result != SUCCESS:
        return result
    text = device.read(ROUTES)
    if text is None:
        device.log("DelRoutingTable ifs")
        return FAILURE
    for line in lines(text):
        words = line.split()
        is_default = line.startswith(request.name) and len(words) > 2 and words[1] == b"00000000"
        number = _ROUTE_NUMBER.match(words[2]) if is_default else None
        if number and int(number[0], 16) < 1 << 32:
            gateway = int(number[0], 16).to_bytes(4, "little")
            answer.put_text(b".".join(b"%d" % byte for byte in gateway))
            break
    return SUCCESS


def get_address(device: Device, request: Request, answer: Answer) -> int:
    key = b"inet addr:" if request.id == 104 else b"Mask:"
    output = _run_tool(device, b"ifconfig")
    if output is None:
        device.log("ifstream")
        return FAILURE
    is_inside = False
    for line in _output_lines(output):
        if is_inside and not line:
            continue
        is_inside = line.startswith(request.name) or (is_inside and line.startswith(b" "))
        at = line.find(key)
        if is_inside and at >= 0:
            answer.put_text(line[at + len(key) :].split(b" ", 1)[0])
    _remove_result(device)
    return SUCCESS


def get_speed(device: Device, request: Request, answer: Answer) -> int:
    output = _run_tool(device, b"sudo ethtool eth0")
    if output is None:
        device.log("ifstream")
        return FAILURE
    negotiates = speed = 0
    duplex = b"half"
    for line in _output_lines(output):
        if b"Auto-negotiation: on" in line:
            negotiates = 1
        elif b"Auto-negotiation: off" in line:
            negotiates = 0
        elif b"Speed: 100M" in line:
            speed = 100
        elif b"Speed: 10M" in line:
            speed = 10
        elif b"Duplex: Full" in line:
            duplex = b"full"
        elif b"Duplex: Half" in line:
            duplex = b"half"
    _remove_result(device)
    mode = 1 if negotiates else next((mode for mode, fact in MODES.items() if fact == (speed, duplex)), 0)
    if mode == 0:
        device.log(f"ecmd.autoneg=0, ecmd.speed={speed}")
        return FAILURE
    answer.put_byte(mode)
    return SUCCESS


def set_speed(device: Device, request: Request) -> int:
    mode = request.data[0]
    if mode == 1:
        device.run(b"sudo ethtool -s eth0 autoneg on")
    elif mode in MODES:
        device.run(b"sudo ethtool -s eth0 speed %d duplex %s autoneg off" % MODES[mode])
    else:
        return INVALID
    return SUCCESS
