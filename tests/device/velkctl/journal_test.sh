# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# journal_test.sh - the journal of changes: undo, history and recover.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Functions for the scripts on the device.
words='
    interfaces=/etc/network/interfaces
    journal=/var/libvelk/journal
    entries() { ls $journal | grep -v lock; }
    ids() { velkctl history --no-pager | sed -n "s/^\([a-z0-9]\{4\}\)  .*/\1/p"; }
    # Prints a history without ids and times.
    history() { velkctl history --no-pager | sed -E "s/^.{4}  [-0-9]+ [:0-9]+  (undo)?.*  /ID \1 /"; }
    state() { cat /etc/network/interfaces /etc/dhclient* /sbin/dhclient-script \
        /etc/resolv.dnsmasq.conf /var/cron/tabs/root /var/libvelk/libvelk \
        /usr/local/share/etc/snmp/snmpd.conf | cksum; }
    # Replaces the last state of the last entry: its change looks interrupted.
    interrupt() {
        entry=$journal/$(entries | tail -n 1)
        head -c -$((12 + 16)) "$entry" >/tmp/entry
        cat /tmp/entry >"$entry"
    }
'
script() { on_device sh -c "$words$1"; }

# ---- undo -------------------------------------------------------------------------------------
it 'takes the last set back, byte by byte'
script 'sed -i "s/address 192.168.0.10/&   # printed on the case/" $interfaces
    before=$(state); inode=$(stat -c %i $interfaces)
    velkctl set eth0.address 192.168.0.77 && [ "$before" != "$(state)" ] && velkctl undo --quiet &&
    [ "$before" = "$(state)" ] && [ "$inode" = "$(stat -c %i $interfaces)" ]'
status_is 0
output_is ''
error_is ''

it 'says which change is taken back'
script 'velkctl set eth0.address 192.168.0.77 && velkctl undo | sed -E "s/[a-z0-9]{4} of [-0-9: ]+ is/ID of TIME is/"'
status_is 0
output_is 'set ID of TIME is taken back
  eth0.address  192.168.0.77 -> 192.168.0.10'

it 'makes the change again by an undo of the undo'
script 'velkctl set eth0.address 192.168.0.77; after=$(state)
    velkctl undo --quiet && velkctl undo --quiet && [ "$after" = "$(state)" ] && history'
status_is 0
output_is 'ID undo done
  eth0.address  192.168.0.10 -> 192.168.0.77
ID undo done
  eth0.address  192.168.0.77 -> 192.168.0.10
ID  done
  eth0.address  192.168.0.10 -> 192.168.0.77'

it 'takes every setting back'
script 'velk-sandbox cable out; before=$(state)
    velkctl set administrator=me location=here ntp=off dhcp-ntp=on ntp-server=time.example \
        web-update="daily 03:00" eth0.method=dhcp eth0.apipa=on eth0.dhcp-dns=on eth0.dns=9.9.9.9 \
        eth0.dhcp-notice=off eth0.link-speed=100-full ssid=other psk="another key" channel=3 --force \
        --quiet --no-verify
    velkctl undo --quiet; echo "status $?"
    [ "$before" = "$(state)" ] && velkctl get eth0.link-speed ssid psk channel --show-secrets'
status_is 0
output_is 'status 0
eth0.link-speed  auto
eth1.ssid        velk-lab
eth1.psk         sample-key-of-the-desk
eth1.channel     6'

it 'restarts the SNMP agent for its old file'
script 'velkctl set location here --quiet; printf "#!/bin/sh\necho \"\$@\" >>/tmp/asked\n" >/tmp/agent
    chmod +x /tmp/agent; mount --bind /tmp/agent /etc/init.d/snmpd; velkctl undo --quiet; cat /tmp/asked
    grep -c "syslocation.*window" /usr/local/share/etc/snmp/snmpd.conf; velkctl undo --quiet; cat /tmp/asked'
output_is 'restart
1
restart
restart'

it 'takes back the change that is named'
script 'velkctl set eth0.address 192.168.0.77; velkctl set eth0.gateway 192.168.0.9
    velkctl undo "$(ids | tail -n 1)" --quiet; echo "status $?"; velkctl get eth0.address eth0.gateway'
output_is 'status 0
eth0.address  192.168.0.10
eth0.gateway  192.168.0.9'

it 'keeps the text of another program'
script 'velkctl set eth0.address 192.168.0.77; echo "# theirs" >>$interfaces
    velkctl undo --quiet; echo "status $?"; velkctl get eth0.address; tail -n 1 $interfaces'
output_is 'status 0
192.168.0.10
# theirs'

it 'changes nothing if a value was set since, unless it is forced'
script 'velkctl set eth0.address 192.168.0.77; velkctl set eth0.address 192.168.0.66 --no-journal
    before=$(state); velkctl undo 2>&1 | sed "s/undo [a-z0-9]* --/undo ID --/"
    [ "$before" = "$(state)" ] && entries | wc -l; velkctl undo --force --quiet; echo "status $?"
    velkctl get eth0.address'
output_is "velkctl: eth0.address: not put back
  another program has set it since
velkctl: undo: nothing was changed
  fix: 'velkctl undo ID --force' replaces these values
1
status 0
192.168.0.10"

it 'has nothing to do for a change that is already taken back'
script 'velkctl set eth0.address 192.168.0.77; id=$(ids); velkctl undo --quiet
    velkctl undo "$id" | sed "s/$id/ID/"; entries | wc -l'
output_is 'change ID is already taken back
2'

it 'refuses to take back a change that it does not have'
script 'velkctl undo'
status_is 1
error_is 'velkctl: undo: there is no change to take back'
script 'velkctl undo nope'
status_is 1
error_is "velkctl: undo: there is no change 'nope'
  fix: 'velkctl history' lists the changes"

it 'names each item that could not be put back'
script 'velkctl set eth0.address=192.168.0.77 location=here --quiet
    mount --bind -o ro $interfaces $interfaces && mount -o remount,ro,bind $interfaces
    velkctl undo --quiet'
status_is 9
error_has 'eth0.address: not put back'

it 'loses no file on a full disk'
script 'velkctl set eth0.address 192.168.0.77
    mkdir /tmp/small && mount -t tmpfs -o size=8k none /tmp/small && cp $interfaces /tmp/small/x
    cp -R /etc/network/. /tmp/keep; mount --move /tmp/small /etc/network; cp /tmp/keep/* /etc/network
    head -c 8192 /dev/zero >/etc/network/fill 2>/dev/null; before=$(cat $interfaces)
    velkctl undo --quiet; echo "status $?"; [ "$before" = "$(cat $interfaces)" ] && echo whole'
output_is 'status 9
whole'

# ---- the journal ------------------------------------------------------------------------------
it 'has no entry of a set that changes nothing'
script 'velkctl set eth0.address 192.168.0.10; velkctl set eth0.address 10.0.0.300; entries | wc -l
    velkctl history'
output_is '0
no changes'

it 'has no entry with --no-journal'
script 'velkctl set eth0.address 192.168.0.77 --no-journal; ls /var/libvelk; velkctl undo'
status_is 1
output_is 'libvelk'

it 'is readable by its owner alone, and shows no key'
script 'velk-sandbox cable out; velkctl set psk "another key"; stat -c "%a" $journal $journal/0*
    velkctl history | grep -c "another key"; velkctl history --json | grep -c "another key"
    velkctl undo --json | grep -c "another key"; velkctl history | tail -n 1'
output_is '700
600
0
0
0
  eth1.psk  ******** -> ********'

it 'names a value that it does not know'
script 'velkctl set eth0.dhcp-notice off --quiet; history; velkctl history --json | grep -c "\"old\": null"
    before=$(state); echo "# theirs" >>/etc/dhclient-exit-hooks; velkctl undo 2>/dev/null; echo "status $?"
    velkctl undo --force; echo "status $?"; sed -i \$d /etc/dhclient-exit-hooks
    [ "$before" = "$(state)" ] && velkctl undo --quiet; echo "status $?"'
output_is 'ID  done
  eth0.dhcp-notice  unknown -> off
1
status 1
status 9
status 0'
error_is 'velkctl: eth0.dhcp-notice: not put back
  its old value is not known'

it 'says that the journal cannot be read'
script 'touch $journal; velkctl history'
status_is 1
error_is 'velkctl: history: the journal cannot be read
  /var/libvelk/journal: Not a directory
  fix: make /var/libvelk/journal a folder that can be written'

it 'keeps the sixteen last changes'
script 'for i in 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28; do
        velkctl set eth0.address 192.168.0.$i --no-verify --quiet
    done
    entries | wc -l; velkctl history | sed -n "2p;\$p"'
output_is '16
  eth0.address  192.168.0.27 -> 192.168.0.28
  eth0.address  192.168.0.12 -> 192.168.0.13'

it 'records the settings that were set before a failure'
script 'velkctl set ntp-server none --quiet --no-journal; sed -i /ntpdate/d /var/cron/tabs/root
    velkctl set eth0.address=192.168.0.9 ntp-server=time.example location=here --quiet
    history'
output_is 'ID  done
  location  Second floor, by the window -> here'

it 'lets a set go on if it cannot be written'
script 'mount -t tmpfs -o ro none /var/libvelk 2>/dev/null; velkctl set eth0.address 192.168.0.77
    echo "status $?"; velkctl get eth0.address; velkctl undo'
status_is 1
output_is 'status 0
192.168.0.77'
error_is 'velkctl: note: set: undo cannot take this set back
  /var/libvelk/journal: Read-only file system
  fix: make /var/libvelk/journal a folder that can be written, or give --no-journal
velkctl: undo: nothing was changed
  /var/libvelk/journal: Read-only file system
  fix: make /var/libvelk/journal a folder that can be written'

it 'lets a set go on if its disk is full'
script 'mkdir $journal && mount -t tmpfs -o size=4k none $journal && head -c 4096 /dev/zero >$journal/fill
    velkctl set eth0.address 192.168.0.77; echo "status $?"; velkctl get eth0.address; ls $journal'
output_is 'status 0
192.168.0.77
fill
lock'
error_is 'velkctl: note: set: undo cannot take this set back
  /var/libvelk/journal: No space left on device
  fix: free space on the disk of /var/libvelk, or give --no-journal'

it 'leaves an entry of a later velkctl alone'
script 'python3 - <<END
import struct, zlib
payload = b"{\"schema\":2,\"id\":\"k7f2\",\"time\":0,\"user\":0}"
kind = struct.pack("<I", 1)
import os
os.mkdir("/var/libvelk/journal", 0o700)
with open("/var/libvelk/journal/000001-k7f2", "wb") as entry:
    entry.write(struct.pack("<II", len(payload), zlib.crc32(kind + payload)) + kind + payload)
END
    before=$(cksum <$journal/000001-k7f2)
    velkctl recover; echo "status $?"; velkctl undo k7f2; echo "status $?"
    velkctl history | sed "s/[-0-9]* [:0-9]*/TIME/2"; velkctl set eth0.address 192.168.0.77
    [ "$before" = "$(cksum <$journal/000001-k7f2)" ]'
status_is 0
error_has 'velkctl: note: recover: /var/libvelk/journal/000001-k7f2 is left as it is
  made by a later velkctl'
error_has 'velkctl: undo: change k7f2 cannot be taken back
  made by a later velkctl'

# ---- recover ----------------------------------------------------------------------------------
it 'finds nothing to recover'
script 'velkctl set eth0.address 192.168.0.77; velkctl recover; velkctl recover --boot'
status_is 0
output_is 'nothing to recover
nothing to recover'

it 'takes back a change that was interrupted'
script 'before=$(state); velkctl set eth0.address 192.168.0.77; interrupt; history
    velkctl undo; velkctl set eth0.gateway 192.168.0.9 2>&1 | sed "s/change [a-z0-9]*/change ID/"
    velkctl recover | sed -E "s/change .{4} of [-0-9: ]+ is/change ID of TIME is/"; echo "status $?"
    velkctl get eth0.address eth0.gateway; history | tail -n 2'
output_is "ID  interrupted
  eth0.address  192.168.0.10 -> 192.168.0.77
velkctl: note: change ID was interrupted
  fix: 'velkctl recover' takes it back
change ID of TIME is put back
status 0
eth0.address  192.168.0.10
eth0.gateway  192.168.0.9
ID  reverted
  eth0.address  192.168.0.10 -> 192.168.0.77"
error_has 'was interrupted'

it 'takes back at boot the changes from before it, and later the values of the daemon'
script 'velk-sandbox cable out
    velkctl set eth0.address=192.168.0.77 ssid=other; interrupt; velkctl recover --boot
    python3 - $journal/0* <<END
import struct, sys, zlib
entry = open(sys.argv[1], "rb").read()
length = struct.unpack("<I", entry[:4])[0]
boot = open("/proc/sys/kernel/random/boot_id", "rb").read().strip()
header = entry[12:12 + length].replace(boot, b"0" * len(boot))
checksum = struct.pack("<I", zlib.crc32(entry[8:12] + header))
open(sys.argv[1], "wb").write(entry[:4] + checksum + entry[8:12] + header + entry[12 + length:])
END
    velkctl recover --boot | sed -E "s/change .{4} of [-0-9: ]+ w/change ID of TIME w/"
    velkctl get eth0.address ssid; history | head -n 1
    velkctl recover | sed -E "s/change .{4} of [-0-9: ]+ is/change ID of TIME is/"
    velkctl get eth0.address ssid; velkctl recover'
status_is 0
output_is 'nothing to recover
change ID of TIME waits for the wireless daemon
eth0.address  192.168.0.10
eth1.ssid     other
ID  interrupted
change ID of TIME is put back
eth0.address  192.168.0.10
eth1.ssid     velk-lab
nothing to recover'

it 'names the items that recover cannot put back, and tries again'
script 'velkctl set eth0.address 192.168.0.77; interrupt
    velkctl set eth0.address 192.168.0.66 --no-journal
    velkctl recover 2>&1 | sed -E "s/change .{4} of [-0-9: ]+ is/change ID of TIME is/"; history | head -n 1
    velkctl recover --quiet 2>/dev/null; echo "status $?"; velkctl set eth0.address 192.168.0.77 --no-journal
    velkctl recover --quiet; echo "status $?"; velkctl get eth0.address'
output_is 'velkctl: eth0.address: not put back
  another program has set it since
change ID of TIME is put back in part
ID  stuck
status 9
status 0
192.168.0.10'

it 'recovers nothing while another program changes settings'
script 'velkctl set eth0.address 192.168.0.77; interrupt
    flock /var/tmp/vklib_lock velkctl recover | sed -E "s/change .{4} of [-0-9: ]+ a/change ID of TIME a/"
    flock /var/tmp/vklib_lock velkctl undo; flock $journal/lock velkctl recover; echo "status $?"
    velkctl recover --quiet; velkctl get eth0.address'
output_is 'change ID of TIME another program is changing settings
status 3
192.168.0.10'

# The first set was killed after its last write, before its image was recorded.
it 'takes back a file that only a trial run recognises'
script 'sed -i "s/address 192/address   192/" $interfaces; before=$(state)
    velkctl set eth0.address 192.168.0.77; entry=$journal/$(entries)
    python3 - "$entry" <<END
import struct, sys
entry = open(sys.argv[1], "rb").read()
kept = at = 0
while at < len(entry):
    length, _, kind = struct.unpack("<III", entry[at:at + 12])
    at += 12 + length
    if kind == 4:
        break
    kept = at
open(sys.argv[1], "wb").write(entry[:kept])
END
    velkctl recover --quiet; echo "status $?"; [ "$before" = "$(state)" ] && echo "same bytes"'
error_is ''
output_is 'status 0
same bytes'

it 'restarts the interfaces that the change has restarted'
script 'velk-sandbox adapter out; velkctl set eth0.address 192.168.0.77
    with_restart() {
        python3 - $journal/0*1-* <<END
import struct, sys, zlib
entry = open(sys.argv[1], "rb").read()
length = struct.unpack("<I", entry[:4])[0]
header = entry[12:12 + length].replace(b"\"restarts\":[]", b"\"restarts\":[\"eth0\"]")
checksum = struct.pack("<I", zlib.crc32(entry[8:12] + header))
start = struct.pack("<I", len(header)) + checksum + entry[8:12]
open(sys.argv[1], "wb").write(start + header + entry[12 + length:])
END
    }
    with_restart; velkctl restart eth0; velkctl undo --quiet; echo "status $?"
    ifconfig eth0 | grep -o "192\.168\.0\.[0-9]*" | head -n 1'
output_is 'eth0: 192.168.0.77 (static)
status 0
192.168.0.10'

it 'says why a file of the journal is no entry'
script 'mkdir -m 700 $journal && mkdir $journal/000001-bbbb && echo torn >$journal/000002-cccc
    velkctl set eth0.address 192.168.0.77 --quiet
    { head -c -1 $journal/000003-*; } >$journal/000004-dddd
    # The state frame of a done change alone, with its checksum.
    tail -c 28 $journal/000003-* >$journal/000005-ffff
    velkctl history | sed -n "s/  [-0-9]* [0-9:]*//; /^[bcdf][bcdf]/p"
    velkctl recover 2>&1 | sed -E "s/ of [-0-9: ]+ is/ is/"; velkctl get eth0.address; entries | wc -l'
output_is 'ffff  damaged
dddd  set  interrupted
cccc  not begun
bbbb  Is a directory
velkctl: note: recover: /var/libvelk/journal/000001-bbbb is left as it is
  Is a directory
velkctl: note: recover: /var/libvelk/journal/000005-ffff is left as it is
  damaged
change dddd is put back
192.168.0.10
4'

it 'waits for no answer of a silent daemon for its old value'
script 'velk-sandbox cable out; daemon=$(cat /run/velk-sandbox/wland.pid); kill -STOP $daemon; start=$(date +%s)
    velkctl set ssid=x --timeout 1; echo "status $?"; [ $(($(date +%s) - start)) -lt 20 ]; echo $?
    entries | wc -l; kill -CONT $daemon'
output_is 'status 7
0
1'

it 'refuses a set while another run changes settings'
script 'velkctl set eth0.address 192.168.0.77; flock $journal/lock velkctl set eth0.address 192.168.0.9
    echo "status $?"; flock $journal/lock velkctl undo; echo "status $?"; velkctl get eth0.address'
output_is 'status 3
status 3
192.168.0.77'
error_is 'velkctl: set: nothing was changed
  another program is changing settings
  fix: try again, or let --wait=SECONDS try again
velkctl: undo: nothing was changed
  another program is changing settings
  fix: try again, or let --wait=SECONDS try again'

# Kills velkctl and everything it has started, at different moments of a set.
it 'has all old or all new values after each kill and recover'
script 'velkctl set location="machine room" --quiet; bad=0; killed=0
    for pause in 0 .002 .004 .006 .008 .01 .012 .015 .018 .02 .025 .03 .035 .04 .05; do
        velkctl set eth0.address=192.168.0.77 location=there ntp=off --quiet & tool=$!
        sleep $pause; kill -9 $tool 2>/dev/null && killed=$((killed + 1)); wait $tool 2>/dev/null
        sleep .2; velkctl recover --quiet || bad=$((bad + 1))
        case $(velkctl get --value eth0.address location ntp | tr "\n" " ") in
            "192.168.0.10 machine room on " | "192.168.0.77 there off ") ;;
            *) bad=$((bad + 1)); velkctl get eth0.address location ntp ;;
        esac
        velkctl set eth0.address=192.168.0.10 location="machine room" ntp=on --quiet --no-journal
    done
    echo "bad $bad"; [ $killed -gt 0 ]' 2>/dev/null
status_is 0
output_is 'bad 0'

finish
