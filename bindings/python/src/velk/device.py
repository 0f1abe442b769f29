# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Reads and changes the settings of the device."""

from __future__ import annotations

import contextlib
import difflib
import ipaddress
import os
import threading
import time
from typing import ContextManager, Dict, Iterable, List, Optional, Tuple, Union, overload

from . import catalogue as names
from . import record
from .errors import LockedError, UnknownSettingError, UnsupportedError, result_error
from .schedule import Schedule
from .secret import Secret
from .setting import Setting
from .text import quoted
from .values import Encryption, GivenValue, LinkSpeed, Method, NtpResult, ServiceSet, Value

__all__ = ["find", "get", "restart", "set", "settings"]

_PAUSE = 0.1  # seconds between two tries to change a locked setting

_BY_NAME: Dict[str, Setting] = {setting.name: setting for setting in names.SETTINGS}


class _Turns:
    """The turns of threads at the wireless daemon. It answers one query at a time, and of two at once one fails."""

    def __init__(self) -> None:
        self._reset()
        os.register_at_fork(after_in_child=self._reset)

    def _reset(self) -> None:
        self._lock = threading.Lock()

    def of(self, setting: Optional[Setting]) -> ContextManager[object]:
        if setting is None or not setting.is_wireless:
            return contextlib.nullcontext()
        return self._lock


_turns = _Turns()


def _execute(command: record.Request, setting: Optional[Setting]) -> Tuple[int, record.Request]:
    with _turns.of(setting):
        return record.execute(command)


def settings(interface: Optional[str] = None) -> Tuple[Setting, ...]:
    """Returns all settings in the order of velkctl, or those of an interface: ``eth0``, ``eth1`` or ``""``."""
    return tuple(setting for setting in names.SETTINGS if interface is None or setting.interface == interface)


def find(name: Union[str, Setting]) -> Setting:
    """Returns the setting of a name. The interface can be left out if the name has only one: ``ssid``.

    A setting is returned as it is. Raises UnknownSettingError, which names similar settings, and TypeError for
    another type.
    """
    if isinstance(name, Setting):
        return name
    if not isinstance(name, str):
        raise TypeError(f"the name of a setting is a str, not {type(name).__name__}")
    if name in _BY_NAME:
        return _BY_NAME[name]
    own_name = name.rpartition(".")[2]
    on_interfaces = [full for full in _BY_NAME if full.rpartition(".")[2] == own_name]
    if len(on_interfaces) == 1 and name == own_name:
        return _BY_NAME[on_interfaces[0]]
    similar = on_interfaces or difflib.get_close_matches(name, _BY_NAME, n=2, cutoff=0.7)
    hint = f"did you mean {' or '.join(similar)}?" if similar else "velk.settings() returns all"
    raise UnknownSettingError(f"unknown setting {quoted(name)}; {hint}")


@overload
def get(name: names.SwitchName) -> bool: ...
@overload
def get(name: names.NumberName) -> int: ...
@overload
def get(name: names.TextName) -> str: ...
@overload
def get(name: names.ShownName) -> Optional[str]: ...
@overload
def get(name: names.HostName) -> Optional[str]: ...
@overload
def get(name: names.AddressName) -> Optional[ipaddress.IPv4Address]: ...
@overload
def get(name: names.GatewayName) -> Optional[ipaddress.IPv4Address]: ...
@overload
def get(name: names.ServersName) -> List[ipaddress.IPv4Address]: ...
@overload
def get(name: names.ScheduleName) -> Schedule: ...
@overload
def get(name: names.SecretName) -> Optional[Secret]: ...
@overload
def get(name: names.MethodName) -> Method: ...
@overload
def get(name: names.NtpResultName) -> NtpResult: ...
@overload
def get(name: names.LinkSpeedName) -> LinkSpeed: ...
@overload
def get(name: names.ServiceSetName) -> ServiceSet: ...
@overload
def get(name: names.EncryptionName) -> Encryption: ...
@overload
def get(name: names.RateName) -> bytes: ...
@overload
def get(name: names.SignalName) -> Tuple[int, int]: ...
@overload
def get(name: Union[str, Setting]) -> Value: ...


def get(name: Union[str, Setting]) -> Value:
    """Reads a setting and returns its value.

    Blocks as long as ``find(name).longest_seconds`` says. Raises UnknownSettingError; UnsupportedError for a
    setting that can only be set; a ResultError for a result other than success; DeviceValueError if the device
    holds a value that is not valid. Takes no lock. A change of another program may be half done.
    """
    setting = find(name)
    if not setting.readable:
        raise UnsupportedError(f"{setting.name}: cannot be read, only set")
    command = record.request(record.CommandType.GET, setting.id, setting.interface)
    result, response = _execute(command, setting)
    if result != record.Result.SUCCESS:
        raise result_error(f"{setting.name}: could not be read", result)
    return setting.decode(response.data)


@overload
def set(name: names.SwitchName, value: bool, *, wait: float = 0) -> None: ...
@overload
def set(name: names.NumberName, value: int, *, wait: float = 0) -> None: ...
@overload
def set(name: names.TextName, value: str, *, wait: float = 0) -> None: ...
@overload
def set(name: names.HostName, value: Union[str, ipaddress.IPv4Address, ipaddress.IPv6Address, None], *,
        wait: float = 0) -> None: ...
@overload
def set(name: names.AddressName, value: Union[ipaddress.IPv4Address, str], *, wait: float = 0) -> None: ...
@overload
def set(name: names.GatewayName, value: Union[ipaddress.IPv4Address, str, None], *, wait: float = 0) -> None: ...
@overload
def set(name: names.ServersName, value: Iterable[Union[ipaddress.IPv4Address, str]], *,
        wait: float = 0) -> None: ...
@overload
def set(name: names.ScheduleName, value: Union[Schedule, str], *, wait: float = 0) -> None: ...
@overload
def set(name: names.SecretName, value: Optional[Secret], *, wait: float = 0) -> None: ...
@overload
def set(name: names.MethodName, value: Union[Method, str], *, wait: float = 0) -> None: ...
@overload
def set(name: names.LinkSpeedName, value: Union[LinkSpeed, str], *, wait: float = 0) -> None: ...
@overload
def set(name: names.ServiceSetName, value: Union[ServiceSet, str], *, wait: float = 0) -> None: ...
@overload
def set(name: names.EncryptionName, value: Union[Encryption, str], *, wait: float = 0) -> None: ...
@overload
def set(name: Setting, value: GivenValue, *, wait: float = 0) -> None: ...


# With a name, the type checker knows the type of the value, so a name that it cannot see is no overload.
def set(name: Union[str, Setting], value: GivenValue, *, wait: float = 0) -> None:  # pylint: disable=redefined-builtin
    """Sets a setting to a value.

    A type checker knows the values that a name takes. For a name that the program computes, give ``find(name)``.

    Success does not prove that the device holds the value: read it back with :func:`get`. A change counts from the
    moment that ``find(name).takes_effect`` names.

    While another program or thread changes settings, tries again for up to `wait` seconds. Blocks that long, and up to
    60 seconds for settings of the wireless daemon.

    Raises UnknownSettingError; UnsupportedError for a setting that can only be read; TypeError or
    InvalidValueError for a value that the setting does not take, and nothing is sent; LockedError or another
    ResultError for a result other than success.
    """
    set_unless_stopped(name, value, wait, threading.Event())


def set_unless_stopped(name: Union[str, Setting], value: GivenValue, wait: float, stopped: threading.Event) -> None:
    """Sets a setting as :func:`set` does, but does not try again once `stopped` is set."""
    setting = find(name)
    if not setting.writable:
        raise UnsupportedError(f"{setting.name}: cannot be set, only read")
    command = record.Request(setting.interface.encode(), record.CommandType.SET, setting.id, setting.encode(value))
    _change(f"{setting.name}: could not be set", command, wait, stopped, setting)


def restart(interface: str, *, notify_only: bool = False, wait: float = 0) -> None:
    """Takes an interface, ``eth0`` or ``eth1``, down and up again, so that changed settings take effect.

    With `notify_only`, for eth1, only the wireless daemon is notified. Without the cable in eth0, eth1 comes up in
    the background after the call. Blocks for the time of ifdown and ifup and one second, on eth0 up to 171 seconds
    more. `wait` is that of :func:`set`.

    Raises ValueError for another interface, or for eth0 with `notify_only`; LockedError, NoAdapterError or another
    ResultError.
    """
    restart_unless_stopped(interface, notify_only, wait, threading.Event())


def restart_unless_stopped(interface: str, notify_only: bool, wait: float, stopped: threading.Event) -> None:
    """Restarts an interface as :func:`restart` does, but does not try again once `stopped` is set."""
    if interface not in ("eth0", "eth1"):
        raise ValueError("an unknown interface; give eth0 or eth1")
    if notify_only and interface != "eth1":
        raise ValueError("eth0 has no daemon to notify; give eth1")
    command = record.request(record.CommandType.RESTART, record.RESTART_COMMAND, interface,
                             b"\2" if notify_only else b"")
    _change(f"{interface}: could not be restarted", command, wait, stopped)


def _change(failure: str, command: record.Request, wait: float, stopped: threading.Event,
            setting: Optional[Setting] = None) -> None:
    """Runs a set or restart, and again for `wait` seconds while settings are locked, unless `stopped` is set."""
    end = time.monotonic() + wait
    while True:
        result, _ = _execute(command, setting)
        if result == record.Result.SUCCESS:
            return
        error = result_error(failure, result)
        if not isinstance(error, LockedError) or time.monotonic() >= end or stopped.wait(_PAUSE):
            raise error
