# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# preview_test.sh - set, restart and call with --dry-run, and set --trace. A dry run changes nothing on
# the device, for root and for ordinary users.
# shellcheck shell=bash
# shellcheck disable=SC2016,SC2154  # scripts in quotes are for the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
user=$(id -u)

# Functions for the device. `state` prints all that a dry run must not change: the contents of the
# files, who owns them and when they were changed, processes, addresses, routes, the configuration
# of the wireless daemon. Folders have no times: a query makes a socket for a moment.
functions='
    files() {
        find /dev/shm /etc /run /sbin/ /tmp /usr/local/share /var/cron /var/libvelk /var/log/syslog /var/tmp \
            -xdev ! -type d -printf "%p %y %i %s %m %U %G %n %l %T@ %C@\n" | sort
        find /etc /run /tmp /usr/local/share /var/cron /var/libvelk /var/log/syslog /var/tmp -xdev -type d \
            -printf "%p %i %m %U %G\n" | sort
        find /etc /run /tmp /usr/local/share /var/cron /var/libvelk /var/log/syslog /var/tmp /sbin/ -xdev \
            -type f -print0 | sort -z | xargs -0 sha256sum
    }
    processes() { grep -h "" /proc/[0-9]*/comm 2>/dev/null | grep -vx "bash\|cat\|grep\|sort" | sort; }
    network() { ifconfig -a | sed "/bytes\|packets/d; s/ RUNNING//"; cat /proc/net/route /proc/mounts; }
    state() { files; network; velkctl show --show-secrets 2>&1; }
    # Every setting that can be set, with the value of its example; a secret comes from standard input.
    tries_of_each() {
        velkctl list --json | awk -F "\"" "/\"name\":/ { name = \$4 } /\"set\": true/ { print name }" |
            while read -r name; do
                example=$(velkctl describe "$name" | sed -n "s/^  example: velkctl set //p")
                echo vwxyz | sh -c "velkctl set $example --dry-run --force --quiet"
            done
    }
    tries() {
        for change in eth0.method=dhcp eth0.address=10.0.0.9/8 eth0.gateway=none eth0.dns=10.0.0.53 \
            eth0.dhcp-dns=off eth0.apipa=off eth0.dhcp-notice=off \
            eth0.link-speed=100-full eth1.method=static eth1.ssid=x eth1.psk=0123456789 \
            eth1.channel=3 administrator="O'"'"'Neil & Co" location=x ntp=off ntp-server=10.0.0.1 \
            "web-update=monthly 3 08:30" dhcp-ntp=off; do
            velkctl set "$change" --dry-run --force --quiet
        done
        velkctl restart eth0 --dry-run
        velkctl restart eth1 --dry-run
        velkctl restart eth1 --notify-only --dry-run
        velkctl call set 108 eth0 --text 10.0.0.1 --dry-run
        velkctl call set 999 --dry-run
        velkctl call restart 1 eth0 --dry-run
        # Without files there are no differences to try.
        {
            velkctl apply location=x eth0.method=dhcp ntp=off --dry-run
            echo "{\"schema\": 1, \"settings\": {\"eth0.address\": \"192.168.0.77\"}}" |
                velkctl import - --dry-run
        } | sed "s/^longest time/the longest time/"
    }
'
nothing_changes() { # nothing_changes PREPARATION PREFIX [TRIES COUNT]
    on_device bash -c "$functions
        $1
        state >/run/before; processes >/run/processes-before
        export -f tries tries_of_each
        $2 bash -c ${3:-tries} >/run/output 2>&1
        echo \$(grep -c '^longest time' /run/output) trials
        state >/run/after; processes >/run/processes-after
        diff <(grep -v ' /run/\|^/run/' /run/before) <(grep -v ' /run/\|^/run/' /run/after)
        diff /run/processes-before /run/processes-after && echo same"
    status_is 0
    output_is "${4:-24} trials
same"
}

it 'changes no file, process, address or daemon with the cable in'
nothing_changes '' ''
it 'changes nothing with a try of each setting'
nothing_changes '' '' tries_of_each 34
it 'changes nothing with the cable out'
nothing_changes 'velk-sandbox cable out' ''
it 'changes nothing without files, and with left edit copies'
nothing_changes 'rm -f /etc/resolv.dnsmasq.conf /var/libvelk/ntp.log
    echo cut >/var/tmp/interfaces; : >/etc/network/interfaces; ln -s /etc/passwd /var/tmp/libvelk
    echo x >/tmp/oldIPAddress; ln -s nowhere/file /var/tmp/root' ''
as_user='setpriv --reuid 65534 --regid 65534 --clear-groups'
if [ "$user" = 0 ]; then
    it 'changes nothing for an ordinary user, also in files that he may write'
    # An ordinary user may not be able to look into the build folder.
    programs="mkdir -m 755 /run/programs
        install -m 755 -t /run/programs $VELK_BUILD/velkctl $VELK_BUILD/libvelk.so.1"
    with_programs="env LD_LIBRARY_PATH=/run/programs PATH=/run/programs:/usr/sbin:/usr/bin:/sbin:/bin $as_user"
    nothing_changes "$programs" "$with_programs"
    nothing_changes "$programs
        chmod 666 /etc/network/interfaces /var/libvelk/libvelk" "$with_programs"
fi

it 'shows a diff that patch(1) could apply, the steps, and the longest time'
on_device velkctl set eth0.address 10.0.0.9 --dry-run
status_is 0
error_is ''
output_is 'eth0.address: would be set
--- /etc/network/interfaces
+++ /etc/network/interfaces
@@ -5,7 +5,7 @@
 auto eth1
 
 iface eth0 inet static
-	address 192.168.0.10
+	address 10.0.0.9
 	netmask 255.255.255.0
 	gateway 192.168.0.1
 
steps of the library:
  shell     cat /var/tmp/interfaces > /etc/network/interfaces
  shell     rm /var/tmp/interfaces
longest time: no wait; only the time to change files'

it 'has the diff that the real set makes'
on_device sh -c 'for change in eth0.method=dhcp administrator=x ntp=off dhcp-ntp=on eth0.apipa=off; do
    cp -r /etc/network/interfaces /etc/dhclient.conf /etc/dhclient-exit-hooks /sbin/dhclient-script \
        /var/cron/tabs/root /var/libvelk/libvelk /usr/local/share/etc/snmp/snmpd.conf /run
    velkctl set "$change" --dry-run --force | sed -n "/^---/,/^steps/p" | grep "^[-+ ]" >/run/shown
    velkctl set "$change" --force --quiet
    for file in /usr/local/share/etc/snmp/snmpd.conf /etc/network/interfaces /etc/dhclient.conf \
        /etc/dhclient-exit-hooks /sbin/dhclient-script /var/cron/tabs/root /var/libvelk/libvelk; do
        diff -u /run/${file##*/} $file
    done | grep "^[-+]" | grep -v "^---\|^+++" | sort >/run/real
    grep "^[-+]" /run/shown | grep -v "^---\|^+++" | sort | diff - /run/real >&2
    wc -l </run/real
done'
error_is ''
output_is '10
4
2
2
4'

it 'shows each file that appears or disappears'
on_device sh -c 'rm /etc/resolv.dnsmasq.conf
    velkctl set eth0.dns 10.0.0.1 --dry-run
    echo 10.0.0.1 >/tmp/oldIPAddress
    velkctl set eth0.method dhcp --dry-run | tail -n 12
    echo x >/var/libvelk/ntp.log; velkctl call set 502 --dry-run'
output_has '--- /dev/null
+++ /etc/resolv.dnsmasq.conf
@@ -0,0 +1 @@
+nameserver 10.0.0.1
'
output_has '--- /tmp/oldIPAddress
+++ /dev/null
@@ -1 +0,0 @@
-10.0.0.1
'
output_has '  not run   rm -f /tmp/oldIPAddress'

it 'previews a restart without waiting or touching the interface'
SECONDS=0
on_device velkctl restart eth0 --dry-run
[ "$SECONDS" -lt 60 ]
check 'no wait' 0 $?
output_is 'restart of eth0: would be done
no file would change
steps of the library:
  not run   sudo ifdown eth0
  wait      1 s
  not run   sudo ifup eth0
  wait      5 s
  shell     sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result
  shell     rm /var/tmp/get_result
  wait      30 s
  not run   sudo ifdown eth1
  not run   sudo ifup eth1
  wait      30 s
  not run   sudo ifdown eth1
  not run   sudo ifup eth1
longest time: 66 s, and the time for the interface to come up'

it 'names each wait without a limit'
on_device sh -c 'velk-sandbox adapter out
    velkctl apply location=x eth0.address=192.168.0.9 --restart eth0 --dry-run | tail -n 2'
output_is 'longest time: 1 s, and the time for the SNMP daemon to restart,
  and for the interface to come up'

it 'keeps the messages that would change the wireless daemon, and reads its own back'
on_device sh -c 'velkctl set eth1.ssid=new eth1.psk=0123456789 --dry-run; velkctl get eth1.ssid'
status_is 0
error_is ''
output_is 'eth1.ssid: would be set
eth1.psk: would be set
no file would change
steps of the library:
  not sent  to the wireless daemon: store this configuration
  log       VkLibLock indelible
  not sent  to the wireless daemon: store this configuration
longest time: 240 s
velk-lab'

it 'previews an apply in the order of its steps'
on_device sh -c 'velkctl apply eth0.dns=10.0.0.53 eth0.address=10.0.0.9/24 eth0.gateway=none --dry-run'
status_is 0
output_has 'eth0.address: would be set'
output_has '+nameserver 10.0.0.53'
output_has '  not run   sudo ifdown eth0'
output_has 'longest time: '
on_device sh -c 'velkctl apply location=x --dry-run --json; velkctl apply location=x --restart never --dry-run'
status_is 0
output_has '"changes": ['
output_has '"preview": {'

it 'masks secrets'
on_device velkctl set administrator x --dry-run
output_has ' rocommunity ********'

it 'ends as the real call would'
on_device velkctl set eth0.address nonsense --dry-run
status_is 2
on_device velkctl call set 999 --dry-run
status_is 2
error_has 'velkctl: command 999: would fail'
on_device velkctl call get 108 eth0 --dry-run
status_is 2
error_is 'velkctl: call: --dry-run is for set and restart; leave it out for get'
on_device sh -c 'velk-sandbox adapter out; velkctl restart eth1 --dry-run'
status_is 4
on_device sh -c 'mount --bind /etc/network/interfaces /etc/network/interfaces
    mount -o remount,bind,ro /etc/network/interfaces
    velkctl set eth0.address 10.0.0.9 --dry-run'
status_is 6
error_has 'velkctl: eth0.address: the library would report success, but not set the value'

it 'waits for the lock as the real call does'
on_device sh -c 'exec 9<>/var/tmp/vklib_lock; flock 9; velkctl set eth0.dns 10.0.0.1 --dry-run
    echo $?; (sleep 1; exec 9<&-) & exec 9<&-; velkctl set eth0.dns 10.0.0.1 --dry-run --wait >&2; echo $?'
output_is '3
0'

it 'leaves nothing when it is killed, or at the time limit'
on_device bash -c 'kill $(cat /run/velk-sandbox/wland.pid); sleep 0.1
    wland --reply silent --background
    velkctl set eth1.ssid x --dry-run & trial=$!
    until [ "$(pgrep -c -x velkctl)" -ge 3 ]; do sleep 0.02; done
    kill -9 $trial; wait $trial 2>/dev/null
    while pgrep -x velkctl >/dev/null; do sleep 0.02; done
    velkctl set eth1.ssid x --dry-run --timeout 1; echo $?
    for _ in {1..50}; do pgrep -x velkctl >/dev/null || break; sleep 0.02; done
    pgrep -x velkctl || echo none'
output_has '7
none'
error_has 'no answer after 1 s'

it 'is one document with --json'
on_device velkctl set eth0.dns 10.0.0.53 --dry-run --json
status_is 0
output_has '"then_waits_for": null'
output_has '"+nameserver 10.0.0.53"'

it 'shows the steps of a real set with --trace'
on_device sh -c 'velkctl set eth0.address 10.0.0.9 --trace --force; velkctl get eth0.address'
error_is ''
output_is '--- /etc/network/interfaces
+++ /etc/network/interfaces
@@ -5,7 +5,7 @@
 auto eth1
 
 iface eth0 inet static
-	address 192.168.0.10
+	address 10.0.0.9
 	netmask 255.255.255.0
 	gateway 192.168.0.1
 
steps of the library:
  shell     cat /var/tmp/interfaces > /etc/network/interfaces
  shell     rm /var/tmp/interfaces
10.0.0.9'
on_device sh -c 'velk-sandbox cable out; velkctl set eth1.ssid=a eth0.link-speed=auto --trace --json
    velkctl get eth1.ssid'
output_has '"kind": "message",
        "text": "to the wireless daemon: store this configuration"'
output_has '"text": "sudo ethtool -s eth0 autoneg on"'
output_has 'a'

refused='velkctl: the kernel refuses namespaces, so a private copy of the files is not possible'
it 'says in one line if the kernel refuses namespaces, and changes nothing'
in_changed_root() { # in_changed_root PREFIX
    on_device bash -c "mount --rbind / /mnt || exit
        exec /usr/sbin/chroot /mnt $1 velkctl set eth0.address 10.0.0.9 --dry-run"
}
in_changed_root 'setpriv --bounding-set=-all --inh-caps=-all'
status_is 1
output_is ''
error_is "$refused
  fix: start the container with --privileged, or use the device itself"
if [ "$user" = 0 ]; then
    on_device bash -c "$programs
        mount --rbind / /mnt || exit
        exec /usr/sbin/chroot /mnt $with_programs velkctl set eth0.address 10.0.0.9 --dry-run"
    status_is 1
    output_is ''
    error_is "$refused
  fix: use sudo"
fi

again_as_ordinary_user "${BASH_SOURCE[0]}"
finish
