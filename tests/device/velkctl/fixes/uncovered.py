# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# uncovered.py - names the places of the doctor's sources that no case has a finding of.
#
# Arguments: SOURCES FINDINGS EXCEPTIONS. FINDINGS has a finding in JSON on each line. EXCEPTIONS has
# lines "TEXT | REASON" for places with this text that no case can have. A place is a call that
# describes a finding; a finding comes from it if it has one of the literals there.
import json, re, sys
from pathlib import Path

CALL = re.compile(r"(?:\.(Problem|Warning|Note|Because)|\b(ToolFinding))\(")
LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
SHORTEST = 5  # shorter literals are in findings of other places too


def arguments(source, begin):
    """Returns the arguments of the call with its parenthesis before `begin`."""
    parts, depth, at, start = [], 1, begin, begin
    while depth:
        literal = LITERAL.match(source, at)
        if literal:
            at = literal.end()
            continue
        char = source[at]
        depth += (char in "({[") - (char in ")}]")
        if not depth or (char == "," and depth == 1):
            parts.append(source[start:at])
            start = at + 1
        at += 1
    return parts


def literals(text):
    joined = re.sub(r'"\s*\n\s*"', "", text)
    return [l.replace('\\"', '"') for l in LITERAL.findall(joined) if len(l) >= SHORTEST]


def places(folder):
    for path in sorted(Path(folder).glob("*_check*.cpp")):
        source = path.read_text()
        for call in CALL.finditer(source):
            if source[:call.start()].endswith("Finding "):
                continue  # the definition of the function
            parts = arguments(source, call.end())
            described = 0 if call.group(1) == "Because" else 1
            words = literals(parts[described]) if len(parts) > described else []
            line = source.count("\n", 0, call.start()) + 1
            yield f"{path.name}:{line}", words or literals("".join(parts)), words


def main(folder, findings_file, exceptions_file):
    findings = [" ".join([f["effect"], f["description"], f["remedy"]])
                for f in map(json.loads, Path(findings_file).read_text().splitlines())]
    rows = [l.split(" | ") for l in Path(exceptions_file).read_text().splitlines()
            if l and not l.startswith("#")]
    used = set()
    for place, words, _ in places(folder):
        if any(word in finding for word in words for finding in findings):
            continue
        excepted = [row[0] for row in rows if any(row[0] in word for word in words)]
        used.update(excepted)
        if words and not excepted:
            print(f"no case has the finding of {place}: {words}")
    for row in rows:
        if row[0] not in used:
            print(f"exception without a place, or with a case: {row[0]}")


main(*sys.argv[1:])
