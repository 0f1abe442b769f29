# lib.sh - the words of scenarios with the real tools. A scenario sources it; from there on it runs
# on a device of its own, with the router in, as tests/device/lib.sh has it.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

if [ -z "${VELK_ON_REAL_DEVICE:-}" ]; then
    lib_scenario=$(realpath "$0")
    cd "$VELK_SOURCE" || exit # which stays visible, wherever it lies
    lib_reason=$(velk-sandbox --quiet --real -- true 2>&1) || skip "no real device here: $lib_reason"
    VELK_ON_REAL_DEVICE=1 velk-sandbox --quiet --real -- bash "$lib_scenario"
    exit
fi
cd /tmp || exit

# Holds that a command says yes before long.
soon() {
    lib_command=$*
    check 'before long' yes "$(wait_until "$@" && echo yes || echo no)"
}

# What the kernel holds: ADDRESS/BITS of an interface.
kernel_address() {
    ip -4 -j addr show "$1" | sed -nE 's/.*"local":"([^"]*)","prefixlen":([0-9]*).*/\1\/\2/p'
}

# What an interface has from the router's DHCP server: ADDRESS of its network, third byte given.
has_lease() { # has_lease INTERFACE THIRD-BYTE
    kernel_address "$1" | grep -qE "^192\.168\.$2\.1[0-9][0-9]/24\$"
}

# Lets the router's log begin anew, without a break for its writer.
forget_router_log() { : >/var/log/router.log; }

# The options that the last DHCP request asked for, by the router's log, a line.
requested_options() {
    grep -A100 DHCPREQUEST /var/log/router.log | sed -nE 's/.*requested options: //p' |
        grep -oE '[0-9]+:[a-z-]+' | sort -u -t: -k1n | paste -s -d ' '
}
