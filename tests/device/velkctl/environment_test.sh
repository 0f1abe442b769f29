# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# environment_test.sh - velkctl in its caller's environment: search path, shells, locale.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

script() { on_device sh -c "$stand_in_word$1"; }

# ---- environment of the library's tools ---------------------------------------------------------

it 'gives tools one locale and search path, and nothing that shells take from their environment'
script '
    : >/run/rm && mount --bind "$(readlink -f "$(command -v rm)")" /run/rm
    printf "%s\n" "#!/bin/sh" "env >/run/environment" "exec /run/rm \"\$@\"" >/run/noting
    chmod +x /run/noting && stand_in rm /run/noting
    env PATH=/tmp/mine LC_ALL=ja_JP.SJIS LANG=ja_JP.SJIS LANGUAGE=ja BASH_ENV=/tmp/x ENV=/tmp/x \
        IFS=/ CDPATH=/tmp SHELLOPTS=xtrace "BASH_FUNC_cat%%=() { echo mine; }" \
        "old=() { echo mine; }" KEPT=yes "$(command -v velkctl)" set ntp on
    grep -E "^(LC_|LANG|PATH=|BASH_|ENV=|IFS|CDPATH|SHELLOPTS|old|KEPT)" /run/environment | sort'
status_is 0
error_is ''
output_is 'KEPT=yes
LANG=ja_JP.SJIS
LC_ALL=C
PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin'

it 'runs no program of a folder that only its caller names'
script '
    mkdir /tmp/mine
    for tool in sh cat rm sudo; do
        printf "%s\n" "#!/bin/sh" "echo ran >/tmp/mine/ran" >/tmp/mine/$tool && chmod +x /tmp/mine/$tool
    done
    velkctl=$(command -v velkctl)
    touch /var/libvelk/ntp.log
    PATH=/tmp/mine:$PATH velkctl set ntp off && velkctl get ntp
    PATH=/tmp/mine $velkctl set location desk && PATH= $velkctl set ntp on && velkctl get ntp location
    ls /tmp/mine | grep ran'
error_is ''
output_is 'off
ntp       on
location  desk'

# Makes a folder that only its caller names, where the only grep is, and shows the advice on that.
advice_on_grep='
    advice_on_grep() { # FOLDER
        : >/tmp/none; mkdir "$1"; cp "$(command -v grep)" "$1"; stand_in grep /tmp/none
        PATH=$1:$PATH velkctl doctor >/run/said; "$1/grep" -A 2 "grep is" /run/said
    }
'

it 'advises to link a tool that only its caller finds, and root alone can change'
script "$advice_on_grep"'advice_on_grep /run/mine'
output_is 'warning: grep is in none of the folders that velkctl searches
  the link cannot be read from the log when ethtool does not report it
  fix: ln -s /run/mine/grep /usr/local/sbin/grep'

it 'prints no line that links a tool from a folder that everybody can write to'
script "$advice_on_grep"'advice_on_grep /tmp/mine'
output_is 'warning: grep is in none of the folders that velkctl searches
  the link cannot be read from the log when ethtool does not report it
  fix: install it in a folder that velkctl searches, such as /usr/bin'

# ---- output -------------------------------------------------------------------------------------

it 'shows characters beyond ASCII where the locale is one of UTF-8, and bytes elsewhere'
script 'velkctl set location "café" && for locale in C.UTF-8 de_DE.utf8 C de_DE.ISO-8859-1 ja_JP.SJIS; do
        LC_ALL=$locale velkctl get location
    done
    LC_ALL= LC_CTYPE=C.UTF-8 LANG=C velkctl get location
    env -u LC_ALL -u LC_CTYPE -u LANG velkctl get location
    LC_ALL=C; shown=$(velkctl get location); velkctl set location "$shown" && LC_ALL=C.UTF-8 velkctl get location'
error_is ''
output_is 'café
café
caf\xc3\xa9
caf\xc3\xa9
caf\xc3\xa9
café
caf\xc3\xa9
café'

it 'escapes characters that control a terminal, are invisible or change the direction of text'
script 'for value in "$(printf "a\302\2331mz")" "$(printf "a\342\200\256z")" "$(printf "a\342\200\213z")"; do
        velkctl set --force location "$value"; LC_ALL=C.UTF-8 velkctl get location
    done
    velkctl set location "$(printf "a\303\2331mz")"; velkctl get location'
error_is ''
output_is 'a\xc2\x9b1mz
a\xe2\x80\xaez
a\xe2\x80\x8bz
a\xc3\x9b1mz'

it 'writes its document in ASCII, the same in every locale'
script 'velkctl set location "café" && velkctl get location --json >/run/ascii
    LC_ALL=C.UTF-8 velkctl get location --json | cmp - /run/ascii
    LC_ALL=C grep "\"value\"" /run/ascii; jq -r ".settings[0].value" /run/ascii'
error_is ''
output_is '      "value": "caf\u00e9",
café'

finish
