# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Runs velkctl on a device, over the connection of a task."""

import json
import shlex

from ansible.plugins.action import ActionBase
from ansible_collections.velk.device.plugins.plugin_utils.connection import limit_silence

# A command with standard input gets no terminal from ssh, which would add a carriage return to each line.
NO_INPUT = b"\n"

# The schema of the answers, which is raised if it can break a program that reads them.
SCHEMA = 3

NOT_FOUND = 127
LONGEST_OUTPUT = 300


class Failure(Exception):
    """A task that fails, with further members for its result."""

    def __init__(self, message, **members):
        super().__init__(message)
        self.members = members


class DeviceAction(ActionBase):
    """An action that runs velkctl. A derived class has ARGUMENTS and act()."""

    TRANSFERS_FILES = False
    ARGUMENTS = {}

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        self._program = (task_vars or {}).get("velk_device_program", "velkctl")
        arguments = self.validate_argument_spec(self.ARGUMENTS)[1]
        limit_silence(self._connection)
        try:
            result.update(self.act(arguments))
        except Failure as failure:
            result.update(failed=True, msg=str(failure), **failure.members)
        return result

    def act(self, arguments):
        raise NotImplementedError

    def velkctl(self, words, document=None):
        """Returns the JSON document of a run. Raises Failure if the output is none, or has another schema."""
        command = [self._program] + words + ["--json"]
        standard_input = NO_INPUT if document is None else json.dumps(document).encode()
        answer = self._low_level_execute_command(
            " ".join(shlex.quote(word) for word in command), in_data=standard_input
        )
        try:
            parsed = json.loads(answer["stdout"])
        except ValueError:
            parsed = None
        if not isinstance(parsed, dict) or "status" not in parsed:
            raise Failure(self._explain(answer), status=answer["rc"])
        if parsed.get("schema") != SCHEMA:
            raise Failure(
                f"velkctl on the device answers with schema {parsed.get('schema')}, and the collection reads schema "
                f"{SCHEMA}; fix: install the package velk-tools and the collection of the same release"
            )
        return parsed

    def checked(self, words, document=None, accepted=(0,)):
        """The same. Raises Failure with the errors of velkctl if its status is not accepted."""
        answer = self.velkctl(words, document)
        if answer["status"] not in accepted:
            raise Failure(errors_text(answer), **failure_members(answer))
        return answer

    def _explain(self, answer):
        if answer["rc"] == NOT_FOUND:
            return (
                f"{self._program} is not on the device; fix: install the package velk-tools on it, "
                "or set velk_device_program to its path"
            )
        said = " ".join((answer["stderr"] or answer["stdout"]).split())[:LONGEST_OUTPUT]
        return f"velkctl printed no JSON document, exit status {answer['rc']}: {said or 'no output'}"


def one_line(error):
    """Returns the parts of an error as velkctl joins them on one line."""
    parts = [error["message"], error["detail"]]
    if error["remedy"]:
        is_question = error["remedy"].startswith("did you mean")
        parts.append(error["remedy"] if is_question else "fix: " + error["remedy"])
    return "; ".join(part for part in parts if part)


def errors_text(answer):
    """Returns the errors of a document, a line each."""
    lines = [one_line(error) for error in answer["errors"]]
    return "\n".join(lines) or f"velkctl {answer['verb']} ended with status {answer['status']}"


def failure_members(answer):
    return {"status": answer["status"], "errors": answer["errors"], "notes": answer["notes"]}


def time_words(arguments):
    """Returns the options of velkctl for the times that an action takes."""
    words = []
    if arguments.get("wait") is not None:
        words.append(f"--wait={arguments['wait']}")
    if arguments.get("timeout") is not None:
        words += ["--timeout", str(arguments["timeout"])]
    return words


TIME_ARGUMENTS = {"wait": {"type": "int"}, "timeout": {"type": "int"}}
