# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# lib.sh - functions for tests with the system's own tools. A test that sources it runs again on a new
# device made with --real, with the router connected.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

if [ -z "${VELK_ON_REAL_DEVICE:-}" ]; then
    lib_scenario=$(realpath "$0")
    cd "$VELK_SOURCE" || exit # the current folder stays visible on the device
    lib_reason=$(velk-sandbox --quiet --real -- true 2>&1) || skip "no real device here: $lib_reason"
    VELK_ON_REAL_DEVICE=1 velk-sandbox --quiet --real -- bash "$lib_scenario"
    exit
fi
cd /tmp || exit

# Checks that a command succeeds within 40 seconds: a DHCP client repeats its question after seconds.
lib_tries=800
soon() {
    lib_command=$*
    check 'success in time' yes "$(wait_until "$@" && echo yes || echo no)"
}

# Prints the address of an interface in the kernel, as ADDRESS/BITS.
kernel_address() {
    ip -4 -j addr show "$1" | sed -nE 's/.*"local":"([^"]*)","prefixlen":([0-9]*).*/\1\/\2/p'
}

# True if an interface has an address of the router's DHCP range. THIRD-BYTE is that of its network.
has_lease() { # has_lease INTERFACE THIRD-BYTE
    kernel_address "$1" | grep -qE "^192\.168\.$2\.1[0-9][0-9]/24\$"
}

# Empties the router's log in place; the router keeps writing to it.
forget_router_log() { : >/var/log/router.log; }

# Prints the options that the last DHCP request asked for, from the router's log, on one line.
requested_options() {
    grep -A100 DHCPREQUEST /var/log/router.log | sed -nE 's/.*requested options: //p' |
        grep -oE '[0-9]+:[a-z-]+' | sort -u -t: -k1n | paste -s -d ' '
}
