# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# notes_test.sh - the notes of get, set and show about values, and when a change takes effect.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Runs a script on a device.
script() { on_device sh -c "$1"; }

# Writes values by hand that no set writes.
spoil='
    sed -i "s/address 192.*/address 999.1.1.1/; s/netmask .*/netmask 24/" /etc/network/interfaces
    echo "nameserver foo" >/etc/resolv.dnsmasq.conf
    sed -i "s/ntpdate -u [^ ]*/ntpdate -u bad;host/" /var/cron/tabs/root
    sed -i "s/^.*\(perl .*web_contents\)/0 25 * * * \1/" /var/cron/tabs/root
'

it 'has no note about the values of a new device'
script 'velkctl show --json; velkctl get eth0.address eth0.dns web-update ntp-server location >/dev/null'
status_is 0
error_is ''
check 'invalid values' 0 "$(grep -c '"valid": false' "$lib_folder/out")"

it 'notes that a set would refuse the value that get shows'
script "$spoil"'velkctl get eth0.address eth0.netmask eth1.dns ntp-server web-update'
status_is 0
output_is 'eth0.address  999.1.1.1
eth0.netmask  24
eth1.dns      foo
ntp-server    bad;host
web-update    daily 25:0'
error_is "velkctl: note: eth0.address: '999.1.1.1' is not an IPv4 address
  it is read from /etc/network/interfaces:8
  fix: velkctl set eth0.address VALUE
velkctl: note: eth0.netmask: '24' is short for 255.255.255.0
  it is read from /etc/network/interfaces:9
  fix: velkctl set eth0.netmask 255.255.255.0
velkctl: note: eth1.dns: 'foo' is not an IPv4 address
  it is read from /etc/resolv.dnsmasq.conf:1
  fix: velkctl set eth1.dns VALUE
velkctl: note: ntp-server: 'bad;host' is not a host name
  it is read from /var/cron/tabs/root:1
  fix: velkctl set ntp-server VALUE
velkctl: note: web-update: 'daily 25:0' is not a schedule
  it is read from /var/cron/tabs/root:3
  fix: velkctl set web-update SCHEDULE"

it 'says so in JSON'
script "$spoil"'velkctl get eth0.netmask --json'
status_is 0
error_is ''
output_has '"valid": false'
output_has "\"eth0.netmask: '24' is short for 255.255.255.0; it is read from /etc/network/interfaces:9; fix: velkctl set eth0.netmask 255.255.255.0\""

it 'marks the value in the table of show'
script "$spoil"'velkctl show | grep -F "(not valid)"'
status_is 0
error_is ''
output_has 'eth0.netmask            24  (not valid)'
output_has 'web-update              daily 25:0  (not valid)'

it 'has the doctor name the values and their lines'
script "$spoil"'velkctl doctor'
status_is 1
output_has "problem: eth0.netmask has a value that is not valid
  /etc/network/interfaces:9: '24' is short for 255.255.255.0
  fix: velkctl set eth0.netmask 255.255.255.0
"
output_has "problem: ntp-server has a value that is not valid
  /var/cron/tabs/root:1: 'bad;host' is not a host name
  fix: velkctl set ntp-server VALUE
"

it 'finds nothing after the fixes'
script "$spoil"'
    velkctl set eth0.address 192.168.0.10 && velkctl set eth0.netmask 255.255.255.0 &&
    velkctl set eth1.dns 192.168.0.1 && velkctl set ntp-server 192.168.0.1 &&
    velkctl set web-update daily 08:30 && velkctl doctor'
check 'findings about values' 0 "$(grep -c 'not valid' "$lib_folder/out")"

it 'notes the fault of the line, and not a value that is read from the wrong one'
script 'sed -i "/^iface eth0/a\\\\thwaddress ether 02:00:00:00:00:01" /etc/network/interfaces
    velkctl get eth0.address'
status_is 0
output_is 'ether 02:00:00:00:00:01'
error_is "velkctl: note: eth0.address is read and set in the wrong line
  /etc/network/interfaces:8: the library takes this line for the address line
  'hwaddress ether 02:00:00:00:00:01' contains 'address '
  fix: move it below line 9"
script 'sed -i "/^iface eth0/a\\\\t# my address is" /etc/network/interfaces; velkctl get eth0.address'
error_has "  fix: remove the word 'address' from the comment"
script 'sed -i "s/ntpdate -u/ntpdate -t 5/" /var/cron/tabs/root; velkctl get ntp-server'
output_is 5
error_is "velkctl: note: ntp-server is read and set in the wrong place
  /var/cron/tabs/root:1: the library takes the option '-t 5' for the server
  fix: write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log"
script 'sed -i "1i # ntpdate sets the clock" /var/cron/tabs/root; velkctl get ntp-server'
output_is sets
error_is "velkctl: note: a set of ntp or ntp-server would change a comment
  /var/cron/tabs/root:1: '# ntpdate sets the clock' is taken for an entry
  fix: remove the word 'ntpdate' from the comment"

it 'notes the fault of the line before that of the value'
script 'sed -i "s/ntpdate -u .*/ntpdate -u bad;host/" /var/cron/tabs/root
    velkctl get ntp-server; velkctl doctor'
status_is 1
error_is 'velkctl: note: ntp-server cannot be set
  /var/cron/tabs/root:1: the server is the last word of the line
  a set joins the entry with the next line
  fix: write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log'
check 'findings about values' 0 "$(grep -c 'not valid' "$lib_folder/out")"

it 'escapes the bytes of a value once'
script 'sed -i "s/ntpdate -u .*/ntpdate -u a\\tb > x/" /var/cron/tabs/root; velkctl get ntp-server; velkctl doctor'
error_has "velkctl: note: ntp-server: 'a\\x09b' is not a host name
"
output_has ": 'a\\x09b' is not a host name
"

it 'takes the schedules that cron takes'
script 'for schedule in "5 5 * * *" "0 5 31 * *" "0 05 31 * *" "0 */2 * * *" "5 5 * * 1"; do
        sed -i "s,^.*\(perl .*web_contents\),$schedule \1," /var/cron/tabs/root
        velkctl get web-update && velkctl show web-update | tail -1 && velkctl doctor
        velkctl get web-update --json | grep -c "\"valid\": true"
    done'
status_is 0
error_is ''
output_is 'daily 5:5
web-update  daily 5:5
no problems found
1
monthly 31 5:0
web-update  monthly 31 5:0
no problems found
1
monthly 31 05:0
web-update  monthly 31 05:0
no problems found
1
every 2h
web-update  every 2h
no problems found
1
weekly monday 5:5
web-update  weekly monday 5:5
no problems found
1'

# ---- set --------------------------------------------------------------------------------------
it 'notes that a change of the method undoes dhcp-dns off'
script 'velkctl set eth0.dhcp-dns off'
status_is 0
output_is ''
error_is "velkctl: note: eth0.dhcp-dns is off while eth0.method is static
  dhcp may switch it on again
  fix: set it again after 'velkctl set eth0.method dhcp'"

it 'has no such note while the method is dhcp'
script 'velkctl set eth1.dhcp-dns off'
status_is 0
error_is ''

it 'notes the other settings that a change of the method switches'
script 'velkctl set eth0.method dhcp && velkctl set eth0.method static'
status_is 0
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method
velkctl: note: eth0.dhcp-dns is off now, switched by eth0.method'
script 'velkctl set eth0.method dhcp --json'
output_has '"eth0.dhcp-dns is on now, switched by eth0.method"'

it 'notes that a new address or mask puts the gateway outside the network'
script 'velkctl set eth0.address 10.0.0.5'
status_is 0
error_is 'velkctl: note: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 10.0.0.0/24
  fix: velkctl set eth0.gateway VALUE'
script 'velkctl set eth0.netmask 255.255.255.252'
status_is 0
error_is 'velkctl: note: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 192.168.0.8/30
  fix: velkctl set eth0.gateway VALUE'

it 'notes a mismatch once'
script 'velkctl set eth0.address 10.0.0.5 2>/dev/null && velkctl set eth0.dns 10.0.0.1'
status_is 0
error_is ''

it 'notes an address that the other interface has, and a DNS server that is the device'
script '
    printf "\taddress 10.0.0.6\n\tnetmask 255.255.255.0\n" >>/etc/network/interfaces
    velkctl set eth1.method=static eth1.netmask=255.255.255.0 2>/dev/null
    velkctl set eth1.address 192.168.0.10
    velkctl set eth1.dns 192.168.0.10'
status_is 0
error_is 'velkctl: note: eth1.address is also the address of eth0
  both are 192.168.0.10
  fix: velkctl set eth1.address VALUE
velkctl: note: eth0.dns names the device itself
  192.168.0.10 is the address of eth0
  fix: velkctl set eth0.dns VALUE
velkctl: note: eth0.dns names the device itself
  192.168.0.10 is the address of eth1
  fix: velkctl set eth0.dns VALUE'

it 'notes a DNS server that is the present address of an interface with DHCP'
script 'velkctl set eth0.method dhcp 2>/dev/null && velkctl set eth0.dns 192.168.0.10; velkctl doctor'
error_is 'velkctl: note: eth0.dns names the device itself
  192.168.0.10 is the address of eth0
  fix: velkctl set eth0.dns VALUE'
output_has 'warning: eth0.dns names the device itself
'

it 'notes the address and mask that a static interface lacks'
script 'velkctl set eth1.method static && velkctl set eth1.address 10.0.0.4
    velkctl doctor; velkctl set eth1.netmask 255.0.0.0; velkctl doctor'
status_is 0
error_is 'velkctl: note: eth1.dhcp-dns is off now, switched by eth1.method
velkctl: note: eth1.address and eth1.netmask are missing
  eth1.method is static, and ifup needs them
  fix: velkctl set eth1.address=ADDRESS eth1.netmask=NETMASK
velkctl: note: eth1.netmask is missing
  eth1.method is static, and ifup needs it
  fix: velkctl set eth1.netmask=NETMASK'
output_is 'problem: eth1.netmask is missing
  /etc/network/interfaces: eth1.method is static, and ifup needs it
  fix: velkctl set eth1.netmask=NETMASK
1 problem, 0 warnings
no problems found'
script 'sed -i "/^iface lo/i auto lo" /etc/network/interfaces; velkctl set eth1.method static'
error_has 'velkctl: note: eth1.netmask is missing
  eth1.method is static, and ifup needs it
  fix: below line 12 add "netmask NETMASK"'
script 'sed -i "/^iface lo/d" /etc/network/interfaces; velkctl set eth1.method static'
status_is 0
error_has 'velkctl: note: eth1.netmask cannot be set
  the stanza is the last one and has no netmask line
  fix: below line 12 add "netmask NETMASK"'

it 'refuses one address for both interfaces in one call'
both='velkctl set eth0.address=192.168.0.5 eth1.address=192.168.0.5 eth1.netmask=255.255.255.0 eth1.method=static'
script "$both; echo \$?; velkctl get eth0.address; $both --force"
status_is 0
output_is '2
192.168.0.10'
error_is 'velkctl: eth1.address: 192.168.0.5 is also the new value of eth0.address
  fix: give each interface an address of its own, or give --force
velkctl: note: eth1.dhcp-dns is off now, switched by eth1.method'
script 'velkctl set eth0.address=192.168.0.5 eth1.address=192.168.0.5'
status_is 0

it 'notes another line of the setting that ifup may take'
script 'sed -i "s/^.address 192.*/&\n\taddress 10.9.9.9/" /etc/network/interfaces
    velkctl set eth0.address 192.168.0.77; velkctl doctor'
status_is 0
error_is "velkctl: note: eth0.address has a second line
  /etc/network/interfaces:9: ifup may take 'address 10.9.9.9'
  a set changes line 8 alone
  fix: remove 'address 10.9.9.9'"
output_is "warning: eth0.address has a second line
  /etc/network/interfaces:9: ifup may take 'address 10.9.9.9'
  a set changes line 8 alone
  fix: remove 'address 10.9.9.9'
0 problems, 1 warning"
script 'sed -i "s/^.address 192/\taddress\t192/" /etc/network/interfaces
    velkctl set eth0.address 192.168.0.77; velkctl doctor'
status_is 0
error_is "velkctl: note: eth0.address has a second line
  /etc/network/interfaces:8: ifup may take 'address\x09192.168.0.10'
  a set changes line 12 alone
  fix: remove 'address\x09192.168.0.10'"
output_has 'warning: eth0.address has a second line
'

it 'has the doctor find them'
script '
    velkctl set eth0.address 10.0.0.5 2>/dev/null; velkctl set eth0.dns 10.0.0.5 2>/dev/null
    velkctl doctor'
status_is 1
output_has 'problem: eth0.gateway is outside the network of the interface
  /etc/network/interfaces:10: it is 192.168.0.1, and the network of the interface is 10.0.0.0/24
  fix: velkctl set eth0.gateway VALUE
'
output_has 'warning: eth0.dns names the device itself
  /etc/resolv.dnsmasq.conf:1: 10.0.0.5 is the address of eth0
  fix: velkctl set eth0.dns VALUE
'

# ---- the time of the effect -------------------------------------------------------------------
it 'says at a terminal when a set takes effect'
at_terminal() { script "script -qec '$1' /dev/null | tr -d '\\r'"; }
at_terminal 'velkctl set eth0.address 192.168.0.99'
output_is 'velkctl: note: eth0.address takes effect at the next restart of eth0'
at_terminal 'velkctl set eth0.method dhcp >/dev/null 2>&1; velkctl set eth0.address 192.168.0.98'
output_has 'velkctl: note: eth0.address takes effect at the next restart of eth0
  with method static'
at_terminal 'velkctl set eth0.method static'
output_is 'velkctl: note: eth0.method takes effect at the next restart of eth0'
at_terminal 'velkctl set eth0.dns 192.168.0.1'
output_is 'velkctl: note: eth0.dns takes effect when the DNS forwarder reads its file again'
at_terminal 'velkctl set ntp-server 192.168.0.2'
output_is 'velkctl: note: ntp-server takes effect at the next run of cron'
at_terminal 'velkctl set ntp off >/dev/null 2>&1; velkctl set ntp-server 192.168.0.3'
output_has 'velkctl: note: ntp-server takes effect at the next run of cron
  once ntp is on'
at_terminal 'velkctl set eth1.ssid lab'
output_is 'velkctl: note: eth1.ssid takes effect at the next restart of eth1
  without the cable in eth0'

it 'describes when a change takes effect'
script 'velkctl describe address; velkctl describe eth0.dns; velkctl describe ntp
    velkctl describe eth0.apipa; velkctl describe eth0.dhcp-dns'
status_is 0
output_has '
  takes effect at the next restart of eth0,
    with method static
'
output_has '
  takes effect at the next restart of eth1,
    with method static, without the cable in eth0
'
output_has '
  takes effect when the DNS forwarder reads its file again
'
output_has '
  takes effect at the next run of cron
'
output_has '
  takes effect at the next lease or restart of eth0
'
output_has '
  takes effect at the next restart of eth0,
    off at the next lease
'

finish
