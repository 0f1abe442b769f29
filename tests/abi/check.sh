# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# check.sh - compares actual with expected texts. Source it, and end with `finish`.
# shellcheck shell=bash
failures=0

# check LABEL EXPECTED ACTUAL
check() {
    if [ "$2" != "$3" ]; then
        failures=$((failures + 1))
        printf 'FAILED: %s\n' "$1"
        diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") | sed 's/^</expected:/; s/^>/actual:  /'
    fi
}

# Returns the exit status of the test.
finish() { [ "$failures" -eq 0 ]; }
