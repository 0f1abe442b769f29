#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# forms_test.sh FORMS - velkctl with the library inside, and with libc inside, too: the libraries that they need,
# and a first run. EMULATOR runs the programs of another machine.
set -u
forms=$1
# shellcheck source=tests/abi/file_checks.sh
. "$(dirname "$0")/file_checks.sh"

check 'libraries that STATIC needs' libc.so.6 "$(needed "$forms/static/velkctl")"
check 'libraries that PIE needs' '' "$(dynamic NEEDED "$forms/pie/velkctl")"
check 'the dynamic linker of PIE' '' "$("$readelf" -lW "$forms/pie/velkctl" | grep INTERP)"
for form in static pie; do
    # shellcheck disable=SC2086 # the emulator has options
    check "a first run of $form" "velkctl: unknown verb 'internet'; 'velkctl --help' lists the verbs" \
        "$(${EMULATOR-} "$forms/$form/velkctl" internet 2>&1)"
done
finish
