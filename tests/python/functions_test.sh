# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# functions_test.sh RECORD_LAYOUT - the Python package without a device, and its catalogue.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

export RECORD_LAYOUT=$1 PYTHONDONTWRITEBYTECODE=1 LD_LIBRARY_PATH=$VELK_BUILD
export PYTHONPATH=$VELK_SOURCE/bindings/python/src:$VELK_SOURCE/tests/python
PYTHON=$(command -v python3) && export PYTHON

it 'has the types and functions that the tests expect'
run python3 -m unittest record_test values_test
printf '%s\n' "$error"
status_is 0

it 'has the settings that velkctl lists'
run python3 "$VELK_SOURCE/bindings/python/generate.py" velkctl
status_is 0
output_is "$(cat "$VELK_SOURCE/bindings/python/src/velk/catalogue.py")"

it 'reports a kind of value that it does not know'
printf '#!/bin/sh\n%s list --json | sed "s/\"13\"/\"14\"/"\n' "$VELK_BUILD/velkctl" \
    >"$lib_folder/velkctl"
chmod +x "$lib_folder/velkctl"
run python3 "$VELK_SOURCE/bindings/python/generate.py" "$lib_folder/velkctl"
status_is 1
error_is 'generate: eth1.channel has a new kind of value; add it here and in values.py'
finish
