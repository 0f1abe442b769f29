# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# show_test.sh - show and list: groups, reasons, the width and height of a terminal, and colours.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
command -v script >/dev/null || skip 'no script(1) here, for terminals'

# Runs a script for the shell at a terminal of this size on a new device.
at_terminal() { # COLUMNS ROWS SCRIPT [VARIABLE=VALUE...]
    on_device env TERM=linux "${@:4}" script -qec "stty cols $1 rows $2; $3" /dev/null
    output=${output//$'\r'/}
    output=${output//$'\033'/<esc>}
}
widest() { awk '{ if (length($0) > most) most = length($0) } END { print most + 0 }' <<<"$output"; }
plain=NO_COLOR=1

# ---- groups and reasons ------------------------------------------------------------------------
it 'groups the settings by device and interface, with headings'
on_device sh -c 'velkctl list | grep :$; velkctl show | grep -v "^ " | grep :$; velkctl show eth0 | grep :$'
output_is 'The device:
eth0, the wired port:
eth1, the wireless adapter:
The device:
eth0, the wired port:
eth1, the wireless adapter:
8 settings need the cable out:'
error_is ''

it 'shows settings that cannot be read for the same reason together'
on_device velkctl show eth1
status_is 0
output_has 'eth1.standards-enabled  3
8 settings need the cable out:
  eth1.mac-address eth1.hardware-version eth1.software-version eth1.standard
  eth1.region eth1.rate eth1.access-point eth1.signal'

it 'gets settings, and reports those that cannot be read for the same reason together'
for word in eth1 'eth1.*' '*'; do
    on_device velkctl get "$word"
    status_is 5
    output_has 'eth1.standards-enabled  3'
    error_is 'velkctl: 8 settings could not be read:
  eth1.mac-address eth1.hardware-version eth1.software-version eth1.standard
  eth1.region eth1.rate eth1.access-point eth1.signal
  refused while the cable is in the wired port
  fix: pull the cable; wireless works only without it
  result: LIB_VELK_WIRED_LINKED (-6)'
done
on_device velkctl get eth1.rate
error_has 'velkctl: eth1.rate: could not be read'

it 'asks a silent daemon once in get, as in show'
on_device sh -c 'own=$(cat /run/velk-sandbox/wland.pid); kill $own
    while kill -0 $own 2>/dev/null; do sleep 0.01; done; wland --reply silent --background
    velkctl get ssid channel ntp --timeout=1'
status_is 7
output_is 'ntp           on'
error_is 'velkctl: eth1.ssid: could not be read
  no answer after 1 s; waited for the wireless daemon to answer
  fix: run it again with a longer --timeout
velkctl: eth1.channel: could not be read
  skipped: the wireless daemon does not answer'

it 'names an absent adapter also for the settings of the daemon that it starts'
on_device sh -c 'velk-sandbox adapter out; velkctl show eth1 | grep -A 5 settings
    velkctl set eth1.ssid lab 2>/dev/null; echo $?; velkctl get eth1.ssid 2>/dev/null; echo $?'
output_is '20 settings need a wireless adapter:
  eth1.mac-address eth1.hardware-version eth1.software-version eth1.standard
  eth1.service-set eth1.ssid eth1.channel eth1.region eth1.encryption
  eth1.authentication eth1.wep-key-1 eth1.wep-key-2 eth1.wep-key-3
  eth1.wep-key-4 eth1.wep-default-key eth1.psk eth1.rate eth1.access-point
  eth1.signal eth1.standards-enabled
4
4'

it 'ends with the status of a failure if the daemon is missing although the adapter is attached'
on_device sh -c 'own=$(cat /run/velk-sandbox/wland.pid); kill $own
    while kill -0 $own 2>/dev/null; do sleep 0.01; done; velkctl set eth1.ssid lab 2>/dev/null; echo $?
    velkctl show eth1 | grep daemon'
output_is '1
12 settings cannot be read: the wireless daemon does not run:'

it 'names the file that is missing'
on_device sh -c 'rm /var/cron/tabs/root /var/libvelk/libvelk; velkctl show | sed -n "1,/^$/p"
    echo >/etc/resolv.dnsmasq.conf; rm /etc/dhclient-exit-hooks; velkctl show eth0 | tail -n 1'
output_is 'The device:
dhcp-ntp                off
ntp-result              no-result
2 settings cannot be read: /var/libvelk/libvelk is missing:
  administrator location
3 settings cannot be read: /var/cron/tabs/root is missing:
  ntp ntp-server web-update

eth0.apipa        (/etc/dhclient-exit-hooks is missing)'

it 'points to the doctor if no cause is found'
on_device sh -c 'printf "#!/bin/sh\nexit 1\n" >/tmp/none; chmod +x /tmp/none
    mount --bind /tmp/none "$(readlink -f /usr/sbin/ethtool)"; velkctl show eth0 | tail -n 1'
output_is "eth0.link-speed   (unreadable: run 'velkctl doctor')"

it 'prints several values in get as in show'
on_device sh -c 'velkctl get eth0.mac-address eth0.dns; velkctl show eth0 | grep -e mac -e "\.dns"'
output_is 'eth0.mac-address  02:00:00:00:00:10
eth0.dns          192.168.0.1 192.168.0.2
eth0.mac-address  02:00:00:00:00:10
eth0.dns          192.168.0.1 192.168.0.2'

it 'says which values the wireless daemon defines'
on_device sh -c 'for name in standard region encryption authentication rate signal standards-enabled
    do velkctl describe eth1.$name | grep -c "^  the wireless daemon defines the meaning"; done | sort | uniq -c
    velkctl describe eth1.encryption; velkctl set eth1.encryption wpa2'
output_is '      7 1
eth1.encryption
  encryption: 1, 2 (wep), 3 or 4
  command 306: get and set
  takes 1, 2 (wep), 3 or 4
  the wireless daemon defines the meaning of 1, 3 and 4; see its manual
  takes effect at the next restart of eth1,
    without the cable in eth0
  reading takes at most 60 s; it waits
    for the wireless daemon to answer
  example: velkctl get eth1.encryption
  example: velkctl set eth1.encryption 1'
error_is "velkctl: eth1.encryption: 'wpa2' is not valid
  the wireless daemon defines the meaning of 1, 3 and 4; see its manual
  fix: give 1, 2 (wep), 3 or 4"

# ---- the width of a terminal -------------------------------------------------------------------
it 'cuts help texts at the width of the terminal'
for columns in 40 80 100; do
    at_terminal "$columns" 100 'velkctl list' $plain
    status_is 0
    check "lines of at most $columns columns" yes "$([ "$(widest)" -le "$columns" ] && echo yes)"
    check 'settings' 44 "$(grep -cE '(get|set) ' <<<"$output")"
done
output_has 'eth1.service-set        get set  kind of network: infrastructure or ad-hoc'
at_terminal 40 100 'velkctl list' $plain
output_has 'eth1.service-set        get set  kind...'

it 'cuts reasons at the width of the terminal, but no value'
script='velkctl set --quiet location "a text that is longer than forty columns, and not cut" && rm /etc/dhclient-exit-hooks
    sed -i "/iface eth0/d" /etc/network/interfaces; velkctl show'
at_terminal 40 100 "$script" $plain
output_has 'location                a text that is longer than forty columns, and not cut'
output_has '4 settings cannot be read: /etc/netw...:'
output_has '
  eth0.method eth0.address eth0.netmask
  eth0.gateway'
output_has 'eth0.apipa              (/etc/dhclie...)'
check 'only values are wider' 'location web-update eth0.mac-address eth0.dns eth1.dns' \
    "$(awk 'length($0) > 40 { print $1 }' <<<"$output" | xargs)"
at_terminal 80 100 "$script" $plain
check 'lines of at most 80 columns' yes "$([ "$(widest)" -le 80 ] && echo yes)"

it 'breaks the lines of other texts at the width of the terminal, but no command'
for verb in '--help' 'help set' 'describe eth1.encryption' status; do
    at_terminal 40 100 "velkctl $verb" $plain
    check "wide lines of $verb" '' "$(awk 'length($0) > 40 && !/^ +(example: )?velkctl /' <<<"$output")"
done
output_has 'name              configured
    running'
at_terminal 40 100 'velkctl describe eth1.encryption' $plain
output_has '
  the wireless daemon defines the
      meaning of 1, 3 and 4; see its
      manual'
output_has '
  example: velkctl set eth1.encryption 1'

it 'shows each value as soon as it is read, unless the output goes through a pager'
on_device sh -c 'wland --tell silent; velkctl show ntp eth1.ssid >/tmp/shown & show=$!
    while ! grep -q "^ntp" /tmp/shown; do sleep 0.1; done; kill "$show"; wait; cat /tmp/shown'
output_is 'The device:
ntp        on

eth1, the wireless adapter:'

it 'cuts nothing if standard output is no terminal'
at_terminal 40 100 'velkctl list eth0 | cat; velkctl list eth0 >/tmp/listed; cat /tmp/listed'
check 'whole lines' 2 "$(grep -c 'take DNS servers from DHCP: on or off$' <<<"$output")"

# ---- the height of a terminal ------------------------------------------------------------------
it 'shows a long output through the pager'
pager='PAGER=sed s/^/page:/'
at_terminal 80 24 'velkctl list' "$pager" $plain
check 'lines of the pager' 49 "$(grep -c '^page:' <<<"$output")"
at_terminal 80 24 'velkctl show' "$pager" $plain
output_has 'page:eth0.address            192.168.0.10'
status_is 0

it 'shows an output that fits, and one to a file, without the pager'
at_terminal 80 60 'velkctl list' "$pager"
check 'lines of the pager' 0 "$(grep -c page: <<<"$output")"
at_terminal 80 10 'velkctl list | cat; velkctl list --json; velkctl list --help' "$pager"
check 'lines of the pager' 0 "$(grep -c page: <<<"$output")"

it 'shows a long output without the pager if the user wants none'
for none in PAGER=cat PAGER=; do
    at_terminal 80 10 'velkctl list' "$none" $plain
    check "settings with $none" 44 "$(grep -cE '(get|set) ' <<<"$output")"
done
at_terminal 80 10 'velkctl list --no-pager; velkctl show --no-pager' "$pager"
check 'lines of the pager' 0 "$(grep -c page: <<<"$output")"

it 'prints the output itself if the pager fails'
at_terminal 80 10 'velkctl list' PAGER=/nonexistent $plain
check 'settings' 44 "$(grep -cE '(get|set) ' <<<"$output")"
status_is 0

it 'waits for a pager that does not read to the end'
at_terminal 80 10 'velkctl show; echo status $?' 'PAGER=head -n 1; sleep 0.2; echo left' $plain
output_is 'The device:
left
status 0'

it 'uses less, which may start no other program and knows the characters of the caller'
at_terminal 80 10 'mkdir /tmp/bin
    printf "%s\n" "#!/bin/sh" "echo less \$* \$LESSSECURE \$LESSCHARSET; cat" >/tmp/bin/less; chmod +x /tmp/bin/less
    less=$(readlink -f "$(command -v less)"); mount --bind /tmp/bin/less "$less"
    velkctl list | head -n 1; velkctl list; LC_ALL=C.UTF-8 velkctl list' $plain
check 'runs of less' 'less -FRX 1
less -FRX 1 utf-8' "$(grep ^less <<<"$output")"

# ---- colours -----------------------------------------------------------------------------------
it 'colours headings, reasons, and the words of problems and warnings at a terminal'
script='velkctl show; rm /var/cron/tabs/root; velkctl doctor; velkctl get ntp'
at_terminal 80 100 "$script" NO_COLOR=
output_has '<esc>[1meth0, the wired port:<esc>[0m'
output_has '<esc>[33m8 settings need the cable out:<esc>[0m'
output_has '<esc>[31mproblem<esc>[0m: ntp'
output_has '<esc>[31mvelkctl:<esc>[0m ntp: could not be read'
at_terminal 80 100 'velk-sandbox adapter out; velkctl doctor'
output_has '<esc>[33mwarning<esc>[0m: '

it 'uses no colours with NO_COLOR, on a dumb or unknown terminal, and in a file'
for type in NO_COLOR=1 TERM=dumb TERM=; do
    at_terminal 80 100 "$script" "$type"
    check "escapes with $type" 0 "$(grep -c '<esc>' <<<"$output")"
done
at_terminal 80 100 "unset TERM; $script"
check 'escapes without TERM' 0 "$(grep -c '<esc>' <<<"$output")"
on_device env TERM=linux sh -c "$script"
check 'escapes in files' 0 "$(printf '%s' "$output$error" | grep -c "$(printf '\033')")"

finish
