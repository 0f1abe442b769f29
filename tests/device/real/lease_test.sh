# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# lease_test.sh - the lease of a change that was put back ends, and the address stays. It takes four minutes.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

velk-sandbox adapter out # a wired restart with an adapter takes more than a minute
no_guardian() { ! pgrep --exact velk-guardian >/dev/null; }

it 'has its old address twice the time of the lease after a revert'
run velkctl apply eth0.method=dhcp --confirm-within 10
status_is 0
check 'lease' yes "$(has_lease eth0 0 && echo yes)"
soon no_guardian
check 'address' 192.168.0.10/24 "$(kernel_address eth0)"
sleep 245 # the router gives leases of 120 s
check 'address' 192.168.0.10/24 "$(kernel_address eth0)"
run ping -c 1 -W 2 192.168.0.1
status_is 0

finish
