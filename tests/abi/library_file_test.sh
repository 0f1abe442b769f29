#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# library_file_test.sh LIBRARY - the names, SONAME and dependencies of the built library. NM and READELF are the
# programs that read it, those of this machine by default.
set -u
library=$1 nm=${NM:-nm} readelf=${READELF:-readelf}
folder=$(dirname "$0")
# shellcheck source=tests/abi/check.sh
. "$folder/check.sh"

dynamic() { "$readelf" -dW "$library" | sed -n "s/.*($1).*\[\(.*\)\].*/\1/p"; }

names=$("$nm" -D --defined-only --demangle=gnu-v3 "$library" | sed 's/^[^ ]* [^ ]* //; s/@@.*//' |
    sed 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    grep -v '^LIBVELK_1$' | LC_ALL=C sort)
check 'exported names (tests/abi/exported_names.txt)' "$(cat "$folder/exported_names.txt")" "$names"
check 'SONAME' 'libvelk.so.1' "$(dynamic SONAME)"
# On some machines the dynamic linker is one of them.
check 'libraries it needs' "$(printf '%s\n' libc.so.6 libgcc_s.so.1 libstdc++.so.6)" \
    "$(dynamic NEEDED | grep -v '^ld[-.]' | LC_ALL=C sort)"
check 'the C entry point is unmangled' ' T execute_velk_command' \
    "$("$nm" -D --defined-only "$library" | sed -n 's/^[0-9a-f]*\( T execute_velk_command\).*/\1/p')"

# Host programs and preloaded libraries interpose these functions. Each import must have the plain
# name: another name, such as a checked variant, would bypass them. On 32-bit machines open and select have the
# names that they get in every program with 64-bit offsets and times.
open=open select=select
if "$readelf" -hW "$library" | grep -q ELF32; then
    open=open64 select=__select64
fi
imports=$("$nm" -D --undefined-only "$library" | sed 's/^ *[Uw] //; s/@.*//')
for name in flock $open recvfrom $select sendto sleep socket syslog system; do
    check "the import of $name" "$name" "$(grep -xE "_*v?${name//[_64]/}(64|_chk|_2|64_2)?" <<<"$imports")"
done
finish
