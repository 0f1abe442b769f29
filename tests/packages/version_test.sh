#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# version_test.sh BUILD SOURCE VERSION - every place that names the version names the project's.
set -u
build=$1 source=$2 version=$3
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"

defined() { sed -n "s/^#define VELK_VERSION$1 \"*\([0-9.]*\).*/\1/p" "$source/include/velk/version.h"; }
check 'the header' "$version" "$(defined '')"
check 'the numbers of the header' "$version" "$(defined _MAJOR).$(defined _MINOR).$(defined _PATCH)"
for program in velkctl velk-sandbox wland; do
    check "$program --version" "$program $version" "$("$build/$program" --version)"
done
check "pkg-config's file" "Version: $version" "$(grep '^Version:' "$build/packaging/libvelk.pc")"
check "CMake's package" "set(PACKAGE_VERSION \"$version\")" \
    "$(grep '^set(PACKAGE_VERSION ' "$build/packaging/velkConfigVersion.cmake")"
for page in libvelk.3 velkctl.1 velk-sandbox.1; do
    check "$page" ".Os libvelk $version" "$(grep '^\.Os' "$build/packaging/$page")"
done
check "Debian's packages" "libvelk ($version)" "$(sed -n '1s/).*/)/p' "$source/debian/changelog")"
check 'the newest version in CHANGELOG.md' "$version" \
    "$(sed -n 's/^## \([0-9][0-9.]*\).*/\1/p' "$source/CHANGELOG.md" | head -n 1)"
finish
