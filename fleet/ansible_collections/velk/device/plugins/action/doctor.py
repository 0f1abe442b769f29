# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Looks for problems of a device."""

from ansible_collections.velk.device.plugins.plugin_utils.velkctl import DeviceAction, Failure

PROBLEMS_FOUND = 1


class ActionModule(DeviceAction):
    ARGUMENTS = {"fail_on": {"type": "str", "choices": ["problem", "warning", "never"], "default": "problem"}}

    def act(self, arguments):
        answer = self.checked(["doctor"], accepted=(0, PROBLEMS_FOUND))
        if "findings" not in answer:
            raise Failure("velkctl doctor gave no findings", errors=answer["errors"])
        members = {key: answer[key] for key in ("device", "findings", "problems", "warnings")}
        # A result with a member "warnings" would print each of them, so the number has another name.
        members["warning_count"] = members.pop("warnings")
        fails = {
            "problem": answer["problems"] > 0,
            "warning": bool(answer["findings"]),
            "never": False,
        }
        if fails[arguments["fail_on"]]:
            raise Failure("\n".join(described(finding) for finding in answer["findings"]), **members)
        return {"changed": False, **members}


def described(finding):
    parts = [f"{finding['subject']} {finding['effect']}", finding["description"]]
    if finding["remedy"]:
        parts.append(f"fix: {finding['remedy']}")
    return "; ".join(part for part in parts if part)
