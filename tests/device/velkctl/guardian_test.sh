# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# guardian_test.sh - a change that waits, on terminals, with other clocks, beside other programs.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck disable=SC2089,SC2090  # Python reads these quotes
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/velkctl/waiting.sh
. "$VELK_SOURCE/tests/device/velkctl/waiting.sh" || exit

needs_sandbox
command -v python3 >/dev/null || skip 'no python3 here, for the terminal'

# Runs a command at a terminal of its own, and prints its output. Each EXPECTED=INPUT types the input, and a
# newline, when the output has the text; an empty input hangs up.
terminal='
import os, pty, select, sys, time
pairs = [pair.split("=") for pair in sys.argv[2:]]
child, master = pty.fork()
if child == 0:
    os.execvp("sh", ["sh", "-c", sys.argv[1]])
output = ""
end = time.monotonic() + 60
while time.monotonic() < end:
    if pairs and pairs[0][0] in output:
        if not pairs[0][1]:
            break
        os.write(master, pairs.pop(0)[1].encode() + b"\n")
    if not select.select([master], [], [], 0.1)[0]:
        continue
    try:
        block = os.read(master, 4096).decode()
    except OSError:
        break
    if not block:
        break
    output += block
print(output.replace("\r\n", "\n").replace("\r", "\n"), end="")
os.close(master)
'
# Prints the lines of the system log, with a full stop after each.
log='
import socket
log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log.bind("/dev/log")
while True:
    print(log.recv(4096).decode().strip("\0\n") + ".", flush=True)
'
export terminal log
ask='velkctl apply eth0.address=192.168.0.77 --restart never --ask; echo "status $?"'

start 1 'python3 -c "$terminal" "velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 10 --quiet; echo waits; cat" waits=
    guardians | wc -l; until_true is_back; until_true has_none; echo back'
start 2 'python3 -c "$terminal" "velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 10 --quiet; cat" "put back=" | plain
    until_true has_none'
start 3 'python3 -c "$terminal" '"'$ask'"' "keep the change?=y" "status="; velkctl history | sed -n "1s/.*  //p"'
start 4 'python3 -c "$terminal" '"'$ask'"' "keep the change?=n" "status="; is_back && echo back'
start 5 'python3 -c "$terminal" '"'$ask'"' "keep the change?="; sleep 1; velkctl history | sed -n "1s/.*  //p"; velkctl revert --quiet'
start 6 'command -v faketime >/dev/null || { echo "no faketime"; exit; }
    export FAKETIME_DONT_FAKE_MONOTONIC=1 DONT_FAKE_MONOTONIC=1
    faketime -f +1y velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 20 --quiet
    faketime -f -1y velkctl pending --json | sed -n "s/.*seconds_left...\([12][0-9]\?\),\$/at most 20 seconds/p"; faketime -f +2y velkctl get eth0.address; faketime -f -1y velkctl confirm --quiet; last_state
    velkctl undo --quiet; faketime -f -1y velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 10 --quiet
    sleep 5; is_back || echo waits; until_true is_back; until_true has_none; echo back'
start 7 'wait_with 60 --quiet & first=$!; velkctl apply eth0.address=192.168.0.88 --restart never --confirm-within 60 --quiet 2>/dev/null
    second=$?; wait $first; first=$?
    case $first,$second in 0,3 | 0,8 | 3,0 | 8,0) echo one ;; *) echo "$first $second" ;; esac; guardians | wc -l; velkctl revert --quiet; is_back && echo back'
start 8 'wait_with 10 --quiet; sed -i "/eth0/,/^\$/s/netmask 255.255.255.0/netmask 255.255.0.0/" $interfaces; until_true grep -q "address 192.168.0.10\$" $interfaces
    until_true has_none; velkctl get --value eth0.address eth0.netmask 2>/dev/null; last_state'
start 9 'wait_with 600 --quiet; for process in $(guardians); do kill -TERM $process; done; sleep 1; kill -9 $(guardians)
    echo 11111111-2222-3333-4444-555555555555 >/tmp/boot_id; mount --bind /tmp/boot_id /proc/sys/kernel/random/boot_id
    velkctl recover --boot --quiet; is_back && echo back'
# Another user may not be able to read the build folder.
start 10 'mkdir -m 755 /run/programs; wait_with 60 --quiet
    install -m 755 -t /run/programs '"$VELK_BUILD/velkctl $VELK_BUILD"'/libvelk.so.1
    setpriv --reuid 1 --regid 1 --clear-groups env LD_LIBRARY_PATH=/run/programs /run/programs/velkctl confirm 2>&1 | head -n 1; velkctl revert --quiet; is_back && echo back'
start 11 'python3 -c "$log" >/tmp/log & until_true test -S /dev/log; wait_with 10 --quiet
    flock /var/tmp/vklib_lock sleep 15 & until_true grep -q "cannot be put back while" /tmp/log; until_true has_none; until_true grep -q confirmed /tmp/log
    sed -nE "s/^(<28>).*velkctl: (.*)\. *\$/\1 \2/p" /tmp/log | plain | sed -E "s/process [0-9]+ \(flock, .*\)/process N/"'

it 'survives the end of its terminal'
await 1
output_is 'waits
2
back'

it 'informs the terminal of its run'
await 2
output_has 'velkctl: change ID of TIME was not confirmed and has been put back'

it 'asks at the terminal, and keeps the change'
await 3
output_has ' is confirmed'
output_has 'status 0'
output_has 'confirmed'

it 'asks at the terminal, and puts the change back'
await 4
output_has ' is put back'
output_has 'status 1'
output_has 'back'

it 'waits on if the terminal is closed before the answer'
await 5
output_has 'waiting'

it 'is independent of the wall clock'
await 6
[ "$output" = 'no faketime' ] || output_is 'at most 20 seconds
192.168.0.77
confirmed
waits
back'

it 'lets one of two applies wait'
await 7
output_is 'one
2
back'

it 'keeps other values that somebody has written into the same file'
await 8
output_is '192.168.0.10
255.255.0.0
reverted'

it 'leaves a change to recover at a shutdown'
await 9
output_is 'back'

it 'takes no decision of another user'
await 10
output_is 'velkctl: confirm: nothing was changed
back'

it 'names the holder of the lock and the end in the system log'
await 11
output_is '<28> change ID cannot be put back while the lock is held: process N
<28> change ID of TIME was not confirmed and has been put back'

if unshare --time --boottime 1000000 true 2>/dev/null; then
    it 'counts from the start of the device'
    run unshare --time --boottime 1000000 velk-sandbox --quiet -- sh -c "$waiting_words"'
        wait_with 10 --quiet; velkctl pending | plain | head -n 1; until_true is_back; until_true has_none; echo back'
    output_is 'change ID of root waits for its confirmation since TIME; N s left
back'
fi

finish
