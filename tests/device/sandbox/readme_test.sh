# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# readme_test.sh - the session at the beginning of README.md prints its lines at a terminal.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox
command -v script >/dev/null || skip 'script(1) is not installed'

block=$(sed -n '/^```console$/,/^```$/{/^```/!p;}' "$VELK_SOURCE/README.md")
start=${block%%$'\n'*}
session=${block#*$'\n'}
prompt=${session%%# *}'# '

# Types the commands of the session at a terminal of the device.
replay() {
    run env SHELL=/bin/sh TERM=xterm NO_COLOR=1 session="$session" prompt="$prompt" \
        velk-sandbox --quiet -- script -qec 'stty rows 24 cols 80
            printf "%s\n" "$session" | while IFS= read -r line; do
                command=${line#"$prompt"}
                [ "$command" != "$line" ] || continue
                printf "%s\n" "$line"
                eval "$command" </dev/tty
            done' /dev/null
    output=${output//$'\r'/}
}

it 'has a session on a simulated device with several commands'
check 'the first line' '$ build/release/velk-sandbox --quiet' "$start"
check 'the prompt' 'root@velk:~/libvelk# ' "$prompt"
check 'commands' many "$([ "$(grep -cF "$prompt" <<<"$session")" -gt 5 ] && echo many)"

it 'has a session that a terminal prints in the same words'
replay
output_is "$session"
error_is ''

it 'restarts eth0 without waiting for a DHCP server if the adapter is out'
if command -v ifup >/dev/null; then
    on_device timeout 60 sh -c 'velk-sandbox adapter out && velkctl restart eth0'
    status_is 0
    output_is 'eth0: 192.168.0.10 (static)'
fi

finish
