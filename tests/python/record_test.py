# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The raw call: layout, numbers, and calls that read nothing of the machine."""
import ctypes
import os
import subprocess
import unittest

import velk
from velk import record

FIELDS = ["interface", "command_type", "command_id", "data"]


def layout_in_c():
    printed = subprocess.run([os.environ["RECORD_LAYOUT"]], check=True, capture_output=True, text=True).stdout
    return [line.split() for line in printed.splitlines()]


class Record(unittest.TestCase):
    def test_has_the_layout_of_the_header(self):
        rows = [["record", "0", str(ctypes.sizeof(record.Request))]]
        for name in FIELDS:
            field = getattr(record.Request, name)
            rows.append([name, str(field.offset), str(field.size)])
        self.assertEqual(rows, layout_in_c()[:5])
        self.assertEqual([["record", "0", "536"], ["interface", "0", "16"], ["command_type", "16", "4"],
                          ["command_id", "20", "4"], ["data", "24", "512"]], rows)

    def test_has_the_numbers_of_the_header(self):
        rows = [[f"VELK_{one.name}", str(one.value)] for one in record.CommandType]
        rows.append(["VELK_CMD_RESTART", str(record.RESTART_COMMAND)])
        rows += [[f"LIB_VELK_{one.name}", str(one.value)] for one in record.Result]
        self.assertEqual(rows, layout_in_c()[5:])

    def test_returns_the_result_and_the_response(self):
        result, response = record.execute(record.request(record.CommandType.GET, 399, "eth0"))
        self.assertEqual(-4, result)
        self.assertEqual((b"eth0", 1, 399, bytes(512)),
                         (response.interface, response.command_type, response.command_id, bytes(response.data)))

    def test_passes_a_name_of_16_bytes_whole(self):
        request = record.request(record.CommandType.GET, 399, "e" * 16)
        self.assertEqual(b"e" * 16, request.interface)
        self.assertEqual(-4, record.execute(request)[0])

    def test_refuses_what_does_not_fit(self):
        with self.assertRaisesRegex(ValueError, "^513 data bytes given; give at most 512$"):
            record.data(bytes(513))
        with self.assertRaises(ValueError):
            record.request(record.CommandType.GET, 399, "e" * 17)
        self.assertEqual(bytes(range(256)) * 2, bytes(record.data(bytes(range(256)) * 2)))

    def test_shows_no_data_in_repr(self):
        request = record.request(record.CommandType.SET, 314, "eth1", b"a key")
        self.assertNotIn("a key", repr(request) + repr(request.data))


class Library(unittest.TestCase):
    def run_python(self, code, **environment):
        return subprocess.run([os.environ["PYTHON"], "-c", code], env={**os.environ, **environment},
                              capture_output=True, text=True, check=False)

    def test_is_loaded_at_the_first_call(self):
        ended = self.run_python("import velk, velk.aio; print(velk.settings()[0].name)", LD_LIBRARY_PATH="")
        self.assertEqual(("administrator\n", ""), (ended.stdout, ended.stderr))

    @unittest.skipIf(any(os.path.exists(f"{folder}/libvelk.so.1") for folder in
                         ("/usr/lib", "/usr/local/lib", "/usr/lib/x86_64-linux-gnu", "/usr/lib/aarch64-linux-gnu")),
                     "this machine has the library")
    def test_that_is_missing_is_one_exception(self):
        ended = self.run_python(
            "import velk\ntry: velk.get('ntp')\nexcept velk.LibraryMissingError as error: print(error)",
            LD_LIBRARY_PATH="/nonexistent")
        self.assertRegex(ended.stdout, "^libvelk.so.1 cannot be loaded: .*; install libvelk, or name the folder")
        self.assertEqual("", ended.stderr)

    def test_has_the_version_of_the_package(self):
        self.assertEqual(os.environ["VELK_VERSION"], velk.__version__)
