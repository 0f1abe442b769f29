# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# confirm_test.sh - changes that nobody confirms, with the system's own tools.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

velk-sandbox adapter out # a wired restart with an adapter takes more than a minute
no_client() { ! pgrep --exact dhclient >/dev/null; }
no_guardian() { ! pgrep --exact velk-guardian >/dev/null; }
settings() { velkctl export --quiet 2>/dev/null | sed '/"facts"/,$d'; }
static=$(settings)

it 'puts a static address back after a lease, and ends the DHCP client'
run velkctl apply eth0.method=dhcp --confirm-within 10
status_is 0
check 'lease' yes "$(has_lease eth0 0 && echo yes)"
check 'client' yes "$(no_client || echo yes)"
soon no_guardian
check 'no client' yes "$(no_client && echo yes)"
check 'address' 192.168.0.10/24 "$(kernel_address eth0)"
check 'settings' "$static" "$(settings)"

it 'puts a lease back after a static address'
run velkctl apply eth0.method=dhcp
status_is 0
run velkctl apply eth0.method=static eth0.address=192.168.77.10/24 eth0.gateway=192.168.77.1 --confirm-within 10
status_is 0
check 'no client' yes "$(no_client && echo yes)"
check 'address' 192.168.77.10/24 "$(kernel_address eth0)"
soon no_guardian
check 'lease' yes "$(has_lease eth0 0 && echo yes)"
check 'client' yes "$(no_client || echo yes)"
run velkctl undo --quiet

it 'keeps a change that is confirmed'
run velkctl apply eth0.address=192.168.0.99/24 --confirm-within 10
status_is 0
run velkctl confirm
status_is 0
soon no_guardian
check 'address' 192.168.0.99/24 "$(kernel_address eth0)"

it 'confirms a change by a command, here for a router that answers'
run velkctl apply eth0.address=192.168.0.98/24 --confirm-if 'ping -c 1 -W 2 192.168.0.1'
status_is 0
check 'address' 192.168.0.98/24 "$(kernel_address eth0)"
run velkctl apply eth0.address=192.168.77.98/24 eth0.gateway=192.168.77.1 --confirm-if 'ping -c 1 -W 2 192.168.0.1'
status_is 1
check 'address' 192.168.0.98/24 "$(kernel_address eth0)"
finish
