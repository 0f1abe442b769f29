# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""limits_test.py [--times] BUILD [CTEST] - fails if a test of a build has no limit, or a row of limits.cmake no test.

--times prints the rows that differ much from the times of the last run.
"""
import json
import pathlib
import re
import subprocess
import sys

CONFIGURATIONS = ["", "forms", "slow", "thorough", "valgrind"]
ROWS = dict(re.findall(r"(?<=[\s])([a-z][\w.]*)=(\d+)", (pathlib.Path(__file__).parent / "limits.cmake").read_text(encoding="utf-8")))


def limits(build, ctest):
    """Returns the limits of all tests, None for one without."""
    found = {}
    for configuration in CONFIGURATIONS:
        run = subprocess.run([ctest, "--show-only=json-v1", "-C", configuration], cwd=build, capture_output=True, text=True, check=True)
        for test in json.loads(run.stdout)["tests"]:
            values = {one["name"]: one["value"] for one in test.get("properties", [])}
            found[test["name"]] = values.get("TIMEOUT")
    return found


def row_of(test):
    """Returns the row of a test: shards have one together, and a form of velkctl that of velkctl."""
    name = re.sub(r"\.\d+$", "", test)
    return name if name in ROWS else re.sub(r"^forms\.(static|pie)\.", "device.velkctl.", name)


def problems(found):
    for test, limit in sorted(found.items()):
        if limit is None:
            yield f"{test} has no limit: its CMakeLists.txt does not call velk_limit_tests()"
    # Other builds leave out tests.
    if {"abi.hardening", "c_only.file", "python.device"} <= set(found):
        used = {row_of(test) for test in found}
        only_of_fuzz = {name for name in ROWS if re.fullmatch(r"fuzz\.\w+", name)}
        for name in sorted(set(ROWS) - used - only_of_fuzz):
            yield f"limits.cmake has a row for {name}, which is no test"
    if not found:
        yield "no tests"


def print_times(build):
    for line in (build / "Testing/Temporary/CTestCostData.txt").read_text(encoding="utf-8").splitlines():
        if line == "---":
            break
        test, runs, seconds = line.split()
        usual = int(ROWS.get(row_of(test), 0))
        if int(runs) and (float(seconds) > 1.5 * usual or float(seconds) < 0.5 * usual - 1):
            print(f"{test}: {float(seconds):.0f} s, in limits.cmake {usual} s")


def main(arguments):
    if arguments[:1] == ["--times"]:
        print_times(pathlib.Path(arguments[1]))
        return 0
    found = list(problems(limits(*arguments)))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
