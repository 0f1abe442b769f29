# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""A program for mypy: get() and set() have the type of the setting. It is not run.

The lines that mypy ignores are errors. It reports one that is none as an unused comment.
"""
import ipaddress
from typing import List, Optional, Tuple

import velk
import velk.aio
from velk import record

switch: bool = velk.get("ntp")
number: int = velk.get("eth1.channel")
text: str = velk.get("location")
shown: Optional[str] = velk.get("eth0.mac-address")
host: Optional[str] = velk.get("ntp-server")
address: Optional[ipaddress.IPv4Address] = velk.get("eth0.address")
gateway: Optional[ipaddress.IPv4Address] = velk.get("eth1.gateway")
servers: List[ipaddress.IPv4Address] = velk.get("eth0.dns")
schedule: velk.Schedule = velk.get("web-update")
secret: Optional[velk.Secret] = velk.get("eth1.psk")
method: velk.Method = velk.get("eth0.method")
ntp_result: velk.NtpResult = velk.get("ntp-result")
speed: velk.LinkSpeed = velk.get("eth0.link-speed")
service_set: velk.ServiceSet = velk.get("eth1.service-set")
encryption: velk.Encryption = velk.get("eth1.encryption")
rate: bytes = velk.get("eth1.rate")
signal: Tuple[int, int] = velk.get("eth1.signal")
some_name: str = "eth0.dns"
value: velk.Value = velk.get(some_name)
result: Tuple[int, record.Request] = record.execute(record.request(record.CommandType.GET, 104, "eth0", b""))

velk.set("ntp", True)
velk.set("eth0.dns", ["10.0.0.53", ipaddress.IPv4Address("10.0.0.54")])
velk.set("eth0.dns", servers, wait=5)
velk.set("eth1.psk", velk.Secret("a key"))
velk.set("psk", None)
velk.set(velk.find(some_name), value if isinstance(value, str) else None)
velk.set("ntp", 5)  # type: ignore[call-overload]
velk.set("eth0.dns", True)  # type: ignore[call-overload]
velk.set("eth1.psk", "a key")  # type: ignore[call-overload]
velk.set("eth1.rate", b"1234")  # type: ignore[call-overload]
wrong_text: str = velk.get("ntp")  # type: ignore[assignment]


async def main() -> None:
    awaited: List[ipaddress.IPv4Address] = await velk.aio.get("eth0.dns")
    await velk.aio.set("eth0.dns", awaited)
    found: velk.Value = await velk.aio.get(velk.find(some_name))
    await velk.aio.set(velk.find(some_name), found if isinstance(found, str) else None)
    await velk.aio.set("ntp", "yes")  # type: ignore[call-overload]
