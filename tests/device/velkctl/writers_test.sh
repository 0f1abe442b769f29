# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# writers_test.sh - two programs that set the same setting at the same time.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

it 'reports no failure when another program sets the setting since'
on_device sh -c '
    for number in 1 2 3 4 5 6 7 8 9 10 11 12; do
        velkctl set eth0.dns 10.0.0.$number --wait=60 --quiet || echo "status $?" &
    done
    wait'
status_is 0
output_is ''
error_is ''

# Runs with an entry of the journal set one after the other.
it 'says that another program has set it since'
on_device sh -c '
    for round in 1 2 3 4 5 6 7 8 9 10; do
        for number in 1 2 3 4 5 6 7 8; do
            velkctl set eth0.dns 10.0.$round.$number --wait=60 --no-journal 2>>/tmp/errors &
        done
        wait
        grep -q "has set it" /tmp/errors && break
    done
    grep -v waiting /tmp/errors | sed -E "s/10\.0\.[0-9]+\.[0-9]+/ADDRESS/" | sort -u'
output_is "velkctl: note: eth0.dns: set, but another program has set it to 'ADDRESS' since"

it 'does not take a line that the set has damaged for the set of another program'
on_device sh -c "sed -i '1s/ > .*//' /var/cron/tabs/root; velkctl set ntp-server 192.168.0.5"
status_is 6
output_is ''
error_is "velkctl: ntp-server: the library reported success,
  but the device holds '192.168.0.515'
  likely cause: /var/cron/tabs/root:1: two entries are on one line
  a set of a server at the end of the line joins them
  fix: put the second one on a line of its own; write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log"

finish
