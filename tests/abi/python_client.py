#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""python_client.py LIBRARY - a management program in Python: the record's layout and a call."""
import ctypes
import sys


class Request(ctypes.Structure):
    _fields_ = [
        ("interface", ctypes.c_char * 16),
        ("command_type", ctypes.c_uint32),
        ("command_id", ctypes.c_uint32),
        ("data", ctypes.c_char * 512),
    ]


failures = []


def check(subject, expected, actual):
    if expected != actual:
        failures.append(f"{subject}: expected {expected!r}, got {actual!r}")


check("size of the record", 536, ctypes.sizeof(Request))
check("offsets", [0, 16, 20, 24], [getattr(Request, name).offset for name, _ in Request._fields_])

# A get of an id that no device knows: reads nothing of the machine.
library = ctypes.CDLL(sys.argv[1])
request = Request(b"eth0", 1, 399, b"")
response = Request()
ctypes.memset(ctypes.byref(response), 0xEE, ctypes.sizeof(response))
check("unknown id", -4, library.execute_velk_command(ctypes.byref(request), ctypes.byref(response)))
check("interface in the response", b"eth0", response.interface)
check("type in the response", 1, response.command_type)
check("id in the response", 399, response.command_id)
check("bytes that are not zero in the response", 0,
      sum(map(bool, ctypes.string_at(ctypes.addressof(response) + 24, 512))))
check("null request", -4, library.execute_velk_command(None, ctypes.byref(response)))

sys.exit("\n".join(failures) or 0)
