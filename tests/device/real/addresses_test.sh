# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# addresses_test.sh - changes between static address and lease, with the real ifupdown and DHCP client.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

# shellcheck disable=SC2317  # wait_until calls it
not_running() { ! kill -0 "$1"; }

# Without the adapter a restart of the wired port takes a second.
velk-sandbox adapter out

it 'changes the static address, which the kernel has after a restart'
run velkctl set eth0.address 192.168.0.77
status_is 0
check 'address before the restart' 192.168.0.10/24 "$(kernel_address eth0)"
run velkctl restart eth0
status_is 0
check 'address after the restart' 192.168.0.77/24 "$(kernel_address eth0)"

it 'reaches the gateway from the new address'
run ping -c 1 -W 2 192.168.0.1
status_is 0

it 'changes netmask and gateway'
velkctl set eth0.netmask 255.255.0.0
velkctl set eth0.gateway 192.168.0.254
run velkctl restart eth0
status_is 0
check 'address' 192.168.0.77/16 "$(kernel_address eth0)"
check 'route' 'default via 192.168.0.254 dev eth0' "$(ip route show default | sed 's/ *onlink//;s/ *$//')"
velkctl set eth0.netmask 255.255.255.0
velkctl set eth0.gateway 192.168.0.1

it 'gets a lease after the change to DHCP'
run velkctl set eth0.method dhcp
status_is 0
run velkctl restart eth0
status_is 0
soon has_lease eth0 0

it 'reports address, mask and gateway of the lease'
lease=$(sed -n 's/.*DHCPACK(r0) \([0-9.]*\) 02:00:00:00:00:10.*/\1/p' /var/log/router.log | tail -n 1)
run velkctl get eth0.method eth0.address eth0.netmask eth0.gateway
status_is 0
output_is "eth0.method   dhcp
eth0.address  $lease
eth0.netmask  255.255.255.0
eth0.gateway  192.168.0.1"
check 'address of the kernel' "$lease/24" "$(kernel_address eth0)"

it 'keeps the static address in the file for the change back'
run grep -E 'inet dhcp|address|netmask|gateway' /etc/network/interfaces
output_is 'iface eth0 inet dhcp
	address 192.168.0.77
	netmask 255.255.255.0
	gateway 192.168.0.1
iface eth1 inet dhcp'

it 'requests no lease after the change back to static, and uses the static address'
forget_router_log
run velkctl set eth0.method static
status_is 0
# ifdown reads the method in the file, and so leaves the DHCP client.
run velkctl restart eth0
status_is 6
error_has 'velkctl: eth0: up, but a DHCP client still runs for it'
client=$(sed -n "s/.*'sudo kill \([0-9]*\)'.*/\1/p" <<<"$error")
run sudo kill "$client"
status_is 0
wait_until not_running "$client"
run velkctl restart eth0
status_is 0
check 'address' 192.168.0.77/24 "$(kernel_address eth0)"
run velkctl get eth0.address eth0.netmask eth0.gateway
output_is 'eth0.address  192.168.0.77
eth0.netmask  255.255.255.0
eth0.gateway  192.168.0.1'
run ping -c 1 -W 2 192.168.0.1
status_is 0
check 'leases asked for' 0 "$(grep -c DHCPDISCOVER /var/log/router.log)"

it 'configures only the interface of the lease: the block of a static one is disabled'
velk-sandbox adapter in
forget_router_log
run ifup eth1
status_is 0
soon has_lease eth1 1
check 'address of the wired port' 192.168.0.77/24 "$(kernel_address eth0)"
check 'wired port in the log' 0 "$(grep -c '02:00:00:00:00:10' /var/log/router.log)"

it 'gets no lease while the router is disconnected, and one afterwards'
sed -i 's/^timeout 10;/timeout 2;/' /etc/dhclient.conf
run ifdown eth1
velk-sandbox router out
run ifup eth1
check 'address' '' "$(kernel_address eth1)"
velk-sandbox router in
run ifdown eth1
run ifup eth1
soon has_lease eth1 1

finish
