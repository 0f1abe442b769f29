# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# restart_result_test.sh - the answer of a restart: the address of the interface, or the reason for none.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

# Prints the running programs that a restart starts, and the DHCP clients.
at_work() {
    local name
    for name in ifup sudo dhclient; do
        pgrep --list-name --runstates D,R,S,T --exact "$name"
    done
}
nothing_at_work() { [ -z "$(at_work)" ]; }

it 'prints the address that a cable keeps the wireless interface from'
run velkctl restart eth1
status_is 0
error_is ''
output_is 'eth1: up, without an address while the cable is in'

velk-sandbox adapter out # a wired restart with an adapter takes more than a minute

it 'prints a new static address'
run velkctl set eth0.address 192.168.0.99
run velkctl restart eth0
status_is 0
error_is ''
output_is 'eth0: 192.168.0.99 (static)'
check 'address' 192.168.0.99/24 "$(kernel_address eth0)"

it 'shows the output of working tools only with --verbose'
run velkctl set eth0.address 192.168.0.98
run velkctl restart eth0 --verbose
status_is 0
error_has 'velkctl: restart of eth0: Error: ipv4: Address not found.'

it 'prints nothing with --quiet'
run velkctl restart eth0 --quiet
status_is 0
error_is ''
output_is ''

it 'reports an address that is not the configured one'
printf '%s\n' '#!/bin/sh' "exit 0" >/tmp/nothing
chmod +x /tmp/nothing
run velkctl set eth0.address 192.168.0.77
mount --bind /tmp/nothing "$(readlink -f /usr/sbin/ifup)"
run velkctl restart eth0
umount "$(readlink -f /usr/sbin/ifup)"
status_is 6
output_is ''
error_is "velkctl: eth0: up, but its address is 192.168.0.98
  its configured address is 192.168.0.77
  fix: 'velkctl doctor' looks for the cause"

it 'reports a failure of ifup with its messages'
run velkctl set eth0.address 192.168.0.10
sed -i 's/^\taddress 192.168.0.10/\taddress 192.168.0.400/' /etc/network/interfaces
run velkctl restart eth0
status_is 6
error_has 'velkctl: restart of eth0: ifup: failed to bring up eth0'
error_has 'velkctl: eth0: ifup failed'
sed -i 's/192.168.0.400/192.168.0.10/' /etc/network/interfaces

it 'prints the address of a lease'
run velkctl set eth0.method dhcp
run velkctl restart eth0
status_is 0
error_is ''
check 'output' yes "$(grep -qxE 'eth0: 192\.168\.0\.1[0-9]{2} from DHCP' <<<"$output" && echo yes)"

it 'reports a missing lease with the messages of the client, none of them dropped'
velk-sandbox router out
run velkctl restart eth0
status_is 6
output_is ''
error_has 'velkctl: restart of eth0: No DHCPOFFERS received.
velkctl: restart of eth0: No working leases in persistent database - sleeping.
velkctl: eth0: up, but it has no address
  no DHCP server answered
  fix: start one, then run '"'velkctl restart eth0'"' again'
check 'banners of two runs of the client' 2 "$(grep -c 'For info, please visit' <<<"$error")"

it 'answers with the state of the interface'
run velkctl restart eth0 --json
status_is 6
check 'state' '{"up":true,"address":null,"source":"dhcp"}' "$(jq -c .state <<<"$output")"

it 'ends all that a restart started at the timeout'
before=$(pgrep dhclient)
run velkctl restart eth0 --timeout 3
status_is 7
error_has 'velkctl: eth0: could not be restarted
  no answer after 3 s; waited for ifup eth0; restart of eth0 may be incomplete
  fix: run it again with a longer --timeout'
check 'a client from before' yes "${before:+yes}"
check 'processes at work' '' "$(at_work)"
check 'lock' free "$(flock --nonblock /var/tmp/vklib_lock echo free)"

it 'ends all that a restart started at a signal'
velkctl restart eth0 2>/tmp/errors &
wait_until pgrep -x ifup
kill -TERM $!
wait $!
check 'status' 143 $?
check 'message' 'velkctl: interrupted; restart of eth0 may be incomplete; run it again' \
    "$(grep interrupted /tmp/errors)"
check 'processes at work' '' "$(at_work)"

it 'names the processes that an ordinary user cannot end'
echo 'nobody ALL=(ALL) NOPASSWD: ALL' >/etc/sudoers.d/nobody
chmod 440 /etc/sudoers.d/nobody
chmod 666 /var/tmp/vklib_lock
# An ordinary user may not be able to look into the build folder.
mkdir -m 755 /tmp/programs
install -m 755 -t /tmp/programs "$VELK_BUILD"/{velkctl,libvelk.so.1}
run env LD_LIBRARY_PATH=/tmp/programs setpriv --reuid nobody --regid nogroup --clear-groups \
    /tmp/programs/velkctl restart eth0 --timeout 3
status_is 7
error_has 'velkctl: restart of eth0: some programs could not be ended and are still running
  process '
error_has "'dhclient -4 "
check 'advice' yes \
    "$(grep -qE '^  fix: wait for their end, or end them: sudo kill( [0-9]+)+$' <<<"$error" && echo yes)"
numbers=$(sed -n 's/.*end them: sudo kill //p' <<<"$error")
# shellcheck disable=SC2086  # the numbers of processes of this device
kill -KILL $numbers
soon nothing_at_work

velk-sandbox router in
velk-sandbox adapter in
velk-sandbox cable out

it 'names the cable as the reason for no address'
run velkctl restart eth0
status_is 6
error_has 'velkctl: eth0: up, but it has no address
  no link: the cable is out
  fix: plug the cable in, then run '"'velkctl restart eth0'"' again'

it 'waits for the lease of the wireless interface'
run velkctl restart eth1
status_is 0
error_is ''
check 'output' yes "$(grep -qxE 'eth1: 192\.168\.1\.1[0-9]{2} from DHCP' <<<"$output" && echo yes)"
check 'ifup' '' "$(pgrep -x ifup)"

it 'leaves the DHCP client of another interface at work at the timeout'
client=$(pgrep -f 'dhclient.*eth1')
velk-sandbox router out
run velkctl restart eth0 --timeout 3
status_is 7
check 'client of eth1' "$client" "$(pgrep -f dhclient)"

finish
