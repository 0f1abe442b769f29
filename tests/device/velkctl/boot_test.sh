# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# boot_test.sh - changes that a restart of the device interrupts.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/velkctl/waiting.sh
. "$VELK_SOURCE/tests/device/velkctl/waiting.sh" || exit

needs_sandbox

words="$waiting_words"'
    # Ends all processes of velkctl, and gives the kernel another id of its start.
    reboot() {
        kill -9 $(guardians) $(pgrep -x velkctl) 2>/dev/null
        sleep .5
        echo 11111111-2222-3333-4444-555555555555 >/tmp/boot_id
        mount --bind /tmp/boot_id /proc/sys/kernel/random/boot_id
    }
    # Names a change and its time as ID of TIME.
    plain() { sed -E "s/\bchange [bcdfghjkmnpqrstvwxz23456789]{4}\b/change ID/g; s/([-0-9]{10} )?[0-9]{2}:[0-9]{2}(:[0-9]{2})?/TIME/"; }
'
script() { on_device sh -c "$words$1"; }

it 'puts a change back that waited before the restart'
script 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 600 --quiet
    reboot; velkctl recover --boot | plain; is_back && echo back; velkctl get eth0.address 2>&1 | plain
    velkctl confirm 2>&1 | plain; velkctl recover --boot'
output_is 'change ID of TIME is put back
back
velkctl: note: change ID of TIME was not confirmed and has been put back
192.168.0.10
velkctl: confirm: change ID of TIME has been put back
  the device was started again
nothing to recover'

it 'restarts nothing before networking'
script 'velkctl apply eth0.address=192.168.0.77 --confirm-within 600 --quiet
    ifconfig eth0 192.168.0.99; reboot; velkctl recover --boot --quiet; is_back && echo back; ifconfig eth0 | grep -o "inet addr:[0-9.]*"'
output_is 'back
inet addr:192.168.0.99'

it 'puts a change back that was being made'
script 'velkctl apply eth0.address=192.168.0.77 eth0.gateway=192.168.0.9 --restart never --confirm-if "sleep 60" --quiet &
    for i in $(seq 100); do grep -q 192.168.0.77 $interfaces && break; sleep .1; done; kill -STOP $(guardians); reboot
    velkctl recover --boot | plain; is_back && echo back; last_state'
output_is 'change ID of TIME is put back
back
reverted'

it 'keeps a change that was confirmed'
script 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 600 --quiet; velkctl confirm --quiet
    reboot; velkctl recover --boot; velkctl get eth0.address'
output_is 'nothing to recover
192.168.0.77'

it 'puts the values of the daemon back in a second stage, without a restart'
script 'velk-sandbox adapter in; velk-sandbox cable out; velkctl apply ssid=other eth0.address=192.168.0.77 --confirm-within 600 --restart eth0 --quiet
    reboot; velkctl recover --boot | plain; grep -c 192.168.0.77 $interfaces; ifconfig eth0 192.168.0.99
    velkctl recover --quiet; velkctl get --value eth0.address ssid 2>/dev/null; last_state
    ifconfig eth0 | grep -o "inet addr:[0-9.]*"'
output_is 'change ID of TIME waits for the wireless daemon
0
192.168.0.10
velk-lab
reverted
inet addr:192.168.0.99'

it 'puts a change back in the first run if recover did not run at the start'
script 'velkctl apply eth0.address=192.168.0.77 --confirm-within 600 --quiet; reboot
    velkctl confirm 2>&1 | plain; is_back && echo back; ifconfig eth0 | grep -o "inet addr:[0-9.]*"'
output_is 'velkctl: note: change ID of TIME was not confirmed; it is put back now
velkctl: confirm: change ID of TIME has been put back
  the device was started again
back
inet addr:192.168.0.10'

it 'leaves a change that waits alone without a restart of the device'
script 'velkctl apply eth0.address=192.168.0.77 --restart never --confirm-within 600 --quiet
    velkctl recover; velkctl recover --boot; velkctl confirm --quiet; velkctl get eth0.address'
output_is 'nothing to recover
nothing to recover
192.168.0.77'

it 'lets the device start if the journal cannot be used'
# The velkctl of the build folder is in no folder of the script's PATH.
init_script=$(sed "s,^PATH=,PATH=$VELK_BUILD:," "$VELK_SOURCE/packaging/init.d/velk-recover")
run velk-sandbox --quiet -- sh -c 'mkdir -p /var/libvelk/journal
    mount -t tmpfs -o ro none /var/libvelk/journal; sh -c "$1" sh start; echo "status $?"; sh -c "$1" sh wireless 2>/dev/null; echo "status $?"
    sh -c "$1" sh x; echo "status $?"' sh "$init_script"
output_is 'status 0
status 0
status 2'
error_has 'velkctl: recover: the journal cannot be used'

finish
