# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# stuck_log_test.sh - velkctl while nobody reads the system log and its queue is full.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/velkctl/stuck_log.sh
. "$VELK_SOURCE/tests/device/velkctl/stuck_log.sh" || exit

needs_sandbox
command -v python3 >/dev/null || skip 'no python3 here, for the log'

script() { on_device sh -c "$stuck_log_word$1"; }

# timeout(1) returns 124 if its first signal ended the command, 137 if it killed the command.
it 'is ended by a signal in a get that waits to log'
script 'rm /var/cron/tabs/root /var/libvelk/libvelk
    for setting in ntp location; do
        with_stuck_log timeout -k 60 2 velkctl get $setting; echo $?
    done'
error_is ''
output_is '124
124'

it 'stops a get that waits to log at the timeout'
script 'rm /var/cron/tabs/root; with_stuck_log timeout -k 60 60 velkctl get ntp --timeout 1'
status_is 7
error_is 'velkctl: ntp: could not be read
  no answer after 1 s
  fix: run it again with a longer --timeout'

it 'reads settings without the log'
script 'with_stuck_log timeout -k 60 60 velkctl get eth0.address'
status_is 0
error_is ''
output_is '192.168.0.10'

# Without the lock's file a set logs only its failures.
it 'says why a set failed'
script 'rm -f /var/cron/tabs/root /var/tmp/vklib_lock
    with_stuck_log timeout -k 60 60 velkctl set ntp on --timeout 30'
status_is 1
error_is "velkctl: ntp: could not be set
  likely cause: /var/cron/tabs/root: the file is missing
  fix: put the device's own file there
  result: LIB_VELK_FAILURE (-1)"

it 'says why a value is not held'
script 'velkctl set web-update daily 08:30; rm /var/tmp/vklib_lock; file=/var/cron/tabs/root
    mount --bind $file $file && mount -o remount,bind,ro $file
    with_stuck_log timeout -k 60 60 velkctl set web-update daily 09:30 --timeout 30 2>/run/said
    status=$?; tail -n 4 /run/said; exit $status'
status_is 6
output_is "velkctl: web-update: the library reported success,
  but the device holds 'daily 08:30'
  likely cause: /var/cron/tabs/root: this user may not write the file: Read-only file system
  fix: mount it writable"

it 'examines the device without the log'
script 'rm -f /var/cron/tabs/root; velkctl doctor >/run/expected
    with_stuck_log timeout -k 60 60 velkctl doctor | diff /run/expected -'
error_is ''
output_is ''

finish
