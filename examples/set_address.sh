#!/bin/sh

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# set_address.sh ADDRESS/PREFIX GATEWAY - gives eth0 a static address and restarts it.
[ $# -eq 2 ] || {
    echo 'usage: set_address.sh ADDRESS/PREFIX GATEWAY, such as 10.0.0.9/24 10.0.0.1' >&2
    exit 2
}
# velkctl checks the values together, sets them, and reads them back. It prints the problems, if any.
velkctl set --quiet --wait=30 eth0.method=static "eth0.address=$1" "eth0.gateway=$2"
case $? in
    0) ;;
    2) echo 'nothing was changed' >&2 && exit 2 ;;
    3) echo 'another program has been changing settings for 30 seconds; try again' >&2 && exit 3 ;;
    *) echo 'the address may be set in part; velkctl doctor looks for the cause' >&2 && exit 1 ;;
esac
velkctl restart --quiet eth0 || exit 1
echo "eth0 has $(velkctl get eth0.address) and its gateway $(velkctl get eth0.gateway)"
