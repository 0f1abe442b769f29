# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# fleet_test.sh - the Ansible collection has the settings of velkctl. scripts/test-fleet tries the collection.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

it 'has a catalogue and a documentation of the collection that are up to date'
run /usr/bin/python3 "$VELK_SOURCE/fleet/generate" --check
status_is 0
error_is ''

finish
