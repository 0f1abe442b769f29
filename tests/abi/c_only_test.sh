#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# c_only_test.sh BUILD - the names, dependencies and size of libvelk-c.so, and a C program with it. EMULATOR runs
# the programs of another machine. They cannot be in a sandbox, and the limit of the size is this machine's.
set -u
build=$1
library=$build/libvelk-c.so.1
folder=$(dirname "$0")
# shellcheck source=tests/abi/file_checks.sh
. "$folder/file_checks.sh"

check 'exported names' "$(printf '%s\n' LIBVELK_1 execute_velk_command@@LIBVELK_1)" \
    "$("$nm" -D --defined-only "$library" | sed 's/^[^ ]* [^ ]* //' | LC_ALL=C sort)"
check 'SONAME' libvelk-c.so.1 "$(dynamic SONAME "$library")"
check 'libraries it needs' libc.so.6 "$(needed "$library")"
check_imports "$library"

if [ -z "${EMULATOR-}" ] && grep -q '^CMAKE_BUILD_TYPE:STRING=Release$' "$build/CMakeCache.txt"; then
    stripped=$(mktemp)
    trap 'rm -f "$stripped"' EXIT
    strip -o "$stripped" "$library" || exit 1
    size=$(stat -c %s "$stripped")
    check 'size' 'at most 131072' "$([ "$size" -gt 131072 ] && echo "$size" || echo 'at most 131072')"
fi

# Programs of other suites run with the library in the place of libvelk.so: they must be bound to it.
# The last two run in a thorough run alone, and may not be built yet.
for suite in edit_tests wire_tests thread_tests world_tests fault_tests; do
    [ -e "$build/$suite" ] || continue
    # shellcheck disable=SC2086 # the emulator has options
    bound=$(LD_DEBUG=bindings LD_PRELOAD=$library ${EMULATOR-} "$build/$suite" --gtest_list_tests 2>&1 |
        grep -c 'to .*/libvelk-c.so.1 .*`execute_velk_command')
    check "bindings of $suite to libvelk-c.so" 1 "$bound"
done

if [ -n "${EMULATOR-}" ]; then
    finish
    exit
fi
if reason=$("$build/velk-sandbox" --quiet -- true 2>&1); then
    check 'a C program' "0 '192.168.0.10'
5 execute_velk_command exception std::bad_alloc
-1 ''
0 '192.168.0.10'" "$("$build/velk-sandbox" --quiet -- "$build/c_host")"
    check 'a plugin host' 0 "$("$build/velk-sandbox" --quiet -- "$build/c_reload" "$library" >/dev/null; echo $?)"
elif [ "$failures" -eq 0 ]; then
    echo "SKIPPED: the sandbox does not start: $reason"
    exit 77
fi
finish
