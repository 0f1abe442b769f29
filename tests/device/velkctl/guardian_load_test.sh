# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# guardian_load_test.sh - many simulated devices on one machine, each with a change that is put back.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/velkctl/waiting.sh
. "$VELK_SOURCE/tests/device/velkctl/waiting.sh" || exit

needs_sandbox
for device in {1..20}; do
    start "$device" "number=$device"'
        velkctl apply eth0.address=192.168.0.$((100 + number)) --restart never --confirm-within 10 --quiet || echo failed
        velkctl get eth0.address; until_true is_back; until_true has_none; velkctl get --value eth0.address 2>/dev/null; last_state
        ls /var/tmp /var/libvelk/journal; pgrep velkctl; pgrep velk-guardian'
done

it 'puts back the change of each of 20 devices, and leaves no process and no file'
for device in {1..20}; do
    await "$device"
    error_is ''
    output_is "192.168.0.$((100 + device))
192.168.0.10
reverted
/var/libvelk/journal:
000001-97gq
lock

/var/tmp:
vklib_lock"
done

finish
