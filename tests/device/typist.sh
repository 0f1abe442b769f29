# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# typist.sh - tests of completion at a terminal. Source it after lib.sh.
# shellcheck shell=bash
# shellcheck disable=SC2016,SC2034,SC2089,SC2090  # for python3 and the shell that it starts

# Exports the completions of a program for the shells that load them.
load_completions() { # load_completions PROGRAM
    COMPLETED_PROGRAM=$1
    BASH_COMPLETION_FILE=$(cat "$VELK_SOURCE/packaging/completion/$1.bash")
    ZSH_COMPLETION_FILE=$(cat "$VELK_SOURCE/packaging/completion/_$1")
    export COMPLETED_PROGRAM BASH_COMPLETION_FILE ZSH_COMPLETION_FILE
}

# A program for python3: types a line and a tab into an interactive shell, and shows the resulting
# line. A complete word is followed by a blank. The shell "device" is that of velk-sandbox.
TYPIST='
import os, pty, re, select, sys, time

shell, lines = sys.argv[1], sys.argv[2:]
show = {"bash": "show() { printf \"\\n<%s>\\n\" \"$READLINE_LINE\"; READLINE_LINE=; }\n"
                "bind -x \"\\\"\\C-t\\\": show\"\n",
        "zsh": "show() { print -r; print -r -- \"<$BUFFER>\"; BUFFER=; }\n"
               "zle -N show; bindkey \"^T\" show\n"}
show["device"] = show["bash"]
load = {"bash": "eval \"$BASH_COMPLETION_FILE\"\n",
        "zsh": "mkdir /tmp/completion\n"
               "print -r -- \"$ZSH_COMPLETION_FILE\" >/tmp/completion/_$COMPLETED_PROGRAM\n"
               "fpath=(/tmp/completion $fpath); autoload -Uz compinit; compinit -D -u\n",
        "device": ""}
arguments = {"bash": ["bash", "--norc", "--noprofile", "-i"], "zsh": ["zsh", "-f", "-i"],
             "device": ["velk-sandbox", "--quiet"]}[shell]

child, terminal = pty.fork()
if child == 0:
    os.environ.update(TERM="dumb", PS1="> ", HISTFILE="/dev/null")
    os.execvp(arguments[0], arguments)

def read_until(pattern):
    seen, end = "", time.monotonic() + 20
    while not re.search(pattern, seen) and time.monotonic() < end:
        if select.select([terminal], [], [], 0.1)[0]:
            try:
                seen += os.read(terminal, 4096).decode(errors="replace")
            except OSError:
                break
    return seen

os.write(terminal, (load[shell] + show[shell] + "echo re\"\"ady\n").encode())
read_until("ready\r")
for line in lines:
    os.write(terminal, (line + "\t").encode())
    os.write(terminal, b"\x14")  # read when the completion is done
    found = re.search("<(.*)>\r", read_until("<.*>\r"))
    print(found.group(1) + "|" if found else "nothing came")
'
export TYPIST
