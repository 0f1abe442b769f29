# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Runs random pairs of files and request on the library and on its model, and prints where they differ.

    PYTHONPATH=tests python3 -m models --driver PROGRAM --library LIBRARY [--pairs N] [--seed S] [--keep FOLDER]

The pairs of tests/models/seeds are run first. scripts/model builds the programs and calls this.
"""

from __future__ import annotations

import argparse
import json
import os
import pathlib
import sys
import time
from concurrent.futures import ProcessPoolExecutor
from dataclasses import dataclass
from typing import List, Optional

from . import compare
from .device import Pair
from .driver import SKIPPED, Driver, DriverError
from .generate import make_pair
from .library import execute

SEEDS = pathlib.Path(__file__).resolve().parent / "seeds"
BATCH = 250
RANGE = 5000


@dataclass
class Options:
    driver: str
    library: str
    seed: str


def _first_differing(driver: Driver, pairs: List[Pair]) -> Optional[int]:
    """The number of the first pair with a difference. The model runs while the driver does."""
    try:
        driver.begin(pairs)
        expected = [execute(pair) for pair in pairs]
        outcomes = driver.end(len(pairs))
    except DriverError as error:
        if error.status >= 0:
            raise
        return _first_failing(driver, pairs)
    for number, (library, model) in enumerate(zip(outcomes, expected)):
        if compare.difference(library, model):
            return number
    return None


def _first_failing(driver: Driver, pairs: List[Pair]) -> Optional[int]:
    """The number of the pair that ends the driver."""
    driver.restart()
    for number, pair in enumerate(pairs):
        if compare.difference(driver.run(pair), execute(pair)):
            return number
    return None


def _check_range(options: Options, begin: int, end: int) -> Optional[int]:
    """The number of the first pair with a difference."""
    with Driver(options.driver, options.library) as driver:
        for first in range(begin, end, BATCH):
            pairs = [make_pair(options.seed, number) for number in range(first, min(first + BATCH, end))]
            number = _first_differing(driver, pairs)
            if number is not None:
                return first + number
    return None


def _print_pair(pair: Pair, text: str) -> None:
    print(json.dumps(compare.to_json(pair), indent=1))
    print(text)


def _replay(options: Options) -> int:
    """Runs the kept pairs; returns how many have a difference."""
    differing = 0
    with Driver(options.driver, options.library) as driver:
        for path in sorted(SEEDS.glob("*.json")):
            pair = compare.from_json(json.loads(path.read_text(encoding="utf-8")))
            text = compare.difference(driver.run(pair), execute(pair))
            if text:
                print(f"model: {path.name} differs")
                _print_pair(pair, text)
                differing += 1
    return differing


def _report(options: Options, number: int, keep: pathlib.Path) -> None:
    """Prints the pair, as small as possible, and keeps it."""
    with Driver(options.driver, options.library) as driver:
        pair = compare.shrink(make_pair(options.seed, number), driver.run)
        text = compare.difference(driver.run(pair), execute(pair))
    keep.mkdir(parents=True, exist_ok=True)
    path = keep / f"{options.seed}-{number}.json"
    path.write_text(json.dumps(compare.to_json(pair), indent=1) + "\n", encoding="utf-8")
    print(f"model: library and model differ: seed {options.seed}, pair {number}, kept as {path}")
    _print_pair(pair, text)


def _run(options: Options, count: int, jobs: int) -> List[int]:
    """The numbers of pairs with a difference, at most one of each range."""
    begins = range(0, count, RANGE)
    with ProcessPoolExecutor(jobs) as pool:
        ends = [min(begin + RANGE, count) for begin in begins]
        found = pool.map(_check_range, [options] * len(begins), begins, ends)
        return [number for number in found if number is not None]


def main() -> int:
    parser = argparse.ArgumentParser(prog="model", allow_abbrev=False)
    parser.add_argument("--driver", required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--pairs", type=int, default=1_000_000)
    parser.add_argument("--seed", default=os.urandom(4).hex())
    parser.add_argument("--keep", type=pathlib.Path, default=SEEDS)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--reports", type=int, default=3)
    arguments = parser.parse_args()
    options = Options(arguments.driver, arguments.library, arguments.seed)
    begin = time.monotonic()
    try:
        differing = _replay(options)
        found = _run(options, arguments.pairs, arguments.jobs)
        for number in found[: arguments.reports]:
            _report(options, number, arguments.keep)
    except DriverError as error:
        print(f"model: {error}")
        return SKIPPED if error.status == SKIPPED else 1
    seconds = time.monotonic() - begin
    print(f"model: {arguments.pairs} pairs, seed {options.seed}, {seconds:.0f} s: {len(found) + differing} differences"
          + (f" or more: one at most is counted in {RANGE} pairs" if found else ""))
    return 1 if found or differing else 0


if __name__ == "__main__":
    sys.exit(main())
