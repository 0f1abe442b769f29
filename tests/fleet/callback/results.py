# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Writes each result as a line of JSON to the file that FLEET_RESULTS names."""

import json
import os

from ansible.parsing.ajson import AnsibleJSONEncoder
from ansible.plugins.callback import CallbackBase

DOCUMENTATION = """
name: results
type: aggregate
short_description: Write results for the tests
description: Writes each result as a line of JSON.
"""


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "aggregate"
    CALLBACK_NAME = "results"
    CALLBACK_NEEDS_ENABLED = True

    def _write(self, kind, result):
        line = {"kind": kind, "host": result._host.get_name(), "task": result.task_name, "result": result._result}
        with open(os.environ["FLEET_RESULTS"], "a", encoding="utf-8") as file:
            file.write(json.dumps(line, cls=AnsibleJSONEncoder) + "\n")

    def v2_runner_on_ok(self, result):
        self._write("ok", result)

    def v2_runner_on_failed(self, result, ignore_errors=False):
        self._write("failed", result)

    def v2_runner_on_unreachable(self, result):
        self._write("unreachable", result)
