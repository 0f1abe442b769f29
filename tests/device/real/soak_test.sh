# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# soak_test.sh - sends random requests from several processes and checks the state of the device.
# VELK_SOAK_SECONDS and VELK_SOAK_SEED set duration and seed. The seed is printed.
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

seconds=${VELK_SOAK_SECONDS:-20}
seed=${VELK_SOAK_SEED:-$((RANDOM * 32768 + RANDOM))}
echo "seed $seed, $seconds seconds"

# The address sanitizer keeps freed memory, which would count as a leak.
export ASAN_OPTIONS=quarantine_size_mb=1

files='/etc/network/interfaces /etc/dhclient.conf /etc/dhclient-exit-hooks /sbin/dhclient-script
    /etc/resolv.dnsmasq.conf /var/cron/tabs/root /var/libvelk/libvelk'
# Each edit replaces this file, so its inode changes.
agents_file=/usr/local/share/etc/snmp/snmpd.conf

# shellcheck disable=SC2009  # names, not numbers
processes() { ps -eo comm= | grep -vxE 'bash|ps|grep|sort' | sort; }
# shellcheck disable=SC2086  # one word per file
facts() { stat -c '%n %i %u:%g %a' $files && stat -c '%n %u:%g %a' $agents_file; }
is_quiet() { [ "$processes_before" = "$(processes)" ]; }
results() { sed -n "s/^$1: //p" <<<"$soak"; }

# The sets only change existing address lines. A static interface without an address is not valid.
sed -i '/^iface eth1/a \\taddress 192.168.1.10\n\tnetmask 255.255.255.0' /etc/network/interfaces

# Requesting an option a second time adds it to the next statement in the block, too. Only a request
# statement stays valid with it.
sed -i '/send dhcp-client-identifier/d' /etc/dhclient.conf

# Releases the lease, so that the address of the adapter is removed.
run ifdown eth1
processes_before=$(processes)
sockets_before=$(find /tmp -type s | sort)
semaphores_before=$(ls /dev/shm)
facts_before=$(facts)

# Meanwhile the cable is disconnected and connected again and again.
while sleep 1; do
    velk-sandbox cable out
    sleep 0.5
    velk-sandbox cable in
done &
cable_loop=$!

it 'answers thousands of requests with known results and constant memory'
run "$VELK_BUILD/tests/device/soak" "$seconds" "$seed"
status_is 0
soak=$output
grep soak <<<"$error"
echo "$soak" | paste -s -d ' '
total=$(awk '{ sum += $2 } END { print sum + 0 }' <<<"$soak")
check "requests: $total" yes "$([ "$total" -ge 2000 ] && echo yes || echo no)"
for result in 0 -1 -3 -4; do
    check "results $result: $(results $result)" yes "$([ "$(results $result)" -gt 0 ] && echo yes || echo no)"
done
kill "$cable_loop"
wait "$cable_loop" 2>/dev/null
velk-sandbox cable in

it 'leaves no process running'
run ifdown --force eth1
pkill dhclient
soon is_quiet
check 'processes' "$processes_before" "$(processes)"

it 'leaves only empty edit copies, of refused switches, which the next set removes'
run find /var/tmp -type f -size +0
output_is ''
for setting in eth0.method=static eth0.apipa=on ntp=on; do
    run velkctl set "${setting%=*}" "${setting#*=}"
    status_is 0
done

it 'leaves no lock, socket, semaphore or edit copy'
for lock in /var/tmp/vklib_lock /var/tmp; do
    run flock -n $lock true
    status_is 0
done
check 'files' 'vklib_lock' "$(ls -A /var/tmp)"
check 'sockets' "$sockets_before" "$(find /tmp -type s | sort)"
check 'semaphores' "$semaphores_before" "$(ls /dev/shm)"

it 'keeps inode, owner and mode of each file'
check 'facts' "$facts_before" "$(facts)"

it 'leaves an interfaces file that is valid for ifupdown'
run ifquery --list
status_is 0
output_is 'lo
eth0
eth1'
for interface in eth0 eth1; do
    run ifup --no-act --force $interface
    status_is 0
done

it 'leaves hooks and a client script that are valid for the shell'
run sh -n /etc/dhclient-exit-hooks
status_is 0
run sh -n /sbin/dhclient-script
status_is 0

it 'leaves a crontab that is valid for cron'
run crontab -n /var/cron/tabs/root
status_is 0

it 'leaves a resolver file that is valid for the forwarder'
# Makes the router reachable after any last restart. The sleep lets the forwarder notice the change:
# it compares times in seconds.
velk-sandbox cable in
ip link set eth0 up
ip addr replace 192.168.0.10/24 dev eth0
sleep 1
velkctl set eth0.dns 192.168.0.1
soon getent ahostsv4 router.example
run grep -vE '^nameserver [0-9.]+$' /etc/resolv.dnsmasq.conf
output_is ''

it 'leaves a settings file and an agent with the same value'
run velkctl set location cellar
status_is 0
run snmpget -v2c -c public -Oqv -t 1 -r 5 127.0.0.1 1.3.6.1.2.1.1.6.0
output_is '"cellar"'

it 'leaves a DHCP client that gets a lease'
velkctl set eth0.method static
velkctl set eth0.method dhcp
velkctl set eth0.link-speed auto
velk-sandbox adapter out
run velkctl restart eth0
status_is 0
soon has_lease eth0 0
run grep -iE 'syntax|parse|error|semicolon' /var/log/syslog/syslog_info.log.0
output_is ''

it 'leaves a wireless daemon that answers'
velk-sandbox adapter in
velk-sandbox cable out
run velkctl get eth1.signal
status_is 0

finish
