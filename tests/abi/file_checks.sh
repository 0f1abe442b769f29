# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# file_checks.sh - checks of a library or program, which may be one of another machine. Source it. NM and
# READELF are the programs that read it, those of this machine by default.
# shellcheck shell=bash
# shellcheck source=tests/abi/check.sh
. "$(dirname "${BASH_SOURCE[0]}")/check.sh"
nm=${NM:-nm} readelf=${READELF:-readelf}

# Prints the names of one kind, SONAME or NEEDED.
dynamic() { # dynamic KIND FILE
    "$readelf" -dW "$2" | sed -n "s/.*($1).*\[\(.*\)\].*/\1/p"
}

# Prints the libraries that a file needs. The dynamic linker, which is one of them on some machines, is a part of
# libc, and glibc before 2.34 kept the semaphores in libpthread.
needed() { dynamic NEEDED "$1" | grep -vE '^(ld[-.64].*|libpthread\.so\.0)$' | LC_ALL=C sort; }

# Host programs and preloaded libraries interpose these functions. Each import must have the plain
# name: another name, such as a checked variant, would bypass them. On 32-bit machines open and select have the
# names that they get in every program with 64-bit offsets and times.
check_imports() { # check_imports LIBRARY
    local open=open select=select imports name
    if "$readelf" -hW "$1" | grep -q ELF32; then
        open=open64 select=__select64
    fi
    imports=$("$nm" -D --undefined-only "$1" | sed 's/^ *[Uw] //; s/@.*//')
    for name in flock $open recvfrom $select sendto sleep socket syslog system; do
        check "the import of $name" "$name" "$(grep -xE "_*v?${name//[_64]/}(64|_chk|_2|64_2)?" <<<"$imports")"
    done
}
