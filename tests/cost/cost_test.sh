#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# cost_test.sh - checks the cost of calls by counts, which do not depend on the load of the machine.
set -u
folder=$(dirname "$0")
library=$VELK_BUILD/libvelk.so.1
PATH=$VELK_BUILD:$PATH
LC_ALL=C
export PATH LC_ALL
failures=0

# print_result LABEL MEASURED LIMIT VERDICT
print_result() {
    [ "$4" = ok ] || failures=$((failures + 1))
    printf '%-45s %8s of %-8s %s\n' "$1" "${2:-none}" "$3" "$4"
}

# at_most LABEL LIMIT MEASURED: a cost of 0 means that nothing was measured
at_most() {
    local verdict='TOO MUCH'
    if ! [ "${3:-0}" -gt 0 ] 2>/dev/null; then
        verdict='NOT MEASURED'
    elif [ "$3" -le "$2" ]; then
        verdict=ok
    fi
    print_result "$1" "$3" "$2" "$verdict"
}

# exactly LABEL NUMBER MEASURED: a lower count fails, too, so that the number here is lowered
exactly() {
    local verdict=ok
    [ "$3" = "$2" ] || verdict='WRONG'
    print_result "$1" "$3" "$2" "$verdict"
}

reason=$(velk-sandbox --quiet -- true 2>&1) || {
    echo "SKIPPED: the sandbox does not start: $reason"
    exit 77
}

# count COUNTER CALL...: counts on a new simulated device
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

# open, read and close; one heap block for the line reader. A second read would mean that the reader
# continues after the answer.
get_costs 'address' 3 2000 1 0 get 104 eth0
get_costs 'netmask' 3 2000 1 0 get 105 eth0
get_costs 'gateway' 3 2000 1 0 get 106 eth0
# Searches a third server to the end of the file, which only a second read detects.
get_costs 'dns' 4 3000 1 0 get 108 eth0
# Splits every line of the blocks into words and copies the name of the interface.
get_costs 'dhcp dns' 4 6500 2 0 get 107 eth0
# Refused before any file is opened.
get_costs 'unknown id' 0 400 0 -4 get 999 eth0

# The lock and two checks of its file, a log line, and a write in place. Without a system log, each call
# tries its socket; with one, a call takes less.
at_most 'set dns: system calls' 12 "$(count system_calls 0 set 108 eth0 192.168.0.1)"
# Two shell lines, each with a shell and a tool.
exactly 'set address: started programs' 4 "$(count started_programs 0 set 104 eth0 192.168.0.10)"

# Half of a stack of 64 KiB, which small host programs give their threads. The calls are an edit with
# its shell lines, reading the output of a tool, and a query to the wireless daemon.
at_most 'set address: stack bytes' 32767 "$(count stack_use 0 set 104 eth0 192.168.0.10)"
at_most 'get link speed: stack bytes' 32767 "$(count stack_use 0 get 201 eth0)"
at_most 'get ssid: stack bytes' 32767 "$(count stack_use 0 get 303 eth1)"

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
strip -o "$stripped" "$library"
# The size in the flash memory of a device.
at_most 'library: bytes' 98304 "$(stat -c %s "$stripped")"
# Each relocation costs time at the start of every program. Most are rows of the command tables.
at_most 'library: relocations' 216 "$(readelf -rW "$library" | grep -c '^[0-9a-f]\{8,\}')"
# libc, libstdc++ and libgcc, a dependency of libstdc++.
at_most 'library: libraries it needs' 3 "$(readelf -dW "$library" | grep -c NEEDED)"
[ "$failures" -eq 0 ]
