# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# requests_test.sh - runs requests_test.py on a simulated device.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox

it 'refuses bad requests and serves beside bad clients'
on_device env VELK_BUILD="$VELK_BUILD" python3 "$VELK_SOURCE/tests/web/server/requests_test.py"
printf '%s\n' "$output" "$error"
status_is 0
finish
