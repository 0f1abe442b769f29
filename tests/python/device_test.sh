# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# device_test.sh - the Python package on a simulated device. Each class of device_test.py has a new one.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox
cd "$VELK_SOURCE" || exit # the current folder is visible on the device, below /tmp too

export PYTHONDONTWRITEBYTECODE=1 LD_LIBRARY_PATH=$VELK_BUILD
export PYTHONPATH=$VELK_SOURCE/bindings/python/src:$VELK_SOURCE/tests/python

classes=$(sed -n 's/^class \(\w*\)(unittest.TestCase):$/\1/p' "$VELK_SOURCE/tests/python/device_test.py")
for class in $classes; do
    it "passes the tests of $class"
    on_device python3 -m unittest "device_test.$class"
    printf '%s\n%s\n' "$class" "$error"
    status_is 0
done
finish
