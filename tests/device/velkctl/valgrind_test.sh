# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# valgrind_test.sh - velkctl under valgrind. Run by scripts/valgrind.
# shellcheck shell=bash
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

under_valgrind() { # under_valgrind VALGRIND-OPTION... COMMAND...
    on_device valgrind -q --vgdb=no --error-exitcode=9 --leak-check=full "$@"
}

# Valgrind prints its findings to standard error. velkctl itself prints nothing there.
is_clean() { # is_clean STATUS ARGUMENT...
    it "finds no errors in: velkctl ${*:2}"
    under_valgrind "$VELK_BUILD/velkctl" "${@:2}"
    status_is "$1"
    error_is ''
}

is_clean 0 get eth0.address
is_clean 0 get eth1.ssid
is_clean 0 set eth0.address 10.1.2.3
is_clean 0 set eth1.ssid next
is_clean 0 show
is_clean 1 doctor # the sample device lacks some tools

it 'would report an error'
under_valgrind --errors-for-leak-kinds=all bash -c true # keeps memory until its end
status_is 9

finish
