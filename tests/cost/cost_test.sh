#!/usr/bin/env bash
# cost_test.sh - holds what a call costs by counts, which a busy machine does not change.
set -u
folder=$(dirname "$0")
library=$VELK_BUILD/libvelk.so.1
PATH=$VELK_BUILD:$PATH
LC_ALL=C
export PATH LC_ALL
failures=0

# tell WHAT MEASURED LIMIT VERDICT
tell() {
    [ "$4" = ok ] || failures=$((failures + 1))
    printf '%-45s %8s of %-8s %s\n' "$1" "${2:-none}" "$3" "$4"
}

# at_most WHAT LIMIT MEASURED: whatever costs nothing at all was not measured
at_most() {
    local verdict='TOO MUCH'
    if ! [ "${3:-0}" -gt 0 ] 2>/dev/null; then
        verdict='NOT MEASURED'
    elif [ "$3" -le "$2" ]; then
        verdict=ok
    fi
    tell "$1" "$3" "$2" "$verdict"
}

# exactly WHAT NUMBER MEASURED: less is a reason to look, too, and to hold the better number
exactly() {
    local verdict=ok
    [ "$3" = "$2" ] || verdict='NOT THAT'
    tell "$1" "$3" "$2" "$verdict"
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

# get_costs NAME SYSTEM_CALLS INSTRUCTIONS HEAP_REQUESTS CALL...
get_costs() {
    exactly "get $1: system calls" "$2" "$(count system_calls "${@:5}")"
    at_most "get $1: instructions" "$3" "$(count instructions "${@:5}")"
    exactly "get $1: heap requests" "$4" "$(count heap_requests "${@:5}")"
}

# open, read, close; the line reader's block. A second read would mean reading on after the answer.
get_costs 'address' 3 2000 1 0 get 104 eth0
get_costs 'netmask' 3 2000 1 0 get 105 eth0
get_costs 'gateway' 3 2000 1 0 get 106 eth0
# Looks for a third server up to the end of the file, which takes a second read to see.
get_costs 'dns' 4 3000 1 0 get 108 eth0
# The words of every line of blocks are looked at, and the interface's name is a text of its own.
get_costs 'dhcp dns' 4 6500 2 0 get 107 eth0
# Turned away before anything is opened.
get_costs 'unknown id' 0 400 0 -4 get 999 eth0

# Lock and two looks at its file, log line, and writing in place. Where there is no log its socket is tried each time; where
# there is one, a call takes less.
at_most 'set dns: system calls' 12 "$(count system_calls 0 set 108 eth0 192.168.0.1)"
# Two shell lines; a shell and its tool for each.
exactly 'set address: started programs' 4 "$(count started_programs 0 set 104 eth0 192.168.0.10)"

# Half of a stack of 64 KiB, which small host programs give their threads. An edit with its shell
# lines, a tool's output, and a talk with the wireless daemon.
at_most 'set address: stack bytes' 32767 "$(count stack_use 0 set 104 eth0 192.168.0.10)"
at_most 'get link speed: stack bytes' 32767 "$(count stack_use 0 get 201 eth0)"
at_most 'get ssid: stack bytes' 32767 "$(count stack_use 0 get 303 eth1)"

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
strip -o "$stripped" "$library"
# What it takes of a device's flash.
at_most 'library: bytes' 131072 "$(stat -c %s "$stripped")"
# Each is work for every program that starts with the library. Most are rows of the command tables.
at_most 'library: relocations' 216 "$(readelf -rW "$library" | grep -c '^[0-9a-f]\{8,\}')"
# libc, libstdc++ and what that needs itself.
at_most 'library: libraries it needs' 3 "$(readelf -dW "$library" | grep -c NEEDED)"
[ "$failures" -eq 0 ]
