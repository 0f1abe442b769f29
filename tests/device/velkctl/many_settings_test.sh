# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# many_settings_test.sh - several settings in one call, lists, prefix lengths, patterns and names
# without their interface.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

script() { on_device sh -c "$1"; }

# Runs a script and checks that it changes no file of the settings.
changes_nothing() { # SCRIPT
    script 'state() { cat /etc/network/interfaces /etc/dhclient* /etc/resolv.dnsmasq.conf \
            /var/cron/tabs/root /var/libvelk/libvelk | cksum; }
        before=$(state); '"$1"'; status=$?
        [ "$before" = "$(state)" ] || echo changed
        exit $status'
    output_is ''
}

# ---- several settings -------------------------------------------------------------------------
it 'sets several settings, each checked against the new values of the others'
script 'velkctl set eth0.gateway=10.0.0.1 eth0.netmask=255.0.0.0 eth0.address=10.0.0.9 location=a=b &&
    velkctl get eth0.address eth0.netmask eth0.gateway location'
status_is 0
error_is ''
output_is 'eth0.address  10.0.0.9
eth0.netmask  255.0.0.0
eth0.gateway  10.0.0.1
location      a=b'

it 'reports all problems of a call, and changes nothing'
changes_nothing 'velkctl set eth0.address=192.168.0.300 eth0.gateway=10.0.0.1 eth1.dsn=1.1.1.1 \
    ntp=maybe 8.8.8.8 ntp=on location=here'
status_is 2
error_is "velkctl: eth0.address: '192.168.0.300' is not an IPv4 address
  fix: give an IPv4 address such as 192.168.0.10
velkctl: set: unknown setting 'eth1.dsn'; did you mean eth1.dns?
velkctl: ntp: 'maybe' is not valid; give on or off
velkctl: set: '8.8.8.8' has no '='
  fix: give NAME=VALUE, with quotes around a value that has blanks
velkctl: ntp: given twice; give it once"
changes_nothing 'velkctl set eth0.method=foo eth1.psk='
status_is 2
error_is "velkctl: eth0.method: 'foo' is not valid; give static or dhcp
velkctl: eth1.psk: no value given; give a text of 1 to 64 bytes, or none"
changes_nothing 'velkctl set eth0.dns=1.1.1.1,foo,bar,1.2.3.4'
status_is 2
error_is "velkctl: eth0.dns: 'foo' is not an IPv4 address
  'bar' is not an IPv4 address; 4 addresses given
  fix: give one to three IPv4 addresses such as 192.168.0.1, or none"

it 'reports all problems with options, then those with words'
changes_nothing 'velkctl get --bogus eth0.zz --wat'
status_is 2
error_is "velkctl: get: unknown option '--bogus'; 'velkctl get --help' lists the options
velkctl: get: unknown option '--wat'; 'velkctl get --help' lists the options
velkctl: get: unknown setting 'eth0.zz'; 'velkctl list' names them all"
changes_nothing 'velkctl set eth0.address=1 --bogus --timeout=0 --wait=x'
status_is 2
error_is "velkctl: set: unknown option '--bogus'
  a value that begins with a dash needs -- before it
  fix: 'velkctl set --help' lists the options
velkctl: --wait: 'x' is not a time; give whole seconds, 1 to 86400
velkctl: --timeout: '0' is not a time; give whole seconds, 1 to 86400
velkctl: eth0.address: '1' is not an IPv4 address
  fix: give an IPv4 address such as 192.168.0.10"
changes_nothing 'velkctl show eth9 --bogus'
status_is 2
error_has "unknown option '--bogus'"
error_has "'eth9' is not an interface"

it 'reports the new values that do not fit each other'
changes_nothing 'velkctl set location=here eth0.address=10.0.0.9 eth0.gateway=192.168.0.1'
status_is 2
error_is 'velkctl: eth0.gateway: 192.168.0.1 is outside the network of the interface
  the network of the interface is 10.0.0.0/24
  fix: give another value, or set the address and netmask first, or give --force'

it 'compares nothing with the lease of a port that changes to static'
script 'velkctl set eth0.method dhcp && ifconfig eth0 172.16.5.6 netmask 255.255.255.0 &&
    route add default gw 172.16.5.1 &&
    velkctl set eth0.address=172.16.5.1 eth0.method=static && velkctl get eth0.address'
status_is 0
output_is '172.16.5.1'

it 'says how several settings are written'
changes_nothing 'velkctl set eth0.address 10.0.0.9 eth0.netmask 255.255.255.0'
status_is 2
error_is 'velkctl: eth0.address: another setting follows the value
  fix: give NAME=VALUE for each of several settings'

it 'lists all problems in JSON'
script 'velkctl set eth0.address=1 ntp=maybe --json | grep "\"\(status\|setting\)\""'
status_is 0
output_is '  "status": 2,
      "setting": "eth0.address",
      "setting": "ntp",'

it 'stops at the first failure, and names the settings that are set and those that are not'
script 'sed -i /ntpdate/d /var/cron/tabs/root
    velkctl set eth0.address=192.168.0.9 ntp-server=time.example location=here administrator=me
    status=$?; velkctl get location eth0.address; exit $status'
status_is 6
output_is 'location      here
eth0.address  192.168.0.10'
error_has 'velkctl: note: set: stopped at ntp-server
  set: administrator, location; not set: ntp-server, eth0.address'

it 'names a setting that is refused among those that are not set'
script 'velk-sandbox cable out; velk-sandbox adapter out
    velkctl set ssid=x eth0.dns=5.5.5.5; status=$?; velkctl get eth0.dns; exit $status'
status_is 4
output_is '5.5.5.5'
error_has 'velkctl: note: set: stopped at eth1.ssid
  set: eth0.dns; not set: eth1.ssid'

it 'notes the switched settings of a call that stops'
script 'velkctl set eth0.method dhcp --quiet
    velkctl set eth0.method=static eth0.dhcp-dns=on'
status_is 6
error_has 'velkctl: note: eth0.dhcp-dns is off now, switched by eth0.method'

it 'notes the switched settings with --force and --no-verify'
script 'velkctl set eth0.method dhcp --force; velkctl set eth0.method static --no-verify'
status_is 0
error_is 'velkctl: note: eth0.dhcp-dns is on now, switched by eth0.method
velkctl: note: eth0.dhcp-dns is off now, switched by eth0.method'

it 'says once for each time when the settings take effect'
script "script -qec 'velkctl set eth0.netmask=255.255.255.0 eth0.address=192.168.0.9 ntp=on' /dev/null |
    tr -d '\\r'"
output_is 'velkctl: note: ntp takes effect at the next run of cron
velkctl: note: eth0.address and eth0.netmask take effect at the next restart of eth0'

it 'shows in JSON how far it came'
script 'sed -i /ntpdate/d /var/cron/tabs/root
    velkctl set eth0.address=192.168.0.9 ntp-server=time.example location=here --json |
    grep "\"\(name\|held\|set\)\":"'
output_is '      "name": "location",
      "held": true,
      "set": true
      "name": "ntp-server",
      "held": false,
      "set": true
      "name": "eth0.address",
      "held": null,
      "set": false'

it 'sets values that are not valid with --force, and does not read back with --no-verify'
script 'velkctl set eth0.gateway=10.0.0.1 eth0.dns=127.0.0.1 --force --no-verify &&
    velkctl get eth0.gateway && cat /etc/resolv.dnsmasq.conf'
status_is 0
error_is ''
output_is '10.0.0.1
nameserver 127.0.0.1'

it 'reads secrets from their sources'
script 'velk-sandbox cable out
    echo hunter22 >/tmp/psk && echo abcde |
    velkctl set psk=@/tmp/psk wep-key-1=- ssid=lab && velkctl get psk wep-key-1 ssid --show-secrets'
status_is 0
error_is ''
output_is 'eth1.psk        hunter22
eth1.wep-key-1  abcde
eth1.ssid       lab'

it 'clears the key in use once another is in use'
script 'velk-sandbox cable out
    velkctl set encryption=wep wep-default-key=1 wep-key-1=abcde &&
    velkctl set wep-key-1=none wep-default-key=2 wep-key-2=fghij &&
    velkctl get wep-key-1 wep-key-2 wep-default-key'
status_is 0
error_is ''
output_is 'eth1.wep-key-1        none
eth1.wep-key-2        ********
eth1.wep-default-key  2'

it 'reads no secret from standard input if another value is refused'
script 'echo hunter22 | { velkctl set psk=- eth0.gateway=10.0.0.1 2>/dev/null; echo $?; cat; }'
status_is 0
output_is '2
hunter22'

# ---- lists and prefix lengths -----------------------------------------------------------------
it 'takes a list as get prints it, and with commas'
script 'velkctl set eth0.dns 1.1.1.1,2.2.2.2 && velkctl get eth0.dns &&
    velkctl set eth0.dns "3.3.3.3, 4.4.4.4" && before=$(velkctl get eth0.dns) &&
    velkctl set eth0.dns none && velkctl set eth0.dns "$before" && velkctl get eth0.dns'
status_is 0
error_is ''
output_is '1.1.1.1 2.2.2.2
3.3.3.3 4.4.4.4'

it 'sets the netmask with an address that has a prefix length'
script 'velkctl set eth0.address 192.168.0.77/25 && velkctl get eth0.address eth0.netmask &&
    velkctl set eth0.netmask 24 && velkctl get eth0.netmask &&
    velkctl set eth0.netmask=/16 && velkctl get eth0.netmask'
status_is 0
error_is ''
output_is 'eth0.address  192.168.0.77
eth0.netmask  255.255.255.128
255.255.255.0
255.255.0.0'

it 'checks an address together with its prefix length'
changes_nothing 'velkctl set eth0.address 192.168.0.64/26'
status_is 2
error_has '192.168.0.64 is the address of the network'
changes_nothing 'velkctl set eth0.address 192.168.0.64/33'
status_is 2
error_is "velkctl: eth0.netmask: '/33' is no mask: a prefix length is 1 to 32
  fix: give an IPv4 mask such as 255.255.255.0"

# ---- patterns and short names -----------------------------------------------------------------
it 'gets the settings of an interface and those that match a pattern'
script 'velkctl get "eth*.dns" && velkctl get eth0 | wc -l && velkctl get --value "nt[p]"'
status_is 0
error_is ''
output_is 'eth0.dns  192.168.0.1 192.168.0.2
eth1.dns  192.168.0.1 192.168.0.2
9
on'

it 'shows the settings that match a pattern'
script 'velkctl show "*.method" ntp'
status_is 0
output_has 'eth1.method'
output_has 'ntp '

it 'refuses a pattern that matches no setting'
on_device velkctl get 'eth2.*'
status_is 2
output_is ''
error_is "velkctl: get: 'eth2.*' matches no setting that can be read
  fix: 'velkctl list' names them all"

it 'takes a name without its interface if only one has the setting'
script 'velkctl set channel 11 && velkctl get channel && velkctl get link-speed ssid &&
    velkctl describe psk | head -n 1'
status_is 0
error_is ''
output_is '11
eth0.link-speed  auto
eth1.ssid        velk-lab
eth1.psk'

it 'names both interfaces if both have the setting'
on_device velkctl get dns
status_is 2
error_is "velkctl: get: 'dns' is a setting of both interfaces; give eth0.dns or eth1.dns"

it 'explains no setting, but says where it is described'
on_device velkctl explain ssid
status_is 2
error_is "velkctl: explain: 'ssid' is a setting; 'velkctl describe eth1.ssid' describes it"

finish
