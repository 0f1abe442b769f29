# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# examples_test.sh - the programs of examples/ on a simulated device.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox
cd "$VELK_SOURCE" || exit # the current folder is visible on the device, below /tmp too

programs=$VELK_BUILD/examples
scripts=$VELK_SOURCE/examples
export PROGRAMS=$programs SCRIPTS=$scripts
[ -x "$programs/dns" ] || skip 'the examples are not built'

it 'prints the address, in C'
on_device "$programs/address"
status_is 0
error_is ''
output_is '192.168.0.10'
on_device sh -c 'rm /etc/network/interfaces; "$PROGRAMS/address"'
status_is 1
error_is 'address: result -1'

it 'prints and sets the DNS servers, in C++'
on_device sh -c '"$PROGRAMS/dns" && "$PROGRAMS/dns" 10.0.0.53 255.254.253.252 10.0.0.55 && "$PROGRAMS/dns" && velkctl get eth0.dns'
status_is 0
error_is ''
output_is '192.168.0.1
192.168.0.2
10.0.0.53
255.254.253.252
10.0.0.55
10.0.0.53 255.254.253.252 10.0.0.55'

it 'sets no wrong servers'
on_device "$programs/dns" 10.0.0.53 10.0.0.300
status_is 2
error_is "dns: '10.0.0.300' is not an IPv4 address"
on_device "$programs/dns" 1.1.1.1 1.1.1.2 1.1.1.3 1.1.1.4
status_is 2
error_is 'dns: give at most 3 servers'
on_device sh -c 'exec 8>/var/tmp/vklib_lock; flock 8; "$PROGRAMS/dns" 10.0.0.53 8>&-'
status_is 1
error_is 'dns: another program is changing settings; try again'

it 'sets an address, in the shell'
on_device sh -c 'velk-sandbox adapter out; "$SCRIPTS/set_address.sh" 10.0.0.9/24 10.0.0.1; velkctl get eth0.netmask'
status_is 0
error_is ''
output_is 'eth0 has 10.0.0.9 and its gateway 10.0.0.1
255.255.255.0'

it 'sets no wrong address'
on_device sh "$scripts/set_address.sh" 10.0.0.9/24 10.0.1.1
status_is 2
error_is 'velkctl: eth0.gateway: 10.0.1.1 is outside the network of the interface
  the network of the interface is 10.0.0.0/24
  fix: give another value, or set the address and netmask first, or give --force
nothing was changed'
on_device sh "$scripts/set_address.sh"
status_is 2
error_is 'usage: set_address.sh ADDRESS/PREFIX GATEWAY, such as 10.0.0.9/24 10.0.0.1'

it 'prints all settings of an interface, in Python'
export PYTHONDONTWRITEBYTECODE=1 PYTHONPATH=$VELK_SOURCE/bindings/python/src LD_LIBRARY_PATH=$VELK_BUILD
on_device python3 "$scripts/report.py" eth1
status_is 0
error_is ''
output_is 'eth1.mac-address: refused while the cable is in the wired port
eth1.method = dhcp
eth1.apipa = False
eth1.address = None
eth1.netmask = None
eth1.gateway = None
eth1.dhcp-dns = True
eth1.dns = 192.168.0.1 192.168.0.2
eth1.hardware-version: refused while the cable is in the wired port
eth1.software-version: refused while the cable is in the wired port
eth1.standard: refused while the cable is in the wired port
eth1.service-set = infrastructure
eth1.ssid = velk-lab
eth1.channel = 6
eth1.region: refused while the cable is in the wired port
eth1.encryption = 3
eth1.authentication = 2
eth1.wep-key-1 = ********
eth1.wep-key-2 = None
eth1.wep-key-3 = None
eth1.wep-key-4 = None
eth1.wep-default-key = 1
eth1.psk = ********
eth1.rate: refused while the cable is in the wired port
eth1.access-point: refused while the cable is in the wired port
eth1.signal: refused while the cable is in the wired port
eth1.standards-enabled = 3'

it 'reports a wrong interface and a missing library, in Python'
run "$scripts/report.py" eth2
status_is 1
error_is 'usage: report.py [eth0|eth1]'
[ -e /usr/lib/libvelk.so.1 ] || [ -n "$(find /usr/lib /usr/local/lib -name libvelk.so.1)" ] || {
    LD_LIBRARY_PATH='' run "$scripts/report.py" eth0
    status_is 1
    check 'lines of the error' 1 "$(printf '%s\n' "$error" | wc -l)"
    error_has 'report: libvelk.so.1 cannot be loaded'
}
finish
