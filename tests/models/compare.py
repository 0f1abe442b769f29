# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Differences between the outcomes of the library and the model, and smaller pairs that still differ."""

from __future__ import annotations

import copy
import time
from typing import Any, Callable, Dict, Iterator, List, Optional, Sequence, TypeVar

from .device import COMMAND, DATA_SIZE, LOG, MESSAGE, SLEEP, File, Outcome, Pair, Request, Scene
from .library import execute

Item = TypeVar("Item")


def _describe(file: Optional[File]) -> str:
    if file is None:
        return "missing"
    if file.is_folder:
        return "a folder"
    return f"{file.mode:04o} {'the same' if file.is_same else 'another'} {file.text!r}"


def difference(library: Outcome, model: Outcome) -> str:
    """The first difference, as text; empty if there is none."""
    if library.result != model.result:
        return f"result: the library has {library.result}, the model {model.result}"
    if library.answer != model.answer:
        has_data, expected_data = [outcome.answer.rstrip(b"\0") for outcome in (library, model)]
        return f"answer: the library has\n  {has_data!r}\nthe model\n  {expected_data!r}"
    for kind in (COMMAND, LOG, SLEEP, MESSAGE):  # the order of a log line and a shell line is not promised
        has, expected = [[text for part, text in outcome.events if part == kind] for outcome in (library, model)]
        if has != expected:
            return f"{kind}: the library has\n  {has!r}\nthe model\n  {expected!r}"
    for path, file in model.files.items():
        if file.may_be_cut and path in library.files and file.text.startswith(library.files[path].text):
            file.text = library.files[path].text
    if library.files == model.files:
        return ""
    for path in sorted({*library.files, *model.files}):
        in_library, in_model = _describe(library.files.get(path)), _describe(model.files.get(path))
        if in_library != in_model:
            return f"{path}: the library has\n  {in_library}\nthe model\n  {in_model}"
    return ""


# ---- Smaller pairs -----------------------------------------------------------------------------


def _without_parts(parts: Sequence[Item]) -> Iterator[List[Item]]:
    """The sequence without a part of it, the largest parts first. Long ones have no small parts."""
    size = len(parts)
    while size > len(parts) // 512:
        for begin in range(0, len(parts), size):
            yield [*parts[:begin], *parts[begin + size :]]
        size //= 2


def _smaller_texts(text: bytes) -> Iterator[bytes]:
    for parts in _without_parts(text.splitlines(keepends=True)):
        yield b"".join(parts)
    for rest in _without_parts(text):
        yield bytes(rest)


def _without_bytes(record: bytes) -> Iterator[bytes]:
    """The record with one byte that is zero."""
    for at, byte in enumerate(record):
        if byte:
            yield record[:at] + b"\0" + record[at + 1 :]


def _smaller_pairs(pair: Pair) -> Iterator[Pair]:
    for path in pair.scene.files:
        smaller = copy.deepcopy(pair)
        del smaller.scene.files[path]
        yield smaller
    for command in pair.scene.outputs:
        smaller = copy.deepcopy(pair)
        del smaller.scene.outputs[command]
        yield smaller
    if pair.scene.cut >= 0:
        smaller = copy.deepcopy(pair)
        smaller.scene.cut = -1
        yield smaller
    for path, file in pair.scene.files.items():
        for text in _smaller_texts(file.text):
            smaller = copy.deepcopy(pair)
            smaller.scene.files[path].text = text
            yield smaller
    for command, outputs in pair.scene.outputs.items():
        for number, output in enumerate(outputs):
            for text in _smaller_texts(output):
                smaller = copy.deepcopy(pair)
                smaller.scene.outputs[command][number] = text
                yield smaller
    for name in ("configuration", "state"):
        for text in _without_bytes(getattr(pair.scene, name)):
            smaller = copy.deepcopy(pair)
            setattr(smaller.scene, name, text)
            yield smaller
    for data in _smaller_texts(pair.request.data.rstrip(b"\0")):
        smaller = copy.deepcopy(pair)
        smaller.request.data = data.ljust(DATA_SIZE, b"\0")
        yield smaller


def shrink(pair: Pair, run: Callable[[Pair], Outcome], seconds: float = 60) -> Pair:
    """The smallest pair found in this time that still has a difference."""
    end = time.monotonic() + seconds
    is_done = False
    while not is_done:
        is_done = True
        for smaller in _smaller_pairs(pair):
            if time.monotonic() > end:
                return pair
            if difference(run(smaller), execute(smaller)):
                pair = smaller
                is_done = False
                break
    return pair


# ---- Pairs as text -----------------------------------------------------------------------------


def _latin(text: bytes) -> str:
    return text.decode("latin-1")


def _bytes(text: str) -> bytes:
    return text.encode("latin-1")


def to_json(pair: Pair) -> Dict[str, object]:
    """The pair in types of JSON; a byte is the character with its number."""
    request, scene = pair.request, pair.scene
    return {
        "interface": _latin(request.interface.rstrip(b"\0")),
        "type": request.type,
        "id": request.id,
        "data": _latin(request.data.rstrip(b"\0")),
        "cut": scene.cut,
        "files": {path: {"mode": file.mode, "is_folder": file.is_folder, "text": _latin(file.text)}
                  for path, file in scene.files.items()},
        "daemon": [scene.daemon, _latin(scene.configuration), _latin(scene.state)],
        "outputs": {_latin(command): [_latin(text) for text in texts] for command, texts in scene.outputs.items()},
    }


def from_json(value: Dict[str, Any]) -> Pair:
    files = {path: File(_bytes(file["text"]), file["mode"], file["is_folder"])
             for path, file in value["files"].items()}
    outputs = {_bytes(command): [_bytes(text) for text in texts] for command, texts in value["outputs"].items()}
    request = Request(_bytes(value["interface"]).ljust(16, b"\0"), value["type"], value["id"],
                      _bytes(value["data"]).ljust(DATA_SIZE, b"\0"))
    daemon, configuration, state = value["daemon"]
    scene = Scene(files, outputs, value["cut"], daemon, _bytes(configuration), _bytes(state))
    return Pair(scene, request)
