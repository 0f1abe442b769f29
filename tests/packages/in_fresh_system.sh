#!/usr/bin/env bash

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# in_fresh_system.sh VERSION - tries the packages beside it, and their earlier versions in earlier/, on this
# system, which has their dependencies. scripts/test-packages runs it in a fresh one.
set -u
version=$1
cd /packages || exit
# shellcheck source=tests/abi/check.sh
. ./check.sh

apt() {
    apt-get -qq -o Dpkg::Use-Pty=0 "$@" >/tmp/apt.log 2>&1 && return
    cat /tmp/apt.log
    echo "FAILED: apt-get $*"
    exit 1
}
installed() { dpkg-query -W -f '${Package} ${Version} ${Status}\n' 'libvelk*' 'velk-*' python3-velk 2>/dev/null | LC_ALL=C sort; }
all_at() { # all_at VERSION
    printf "%s $1 install ok installed\n" libvelk-dev libvelk1 python3-velk velk-sandbox velk-tools velk-web
}
# All files of the system, without the records and caches of apt and dpkg, and those of adduser: the user of the
# settings page stays, as Debian's users of services do.
files() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /packages -o -path /var/lib/dpkg \
        -o -path /var/lib/apt -o -path /etc/gshadow- -o -path /etc/shadow- -o -path /run/adduser \
        -o -path /var/cache -o -path /var/log \) -prune -o -print | LC_ALL=C sort
}
as_user() { setpriv --reuid 65534 --regid 65534 --clear-groups --inh-caps=-all "$@"; }

files >/tmp/before
apt install --no-install-recommends ./earlier/*.deb
check 'the earlier versions' "$(all_at "$version~0")" "$(installed)"
apt install --no-install-recommends ./*.deb
check 'the upgraded versions' "$(all_at "$version")" "$(installed)"

check 'velkctl --version' "velkctl $version" "$(velkctl --version)"
grep -q '^eth0\.dns ' <<<"$(velkctl list)" || check 'velkctl list' 'a line of eth0.dns' "$(velkctl list)"
answer=$(velk-sandbox --quiet -- cat /etc/resolv.dnsmasq.conf | sed -n 's/^nameserver //p' | paste -sd ' ')
check 'velk-sandbox -- velkctl get eth0.dns' "$answer" "$(velk-sandbox --quiet -- velkctl get eth0.dns)"
# Some kernels keep ordinary users from making namespaces.
if as_user unshare --user true 2>/dev/null; then
    check 'the same as an ordinary user' "$answer" "$(cd / && as_user velk-sandbox --quiet -- velkctl get eth0.dns)"
else
    echo 'not run as an ordinary user: this kernel refuses user namespaces'
fi
check 'a Python program' "$answer" "$(velk-sandbox --quiet -- python3 -B -c 'import velk; print(*velk.get("eth0.dns"))')"
check 'completions, where the shells of Debian look' '/usr/share/bash-completion/completions/velk-sandbox
/usr/share/bash-completion/completions/velkctl
/usr/share/zsh/vendor-completions/_velk-sandbox
/usr/share/zsh/vendor-completions/_velkctl' "$(find /usr/share/bash-completion /usr/share/zsh -name '*velk*' | LC_ALL=C sort)"
check 'flags, all of which the compiler knows' '-lvelk' "$(pkg-config --cflags --libs libvelk | xargs)"
# shellcheck disable=SC2046 # flags
gcc -std=c99 -Wall -Werror -o /tmp/client c99_client.c $(pkg-config --cflags --libs libvelk) && /tmp/client
check 'a C program' 0 $?

: >/var/tmp/vklib_lock
echo secret | velk-web --set-password admin
check 'the file of the passwords' '640 root velk-web' "$(stat -c '%a %U %G' /etc/velk/web-users)"
check 'the rules for sudo' '440 root root' "$(stat -c '%a %U %G' /etc/sudoers.d/velk-web)"
runuser -u velk-web -- sudo -n -l -- /usr/bin/velkctl list --json >/dev/null
check 'a run of velkctl as velk-web' 0 $?
page=$(velk-sandbox --quiet --web -- true 2>&1)
grep -q '^velk-sandbox: settings page: http://127.0.0.1:[0-9]*/$' <<<"$page" || check 'velk-sandbox --web' 'its address' "$page"

apt remove libvelk1 libvelk-dev velk-tools velk-web velk-sandbox python3-velk
apt purge libvelk1 velk-tools velk-web # those of which something is left
check 'packages after the purge' '' "$(installed)"
check 'files after the purge' '' "$(files | diff /tmp/before -)"
finish && echo 'the packages install, run, upgrade and go without a trace'
