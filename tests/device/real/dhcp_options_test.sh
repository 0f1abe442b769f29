# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# dhcp_options_test.sh - the options that the real DHCP client requests, and their use by the scripts.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

always='1:netmask 3:router'

# Without the adapter a restart of the wired port takes a second.
velk-sandbox adapter out
velkctl set eth0.method dhcp

# Checks that both scripts are still valid for the shell after an edit, and that they get a lease.
take_lease() {
    run sh -n /etc/dhclient-exit-hooks
    status_is 0
    run sh -n /sbin/dhclient-script
    status_is 0
    forget_router_log
    rm -f /var/libvelk/ntp.log /var/log/dhcp_notices.log /var/log/avahi-autoipd.log
    run velkctl restart eth0
    status_is 0
    soon has_lease eth0 0
}

it 'requests DNS servers and no time servers, as in the sample file'
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast" "$(requested_options)"
check 'resolver file' 'nameserver 192.168.0.1' "$(cat /etc/resolv.dnsmasq.conf)"

it 'requests time servers when enabled, and the clock hook queries the received one'
run velkctl set dhcp-ntp on
status_is 0
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast 42:ntp-server" "$(requested_options)"
soon grep 'adjust time server 192.168.0.1' /var/libvelk/ntp.log
run velkctl get ntp-result
output_is reached

it 'requests no time servers when disabled, and does not query the time'
run velkctl set dhcp-ntp off
status_is 0
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast" "$(requested_options)"
soon grep 'printdhcpnotice eth0' /var/log/dhcp_notices.log
check 'ntp.log' absent "$([ -e /var/libvelk/ntp.log ] && echo present || echo absent)"

it 'neither requests nor uses DNS servers of a lease when the fixed ones are enabled'
run velkctl set eth0.dhcp-dns off
status_is 0
run velkctl set eth0.dns 10.9.8.7 10.9.8.6
status_is 0
take_lease
check 'options' "$always 15:domain-name 28:broadcast" "$(requested_options)"
fixed='nameserver 10.9.8.7
nameserver 10.9.8.6'
check 'resolver file' "$fixed" "$(cat /etc/resolv.dnsmasq.conf)"

it 'requests and uses them again when enabled again'
run velkctl set eth0.dhcp-dns on
status_is 0
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast" "$(requested_options)"
check 'resolver file' 'nameserver 192.168.0.1' "$(cat /etc/resolv.dnsmasq.conf)"

it 'ends the link-local daemon when a lease arrives, unless link-local is disabled'
take_lease
soon grep -x -- '-k eth0' /var/log/avahi-autoipd.log
run velkctl set eth0.apipa off
status_is 0
take_lease
soon grep 'printdhcpnotice eth0' /var/log/dhcp_notices.log
check 'calls' absent "$([ -e /var/log/avahi-autoipd.log ] && echo present || echo absent)"
run velkctl set eth0.apipa on
status_is 0
take_lease
soon grep -x -- '-k eth0' /var/log/avahi-autoipd.log

it 'prints DHCP notices, unless they are disabled'
check 'notices' 'printdhcpstart eth0' "$(head -n 1 /var/log/dhcp_notices.log)"
check 'address in the notice' "printdhcpnotice eth0 $(kernel_address eth0 | sed 's:/24::')" \
    "$(tail -n 1 /var/log/dhcp_notices.log)"
run velkctl set eth0.dhcp-notice off
status_is 0
take_lease
soon grep -x -- '-k eth0' /var/log/avahi-autoipd.log
check 'notices' absent "$([ -e /var/log/dhcp_notices.log ] && echo present || echo absent)"

finish
