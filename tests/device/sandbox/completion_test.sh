# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# completion_test.sh - the completion of velk-sandbox, and the shell that loads it on a device.
# Root runs it a second time as an ordinary user, from a copy that this user can read.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/typist.sh
. "$VELK_SOURCE/tests/device/typist.sh" || exit
needs_sandbox

this_file=$(realpath "$0")
load_completions velk-sandbox

# Completes lines on one device: `offered WORD... -- WORD...`, where the last word of each line is
# the one being completed; "==" is the word "--". Shows the candidates, one a line. Another device,
# named inner, runs on this one.
offered() {
    on_device bash -c '
        mkdir -p /tmp/work/keys && touch /tmp/work/list && cd /tmp/work
        velk-sandbox --quiet --name inner sleep 60 &
        for try in $(seq 200); do
            [ "$(velk-sandbox list 2>/dev/null)" != inner ] || break
            sleep 0.05
        done
        eval "$BASH_COMPLETION_FILE"
        _of_tool() { COMPREPLY=("${#COMP_WORDS[@]}:$COMP_CWORD:$1:$2:$3"); }
        complete -F _of_tool tool
        complete_line() {
            COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
            _velk_sandbox velk-sandbox "${!#}"
            echo "${COMPREPLY[*]:-(nothing)}"
        }
        line=(velk-sandbox)
        for word in "$@" --; do
            case $word in
                --)
                    complete_line "${line[@]}"
                    line=(velk-sandbox)
                    ;;
                ==) line+=(--) ;;
                *) line+=("$word") ;;
            esac
        done' bash "$@"
    status_is 0
    error_is ''
}

it 'offers the subcommands, and programs'
offered cabl -- adapt -- velkct -- enter velkct -- == velkct -- enter == velkct -- --quiet velkct
output_is 'cable
adapter
velkctl
velkctl
velkctl
velkctl
velkctl'

it 'offers the options of the subcommand, and those in front of it'
offered - -- cable - -- enter - -- list - -- --quiet --w
output_is '-h --help --version --real --no-router --quiet --web --writable --rootfs --name
-h --help --name
-h --help --name
-h --help
--web --writable'

it 'offers the positions of cable, adapter and router'
offered cable '' -- adapter o -- router --name inner i -- cable in '' -- watch '' -- list ''
output_is 'in out
out
in
(nothing)
(nothing)
(nothing)'

it 'offers the names of the running devices, but none for a new device'
offered cable --name '' -- enter --name inn -- --name ''
output_is 'inner
inner
(nothing)'

it 'offers folders for --writable, and files too for --rootfs'
offered --writable k -- --rootfs /tmp/work/
output_is 'keys
/tmp/work/list /tmp/work/keys'

it 'completes the words of a command as its program does'
offered tool a -- --name x tool a b -- --web tool a -- --web 8080 tool a -- == tool a -- enter == tool a '' -- enter tool --opt -- sed li
output_is '2:1:tool:a:tool
3:2:tool:b:a
2:1:tool:a:tool
2:1:tool:a:tool
2:1:tool:a:tool
3:2:tool::a
2:1:tool:--opt:tool
list'

# ---- at a terminal ----------------------------------------------------------------------------
types_in() { # SHELL LINE...
    on_device python3 -c "$TYPIST" "$@"
    status_is 0
    output_is 'velk-sandbox adapter |
velk-sandbox adapter out |
velk-sandbox --no-router |
velk-sandbox watch --name |'
}
lines=('velk-sandbox adap' 'velk-sandbox adapter o' 'velk-sandbox --no' 'velk-sandbox watch --na')
if command -v python3 >/dev/null; then
    it 'completes a line typed into bash'
    types_in bash "${lines[@]}"
    if command -v zsh >/dev/null; then
        it 'completes a line typed into zsh'
        types_in zsh "${lines[@]}"
    fi

    it 'starts bash with both completions, also if SHELL is unset, empty, sh or dash'
    for shell in -uSHELL SHELL= SHELL=/bin/sh SHELL=/bin/dash SHELL=/bin/bash; do
        run env "$shell" HOME=/nonexistent python3 -c "$TYPIST" device 'velkctl des' \
            'velk-sandbox cable o' 'velk-sandbox velkctl get eth0.method eth0.apip'
        output_is 'velkctl describe |
velk-sandbox cable out |
velk-sandbox velkctl get eth0.method eth0.apipa |'
    done
fi

if command -v zsh >/dev/null; then
    it 'is a script that zsh can read'
    run zsh -n "$VELK_SOURCE/packaging/completion/_velk-sandbox"
    status_is 0
    error_is ''
fi

# ---- the shell of a device --------------------------------------------------------------------
# Runs a shell line in the shell that a device starts, which is not at a terminal.
in_shell() { # in_shell LINE VARIABLE...
    lib_command="$1 in the shell of a device"
    output=$(env "${@:2}" velk-sandbox --quiet <<<"$1" 2>"$lib_folder/err")
    status=$?
    error=$(cat "$lib_folder/err")
}

it 'starts the shell of SHELL if it is not the plain sh'
printf '#!/bin/sh\necho my own shell\n' >"$lib_folder/shell"
chmod +x "$lib_folder/shell"
cd "$lib_folder" || exit
in_shell 'echo $BASH' "SHELL=$lib_folder/shell"
output_is 'my own shell'
in_shell 'echo ${BASH##*/}' -u SHELL
output_is bash

it 'starts bash on a running device, too'
name=completion.$$
velk-sandbox --quiet --name "$name" sleep 60 &
device=$!
wait_until velk-sandbox enter --name "$name" true
output=$(env -u SHELL velk-sandbox enter --name "$name" <<<'echo ${BASH##*/} $0')
output_is 'bash /usr/bin/bash'
kill -KILL "$device"
wait "$device" 2>/dev/null

it "reads the user's own start file of bash first"
mkdir "$lib_folder/home"
echo 'mine=kept; complete -W other velkctl' >"$lib_folder/home/.bashrc"
run env "HOME=$lib_folder/home" velk-sandbox --quiet --writable "$lib_folder/home" \
    bash --rcfile /run/velk-sandbox/bashrc -ic 'echo $mine; complete -p velkctl velk-sandbox'
output_is 'kept
complete -F _velkctl velkctl
complete -F _velk_sandbox velk-sandbox'

it 'starts without completions that are not installed'
mkdir "$lib_folder/alone"
cp -R --preserve=mode "$VELK_BUILD/velk-sandbox" "$VELK_BUILD/rootfs" "$VELK_BUILD/stand-ins" "$lib_folder/alone"
run "$lib_folder/alone/velk-sandbox" --quiet cat /run/velk-sandbox/bashrc
output_is '[ ! -r ~/.bashrc ] || . ~/.bashrc'

it 'finds the installed completions'
mkdir -p "$lib_folder/installed/bin" "$lib_folder/installed/share/velk-sandbox" \
    "$lib_folder/installed/share/bash-completion"
cp "$VELK_BUILD/velk-sandbox" "$lib_folder/installed/bin"
cp -R --preserve=mode "$VELK_BUILD/rootfs" "$VELK_BUILD/stand-ins" "$lib_folder/installed/share/velk-sandbox"
cp -R "$VELK_BUILD/completion" "$lib_folder/installed/share/bash-completion/completions"
run "$lib_folder/installed/bin/velk-sandbox" --quiet sh -c \
    'cd /run/velk-sandbox/completion && cksum <velkctl && cksum <velk-sandbox; tail -n 2 ../bashrc'
output_is "$(cksum <"$VELK_BUILD/completion/velkctl")
$(cksum <"$VELK_BUILD/completion/velk-sandbox")
. /run/velk-sandbox/completion/velkctl
. /run/velk-sandbox/completion/velk-sandbox"

again_as_ordinary_user "$this_file"

finish
