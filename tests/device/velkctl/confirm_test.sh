# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# confirm_test.sh - changes that are put back unless somebody confirms them.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/velkctl/waiting.sh
. "$VELK_SOURCE/tests/device/velkctl/waiting.sh" || exit

needs_sandbox

start 1 'wait_with 10 | plain; [ "$(guardians | wc -l)" = 2 ] && echo "two processes"
    velkctl confirm | plain; velkctl confirm | plain; until_true has_none
    sleep 11; velkctl get eth0.address; velkctl history | sed -n "1s/.*  //p"; velkctl pending'
start 2 'wait_with 10 --quiet; is_back || echo changed; until_true is_back; until_true has_none
    velkctl get eth0.address 2>&1 | plain; velkctl get eth0.address; velkctl confirm 2>&1 | plain; velkctl history | sed -n "1s/.*  //p"'
start 3 'velkctl apply eth0.address=192.168.0.77 --confirm-within 10 --quiet
    ifconfig eth0 | grep -o "inet addr:[0-9.]*"; until_true is_back; until_true has_none
    ifconfig eth0 | grep -o "inet addr:[0-9.]*"'
start 4 'wait_with 60 --quiet; velkctl revert | plain; velkctl revert | plain; is_back && velkctl history | sed -n "1s/.*  //p"
    until_true has_none; velkctl get eth0.address'
start 5 'wait_with 10 --quiet; velkctl extend 30 | plain; sleep 12; is_back || velkctl revert --quiet; is_back && echo back'
start 6 'wait_with 60 --quiet; velkctl pending | plain; velkctl pending --json | grep -c "guarded.: true"; velkctl revert --quiet'
start 7 'wait_with 60 --quiet; velkctl export >/tmp/all.json; sed -i s/192.168.0.77/192.168.0.9/ /tmp/all.json
    for line in "set eth0.address 192.168.0.9" "set eth0.address 192.168.0.9 --no-journal" \
        "apply eth0.address=192.168.0.9" "import /tmp/all.json" "undo" "restart eth0" \
        "call set 104 eth0 --text 192.168.0.9" "call restart 1 eth0"; do
        velkctl $line --quiet 2>/tmp/error; echo "$? $(head -n 1 /tmp/error)"
    done
    plain </tmp/error; velkctl set eth0.address 192.168.0.9 --dry-run --quiet >/dev/null; echo "$?"; velkctl get eth0.address; velkctl revert --quiet'
start 8 'for word in 9 86401 x ""; do wait_with "$word"; echo "$?"; done; velkctl apply eth0.address=192.168.0.9 --ask; velkctl apply eth0.address=192.168.0.9 --confirm-if ""; is_back && has_none && echo unchanged'
start 9 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-if "grep -q 192.168.0.77 $interfaces"; echo "$?"
    velkctl history | sed -n "1s/.*  //p"; velkctl undo --quiet; velkctl apply eth0.address=192.168.0.77 --restart never --confirm-if "exit 3"; echo "$?"
    is_back && velkctl history | sed -n "1s/.*  //p"; until_true has_none'
start 10 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 10 --confirm-if "sleep 100"; echo "$?"; is_back && echo back'
start 11 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-if "sleep 60" --quiet & tool=$!
    until_true grep -q 192.168.0.77 $interfaces; kill -9 $tool; until_true is_back; until_true has_none; velkctl history 2>&1 | plain | sed -n "1p;2s/.*  //p"'
start 12 'setsid sh -c "velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 10 --quiet; kill -HUP 0"
    for signal in HUP INT TERM QUIT; do for process in $(guardians); do kill -$signal $process; done; done
    sleep 1; guardians | wc -l; until_true is_back; until_true has_none; echo back'
start 13 'wait_with 10 --quiet; kill -9 $(guardians | tail -n 1); sleep 2; guardians | wc -l; until_true is_back; until_true has_none; echo back'
start 14 'wait_with 10 --quiet; kill -9 $(guardians | head -n 1); sleep 1; guardians | wc -l; until_true is_back; until_true has_none; echo back'
start 15 'wait_with 10 --quiet; kill -9 $(guardians); until_true has_none; velkctl pending 2>&1 >/dev/null | plain; sleep 11; is_back || echo changed
    velkctl get eth0.address 2>&1 | plain; is_back && echo back; velkctl get eth0.address'
start 16 'cd /tmp && exec 7</etc/hostname && wait_with 60 --quiet
    switches() { for process in $(guardians); do grep ctxt /proc/$process/status; done | cksum; }
    for process in $(guardians); do
        readlink /proc/$process/cwd; ls /proc/$process/fd | wc -l; readlink /proc/$process/fd/[0127] | sort -u
        awk "/^Private/ { sum += \$2 } END { print (sum < 2048) }" /proc/$process/smaps_rollup
    done
    sleep 1; first=$(switches); sleep 3; [ "$first" = "$(switches)" ] && echo asleep; velkctl revert --quiet; until_true has_none'
start 17 'velk-sandbox log >/dev/null 2>&1; wait_with 10 --quiet; flock /var/tmp/vklib_lock sleep 15 & sleep 12; is_back || echo changed
    velkctl confirm 2>/dev/null; echo "$?"; until_true is_back; until_true has_none; echo back'
start 18 'wait_with 10 --quiet; sed -i s/192.168.0.77/192.168.0.5/ $interfaces; sleep 12; velkctl get eth0.address 2>/dev/null; velkctl history | sed -n "1s/.*  //p"
    until_true has_none; sed -i s/192.168.0.5/192.168.0.77/ $interfaces; sleep 2; velkctl get eth0.address 2>/dev/null'
start 19 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-if "sleep 60" --json >/tmp/answer & tool=$!
    until_true grep -q 192.168.0.77 $interfaces; sleep .5; kill $tool; until_true is_back; wait $tool 2>/dev/null; echo "status $?"; is_back && echo back; until_true has_none
    sed -n "/taken_back/p;/\"state\"/p;/seconds_left/p" /tmp/answer; velkctl get eth0.address; velkctl history | sed -n "1s/.*  //p"'
start 20 'velkctl apply eth0.address=192.168.0.10 eth0.netmask=255.255.255.0 --restart never --confirm-within 60; has_none && echo none
    velkctl apply eth0.address=192.168.0.77 --restart never --quiet; last_state; velkctl undo --quiet
    velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 60 --quiet; last_state; velkctl confirm --quiet; last_state'
start 21 'velkctl apply eth0.address=192.168.0.77 --confirm-within 10 --quiet
    ifup=$(readlink -f "$(command -v ifup)"); cp "$ifup" /tmp/own-ifup
    printf "#!/bin/bash\ncase \$0 in *ifup) if [ ! -e /tmp/failed ]; then\n" >/tmp/ifup
    printf "touch /tmp/failed; ip address flush dev eth0; exit 1\nfi ;; esac\n" >>/tmp/ifup
    printf "exec -a \"\$0\" /tmp/own-ifup \"\$@\"\n" >>/tmp/ifup
    chmod +x /tmp/ifup; mount --bind /tmp/ifup "$ifup"; until_true is_back; until_true has_none
    ifconfig eth0 | grep -o "inet addr:[0-9.]*"; last_state'
start 22 '(sleep 2; velkctl confirm --quiet; sleep 5) |
        script -qec "velkctl apply eth0.address=192.168.0.77 --restart never --ask" /dev/null >/tmp/said
    echo "$?"; tail -n 1 /tmp/said | tr -d "\r"; last_state'

# ---- the window -------------------------------------------------------------------------------
it 'keeps a change that is confirmed'
await 1
status_is 0
error_is ''
output_is 'applied 1 setting
  keep with: velkctl confirm ID (N s left; a reboot puts it back too)
two processes
change ID of TIME is confirmed
change ID of TIME is already confirmed
192.168.0.77
confirmed
no change waits for its confirmation'

it 'puts a change back that nobody confirms, and says so once'
await 2
status_is 0
output_is 'changed
velkctl: note: change ID of TIME was not confirmed and has been put back
192.168.0.10
192.168.0.10
velkctl: confirm: change ID of TIME has been put back
  it was not confirmed in time
reverted'

it 'restarts the interface with the old address'
await 3
output_is 'inet addr:192.168.0.77
inet addr:192.168.0.10'

it 'puts a change back on request'
await 4
output_is 'change ID of TIME is put back
change ID of TIME is already put back
reverted
192.168.0.10'

it 'gives a change more time'
await 5
output_is 'change ID of TIME waits for its confirmation; N s left
back'

it 'shows the change that waits'
await 6
output_is "change ID of root waits for its confirmation since TIME; N s left
  eth0.address  192.168.0.10 -> 192.168.0.77
'velkctl confirm ID' keeps it, 'velkctl revert ID' puts it back
1"

it 'refuses every other change meanwhile'
await 7
output_is "8 velkctl: set: nothing was changed
8 velkctl: set: nothing was changed
8 velkctl: apply: nothing was changed
8 velkctl: apply: nothing was changed
8 velkctl: undo: nothing was changed
8 velkctl: restart: nothing was changed
8 velkctl: call: nothing was changed
8 velkctl: call: nothing was changed
velkctl: call: nothing was changed
  change ID of root waits for its confirmation since TIME; N s left
  fix: 'velkctl confirm ID' keeps it, 'velkctl revert ID' puts it back
0
192.168.0.77"

it 'takes a window within the limits only'
await 8
output_is '2
2
2
2
unchanged'
error_has "velkctl: --confirm-within: '9' is not a time; give whole seconds, 10 to 86400"
error_has 'velkctl: --confirm-if: the command is empty'
error_has "velkctl: --ask: there is no terminal
  fix: give --confirm-within and 'velkctl confirm'"

it 'needs no confirmation without a window, or without a change'
await 20
output_is 'nothing to change
none
done
waiting
confirmed'

# ---- a command confirms -------------------------------------------------------------------------
it 'keeps a change if a command succeeds, and puts it back otherwise'
await 9
output_is "applied 1 setting
0
confirmed
1
reverted"
error_is "velkctl: apply: the change is not confirmed
  'exit 3' has ended with status 3
velkctl: note: all settings are as before"

it 'ends a command that takes longer than the window'
await 10
output_is '1
back'
error_has "'sleep 100' has not ended within 10 s"

# ---- the guardian -------------------------------------------------------------------------------
it 'puts a change back at once if its run is killed'
await 11
output_is 'velkctl: note: change ID of TIME was interrupted and has been put back
reverted'

it 'takes a change back by itself when it is asked to end, and says so'
await 19
output_is 'status 143
back
  "taken_back": true,
  "state": "reverted",
  "seconds_left": null,
192.168.0.10
reverted'
error_is ''

it 'survives the end of its session, hang-ups and requests to end'
await 12
output_is '2
back'

it 'starts a guardian again that was killed'
await 13
output_is '2
back'

it 'needs no keeper'
await 14
output_is '1
back'

it 'puts a change back in the next run if both processes are killed'
await 15
output_is 'velkctl: note: no guardian runs for change ID
  the next run of velkctl after its time puts it back
changed
velkctl: note: change ID of TIME was not confirmed; it is put back now
192.168.0.10
back
192.168.0.10'

it 'has nothing of its caller, and sleeps'
await 16
output_is '/
4
/dev/null
1
/
5
/dev/null
1
asleep'

it 'waits for a program that changes settings, and names it in the log'
await 17
output_is 'changed
1
back'

it 'keeps a value that somebody else has set meanwhile'
await 18
output_is '192.168.0.5
stuck
192.168.0.77'

it 'restarts an interface again that has not come up'
await 21
output_is 'inet addr:192.168.0.10
reverted'

it 'asks nobody any more about a change that another shell has confirmed'
await 22
output_is '0
the change is confirmed
confirmed'

finish
