# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# restart_test.sh - restarts of the wireless interface in each state, and the messages to the daemon.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit
[ -x "$VELK_BUILD/wland" ] || skip 'the wireless daemon wland is not built'

log=/var/log/syslog/syslog_info.log.0

# Replaces the device's daemon by one that logs every request.
start_logging_daemon() {
    local daemon
    daemon=$(cat /run/velk-sandbox/wland.pid)
    kill "$daemon"
    wait_until daemon_is_gone "$daemon"
    wland --verbose --background --pid-file /run/velk-sandbox/wland.pid
}
daemon_is_gone() { ! kill -0 "$1"; }

forget() { busybox truncate -s 0 "$log"; }
messages() { grep -c 'wland.*: the wireless interface was restarted' "$log"; }
privileged() { sed -n 's/.* sudo: .*COMMAND=//p' "$log" | grep -v ethtool; }

# Restarts with an empty log, and waits until syslogd has written all lines.
restart() {
    forget
    run velkctl restart eth1 "$@"
    logger all-written
    wait_until grep -q all-written "$log"
}

start_logging_daemon

it 'cable connected: takes the interface down and up without an address, no message to the daemon'
restart
status_is 0
check 'messages' 0 "$(messages)"
check 'privileged commands' '/usr/sbin/ifdown eth1
/usr/sbin/ifconfig eth1 up' "$(privileged)"
check 'address' '' "$(kernel_address eth1)"
check 'flag' UP "$(ip -br link show eth1 | grep -ow UP | head -n 1)"

it 'cable connected, --notify-only: does nothing'
restart --notify-only
status_is 0
check 'messages' 0 "$(messages)"
check 'privileged commands' '' "$(privileged)"

velk-sandbox cable out

it 'cable disconnected: takes the interface down and up in the background, with a message to the daemon'
restart
status_is 0
soon has_lease eth1 1
check 'messages' 1 "$(messages)"
check 'privileged commands' '/usr/sbin/ifdown eth1
/usr/sbin/ifup eth1' "$(privileged)"

it 'cable disconnected, --notify-only: sends a message to the daemon, interface unchanged'
before=$(kernel_address eth1)
restart --notify-only
status_is 0
check 'messages' 1 "$(messages)"
check 'privileged commands' '' "$(privileged)"
check 'address' "$before" "$(kernel_address eth1)"

it 'cable disconnected: releases the old lease and gets a new one'
forget_router_log
restart
status_is 0
soon has_lease eth1 1
check 'leases given up' 1 "$(grep -c 'DHCPRELEASE(r1)' /var/log/router.log)"
check 'leases taken' 1 "$(grep -c 'DHCPACK(r1)' /var/log/router.log)"

it 'no daemon: fails, but restarts the interface'
daemon=$(cat /run/velk-sandbox/wland.pid)
kill "$daemon"
wait_until daemon_is_gone "$daemon"
restart
status_is 1
soon has_lease eth1 1

it 'no adapter: does nothing, with and without --notify-only'
velk-sandbox adapter out
for option in '' --notify-only; do
    # shellcheck disable=SC2086  # empty: no argument
    restart $option
    status_is 4
    check 'privileged commands' '' "$(privileged)"
done

finish
