# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# completion_test.sh - the completion of velkctl's command line in bash and zsh.
# shellcheck shell=bash
# shellcheck disable=SC2016,SC2089,SC2090  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/typist.sh
. "$VELK_SOURCE/tests/device/typist.sh" || exit

needs_sandbox

load_completions velkctl

# Completes lines on one device: `offered WORD... -- WORD...`, where the last word of each line is
# the one being completed. Shows the candidates, one a line.
offered() {
    on_device bash -c '
        mkdir -p /tmp/keys/more && touch /tmp/keys/psk "/tmp/keys/wep key"
        eval "$BASH_COMPLETION_FILE"
        complete_line() {
            COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
            _velkctl
            echo "${COMPREPLY[*]:-(nothing)}"
        }
        line=(velkctl)
        for word in "$@" --; do
            if [ "$word" = -- ]; then
                complete_line "${line[@]}"
                line=(velkctl)
            else
                line+=("$word")
            fi
        done' bash "$@"
    status_is 0
    error_is ''
}

# ---- verbs and options ------------------------------------------------------------------------
it 'offers the verbs'
offered '' -- s -- li -- nonsense '' -- help d -- help get ''
output_is 'get set show restart apply export import diff list describe explain status doctor metrics selftest capture confirm extend revert pending undo history recover call help
set show status selftest
list
(nothing)
diff describe doctor
(nothing)'

it 'offers the options of the verb, and those in front of it'
offered - -- get eth0.dns - -- set --no -- restart eth1 --n -- list - -- explain -
output_is '-h --help --version --json --quiet --verbose
-h --help --timeout --json --quiet --verbose --show-secrets --value
--no-verify --no-journal
--notify-only
-h --help --json --quiet --verbose --no-pager
-h --help --json --quiet --verbose'

it 'offers documents and settings to apply, and documents to import and compare'
offered apply eth0.me -- apply eth0.method=s -- apply ntp=on eth0.me -- apply /tmp/keys/p -- apply x y \
    -- import /tmp/keys/w -- import a '' -- diff /tmp/keys/m -- diff a /tmp/keys/p -- diff a b '' -- export e
output_is 'eth0.method=
eth0.method=static
eth0.method=
/tmp/keys/psk
(nothing)
/tmp/keys/wep\ key
(nothing)
/tmp/keys/more/
/tmp/keys/psk
(nothing)
(nothing)'
offered apply --restart '' -- import --only eth0.d -- import --only eth1.w -- diff --timeout '' \
    -- metrics --output /tmp/keys/w
output_is 'auto never eth0 eth1
eth0.dhcp-dns eth0.dns eth0.dhcp-notice
eth1.wep-key-1 eth1.wep-key-2 eth1.wep-key-3 eth1.wep-key-4 eth1.wep-default-key
(nothing)
/tmp/keys/wep\ key'

# ---- settings ---------------------------------------------------------------------------------
it 'offers readable settings for get, also after other names'
offered get eth0. -- get eth0.dns nt -- get eth0.dhcp- -- get --value eth1.ps
output_is 'eth0.mac-address eth0.method eth0.apipa eth0.address eth0.netmask eth0.gateway eth0.dhcp-dns eth0.dns eth0.link-speed
ntp ntp-server ntp-result
eth0.dhcp-dns
eth1.psk'

it 'offers changeable settings for set'
offered set eth0. -- set nt -- set eth1.r
output_is 'eth0.method eth0.apipa eth0.address eth0.netmask eth0.gateway eth0.dhcp-dns eth0.dns eth0.dhcp-notice eth0.link-speed
ntp ntp-server
(nothing)'

it 'offers every setting that velkctl lists'
on_device bash -c 'eval "$BASH_COMPLETION_FILE"
    COMP_WORDS=(velkctl describe "") COMP_CWORD=2
    _velkctl
    printf "%s\n" "${COMPREPLY[@]}" | diff - <(velkctl list | sed "/:\$/d; /^\$/d; s/ .*//") && echo same'
output_is 'same'

# ---- values -----------------------------------------------------------------------------------
it 'offers the values of a setting that has a few'
offered set ntp '' -- set eth0.method '' -- set eth0.link-speed 10- -- set eth1.service-set a -- \
    set eth1.encryption '' -- set eth1.channel 1 -- set eth1.ssid '' -- set eth0.dns ''
output_is 'on off
static dhcp
10-full 10-half
ad-hoc
1 wep 3 4
1 10 11 12 13
(nothing)
(nothing)'

it 'offers values after NAME=, and more names with their ='
offered set eth0.method = '' -- set eth0.method = s -- set eth0.method = dhcp ntp = '' -- \
    set eth0.method = dhcp eth0.d -- set ntp = on ntp -- set eth1.psk =@ /tmp/keys/p -- \
    set eth1.psk = @ /tmp/keys/p -- set eth1.ssid = @ /tmp/keys/p
output_is 'static dhcp
static
on off
eth0.dhcp-dns= eth0.dns= eth0.dhcp-notice=
ntp-server=
/tmp/keys/psk
/tmp/keys/psk
(nothing)'

it 'offers a schedule word by word'
offered set web-update '' -- set web-update weekly s -- set web-update weekly sunday '' -- \
    set web-update daily '' -- set web-update of
output_is 'off every daily weekly monthly
sunday saturday
(nothing)
(nothing)
off'

it 'looks past options and their values'
offered set --wait eth0.method d -- set --wait = 5 eth0.method d -- \
    set --timeout 5 eth0.method d -- call --text x g -- set --timeout ''
output_is 'dhcp
dhcp
dhcp
get
(nothing)'

it 'offers files for a secret, after @ only, and for no other value'
offered set eth1.psk @/tmp/keys/p -- set eth1.wep-key-1 @/tmp/keys/w -- \
    set eth1.psk @ /tmp/keys/m -- set eth1.psk /tmp/keys/p -- set eth1.ssid @/tmp/keys/p -- \
    set eth1.psk @/tmp/keys/no
output_is '@/tmp/keys/psk
@/tmp/keys/wep\ key
/tmp/keys/more/
(nothing)
(nothing)
(nothing)'

it 'offers files for the data bytes of a call, after @ only'
offered call set 314 eth1 --text @/tmp/keys/p -- call --hex @/tmp/keys/m -- \
    call --text @ /tmp/keys/p -- call --text /tmp/keys/p -- get --timeout @/tmp/keys/p
output_is '@/tmp/keys/psk
@/tmp/keys/more/
/tmp/keys/psk
(nothing)
(nothing)'

# ---- the other verbs --------------------------------------------------------------------------
it 'offers the interfaces to show, list and restart'
offered show '' -- list '' -- restart eth1 -- show eth0 nt -- list eth0 '' -- restart eth0 ''
output_is 'eth0 eth1
eth0 eth1
eth1
ntp ntp-server ntp-result
(nothing)
(nothing)'

it 'offers ids to describe after a digit'
offered describe 10 -- describe eth0.d
output_is '10 101 102 103 104 105 106 107 108 109
eth0.dhcp-dns eth0.dns eth0.dhcp-notice'

it 'offers the results to explain, all that velkctl knows'
offered explain LIB_VELK_L -- explain -3
output_is 'LIB_VELK_LOCKED
(nothing)'
on_device bash -c 'eval "$BASH_COMPLETION_FILE"
    COMP_WORDS=(velkctl explain "") COMP_CWORD=2
    _velkctl
    known=$(for code in $(seq -20 0); do velkctl explain "$code"; done |
        sed -n "s/^\(LIB_VELK_[A-Z_]*\) .*/\1/p" | sort)
    [ "$known" = "$(printf "%s\n" "${COMPREPLY[@]}" | sort)" ] && echo same'
output_is 'same'

it 'offers types, ids and interfaces for a call, those that the command takes'
offered call '' -- call set 11 -- call get 11 -- call set 109 '' -- call get 303 '' -- \
    call get 2 '' -- call restart '' -- call restart 1 ''
output_is 'get set restart
11
11
eth0
eth1
(nothing)
1
eth0 eth1'

# ---- as a whole -------------------------------------------------------------------------------
it 'asks velkctl for nothing that needs the device'
on_device bash -c '
    mkdir /tmp/bin
    printf "%s\n" "#!/bin/sh" "echo \"\$*\" >>/tmp/asked" "exec $(command -v velkctl) \"\$@\"" \
        >/tmp/bin/velkctl
    chmod +x /tmp/bin/velkctl
    PATH=/tmp/bin:$PATH
    eval "$BASH_COMPLETION_FILE"
    for line in "" "get " "set " "set eth1.psk " "set eth1.psk @/" "set web-update " "show " \
        "restart " "list " "describe " "describe 1" "explain " "doctor " "call " "call get " \
        "call get 108 " "set -"; do
        IFS=" " read -ra COMP_WORDS <<<"velkctl $line."
        last=$((${#COMP_WORDS[@]} - 1))
        COMP_WORDS[last]=${COMP_WORDS[last]%.} COMP_CWORD=$last
        _velkctl
    done
    sort -u /tmp/asked'
output_is '--help
describe eth1.psk --json
describe web-update --json
list --json
set --help'

# ---- at a terminal ----------------------------------------------------------------------------
types_in() { # SHELL LINE...
    on_device sh -c 'mkdir -p /tmp/keys && touch /tmp/keys/secret && exec python3 -c "$TYPIST" "$@"' sh "$@"
    status_is 0
    output_is 'velkctl describe |
velkctl get eth1.psk |
velkctl get --show-secrets |
velkctl set eth0.method |
velkctl set eth0.method static |
velkctl set ntp=on eth0.method=|
velkctl set ntp=on eth0.method=static |
velkctl set eth1.psk=@/tmp/keys/secret |
velkctl set --wait=5 eth0.method |
velkctl set web-update weekly thursday |
velkctl set eth1.psk @/tmp/keys/secret |
velkctl restart eth1 --notify-only |
velkctl call get 303 eth1 |
velkctl explain LIB_VELK_LOCKED |
velkctl help describe |
velkctl call set 314 eth1 --text @/tmp/keys/secret |
velkctl show eth|'
}
lines=('velkctl des' 'velkctl get eth1.ps' 'velkctl get --sh' 'velkctl set eth0.me'
    'velkctl set eth0.method s' 'velkctl set ntp=on eth0.me' 'velkctl set ntp=on eth0.method=s'
    'velkctl set eth1.psk=@/tmp/keys/se' 'velkctl set --wait=5 eth0.me' 'velkctl set web-update weekly th'
    'velkctl set eth1.psk @/tmp/keys/se' 'velkctl restart eth1 --no' 'velkctl call get 303 '
    'velkctl explain LIB_VELK_LO' 'velkctl help des'
    'velkctl call set 314 eth1 --text @/tmp/keys/se' 'velkctl show ')
if command -v python3 >/dev/null; then
    it 'completes a line typed into bash'
    types_in bash "${lines[@]}"
    if command -v zsh >/dev/null; then
        it 'completes a line typed into zsh'
        types_in zsh "${lines[@]}"
    fi
fi

if command -v zsh >/dev/null; then
    it 'is a script that zsh can read'
    run zsh -n "$VELK_SOURCE/packaging/completion/_velkctl"
    status_is 0
    error_is ''
fi

finish
