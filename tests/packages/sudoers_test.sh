#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# sudoers_test.sh SOURCE BUILD - the rules for sudo allow the commands that the library runs and nothing else. Only
# root may ask sudo in the name of others; the rules hold in a private mount namespace.
set -u
export LC_ALL=C PATH=$PATH:/usr/sbin:/sbin
source=$1 build=$2
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/abi/check.sh
. "$here/../abi/check.sh"
rules=$source/packaging/sudoers.d/velk

if [ "${3-}" = --in-namespace ]; then
    mount -t tmpfs -o mode=755 rules /etc/sudoers.d
    install -m 440 "$rules" /etc/sudoers.d/velk
    { grep -v '^velk:' /etc/group && echo 'velk:x:64999:nobody'; } >"$4/group"
    mount --bind "$4/group" /etc/group
    # shellcheck disable=SC2317 # called by eval
    may() { sudo -n -l -U nobody "$@" >/dev/null 2>&1; }
    while IFS=' ' read -r decision command; do
        eval "may $command" && actual=allowed || actual=refused
        check "$command" "$decision" "$actual"
    done <"$here/sudo_commands.txt"
    finish
    exit
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
install -m 440 "$rules" "$folder/velk"
check 'visudo' "$folder/velk: parsed OK" "$(visudo -c -f "$folder/velk" 2>&1)"

# A new command of the library has to come into the rules and into both tests of them.
check 'the commands in the library' 'sudo /etc/init.d/snmpd restart > /dev/null 2>&1
sudo /usr/sbin/ethtool %s > %s
sudo ethtool %s > %s
sudo ethtool -s %s %s
sudo ifconfig %s %s
sudo ifconfig %s netmask %s
sudo ifconfig %s up
sudo ifdown %s
sudo ifup %s
sudo ifup %s &
sudo route add default gw %s
sudo route del default gw %s' "$(strings -a "$build/libvelk.so.1" | grep '^sudo ' | grep -v '^sudo sed' | LC_ALL=C sort)"
check 'the sed command in the sources' "sudo sed -i 's/" \
    "$(grep -rhoE --include='*.cpp' '"sudo sed [^"]*' "$source/lib" | cut -c 2-)"

if [ "$(id -u)" -ne 0 ]; then
    echo 'the rules themselves are not tried: only root may do so'
elif ! unshare --mount --propagation private true 2>/dev/null; then
    echo 'the rules themselves are not tried: this root may make no namespaces'
else
    unshare --mount --propagation private bash "$0" "$source" "$build" --in-namespace "$folder" || failures=1
fi
finish
