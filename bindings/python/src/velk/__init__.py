# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The network settings of the device, through libvelk.

    >>> import velk
    >>> velk.get("eth0.dns")
    [IPv4Address('192.168.0.1'), IPv4Address('192.168.0.2')]
    >>> velk.set("eth0.method", velk.Method.DHCP)
    >>> velk.restart("eth0")

Settings have the names of velkctl; :func:`settings` returns them with their facts. :func:`get` and :func:`set` use
the types of Python: bool for a switch, int, str, ``ipaddress.IPv4Address``, a list of addresses,
:class:`Schedule`, :class:`Secret` and enumerations. Each result other than success is an exception. A call blocks
its thread; :mod:`velk.aio` has the same functions for asyncio. :mod:`velk.record` is the raw call.

The library runs tools of the system through sudo, so the caller is root or has the sudo rules of libvelk.
"""

from ._version import __version__
from .device import find, get, restart, set, settings
from .errors import (DeviceValueError, FailureError, InvalidParameterError, InvalidValueError, LibraryMissingError,
                     LockedError, NoAdapterError, ResultError, UnknownSettingError, UnsupportedError, VelkError,
                     WiredLinkedError)
from .schedule import Frequency, Schedule, Weekday
from .secret import Secret
from .setting import Setting
from .values import Encryption, GivenValue, LinkSpeed, Method, NtpResult, ServiceSet, Value

__all__ = [
    "DeviceValueError", "Encryption", "FailureError", "Frequency", "GivenValue", "InvalidParameterError",
    "InvalidValueError", "LibraryMissingError", "LinkSpeed", "LockedError", "Method", "NoAdapterError", "NtpResult",
    "ResultError", "Schedule", "Secret", "ServiceSet", "Setting", "UnknownSettingError", "UnsupportedError", "Value",
    "VelkError", "Weekday", "WiredLinkedError", "__version__", "find", "get", "restart", "set", "settings",
]
