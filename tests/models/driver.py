# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Runs pairs on the library, through driver.cpp.

A batch is its size and its pairs; all numbers are in the machine's byte order, and a text is its length in 32 bits
and its bytes. A batch is answered by a batch:

  batch    size (32 bits), count of pairs (32), pairs; an answering batch has no count
  pair     request (536 bytes), cut (32), files, outputs, daemon
  files    count (32); each: path (text), kind (8; 1 file, 2 folder), mode (16), bytes (text)
  outputs  count (32); each: command (text), count (32), texts
  daemon   kind (8; 0 none, 1 answers, 2 silent), configuration (text), state (text)
  outcome  result (32), response (536 bytes), events, files
  events   count (32); each: kind (8; 1 shell line, 2 log line, 3 seconds of sleep, 4 message to the daemon), text

A file of an outcome has a byte before its text, 1 if it is the one that was made for the pair.
"""

from __future__ import annotations

import struct
import subprocess
from typing import IO, List, Tuple, cast

from .device import COMMAND, LOG, MESSAGE, SLEEP, File, Outcome, Pair

SKIPPED = 77
RECORD_SIZE = 536
_EVENTS = {1: COMMAND, 2: LOG, 3: SLEEP, 4: MESSAGE}
_NUMBER = struct.Struct("=I")


class DriverError(Exception):
    """The driver ended, with this status, or by the signal of this negative number."""

    def __init__(self, status: int) -> None:
        super().__init__(status)
        self.status = status

    def __str__(self) -> str:
        return f"the driver ended with status {self.status}"


def _text(text: bytes) -> bytes:
    return _NUMBER.pack(len(text)) + text


def _encode(pair: Pair) -> bytes:
    request, scene = pair.request, pair.scene
    parts = [struct.pack("=16sII", request.interface, request.type, request.id), request.data]
    parts.append(struct.pack("=iI", scene.cut, len(scene.files)))
    for path, file in scene.files.items():
        parts += [_text(path.encode()), struct.pack("=BH", 2 if file.is_folder else 1, file.mode), _text(file.text)]
    parts.append(_NUMBER.pack(len(scene.outputs)))
    for command, outputs in scene.outputs.items():
        parts += [_text(command), _NUMBER.pack(len(outputs)), *map(_text, outputs)]
    parts += [bytes([scene.daemon]), _text(scene.configuration), _text(scene.state)]
    return b"".join(parts)


class _Reader:
    def __init__(self, data: bytes) -> None:
        self._data = data
        self._at = 0

    def take(self, size: int) -> bytes:
        self._at += size
        return self._data[self._at - size : self._at]

    def number(self) -> int:
        (number,) = _NUMBER.unpack_from(self._data, self._at)
        self._at += 4
        return cast(int, number)

    def text(self) -> bytes:
        return self.take(self.number())

    def outcome(self) -> Outcome:
        (result,) = struct.unpack("=i", self.take(4))
        answer = self.take(RECORD_SIZE)
        events: List[Tuple[str, bytes]] = []
        for _ in range(self.number()):
            kind = _EVENTS[self.take(1)[0]]
            events.append((kind, self.text()))
        files = {}
        for _ in range(self.number()):
            path = self.text().decode("utf-8", "surrogateescape")
            kind_number, mode, is_same = struct.unpack("=BHB", self.take(4))
            files[path] = File(self.text(), mode, kind_number == 2, is_same != 0)
        return Outcome(result, answer, events, files)


class Driver:
    """A driver process. A batch may be worked on while the caller does something else."""

    def __init__(self, program: str, library: str) -> None:
        self._command = [program, library]
        self.restart()

    def restart(self) -> None:
        self._process = subprocess.Popen(self._command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def __enter__(self) -> Driver:
        return self

    def __exit__(self, *_: object) -> None:
        try:
            self._input.close()
        except BrokenPipeError:
            pass
        self._process.wait()

    @property
    def _input(self) -> IO[bytes]:
        return cast(IO[bytes], self._process.stdin)

    def begin(self, pairs: List[Pair]) -> None:
        batch = _NUMBER.pack(len(pairs)) + b"".join(map(_encode, pairs))
        try:
            self._input.write(_text(batch))
            self._input.flush()
        except BrokenPipeError as error:
            raise DriverError(self._process.wait()) from error

    def end(self, count: int) -> List[Outcome]:
        output = cast(IO[bytes], self._process.stdout)
        size = output.read(4)
        if len(size) < 4:
            raise DriverError(self._process.wait())
        reader = _Reader(output.read(_NUMBER.unpack(size)[0]))
        return [reader.outcome() for _ in range(count)]

    def run(self, pair: Pair) -> Outcome:
        """The outcome of one pair. If a signal ends the driver, that is the result, and another one is started."""
        try:
            self.begin([pair])
            return self.end(1)[0]
        except DriverError as error:
            if error.status >= 0:
                raise
            self.restart()
            return Outcome(error.status, b"", [], {})
