# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The exceptions of the package. No message has a secret in it."""

from __future__ import annotations

from typing import Dict, Type

__all__ = [
    "DeviceValueError", "FailureError", "InvalidParameterError", "InvalidValueError", "LibraryMissingError",
    "LockedError", "NoAdapterError", "ResultError", "UnknownSettingError", "UnsupportedError", "VelkError",
    "WiredLinkedError", "result_error",
]


class VelkError(Exception):
    """The base of all exceptions of this package. They can be pickled, as for a pool of processes."""


class LibraryMissingError(VelkError, OSError):
    """libvelk.so.1 cannot be loaded."""


class UnknownSettingError(VelkError, LookupError):
    """No setting has this name."""


class UnsupportedError(VelkError):
    """The setting cannot be read, or cannot be set."""


class InvalidValueError(VelkError, ValueError):
    """The value is not valid, and nothing was sent to the library. The message names the valid values."""


class DeviceValueError(VelkError, ValueError):
    """The device holds a value that is not valid, so it has no Python value.

    ``text`` is the value as velkctl shows it.
    """

    def __init__(self, message: str, text: str) -> None:
        super().__init__(message, text)
        self.text = text

    def __str__(self) -> str:
        return str(self.args[0])


class ResultError(VelkError):
    """The library returned another result than success. Each result has a class of its own, below.

    ``result`` is the number, ``name`` its name in velk.h.
    """

    description = "an unknown result"
    name = "unknown"

    def __init__(self, failure: str, result: int) -> None:
        super().__init__(failure, result)
        self.result = result

    def __str__(self) -> str:
        return f"{self.args[0]}: {self.description} ({self.name}, {self.result})"


class FailureError(ResultError):
    """Result -1. ``velkctl doctor`` looks for the cause."""

    description = "file, socket, time-out or unreadable value"
    name = "LIB_VELK_FAILURE"


class LockedError(ResultError):
    """Result -3: nothing was changed. Try again later, or give `wait`."""

    description = "another program is changing settings"
    name = "LIB_VELK_LOCKED"


class InvalidParameterError(ResultError):
    """Result -4. For a set: the value does not fit the other settings of the device."""

    description = "the library does not take this command, interface or value"
    name = "LIB_VELK_INVALID_PARAMETER"


class NoAdapterError(ResultError):
    """Result -5."""

    description = "no supported wireless adapter is attached"
    name = "LIB_VELK_NO_ADAPTER"


class WiredLinkedError(ResultError):
    """Result -6."""

    description = "refused while the cable is in the wired port"
    name = "LIB_VELK_WIRED_LINKED"


_CLASSES: Dict[int, Type[ResultError]] = {
    -1: FailureError,
    -3: LockedError,
    -4: InvalidParameterError,
    -5: NoAdapterError,
    -6: WiredLinkedError,
}


def result_error(failure: str, result: int) -> ResultError:
    """Returns the exception of a result other than 0. `failure` says which command failed."""
    return _CLASSES.get(result, ResultError)(failure, result)
