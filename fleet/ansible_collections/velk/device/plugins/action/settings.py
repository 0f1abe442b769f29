# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Applies settings as one change, with one run of velkctl that gets them on its standard input."""

from ansible.errors import AnsibleConnectionFailure
from ansible_collections.velk.device.plugins.plugin_utils.catalogue import SETTINGS
from ansible_collections.velk.device.plugins.plugin_utils.checks import Problem, checked_setting
from ansible_collections.velk.device.plugins.plugin_utils.connection import connect_anew
from ansible_collections.velk.device.plugins.plugin_utils.velkctl import (
    TIME_ARGUMENTS,
    DeviceAction,
    Failure,
    errors_text,
    failure_members,
    time_words,
)

TAKEN_BACK_IN_PART = 9
CONNECTION_LOST = (
    "The connection ended before velkctl had answered, as it does if the change moves the device to another "
    "address. The device takes the change back unless velk.device.confirm reaches it in time."
)
NO_PREVIEW = "The device cannot preview changes of files, because its kernel refuses namespaces."


class ActionModule(DeviceAction):
    ARGUMENTS = {
        # Checked here, for a message with the place in the playbook.
        "settings": {"type": "raw", "required": True},
        "confirm_within": {"type": "int"},
        "restart": {"type": "str", "default": "auto"},
        **TIME_ARGUMENTS,
    }

    def act(self, arguments):
        words = ["apply", "-", "--restart", arguments["restart"]] + time_words(arguments)
        document = {"schema": 1, "settings": self._checked_settings(self._task.args["settings"])}
        if self._task.check_mode:
            return self._result(self.velkctl(words + ["--dry-run"], document))
        if arguments["confirm_within"] is None:
            return self._result(self.velkctl(words, document))
        return self._apply_guarded(words + ["--confirm-within", str(arguments["confirm_within"])], document)

    def _apply_guarded(self, words, document):
        # A device that cannot be reached is found before the change is sent.
        connect_anew(self._connection)
        self.checked(["pending"])
        try:
            return self._result(self.velkctl(words, document))
        except AnsibleConnectionFailure:
            return {
                "changed": True,
                "connection_lost": True,
                "warnings": [CONNECTION_LOST],
                "id": None,
                "state": None,
            }

    def _checked_settings(self, settings):
        if not isinstance(settings, dict):
            raise Failure(f"settings: not an object; {self._place()}; fix: give names and values")
        checked, problems = {}, []
        for word, value in settings.items():
            try:
                name, sent = checked_setting(str(word), value)
                if name in checked:
                    raise Problem(f"{name}: given twice, with its short name and its full name", "give it once")
                checked[name] = sent
            except Problem as problem:
                problems.append((word, problem))
        if problems:
            raise Failure(
                "\n".join(self._with_place(word, problem) for word, problem in problems),
                errors=[{"setting": shown_name(word), "message": p.message, "remedy": p.remedy} for word, p in problems],
            )
        return checked

    def _with_place(self, word, problem):
        is_question = problem.remedy.startswith("did you mean")
        remedy = problem.remedy if is_question else "fix: " + problem.remedy
        return f"{problem.message}; {self._place(word)}; {remedy}"

    def _place(self, word=None):
        """Returns the place of a setting in the playbook; that of the task if a template made it."""
        written = self._task.get_ds() or {}
        arguments = next((written[key] for key in written if str(key).endswith("settings")), None)
        settings = arguments.get("settings") if isinstance(arguments, dict) else None
        names = settings if isinstance(settings, dict) else {}
        name = next((name for name in names if name == word), None)
        position = getattr(name, "ansible_pos", None) or getattr(written, "ansible_pos", None)
        return "at {0}, line {1}, column {2}".format(*position) if position else "in this task"

    def _result(self, answer):
        members = {key: answer[key] for key in ("changes", "restarts", "id", "state") if key in answer}
        if "skipped" in answer:
            # A result with a member "skipped" is that of a task that was not run, so this has another name.
            members["not_applied"] = answer["skipped"]
        members["notes"] = answer["notes"]
        is_preview_missing = self._task.check_mode and "changes" in answer and lacks_namespaces(answer)
        if answer["status"] != 0 and not is_preview_missing:
            is_part_left = answer["status"] == TAKEN_BACK_IN_PART
            raise Failure(errors_text(answer), changed=is_part_left, **{**members, **failure_members(answer)})
        if is_preview_missing:
            members["warnings"] = [NO_PREVIEW]
        members["changed"] = bool(answer["changes"])
        if self._task.diff:
            members["diff"] = [settings_diff(answer["changes"])] + file_diffs(answer.get("preview"))
        return members


def shown_name(word):
    """Returns a name without a value that was written after it by mistake. The value may be a key."""
    return str(word).partition("=")[0]


def lacks_namespaces(answer):
    return any("refuses namespaces" in error["message"] for error in answer["errors"])


def shown(name, value, which):
    """Returns a value as velkctl shows it to people."""
    if SETTINGS[name]["secret"]:
        return f"({which} secret)"
    if isinstance(value, list):
        value = " ".join(value)
    return "none" if value in (None, "") else value


def settings_diff(changes):
    return {
        "before_header": "settings",
        "after_header": "settings",
        "before": "".join(f"{c['name']}: {shown(c['name'], c['old'], 'old')}\n" for c in changes),
        "after": "".join(f"{c['name']}: {shown(c['name'], c['new'], 'new')}\n" for c in changes),
    }


def file_diffs(preview):
    """Returns the diffs of the device's files. Velkctl has masked the secrets in them."""
    files = (preview or {}).get("files", [])
    return [{"prepared": "\n".join(file["diff"]) + "\n"} for file in files if file.get("diff")]
