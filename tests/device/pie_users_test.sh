# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# pie_users_test.sh - velkctl with libc inside loads no module of the device's libc to look up a user.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
command -v strace >/dev/null || skip 'no strace here, for the files that velkctl opens'
unshare -U --map-user=54321 true 2>/dev/null || skip 'this kernel gives no user namespace'

it 'prints the number of a user that is not in /etc/passwd, and asks no module'
on_device sh -c '
    echo "passwd: files hesiod" >/tmp/nsswitch && mount --bind /tmp/nsswitch /etc/nsswitch.conf
    unshare -U --map-user=54321 velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 60 --quiet
    strace -f -o /tmp/trace -e trace=openat velkctl pending | sed -n "s/^change .* \(of .*\) waits .*/\1/p"
    grep -o "libnss_[a-z]*" /tmp/trace; velkctl revert --quiet'
status_is 0
error_is ''
output_is 'of user 54321'

finish
