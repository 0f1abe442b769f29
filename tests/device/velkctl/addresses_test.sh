# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# addresses_test.sh - methods and addresses of the interfaces, end to end.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Runs a script on a device; other tests check the text of the file.
script() { on_device sh -c "$1"; }

it 'shows the contents of the file'
on_device velkctl get eth0.method eth0.address eth0.netmask eth0.gateway eth1.method
status_is 0
error_is ''
output_is 'eth0.method   static
eth0.address  192.168.0.10
eth0.netmask  255.255.255.0
eth0.gateway  192.168.0.1
eth1.method   dhcp'

it 'changes the addresses of a static port, and removes its gateway'
script '
    velkctl set eth0.address 10.1.2.3 && velkctl set eth0.netmask 255.255.0.0 &&
    velkctl set eth0.gateway 10.1.0.1 && velkctl get eth0.gateway &&
    velkctl set eth0.gateway none && velkctl get eth0.address eth0.netmask eth0.gateway &&
    sed -n "/iface eth0/,/iface eth1/p" /etc/network/interfaces && ls /var/tmp'
status_is 0
error_is 'velkctl: note: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 10.1.2.0/24
  fix: velkctl set eth0.gateway VALUE
velkctl: note: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 10.1.0.0/16
  fix: velkctl set eth0.gateway VALUE'
output_is '10.1.0.1
eth0.address  10.1.2.3
eth0.netmask  255.255.0.0
eth0.gateway  none
iface eth0 inet static
	address 10.1.2.3
	netmask 255.255.0.0

iface eth1 inet dhcp
vklib_lock'

it 'changes a port from static to DHCP and back, with its block in the DHCP configuration'
script '
    before=$(cat /etc/network/interfaces /etc/dhclient.conf)
    velkctl set eth0.method dhcp && velkctl get eth0.method
    grep -n "eth0\"" /etc/dhclient.conf
    velkctl set eth0.method static && velkctl get eth0.method eth0.address
    grep -n "eth0\"" /etc/dhclient.conf
    [ "$before" = "$(cat /etc/network/interfaces /etc/dhclient.conf)" ] && echo as before'
status_is 0
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method
velkctl: note: eth0.dhcp-dns is off now, switched by eth0.method'
output_is 'dhcp
7:interface "eth0" {
eth0.method   static
eth0.address  192.168.0.10
7:#interface "eth0" {
as before'

it 'answers with the live values of a DHCP port'
script '
    velkctl set eth0.method dhcp &&
    ifconfig eth0 172.16.5.6 netmask 255.255.255.0 && route add default gw 172.16.5.1 &&
    velkctl get eth0.address eth0.netmask eth0.gateway
    grep address /etc/network/interfaces'
status_is 0
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method'
output_is 'eth0.address  172.16.5.6
eth0.netmask  255.255.255.0
eth0.gateway  172.16.5.1
	address 192.168.0.10'

it 'answers with the configured address of a static port, also if the kernel has another'
script 'ifconfig eth0 172.16.5.6 && velkctl get eth0.address'
status_is 0
error_is ''
output_is '192.168.0.10'

it 'answers with nothing for the adapter while the cable is in'
script 'ifconfig eth1 172.16.5.6 && velkctl get eth1.address eth1.netmask eth1.gateway'
status_is 0
error_is ''
output_is 'eth1.address  none
eth1.netmask  none
eth1.gateway  none'

it 'answers with the live values of the adapter once the cable is out'
script 'velk-sandbox cable out && ifconfig eth1 172.16.5.6 netmask 255.255.0.0 &&
    velkctl get eth1.address eth1.netmask'
status_is 0
error_is ''
output_is 'eth1.address  172.16.5.6
eth1.netmask  255.255.0.0'

it 'says that a gateway did not get into the last stanza of the file, and why'
script 'sed -i "/^iface lo/d" /etc/network/interfaces
    velkctl set eth1.method static && velkctl set eth1.gateway 10.0.0.1'
status_is 6
output_is ''
error_is 'velkctl: note: eth1.dhcp-dns is off now, switched by eth1.method
velkctl: note: eth1.address cannot be set
  the stanza is the last one and has no address line
  fix: below line 12 add "address ADDRESS"
velkctl: note: eth1.netmask cannot be set
  the stanza is the last one and has no netmask line
  fix: below line 12 add "netmask NETMASK"
velkctl: eth1.gateway: the library reported success, but the device holds '"'none'"'
  likely cause: /etc/network/interfaces:12: the stanza is the last one and has no gateway line
  fix: below line 12 add "gateway 10.0.0.1"'

it 'notes that an address is not checked while a lease is shown'
script 'velkctl set eth0.method dhcp && velkctl set eth0.address 10.0.0.7 &&
    grep address /etc/network/interfaces'
status_is 0
output_is '	address 10.0.0.7'
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method
velkctl: note: eth0.address: set, but not checked
  while eth0.method is dhcp, its lease is shown'

it 'refuses values that are not valid before they reach a file'
for words in 'eth0.address 10.0.0.300' 'eth0.address none' 'eth0.netmask 255.0.255.0' \
    'eth0.gateway 0.0.0.0' 'eth0.method bootp' 'eth0.apipa yes' 'eth1.dhcp-notice on' \
    'eth0.address 10.0.0.1 10.0.0.2'; do
    # shellcheck disable=SC2086  # several words
    script "before=\$(cat /etc/network/interfaces /etc/dhclient*)
        velkctl set $words; status=\$?
        [ \"\$before\" = \"\$(cat /etc/network/interfaces /etc/dhclient*)\" ] && ls /var/tmp
        exit \$status"
    status_is 2
    output_is ''
    check 'one message' 1 "$(printf '%s\n' "${error//$'\n  '/; }" | grep -c '^velkctl: eth[01].*; \(fix: \)\?\(give\|did you mean\) \|^velkctl: set: unknown')"
done

it 'refuses an address with a second line in it'
script 'velkctl set eth0.address "10.0.0.1
	up reboot"; status=$?; cat /etc/network/interfaces | grep -c reboot; exit $status'
status_is 2
output_is 0

it 'switches the link-local address of each port separately'
script '
    velkctl get eth0.apipa eth1.apipa && velkctl set eth0.apipa off &&
    velkctl set eth1.apipa on && velkctl get eth0.apipa eth1.apipa &&
    sh -n /etc/dhclient-exit-hooks'
status_is 0
error_is ''
output_is 'eth0.apipa  on
eth1.apipa  off
eth0.apipa  off
eth1.apipa  on'

it 'switches both notices of the wired port'
script 'velkctl set eth0.dhcp-notice off && grep -c "^#.*printdhcp" /etc/dhclient-exit-hooks &&
    velkctl set eth0.dhcp-notice on && grep -c "^#.*printdhcp" /etc/dhclient-exit-hooks'
status_is 1
error_is 'velkctl: note: eth0.dhcp-notice: set, but not checked
  it cannot be read
velkctl: note: eth0.dhcp-notice: set, but not checked
  it cannot be read'
output_is '2
0'

it 'removes the old address of a wired port that changes to DHCP'
script 'echo 192.168.0.10 >/tmp/oldIPAddress; velkctl set eth1.method dhcp; ls /tmp/oldIPAddress
    velkctl set eth0.method dhcp; ls /tmp/oldIPAddress 2>/dev/null || echo gone'
output_is '/tmp/oldIPAddress
gone'

it 'keeps inode, owner and mode of every file it edits'
script 'facts() { stat -c "%n %i %u:%g %a" /etc/network/interfaces /etc/dhclient.conf /etc/dhclient-exit-hooks; }
    chmod 640 /etc/network/interfaces; before=$(facts)
    velkctl set eth0.method dhcp; velkctl set eth0.method static; velkctl set eth0.address 10.0.0.9
    velkctl set eth0.apipa off; [ "$before" = "$(facts)" ] && echo kept'
status_is 0
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method
velkctl: note: eth0.dhcp-dns is off now, switched by eth0.method
velkctl: note: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 10.0.0.0/24
  fix: velkctl set eth0.gateway VALUE'
output_is 'kept'

finish
