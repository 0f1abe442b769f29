# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# waiting.sh - functions for tests of changes that wait for their confirmation. Such a test starts all of its
# scripts first, as most of them sleep, and then checks their results.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck disable=SC2034,SC2154  # variables of lib.sh

# Functions for the scripts on the device.
waiting_words='
    interfaces=/etc/network/interfaces
    journal=/var/libvelk/journal
    velk-sandbox adapter out
    state() { cat /etc/network/interfaces /etc/dhclient* /etc/resolv.dnsmasq.conf | cksum; }
    before=$(state)
    # Makes a change that waits for N seconds, without a restart.
    wait_with() { velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within "$@"; }
    last_state() { velkctl history --quiet --json | sed -n "s/.*\"state\": \"\(.*\)\",/\1/p" | head -n 1; }
    guardians() { grep -lz "^velkctl-guardian" /proc/[0-9]*/cmdline 2>/dev/null | cut -d/ -f3; }
    until_true() { for i in $(seq 300); do "$@" && return; sleep .1; done; echo "never: $*"; }
    is_back() { [ "$before" = "$(state)" ]; }
    has_none() { [ -z "$(guardians)" ]; }
    # Names a change and its time as ID of TIME.
    plain() { sed -E "s/\b(change|confirm|revert|undo|for) [bcdfghjkmnpqrstvwxz23456789]{4}\b/\1 ID/g; s/[0-9]{2}:[0-9]{2}/TIME/; s/[0-9]+ s left/N s left/"; }
'
# Starts a script on a device of its own. Most of them sleep: all run at the same time.
start() { # NUMBER SCRIPT
    velk-sandbox --quiet -- sh -c "$waiting_words$2" >"$lib_folder/$1.out" 2>"$lib_folder/$1.err" </dev/null &
    pids[$1]=$!
}
# Sets the results of a script for the checks.
await() { # NUMBER
    lib_command="script $1"
    wait "${pids[$1]}"
    status=$?
    output=$(cat "$lib_folder/$1.out")
    error=$(cat "$lib_folder/$1.err")
}
pids=()
