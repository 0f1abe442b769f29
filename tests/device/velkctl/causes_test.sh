# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# causes_test.sh - the likely cause of a failed get is one that hinders a get.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

script() { on_device sh -c "$1"; }

it 'does not blame a failed get on a file that cannot be written'
script 'sed -i "/iface eth0/d" /etc/network/interfaces
    mount --bind -o ro /etc/network/interfaces /etc/network/interfaces
    velkctl get eth0.address'
status_is 1
error_is "velkctl: eth0.address: could not be read
  likely cause: /etc/network/interfaces: there is no stanza
  no line begins with 'iface eth0 inet static' or '... dhcp'
  fix: add \"iface eth0 inet static\", and below it address, netmask and gateway
  result: LIB_VELK_FAILURE (-1)"

it 'does not blame a failed get on the full folder of edit copies'
script 'rm /var/libvelk/libvelk; dd if=/dev/zero of=/var/tmp/filler bs=1M 2>/dev/null
    velkctl get administrator'
status_is 1
error_has 'likely cause: /var/libvelk/libvelk: the file is missing'

it 'blames a failed read of the link on the full folder that ethtool'"'"'s output goes to'
script 'dd if=/dev/zero of=/var/tmp/filler bs=1M 2>/dev/null; velkctl get eth0.link-speed'
status_is 1
error_has 'likely cause: /var/tmp: the file system is full'

finish
