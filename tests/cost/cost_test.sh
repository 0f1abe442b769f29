#!/usr/bin/env bash
# cost_test.sh - holds what a call costs by counts, which a busy machine does not change.
set -u
folder=$(dirname "$0")
library=$VELK_BUILD/libvelk.so.1
PATH=$VELK_BUILD:$PATH
LC_ALL=C
export PATH LC_ALL
failures=0

# at_most WHAT LIMIT MEASURED
at_most() {
    local verdict=ok
    if ! [ "${3:-none}" -le "$2" ] 2>/dev/null; then
        verdict='TOO MUCH'
        failures=$((failures + 1))
    fi
    printf '%-45s %8s of %-8s %s\n' "$1" "${3:-none}" "$2" "$verdict"
}

reason=$(velk-sandbox --quiet -- true 2>&1) || {
    echo "SKIPPED: no sandbox here: $reason"
    exit 77
}

# count WHAT CALL...: on a device of its own
count() {
    velk-sandbox --quiet -- bash -c "$(cat "$folder/counts.sh")"'
        "$@"' count "$@"
}

# get_costs NAME SYSTEM_CALLS INSTRUCTIONS HEAP_REQUESTS ID INTERFACE
get_costs() {
    at_most "get $1: system calls" "$2" "$(count system_calls get "$5" "$6")"
    at_most "get $1: instructions" "$3" "$(count instructions get "$5" "$6")"
    at_most "get $1: heap requests" "$4" "$(count heap_requests get "$5" "$6")"
}

# open, read, close; the line reader's block. A second read would mean reading on after the answer.
get_costs 'address' 3 2000 1 104 eth0
get_costs 'netmask' 3 2000 1 105 eth0
get_costs 'gateway' 3 2000 1 106 eth0
# Looks for a third server up to the end of the file, which takes a second read to see.
get_costs 'dns' 4 3000 1 108 eth0
# The words of every line of blocks are looked at, and the interface's name is a text of its own.
get_costs 'dhcp dns' 4 6500 2 107 eth0
# Turned away before anything is opened.
get_costs 'unknown id' 0 400 0 999 eth0

# Lock, log line, and writing in place; the log's socket, which is not there, is tried each time.
at_most 'set dns: system calls' 11 "$(count system_calls set 108 eth0 192.168.0.1)"
# Two shell lines; a shell and its tool for each.
at_most 'set address: started programs' 4 "$(count started_programs set 104 eth0 192.168.0.10)"

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
strip -o "$stripped" "$library"
# What it takes of a device's flash.
at_most 'library: bytes' 131072 "$(stat -c %s "$stripped")"
# Each is work for every program that starts with the library. Most are rows of the command tables.
at_most 'library: relocations' 200 "$(readelf -rW "$library" | grep -c '^[0-9a-f]\{8,\}')"
# libc, libstdc++ and what that needs itself.
at_most 'library: libraries it needs' 3 "$(readelf -dW "$library" | grep -c NEEDED)"
[ "$failures" -eq 0 ]
