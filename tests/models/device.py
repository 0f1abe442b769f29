# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""A device as the models see it: files, outputs of tools, and the effects of a call."""

from __future__ import annotations

import errno
import os
from dataclasses import dataclass, field
from typing import Dict, List, Optional, Tuple

SUCCESS, FAILURE, LOCKED, INVALID, NO_ADAPTER, WIRED_LINKED = 0, -1, -3, -4, -5, -6
GET, SET, RESTART = 1, 2, 3
DATA_SIZE = 512

COPIES = "/var/tmp/"
LOCK = COPIES + "vklib_lock"
RESULT = COPIES + "get_result"

COMMAND, LOG, SLEEP, MESSAGE = "command", "log", "sleep", "message"
NO_DAEMON, ANSWERS, SILENT = 0, 1, 2


@dataclass
class File:
    """A file. A folder has no text; it is not empty, so that nothing can replace it."""

    text: bytes
    mode: int = 0o644
    is_folder: bool = False
    is_same: bool = True  # the file that was there before the call
    may_be_cut: bool = field(default=False, compare=False)  # any beginning of the text will do


@dataclass
class Request:
    interface: bytes  # 16 bytes
    type: int
    id: int
    data: bytes  # 512 bytes

    @property
    def name(self) -> bytes:
        return self.interface.split(b"\0", 1)[0]

    @property
    def text(self) -> bytes:
        return self.data.split(b"\0", 1)[0]


@dataclass
class Scene:
    """The device before a call."""

    files: Dict[str, File]
    outputs: Dict[bytes, List[bytes]] = field(default_factory=dict)  # one for each run of a tool
    cut: int = -1  # the bytes that cat(1) copies before it is killed; all if negative
    daemon: int = NO_DAEMON
    configuration: bytes = b""  # the bodies of the daemon's replies
    state: bytes = b""


@dataclass
class Pair:
    scene: Scene
    request: Request


@dataclass
class Outcome:
    result: int
    answer: bytes
    events: List[Tuple[str, bytes]]
    files: Dict[str, File]


class Device:
    """Runs a model: its files change, and its shell lines and log lines are recorded."""

    def __init__(self, scene: Scene) -> None:
        self.files = {path: File(file.text, file.mode, file.is_folder) for path, file in scene.files.items()}
        self.events: List[Tuple[str, bytes]] = []
        self.error = 0
        self.scene = scene
        self._outputs = scene.outputs
        self._runs: Dict[bytes, int] = {}
        self._cut = scene.cut

    def log(self, text: str) -> None:
        self.events.append((LOG, text.encode()))

    def log_error(self, text: str) -> None:
        self.log(f"{text} errno={self.error}:{os.strerror(self.error)}")

    def sleep(self, seconds: int) -> None:
        self.events.append((SLEEP, str(seconds).encode()))

    def read(self, path: str) -> Optional[bytes]:
        """The text of a file; None if it cannot be read."""
        file = self.files.get(path)
        if file is None:
            self.error = errno.ENOENT
            return None
        if file.is_folder:
            self.error = errno.EISDIR
            return None
        return file.text

    def write(self, path: str, text: bytes, mode: int = 0o644) -> bool:
        """Writes a file in place; the mode is that of a new one."""
        file = self.files.get(path)
        if file is None:
            self.files[path] = File(text, mode, is_same=False)
            return True
        if file.is_folder:
            return False
        file.text = text
        return True

    def make(self, path: str, mode: int) -> bool:
        """Replaces a file by a new empty one."""
        file = self.files.get(path)
        if file is not None and file.is_folder:
            self.error = errno.EISDIR
            return False
        self.files[path] = File(b"", mode, is_same=False)
        return True

    def run(self, line: bytes) -> None:
        """Runs a shell line: those that copy, remove or write a file do it."""
        self.events.append((COMMAND, line))
        if line.startswith(b"rm "):
            self._remove(line.split(b" ")[-1].decode())
            return
        command, arrow, target = line.partition(b" > /")
        if not arrow or line.startswith(b"sudo sed ") or line.endswith(b"2>&1"):
            return
        path = "/" + target.decode()
        if self.write(path, b""):
            self.write(path, self._output(command))

    def _remove(self, path: str) -> None:
        file = self.files.get(path)
        if file is not None and not file.is_folder:
            del self.files[path]

    def _output(self, command: bytes) -> bytes:
        words = command.split(b" ")
        if words[0] == b"cat":
            text = self.read(words[1].decode()) or b""
            return text if self._cut < 0 else text[: self._cut]
        if words[0] == b"grep":
            pattern = command.split(b'"')[1]
            text = self.read(words[-1].decode()) or b""
            return b"".join(line + b"\n" for line in lines(text) if pattern in line)
        outputs = self._outputs.get(command, [])
        if not outputs:
            return b""
        run = self._runs.get(command, 0)
        self._runs[command] = run + 1
        return outputs[min(run, len(outputs) - 1)]

    # ---- Edits ---------------------------------------------------------------------------------

    def open_copy(self, target: str) -> bool:
        """Opens the edit copy of a file, as a new one; whether that is possible."""
        return self.make(copy_of(target), 0o600)

    def place(self, target: str, text: bytes) -> None:
        """Puts an edited text in place with the shell, and repairs it if the copying was cut."""
        copy = copy_of(target)
        self.files[copy].text = text
        self.run(b"cat %s > %s" % (copy.encode(), target.encode()))
        file = self.files[target]
        if len(file.text) < len(text) and text.startswith(file.text):
            self.log(f"FileEdit mended {target}")
            file.text = text
        self.run(b"rm %s" % copy.encode())

    def edit(self, target: str) -> Optional[List[bytes]]:
        """The lines of a file that is to be edited; None if it or its edit copy cannot be opened."""
        text = self.read(target)
        is_open = self.open_copy(target)
        return lines(text) if text is not None and is_open else None


def copy_of(target: str) -> str:
    return COPIES + target.rsplit("/", 1)[1]


def lines(text: bytes) -> List[bytes]:
    """The lines of a text without their ends. A last one may lack its end."""
    parts = text.split(b"\n")
    if not parts[-1]:
        parts.pop()
    return parts


def joined(parts: List[bytes]) -> bytes:
    """The text of lines, each with its end."""
    return b"".join(part + b"\n" for part in parts)


class Answer:
    """The data area of a response."""

    def __init__(self) -> None:
        self.data = bytearray(DATA_SIZE)

    def put_byte(self, value: int) -> None:
        self.data[0] = value & 0xFF

    def put_text(self, text: bytes, begin: int = 0) -> None:
        """A text leaves room for a NUL at the end of the area. One with a NUL in it is copied whole."""
        text = text[: DATA_SIZE - 1 - begin]
        self.data[begin : begin + len(text) + 1] = text + b"\0"
