# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Options and verbs in README, documents and manual pages. tests/unit/velkctl/cli/manual_test.cpp compares
velkctl(1) with the table of verbs."""
import re
import unittest

import tables

PAGES = ["README.md"] + [str(path.relative_to(tables.SOURCE)) for path in sorted((tables.SOURCE / "docs").glob("*.md"))]
MANUALS = ["velkctl.1", "velk-sandbox.1", "libvelk.3", "velk-web.8"]


def command_lines(text, program):
    """Returns the words after the program's name in code: indented or fenced lines, and backquotes."""
    fences = re.findall(r"^```(\w*)\n(.*?)^```$", text, re.S | re.M)
    lines = [line for language, block in fences if language not in ("c", "json") for line in block.splitlines()]
    text = re.sub(r"^```\w*\n.*?^```$", "", text, flags=re.S | re.M)
    lines += re.findall(r"^    (\S.*)$", text, re.M) + re.findall(r"`([^`\n]+)`", text)
    return [found.split() for line in lines
            for found in re.findall(rf"(?:^|[$#;&|] |-- |/|sudo |`){program} +([^;&|#>]*)", line)]


def own_options(words):
    """Returns the words that are options, without the values after "=", up to "--"."""
    words = words[:words.index("--")] if "--" in words else words
    return [word.split("=")[0].rstrip(",.") for word in words if re.match(r"--?[a-z]", word)]


class Pages(tables.TestCase):
    def test_velkctl_lines_have_known_verbs_and_options(self):
        count = 0
        for page in PAGES:
            for words in command_lines(tables.read(page), "velkctl"):
                while words and words[0].startswith("--"):
                    self.assertIn(words.pop(0), tables.options("velkctl"), page)
                if not words or not re.match(r"[a-z]+$", words[0]):
                    continue  # a placeholder
                verb = words[0]
                self.assertIn(verb, tables.verbs(), f"{page}: {words}")
                known = tables.options("velkctl", verb) if verb != "help" else {}
                for option in own_options(words):
                    self.assertIn(option, known, f"{page}: {words}")
                count += 1
        self.assertGreater(count, 150)

    def test_sandbox_lines_have_known_options(self):
        count = 0
        for page in PAGES:
            for words in command_lines(tables.read(page), "velk-sandbox"):
                known = dict(tables.options("velk-sandbox"))
                for word in words:
                    if word in tables.subcommands() and word != "help":
                        known.update(tables.options("velk-sandbox", word))
                    elif word == "--" or re.match(r"(\./)?[a-z]", word):
                        break  # the command
                    elif re.match(r"--?[a-z]", word):
                        self.assertIn(word.split("=")[0], known, f"{page}: {words}")
                        count += 1
        self.assertGreater(count, 5)


class Sandbox(tables.TestCase):
    def all_options(self):
        return set(tables.options("velk-sandbox"))

    def test_manual_explains_every_option(self):
        self.assertEqual(tables.manual_options("velk-sandbox.1", "DESCRIPTION"), self.all_options())

    def test_page_explains_every_option(self):
        table = re.search(r"^## Options\n\n((?:\|.*\n)+)", tables.read("docs/sandbox.md"), re.M)[1]
        cells = " ".join(re.findall(r"^\| ([^|]*) \|", table, re.M))
        self.assertEqual(set(re.findall(r"`(--[a-z-]+)", cells)), self.all_options() - {"-h"})

    def test_page_names_the_value_of_every_option(self):
        text = tables.read("docs/sandbox.md")
        for option, value in tables.options("velk-sandbox").items():
            for word in (value or "").split("|"):
                if option != "-h":
                    self.has(text, f"`{option} {word}`" if word else f"`{option}`", "docs/sandbox.md")

    def test_synopsis_has_every_option_and_subcommand(self):
        synopsis = "\n".join(tables.manual("velk-sandbox.1", "SYNOPSIS"))
        self.assertEqual({"-" + name for name in re.findall(r"Fl (\S+)", synopsis)}, self.all_options() - {"-h"})
        words = " ".join(re.findall(r"^\.Cm (.*)$", synopsis, re.M)).split()
        self.assertEqual(set(words) - {"|", "Fl", "-help", "-version", "in", "out"}, set(tables.subcommands()))


class Web(tables.TestCase):
    def test_manual_explains_every_option(self):
        usage = re.search(r"constexpr char kUsage\[\] =(.*?);\n", tables.read("web/server/main.cpp"), re.S)[1]
        self.assertEqual(tables.manual_options("velk-web.8", "DESCRIPTION"), set(re.findall(r"--[a-z-]+", usage)))


class Readme(tables.TestCase):
    def test_names_every_manual_page_but_that_of_the_server(self):
        named = set(re.findall(r"docs/man/([\w.-]+)", tables.read("README.md")))
        self.assertEqual(named, set(MANUALS) - {"velk-web.8"})
        self.assertEqual({path.name for path in (tables.SOURCE / "docs/man").iterdir()}, set(MANUALS))

    def test_links_lead_to_files(self):
        for page in PAGES:
            folder = (tables.SOURCE / page).parent
            for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", tables.read(page)):
                self.assertTrue((folder / link).exists(), f"{page}: {link}")


if __name__ == "__main__":
    unittest.main()
