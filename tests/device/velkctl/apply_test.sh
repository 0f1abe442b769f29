# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# apply_test.sh - settings as one change: apply, export, import and diff.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

state_word='state() { cat /etc/network/interfaces /etc/dhclient* /etc/resolv.dnsmasq.conf \
    /etc/snmp/* /var/cron/tabs/root /var/libvelk/libvelk 2>/dev/null | cksum; }
'
# With an adapter, a restart of eth0 takes more than a minute.
script() { on_device sh -c "velk-sandbox adapter out; $state_word$1"; }
wireless_script() { on_device sh -c "velk-sandbox cable out; $state_word$1"; }
# Runs a script and checks that it changes no file of the settings.
changes_nothing() { # SCRIPT
    script 'before=$(state); '"$1"'; status=$?; [ "$before" = "$(state)" ] || echo changed
        exit $status'
}

# ---- apply ------------------------------------------------------------------------------------
it 'sets the differences, restarts and says so'
script 'velkctl apply eth0.address=192.168.0.77/24 eth0.gateway=192.168.0.1 location=here --json >/tmp/out
    echo $?; grep -c "\"old\"" /tmp/out; velkctl get eth0.address location; tail -1 /etc/resolv.dnsmasq.conf >&2'
output_is '0
2
eth0.address  192.168.0.77
location      here'
script 'velkctl apply location=here; velkctl apply location=here; velkctl apply eth0.gateway=none'
status_is 0
error_is ''
output_has 'applied 1 setting
nothing to change
applied 1 setting, restarted eth0 ('

it 'reads a document from a file and from standard input'
script 'echo "{\"schema\": 1, \"settings\": {\"location\": \"a\", \"ntp\": \"off\"}}" >/tmp/a=b
    velkctl apply /tmp/a=b && echo "{\"schema\": 1, \"settings\": {\"location\": \"b\"}}" |
        velkctl apply - && velkctl get location ntp'
status_is 0
output_is 'applied 2 settings
applied 1 setting
location  b
ntp       off'

it 'only checks with --check: no journal, no lock, no change'
changes_nothing 'velkctl apply eth0.address=192.168.0.77 location=here --check &&
    velkctl apply eth0.dns=1.1.1.1 --check --dry-run && velkctl apply eth0.method=static --check
    [ ! -e /var/libvelk/journal ] || echo journal'
status_is 0
output_is 'eth0.address: can be set
location: can be set
eth0.dns: can be set
nothing to change'
error_is ''
changes_nothing 'velkctl apply eth0.address=192.168.0.300 eth0.netmask=255.0.255.0 --check'
status_is 2
error_is "velkctl: eth0.address: '192.168.0.300' is not an IPv4 address
  fix: give an IPv4 address such as 192.168.0.10
velkctl: eth0.netmask: '255.0.255.0' is not a mask: a zero precedes a one
  fix: give an IPv4 mask such as 255.255.255.0"

it 'reports all errors of a document, each with its place, and changes nothing'
changes_nothing 'echo "{\"schema\": 1, \"settings\": {\"eth0.address\": \"192.168.0.300\",
    \"eth0.gatewayz\": null, \"ntp\": true, \"location\": \"new\", \"location\": \"x\"}, \"facs\": {}}" |
    velkctl apply -'
status_is 2
output_is ''
error_is "velkctl: standard input: given twice; at /settings/location; give it once
velkctl: standard input: unknown member; at /facs; did you mean facts?
velkctl: standard input: unknown setting 'eth0.gatewayz'
  at /settings/eth0.gatewayz
  fix: did you mean eth0.gateway?
velkctl: eth0.address: '192.168.0.300' is not an IPv4 address
  at /settings/eth0.address in standard input
  fix: give an IPv4 address such as 192.168.0.10
velkctl: ntp: its JSON type is boolean, not string
  at /settings/ntp in standard input
  fix: give on or off"
changes_nothing 'printf "{\n \"schema\": 1,\n}" | velkctl apply -'
status_is 2
error_is "velkctl: standard input: not JSON at line 3, column 1
  fix: correct the text there; 'velkctl export' prints a document"

it 'gives the place of values that do not fit each other'
changes_nothing 'echo "{\"schema\": 1, \"settings\": {\"eth0.address\": \"10.0.0.2\",
    \"eth0.gateway\": \"192.168.0.1\"}}" >/tmp/t.json
    velkctl apply /tmp/t.json; velkctl import /tmp/t.json --json >/tmp/out
    grep -c -e changes -e skipped /tmp/out; grep pointer /tmp/out'
status_is 0
error_is 'velkctl: eth0.gateway: 192.168.0.1 is outside the network of the interface
  at /settings/eth0.gateway in /tmp/t.json
  the network of the interface is 10.0.0.0/24
  fix: give another value, or give the address and netmask too'
output_is '0
        "pointer": "/settings/eth0.gateway"'

it 'has the notes of set about other settings'
script 'velkctl apply eth0.address=10.0.0.2; velkctl apply eth0.method=dhcp --restart never'
status_is 0
error_has 'velkctl: note: eth0.gateway is outside the network of the interface'
error_has ', switched by eth0.method'

it 'refuses a restart of eth1 without an adapter before the first set'
changes_nothing 'velkctl apply location=new --restart eth0,eth1'
status_is 4
error_is 'velkctl: --restart: eth1 cannot be restarted
  no adapter is attached
  fix: plug in an adapter, or leave eth1 out of --restart'

it 'says how to give a setting and an empty name'
changes_nothing 'velkctl apply eth0.address; velkctl apply ""'
status_is 2
error_is "velkctl: apply: 'eth0.address' has no '='
  fix: give eth0.address=VALUE
velkctl: '': cannot be read
  No such file or directory
  fix: give a document of 'velkctl export', or - for standard input"

it 'refuses words that are neither a document nor NAME=VALUE'
changes_nothing 'velkctl apply location here'
status_is 2
error_is 'velkctl: apply: several words given; give one document or NAME=VALUE words'
changes_nothing 'velkctl apply eth0.dsn=1.1.1.1 eth0.dns'
status_is 2
error_is "velkctl: apply: unknown setting 'eth0.dsn'; did you mean eth0.dns?
velkctl: apply: 'eth0.dns' has no '='
  fix: give NAME=VALUE, with quotes around a value that has blanks"
changes_nothing 'velkctl apply ntp=on --restart sometimes'
status_is 2
error_has "velkctl: --restart: 'sometimes' is not valid"
changes_nothing 'velkctl apply /tmp/none.json'
status_is 2
error_has 'velkctl: /tmp/none.json: cannot be read
  No such file or directory'

it 'puts everything back if a step fails'
script 'rm /etc/dhclient-exit-hooks; before=$(state)
    velkctl apply location=there eth0.address=192.168.0.77 eth0.apipa=off
    status=$?; [ "$before" = "$(state)" ] || echo changed; exit $status'
status_is 1
output_is ''
error_has 'velkctl: note: all settings are as before'

it 'puts everything back if the restarted interface is not as configured'
changes_nothing "$stand_in_word"'cp "$(command -v ifup)" /tmp/own-ifup
    stand_in_script ifup "grep -q 192.168.0.77 /etc/network/interfaces || exec /tmp/own-ifup \"\$@\"" \
        "echo ifup: failed to bring up \$1 >&2"
    velkctl apply eth0.address=192.168.0.77 --json >/tmp/out; code=$?
    grep taken_back /tmp/out; exit $code'
status_is 1
output_is '  "taken_back": true,'

it 'ends with 9 if the interface is not up again after everything is put back'
changes_nothing "$stand_in_word"'stand_in_script ifup "echo ifup: failed to bring up \$1 >&2"
    velkctl apply eth0.address=192.168.0.77'
status_is 9
error_is "velkctl: restart of eth0: ifup: failed to bring up eth0
velkctl: restart of eth0: ifup: failed to bring up eth0
velkctl: eth0: ifup failed
  the interface is up with 192.168.0.10
velkctl: restart of eth0: ifup: failed to bring up eth0
velkctl: restart of eth0: ifup: failed to bring up eth0
velkctl: eth0: could not be restarted after the change was taken back
  ifup failed; the interface is up with 192.168.0.10
  fix: 'velkctl recover' tries again"

it 'stays open after that, and recover restarts the interface'
script "$stand_in_word"'velk-sandbox adapter out
    stand_in_script ifup "ip address flush dev eth0" "exit 1"
    velkctl apply eth0.address=192.168.0.77 2>/dev/null; echo "status $?"
    velkctl history --quiet --json | sed -n "s/.*\"state\": //p"
    umount "$(readlink -f "$(command -v ifup)")"; velkctl recover --quiet; echo "status $?"; ifconfig eth0 | grep -o "inet addr:[0-9.]*"
    velkctl history --quiet --json | sed -n "s/.*\"state\": //p"'
output_is 'status 9
"stuck",
status 0
inet addr:192.168.0.10
"reverted",'

it 'advises to apply again, not to restart the old settings'
script "$stand_in_word"'velk-sandbox cable out
    stand_in_script ifup "ip address flush dev eth0"
    velkctl apply eth0.address=192.168.0.77'
status_is 9
error_has '  no link: the cable is out
  fix: plug the cable in, then apply the change again'
error_has "  fix: 'velkctl recover' tries again"

it 'puts everything back after a signal, and restarts the interface'
script "$stand_in_word"'before=$(state)
    stand_in_script ifup "[ -e /tmp/again ] && exec touch /tmp/restarted" "touch /tmp/again" "sleep 60"
    velkctl apply eth0.address=192.168.0.77 2>/tmp/errors & pid=$!
    until [ -e /tmp/again ]; do sleep 0.1; done
    kill -TERM $pid; wait $pid; echo $?
    grep velkctl: /tmp/errors | head -1; tail -1 /tmp/errors
    [ "$before" = "$(state)" ] || echo changed; ls /tmp/restarted; velkctl recover'
status_is 0
output_is '143
velkctl: note: interrupted; the old state is being put back
velkctl: interrupted; all settings are as before
/tmp/restarted
nothing to recover'

it 'restarts the interfaces that the caller names'
script 'velkctl apply eth0.gateway=none --restart never && velkctl apply ntp=off --restart eth0'
status_is 0
output_has 'applied 1 setting
applied 1 setting, restarted eth0 ('

# ---- export and import ------------------------------------------------------------------------
it 'changes nothing when an export is imported'
changes_nothing 'velkctl export >/tmp/net.json && velkctl import /tmp/net.json && velkctl diff /tmp/net.json'
status_is 0
output_is 'nothing to change'
script 'velkctl set --force eth0.gateway 10.9.9.9 && velkctl export | velkctl import -'
status_is 0
output_is 'nothing to change'

it 'gives the document back after an import'
script 'velkctl export --quiet >/tmp/before.json
    velkctl apply eth0.address=192.168.0.80 eth0.netmask=255.255.0.0 eth0.gateway=none \
        eth0.dns=192.168.0.5,192.168.0.6 location="a \"b\" \\" administrator= ntp=off \
        ntp-server=time.example web-update="monthly 31 08:30" eth0.apipa=off --quiet &&
    velkctl export --quiet >/tmp/first.json && velkctl import /tmp/before.json --quiet &&
    velkctl export --quiet | cmp - /tmp/before.json &&
    velkctl import /tmp/first.json --quiet && velkctl export --quiet | cmp - /tmp/first.json'
status_is 0
error_is ''
output_is ''

it 'imports only the settings that are asked for'
script 'velkctl export >/tmp/net.json
    velkctl set location=x administrator=y eth0.gateway=192.168.0.2 --quiet
    velkctl import /tmp/net.json --only location,eth0.gate* --restart never &&
    velkctl diff /tmp/net.json'
status_is 6
output_is 'applied 2 settings
administrator: "Robin" -> "y"'
changes_nothing 'velkctl export --quiet >/tmp/net.json; velkctl import /tmp/net.json --only eth0.addresz,eth9*'
status_is 2
error_is "velkctl: import: --only: unknown setting 'eth0.addresz'
  fix: did you mean eth0.address?
velkctl: import: --only: 'eth9*' matches no setting
  fix: 'velkctl list' names them all"

it 'leaves keys out of an export, and alone in an import'
wireless_script 'velkctl set eth1.psk=secretkey --quiet && velkctl export >/tmp/net.json &&
    grep -c secretkey /tmp/net.json; velkctl export --include-secrets >/tmp/all.json
    grep -c secretkey /tmp/all.json
    velkctl import /tmp/net.json && velkctl set eth1.psk=other-key --quiet
    velkctl import /tmp/net.json && velkctl diff /tmp/all.json
    velkctl import /tmp/all.json --restart never && velkctl diff /tmp/all.json && velkctl get eth1.psk --show-secrets'
output_is '0
1
nothing to change
nothing to change
eth1.psk: "********" -> "********"
applied 1 setting
secretkey'

it 'shows no key'
wireless_script 'for form in "" --json; do
        velkctl apply eth1.psk=planted-one --restart never $form
        velkctl export --include-secrets >/tmp/all.json
        velkctl apply eth1.psk=planted-two --restart never $form
        velkctl diff /tmp/all.json $form
        sed -i "s/planted-one/********/" /tmp/all.json; velkctl import /tmp/all.json $form
    done >/tmp/said 2>&1
    grep -c "\*\*\*\*" /tmp/said; grep planted /tmp/said'
output_is '7'

it 'names the settings of eth1 that it leaves out'
script 'velkctl export >/dev/null'
status_is 0
error_has ' settings of eth1 are left out
  they need a wireless adapter'

it 'reports a setting that it cannot export'
script 'rm /etc/dhclient.conf; velkctl export --json | grep -A 4 \"unread\"'
output_is '  "unread": [
    "dhcp-ntp",
    "eth1.mac-address",
    "eth0.dhcp-dns",
    "eth1.dhcp-dns",'
script 'rm /etc/dhclient.conf; velkctl export >/tmp/net.json; echo $?; velkctl import /tmp/net.json'
status_is 0
output_is '1
nothing to change'
error_has 'velkctl: dhcp-ntp: could not be read
  likely cause: /etc/dhclient.conf: the file is missing'

# ---- eth1 -------------------------------------------------------------------------------------
it 'does not restart eth1 while that has no effect'
script 'velkctl apply eth1.method=static eth1.address=10.0.0.1/8'
status_is 0
output_is 'applied 3 settings'
error_is 'velkctl: note: eth1: not restarted; no adapter is attached
  its settings take effect at its next restart
velkctl: note: eth1.dhcp-dns is off now, switched by eth1.method'
on_device velkctl apply eth1.method=static eth1.address=10.0.0.1/8
status_is 0
error_has 'velkctl: note: eth1: not restarted; the cable is in eth0'

it 'fails before the first set if the daemon cannot be asked'
changes_nothing 'velkctl apply location=x eth1.ssid=lab eth1.channel=3'
status_is 4
error_is 'velkctl: eth1.ssid: could not be compared
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  no adapter is attached
  fix: plug in an adapter; if that does not start the wireless daemon, start it
  result: LIB_VELK_FAILURE (-1)'

changes_nothing 'echo "{\"schema\": 1, \"settings\": {\"eth1.ssid\": \"lab\"}}" | velkctl import -'
status_is 4
error_has '  fix: attach an adapter, or leave its settings out: --only NAME,...'

# ---- DHCP -------------------------------------------------------------------------------------
it 'skips the addresses of an interface that gets them from DHCP'
script 'velkctl export --quiet >/tmp/net.json; velkctl set eth0.method dhcp --quiet
    velkctl apply eth0.address=10.0.0.1; velkctl diff /tmp/net.json --only eth0.gateway'
status_is 0
output_is 'nothing to change'
error_is 'velkctl: note: eth0.address: not applied
  its value comes from DHCP
velkctl: note: eth0.gateway: not compared, as its value comes from DHCP'

it 'compares the values when no other run can take them back any more'
script 'velk-sandbox adapter out
    ifup=$(readlink -f "$(command -v ifup)")
    printf "#!/bin/sh\ncase \$0 in *ifup) ;; *) exit 0 ;; esac\n" >/tmp/ifup
    printf "[ ! -e /tmp/slow ] || exit 0\ntouch /tmp/slow; sleep 3\n" >>/tmp/ifup
    printf "ip address flush dev eth0; exit 1\n" >>/tmp/ifup
    chmod +x /tmp/ifup; mount --bind /tmp/ifup "$ifup"
    velkctl apply eth0.address=192.168.0.50 location=hall --quiet 2>/dev/null & first=$!
    until [ -e /tmp/slow ]; do sleep .05; done
    velkctl apply location=hall --quiet 2>&1 | sed -E "s/process [0-9]+ .*/process N/"
    velkctl apply location=hall --wait=60 --quiet 2>&1 | sed -E "s/process [0-9]+ .*/process N/"
    wait "$first"; echo "first: $?"; velkctl get location'
output_is "velkctl: apply: nothing was changed
  another program is changing settings
  process N
  fix: try again, or let --wait=SECONDS try again
first: 9
hall"

# ---- diff -------------------------------------------------------------------------------------
it 'compares two documents'
script 'echo "{\"schema\": 1, \"settings\": {\"location\": \"a\", \"ntp\": \"on\"}}" >/tmp/a
    echo "{\"schema\": 1, \"settings\": {\"ntp\": \"off\", \"eth0.dns\": []}}" >/tmp/b
    velkctl diff /tmp/a /tmp/b; echo $?; velkctl diff /tmp/a /tmp/a; echo $?
    velkctl diff /tmp/a /tmp/b --only ntp-server; echo $?; velkctl diff /tmp/a /tmp/none 2>/dev/null'
status_is 2
output_is 'location: "a" -> (not in it)
ntp: "on" -> "off"
eth0.dns: (not in it) -> []
6
0
0'

it 'names the settings together that it cannot compare for one reason'
script 'echo "{\"schema\": 1, \"settings\": {\"eth1.ssid\": \"a\", \"channel\": 7}}" | velkctl diff -'
status_is 4
error_has 'velkctl: 2 settings could not be read:
  eth1.ssid eth1.channel'

it 'compares a document with the device as far as that can be read'
script 'echo "{\"schema\": 1, \"settings\": {\"eth1.ssid\": \"a\", \"eth0.dhcp-notice\": \"on\",
        \"channel\": 77}}" | velkctl diff -'
status_is 4
output_is ''
error_has 'velkctl: note: eth0.dhcp-notice: not compared, as it cannot be read'
error_has 'velkctl: 2 settings could not be read:'
wireless_script 'echo "{\"schema\": 1, \"settings\": {\"channel\": 77}}" | velkctl diff - --json | grep -A 5 differences'
output_is '  "differences": [
    {
      "name": "eth1.channel",
      "first": 77,
      "second": 6,
      "only_in": null'

finish
