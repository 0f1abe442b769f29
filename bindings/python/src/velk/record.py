# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The raw call: the record of libvelk, and its one function.

Most programs need only :mod:`velk`. This module is for commands and data that the catalogue does not have.

    >>> from velk import record
    >>> result, response = record.execute(record.request(record.CommandType.GET, 104, "eth0"))
    >>> result, bytes(response.data).rstrip(b"\\0")
    (0, b'192.168.0.10')

The bytes of a record may be a secret, so neither a request nor its data shows them in ``repr()``.
"""

from __future__ import annotations

import ctypes
import enum
import functools
from typing import Tuple

from .errors import LibraryMissingError

__all__ = [
    "DATA_SIZE", "INTERFACE_SIZE", "LIBRARY", "RESTART_COMMAND", "CommandType", "Data", "Request", "Result", "data",
    "execute", "library", "request",
]

LIBRARY = "libvelk.so.1"
INTERFACE_SIZE = 16
DATA_SIZE = 512
RESTART_COMMAND = 1

#: The data bytes of a record. The array has no ``repr()`` of its content.
Data = ctypes.c_ubyte * DATA_SIZE


class CommandType(enum.IntEnum):
    """The types of commands."""

    GET = 1  #: reads a setting; takes no lock
    SET = 2  #: changes a setting, under the lock between processes
    RESTART = 3  #: restarts an interface, under the same lock


class Result(enum.IntEnum):
    """The results of :func:`execute`."""

    SUCCESS = 0
    FAILURE = -1
    LOCKED = -3
    INVALID_PARAMETER = -4
    NO_ADAPTER = -5
    WIRED_LINKED = -6


class Request(ctypes.Structure):
    """A request or a response: 536 bytes without padding, numbers in the byte order of the device.

    ``interface`` is ``b"eth0"``, ``b"eth1"`` or ``b""``; 16 bytes without a NUL match no interface.
    """

    _fields_ = [
        ("interface", ctypes.c_char * INTERFACE_SIZE),
        ("command_type", ctypes.c_uint32),
        ("command_id", ctypes.c_uint32),
        ("data", Data),
    ]


def _layout() -> Tuple[int, ...]:
    fields = (Request.interface, Request.command_type, Request.command_id, Request.data)
    return (ctypes.sizeof(Request), *(field.offset for field in fields))


# With another layout, the library would write outside the record.
if _layout() != (536, 0, 16, 20, 24):
    raise ImportError(f"velk: this interpreter lays out the record in another way: {_layout()}")


def data(content: bytes = b"") -> ctypes.Array[ctypes.c_ubyte]:
    """Returns data bytes that begin with `content`. The others are zero.

    Raises ValueError if there are more than 512.
    """
    if len(content) > DATA_SIZE:
        raise ValueError(f"{len(content)} data bytes given; give at most {DATA_SIZE}")
    return Data(*content)


def request(command_type: int, command_id: int, interface: str = "", content: bytes = b"") -> Request:
    """Returns a request.

    Raises ValueError for an interface name of more than 16 bytes, or more than 512 data bytes.
    """
    return Request(interface.encode(), command_type, command_id, data(content))


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """Loads ``libvelk.so.1`` at the first call, and returns it.

    The dynamic linker looks for it, as for any program. Raises LibraryMissingError if that fails.
    """
    try:
        loaded = ctypes.CDLL(LIBRARY)
        function = loaded.execute_velk_command
    except (OSError, AttributeError) as error:
        raise LibraryMissingError(f"{LIBRARY} cannot be loaded: {error}; install libvelk, or name the folder of "
                                  "the library in LD_LIBRARY_PATH") from None
    function.argtypes = [ctypes.POINTER(Request), ctypes.POINTER(Request)]
    function.restype = ctypes.c_int
    return loaded


def execute(command: Request) -> Tuple[int, Request]:
    """Runs one command, and returns its result and its response.

    The result is one of :class:`Result`. The call runs on the thread of its caller, and blocks it as long as the
    command says: some gets take up to 165 seconds, and a restart of eth0 up to 171 seconds and the time of the
    tools. Other threads of the program run meanwhile. A signal handler of Python, such as that of Ctrl-C, waits
    for the end of the call. Raises only LibraryMissingError.
    """
    response = Request()
    result: int = library().execute_velk_command(ctypes.byref(command), ctypes.byref(response))
    return result, response
