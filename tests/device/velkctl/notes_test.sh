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
error_is "velkctl: eth0.address: '999.1.1.1' is not an IPv4 address
  it is read from /etc/network/interfaces:8
  fix: velkctl set eth0.address VALUE
velkctl: eth0.netmask: '24' is short for 255.255.255.0
  it is read from /etc/network/interfaces:9
  fix: velkctl set eth0.netmask 255.255.255.0
velkctl: eth1.dns: 'foo' is not an IPv4 address
  it is read from /etc/resolv.dnsmasq.conf:1
  fix: velkctl set eth1.dns VALUE
velkctl: ntp-server: 'bad;host' is not a host name
  it is read from /var/cron/tabs/root:1
  fix: velkctl set ntp-server VALUE
velkctl: web-update: 'daily 25:0' is not a schedule
  it is read from /var/cron/tabs/root:3
  fix: velkctl set web-update VALUE"

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

# ---- set --------------------------------------------------------------------------------------
it 'notes that a change of the method undoes dhcp-dns off'
script 'velkctl set eth0.dhcp-dns off'
status_is 0
output_is ''
error_is "velkctl: eth0.dhcp-dns: is off while eth0.method is static
  dhcp may switch it on again
  fix: set it again after 'velkctl set eth0.method dhcp'"

it 'has no such note while the method is dhcp'
script 'velkctl set eth1.dhcp-dns off'
status_is 0
error_is ''

it 'notes the other settings that a change of the method switches'
script 'velkctl set eth0.method dhcp && velkctl set eth0.method static'
status_is 0
error_is 'velkctl: eth0.dhcp-dns: is on now, switched by eth0.method
velkctl: eth0.dhcp-dns: is off now, switched by eth0.method'
script 'velkctl set eth0.method dhcp --json'
output_has '"eth0.dhcp-dns: is on now, switched by eth0.method"'

it 'notes that a new address or mask puts the gateway outside the network'
script 'velkctl set eth0.address 10.0.0.5'
status_is 0
error_is 'velkctl: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 10.0.0.0/24
  fix: velkctl set eth0.gateway VALUE'
script 'velkctl set eth0.netmask 255.255.255.252'
status_is 0
error_is 'velkctl: eth0.gateway is outside the network of the interface
  it is 192.168.0.1, and the network of the interface is 192.168.0.8/30
  fix: velkctl set eth0.gateway VALUE'

it 'notes a mismatch once'
script 'velkctl set eth0.address 10.0.0.5 2>/dev/null && velkctl set eth0.dns 10.0.0.1'
status_is 0
error_is ''

it 'notes an address that the other interface has, and a DNS server that is the device'
script '
    printf "\taddress 10.0.0.6\n\tnetmask 255.255.255.0\n" >>/etc/network/interfaces
    velkctl set eth1.method static 2>/dev/null && velkctl set eth1.address 192.168.0.10
    velkctl set eth1.dns 192.168.0.10'
status_is 0
error_is 'velkctl: eth1.address is also the address of eth0
  both are 192.168.0.10
  fix: velkctl set eth1.address VALUE
velkctl: eth0.dns names the device itself
  192.168.0.10 is the address of eth0
  fix: velkctl set eth0.dns VALUE
velkctl: eth0.dns names the device itself
  192.168.0.10 is the address of eth1
  fix: velkctl set eth0.dns VALUE'

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
output_is 'velkctl: eth0.address: takes effect at the next restart of eth0'
at_terminal 'velkctl set eth0.dns 192.168.0.1'
output_is 'velkctl: eth0.dns: takes effect at once'
at_terminal 'velkctl set ntp-server 192.168.0.2'
output_is 'velkctl: ntp-server: takes effect at the next run of cron'

it 'describes when a change takes effect'
script 'velkctl describe address; velkctl describe eth0.dns; velkctl describe ntp'
status_is 0
output_has '
  takes effect at the next restart of eth0
'
output_has '
  takes effect at the next restart of eth1
'
output_has '
  takes effect at once
'
output_has '
  takes effect at the next run of cron
'

finish
