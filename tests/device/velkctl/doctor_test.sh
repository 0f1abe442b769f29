# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# doctor_test.sh - the findings of velkctl doctor on devices in good and bad shape.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

make_healthy_rootfs

# Runs a script on such a device.
script() { run velk-sandbox --quiet --rootfs "$healthy" -- sh -c "$stand_in_word$1"; }

# Runs a script there, and the doctor after it.
examine() { script "$1
    velkctl doctor"; }

# Prints the output without the remedies.
findings_are() { check 'findings' "$1" "$(printf '%s\n' "$output" | grep -v '^  fix: ')"; }

it 'finds nothing on the sample device'
on_device velkctl doctor
status_is 0
error_is ''
output_is 'no problems found'

it 'warns of a stanza on DHCP that can gain no static lines, in one finding'
script 'sed -i "/^iface lo/d" /etc/network/interfaces; velkctl doctor'
status_is 0
output_is 'warning: eth1.address, eth1.netmask and eth1.gateway cannot be set
  /etc/network/interfaces:12: the last stanza lacks address, netmask and gateway
  fix: below line 12 add "address ADDRESS", "netmask NETMASK", "gateway GATEWAY"
0 problems, 1 warning'

it 'finds the damage of the demonstration'
on_device "$VELK_SOURCE/scripts/demo" --on-device
status_is 0
output_has '  fix: below line 12 add "gateway 10.0.0.1"
(exit status 6)
$ velkctl doctor
warning: eth1.address, eth1.netmask and eth1.gateway cannot be set
'

it 'names the value that was given in the fix for a set'
script 'sed -i "/^iface lo/d" /etc/network/interfaces; velkctl set eth1.address 10.0.0.7'
status_is 6
error_is "velkctl: eth1.address: the library reported success,
  but the device cannot hold the value
  likely cause: /etc/network/interfaces:12: the stanza is the last one and has no address line
  fix: below line 12 add \"address 10.0.0.7\""

it 'finds nothing on a complete device'
examine ''
status_is 0
error_is ''
output_is 'no problems found'

it 'answers in JSON'
script "
    rm /var/libvelk/libvelk; touch /var/tmp/root
    velkctl doctor --json | python3 -c '
import json, sys
answer = json.load(sys.stdin)
print(answer[\"verb\"], answer[\"status\"], answer[\"problems\"], answer[\"warnings\"])
for finding in answer[\"findings\"]:
    print(\" \".join(finding), finding[\"severity\"], finding[\"cause\"][\"file\"], finding[\"cause\"][\"line\"])
'"
status_is 0
error_is ''
output_is 'doctor 1 1 1
severity subject effect description cause remedy settings problem /var/libvelk/libvelk None
severity subject effect description cause remedy settings warning /var/tmp/root None'

it 'ends with 0 when there are only warnings, in JSON too'
examine 'touch -d "3 hours ago" /var/tmp/get_result; velkctl doctor --json >/dev/null && echo done'
status_is 0
findings_are 'done
warning: address, netmask and link-speed may not have been read
  /var/tmp/get_result: a result was left, 3 hours old
  the next one overwrites it
0 problems, 1 warning'

it 'says first that a machine without most of the files is not the device'
script 'cd /etc; rm network/interfaces dhclient.conf dhclient-exit-hooks /sbin/dhclient-script resolv.dnsmasq.conf
    velkctl doctor | head -1; velkctl doctor --json | jq .device
    rm /var/cron/tabs/root; velkctl doctor | head -2; velkctl doctor --json | jq .device'
check 'first lines' 'true
this does not look like the device (6 of its files are missing)
  velk-sandbox makes a simulated one
false' "$(tail -n +2 <<<"$output")"
has 'first line of a device' 'problem: ' "${output%%$'\n'*}"

it 'prints no fix for a machine that is not the device'
script 'cd /etc; rm network/interfaces dhclient.conf dhclient-exit-hooks /sbin/dhclient-script resolv.dnsmasq.conf
    velkctl doctor | grep -c fix:
    rm /var/cron/tabs/root; velkctl doctor >/tmp/found; echo $?
    grep -c fix: /tmp/found; tail -n +3 /tmp/found | head -2; grep -c "^[0-9]* problems, " /tmp/found'
check 'fixes, with five files missing' some "$([ "${output%%$'\n'*}" -gt 4 ] && echo some)"
check 'fixes, with six files missing' "1
0
problem: method, address, netmask and gateway can be neither read nor set
  /etc/network/interfaces: the file is missing
1" "$(tail -n +2 <<<"$output")"

it 'reports files that are missing, of another kind or not writable'
why=$([ "$(id -u)" = 0 ] && echo 'Read-only file system' || echo 'Permission denied')
examine 'rm /etc/network/interfaces /var/cron/tabs/root /etc/dhclient.conf
    mkfifo /var/cron/tabs/root; ln -s /usr/lib/os-release /etc/dhclient.conf'
status_is 1
output_has 'problem: method, address, netmask and gateway can be neither read nor set
  /etc/network/interfaces: the file is missing
  fix: put the device'"'"'s own file there
'
output_has 'problem: ntp, ntp-server and web-update can be neither read nor set
  /var/cron/tabs/root: a folder, a FIFO or a device is in its place
'
output_has "problem: method, dhcp-dns and dhcp-ntp cannot be set
  /etc/dhclient.conf: this user may not write the file: $why
"

it 'reports a full folder for edit copies'
examine 'dd if=/dev/zero of=/var/tmp/filler bs=1M 2>/dev/null'
if [ "$status" = 1 ]; then # where the folder has a limit
    output_has 'problem: all settings in files cannot be set
  /var/tmp: the file system is full: '
fi

it 'agrees with the result of a set'
examine 'sed -i "/^iface lo/d" /etc/network/interfaces
    velkctl set eth1.method static && velkctl set eth1.gateway 10.0.0.9 2>/dev/null; echo $?'
status_is 1
findings_are '6
problem: eth1.address, eth1.netmask and eth1.gateway cannot be set
  /etc/network/interfaces:12: the last stanza lacks address, netmask and gateway
1 problem, 0 warnings'
examine 'printf "0 * * * * ntpdate -u > /var/libvelk/ntp.log\n" >/var/cron/tabs/root
    velkctl set ntp-server 10.0.0.9 2>/dev/null; cat /var/cron/tabs/root'
status_is 1
output_has '0 * * * * ntpdate -u10.0.0.9 > /var/libvelk/ntp.log'

it 'finds an ifconfig of another form, and one that is missing'
script 'stand_in_script ifconfig "echo \"lo: flags=73\"" "echo \"    inet 127.0.0.1  netmask 255.0.0.0\""
    velkctl doctor'
status_is 1
findings_are "problem: ifconfig prints addresses in a form that the library does not read
  it prints 'inet 127.0.0.1  netmask 255.0.0.0',
  but the library looks for 'inet addr:' and 'Mask:'
  address and netmask of a DHCP interface are read as empty
1 problem, 0 warnings"
script ': >/tmp/none; stand_in ifconfig /tmp/none; velkctl doctor'
status_is 1
output_has 'problem: ifconfig is not installed
  address and netmask of a DHCP interface cannot be read
  fix: install it in a folder that velkctl searches, such as /usr/bin
'

it 'names the holder of the lock, without taking the lock'
script '
    velkctl set ntp on
    flock /var/tmp/vklib_lock sh -c "velkctl doctor"
    flock -n /var/tmp/vklib_lock echo free'
status_is 0
output_has 'warning: settings cannot be changed now
  /var/tmp/vklib_lock: the lock is held by process '
output_has ' (flock, '
output_has '0 problems, 1 warning
free'

it 'names the processes that hold the lock of a process that has ended'
script '
    velkctl set ntp on
    (flock 9; exec sleep 60) 9<>/var/tmp/vklib_lock & holder=$!
    while flock -n /var/tmp/vklib_lock true || ! grep -q sleep /proc/$holder/comm; do sleep 0.05; done
    velkctl doctor | sed "s/process $holder/process N/; s/[0-9]* seconds* old/N old/"
    velkctl set ntp off 2>&1 | sed "s/process $holder/process N/; s/[0-9]* seconds* old/N old/"
    velkctl set ntp off --wait=1 2>&1 | sed "s/process $holder/process N/; s/[0-9]* seconds* old/N old/"
    kill $holder'
output_is "warning: settings cannot be changed now
  /var/tmp/vklib_lock: the lock is held by process N (sleep, N old)
  fix: wait for it, as 'velkctl set --wait' does, or end it
0 problems, 1 warning
velkctl: ntp: could not be set
  another program is changing settings
  process N (sleep, N old) holds the lock
  fix: try again, or let --wait=SECONDS try again
  result: LIB_VELK_LOCKED (-3)
velkctl: note: waiting at most 1 s for the lock, held by process N (sleep, N old)
velkctl: ntp: could not be set
  another program is changing settings
  process N (sleep, N old) still holds the lock after 1 s
  fix: try again, or let --wait=SECONDS try again
  result: LIB_VELK_LOCKED (-3)"

it 'reports obstacles in /var/tmp, and a set behaves as reported'
examine 'mkfifo /var/tmp/interfaces; ln -s /etc/hosts /var/tmp/root; mkdir /var/tmp/libvelk'
status_is 1
findings_are 'warning: method, address, netmask and gateway can still be set
  /var/tmp/interfaces: a FIFO is in the place of the edit copy
  the next set replaces it
warning: ntp, ntp-server and web-update can still be set
  /var/tmp/root: a symbolic link is in the place of the edit copy
  the next set replaces it
problem: administrator and location cannot be set
  /var/tmp/libvelk: a folder is in the place of the edit copy
1 problem, 2 warnings'
script 'mkfifo /var/tmp/interfaces; ln -s /etc/hosts /var/tmp/root; mkdir /var/tmp/libvelk
    echo left >/var/tmp/dhclient-exit-hooks; chown 1234 /var/tmp/dhclient-exit-hooks
    velkctl set --timeout 20 eth1.address 10.0.0.7 && velkctl set ntp on && velkctl set eth0.apipa on &&
    velkctl set location here; echo $?; ls /var/tmp/ | grep -v lock; grep -c ntpdate /etc/hosts'
output_is '1
libvelk
0'

# Simulates a power cut while cat copies: the shell has emptied the file. A first whole set gives the
# text to write. Killed in this order, the library cannot remove its copy.
cut_short='
    mkdir /tmp/slow; printf "#!/bin/sh\necho \$\$ >/tmp/slow/pid; exec sleep 60\n" >/tmp/slow/cat
    chmod +x /tmp/slow/cat
    cp /etc/network/interfaces /run/before
    velkctl set eth0.gateway 192.168.0.9; cp /etc/network/interfaces /run/whole
    cat /run/before >/etc/network/interfaces
    unshare --mount sh -c "mount --bind /tmp/slow/cat $(readlink -f "$(command -v cat)") &&
        exec velkctl set eth0.gateway 192.168.0.9 --no-journal" & set=$!
    while [ ! -s /tmp/slow/pid ]; do sleep 0.05; done
    kill -KILL $set $(pgrep -P $set) $(cat /tmp/slow/pid); wait $set 2>/dev/null
    while ! flock -n /var/tmp/vklib_lock true; do sleep 0.05; done
    '

it 'reports an edit that a power cut left with an empty file, and the lines that its copy would add'
script "$cut_short"'
    wc -c </etc/network/interfaces; cmp /var/tmp/interfaces /run/whole && echo "the copy is whole"
    velkctl doctor --json >/run/said
    jq -r ".findings[0] | .severity, .description, .remedy" /run/said | sed "s/[0-9]* seconds* old/N old/"
    velkctl doctor --json | grep -c "cat .* > "'
output_is '0
the copy is whole
problem
the file seems to have been cut while being copied; the rest is in the edit copy /var/tmp/interfaces, N old; the next set replaces it; the copy would add '"'# Interfaces of the device: eth0 is the wired port, eth1 the...', 'auto lo', 'auto eth0', 'auto eth1', 'iface eth0 inet static', 'address 192.168.0.10', 'netmask 255.255.255.0', 'gateway 192.168.0.9', 'iface eth1 inet dhcp', 'iface lo inet loopback'"'
compare: diff /etc/network/interfaces /var/tmp/interfaces; if the copy is right, write its text into /etc/network/interfaces as root
0'

it 'notes a set that replaces the lost text of a file'
script "$cut_short"'
    velkctl set eth0.gateway 192.168.0.8 --json --no-verify | jq -r ".notes[]" | sed "s/; the copy .*//"'
output_is 'eth0.gateway: this set replaces the edit copy /var/tmp/interfaces; /etc/network/interfaces seems cut by an interrupted edit'

it 'prints a line that discards an edit that was not copied, and names the changes of the edit'
script 'velkctl set ntp on; cp /var/cron/tabs/root /run/before
    umask 077; sed "s/^0/5/" /run/before >/var/tmp/root
    velkctl doctor --json >/run/said; jq -r ".findings[0] | .severity, .description" /run/said | sed "s/.*; the copy/the copy/"
    sh -c "$(jq -r ".findings[0].remedy" /run/said | grep -o "to discard.*" | grep -o "(flock[^)]*) 9< [a-z_/]*" | head -1)"
    cmp -s /var/cron/tabs/root /run/before && echo "as before"; ls /var/tmp; velkctl doctor'
output_is "warning
the copy would add '5 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp...'
as before
vklib_lock
no problems found"

it 'advises to look at a file that others may read if it may be the only complete text, and names no line of it'
script '(umask 022; { cat /etc/network/interfaces; echo "	up id >/tmp/x"; } >/var/tmp/interfaces)
    : >/etc/network/interfaces; velkctl doctor | grep -A 4 -e "/var/tmp/interfaces:" -e "up id"
    velkctl set eth0.gateway 192.168.0.9 2>&1 | grep -c "edit copy"'
output_is '  /var/tmp/interfaces: a file of user 0 with mode 644
  it has more text than /etc/network/interfaces
  a setuid program may have made it as its edit copy; the next set replaces it
  fix: it may be the only complete text
  look at it before you remove it: rm /var/tmp/interfaces
0'

it 'reports obstacles for the output of tools'
script 'mkfifo /var/tmp/get_result; velkctl doctor; velkctl get eth0.link-speed; ls /var/tmp'
findings_are 'warning: address, netmask and link-speed may not have been read
  /var/tmp/get_result: a FIFO is in the place of the output of tools
  the next reading removes it
0 problems, 1 warning
auto'
script 'ln -s /run/other /var/tmp/get_result; velkctl doctor; velkctl get eth0.link-speed; ls /run/other'
findings_are 'warning: address, netmask and link-speed may not have been read
  /var/tmp/get_result: a symbolic link is in the place of the output of tools
  the next reading removes it
0 problems, 1 warning
auto'

it 'reports obstacles for a query, and then does not ask the daemon'
script 'mkdir /dev/shm/sem.WlanAplRecvSem; velkctl doctor; ls -d /dev/shm/sem.WlanAplRecvSem'
findings_are 'problem: wireless settings can be neither read nor set
  /dev/shm/sem.WlanAplRecvSem: a folder is in the place of the semaphore
1 problem, 0 warnings
/dev/shm/sem.WlanAplRecvSem'

it 'finds a tool that is not where sudo looks'
script 'mkdir /run/mine; mv /sbin/ifup /run/mine; PATH=$PATH:/run/mine velkctl doctor'
status_is 1
output_is 'problem: ifup is in none of the folders that sudo searches
  no interface can be brought up again by a restart
  fix: ln -s /run/mine/ifup /usr/local/sbin/ifup
1 problem, 0 warnings'

it 'reports a wireless daemon that does not run'
examine 'rm /tmp/WlanAplToWlanSock'
status_is 1
findings_are 'problem: the wireless daemon does not run
  /tmp/WlanAplToWlanSock: its socket is missing
1 problem, 0 warnings'

it 'finds the cause of settings that are refused or cannot be read without an adapter'
script 'velk-sandbox adapter out; velkctl get eth1.mac-address; echo $?; velkctl get eth1.ssid; echo $?; velkctl doctor'
status_is 0
error_is "velkctl: eth1.mac-address: could not be read
  no supported wireless adapter is attached
  fix: attach an adapter of /usr/local/share/apps/wlan/supportlist.ini
  result: LIB_VELK_NO_ADAPTER (-5)
velkctl: eth1.ssid: could not be read
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  no adapter is attached
  fix: plug in an adapter; if that does not start the wireless daemon, start it
  result: LIB_VELK_FAILURE (-1)"
output_is '4
4
warning: wireless adapter is not attached
  /proc/bus/usb/devices: the list has no supported adapter
  the settings of eth1 about adapter and connection are refused
  fix: plug in one that /usr/local/share/apps/wlan/supportlist.ini names
warning: the wireless daemon does not run
  /tmp/WlanAplToWlanSock: its socket is missing; no adapter is attached
  fix: plug in an adapter; if that does not start the wireless daemon, start it
0 problems, 2 warnings'
script 'velk-sandbox adapter out; velkctl doctor --json |
    jq -r ".findings[] | .settings | [length, index(\"eth1.mac-address\"), index(\"eth1.ssid\")] | @json"'
output_is '[8,0,null]
[12,null,1]'

it 'reports a daemon with a record that is no configuration, and one with a record that cannot be read'
examine 'wland --tell empty'
status_is 0
findings_are 'warning: the wireless daemon may not answer with its configuration
  /tmp/WlanAplToWlanSock: its record has channel 0, which is not valid
0 problems, 1 warning'
examine 'wland --tell garbage'
status_is 1
findings_are 'problem: the wireless daemon answers with an error
  /tmp/WlanAplToWlanSock: file, socket, time-out or unreadable value
1 problem, 0 warnings'

it 'names the daemon as the cause when its answer differs from the value it was sent'
for way in empty garbage; do
    script "wland --tell $way; velkctl set eth1.ssid foo"
    status_is 6
    has 'standard error' "
  likely cause: /tmp/WlanAplToWlanSock: the wireless daemon was sent the value,
  but returns another one
  fix: set it again; if it differs again, restart the wireless daemon" "$error"
done

it 'reports a tab after a word, as a set then does'
script 'sed -i "/iface eth0/,/iface eth1/s/address 192.*/address\t1.2.3.4/" /etc/network/interfaces
    velkctl doctor | sed "s/interfaces:[0-9]*/interfaces:N/"; velkctl set eth0.address 10.0.0.7; echo $?
    grep "address" /etc/network/interfaces | head -2'
output_is "problem: eth0.address cannot be read, and a set adds a second address line
  /etc/network/interfaces:N: no blank follows the word 'address'
  fix: instead of line 8 write \"address 1.2.3.4\"
1 problem, 0 warnings
0
	address	1.2.3.4
	address 10.0.0.7"

it 'finds lines that end with CR LF, and its fix repairs them'
examine 'sed -i "s/$/\r/" /etc/network/interfaces /etc/dhclient-exit-hooks'
status_is 1
check 'findings' 'problem: method, address, netmask and gateway may be read and set wrongly
  /etc/network/interfaces: N of its N lines end with CR LF
problem: apipa, dhcp-notice and dhcp-ntp may be read and set wrongly
  /etc/dhclient-exit-hooks: N of its N lines end with CR LF
2 problems, 0 warnings' "$(grep -v '^  fix: ' <<<"$output" | sed 's/[0-9]* of its [0-9]* lines/N of its N lines/')"
script 'sed -i "s/$/\r/" /etc/network/interfaces; velkctl doctor | sed -n "s/^  fix: //p" | sh && velkctl doctor'
output_is 'no problems found'

it 'fails on files that are no text or too large to examine'
examine 'head -c 2000000 /dev/zero >/etc/network/interfaces; printf "\000\n" >>/var/cron/tabs/root'
status_is 1
findings_are 'problem: method, address, netmask and gateway cannot be examined
  /etc/network/interfaces: the file is larger than 1 MiB
problem: ntp, ntp-server and web-update may be read and set wrongly
  /var/cron/tabs/root: the file has NUL bytes, so it is not text
2 problems, 0 warnings'

it 'waits a few seconds for a silent daemon'
examine 'wland --tell silent'
status_is 1
error_is ''
findings_are 'problem: the wireless daemon does not answer
  /tmp/WlanAplToWlanSock: nothing came within 5 seconds
1 problem, 0 warnings'

it 'survives a semaphore that would end it'
examine ': >/dev/shm/sem.WlanAplRecvSem'
status_is 1
findings_are 'problem: reading a wireless setting ends the program (SIGBUS)
  /dev/shm/sem.WlanAplRecvSem: an empty file is in the place of the semaphore
1 problem, 0 warnings'

it 'shows any contents of files as text'
examine 'printf "# \033[2Jntpdate \377\n" >>/var/cron/tabs/root
    head -c 300000 /dev/zero >>/etc/dhclient-exit-hooks'
status_is 1
output_has "/var/cron/tabs/root:4: '# \\x1b[2Jntpdate \\xff' is taken for an entry"

it 'changes nothing'
on_device sh -c '
    facts() { find /etc/network /etc/dhclient* /var/tmp /var/libvelk /var/cron /tmp /dev/shm -exec stat -c "%n %i %s %a %Y %Z" {} +
        cat /etc/network/interfaces /etc/dhclient* /var/cron/tabs/root | cksum; }
    velkctl get eth0.link-speed eth1.ssid >/dev/null
    facts | grep -v "^/tmp \|^/dev/shm " >/run/before; velkctl doctor >/dev/null
    facts | grep -v "^/tmp \|^/dev/shm " >/run/after
    diff /run/before /run/after && echo same'
status_is 0
output_is 'same'

finish
