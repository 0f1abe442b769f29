# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# foreign_listener_test.sh - another user takes the name of a simulated device and hands over a
# process of his own. Root only: it takes two users.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for other shells
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

[ "$(id -u)" = 0 ] || skip 'two users are needed, and so is root'
needs_sandbox
if [ -z "${VELK_IN_OWN_NETWORK:-}" ]; then
    # The names of devices live in the network: nobody else's must be seen here, nor ours elsewhere.
    # All processes end with this one.
    rm -rf "$lib_folder"
    VELK_IN_OWN_NETWORK=1 exec unshare --net --pid --fork --kill-child --mount-proc bash "$0"
fi

# The other user can read only copies of the programs in this folder.
cp "$VELK_BUILD/tests/world/foreign_listener" "$VELK_BUILD/velk-sandbox" "$lib_folder" || exit
chmod -R a+rX "$lib_folder"
heard=$lib_folder/heard
proof=$lib_folder/proof/ran
mkdir --mode 0777 "$lib_folder/proof"
processes=()
trap 'kill "${processes[@]}" 2>/dev/null; rm -rf "$lib_folder"' EXIT

# No function: a process in the background is to be the program itself.
as_nobody=(setpriv --reuid 65534 --regid 65534 --clear-groups)

# Starts a listener in the background and waits for it; its input goes into the file `heard`.
listen() { # listen COMMAND...
    : >"$heard" # left by the listener before
    "$@" >"$heard" &
    listener=$!
    processes+=("$listener")
    wait_until grep -qs listening "$heard"
    check 'start of a listener' 0 $?
}
end_listener() {
    kill "$listener"
    wait "$listener" 2>/dev/null
}
heard_nothing() { check 'heard by the listener' listening "$(cat "$heard")"; }

gets_namespaces() { "$@" unshare --user --map-root-user --mount true 2>/dev/null; }

# Starts a process where the shell and id(1) are a script that proves it was run. A user without user
# namespaces can set no trap: the process is then an ordinary one of that user.
start_trap() { # start_trap PREFIX...
    if gets_namespaces "$@"; then
        set_trap "$@"
    else
        "$@" sleep 600 &
        trapped=$!
        processes+=("$trapped")
    fi
}
set_trap() { # set_trap PREFIX...
    rm -f "$lib_folder/proof/set"
    "$@" unshare --user --map-root-user --mount sh -c '
        for program in "$(command -v id)" "$(command -v bash)"; do
            mount --bind "$1/script" "$(readlink -f "$program")"
        done
        : >"$1/proof/set"
        exec sleep 600' sh "$lib_folder" &
    trapped=$!
    processes+=("$trapped")
    wait_until test -e "$lib_folder/proof/set"
    check 'start of a trap' 0 $?
}
printf '#!/bin/sh\ntouch %s\n' "$proof" >"$lib_folder/script"
chmod 0755 "$lib_folder/script"
ran_nothing() { check 'program of the other user' 'not run' "$([ -e "$proof" ] && echo run || echo 'not run')"; }

it 'has a working trap'
start_trap "${as_nobody[@]}"
if gets_namespaces "${as_nobody[@]}"; then
    run nsenter --target "$trapped" --user --mount --preserve-credentials -- id
    check 'program of the other user' run "$([ -e "$proof" ] && echo run)"
    rm -f "$proof"
else
    echo 'no traps: other users get no user namespaces here'
fi

it 'sends nothing to a listener of another user, and enters nothing of his'
listen "${as_nobody[@]}" "$lib_folder/foreign_listener" velk-sandbox/0/1 "$trapped"
for arguments in 'enter' 'watch' 'cable out' 'adapter out' 'router in'; do
    for name in '' '--name 1'; do
        # shellcheck disable=SC2086  # words
        run env SHELL=/bin/bash velk-sandbox $arguments $name
        status_is 125
        output_is ''
        error_is 'velk-sandbox: device 1 belongs to user nobody (65534), not to you; nothing was sent to it'
    done
done
run velk-sandbox enter -- id
status_is 125
output_is ''
error_is 'velk-sandbox: device 1 belongs to user nobody (65534), not to you; nothing was sent to it'
heard_nothing
ran_nothing

it 'gives a new device another number, and says who has taken a name'
run velk-sandbox # a shell without input
status_is 0
error_has 'simulated device 2;'
run velk-sandbox --name 1 -- true
status_is 125
error_is 'velk-sandbox: the name 1 is taken by user nobody (65534)
  fix: choose another name with --name'
heard_nothing

it 'finds its own device beside the foreign one'
velk-sandbox --quiet --name mine -- sleep 600 &
processes+=("$!")
wait_until velk-sandbox enter --name mine -- true
check 'start of a device' 0 $?
run velk-sandbox enter -- hostname
output_is velk
run velk-sandbox cable out
status_is 0
heard_nothing

it 'lists only its own devices, with any names of others'
run velk-sandbox list
output_is mine
error_is ''
for name in $'\e]0;owned\a\e[31mred' \
    $'x\nffff: 00000002 00000000 00010000 0005 01 1 @velk-sandbox/0/second'; do
    "${as_nobody[@]}" "$lib_folder/foreign_listener" "velk-sandbox/0/$name" >"$lib_folder/ignored" &
    processes+=("$!")
    wait_until grep -qs listening "$lib_folder/ignored"
    check 'start of a listener' 0 $?
    run velk-sandbox list
    output_is mine
    error_is ''
done
end_listener
listen "$lib_folder/foreign_listener" $'velk-sandbox/0/\e]0;own\a' # no device can have this name
run velk-sandbox list
output_is mine
end_listener

# One after the other, thirty waits of two seconds would take each command a minute.
it 'waits for all full queues of others together'
mapfile -t full_queues < <(printf 'velk-sandbox/0/full%d\n' {1..30})
listen "${as_nobody[@]}" "$lib_folder/foreign_listener" --full "${full_queues[@]}"
began=$SECONDS
run velk-sandbox list
check 'wait for full queues' 'under 30 s' "$([ $((SECONDS - began)) -lt 30 ] && echo 'under 30 s')"
output_is mine
error_is ''
run velk-sandbox enter -- hostname
output_is velk
error_is ''

it 'says that a full queue may be another user'"'"'s'
run velk-sandbox enter --name full1 -- id
status_is 125
output_is ''
error_is "velk-sandbox: device full1 does not answer; it may be another user's
  fix: try again"
end_listener

it 'sends nothing to another user in the place of the hardware on a device'
cd "$lib_folder" || exit # which the device shows
run velk-sandbox --quiet -- sh -c 'rm /run/velk-sandbox/hardware && chmod 0777 /run/velk-sandbox
    setpriv --reuid 65534 --regid 65534 --clear-groups "$1" /run/velk-sandbox/hardware >/tmp/heard &
    for try in $(seq 400); do
        grep -qs listening /tmp/heard && break
        sleep 0.05
    done
    velk-sandbox cable out
    echo $?
    cat /tmp/heard' sh "$lib_folder/foreign_listener"
output_is $'125\nlistening'
error_is 'velk-sandbox: this device belongs to user nobody (65534), not to you; nothing was sent to it'

# Simulates a program of root's that listens for somebody else.
it 'enters no process of another user that a listener of its own hands over'
listen "$lib_folder/foreign_listener" velk-sandbox/0/deceived "$trapped"
for arguments in 'watch --name deceived' 'enter --name deceived -- id'; do
    # shellcheck disable=SC2086  # words
    run velk-sandbox $arguments
    status_is 125
    output_is ''
    error_is 'velk-sandbox: the device sent a process of user nobody (65534); it was not entered'
done
check 'heard by the listener' $'listening\nfirst process\nfirst process' "$(cat "$heard")"
ran_nothing
end_listener

it 'enters no process of its own user in another user namespace'
start_trap env
if gets_namespaces env; then
    listen "$lib_folder/foreign_listener" velk-sandbox/0/deceived "$trapped"
    run velk-sandbox enter --name deceived -- id
    status_is 125
    output_is ''
    error_is 'velk-sandbox: the device is in a foreign user namespace; it was not entered'
    ran_nothing
    end_listener
else
    echo 'not held: root gets no user namespaces here'
fi

it 'enters no process that has ended'
sleep 600 &
gone=$!
listen "$lib_folder/foreign_listener" velk-sandbox/0/deceived "$gone"
kill "$gone"
wait "$gone" 2>/dev/null
run velk-sandbox enter --name deceived -- id
status_is 125
error_is 'velk-sandbox: the device did not send its first process'
end_listener

it 'protects ordinary users too'
listen "$lib_folder/foreign_listener" velk-sandbox/65534/1 "$trapped"
run "${as_nobody[@]}" "$lib_folder/velk-sandbox" enter -- id
status_is 125
error_is 'velk-sandbox: device 1 belongs to user root (0), not to you; nothing was sent to it'
heard_nothing
end_listener
listen "${as_nobody[@]}" "$lib_folder/foreign_listener" velk-sandbox/65534/1 "$trapped"
run "${as_nobody[@]}" "$lib_folder/velk-sandbox" enter -- id
status_is 125
error_is 'velk-sandbox: the device sent a process of user root (0); it was not entered'
ran_nothing
end_listener

finish
