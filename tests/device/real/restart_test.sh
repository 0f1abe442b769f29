# restart_test.sh - a restart of the wireless interface, in each situation, with the daemon's view.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit
[ -x "$VELK_BUILD/wland" ] || skip 'no wireless daemon here'

log=/var/log/syslog/syslog_info.log.0

# The daemon that the device comes with makes room for one that notes every request.
talk_to_noting_daemon() {
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

# Restarts with a fresh log, and waits until the log's own daemon has written all of it.
restart() {
    forget
    run velkctl restart eth1 "$@"
    logger all-written
    wait_until grep -q all-written "$log"
}

talk_to_noting_daemon

it 'with the cable in: takes the interface down and up, without address, and tells the daemon nothing'
restart
status_is 0
check 'messages' 0 "$(messages)"
check 'privileged commands' '/usr/sbin/ifdown eth1
/usr/sbin/ifconfig eth1 up' "$(privileged)"
check 'address' '' "$(kernel_address eth1)"
check 'flag' UP "$(ip -br link show eth1 | grep -ow UP | head -n 1)"

it 'with the cable in and only a notice: does nothing at all'
restart --notify-only
status_is 0
check 'messages' 0 "$(messages)"
check 'privileged commands' '' "$(privileged)"

velk-sandbox cable out

it 'with the cable out: takes the interface down and up in the background, and tells the daemon'
restart
status_is 0
soon has_lease eth1 1
check 'messages' 1 "$(messages)"
check 'privileged commands' '/usr/sbin/ifdown eth1
/usr/sbin/ifup eth1' "$(privileged)"

it 'with the cable out and only a notice: tells the daemon, and leaves the interface alone'
before=$(kernel_address eth1)
restart --notify-only
status_is 0
check 'messages' 1 "$(messages)"
check 'privileged commands' '' "$(privileged)"
check 'address' "$before" "$(kernel_address eth1)"

it 'with the cable out: gives up the old lease for a new one'
forget_router_log
restart
status_is 0
soon has_lease eth1 1
check 'leases given up' 1 "$(grep -c 'DHCPRELEASE(r1)' /var/log/router.log)"
check 'leases taken' 1 "$(grep -c 'DHCPACK(r1)' /var/log/router.log)"

it 'without a daemon: fails, but restarts the interface'
daemon=$(cat /run/velk-sandbox/wland.pid)
kill "$daemon"
wait_until daemon_is_gone "$daemon"
restart
status_is 1
soon has_lease eth1 1

it 'without an adapter: does nothing at all, whatever is wanted'
velk-sandbox adapter out
for option in '' --notify-only; do
    # shellcheck disable=SC2086  # no word for none
    restart $option
    status_is 4
    check 'privileged commands' '' "$(privileged)"
done

finish
