# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The tables that the documents are compared with: constants of headers and sources, and the help of the
programs, which velkctl prints from its table of verbs."""
import functools
import os
import pathlib
import re
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["VELK_SOURCE"])
BUILD = pathlib.Path(os.environ["VELK_BUILD"])


@functools.lru_cache(maxsize=None)
def read(path):
    return (SOURCE / path).read_text(encoding="utf-8")


def sources(*folders):
    """Returns the text of all sources in these folders."""
    paths = [path for folder in folders for path in sorted((SOURCE / folder).rglob("*"))]
    return "\n".join(read(path.relative_to(SOURCE)) for path in paths if path.suffix in (".h", ".cpp"))


@functools.lru_cache(maxsize=None)
def output(program, *arguments):
    return subprocess.run([BUILD / program, *arguments], check=True, capture_output=True, text=True).stdout


# ---- Constants -------------------------------------------------------------------------------------------

@functools.lru_cache(maxsize=None)
def public_numbers():
    """Returns the macros and enumerators of include/velk that are numbers."""
    text = sources("include/velk")
    macros = re.findall(r"^#define (VELK_\w+) (-?\d+)\b", text, re.M)
    enumerators = re.findall(r"\b((?:LIB_)?VELK_\w+)\s*=\s*(-?\d+)\s*[,/} \n]", text)
    return {name: int(value) for name, value in macros + enumerators}


def number(path, pattern):
    """Returns the number that the only match of the pattern in a source has."""
    found = re.findall(pattern, read(path))
    assert len(set(found)) == 1, f"{path}: {pattern} matches {found}"
    return int(found[0].replace("'", ""))


def texts(path):
    """Returns the constants of a source that are texts, by their names."""
    return dict(re.findall(r'constexpr char (k\w+)\[\] = "([^"]*)";', read(path)))


@functools.lru_cache(maxsize=None)
def results():
    return {name: value for name, value in public_numbers().items() if name.startswith("LIB_VELK_")}


# ---- Help of programs ------------------------------------------------------------------------------------

def section(text, title):
    """Returns the rows below a title of a help text: pairs of the name and its description."""
    rows = re.search(rf"^{title}:\n((?:  .*\n)+)", text, re.M)
    return re.findall(r"^  (\S+(?: \S+)*?)(?:\s{2,}| (?=[A-Z][a-z]))(.*)$", rows[1], re.M) if rows else []


@functools.lru_cache(maxsize=None)
def options(program, *verb):
    """Returns the options of a verb, or those before it, each with the name of its value or None."""
    found = {}
    text = output(program, *verb, "--help")
    rows = re.search(r"^Options:\n((?:  .*\n)+)", text, re.M)[1]
    for names, value in re.findall(r"^  (-\S+)(?: (\[?[A-Z|]{2,}\]?))?", rows, re.M):
        for name in names.split(","):
            found[name] = value or None
    return found


def verbs():
    """Returns the verbs of velkctl."""
    return [name for name, _ in section(output("velkctl", "--help"), "Verbs")]


def subcommands():
    """Returns the subcommands of velk-sandbox."""
    return [name for name, _ in section(output("velk-sandbox", "--help"), "Subcommands")]


def exit_statuses():
    """Returns the exit statuses of velkctl with their meanings."""
    return {int(name): meaning for name, meaning in section(output("velkctl", "--help"), "Exit status")}


def usage(verb):
    """Returns the words that a verb takes, as its usage names them, without the options."""
    line = re.search(rf"^Usage: velkctl {verb}\b ?(.*)$", output("velkctl", verb, "--help"), re.M)[1]
    return line.replace("[OPTION...]", "").strip()


# ---- Documents -------------------------------------------------------------------------------------------

def manual(name, title):
    """Returns the lines of a section of a manual page."""
    found = re.search(rf"^\.Sh {title}\n(.*?)(?=^\.Sh |\Z)", read(f"docs/man/{name}"), re.S | re.M)
    return found[1].splitlines()


def manual_paths(name, title="FILES"):
    """Returns the paths that have an entry in a section of a manual page."""
    return [word for line in manual(name, title) if line.startswith(".It Pa ") for word in line.split()[2:] if word != ","]


def manual_options(name, title):
    """Returns the options that have an entry in a section of a manual page."""
    found = set()
    for line in manual(name, title):
        if line.startswith(".It Fl "):
            found.update("-" + option for option in re.findall(r"\bFl (\S+)", line))
    return found


def without_breaks(text):
    return " ".join(text.split())


def filled(fact, constants):
    """Returns a fact with the values of the expressions in its braces."""
    return re.sub(r"{([^}]+)}", lambda match: str(eval(match[1], {}, constants)), fact)


class TestCase(unittest.TestCase):
    maxDiff = None

    def holds(self, name, text, facts, left=r"\d+"):
        """Fails unless a text has these facts, and outside of them nothing of the kind that `left` describes. So a
        wrong value is noticed, and a new one."""
        for fact in facts:
            self.has(text, fact, name)
        for fact in sorted(facts, key=len, reverse=True):
            text = text.replace(fact, "")
        self.assertEqual(re.findall(left, text), [], f"{name}: values without a constant")

    def has(self, text, part, name):
        """Fails unless a document has a part, and does not print the whole document."""
        if part not in text:
            self.fail(f"{name} lacks: {part}")
