# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# manual_test.sh - the manual pages and docs/commands.md: that they are well-formed, and that their
# examples work.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

pages=$VELK_SOURCE/docs/man

if command -v mandoc >/dev/null; then
    # The pages name libvelk as their system, as formatters would print their own in its place.
    known='referenced manual not found\|operating system explicitly specified'
    it 'has manual pages that mandoc accepts without warnings, except on pages that are not installed here'
    for page in velkctl.1 libvelk.3 velk-sandbox.1 velk-web.8; do
        run mandoc -T lint "$pages/$page"
        check "findings in $page" '' "$(grep -v "$known" <<<"$output")"
    done
    it 'would report a line that is too long and an unknown macro'
    printf '.Dd November 21, 2026\n.Dt X 1\n.Os\n.Sh NAME\n.Xx\n%s\n' \
        "$(printf 'word %.0s' {1..30})" >"$lib_folder/bad.1"
    run mandoc -T lint "$lib_folder/bad.1"
    output_has 'longer than 80 bytes'
    output_has 'unknown macro'
    it 'has pages that name libvelk and no other system at the top and bottom'
    for page in velkctl.1 libvelk.3 velk-sandbox.1 velk-web.8; do
        run mandoc -T ascii "$pages/$page"
        check "the ends of $page" 'Manual libvelk' \
            "$(sed -n '1s/.*General Commands Manual.*/Manual/p;1s/.*Library Functions Manual.*/Manual/p;1s/.*System Manager.*/Manual/p
                $s/ .*//p' <<<"$output" | xargs)"
        if command -v groff >/dev/null; then
            run groff -mandoc -T ascii "$pages/$page"
            check "BSD in $page" 0 "$(sed -n '1p;$p' <<<"$output" | grep -c BSD)"
        fi
    done
    it 'has pages that set no word as an option, except the options of the programs'
    {
        velkctl --help
        for verb in get set show restart apply export import diff list describe explain status doctor metrics selftest \
            capture undo history recover call; do
            velkctl "$verb" --help
        done
        velk-sandbox --help
        velk-web --help
    } >"$lib_folder/help"
    # "--" ends the options, --privileged is an option of container programs, -lvelk and -lvelk-c some of linkers.
    grep -oE '(^|[ ,[(|])--?[a-z][a-z-]*' "$lib_folder/help" | grep -oE -e '-.*' |
        cat - <(printf '%s\n' -- --privileged -lvelk -lvelk-c) >"$lib_folder/options"
    for page in velkctl.1 libvelk.3 velk-sandbox.1 velk-web.8; do
        run mandoc -T html "$pages/$page"
        flags=$(grep -o 'class="Fl">[^<]*' <<<"$output" | sed 's/.*>//' | sort -u)
        check "words set as options in $page" '' "$(grep -vxFf "$lib_folder/options" <<<"$flags")"
        check "options in $page" yes "$([ -n "$flags" ] && echo yes)"
    done
    it 'has pages that mandoc prints as readable text'
    run mandoc -T ascii "$pages/velkctl.1"
    plain=${output//?$'\b'/} # bold and underlined letters are struck twice
    has 'the page' 'eth0.dns, eth1.dns (108, get and set)' "$plain"
    has 'the page' 'velkctl set eth1.psk @/run/keys/psk' "$plain"
    has 'the page' '--wait[=SECONDS]' "$plain"
fi

needs_sandbox
compiler=$(command -v cc || command -v gcc || command -v clang) || skip 'no C compiler here'
sed -n '/^#include <stdio.h>/,/^\.Ed/{s/\\e/\\/g;/^\.Ed/!p;}' "$pages/libvelk.3" >"$lib_folder/example.c"
it 'has a program in libvelk(3) that compiles without a warning'
run "$compiler" -std=c99 -Wall -Wextra -Werror "-I$VELK_SOURCE/include" \
    -c -o "$lib_folder/example.o" "$lib_folder/example.c"
status_is 0
error_is ''

# A library with sanitizers in it serves no plain program.
if ! grep -q __asan_init "$VELK_BUILD/libvelk.so"; then
    it 'has a program in libvelk(3) that works'
    run "$compiler" -o "$lib_folder/example" "$lib_folder/example.o" "-L$VELK_BUILD" -lvelk \
        -Wl,-rpath-link,"$VELK_BUILD"
    status_is 0
    error_is ''
    # The device has a /tmp of its own; a folder that is passed on stays visible.
    run velk-sandbox --quiet --writable "$lib_folder" -- env "LD_LIBRARY_PATH=$VELK_BUILD" sh -c '
        "$1" && cat /etc/resolv.dnsmasq.conf' sh "$lib_folder/example"
    status_is 0
    error_is ''
    output_is '192.168.0.1
nameserver 192.168.0.1'
fi

# The command lines in the page: those in its literal blocks.
examples=$(sed -n '/^\.Bd -literal/,/^\.Ed/{/^velkctl /p;}' "$pages/velkctl.1")

it 'has examples in velkctl(1) that work on a device without a cable'
check 'there are examples' yes "$([ "$(wc -l <<<"$examples")" -gt 15 ] && echo yes)"
on_device sh -c '
    velk-sandbox cable out
    mkdir -p /run/keys && echo a-long-enough-key >/run/keys/psk
    printf "%s\n" "$1" | while IFS= read -r line; do
        sh -c "$line" >/tmp/out 2>/tmp/err </dev/null
        status=$?
        # A machine may lack tools of a device, which doctor finds.
        [ "$line $status" != "velkctl doctor 1" ] || status=0
        [ "$status" = 0 ] && echo "works: $line" || echo "$status: $line: $(cat /tmp/err)"
    done' sh "$examples"
status_is 0
output_is "works: ${examples//$'\n'/$'\n'works: }"
error_is ''

# Every console block of docs/commands.md, in a file named by the line it begins at.
awk -v folder="$lib_folder" '
    /^```console$/ { block = folder "/console." NR; next }
    /^```$/ { block = "" }
    block != "" { print > block }' "$VELK_SOURCE/docs/commands.md"

it 'has examples in docs/commands.md that print their output on a fresh device'
blocks=("$lib_folder"/console.*)
check 'there are examples' yes "$([ "${#blocks[@]}" -gt 30 ] && echo yes)"
for block in "${blocks[@]}"; do
    on_device sh -c '
        printf "%s\n" "$1" | sed -n "s/^\$ //p" | while IFS= read -r line; do
            printf "$ %s\n" "$line"
            eval "$line" </dev/null
        done 2>&1' sh "$(cat "$block")"
    check "example at docs/commands.md:${block##*.}" "$(cat "$block")" "$output"
done

finish
