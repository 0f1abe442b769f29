# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# counts.sh - functions that count the cost of library calls on a device. Source it.
# shellcheck shell=bash
# CALL is the argument list of counted_calls from RESULT on. If the call has another result, nothing is
# printed and the exit status is not 0.
#
# A count is that of 100 calls minus that of no call, divided by 100. This removes the cost of the
# program's start, and rounds off the cost of the first call alone.
set -o pipefail

# per_call COUNTER CALL...
per_call() {
    local many none
    many=$("$1" 100 "${@:2}") && none=$("$1" 0 "${@:2}") && echo $(((many - none) / 100))
}

# system_calls CALL...
system_calls() { per_call all_system_calls "$@"; }
all_system_calls() { # all_system_calls COUNT CALL...
    strace -c -U calls,name -o /tmp/calls counted_calls "$@" 2>/tmp/errors || return
    awk '$2 == "total" { print $1 }' /tmp/calls
}

# heap_requests CALL...
heap_requests() { per_call all_heap_requests "$@"; }
all_heap_requests() { # all_heap_requests COUNT CALL...
    valgrind --leak-check=no --undef-value-errors=no counted_calls "$@" 2>&1 |
        sed -n 's/.*total heap usage: \([0-9,]*\) allocs.*/\1/p' | tr -d ,
}

# instructions CALL...: in user space, with all symbols resolved at the start
instructions() {
    local many
    many=$(LD_BIND_NOW=1 valgrind --tool=callgrind --callgrind-out-file=/dev/null \
        --toggle-collect=execute_velk_command counted_calls 100 "$@" 2>&1 |
        sed -n 's/.*Collected : \([0-9]*\).*/\1/p') && echo $((many / 100))
}

# started_programs CALL...: by one call
started_programs() {
    local all
    strace -f -e trace=execve -e signal=none -o /tmp/calls counted_calls 1 "$@" 2>/tmp/errors || return
    all=$(grep -c 'execve(.*) = 0' /tmp/calls) && echo $((all - 1)) # less the program itself
}
