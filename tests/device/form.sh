#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# form.sh BUILD FORM TEST - runs a test of velkctl on another form of it, the program BUILD/forms/FORM/velkctl.
# The folder of the test has this program, and the others as they are.
set -u
build=$1 form=$2 test=$3

# A folder of each test: tests run at the same time. The sandbox binds the folder of its program.
VELK_BUILD=$(mktemp -d "$build/forms/$form.XXXXXX") || exit 1
export VELK_BUILD
trap 'rm -rf "$VELK_BUILD"' EXIT
for part in velk-sandbox wland libvelk.so.1 libvelk.so rootfs real-rootfs router stand-ins completion velk-web; do
    cp -alL "$build/$part" "$VELK_BUILD" || exit 1
done
cp -al "$build/forms/$form/velkctl" "$build/web-page" "$VELK_BUILD" || exit 1
bash "$test"
