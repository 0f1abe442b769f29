# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Exit statuses and results in README and documents."""
import re
import unittest

import tables

DOCUMENTS = ["README.md", "CONTRIBUTING.md", "bindings/python/README.md", "docs/man/velkctl.1", "docs/man/libvelk.3"] + [
    str(path.relative_to(tables.SOURCE)) for path in sorted((tables.SOURCE / "docs").glob("*.md"))]


def entries(lines):
    """Returns the entries of a list in a manual page, by their first words."""
    found = {}
    for line in lines:
        if line.startswith(".It "):
            found[line[4:]] = []
        elif found and not line.startswith((".Bl", ".El")):
            found[list(found)[-1]].append(line)
    return {name: tables.without_breaks(" ".join(lines)) for name, lines in found.items()}


class Velkctl(tables.TestCase):
    def test_readme_has_every_status_with_its_meaning(self):
        table = re.search(r"^\| exit status \| meaning \|\n\|---\|---\|\n((?:\|.*\n)+)", tables.read("README.md"), re.M)[1]
        rows = {int(status): meaning for status, meaning in re.findall(r"^\| (\d+) \| (.*) \|$", table, re.M)}
        self.assertEqual(rows, tables.exit_statuses())

    def test_manual_has_every_status_with_its_meaning(self):
        found = entries(tables.manual("velkctl.1", "EXIT STATUS"))
        self.assertEqual([int(status) for status in found], list(tables.exit_statuses()))
        for status, meaning in tables.exit_statuses().items():
            self.assertTrue(found[str(status)].lower().startswith(meaning.lower()), f"{status}: {found[str(status)]}")

    def test_schema_has_every_status_with_its_meaning(self):
        statuses = ", ".join(f"{status} {meaning}" for status, meaning in tables.exit_statuses().items())
        self.has(tables.read("docs/velkctl.schema.json"), f"The exit status: {statuses}. ", "the schema")


class Sandbox(tables.TestCase):
    def statuses(self):
        rows = re.search(r"^Exit status:.*\n((?:  \d+ .*\n)+)", tables.output("velk-sandbox", "--help"), re.M)[1]
        return dict(re.findall(r"^  (\d+) +(.*)$", rows, re.M))

    def test_help_has_the_statuses_of_the_source(self):
        values = dict(re.findall(r"\b(k\w+) = (\d+)", tables.read("sandbox/process/exit_status.h")))
        self.assertEqual(self.statuses(), {
            values["kUsageError"]: "wrong usage",
            values["kSandboxFailed"]: "the device could not be made, reached or changed",
            values["kCannotExecute"]: "the command cannot be run",
            values["kNotFound"]: "the command is not found"})

    def test_page_has_the_statuses_of_the_help(self):
        table = re.search(r"itself returns:\n\n\| \| \|\n\|---\|---\|\n((?:\|.*\n)+)", tables.read("docs/sandbox.md"))[1]
        self.assertEqual(dict(re.findall(r"^\| (\d+) \| (.*) \|$", table, re.M)), self.statuses())

    def test_manual_has_the_statuses_of_the_help(self):
        found = entries(tables.manual("velk-sandbox.1", "EXIT STATUS"))
        found.pop("Ar STATUS")
        self.assertEqual({status: text[0].lower() + text[1:-1] for status, text in found.items()}, self.statuses())


class Web(tables.TestCase):
    def test_manual_has_the_statuses_of_the_source(self):
        self.assertEqual(tables.manual("velk-web.8", "EXIT STATUS"), ["0, 1 after a failure, 2 after a wrong usage."])
        self.assertEqual(tables.number("web/server/main.cpp", r"fputs\(kUsage, stderr\);\s+return (\d+);"), 2)


class Results(tables.TestCase):
    def test_every_name_with_a_number_has_its_own(self):
        patterns = [r"`?(LIB_VELK_\w+)`? \((-?\d+)\)", r"\.It Dv (LIB_VELK_\w+) No (-?\d+)"]
        swapped = [r"\| (-?\d+) \| `(LIB_VELK_\w+)`"]
        count = 0
        for document in DOCUMENTS:
            text = tables.read(document)
            found = [pair for pattern in patterns for pair in re.findall(pattern, text)]
            found += [(name, value) for pattern in swapped for value, name in re.findall(pattern, text)]
            found += [(name, value) for value, name in re.findall(r'"code": (-?\d+),\s*"name": "(LIB_VELK_\w+)"', text)]
            for name, value in found:
                self.assertEqual(tables.results().get(name), int(value), f"{document}: {name}")
                count += 1
        self.assertGreater(count, 20)

    def test_reference_and_manual_have_every_result(self):
        self.assertEqual(re.findall(r"^\| (?:-?\d+) \| `(LIB_VELK_\w+)` \|", tables.read("docs/commands.md"), re.M),
                         list(tables.results()))
        self.assertEqual(re.findall(r"^\.It Dv (LIB_VELK_\w+) No", "\n".join(tables.manual("libvelk.3", "RETURN VALUES")), re.M),
                         list(tables.results()))


if __name__ == "__main__":
    unittest.main()
