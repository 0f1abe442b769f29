# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The functions of :mod:`velk` for asyncio. They run in threads, so the event loop goes on meanwhile.

    >>> await velk.aio.get("eth0.address")
    IPv4Address('192.168.0.10')

The changes of one program wait for each other, in the order of the calls, and so do the gets of the wireless
daemon. Other gets run at once, four at a time.

A task that is cancelled, such as by ``asyncio.wait_for()``, stops waiting at once. A call that has not begun then is
left out. One that waits for another program does not try again. One that has begun goes on to its end, because an
edit of a file must not be cut off; calls after it wait for it. The end of the program waits for it, too.
"""

from __future__ import annotations

import asyncio
import functools
import ipaddress
import os
import threading
from concurrent.futures import ThreadPoolExecutor
from typing import Callable, Iterable, List, Optional, Tuple, TypeVar, Union, overload

from . import catalogue as names
from . import device
from .schedule import Schedule
from .secret import Secret
from .setting import Setting
from .values import Encryption, GivenValue, LinkSpeed, Method, NtpResult, ServiceSet, Value

__all__ = ["get", "restart", "set"]

_Result = TypeVar("_Result")


class _Threads:
    """The threads of the calls. A child of fork(2) gets new ones, as the old ones are not in it."""

    def __init__(self) -> None:
        self._reset()
        os.register_at_fork(after_in_child=self._reset)

    def _reset(self) -> None:
        self.changes = ThreadPoolExecutor(1, thread_name_prefix="velk-changes")
        self.wireless = ThreadPoolExecutor(1, thread_name_prefix="velk-wireless")
        self.gets = ThreadPoolExecutor(4, thread_name_prefix="velk-gets")


_threads = _Threads()


async def _run(threads: ThreadPoolExecutor, call: Callable[[], _Result]) -> _Result:
    return await asyncio.get_running_loop().run_in_executor(threads, call)


async def _change(call: Callable[[threading.Event], None]) -> None:
    stopped = threading.Event()
    try:
        await _run(_threads.changes, functools.partial(call, stopped))
    finally:
        stopped.set()


@overload
async def get(name: names.SwitchName) -> bool: ...
@overload
async def get(name: names.NumberName) -> int: ...
@overload
async def get(name: names.TextName) -> str: ...
@overload
async def get(name: names.ShownName) -> Optional[str]: ...
@overload
async def get(name: names.HostName) -> Optional[str]: ...
@overload
async def get(name: names.AddressName) -> Optional[ipaddress.IPv4Address]: ...
@overload
async def get(name: names.GatewayName) -> Optional[ipaddress.IPv4Address]: ...
@overload
async def get(name: names.ServersName) -> List[ipaddress.IPv4Address]: ...
@overload
async def get(name: names.ScheduleName) -> Schedule: ...
@overload
async def get(name: names.SecretName) -> Optional[Secret]: ...
@overload
async def get(name: names.MethodName) -> Method: ...
@overload
async def get(name: names.NtpResultName) -> NtpResult: ...
@overload
async def get(name: names.LinkSpeedName) -> LinkSpeed: ...
@overload
async def get(name: names.ServiceSetName) -> ServiceSet: ...
@overload
async def get(name: names.EncryptionName) -> Encryption: ...
@overload
async def get(name: names.RateName) -> bytes: ...
@overload
async def get(name: names.SignalName) -> Tuple[int, int]: ...
@overload
async def get(name: Union[str, Setting]) -> Value: ...


async def get(name: Union[str, Setting]) -> Value:
    """Reads a setting: :func:`velk.get` in a thread, with the same value and exceptions."""
    threads = _threads.wireless if device.find(name).is_wireless else _threads.gets
    return await _run(threads, functools.partial(device.get, name))


@overload
async def set(name: names.SwitchName, value: bool, *, wait: float = 0) -> None: ...
@overload
async def set(name: names.NumberName, value: int, *, wait: float = 0) -> None: ...
@overload
async def set(name: names.TextName, value: str, *, wait: float = 0) -> None: ...
@overload
async def set(name: names.HostName, value: Union[str, ipaddress.IPv4Address, ipaddress.IPv6Address, None], *,
              wait: float = 0) -> None: ...
@overload
async def set(name: names.AddressName, value: Union[ipaddress.IPv4Address, str], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.GatewayName, value: Union[ipaddress.IPv4Address, str, None], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.ServersName, value: Iterable[Union[ipaddress.IPv4Address, str]], *,
              wait: float = 0) -> None: ...
@overload
async def set(name: names.ScheduleName, value: Union[Schedule, str], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.SecretName, value: Optional[Secret], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.MethodName, value: Union[Method, str], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.LinkSpeedName, value: Union[LinkSpeed, str], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.ServiceSetName, value: Union[ServiceSet, str], *, wait: float = 0) -> None: ...
@overload
async def set(name: names.EncryptionName, value: Union[Encryption, str], *, wait: float = 0) -> None: ...
@overload
async def set(name: Setting, value: GivenValue, *, wait: float = 0) -> None: ...


async def set(name: Union[str, Setting], value: GivenValue, *,  # pylint: disable=redefined-builtin
              wait: float = 0) -> None:
    """Sets a setting: :func:`velk.set` in a thread, with the same exceptions."""
    await _change(functools.partial(device.set_unless_stopped, name, value, wait))


async def restart(interface: str, *, notify_only: bool = False, wait: float = 0) -> None:
    """Restarts an interface: :func:`velk.restart` in a thread, with the same exceptions."""
    await _change(functools.partial(device.restart_unless_stopped, interface, notify_only, wait))
