#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# moved_test.sh BUILD SOURCE - a build folder may be moved or copied, a checkout too: programs load the
# library beside them, and the next build starts anew.
set -u
export LC_ALL=C
build=$1 source=$2
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

check 'run path' "\$ORIGIN:\$ORIGIN/../$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$build/CMakeCache.txt")" \
    "$(readelf -dW "$build/velkctl" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')"

mkdir "$folder/copy"
cp "$build/velkctl" "$build/libvelk.so.1" "$folder/copy"
library() { ldd "$1" | sed -n 's/.*libvelk\.so\.1 => \(.*\) (0x.*/\1/p'; }
check 'library of a copy' "$folder/copy/libvelk.so.1" "$(library "$folder/copy/velkctl")"
# A missing library is taken neither from the old place of the build nor from the current folder.
rm "$folder/copy/libvelk.so.1"
check 'library of a copy without one' 'not found' "$(cd "$build" && ldd "$folder/copy/velkctl" | sed -n 's/.*libvelk\.so\.1 => //p')"

# The cache of a copied checkout names the place that it was copied from.
mkdir -p "$folder/checkout/build/release"
find "$source" -mindepth 1 -maxdepth 1 ! -name build ! -name .git -exec cp -R -t "$folder/checkout" {} + || exit
echo 'CMAKE_HOME_DIRECTORY:INTERNAL=/elsewhere/checkout' >"$folder/checkout/build/release/CMakeCache.txt"
"$folder/checkout/scripts/build" release --target help >"$folder/log" 2>&1 ||
    check 'scripts/build in a copied checkout' built "$(cat "$folder/log")"
finish
