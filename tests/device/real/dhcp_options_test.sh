# dhcp_options_test.sh - what the real DHCP client asks for, and what the scripts make of the answer.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

always='1:netmask 3:router'

# Without the adapter a restart of the wired port takes a second.
velk-sandbox adapter out
velkctl set eth0.method dhcp

# Holds that both scripts are still the shell's after an edit, and that a lease comes of them.
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

it 'asks for DNS servers, not for time servers, as the sample file has it'
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast" "$(requested_options)"
check 'resolver file' 'nameserver 192.168.0.1' "$(cat /etc/resolv.dnsmasq.conf)"

it 'asks for time servers when they are wanted, and the clock hook asks the one that comes'
run velkctl set dhcp-ntp on
status_is 0
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast 42:ntp-server" "$(requested_options)"
soon grep 'adjust time server 192.168.0.1' /var/libvelk/ntp.log
run velkctl get ntp-result
output_is reached

it 'leaves them, and the clock, alone when they are not'
run velkctl set dhcp-ntp off
status_is 0
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast" "$(requested_options)"
soon grep 'printdhcpnotice eth0' /var/log/dhcp_notices.log
check 'ntp.log' absent "$([ -e /var/libvelk/ntp.log ] && echo present || echo absent)"

it 'neither asks for DNS servers nor installs one when the fixed ones are wanted'
run velkctl set eth0.dhcp-dns off
status_is 0
run velkctl set eth0.dns 10.9.8.7 10.9.8.6
status_is 0
take_lease
check 'options' "$always 15:domain-name 28:broadcast" "$(requested_options)"
fixed='nameserver 10.9.8.7
nameserver 10.9.8.6'
check 'resolver file' "$fixed" "$(cat /etc/resolv.dnsmasq.conf)"

it 'does both again when they are wanted again'
run velkctl set eth0.dhcp-dns on
status_is 0
take_lease
check 'options' "$always 6:dns-server 15:domain-name 28:broadcast" "$(requested_options)"
check 'resolver file' 'nameserver 192.168.0.1' "$(cat /etc/resolv.dnsmasq.conf)"

it 'ends the search for a link-local address with the lease, unless that is switched off'
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

it 'prints notices of DHCP, unless they are switched off'
check 'notices' 'printdhcpstart eth0' "$(head -n 1 /var/log/dhcp_notices.log)"
check 'address in the notice' "printdhcpnotice eth0 $(kernel_address eth0 | sed 's:/24::')" \
    "$(tail -n 1 /var/log/dhcp_notices.log)"
run velkctl set eth0.dhcp-notice off
status_is 0
take_lease
soon grep -x -- '-k eth0' /var/log/avahi-autoipd.log
check 'notices' absent "$([ -e /var/log/dhcp_notices.log ] && echo present || echo absent)"

finish
