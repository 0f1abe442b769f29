# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# outside_test.sh - access to a running device from other terminals of the machine.
# Root runs it a second time as an ordinary user, from a copy that this user can read.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox
[ ! -e /run/velk-sandbox ] || skip 'this machine is itself a simulated device'

this_file=$(realpath "$0")
name=outside.$$

# Starts a device with a long command, and waits until the command runs.
start_device() { # start_device NAME OPTION...
    velk-sandbox --quiet --name "$@" -- sh -c 'trap "exit 0" TERM; echo ready >/tmp/ready; sleep 60 & wait' &
    device=$!
    wait_until velk-sandbox enter --name "$1" -- test -e /tmp/ready
}
end_device() {
    kill -KILL "$device"
    wait "$device" 2>/dev/null
}
inside() { run velk-sandbox enter --name "$name" -- "$@"; }
is_listed() { velk-sandbox list | grep -qx "$1" && echo listed || echo not; }

# Runs a shell line in a new network namespace, where no other device is visible.
alone() {
    local root=--map-root-user
    [ "$(id -u)" != 0 ] || root=
    # shellcheck disable=SC2086  # empty for root
    run unshare $root --net bash -c "$1"
}

it 'reports that no device is running, or none of that name'
for arguments in 'cable in' 'adapter out' 'router in' 'enter' 'watch'; do
    alone "velk-sandbox $arguments"
    status_is 125
    error_is 'velk-sandbox: no device is running
  fix: start one with velk-sandbox'
    # shellcheck disable=SC2086  # words
    run velk-sandbox $arguments --name "$name.none"
    status_is 125
    error_is "velk-sandbox: no device named $name.none is running
  fix: see the names with velk-sandbox list"
done

it 'reaches the only device without a name, and requires one if there are several'
alone 'velk-sandbox --quiet -- sleep 60 & one=$!
    until velk-sandbox enter -- true; do sleep 0.05; done 2>/dev/null
    velk-sandbox list; velk-sandbox enter -- hostname
    velk-sandbox --quiet --name two -- sleep 60 & two=$!
    until velk-sandbox enter --name two -- true; do sleep 0.05; done 2>/dev/null
    velk-sandbox list; velk-sandbox cable out; echo $?
    kill -KILL $one $two'
output_is '1
velk
1
two
125'
error_has 'velk-sandbox: several devices are running: 1, two
  fix: choose one with --name'

it 'refuses a name in use, and names that are not valid'
start_device "$name"
check 'name' listed "$(is_listed "$name")"
run velk-sandbox --quiet --name "$name" -- true
status_is 125
error_is "velk-sandbox: a device named $name is already running
  fix: choose another name with --name"
for bad in 'a/b' 'a b' "$(printf '%33s' '' | tr ' ' x)"; do
    run velk-sandbox --quiet --name "$bad" -- true
    status_is 125
    error_has "'$bad' is not a valid name"
done

it 'escapes control characters and characters that the locale lacks'
run velk-sandbox enter --name $'\e[31mä\tb\n\xe2\x80\xaec'
status_is 125
error_has "'\\x1b[31m\\xc3\\xa4	b\\x0a\\xe2\\x80\\xaec' is not a valid name"
run env LC_ALL=C.UTF-8 velk-sandbox enter --name $'\e[31mä\tb\n\xe2\x80\xaec'
error_has "'\\x1b[31mä	b\\x0a\\xe2\\x80\\xaec' is not a valid name"

it 'connects and disconnects cable and adapter from outside'
for position in out in; do
    run velk-sandbox cable $position --name "$name"
    status_is 0
    inside sh -c 'ethtool eth0 | sed -n "s/.*Link detected: //p"'
    output_is "$([ $position = in ] && echo yes || echo no)"
done
for position in out in; do
    run velk-sandbox adapter $position --name "$name"
    status_is 0
    inside grep -c Driver=wlan /proc/bus/usb/devices
    output_is "$([ $position = in ] && echo 1 || echo 0)"
done

it 'reports that the device has no router'
run velk-sandbox router in --name "$name"
status_is 125
error_is 'velk-sandbox: this device has no router
  fix: start the device with --real'

it 'enters the device: same files, network and processes, and no right to set the clock'
inside sh -c 'hostname; id -u; cat /tmp/ready; velkctl set location attic; pwd
    cat /proc/1/comm; cat /sys/class/net/eth0/address'
status_is 0
output_is "velk
0
ready
$(pwd)
velk-sandbox
02:00:00:00:00:10"
inside velkctl get location
output_is attic
for set in CapEff CapBnd; do
    inside sed -n "s/^$set:\t//p" /proc/self/status
    check "CAP_SYS_TIME in $set" 0 "$((0x$output >> 25 & 1))"
done

it 'returns the exit status of the entered command'
inside sh -c 'exit 7'
status_is 7
inside sh -c 'kill -KILL $$'
status_is 137
inside no-such-program
status_is 127

it 'enters a command without --, with its options unchanged'
run velk-sandbox enter --name "$name" printf '%s|' --name -- x
status_is 0
output_is '--name|--|x|'
run velk-sandbox enter "--name=$name" no-such-program
status_is 127
error_is 'velk-sandbox: no-such-program: No such file or directory
  fix: give a program that the device has, or see velk-sandbox --help'

it 'explains that an entered program is hidden by a private folder'
run velk-sandbox enter --name "$name" /tmp/folder/program
status_is 127
error_is "velk-sandbox: /tmp/folder/program: No such file or directory
  the device has a /tmp of its own
  fix: start the device in the program's folder, or with
    --writable /tmp/folder"

it 'prints each change of a file'
velk-sandbox watch --name "$name" >"$lib_folder/watched" 2>"$lib_folder/watch-errors" &
watcher=$!
wait_until grep -q watching "$lib_folder/watch-errors"
inside velkctl set eth0.dns 10.9.8.7
wait_until grep -q '^+nameserver' "$lib_folder/watched"
inside velkctl set ntp-server time.example
wait_until grep -q '^+0 \*' "$lib_folder/watched"
check 'changes' '--- /etc/resolv.dnsmasq.conf
+++ /etc/resolv.dnsmasq.conf	TIME
@@ -1,2 +1 @@
-nameserver 192.168.0.1
-nameserver 192.168.0.2
+nameserver 10.9.8.7
--- /var/cron/tabs/root
+++ /var/cron/tabs/root	TIME
@@ -1,3 +1,3 @@
-0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log
+0 * * * * /usr/bin/ntpdate -u time.example > /var/libvelk/ntp.log
 15 3 * * * /usr/sbin/logrotate /etc/logrotate.conf
 30 01 * * 0 perl /usr/bin/web_contents_updater.pl' \
    "$(sed -E 's/\t[0-9]{2}:[0-9]{2}:[0-9]{2}$/\tTIME/' "$lib_folder/watched")"

it 'prints files that are made and removed'
inside sh -c 'echo one >/var/libvelk/ntp.log'
wait_until grep -q '^+one' "$lib_folder/watched"
inside rm /var/libvelk/ntp.log
wait_until grep -q '^-one' "$lib_folder/watched"
check 'added and removed line' '+one -one' "$(grep '^.one' "$lib_folder/watched" | paste -s -d ' ')"

it 'escapes control characters in files and in their names'
inside sh -c 'printf "\033[31mred\tand\0more\r\n" >"$(printf "/var/libvelk/a\033[1m\nb")"'
wait_until grep -q red "$lib_folder/watched"
check 'change' '--- /var/libvelk/a\x1b[1m\x0ab
+++ /var/libvelk/a\x1b[1m\x0ab	TIME
@@ -0,0 +1 @@
+\x1b[31mred	and\x00more\x0d' "$(tail -n 4 "$lib_folder/watched" | sed -E 's/\t[0-9]{2}:[0-9]{2}:[0-9]{2}$/\tTIME/')"

it 'ends entered commands when it is killed, and frees its name'
velk-sandbox enter --name "$name" -- sh -c 'echo >/tmp/entered; exec sleep 60' 2>/dev/null &
entered=$!
wait_until velk-sandbox enter --name "$name" -- test -e /tmp/entered
end_device
wait "$entered"
check 'status of an entered command' 137 "$?"
wait "$watcher"
check 'status of the watcher' 137 "$?"
check 'name' not "$(is_listed "$name")"

again_as_ordinary_user "$this_file"

finish
