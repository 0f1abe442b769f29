#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# hardening_test.sh FILE... - checks that the built library and programs are hardened.
# hardening_test.sh --lacks-all FILE - checks that every check fails for an unhardened file.
# NM and READELF are the programs that read the files, those of this machine by default.
set -u
nm=${NM:-nm} readelf=${READELF:-readelf}

# Each check prints the missing property, or nothing.
check_relro() { "$readelf" -lW "$1" | grep -q GNU_RELRO || echo 'read-only relocations'; }
check_bind_now() {
    "$readelf" -dW "$1" | grep -q BIND_NOW || echo 'binding at start'
}
check_stack() { "$readelf" -lW "$1" | grep -qE 'GNU_STACK.* RW +0x' || echo 'a stack that is not executable'; }
check_text() { ! "$readelf" -dW "$1" | grep -q TEXTREL || echo 'code without relocations'; }
check_position() { "$readelf" -hW "$1" | grep -qE 'Type: +DYN' || echo 'code for any address'; }
check_stack_protector() {
    "$nm" -D --undefined-only "$1" | grep -q __stack_chk_fail || echo 'the stack protector'
}
check_fortify() {
    # An unchecked function shows a source that was built without FORTIFY. The library's log helper is
    # an exception: it must call syslog(3) by its plain name.
    if ! "$nm" -D --undefined-only "$1" | grep -qE '__(v?snprintf|syslog)_chk' ||
        "$nm" -D --undefined-only "$1" | grep -qE ' snprintf(@|$)'; then
        echo 'checked functions'
    fi
}

missing() { # missing FILE
    local check
    for check in relro bind_now stack text position stack_protector fortify; do
        "check_$check" "$1"
    done
}

readable() { "$readelf" -hW "$1" >/dev/null || exit 1; }

if [ "$1" = --lacks-all ]; then
    readable "$2"
    # A shared library is always position-independent.
    diff <(missing "$2") - <<'END'
read-only relocations
binding at start
a stack that is not executable
code without relocations
the stack protector
checked functions
END
    exit
fi

failures=0
for file; do
    readable "$file"
    while read -r property; do
        failures=$((failures + 1))
        echo "FAILED: $(basename "$file") lacks $property"
    done < <(missing "$file")
done
[ "$failures" -eq 0 ]
