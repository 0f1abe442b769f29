# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# limits_test.sh - velkctl where files may be written only in part, or not at all.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

script() { on_device sh -c "$1"; }

# ---- a limit on the size of files ---------------------------------------------------------------

it 'says that a set failed where no byte may be written, and leaves the file alone'
script 'velkctl set ntp on; cp /var/cron/tabs/root /run/before
    said=$( (ulimit -f 0; velkctl set ntp off --no-journal) 2>&1); echo "$? $said"
    cmp /var/cron/tabs/root /run/before && echo "as before"'
status_is 0
error_is ''
output_is "1 velkctl: ntp: could not be set
  fix: run 'velkctl doctor' to look for the cause
  result: LIB_VELK_FAILURE (-1)
as before"

it 'finishes its document where no byte may be written'
script '(ulimit -f 0; velkctl set ntp off --json) | jq -c "[.status, .errors[0].result.code]"'
output_is '[1,-1]'

it 'says that its own output could not be written'
script '(ulimit -f 0; velkctl get ntp 2>&1 >/run/answer) | cat; wc -c </run/answer'
output_is 'velkctl: cannot write to standard output: File too large
0'

it 'says that a file is empty now, where it is written in place'
script 'said=$( (ulimit -f 0; velkctl set eth0.dns 10.0.0.9 --no-journal) 2>&1); echo "$? $said"; wc -c </etc/resolv.dnsmasq.conf'
output_is "1 velkctl: eth0.dns: could not be set
  /etc/resolv.dnsmasq.conf is empty since this set, and no edit copy has the rest: restore it before the device restarts
  fix: run 'velkctl doctor' to look for the cause
  result: LIB_VELK_FAILURE (-1)
0"

# ---- a file that may not be written -------------------------------------------------------------

it 'says that a value is not held where its file is mounted read-only, and the fix'
script 'cp /etc/network/interfaces /run/before
    mount --bind /etc/network/interfaces /etc/network/interfaces
    mount -o remount,bind,ro /etc/network/interfaces
    velkctl set eth0.gateway 192.168.0.9 2>/run/said; echo $?; tail -n 4 /run/said
    cmp /etc/network/interfaces /run/before && echo "as before"; ls /var/tmp'
output_is "6
velkctl: eth0.gateway: the library reported success,
  but the device holds '192.168.0.1'
  likely cause: /etc/network/interfaces: this user may not write the file: Read-only file system
  fix: mount it writable
as before
vklib_lock"

finish
