# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# installation_test.sh - pip installs the Python package from the checkout, without a network.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
for PYTHON in python3 /usr/bin/python3 ''; do
    [ -z "$PYTHON" ] || ! "$PYTHON" -c 'import setuptools, wheel, pip' 2>/dev/null || break
done
[ -n "$PYTHON" ] || skip 'no python3 with pip, setuptools and wheel here'

files_of() { (cd "$1" && find velk -name __pycache__ -prune -o -type f -print | LC_ALL=C sort); }

# A build leaves files in the source folder, so it gets a copy.
cp -R "$VELK_SOURCE/bindings/python" "$lib_folder/source"
it 'is installed from the checkout'
run env HOME="$lib_folder" "$PYTHON" -m pip --quiet --disable-pip-version-check --no-cache-dir install \
    --no-build-isolation --no-index --no-compile --target "$lib_folder/installed" "$lib_folder/source"
status_is 0
check 'files' "$(files_of "$VELK_SOURCE/bindings/python/src")" "$(files_of "$lib_folder/installed")"

it 'runs with the installed files alone'
cd / || exit
run env PYTHONDONTWRITEBYTECODE=1 PYTHONPATH="$lib_folder/installed" LD_LIBRARY_PATH="$VELK_BUILD" "$PYTHON" -c '
import importlib.metadata, velk
from velk import record
about = importlib.metadata.metadata("velk")
print(about["Version"], about["Requires-Python"], importlib.metadata.requires("velk"), velk.__version__)
print(record.execute(record.request(1, 399, "eth0"))[0])'
status_is 0
output_is "$VELK_VERSION >=3.9 None $VELK_VERSION
-4"
finish
