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
    # Makes the only entry one of another start of the device.
    other_boot() {
        python3 - $journal/0* <<END
import struct, sys, zlib
entry = open(sys.argv[1], "rb").read()
length = struct.unpack("<I", entry[:4])[0]
boot = open("/proc/sys/kernel/random/boot_id", "rb").read().strip()
header = entry[12:12 + length].replace(boot, b"0" * len(boot))
checksum = struct.pack("<I", zlib.crc32(entry[8:12] + header))
open(sys.argv[1], "wb").write(entry[:4] + checksum + entry[8:12] + header + entry[12 + length:])
END
    }
    # Makes the first entry one of a change that has restarted eth0.
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
    # Runs a client for eth0 that ifdown ends. Notes what is done with interfaces in /tmp/done.
    with_client() {
        python3 -c "import os; os.execv(\"/bin/sh\", [\"dhclient\", \"-c\", \"sleep 99; :\", \"eth0\"])" &
        client=$!
        until tr "\0" " " </proc/$client/cmdline | grep -q "^dhclient"; do sleep .02; done
        # Both names are those of one program.
        stand_in_script ifup "echo \${0##*/} \$1 >>/tmp/done" "case \$0 in *ifdown) kill $client ;; esac"
    }
    # Cuts the first entry after its first state: its change was prepared and not begun.
    prepare_only() {
        python3 - $journal/0*1-* <<END
import struct, sys
entry = open(sys.argv[1], "rb").read()
at = kind = 0
while kind != 3:
    length, _, kind = struct.unpack("<III", entry[at:at + 12])
    at += 12 + length
open(sys.argv[1], "wb").write(entry[:at])
END
    }
'
script() { on_device sh -c "$stand_in_word$words$1"; }

# ---- The lock between runs --------------------------------------------------------------------
it 'lets no set or restart run beside an apply, also without an entry'
script 'velk-sandbox adapter out; velkctl set location here --quiet; after=$(state)
    flock $journal/lock sleep 100 & while flock --nonblock $journal/lock true; do sleep 0.01; done
    for words in "set location there --no-journal" "restart eth0" "call set 3 --text there" \
            "call restart 1 eth0"; do
        velkctl $words; echo $?
    done
    velkctl call get 3 >/dev/null; echo $?; [ "$after" = "$(state)" ]'
status_is 0
output_is '3
3
3
3
0'
error_has 'velkctl: restart: nothing was changed
  another program is changing settings'

# ---- undo -------------------------------------------------------------------------------------
it 'takes the last set back, byte by byte'
script 'sed -i "s/address 192.168.0.10/&   # printed on the case/" $interfaces
    before=$(state); inode=$(stat -c %i $interfaces)
    velkctl set eth0.address 192.168.0.77 && [ "$before" != "$(state)" ] && velkctl undo --quiet &&
    [ "$before" = "$(state)" ] && [ "$inode" = "$(stat -c %i $interfaces)" ]'
status_is 0
output_is ''
error_is ''

it 'says which change is taken back, and by which one'
script 'velkctl set eth0.address 192.168.0.77 && velkctl undo >/tmp/said; other=$(ids | head -n 1)
    sed -E "s/[a-z0-9]{4} of [-0-9: ]+ is/ID of TIME is/; s/$other/OTHER/" /tmp/said'
status_is 0
output_is 'set ID of TIME is taken back by OTHER
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

it 'leaves the SNMP agent alone at boot: it starts later'
script 'velkctl set location here --quiet; interrupt; other_boot
    printf "#!/bin/sh\necho \"\$@\" >>/tmp/asked\n" >/tmp/agent
    chmod +x /tmp/agent; mount --bind /tmp/agent /etc/init.d/snmpd; velkctl recover --boot --quiet; echo "status $?"
    grep -c "syslocation.*window" /usr/local/share/etc/snmp/snmpd.conf; ls /tmp/asked'
output_is 'status 0
1'

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
    velkctl undo --json | sed -n "s/.*\(\"\(setting\|file\)\": .*\)/\1/p"
    [ "$before" = "$(state)" ] && entries | wc -l; velkctl undo --force --quiet; echo "status $?"
    velkctl get eth0.address'
output_is "velkctl: eth0.address: not put back
  it was set since, to '192.168.0.66'
  saved value: '192.168.0.10'; file: /etc/network/interfaces
  fix: 'velkctl undo ID --force' replaces it
velkctl: undo: nothing was changed
\"file\": \"/etc/network/interfaces\",
\"setting\": \"eth0.address\",
\"setting\": null,
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
status_is 2
error_is "velkctl: undo: there is no change 'nope'
  fix: 'velkctl history' lists the changes"
script 'velkctl set eth0.address 192.168.0.77; velkctl undo ""; echo "status $?"; velkctl get eth0.address'
output_is 'status 2
192.168.0.77'
error_is "velkctl: undo: there is no change ''
  fix: 'velkctl history' lists the changes"

it 'names each item that could not be put back'
script 'velkctl set eth0.address=192.168.0.77 location=here --quiet
    mount --bind -o ro $interfaces $interfaces && mount -o remount,ro,bind $interfaces
    velkctl undo --quiet'
status_is 9
error_has 'eth0.address: not put back'

# An undo of that undo must not call the address changed.
it 'names after an undo in part only the settings that were put back'
script 'velkctl set eth0.address=192.168.0.77 location=here --quiet
    mount --bind -o ro $interfaces $interfaces && mount -o remount,ro,bind $interfaces
    velkctl undo 2>/dev/null | sed -E "s/[a-z0-9]{4} of [-0-9: ]+ is/ID of TIME is/; s/by [a-z0-9]{4}(,|$)/by ID\1/"
    history | head -n 2; velkctl undo --quiet; velkctl get location'
status_is 0
output_is 'set ID of TIME is taken back in part by ID
  location  here -> Second floor, by the window
ID undo done
  location  here -> Second floor, by the window
here'

it 'says why a value cannot be read, and that nothing was changed'
script 'velk-sandbox cable out; velkctl set ssid=other --quiet; velk-sandbox adapter out; sleep 1
    for force in "" --force; do velkctl undo $force >/tmp/said 2>&1; echo "status $?"; cat /tmp/said; done
    entries | wc -l'
output_is "status 4
velkctl: eth1.ssid: not put back
  it cannot be read
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  no adapter is attached
  fix: plug in an adapter; if that does not start the wireless daemon, start it
  result: LIB_VELK_FAILURE (-1)
velkctl: undo: nothing was changed
status 4
velkctl: eth1.ssid: not put back
  it cannot be read
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  no adapter is attached
  fix: plug in an adapter; if that does not start the wireless daemon, start it
  result: LIB_VELK_FAILURE (-1)
velkctl: undo: nothing was changed
1"

it 'says that an interface has no address after its restart'
script 'velk-sandbox adapter out; velkctl set location here --quiet; with_restart
    stand_in_script ifup "ifconfig \$1 0.0.0.0 up"; velkctl undo >/tmp/said; echo "status $?"
    sed -E "s/[a-z0-9]{4} of [-0-9: ]+ is/ID of TIME is/; s/by [a-z0-9]{4}(,|$)/by ID\1/; s/[0-9]+ s/N s/" /tmp/said'
output_is 'status 6
set ID of TIME is taken back by ID, restarted eth0 (N s)
  location  here -> Second floor, by the window'
error_has 'eth0: '

# The cut file has one block of 4 KB; the whole one needs two.
it 'loses no file on a full disk'
script 'for line in $(seq 150); do echo "# a comment in line $line of the interfaces"; done >>$interfaces
    velkctl set eth0.address 192.168.0.77; cp $interfaces /tmp/new; mkdir /tmp/small
    mount -t tmpfs -o size=8k none /tmp/small && mount --move /tmp/small /etc/network
    head -c 4000 /tmp/new >$interfaces; head -c 4096 /dev/zero >/etc/network/fill; before=$(cat $interfaces)
    velkctl undo --quiet; echo "status $?"; [ "$before" = "$(cat $interfaces)" ] && echo whole'
output_is 'status 1
whole'

it 'puts a file back on a full disk if that needs no more room'
script 'velkctl set eth0.address 192.168.0.77; cp $interfaces /tmp/new; mkdir /tmp/small
    mount -t tmpfs -o size=8k none /tmp/small && mount --move /tmp/small /etc/network
    cp /tmp/new $interfaces; head -c 4096 /dev/zero >/etc/network/fill
    velkctl undo --quiet; echo "status $?"; velkctl get eth0.address'
output_is 'status 0
192.168.0.10'

# ---- the journal ------------------------------------------------------------------------------
it 'has no entry of a set that changes nothing'
script 'velkctl set eth0.address 192.168.0.10; velkctl set eth0.address 10.0.0.300; entries | wc -l
    velkctl history'
output_is '0
no changes'

it 'has no entry with --no-journal'
script 'velkctl set eth0.address 192.168.0.77 --no-journal; ls /var/libvelk/journal; velkctl undo'
status_is 1
output_is 'lock'

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
    velkctl undo --force 2>/dev/null; echo "status $?"; sed -i \$d /etc/dhclient-exit-hooks
    [ "$before" = "$(state)" ] && velkctl undo --quiet; echo "status $?"'
output_is 'ID  done
  eth0.dhcp-notice  unknown -> off
1
status 1
status 1
status 0'

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
script 'mkdir $journal && mount -t tmpfs -o size=4k,mode=700 none $journal && head -c 4096 /dev/zero >$journal/fill
    velkctl set eth0.address 192.168.0.77; echo "status $?"; velkctl get eth0.address; ls $journal'
output_is 'status 0
192.168.0.77
fill
lock'
error_is 'velkctl: note: set: undo cannot take this set back
  /var/libvelk/journal: No space left on device
  fix: free space on the disk of /var/libvelk, or give --no-journal'

it 'does not trust a journal where others may write'
script 'velkctl set eth0.address 192.168.0.77; chmod 777 $journal; velkctl undo; echo "status $?"
    velkctl recover --boot; echo "status $?"; velkctl get eth0.address'
output_is 'status 1
status 1
192.168.0.77'
error_has 'velkctl: undo: nothing was changed
  /var/libvelk/journal: Operation not permitted
  fix: make /var/libvelk/journal a folder of root where nobody else can write'

it 'finds a journal that is nearly full before the set'
script 'for line in $(seq 40); do echo "# a comment in line $line of the interfaces"; done >>$interfaces
    mkdir $journal && mount -t tmpfs -o size=4k,mode=700 none $journal
    velkctl set eth0.address 192.168.0.77; echo "status $?"; velkctl recover; velkctl get eth0.address'
output_is 'status 0
nothing to recover
192.168.0.77'
error_has 'velkctl: note: set: undo cannot take this set back
  /var/libvelk/journal: No space left on device'

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
    other_boot
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
output_is "velkctl: eth0.address: not put back
  it was set since, to '192.168.0.66'
  saved value: '192.168.0.10'; file: /etc/network/interfaces
  fix: 'velkctl recover --force' replaces it; 'velkctl recover --keep' keeps it
change ID of TIME is put back in part
ID  stuck
status 9
status 0
192.168.0.10"

stuck_words='
    # Leaves a change of the address and the location stuck: the location was set since. The address
    # is put back.
    make_stuck() {
        velkctl set eth0.address=192.168.0.77 location=ours --quiet; interrupt
        velkctl set location=third --no-journal --quiet
        velkctl recover --quiet 2>/dev/null; echo "status $?"
    }
'
it 'leaves a value that was set after recover'
script "$stuck_words"'make_stuck; velkctl set eth0.address 192.168.0.77 --no-journal; velkctl recover --quiet 2>/dev/null
    echo "status $?"; velkctl get eth0.address location'
output_is 'status 9
status 9
eth0.address  192.168.0.77
location      third'

it 'replaces a value that was set since with --force'
script "$stuck_words"'make_stuck; velkctl recover --force --quiet; echo "status $?"; velkctl get location; history
    velkctl recover'
output_is 'status 9
status 0
Second floor, by the window
ID  reverted
  location      Second floor, by the window -> ours
  eth0.address  192.168.0.10 -> 192.168.0.77
nothing to recover'

it 'closes a change as it is with --keep'
script "$stuck_words"'make_stuck; velkctl recover --keep | sed -E "s/change .{4} of [-0-9: ]+ is/change ID of TIME is/"
    velkctl get eth0.address location; history | head -n 1; velkctl recover; velkctl recover --keep --force
    echo "status $?"; velkctl undo "$(ids)" 2>&1 | sed "s/change [a-z0-9]*/change ID/"'
output_is 'status 9
change ID of TIME is closed; the present values stay
eth0.address  192.168.0.10
location      third
ID  kept
nothing to recover
status 2
velkctl: undo: change ID cannot be taken back
  kept'
error_is 'velkctl: recover: --force and --keep exclude each other; give one of them'

it 'closes no change with --keep that has left a file short'
script 'velkctl set eth0.address 192.168.0.77; interrupt; printf "# " >$interfaces
    velkctl recover --keep 2>&1 | sed "s/change [a-z0-9]*/change ID/"; history | head -n 1; velkctl recover --quiet
    velkctl get eth0.address'
output_is "velkctl: change ID: not closed
  /etc/network/interfaces was cut
  fix: 'velkctl recover' puts it back
ID  interrupted
192.168.0.10"

it 'keeps the value of a later change'
script 'velkctl set eth0.address=192.168.0.77 location=ours --quiet; interrupt; velkctl set location third --quiet
    velkctl recover >/tmp/said; echo "status $?"; velkctl get eth0.address location; history | sed -n 3p'
output_is 'status 0
eth0.address  192.168.0.10
location      third
ID  reverted'
error_is 'velkctl: note: location: keeps its value, which a later change has set'

# The later change is stuck. The first change puts the address back, and no other program does.
it 'takes two changes back, one after the other'
script 'velkctl set eth0.address=192.168.0.77 --quiet; interrupt
    velkctl set eth0.address=192.168.0.66 location=ours --quiet 2>/dev/null; interrupt
    velkctl set location=third --no-journal --quiet
    velkctl recover --quiet 2>/dev/null; echo "status $?"; velkctl set location=ours --no-journal --quiet
    velkctl recover --quiet; echo "status $?"; velkctl get eth0.address location; velkctl recover'
error_is ''
output_is 'status 9
status 0
eth0.address  192.168.0.10
location      Second floor, by the window
nothing to recover'

it 'recovers nothing while another program changes settings'
script 'velkctl set eth0.address 192.168.0.77; interrupt
    flock /var/tmp/vklib_lock velkctl recover | sed -E "s/change .{4} of [-0-9: ]+ is/change ID of TIME is/"
    flock /var/tmp/vklib_lock velkctl undo; flock $journal/lock velkctl recover; echo "status $?"
    velkctl recover --quiet; velkctl get eth0.address'
error_has 'flock, 0 seconds old'
output_is 'change ID of TIME is not put back: another program is changing settings
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

it 'gives the trial run the time that it needs, in spite of --timeout'
on_device bash -c "$words"'
    cp $interfaces /tmp/before
    velkctl set eth0.address 192.168.0.77 --quiet; interrupt
    end=$(grep -b -m1 -o 192.168.0.77 $interfaces | cut -d: -f1)
    cp $interfaces /tmp/new; head -c $((end + 30)) /tmp/new >$interfaces
    cat=$(readlink -f "$(command -v cat)")
    cp "$cat" /run/cat
    # The processes of the trial have small numbers.
    printf "#!/bin/sh\n[ \$\$ -gt 12 ] || sleep 2\nexec /run/cat \"\$@\"\n" >/tmp/cat
    chmod +x /tmp/cat; mount --bind /tmp/cat "$cat"
    velkctl recover --timeout 1 --quiet; echo "$?"
    umount "$cat"; cmp $interfaces /tmp/before && echo same'
status_is 0
output_is '0
same'

it 'restarts the interfaces that the change has restarted'
script 'velk-sandbox adapter out; velkctl set eth0.address 192.168.0.77
    with_restart; velkctl restart eth0; velkctl undo --quiet; echo "status $?"
    ifconfig eth0 | grep -o "192\.168\.0\.[0-9]*" | head -n 1'
output_is 'eth0: 192.168.0.77 (static)
status 0
192.168.0.10'

it 'leaves no interface down if not all is put back'
script 'velk-sandbox adapter out; velkctl set eth0.method=dhcp location=there --quiet --no-verify
    with_restart; with_client; for file in /var/libvelk/libvelk /usr/local/share/etc/snmp/snmpd.conf; do
        mount --bind $file $file && mount -o remount,ro,bind $file
    done
    velkctl undo --quiet 2>/dev/null; echo "status $?"; velkctl get eth0.method
    sed -n "1p;\$p" /tmp/done'
output_is 'status 9
static
ifdown eth0
ifup eth0'

it 'restarts the interfaces in spite of a signal and of --timeout'
script 'velk-sandbox adapter out; velkctl set eth0.address 192.168.0.77 --quiet; with_restart
    ifup=$(readlink -f "$(command -v ifup)"); cp "$ifup" /tmp/own-ifup
    printf "#!/bin/sh\ncase \$0 in *ifup) touch /tmp/slow; sleep 2 ;; esac\n" >/tmp/ifup
    echo "exec -a \"\$0\" /tmp/own-ifup \"\$@\"" >>/tmp/ifup
    sed -i "1s/sh/bash/" /tmp/ifup; chmod +x /tmp/ifup; mount --bind /tmp/ifup "$ifup"
    velkctl undo --quiet & undo=$!
    until [ -e /tmp/slow ]; do sleep .05; done
    kill -TERM "$undo"; wait "$undo"; echo "status $?"; velkctl get eth0.address
    rm /tmp/slow; velkctl undo --quiet --timeout 1; echo "status $?"; velkctl get eth0.address
    ip -brief address show dev eth0 | tr -s " " | cut -d " " -f 3; velkctl recover'
error_has 'velkctl: interrupted; the change is taken back'
output_is 'status 143
192.168.0.10
status 0
192.168.0.77
192.168.0.77/24
nothing to recover'

it 'restarts an interface if a part is put back'
script 'velk-sandbox adapter out; velkctl set eth0.address=192.168.0.77 location=ours --quiet --no-verify
    with_restart; interrupt; velkctl set location=third --no-journal --quiet; velkctl restart eth0
    velkctl recover --quiet 2>/dev/null; echo "status $?"
    ifconfig eth0 | grep -o "192\.168\.0\.[0-9]*" | head -n 1'
output_is 'eth0: 192.168.0.77 (static)
status 9
192.168.0.10'

it 'takes no interface down if another program takes the lock'
script 'velk-sandbox adapter out; velkctl set eth0.method=dhcp --quiet --no-verify; with_restart; interrupt
    with_client; flock /var/tmp/vklib_lock velkctl recover --quiet; echo "status $?"; ls /tmp | grep done'
output_is 'status 3'
error_has ': not put back'

it 'does nothing for a change that was not begun'
script 'velk-sandbox adapter out; velkctl set eth0.method=dhcp --quiet --no-verify; with_restart; prepare_only
    with_client; velkctl recover | sed -E "s/change .{4} of [-0-9: ]+ w/change ID of TIME w/"
    ls /tmp/done; history'
output_is 'change ID of TIME was not begun
ID  reverted
  eth0.method  static -> dhcp'

it 'says why a file of the journal is no entry'
script 'mkdir -m 700 $journal && mkdir $journal/000001-bbbb && echo torn >$journal/000002-cccc
    velkctl set eth0.address 192.168.0.77 --quiet
    { head -c -1 $journal/000003-*; } >$journal/000004-dddd
    # The state frame of a done change alone, with its checksum.
    tail -c 28 $journal/000003-* >$journal/000005-ffff
    velkctl history | sed -n "s/  [-0-9]* [0-9:]*//; /^[bcdf][bcdf]/p"
    velkctl recover 2>&1 | sed -E "s/ of [-0-9: ]+ is/ is/"; velkctl get eth0.address; entries | wc -l'
output_is 'ffff  damaged
dddd  set by user 0  interrupted
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
    echo "status $?"; velkctl get eth0.address'
output_is 'status 3
192.168.0.77'
error_has 'velkctl: set: nothing was changed
  another program is changing settings
  process '
error_has ' holds the lock
  fix: try again, or let --wait=SECONDS try again'

it 'names the process that keeps undo and recover waiting'
script 'holder() { sed -E "s/process [0-9]+ .*[^;] old\)/process N/"; }
    velkctl set eth0.address 192.168.0.77; flock $journal/lock sleep 9 & sleep .3
    velkctl undo 2>&1 | holder; velkctl recover 2>&1 | holder; velkctl undo --wait=1 2>&1 | holder
    velkctl recover --wait=1 2>&1 | holder; velkctl get eth0.address'
output_is 'velkctl: undo: nothing was changed
  another program is changing settings
  process N holds the lock
  fix: try again, or let --wait=SECONDS try again
velkctl: recover: the journal cannot be used
  another program is changing settings
  process N holds the lock
  fix: try again, or let --wait=SECONDS try again
velkctl: note: waiting at most 1 s for the lock, held by process N
velkctl: undo: nothing was changed
  another program is changing settings
  process N holds the lock
  fix: try again, or let --wait=SECONDS try again
velkctl: note: waiting at most 1 s for the lock, held by process N
velkctl: recover: the journal cannot be used
  another program is changing settings
  process N holds the lock
  fix: try again, or let --wait=SECONDS try again
192.168.0.77'

it 'notes an interrupted change below other changes'
script 'velk-sandbox adapter out; velkctl set eth0.address 192.168.0.77; interrupt
    velkctl set location=one --quiet; velkctl set location=two 2>&1 | sed "s/change [a-z0-9]*/change ID/"
    velkctl undo 2>&1 >/dev/null | sed "s/change [a-z0-9]*/change ID/"
    velkctl restart eth0 2>&1 >/dev/null | sed "s/change [a-z0-9]*/change ID/"
    velkctl doctor | grep -A 2 "was interrupted" | sed "s/change [a-z0-9]*/change ID/; s/[0-9a-z]*-[0-9a-z]*:/FILE:/"'
output_is "velkctl: note: change ID was interrupted
  fix: 'velkctl recover' takes it back
velkctl: note: change ID was interrupted
  fix: 'velkctl recover' takes it back
velkctl: note: change ID was interrupted
  fix: 'velkctl recover' takes it back
problem: change ID was interrupted
  /var/libvelk/journal/FILE: it is neither finished nor taken back
  fix: velkctl recover"

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
