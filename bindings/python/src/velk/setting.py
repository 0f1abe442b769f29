# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""A setting: its facts, and its values as data bytes."""

from __future__ import annotations

import ctypes
import dataclasses
from typing import Optional, Tuple

from .errors import DeviceValueError, InvalidValueError
from .values import KINDS, Value, WrongType

__all__ = ["Setting"]


@dataclasses.dataclass(frozen=True)
class Setting:
    """A row of the catalogue.

    ``name`` is the full name, such as ``eth0.dns``. ``id`` is the number of the command, ``interface`` its interface
    name or ``""``. ``description`` and ``expected``, the valid values, are texts for people; ``expected`` is None for
    a setting that can only be read. ``values`` has the values that velkctl writes as words, if there are few.
    ``longest_seconds`` is the longest time that a get waits, beside the time of the tools. ``takes_effect`` says
    when a change counts.
    """

    name: str
    id: int
    interface: str
    readable: bool
    writable: bool
    secret: bool
    kind: str
    description: str
    expected: Optional[str]
    values: Tuple[str, ...]
    longest_seconds: int
    takes_effect: Optional[str]

    @property
    def is_wireless(self) -> bool:
        """Whether the wireless daemon holds the value. It answers one query at a time."""
        return self.id in (4, 5) or 301 <= self.id <= 399

    def encode(self, value: object) -> ctypes.Array[ctypes.c_ubyte]:
        """Returns the data bytes of a value.

        Raises InvalidValueError for a value that is not valid, and TypeError for one of a wrong type.
        """
        parsed = KINDS[self.kind].parse(value, self.expected or "")
        if isinstance(parsed, WrongType):
            raise TypeError(f"{self.name}: its type is {parsed.given or type(value).__name__}, not {parsed.wanted}; "
                            f"give {self.expected}")
        if isinstance(parsed, str):
            raise InvalidValueError(f"{self.name}: {parsed}")
        return parsed

    def decode(self, data: ctypes.Array[ctypes.c_ubyte]) -> Value:
        """Returns the value that data bytes hold. Raises DeviceValueError if it has no Python form."""
        try:
            return KINDS[self.kind].read(data)
        except ValueError as error:
            words = str(error)
        raise DeviceValueError(f"{self.name}: the device holds '{words}', which is not valid", words)
