# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# lib.sh - functions for tests on a simulated device. Source it, then write
#
#   it 'refuses an address that is not valid'
#   run velkctl set eth0.dns 300.1.1.1
#   status_is 2
#   output_is ''
#   error_is 'velkctl: ...'
#
# and close with `finish`. VELK_BUILD is the build folder, VELK_SOURCE the checkout.
# shellcheck shell=bash
set -u

PATH=$VELK_BUILD:$PATH
LC_ALL=C
export PATH LC_ALL
unset CDPATH

lib_behaviour='(before the first test case)'
lib_checks=0
lib_failures=0
lib_folder=$(mktemp -d)
trap 'rm -rf "$lib_folder"' EXIT

# Bash calls this function for an unknown command, in a subshell. A file passes the result to finish.
command_not_found_handle() {
    printf 'FAILED: it %s\n  command not found: %s\n' "$lib_behaviour" "$*" >>"$lib_folder/not-found"
    printf '%s: command not found\n' "$1" >&2
    return 127
}

# Names the behaviour that the next checks test.
it() { lib_behaviour=$1; }

# Runs a command and records its exit status, output and errors for the checks.
run() {
    lib_command=$*
    "$@" >"$lib_folder/out" 2>"$lib_folder/err" </dev/null
    status=$?
    output=$(cat "$lib_folder/out")
    error=$(cat "$lib_folder/err")
}

# A function for scripts on the device.
# shellcheck disable=SC2016,SC2034  # for the shell on the device, in other files
stand_in_word='
    # Replaces a tool by a program for all processes. A folder in PATH is not sufficient: velkctl
    # does not use the PATH of its caller.
    stand_in() { # TOOL PROGRAM
        mount --bind "$2" "$(readlink -f "$(command -v "$1")")"
    }
    # The same by a script of these lines.
    stand_in_script() { # TOOL LINE...
        tool=$1 && shift
        printf "%s\n" "#!/bin/sh" "$@" >/tmp/$tool && chmod +x /tmp/$tool && stand_in $tool /tmp/$tool
    }
'

# Makes the root file system $healthy: the sample one with the tools that it lacks, and with the block
# of eth0 for DHCP on.
make_healthy_rootfs() {
    local tool
    healthy=$lib_folder/rootfs
    cp -R "$VELK_BUILD/rootfs" "$healthy"
    for tool in /sbin/ifup /sbin/ifdown /etc/init.d/snmpd; do
        mkdir -p "$healthy${tool%/*}"
        printf '#!/bin/sh\n' >"$healthy$tool"
        chmod 755 "$healthy$tool"
    done
    sed -i '/eth0/,/}/s/^#//' "$healthy/etc/dhclient.conf"
}

# Runs a command on a new simulated device.
on_device() { run velk-sandbox --quiet -- "$@"; }

check() { # check SUBJECT EXPECTED ACTUAL
    lib_checks=$((lib_checks + 1))
    [ "$2" = "$3" ] && return
    lib_failures=$((lib_failures + 1))
    printf 'FAILED: it %s\n  command:  %s\n  %s\n  expected: %s\n  actual:   %s\n' \
        "$lib_behaviour" "${lib_command:-}" "$1" "$2" "$3"
    printf '  stderr:   %s\n' "${error:-}"
    [ -z "${VELK_FAIL_FAST:-}" ] || exit 1 # scripts/mutate needs only the first failure
}

status_is() { check 'exit status' "$1" "$status"; }
output_is() { check 'standard output' "$1" "$output"; }
error_is() { check 'standard error' "$1" "$error"; }
output_has() { has 'standard output' "$1" "$output"; }
error_has() { has 'standard error' "$1" "$error"; }
has() { # has SUBJECT PART WHOLE
    case $3 in
        *"$2"*) check "$1" holds holds ;;
        *) check "$1" "(holds) $2" "$3" ;;
    esac
}

# Waits until a command succeeds. The limit is a number of tries, because each takes longer on a busy machine:
# 20 seconds or more.
lib_tries=400
wait_until() {
    local tries=0
    until "$@" >/dev/null 2>&1; do
        [ $((tries += 1)) -lt "$lib_tries" ] || return 1
        sleep 0.05
    done
}

skip() {
    printf 'SKIPPED: %s\n' "$1"
    exit 77
}

# Checks that /dev of a device made with OPTION has only the entries of every device, and ENTRY.
dev_is_private() { # dev_is_private OPTION ENTRY
    run velk-sandbox --quiet ${1:+"$1"} -- ls /dev
    output_is "$(printf '%s\n' fd full net null ptmx pts random shm stderr stdin stdout tty urandom \
        zero ${2:+"$2"} | sort)"
}

# Skips the whole file, with the reason, if the kernel refuses private namespaces.
needs_sandbox() {
    lib_reason=$(velk-sandbox --quiet -- true 2>&1) || skip "no sandbox here: $lib_reason"
}

# Checks that a device starts and ends within so many milliseconds. One success in many tries is
# sufficient. While the machine is busy, only CPU time counts.
starts_within() { # starts_within MILLISECONDS [OPTION...]
    it "starts within $1 ms"
    lib_command="velk-sandbox ${*:2}"
    wait_until started_within "$@"
    check 'fast start' 0 $?
}
started_within() {
    local TIMEFORMAT='%R %U %S' times real user system
    times=$({ time velk-sandbox --quiet "${@:2}" -- true >/dev/null 2>&1; } 2>&1) || return
    read -r real user system <<<"${times//./}" # milliseconds, as there are three decimals
    if is_busy; then
        [ $((10#$user + 10#$system)) -lt "$1" ]
    else
        [ $((10#$real)) -lt "$1" ]
    fi
}
# True if the load of the last minute is at least the number of processors.
is_busy() {
    local load
    read -r load _ </proc/loadavg
    [ "${load%.*}" -ge "$(nproc)" ]
}

# If this is root, runs a whole test file again as an ordinary user, from a copy of the programs that
# the user can read.
again_as_ordinary_user() { # again_as_ordinary_user FILE
    [ "$(id -u)" = 0 ] && command -v setpriv >/dev/null || return 0
    lib_copy=$lib_folder/copy
    mkdir -p "$lib_copy/tests/device"
    for lib_file in velk-sandbox velkctl wland libvelk.so.1 libvelk.so rootfs stand-ins \
        completion velk-web web-page; do
        cp -RP "$VELK_BUILD/$lib_file" "$lib_copy" || exit
    done
    cp "$VELK_SOURCE"/tests/device/*.sh "$1" "$lib_copy/tests/device"
    cp -R "$VELK_SOURCE/packaging" "$lib_copy"
    chmod -R a+rX "$lib_folder"
    cd "$lib_copy" || exit
    it 'works for an ordinary user'
    run env -i PATH=/usr/bin:/bin HOME=/nonexistent LD_LIBRARY_PATH="$lib_copy" \
        VELK_BUILD="$lib_copy" VELK_SOURCE="$lib_copy" \
        setpriv --reuid 65534 --regid 65534 --clear-groups \
        bash "$lib_copy/tests/device/${1##*/}"
    printf 'as an ordinary user:\n%s\n' "$output"
    [ "$status" = 77 ] || status_is 0
}

# Adds the commands that were not found to the failures.
count_unknown_commands() {
    [ -e "$lib_folder/not-found" ] || return 0
    cat "$lib_folder/not-found"
    lib_failures=$((lib_failures + $(grep -c '^FAILED' "$lib_folder/not-found")))
}

finish() {
    count_unknown_commands
    printf '%d checks, %d failed\n' "$lib_checks" "$lib_failures"
    [ "$lib_checks" -gt 0 ] && [ "$lib_failures" -eq 0 ]
    exit
}
