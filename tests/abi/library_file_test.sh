#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# library_file_test.sh LIBRARY - the names, SONAME and dependencies of the built library.
set -u
library=$1
folder=$(dirname "$0")
# shellcheck source=tests/abi/file_checks.sh
. "$folder/file_checks.sh"

names=$("$nm" -D --defined-only --demangle=gnu-v3 "$library" | sed 's/^[^ ]* [^ ]* //; s/@@.*//' |
    sed 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    grep -v '^LIBVELK_1$' | LC_ALL=C sort)
check 'exported names (tests/abi/exported_names.txt)' "$(cat "$folder/exported_names.txt")" "$names"
check 'SONAME' 'libvelk.so.1' "$(dynamic SONAME "$library")"
check 'libraries it needs' "$(printf '%s\n' libc.so.6 libgcc_s.so.1 libstdc++.so.6)" \
    "$(needed "$library")"
check 'the C entry point is unmangled' ' T execute_velk_command' \
    "$("$nm" -D --defined-only "$library" | sed -n 's/^[0-9a-f]*\( T execute_velk_command\).*/\1/p')"
check_imports "$library"
finish
