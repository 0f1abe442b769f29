#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""report.py [INTERFACE] - prints the settings of the device, or of an interface, and why one cannot be read."""
import asyncio
import sys
from typing import Optional

import velk
import velk.aio


def shown(value: velk.Value) -> str:
    if isinstance(value, list):
        return " ".join(map(str, value))
    if isinstance(value, bytes):
        return value.hex()
    return str(value)  # a key is shown as asterisks


async def line(setting: velk.Setting) -> str:
    try:
        value = await velk.aio.get(setting.name)
    except velk.ResultError as error:
        return f"{setting.name}: {error.description}"
    except velk.DeviceValueError as error:
        return f"{setting.name}: '{error.text}' is not valid"
    return f"{setting.name} = {shown(value)}"


async def report(interface: Optional[str]) -> None:
    settings = [setting for setting in velk.settings(interface) if setting.readable]
    for text in await asyncio.gather(*map(line, settings)):
        print(text)


def main(interface: Optional[str] = None) -> None:
    if not velk.settings(interface):
        sys.exit("usage: report.py [eth0|eth1]")
    try:
        asyncio.run(report(interface))
    except velk.LibraryMissingError as error:
        sys.exit(f"report: {error}")


main(*sys.argv[1:2])
