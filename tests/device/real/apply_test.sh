# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# apply_test.sh - a change of settings with the system's own tools: restarts and DHCP clients.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

velk-sandbox adapter out # a wired restart with an adapter takes more than a minute
no_client() { ! pgrep --exact dhclient >/dev/null; }

it 'applies a static address'
run velkctl apply eth0.address=192.168.0.99/24 --json
status_is 0
output_has '"taken_back": false'
check 'address' 192.168.0.99/24 "$(kernel_address eth0)"

it 'waits for the lease of a new method'
settings() { velkctl export --quiet | sed '/"facts"/,$d'; }
velkctl export --quiet >/tmp/static.json
static=$(settings)
run velkctl apply eth0.method=dhcp
status_is 0
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method'
check 'lease' yes "$(has_lease eth0 0 && echo yes)"
check 'client' yes "$(no_client || echo yes)"

it 'exports the addresses of a lease as facts'
run velkctl export --quiet
check 'setting' 0 "$(sed '/"facts"/,$d' <<<"$output" | grep -c eth0.address)"
check 'fact' 1 "$(sed '1,/"facts"/d' <<<"$output" | grep -c eth0.address)"
printf '%s\n' "$output" >/tmp/dhcp.json
run velkctl import /tmp/dhcp.json
status_is 0
output_is 'nothing to change'

it 'ends the DHCP client when the method leaves dhcp'
run velkctl import /tmp/static.json
status_is 0
error_is "velkctl: note: eth0.dhcp-dns is off while eth0.method is static
  dhcp may switch it on again
  fix: set it again after 'velkctl set eth0.method dhcp'"
check 'no client' yes "$(no_client && echo yes)"
check 'address' 192.168.0.99/24 "$(kernel_address eth0)"
check 'settings' "$static" "$(settings)"

it 'ends the DHCP client when an undo brings the static address back'
run velkctl apply eth0.method=dhcp
status_is 0
check 'client' yes "$(no_client || echo yes)"
run velkctl undo
status_is 0
check 'no client' yes "$(no_client && echo yes)"
check 'address' 192.168.0.99/24 "$(kernel_address eth0)"
check 'settings' "$static" "$(settings)"

it 'takes a change back if no DHCP server answers, and ends the client of the change'
velk-sandbox router out
before=$(cksum /etc/network/interfaces /etc/dhclient.conf /sbin/dhclient-script)
run velkctl apply eth0.method=dhcp location=elsewhere --json
status_is 1
output_has '"taken_back": true'
output_has 'all settings are as before'
check 'files' "$before" "$(cksum /etc/network/interfaces /etc/dhclient.conf /sbin/dhclient-script)"
check 'no client' yes "$(no_client && echo yes)"
check 'address' 192.168.0.99/24 "$(kernel_address eth0)"
velk-sandbox router in

it 'reports a DHCP client that plain sets have left'
run velkctl apply eth0.method=dhcp
status_is 0
run velkctl set eth0.method static
run velkctl restart eth0
status_is 6
client=$(pgrep --exact dhclient)
error_is "velkctl: eth0: up, but a DHCP client still runs for it
  process $client may replace the configured address later
  fix: 'sudo kill $client', then run 'velkctl restart eth0' again"
run velkctl doctor
output_has 'eth0.address'
output_has "sudo kill $client"
kill "$client"
run velkctl restart eth0
status_is 0
output_is 'eth0: 192.168.0.99 (static)'

finish
