# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# stuck_log.sh - the word with_stuck_log, for scripts on the device. Source it after lib.sh.
# shellcheck shell=bash

# shellcheck disable=SC2016,SC2034  # for the shell on the device, in other files
stuck_log_word='
    # Runs a command on the same device while nobody reads its system log and the queue is full.
    with_stuck_log() { python3 -c "$STUCK_LOG" "$@"; }
'

# A /dev of its own, shared by the command and its children.
export STUCK_LOG='
import os, socket, subprocess, sys
if os.environ.get("LOG_IS_PRIVATE") != "yes":
    os.environ["LOG_IS_PRIVATE"] = "yes"
    os.execvp("unshare", ["unshare", "--mount", sys.executable, "-c", os.environ["STUCK_LOG"]] + sys.argv[1:])
private = """
    mkdir -p /run/stuck && mount -t tmpfs none /run/stuck && mkdir /run/stuck/shm &&
    for node in null zero urandom; do : >/run/stuck/$node && mount --bind /dev/$node /run/stuck/$node; done &&
    mount --bind /dev/shm /run/stuck/shm && mount --rbind /run/stuck /dev"""
subprocess.run(["sh", "-c", private], check=True)
log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log.bind("/dev/log")
writer = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
writer.connect("/dev/log")
writer.setblocking(False)
try:
    while True:
        writer.send(b"<13>nobody reads this")
except BlockingIOError:
    pass
log.set_inheritable(True)
os.execvp(sys.argv[1], sys.argv[1:])
'
