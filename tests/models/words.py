# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Words in the lines of scripts and configurations, and the branches of scripts."""

from __future__ import annotations

_BEFORE = b" \t,#"
_AFTER = b" \t\n;,"


def find_word(line: bytes, word: bytes, ignores_comments: bool) -> int:
    """The first place of the word, if it is a word there; else -1. The line has its end."""
    at = line.find(word)
    if at < 0:
        return -1
    if ignores_comments and 0 <= line.find(b"#") <= at:
        return -1
    if at > 0 and line[at - 1] not in _BEFORE:
        return -1
    return at if line[at + len(word)] in _AFTER else -1


def has_word(line: bytes, word: bytes, ignores_comments: bool = True) -> bool:
    return find_word(line, word, ignores_comments) >= 0


class Branches:
    """Which lines of a shell script run for an interface. `mark` makes an "if" a test of the interface."""

    def __init__(self, mark: bytes, name: bytes) -> None:
        self._mark = mark
        self._name = name
        self._in_block = False
        self._in_then = False
        self._after_else = False
        self._matches = False
        self._active = True

    def runs(self, line: bytes) -> bool:
        """Whether the next line, with its end, runs for the interface."""
        if not self._in_block and not self._begins_block(line):
            return self._active
        if self._in_then:
            if has_word(line, b"else"):
                self._in_then = False
                self._after_else = True
                self._active = not self._matches
        elif not self._after_else and has_word(line, b"then"):
            self._in_then = True
            self._active = self._active and self._matches
        self._in_block = not has_word(line, b"fi")
        if not self._in_block:
            self._in_then = self._after_else = False
            self._active = True
        return self._active

    def _begins_block(self, line: bytes) -> bool:
        at = find_word(line, b"if", True)
        if at < 0 or line.find(self._mark, at + 2) < 0:
            return False
        self._matches = line.find(self._name, at + 2) >= 0
        return True


def switched(line: bytes, at: int, enable: bool) -> bytes:
    """The line with the command at `at` switched on or off by a comment mark."""
    mark = line.find(b"#")
    is_off = 0 <= mark <= at
    if is_off and enable:
        return line[:mark] + line[mark + 1 :]
    return line if is_off or enable else b"#" + line
