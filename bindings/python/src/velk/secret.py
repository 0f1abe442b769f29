# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Keys that must not appear in a log."""

from __future__ import annotations

import hmac
from typing import NoReturn

__all__ = ["Secret"]

_MASK = "********"


class Secret:
    """A key. Only :meth:`reveal` shows it: ``repr()``, ``str()``, formats and exceptions show asterisks.

    >>> Secret("a new key of the desk")
    Secret('********')

    Raises TypeError if the text is no str. A secret cannot be pickled. Two secrets are equal if their texts are; the
    comparison takes the same time for any texts of one length. A set reads ``\\xNN`` in the text as a byte; give
    ``\\x5c`` for a backslash that precedes an x and two hex digits.
    """

    __slots__ = ("_text",)

    def __init__(self, text: str) -> None:
        self._text = text
        if not isinstance(text, str):
            kind = type(text).__name__
            del text, self._text  # the frame of the exception must not show a key
            raise TypeError(f"the text of a Secret is a str, not {kind}")

    def reveal(self) -> str:
        """Returns the text of the key."""
        return self._text

    def __repr__(self) -> str:
        return f"Secret('{_MASK}')"

    def __str__(self) -> str:
        return _MASK

    def __format__(self, format_spec: str) -> str:
        return format(_MASK, format_spec)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Secret):
            return NotImplemented
        return hmac.compare_digest(self._text.encode(errors="surrogatepass"),
                                   other._text.encode(errors="surrogatepass"))

    def __hash__(self) -> int:
        return hash((Secret, self._text))

    def __getstate__(self) -> NoReturn:
        raise TypeError("a Secret cannot be pickled")

    def __reduce__(self) -> NoReturn:
        raise TypeError("a Secret cannot be pickled")

    def __copy__(self) -> Secret:
        return self

    def __deepcopy__(self, memo: object) -> Secret:
        return self
