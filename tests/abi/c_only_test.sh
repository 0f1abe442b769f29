#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# c_only_test.sh BUILD - the names, dependencies and size of libvelk-c.so, and a C program with it.
set -u
build=$1
library=$build/libvelk-c.so.1
folder=$(dirname "$0")
# shellcheck source=tests/abi/check.sh
. "$folder/check.sh"

dynamic() { readelf -dW "$library" | sed -n "s/.*($1).*\[\(.*\)\].*/\1/p"; }

check 'exported names' "$(printf '%s\n' LIBVELK_1 execute_velk_command@@LIBVELK_1)" \
    "$(nm -D --defined-only "$library" | sed 's/^[^ ]* [^ ]* //' | LC_ALL=C sort)"
check 'SONAME' libvelk-c.so.1 "$(dynamic SONAME)"
# The dynamic linker is a part of libc, and glibc before 2.34 kept the semaphores in libpthread.
check 'libraries it needs' libc.so.6 "$(dynamic NEEDED | grep -vE '^(ld-linux.*|ld64\..*|ld\.so\.1|libpthread\.so\.0)$')"

# Host programs and preloaded libraries interpose these functions, see library_file_test.sh.
imports=$(nm -D --undefined-only "$library" | sed 's/^ *[Uw] //; s/@.*//')
for name in flock open recvfrom select sendto sleep socket syslog system; do
    check "the import of $name" "$name" "$(grep -xE "_*v?$name(64|_chk|_2|64_2)?" <<<"$imports")"
done

if grep -q '^CMAKE_BUILD_TYPE:STRING=Release$' "$build/CMakeCache.txt"; then
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
    bound=$(LD_DEBUG=bindings LD_PRELOAD=$library "$build/$suite" --gtest_list_tests 2>&1 |
        grep -c 'to .*/libvelk-c.so.1 .*`execute_velk_command')
    check "bindings of $suite to libvelk-c.so" 1 "$bound"
done

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
