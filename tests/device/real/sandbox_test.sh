# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# sandbox_test.sh - the simulated device with the system's own tools (--real).
# shellcheck shell=bash
# shellcheck disable=SC2317  # functions are called by name
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
lib_reason=$(velk-sandbox --quiet --real -- true 2>&1) || skip "no real device here: $lib_reason"

name=real.$$
mark=$((300000 + $$)) # for a `sleep` that is recognised among all processes

on_real_device() { run velk-sandbox --quiet --real -- sh -c "$1"; }
yes_if() { "$@" >/dev/null 2>&1 && echo yes || echo no; }

it 'requires root, and says so even if its folder cannot be read'
mkdir -m 755 "$lib_folder/program"
install -m 755 "$(command -v velk-sandbox)" "$lib_folder/program"
run env -C "$lib_folder/program" setpriv --reuid 65534 --regid 65534 --clear-groups ./velk-sandbox --real -- true
status_is 125
error_is 'velk-sandbox: --real needs the rights of root
  fix: run it with sudo'

it 'accepts --no-router only with --real'
run velk-sandbox --no-router -- true
status_is 2

starts_within 1000 --real --no-router
starts_within 1000 --real

it 'cannot set the clock'
for set in CapEff CapPrm CapBnd; do
    on_real_device "sed -n 's/^$set:\t//p' /proc/self/status"
    check "CAP_SYS_TIME in $set" 0 "$((0x$output >> 25 & 1))"
    on_real_device "sudo sed -n 's/^$set:\t//p' /proc/self/status"
    check "CAP_SYS_TIME in $set with sudo" 0 "$((0x$output >> 25 & 1))"
done

it 'is a device on which the doctor finds nothing'
on_real_device 'velkctl doctor'
status_is 0
output_is 'no problems found'

it 'runs its services and reaches gateway, name server and time server'
on_real_device 'for program in cron dnsmasq snmpd "busybox syslogd"; do pgrep -f "^$program" >/dev/null && echo $program; done
    ip -4 -o addr show eth0 | grep -o "192.168.0.10/24"; ip route show default | cut -d " " -f 3
    ping -c 1 -W 2 192.168.0.1 >/dev/null && echo pong
    getent ahostsv4 router.example | head -n 1 | cut -d " " -f 1
    ntpdate -u 192.168.0.1 | grep -o "adjust time server 192.168.0.1"'
output_is 'cron
dnsmasq
snmpd
busybox syslogd
192.168.0.10/24
192.168.0.1
pong
192.168.0.1
adjust time server 192.168.0.1'

it 'runs its services also if the search path of the caller lacks the system folders'
run env PATH="$VELK_BUILD:/usr/bin:/bin" velk-sandbox --quiet --real -- pgrep -x 'cron|snmpd' -c
status_is 0
output_is 2
error_is ''

it 'changes nothing of the machine'
listing() { find /etc /usr/sbin /var/lib -maxdepth 1 -printf '%p %s %t\n' | sort; }
before=$(listing)
on_real_device 'echo mine >/etc/velk-mine && rm /usr/sbin/ethtool /etc/passwd && mkdir /var/lib/velk-mine &&
    mknod /dev/velk-mine c 1 3 && ls /etc/velk-mine'
status_is 0
output_is /etc/velk-mine
check 'folders of the machine' "$before" "$(listing)"
check 'devices of the machine' no "$(yes_if test -e /dev/velk-mine)"

it 'can remove files of other file systems than that of the root folder'
run unshare --mount sh -c 'mount --bind /usr/sbin /usr/sbin &&
    velk-sandbox --quiet --real -- rm /usr/sbin/ethtool'
status_is 0
error_is ''

it 'has private device nodes only: no disk of the machine'
dev_is_private --real log

it 'limits the size of all changes'
on_real_device 'echo $(($(stat -f -c "%b * %S" /))) $(($(stat -f -c "%b * %S" /tmp))) $(stat -f -c %c /)'
output_is '536870912 67108864 131072'

it 'keeps the folder of --writable writable'
run velk-sandbox --quiet --real --writable "$lib_folder" -- sh -c 'echo kept >"$1"/file' sh "$lib_folder"
status_is 0
check 'file' kept "$(cat "$lib_folder/file")"

it 'replaces its own files by those of --rootfs'
mkdir -p "$lib_folder/files/etc/network"
printf '%s\n' 'auto lo' 'iface lo inet loopback' 'iface eth0 inet static' 'address 192.168.0.20' \
    'netmask 255.255.255.0' >"$lib_folder/files/etc/network/interfaces"
run velk-sandbox --quiet --real --rootfs "$lib_folder/files" -- sh -c 'ip -4 -o addr show eth0; cat /etc/resolv.conf'
output_has 192.168.0.20/24
output_has 'nameserver 127.0.0.1'

it 'connects and disconnects cable, adapter and router from another terminal'
velk-sandbox --quiet --real --name "$name" -- sleep "$mark" &
device=$!
wait_until velk-sandbox enter --name "$name" -- pgrep -x sleep
answers() { velk-sandbox enter --name "$name" -- ping -c 1 -W 1 192.168.0.1; }
check 'gateway at first' yes "$(yes_if answers)"
for part in cable router; do
    run velk-sandbox $part out --name "$name"
    status_is 0
    check "gateway with the $part out" no "$(yes_if answers)"
    run velk-sandbox $part in --name "$name"
    status_is 0
    check "gateway with the $part in" yes "$(yes_if answers)"
done
run velk-sandbox adapter out --name "$name"
status_is 0
run velk-sandbox enter --name "$name" -- velkctl get eth1.mac-address
status_is 4
run velk-sandbox adapter in --name "$name"
status_is 0
run velk-sandbox enter --name "$name" -- velkctl get eth1.mac-address
status_is 5

it 'runs commands on the router'
run velk-sandbox enter --name "$name" -- ip netns exec router ping -c 1 -W 2 192.168.0.10
status_is 0

it 'ends all its processes when it is killed'
namespace=$(velk-sandbox enter --name "$name" -- readlink /proc/self/ns/net)
in_namespace() { readlink /proc/[0-9]*/ns/net 2>/dev/null | grep -cxF "$namespace"; }
is_empty() { [ "$(in_namespace)" = 0 ]; }
check 'processes on its network before' yes "$(yes_if [ "$(in_namespace)" -gt 5 ])"
kill -KILL "$device"
wait "$device" 2>/dev/null
wait_until is_empty
check 'processes on its network' 0 "$(in_namespace)"
check 'processes with its command' no "$(yes_if pgrep -fx "sleep $mark")"
check 'interfaces of the machine' 0 "$(ip -o link | grep -cE ': (eth1|r0|r1):')"
check 'mounts of the machine' 0 "$(grep -c ' velk ' /proc/self/mountinfo)"

finish
