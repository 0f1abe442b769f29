# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# apply_fix.py - breaks a device, applies the doctor's fix as printed and looks again.
#
# Arguments: BREAK FINDING HAND. BREAK is a script for sh. FINDING is a regular expression for the
# subject, effect and description. HAND is a script that carries out a fix in words; it runs
# only if the fix is none of the forms below. Prints the finding in JSON, or FAILED and the reason.
# With an empty FINDING, applies the fix of the last finding until there is none, and prints each.
import json, os, re, shutil, subprocess, sys

VALUES = {"ADDRESS": "10.0.0.9", "NETMASK": "255.255.255.0", "GATEWAY": "10.0.0.1",
          "SERVER": "192.0.2.1", "SCHEDULE": "daily 08:30", "TEXT": "room"}
OWN = "/run/own"  # the files before BREAK
COMMANDS = "rm|mkdir|chmod|chown|sed|ln|velkctl"
# The state of a method that was chosen, not a fault.
CHOSEN = "cannot be set while the method is static"
# The value of a line is judged after the line.
OF_VALUE = "has a value that is not valid"


def fail(reason):
    print("FAILED:", reason)
    sys.exit(1)


def examine():
    run = subprocess.run(["velkctl", "doctor", "--json"], capture_output=True, text=True)
    findings = json.loads(run.stdout)["findings"]
    return [f for f in findings if f["effect"] != CHOSEN]


def key(finding):
    return finding["subject"], finding["effect"]


def text(finding):
    return " ".join([finding["subject"], finding["effect"], finding["description"]])


def with_values(remedy):
    return re.sub("|".join(VALUES), lambda word: VALUES[word.group()], remedy)


def lines_of(path):
    with open(path, newline="", errors="surrogateescape") as file:
        return file.read().splitlines(keepends=True)


# Writes in place: a file of the device may be a mount.
def write_lines(path, lines):
    with open(path, "w", newline="", errors="surrogateescape") as file:
        file.writelines(lines)


def quoted(remedy):
    return ["\t" + line + "\n" for line in re.findall(r'"([^"]*)"', remedy)]


def edit(path, line, remedy):
    """Returns the lines of the file after the fix; None if it is of no known form."""
    lines = lines_of(path) if os.path.isfile(path) else []
    number = re.search(r"(below|above|instead of) line (\d+)", remedy)
    at = int(number.group(2)) if number else 0
    if number and remedy.startswith("move it"):
        moved = lines.pop(line - 1)
        at -= 1 if line <= at else 0
        return lines[:at] + [moved] + lines[at:]
    if number and quoted(remedy):
        new = [new.lstrip("\t") if "iface" in new else new for new in quoted(remedy)]
        start = at if number.group(1) == "below" else at - 1
        return lines[:start] + new + lines[at - 1 if number.group(1) == "above" else at:]
    if remedy.startswith('add a line "'):
        return lines + [new.lstrip("\t") for new in quoted(remedy)]
    if remedy.startswith("write: "):
        new = [remedy.removeprefix("write: ") + "\n"]
        return lines[:line - 1] + new + lines[line:] if line else lines + new
    if re.match("remove '[^']*'$", remedy):
        return lines[:line - 1] + lines[line:]
    word = re.match("remove the word '([^']*)' from the comment", remedy)
    if word:
        return lines[:line - 1] + [lines[line - 1].replace(word.group(1), "")] + lines[line:]
    return None


def command(remedy):
    under_lock = re.search(r"\(flock [^)]*\) 9< \S+", remedy)
    if under_lock:
        return under_lock.group()
    ends = ", where .*|; make it .*|; to finish .*|; to leave .*"
    found = re.search(r"(?:^|: )((?:%s) .*?)(?:%s)?$" % (COMMANDS, ends), remedy)
    return found.group(1) if found else None


def put_own_file(path):
    if os.path.isdir(path):
        shutil.rmtree(path)
    elif os.path.lexists(path):
        os.remove(path)
    shutil.copy2(OWN + path, path)


def apply(finding, hand):
    remedy = with_values(finding["remedy"]).replace("VALUE", hand or "VALUE")
    cause = finding["cause"] or {"file": "", "line": None}
    if remedy.startswith("put the device's own file"):
        return put_own_file(cause["file"])
    edited = edit(cause["file"], cause["line"], remedy)
    if edited is not None:
        return write_lines(cause["file"], edited)
    script = command(remedy) or hand
    if not script:
        fail("no way to apply: " + remedy)
    run = subprocess.run(["sh", "-c", script], capture_output=True, text=True)
    # The doctor's own query may have removed the file of its finding.
    is_gone = cause["file"] and not os.path.lexists(cause["file"])
    if run.returncode != 0 and not is_gone:
        fail(f"{script}: {run.stderr}")


def fix_all(hand):
    before = examine()
    if not before:
        fail("no finding")
    while before:
        apply(before[-1], hand)
        after = examine()
        new = [text(f) for f in after
               if key(f) not in map(key, before) and f["effect"] != OF_VALUE]
        if new or len(after) > len(before):
            fail(f"new after: {before[-1]['remedy']}: {new}")
        if before[-1] in after:
            fail("still there after: " + before[-1]["remedy"])
        print(json.dumps(before[-1]))
        before = after


def main(breaks, pattern, hand):
    os.environ["PATH"] += ":/run/mine"  # a folder that sudo does not search
    subprocess.run(["sh", "-c", breaks], check=False)
    if not pattern:
        return fix_all(hand)
    before = examine()
    found = [f for f in before if re.search(pattern, text(f))]
    if not found:
        fail("no such finding: " + json.dumps([text(f) for f in before]))
    apply(found[0], hand)
    after = examine()
    if any(key(f) == key(found[0]) and f["cause"] == found[0]["cause"] for f in after):
        fail("still there after: " + found[0]["remedy"])
    new = [text(f) for f in after if key(f) not in map(key, before)]
    if new:
        fail(f"new after: {found[0]['remedy']}: {new}")
    print(json.dumps(found[0]))


main(*sys.argv[1:])
