# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The completions of bash and zsh offer every verb, option and value of the programs' tables."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import tables

FOLDER = tables.SOURCE / "packaging/completion"
HERE = pathlib.Path(__file__).parent
SETTINGS = json.loads(tables.output("velkctl", "list", "--json"))["settings"]
READABLE = {setting["name"] for setting in SETTINGS if setting["get"]}
CHANGEABLE = {setting["name"] for setting in SETTINGS if setting["set"]}
INTERFACES = {"eth0", "eth1"}
FILES = {"file", "folder", "secret"}
CHANGES = {"97gq", "85n5"}
DEVICES = {"1", "desk"}

# The words of a usage, and the values of an option in a help text, with their candidates.
WORDS = {
    "NAME...": READABLE, "[NAME...]": INTERFACES, "NAME VALUE...|NAME=VALUE...": CHANGEABLE,
    "FILE|-|NAME=VALUE...": {name + "=" for name in CHANGEABLE} | FILES, "FILE|-": FILES, "[FILE]": FILES,
    "eth0|eth1": INTERFACES, "[eth0|eth1]": INTERFACES, "NAME|ID": {setting["name"] for setting in SETTINGS},
    "RESULT|STATUS": set(tables.results()), "[ID]": CHANGES, "SECONDS": set(), "get|set|restart": {"get", "set", "restart"},
    "ID": {str(setting["id"]) for setting in SETTINGS if setting["get"]}, "[INTERFACE]": INTERFACES,
}
VALUES = {
    "SECONDS": set(), "COMMAND": set(), "WHICH": {"auto", "never"} | INTERFACES, "NAMES": INTERFACES | CHANGEABLE, "FILE": FILES,
    "DIR": {"folder"}, "TEXT": set(), "HEX": set(),
}
# An example of each word that another one follows.
GIVEN = {"FILE|-": "file", "SECONDS": "60", "get|set|restart": "get", "ID": "101"}


def words_of(verb):
    """Returns the words of a verb's usage, where one may have alternatives."""
    usage = tables.usage(verb)
    return [usage] if usage in WORDS else usage.split()


class Shell:
    """The candidates of a shell's completion for a program."""

    def __init__(self, program, *command):
        self.command = command
        self.program = program

    def offers(self, *lines):
        text = "".join("".join(f"={word}\n" for word in (self.program, *line)) + "\n" for line in lines)
        run = subprocess.run(self.command, input=text, capture_output=True, text=True, cwd=TEMPORARY / "files", timeout=60,
                             env={**os.environ, "PATH": f"{TEMPORARY}/programs:{os.environ['PATH']}", "LC_ALL": "C"}, check=False)
        if run.stderr or run.returncode:
            raise AssertionError(f"{self.command}: {run.returncode}: {run.stderr}")
        answers, found = [], []
        for word in run.stdout.splitlines():
            if word:
                found.append(word.rstrip("/"))
            else:
                answers.append(found)
                found = []
        assert len(answers) == len(lines), f"{len(answers)} answers for {len(lines)} lines"
        return answers


def make_programs():
    """Makes the programs that the completions run, with a journal and devices that are always the same."""
    (TEMPORARY / "files/folder").mkdir(parents=True)
    for name in ("file", "secret"):
        (TEMPORARY / "files" / name).touch()
    (TEMPORARY / "programs").mkdir()
    for name, verb, answer in (("velkctl", "history", "97gq  set\\n85n5  set"), ("velk-sandbox", "list", "1\\ndesk")):
        program = TEMPORARY / "programs" / name
        program.write_text(f'#!/bin/sh\n[ "$*" != {verb} ] && [ "$*" != "{verb} --no-pager" ] || exec printf "{answer}\\n"\n'
                           f'exec {tables.BUILD}/{name} "$@"\n', encoding="utf-8")
        program.chmod(0o755)


def shells(program):
    function = "_" + program.replace("-", "_")
    found = {"bash": Shell(program, "bash", "--norc", HERE / "complete.bash", FOLDER / f"{program}.bash", function)}
    if shutil.which("zsh"):
        found["zsh"] = Shell(program, "zsh", "-f", HERE / "complete.zsh", FOLDER / f"_{program}")
    return found


class Case(tables.TestCase):
    program = ""

    def check(self, expected):
        """Compares the candidates of each shell with those expected for each line."""
        for shell, completion in shells(self.program).items():
            for line, found in zip(expected, completion.offers(*expected)):
                with self.subTest(shell=shell, line=" ".join(line)):
                    if self.begins_command(expected[line]):
                        found = [word for word in set(found) - PROGRAMS if not word.startswith("_velk")]
                    self.assertEqual(len(found), len(set(found)), f"twice: {found}")
                    self.assertEqual(set(found), expected[line])

    def begins_command(self, _expected):
        """Returns true if the programs of the machine are offered, too."""
        return False


class Velkctl(Case):
    program = "velkctl"

    def test_offers_every_verb(self):
        self.check({("",): set(tables.verbs()), ("help", ""): set(tables.verbs())})

    def test_offers_every_option(self):
        expected = {(verb, "-"): set(tables.options("velkctl", verb)) for verb in tables.verbs() if verb != "help"}
        expected[("-",)] = set(tables.options("velkctl"))
        self.check(expected)

    def test_offers_every_word(self):
        expected = {}
        for verb in tables.verbs():
            if verb == "help":
                continue
            given = ()
            for word in words_of(verb):
                expected[(verb, *given, "")] = WORDS[word]
                given += (GIVEN.get(word, "x"),)
            if "..." not in tables.usage(verb):
                expected[(verb, *given, "")] = set()
        self.check(expected)

    def test_offers_every_value_of_an_option(self):
        expected, seen = {}, set()
        for verb in tables.verbs():
            for option, value in (tables.options("velkctl", verb) if verb != "help" else {}).items():
                if value:
                    expected[(verb, option, "")] = VALUES[value]
                    if option not in seen:  # the word after the value is that of the verb
                        expected[(verb, option, "x", "")] = WORDS[words_of(verb)[0]] if words_of(verb) else set()
                    seen.add(option)
        self.check(expected)

    def test_offers_files_of_secrets(self):
        self.check({("call", "--text", "@f"): {"@file", "@folder"}, ("call", "--hex", "@s"): {"@secret"},
                    ("set", "eth1.psk", "@s"): {"@secret"}, ("set", "eth1.psk=@s"): {"eth1.psk=@secret"},
                    ("set", "eth1.ssid", "@s"): set()})

    def test_offers_every_value_of_a_setting(self):
        expected = {}
        for setting in SETTINGS:
            values = {value.split()[0] for value in setting["values"]}
            if setting["set"]:
                expected[("set", setting["name"], "")] = values
                expected[("set", setting["name"] + "=")] = {f"{setting['name']}={value}" for value in values}
        self.check(expected)

    def test_offers_the_words_of_a_command_by_its_id(self):
        self.check({("call", "set", ""): {str(setting["id"]) for setting in SETTINGS if setting["set"]},
                    ("call", "restart", ""): {"1"}, ("call", "restart", "1", ""): INTERFACES, ("call", "set", "109", ""): {"eth0"},
                    ("describe", "10"): {str(setting["id"]) for setting in SETTINGS if str(setting["id"]).startswith("10")}})


class Sandbox(Case):
    program = "velk-sandbox"

    def begins_command(self, expected):
        return expected == set(tables.subcommands())

    def test_offers_every_subcommand(self):
        self.check({("",): set(tables.subcommands()), ("--quiet", ""): set(tables.subcommands()),
                    ("--web", "80", ""): set(tables.subcommands())})

    def test_offers_every_option(self):
        expected = {(verb, "-"): set(tables.options("velk-sandbox", verb)) for verb in tables.subcommands() if verb != "help"}
        expected[("-",)] = set(tables.options("velk-sandbox"))
        self.check(expected)

    def test_offers_every_value_of_an_option(self):
        files = {"DIR": {"folder"}, "DIR|FILE": FILES, "NAME": set()}
        expected = {}
        for option, value in tables.options("velk-sandbox").items():
            if value and not value.startswith("["):
                expected[(option, "")] = files[value]
                expected[(option, "x", "")] = set(tables.subcommands())
        for verb in tables.subcommands():
            if verb != "help" and "--name" in tables.options("velk-sandbox", verb):
                expected[(verb, "--name", "")] = DEVICES
        self.check(expected)

    def test_offers_both_positions(self):
        parts = re.search(r"velk-sandbox ([a-z|]+) in\|out", tables.output("velk-sandbox", "--help"))[1].split("|")
        self.check({line: words for part in parts for line, words in (((part, ""), {"in", "out"}), ((part, "in", ""), set()))})
        self.check({("watch", ""): set(), ("list", ""): set()})


class Folders(tables.TestCase):
    def test_manual_and_build_name_the_same_folders(self):
        """Shells load a completion from its folder, by its name. installed_test.sh checks the installed files."""
        build = tables.read("packaging/CMakeLists.txt")
        for program in ("velkctl", "velk-sandbox"):
            self.assertRegex(build, rf"completion/{program}\.bash RENAME {program}\n\s+DESTINATION "
                                    rf"\${{CMAKE_INSTALL_DATADIR}}/bash-completion/completions ")
            self.assertRegex(build, rf"completion/_{program} DESTINATION \${{CMAKE_INSTALL_DATADIR}}/zsh/site-functions\n")
            self.assertEqual(tables.read(f"packaging/completion/_{program}").splitlines()[0], f"#compdef {program}")


if __name__ == "__main__":
    import unittest
    if not shutil.which("zsh"):
        print("zsh is not installed: only bash is tested", file=sys.stderr)
    with tempfile.TemporaryDirectory() as folder:
        TEMPORARY = pathlib.Path(folder)
        make_programs()
        run = subprocess.run(["bash", "-c", "compgen -c"], capture_output=True, text=True, check=True)
        PROGRAMS = {"velkctl", "velk-sandbox", *run.stdout.split()} - set(tables.subcommands())
        unittest.main()
