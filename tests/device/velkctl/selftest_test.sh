# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# selftest_test.sh - velkctl selftest on devices that are whole, or broken in several ways.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

it 'finds that every command works, and changes nothing'
on_device sh -c 'velk-sandbox cable out
    state() { find /etc/network /etc/dhclient* /sbin/dhclient-script /etc/resolv.dnsmasq.conf /var/tmp \
        /var/libvelk /var/cron /usr/local/share -type f -printf "%p %i %s %C@\n"; velkctl show --show-secrets; }
    state >/run/before; velkctl selftest; echo $?; state >/run/after; diff /run/before /run/after'
error_is ''
output_has '
77 commands work, 0 fail, 0 not tested
0'
check 'a line for each setting' 44 "$(grep -c '  .et works' <<<"$output")"

it 'does not test wireless commands that the cable keeps from working'
on_device velkctl selftest
status_is 0
error_is ''
output_has '
eth0.dns                get works       set works
'
output_has '
eth1.signal             get not tested
'
output_has '
69 commands work, 0 fail, 8 not tested'

it 'names each command that fails, and why'
on_device sh -c 'sed -i /ntpdate/d /var/cron/tabs/root; velkctl selftest'
status_is 1
output_has 'ntp-server              get works       set fails'
error_has 'velkctl: ntp-server: a set reports success, but does not set the value
  likely cause: '
error_has 'no entry runs ntpdate'

it 'finds a missing file, a missing tool, a read-only file and a silent daemon'
on_device sh -c 'rm /etc/dhclient.conf; velkctl selftest'
status_is 1
output_has 'dhcp-ntp                get fails       set fails'
on_device sh -c 'mount --bind /dev/null "$(readlink -f "$(command -v ethtool)")"; velkctl selftest'
status_is 1
output_has 'eth0.link-speed         get fails'
on_device sh -c 'mount --bind /var/libvelk/libvelk /var/libvelk/libvelk
    mount -o remount,bind,ro /var/libvelk/libvelk; velkctl selftest'
status_is 1
output_has 'administrator           get works       set fails'
error_has 'Read-only file system'
on_device sh -c 'kill $(cat /run/velk-sandbox/wland.pid); sleep 0.1; velk-sandbox cable out
    wland --reply silent --background; velkctl selftest --timeout 1'
status_is 1
output_has 'eth1.ssid               get fails       set fails'

it 'does not test wireless commands without the adapter'
on_device sh -c 'velk-sandbox adapter out; velkctl selftest'
status_is 0
error_is ''
output_has '
eth1.ssid               get not tested  set not tested
'
output_has '45 commands work, 0 fail, 32 not tested'

it 'fails with one line where no private copy is possible'
on_device sh -c 'head -c 1200000 /dev/zero >>/var/cron/tabs/root; velkctl selftest'
status_is 1
error_is 'velkctl: /var/cron/tabs/root: is too large for a private copy'
output_has '
0 commands work, 0 fail, 77 not tested'

it 'finds exit hooks without the lines of the notices'
on_device sh -c 'echo "# empty" >/etc/dhclient-exit-hooks; velkctl selftest'
status_is 1
output_has '
eth0.dhcp-notice        set fails
'

it 'takes no file that it cannot read for a changed one'
on_device sh -c 'echo "# empty" >/etc/dhclient-exit-hooks; rm /etc/resolv.dnsmasq.conf
    mkdir /etc/resolv.dnsmasq.conf; velkctl selftest'
status_is 1
output_has '
eth0.dhcp-notice        set fails
'

it 'tries the files of an image, also where the device has no such folders'
on_device sh -c 'cp -r '"$VELK_BUILD"'/rootfs /tmp/image
    rm -rf /etc/network /etc/dhclient* /etc/resolv.dnsmasq.conf /var/cron /var/libvelk /usr/local/share/etc
    velkctl selftest --root /tmp/image; echo $?
    ls -d /etc/network /var/cron 2>&1 | wc -l
    sed -i /ntpdate/d /tmp/image/var/cron/tabs/root; rm /tmp/image/etc/dhclient.conf
    velkctl selftest --root /tmp/image; echo $?; cat /tmp/image/etc/network/interfaces | md5sum
    md5sum <'"$VELK_BUILD"'/rootfs/etc/network/interfaces'
output_has '
eth0.dns                get works       set works
'
output_has '
eth0.link-speed         get not tested  set not tested
'
output_has '42 commands work, 0 fail, 35 not tested
0
2'
output_has 'ntp-server              get works       set fails'
output_has 'dhcp-ntp                get fails       set fails'
check 'the same file' 1 "$(tail -n 2 <<<"$output" | sort -u | wc -l)"

it 'gives the reason that the files of an image show'
on_device sh -c 'cp -r '"$VELK_BUILD"'/rootfs /tmp/image; rm /tmp/image/etc/dhclient.conf
    sed -i /avahi-autoipd/d /tmp/image/etc/dhclient-exit-hooks
    sed -i "s/^iface eth0/iface eth7/" /tmp/image/etc/network/interfaces; velkctl selftest --root /tmp/image'
status_is 1
error_has 'velkctl: dhcp-ntp: could not be read
  /etc/dhclient.conf is missing in the image
'
error_has '
  /etc/network/interfaces of the image has no stanza of eth0
'
error_has '
  /etc/dhclient-exit-hooks of the image has no line with /usr/sbin/avahi-autoipd
'
check 'lines on the doctor of this machine' '' "$(grep doctor <<<"$error")"

it 'follows no link out of an image'
on_device sh -c 'cp -r '"$VELK_BUILD"'/rootfs /tmp/image; mkdir -p /tmp/image/etc/cron
    mv /tmp/image/var/cron/tabs/root /tmp/image/etc/cron/root; ln -s /etc/cron/root /tmp/image/var/cron/tabs/root
    velkctl selftest --root /tmp/image; ls /etc/cron'
output_has '42 commands work, 0 fail, 35 not tested'
on_device velkctl selftest --root /nowhere
status_is 2
error_is "velkctl: selftest: '/nowhere' is not a folder; give the root folder of an image"

again_as_ordinary_user "${BASH_SOURCE[0]}"
finish
