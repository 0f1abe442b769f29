# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# tour_test.sh - scripts/tour, with a short time to confirm the change.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
for tool in ip unshare nsenter busybox; do
    command -v $tool >/dev/null || skip "no $tool here, for the network of the tour"
done

it 'shows a connection that is lost, and back by itself'
cd "$VELK_SOURCE" || exit # the current folder stays visible on the device
run timeout 300 velk-sandbox --quiet -- scripts/tour --on-device 10
status_is 0
error_is ''
output_has 'no answer from 192.168.0.10'
output_has 'keep with: velkctl confirm 97gq'
output_has ' was not confirmed and has been put back
192.168.0.10'
output_has '97gq  20'
output_has 'computer$ connect 192.168.0.77'
output_has ' is confirmed'
check 'last line' 'no change waits for its confirmation' "$(tail -n 1 <<<"$output")"

it 'says how it is used'
run "$VELK_SOURCE/scripts/tour" x
status_is 2
error_is 'tour: usage: scripts/tour [SECONDS]'

finish
