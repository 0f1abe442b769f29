# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Texts in data bytes. Bytes that are no text, or that are not seen, are written as ``\\xNN``, as in velkctl."""

from __future__ import annotations

import re
from typing import Optional

__all__ = ["bytes_of", "content_of", "has_controls", "quoted", "shown"]

_ESCAPE = re.compile(rb"\\x([0-9A-Fa-f]{2})")
_LONGEST_QUOTE = 40  # sufficient to recognise a refused word

# Default-ignorable characters of Unicode, line separators and annotations. With them a text could look like
# another one or change its order.
_UNSEEN = (
    (0xad, 0xad), (0x34f, 0x34f), (0x61c, 0x61c), (0x115f, 0x1160), (0x17b4, 0x17b5), (0x180b, 0x180f),
    (0x200b, 0x200f), (0x2028, 0x202e), (0x2060, 0x206f), (0x3164, 0x3164), (0xfe00, 0xfe0f), (0xfeff, 0xfeff),
    (0xffa0, 0xffa0), (0xfff0, 0xfffb), (0x1bca0, 0x1bca3), (0x1d173, 0x1d17a), (0xe0000, 0xe0fff),
)


def _is_control(code: int) -> bool:
    return code < 0x20 or 0x7f <= code <= 0x9f


def _is_seen(character: str) -> bool:
    code = ord(character)
    is_byte = 0xdc80 <= code <= 0xdcff  # a byte that is no character
    return not (is_byte or _is_control(code) or any(first <= code <= last for first, last in _UNSEEN))


def _escaped(content: bytes) -> str:
    return "".join(f"\\x{byte:02x}" for byte in content)


def shown(content: bytes) -> str:
    """Returns the text that the bytes are, up to their first NUL."""
    content = content.split(b"\0", 1)[0]
    # A backslash that begins an escape is escaped itself, so that bytes_of() returns the same bytes.
    content = _ESCAPE.sub(rb"\\x5cx\1", content)
    characters = []
    for character in content.decode(errors="surrogateescape"):
        characters.append(character if _is_seen(character) else _escaped(character.encode(errors="surrogateescape")))
    return "".join(characters)


def bytes_of(text: str) -> Optional[bytes]:
    """Returns the bytes of a text, with those of its escapes; None if it is not Unicode."""
    try:
        content = text.encode(errors="surrogateescape")
    except UnicodeEncodeError:
        return None
    return _ESCAPE.sub(lambda escape: bytes([int(escape[1], 16)]), content)


def content_of(word: object) -> str:
    """Returns the text of a value. The ``str()`` of a class of texts, such as an enumeration, can be another one."""
    return str.__str__(word) if isinstance(word, str) else str(word)


def has_controls(content: bytes) -> bool:
    """Returns whether the bytes have a control character, such as the end of a line."""
    return any(byte < 0x20 or byte == 0x7f for byte in content) or re.search(rb"\xc2[\x80-\x9f]", content) is not None


def quoted(word: str) -> str:
    """Returns the word for a message, in quotes and cut if it is long."""
    text = "".join(character if _is_seen(character) else _escaped(character.encode(errors="surrogatepass"))
                   for character in word[:_LONGEST_QUOTE].replace("\\", "\\\\"))
    return f"'{text}...'" if len(word) > _LONGEST_QUOTE else f"'{text}'"
