# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# takes_effect_test.sh - a change takes effect when velkctl says it does.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

# Checks the time that a set of the value answers with.
set_takes_effect() { # set_takes_effect NAME VALUE TIME
    run velkctl set "$1" "$2" --json
    status_is 0
    check "time of $1" "$3" "$(jq -r .setting.takes_effect <<<"$output")"
}
forwards_to() { getent ahostsv4 router.example | grep -q "$1"; }

velk-sandbox adapter out # a wired restart with an adapter takes more than a minute

it 'uses a static address after the restart'
set_takes_effect eth0.address 192.168.0.99 'at the next restart of eth0, with method static'
check 'address before' 192.168.0.10/24 "$(kernel_address eth0)"
run velkctl restart eth0
check 'address after' 192.168.0.99/24 "$(kernel_address eth0)"

it 'applies a method at the restart, and with DHCP no static address'
set_takes_effect eth0.method dhcp 'at the next restart of eth0'
check 'address before' 192.168.0.99/24 "$(kernel_address eth0)"
run velkctl status eth0
status_is 1
output_has 'eth0.lease        dhcp             none             differs
eth0.address      dhcp             192.168.0.99     differs'
run velkctl restart eth0
soon has_lease eth0 0
set_takes_effect eth0.address 192.168.0.77 'at the next restart of eth0, with method static'
run velkctl restart eth0
status_is 0
check 'a lease' yes "$(has_lease eth0 0 && echo yes)"

it 'shows the lease of the real client'
run velkctl status eth0
status_is 0
address=$(kernel_address eth0)
output_has "eth0.lease        dhcp             ${address%/*} until 20"
output_has "eth0.address      dhcp             ${address%/*}"

it 'uses the static address after a restart with method static'
run velkctl set eth0.method static
run velkctl restart eth0
check 'address' 192.168.0.77/24 "$(kernel_address eth0)"

it 'has the DNS forwarder read the new servers without a restart'
time='when the DNS forwarder reads its file again'
forwarder=$(cat /run/dnsmasq.pid)
soon forwards_to 192.168.0.1
set_takes_effect eth0.dns none "$time"
wait_until grep -q 'no servers found' /var/log/dnsmasq.log
check 'an answer' no "$(forwards_to 192.168.0.1 && echo yes || echo no)"
set_takes_effect eth0.dns 192.168.0.1 "$time"
soon forwards_to 192.168.0.1
check 'forwarder' "$forwarder" "$(cat /run/dnsmasq.pid)"

finish
