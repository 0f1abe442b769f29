# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# dns_test.sh - the real DNS forwarder queries the servers that are set.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

# Starts another DNS server on the router. Each answers the same name with a different address.
serve() { # serve SERVER ADDRESS
    ip -n router addr add "$1/24" dev r0
    ip netns exec router dnsmasq --conf-file=/dev/null --user=root --no-resolv --no-hosts \
        --bind-interfaces --listen-address="$1" --pid-file="/run/dns.$1" \
        --local=/example/ --host-record="who.example,$2"
}
# The resolver repeats a lost query after five seconds.
ask() { getent ahostsv4 "$1" | sed -n 's/ *STREAM.*//p' | sort -u; }
finds() { [ "$(ask "$1")" = "$2" ]; } # finds NAME ADDRESS
answers() { finds who.example "$1"; }

serve 192.168.0.2 10.0.0.2
serve 192.168.0.3 10.0.0.3

it 'queries the server of the sample file'
soon finds router.example 192.168.0.1

it 'queries the server that is set, without a restart of the forwarder'
forwarder=$(cat /run/dnsmasq.pid)
run velkctl set eth0.dns 192.168.0.2
status_is 0
soon answers 10.0.0.2
check 'forwarder' "$forwarder" "$(cat /run/dnsmasq.pid)"

it 'queries another server that is set'
run velkctl set eth0.dns 192.168.0.3
status_is 0
soon answers 10.0.0.3

it 'queries the second server if the first does not answer'
run velkctl set eth0.dns 192.168.0.66 192.168.0.2
status_is 0
soon answers 10.0.0.2

it 'fails without any server'
run velkctl set eth0.dns none
status_is 0
wait_until grep -q 'no servers found' /var/log/dnsmasq.log
run getent ahostsv4 who.example
status_is 2

it 'queries the server of a lease if DNS servers come from DHCP'
velk-sandbox adapter out
velkctl set eth0.method dhcp
run velkctl restart eth0
soon has_lease eth0 0
soon grep '192.168.0.1$' /etc/resolv.dnsmasq.conf
soon getent ahostsv4 router.example

finish
