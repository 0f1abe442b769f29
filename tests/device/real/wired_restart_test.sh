# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# wired_restart_test.sh - a restart of the wired port with the adapter connected. It takes over a minute.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

log=/var/log/syslog/syslog_info.log.0
has_address() { [ "$(kernel_address eth0)" = 192.168.0.55/24 ]; }
privileged() { sed -n 's/.* sudo: .*COMMAND=//p' "$log" | grep -v ethtool; }

it 'restarts only the wired port, in about seven seconds, while the cable is disconnected'
velk-sandbox cable out
busybox truncate -s 0 "$log"
SECONDS=0
run velkctl restart eth0
took=$SECONDS
status_is 0
check "took $took seconds" yes "$([ "$took" -ge 6 ] && [ "$took" -le 8 ] && echo yes || echo no)"
check 'privileged commands' '/usr/sbin/ifdown eth0
/usr/sbin/ifup eth0' "$(privileged)"

it 'restarts the wired port at once, and the wireless one twice, at intervals of half a minute'
velk-sandbox cable in
busybox truncate -s 0 "$log"
forget_router_log
velkctl set eth0.address 192.168.0.55
SECONDS=0
velkctl restart eth0 >"$lib_folder/restart" 2>&1 &
restart=$!
soon has_address

it 'refuses a set during the restart, and answers a get'
run velkctl set location cellar
status_is 3
run velkctl get location
status_is 0
output_is 'Second floor, by the window'

it 'ends after a little more than a minute'
wait "$restart"
status=$?
took=$SECONDS
status_is 0
check "took $took seconds" yes "$([ "$took" -ge 66 ] && [ "$took" -le 76 ] && echo yes || echo no)"
check 'privileged commands' '/usr/sbin/ifdown eth0
/usr/sbin/ifup eth0
/usr/sbin/ifdown eth1
/usr/sbin/ifup eth1
/usr/sbin/ifdown eth1
/usr/sbin/ifup eth1' "$(privileged)"
check 'leases of the wireless port' 2 "$(grep -c 'DHCPACK(r1)' /var/log/router.log)"
soon has_lease eth1 1
check 'address of the wired port' 192.168.0.55/24 "$(kernel_address eth0)"

it 'accepts sets again'
run velkctl set location cellar
status_is 0

finish
