# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# verbs_test.sh - the text output of velkctl's verbs, also at a terminal.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
command -v python3 >/dev/null || skip 'no python3 here, for terminals'

# Checks the error of the last run, with the indented lines of each message joined to its first one.
error_unfolds_to() { # MESSAGE
    error=${error//$'\n  fix: '/; }
    error=${error//$'\n  '/; }
    error_is "$1"
}

# Types lines at a terminal of the command's own, each at a question (": "), and shows the
# terminal's text. The line ^C is typed as the key.
export TYPIST='
import os, pty, sys, termios
typed = os.environ["TYPED"].splitlines()
child, terminal = pty.fork()
if child == 0:
    os.execvp(sys.argv[1], sys.argv[1:])
shown = b""
echo_was_on = termios.tcgetattr(terminal)[3] & termios.ECHO
while True:
    try:
        some = os.read(terminal, 1000)
    except OSError:
        break
    if not some:
        break
    shown += some
    if shown.endswith(b": ") and typed:
        line = typed.pop(0)
        os.write(terminal, b"\x03" if line == "^C" else line.encode() + b"\n")
_, status = os.waitpid(child, 0)
print(shown.decode().replace("\r\n", "\n").replace("\x1b", "<esc>"), end="")
print("ended with", os.waitstatus_to_exitcode(status))
'
typing() { # LINES COMMAND...
    TYPED=$1 NO_COLOR=${NO_COLOR-1} on_device python3 -c "$TYPIST" "${@:2}"
}

# ---- show -------------------------------------------------------------------------------------
it 'shows all settings of an interface, below each other'
on_device velkctl show eth0
status_is 0
error_is ''
output_is 'eth0.mac-address  02:00:00:00:00:10
eth0.method       static
eth0.apipa        on
eth0.address      192.168.0.10
eth0.netmask      255.255.255.0
eth0.gateway      192.168.0.1
eth0.dhcp-dns     off
eth0.dns          192.168.0.1 192.168.0.2
eth0.link-speed   auto'

it 'shows the settings of the device and of both interfaces'
on_device velkctl show
status_is 0
error_is ''
output_has 'administrator           Robin
location                Second floor, by the window
'
output_has 'eth1.psk                ********
'
output_has '8 settings need the cable out:
'

it 'shows secrets to those who ask'
on_device velkctl show eth1 --show-secrets
status_is 0
check 'no mask' 0 "$(printf '%s\n' "$output" | grep -c '\*\*\*\*')"

it 'asks a silent daemon only once'
on_device sh -c 'velk-sandbox cable out; kill -STOP $(cat /run/velk-sandbox/wland.pid)
    velkctl show eth1 --timeout 1; kill -CONT $(cat /run/velk-sandbox/wland.pid)'
output_has 'eth1.hardware-version   (no answer after 1 s)
18 settings were skipped: the wireless daemon does not answer:
'
output_has 'eth1.method             dhcp
'

it 'lists the settings of an interface'
on_device velkctl list eth0
status_is 0
check 'settings' 10 "$(printf '%s\n' "$output" | grep -c '^eth0\.')"
check 'lines' 10 "$(printf '%s\n' "$output" | wc -l)"
on_device velkctl list eth2
status_is 2
error_is "velkctl: list: 'eth2' is not an interface of the device
  fix: did you mean eth0 or eth1?"

it 'refuses an unknown interface'
on_device velkctl show eth2
status_is 2
output_is ''
error_is "velkctl: show: 'eth2' is not an interface of the device
  fix: did you mean eth0 or eth1?"

# ---- get, set ---------------------------------------------------------------------------------
it 'shows bare values for scripts'
on_device velkctl get --value eth0.address eth0.netmask
status_is 0
output_is '192.168.0.10
255.255.255.0'

it 'shows one bare line for each name, empty for an empty or unreadable value'
on_device sh -c 'velkctl set location "" && velkctl set eth0.gateway none && velkctl set eth0.dns none
    velkctl get --value eth0.gateway location eth1.signal eth0.dns ntp 2>/dev/null; echo $?
    test -z "$(velkctl get --value location)" && echo empty; velkctl get location eth0.gateway'
output_is '



on
5
empty
location      '"''"'
eth0.gateway  none'

it 'distinguishes a byte from the text that looks like it'
on_device sh -c 'for text in "a\xff" "a\x5cxff"; do
        velkctl set location "$text" && velkctl get location && grep LOCATION /var/libvelk/libvelk | od -An -c
    done'
error_is ''
output_is 'a\xff
   L   O   C   A   T   I   O   N   =   a 377  \n
a\x5cxff
   L   O   C   A   T   I   O   N   =   a   \   x   f   f  \n'

it 'refuses a gateway outside the network, unless forced'
on_device sh -c 'velkctl set eth0.gateway 10.0.0.1; echo $?; velkctl get eth0.gateway
    velkctl set eth0.gateway 10.0.0.1 --force; echo $?; velkctl get eth0.gateway'
error_is 'velkctl: eth0.gateway: 10.0.0.1 is outside the network of the interface
  the network of the interface is 192.168.0.0/24
  fix: give another value, or set the address and netmask first, or give --force'
output_is '2
192.168.0.1
0
10.0.0.1'

it 'sends values that are not valid unchanged when forced'
on_device sh -c 'velkctl set eth0.address nonsense --force; velkctl get eth0.address
    velkctl set ntp-server "a b" --force; grep -c "ntpdate -u a b >" /var/cron/tabs/root
    velkctl set eth0.method 3 --force; velkctl set eth0.dns 1.2.3.4.5 --force; velkctl get eth0.dns
    velkctl set web-update schedule 1 200 00:00 --force; velkctl get web-update'
output_is 'nonsense
1
1.2.3.4.5
every 200h'
error_is "velkctl: note: eth0.address: 'nonsense' is not an IPv4 address
  it is read from /etc/network/interfaces:8
  fix: velkctl set eth0.address VALUE
velkctl: ntp-server: the library reported success, but the device holds 'a'
  likely cause: /var/cron/tabs/root:1: 'a' also occurs earlier on the line
  a set replaces it there
  fix: with an editor, write the server's address or another name in its place
velkctl: eth0.method: could not be set
  the library does not take this command, interface or value
  fix: run 'velkctl describe eth0.method' for the values it takes
  result: LIB_VELK_INVALID_PARAMETER (-4)
velkctl: note: eth0.dns: '1.2.3.4.5' is not an IPv4 address
  it is read from /etc/resolv.dnsmasq.conf:1
  fix: velkctl set eth0.dns VALUE
velkctl: note: web-update: 'every 200h' is not a schedule
  it is read from /var/cron/tabs/root:3
  fix: velkctl set web-update SCHEDULE"

it 'does not read back with --no-verify'
on_device sh -c 'velkctl set eth1.method static && velkctl set eth1.gateway 10.0.0.1 --no-verify'
status_is 0
error_is 'velkctl: note: eth1.dhcp-dns is off now, switched by eth1.method
velkctl: note: eth1.address and eth1.netmask are missing
  eth1.method is static, and ifup needs them
  fix: velkctl set eth1.address=ADDRESS eth1.netmask=NETMASK'

it 'suggests a correction of a misspelt word'
on_device velkctl get eth0.gateways
status_is 2
error_is "velkctl: get: unknown setting 'eth0.gateways'; did you mean eth0.gateway?"
on_device velkctl gte eth0.dns
status_is 2
error_is "velkctl: unknown verb 'gte'; did you mean get?"

# ---- secrets at a terminal --------------------------------------------------------------------
it 'asks for a secret twice, and does not show it'
typing 'hunter2222
hunter2222' velkctl set eth1.psk
output_is 'new value of eth1.psk: 
repeat the value: 
velkctl: note: eth1.psk takes effect at the next restart of eth1
  without the cable in eth0
ended with 0'

it 'refuses a secret if the two typed texts differ'
typing 'hunter2222
hunter2223' velkctl set eth1.psk
output_is 'new value of eth1.psk: 
repeat the value: 
velkctl: eth1.psk: the second value differs from the first
  fix: give the same value twice
ended with 2'

it 'asks for the secrets among several settings'
typing 'hunter2222
hunter2222
abcde
abcde' sh -c 'velkctl set psk= ssid=lab wep-key-2= --json >/dev/null &&
    velkctl get wep-key-2 && velkctl get ssid'
output_is 'new value of eth1.psk: 
repeat the value: 
new value of eth1.wep-key-2: 
repeat the value: 
********
lab
ended with 0'

it 'does not ask again after an empty line'
typing $'\n' velkctl set eth1.psk
output_is 'new value of eth1.psk: 
velkctl: eth1.psk: 0 bytes given; give a text of 1 to 64 bytes, or none
ended with 2'

it 'does not show the input for -'
typing 'hunter2222' velkctl set eth1.psk -
output_is 'value: 
velkctl: note: eth1.psk takes effect at the next restart of eth1
  without the cable in eth0
ended with 0'

it 'leaves the terminal as it was when Ctrl-C ends the question'
typing '^C' sh -c 'trap : INT; velkctl set eth1.psk; echo "status $?"; stty -a | grep -o " [-]*echo "'
output_has 'status 130
 echo '

it 'asks no question without a terminal'
on_device velkctl set eth1.psk
status_is 2
error_is 'velkctl: eth1.psk: no value given; give a text of 1 to 64 bytes, or none'

# ---- describe, explain ------------------------------------------------------------------------
it 'describes a setting'
on_device velkctl describe eth0.dhcp-notice
status_is 0
output_is 'eth0.dhcp-notice
  print notices of the DHCP client: on or off
  command 109: set
  takes on or off
  takes effect at the next lease or restart of eth0
  example: velkctl set eth0.dhcp-notice on'
on_device velkctl describe 314
output_is 'eth1.psk
  pre-shared key, or none; secret
  command 314: get and set
  takes a text of 1 to 64 bytes, or none
  a secret: masked without --show-secrets; give it as -, @FILE or at the prompt
  takes effect at the next restart of eth1,
    without the cable in eth0
  reading takes at most 60 s; it waits
    for the wireless daemon to answer
  example: velkctl get eth1.psk
  example: velkctl set eth1.psk -'

it 'describes the values of a setting'
on_device velkctl describe eth0.method
output_is 'eth0.method
  where the address comes from: static or dhcp
  command 102: get and set
  takes static or dhcp
    static  address, netmask and gateway are those that are set
    dhcp    a DHCP server gives them
  takes effect at the next restart of eth0
  example: velkctl get eth0.method
  example: velkctl set eth0.method static'
on_device velkctl describe ntp-result
output_is 'ntp-result
  result of the last time synchronisation
  command 10: get
  shows reached, not-reached or no-result
    reached      a server answered; the clock was set
    not-reached  no server answered
    no-result    it has not run yet, or was switched off
  example: velkctl get ntp-result'
on_device velkctl describe location
output_is "location
  location of the device: a text, '' if empty
  command 3: get and set
  takes a text of at most 511 bytes
    ''  clears it
  takes effect at once
  example: velkctl get location
  example: velkctl set location 'a text'"

it 'gives examples of setting that work'
on_device sh -c 'velk-sandbox cable out
    for name in $(velkctl list | sed "/:\$/d; /^\$/d; s/ .*//"); do
        velkctl describe $name | sed -n "s/^  example: \(velkctl set .*\)/\1/p"
    done >/tmp/examples
    wc -l </tmp/examples
    while IFS= read -r line; do
        # Their result with the files of this device does not matter here.
        echo 1234567890123 | sh -c "$line --no-verify --quiet" 2>&1 || echo "$line"
    done </tmp/examples'
status_is 0
error_is ''
output_is '34'

it 'describes the setting of every interface by its short name'
on_device velkctl describe gateway
check 'both' 'eth0.gateway eth1.gateway' "$(printf '%s\n' "$output" | grep '^eth' | xargs)"

it 'refuses to describe an unknown setting'
on_device velkctl describe 8
status_is 2
error_is "velkctl: describe: unknown setting '8'; 'velkctl list' names them all"

it 'explains a result by number and by name'
for word in -3 LIB_VELK_LOCKED LOCKED; do
    on_device velkctl explain "$word"
    status_is 0
    output_is "LIB_VELK_LOCKED (-3)
  another program is changing settings
  fix: try again, or let --wait=SECONDS try again
  exit status of velkctl: 3"
done

it 'explains an exit status by number, with the result that leads to it'
on_device velkctl explain 3
status_is 0
output_is "exit status 3 of velkctl
  another program is changing settings
  fix: try again, or let --wait=SECONDS try again
  result of the library: LIB_VELK_LOCKED (-3)
    another program is changing settings"
on_device velkctl explain 6
output_is "exit status 6 of velkctl
  done, but the device lacks the value or address
  fix: read the likely cause in the message; 'velkctl doctor' looks for more"

it 'explains 0 as a result and as an exit status'
on_device velkctl explain 0
status_is 0
output_is 'LIB_VELK_SUCCESS (0)
  done
  fix: none needed; success of a set does not prove that the value is held
  exit status of velkctl: 0
exit status 0 of velkctl
  done
  fix: none needed
  result of the library: LIB_VELK_SUCCESS (0)
    done'

it 'refuses to explain any other word'
explained() { # WORD MESSAGE
    on_device velkctl explain "$1"
    status_is 2
    output_is ''
    error_unfolds_to "velkctl: explain: $2"
}
neither='is neither a result nor an exit status'
explained nothing "'nothing' $neither; give a number such as -3 or 3, or a name such as LOCKED"
explained '' "'' $neither; give a number such as -3 or 3, or a name such as LOCKED"
explained LOKED "'LOKED' $neither; did you mean LOCKED?"
explained lib_velk_failure "'lib_velk_failure' $neither; did you mean LIB_VELK_FAILURE?"
explained 10 "'10' is not an exit status; give 0 to 9, or a result, which is 0 or negative"

# ---- wrong usage ------------------------------------------------------------------------------
# Checks that velkctl refuses these arguments with this message and prints nothing else.
refused() { # MESSAGE ARGUMENT...
    run velkctl "${@:2}"
    status_is 2
    output_is ''
    error_unfolds_to "velkctl: $1"
}

it 'suggests a correction of a misspelt option or value'
refused "get: unknown option '--jsno'; did you mean --json?" get eth0.dns --jsno
refused "get: unknown option '-json'; did you mean --json?" get eth0.dns -json
refused "unknown option '--verison'; did you mean --version?" --verison
refused "set: unknown option '--no-verfy'; did you mean --no-verify?" set ntp on --no-verfy=1
refused "eth0.method: 'dhcpp' is not valid; did you mean dhcp?" set eth0.method dhcpp
refused "eth0.link-speed: '100full' is not valid; did you mean 100-full or 10-full?" \
    set eth0.link-speed 100full
refused "ntp: 'ON' is not valid; did you mean on?" set ntp ON
refused "unknown verb 'hlep'; did you mean help?" hlep
refused "get: unknown setting 'eth1.wep-key-5'; did you mean eth1.wep-key-1, eth1.wep-key-2, eth1.wep-key-3 or eth1.wep-key-4?" \
    get eth1.wep-key-5

it 'suggests a completion of an abbreviated word'
refused "restart: unknown option '--notify'; did you mean --notify-only?" restart eth1 --notify
refused "eth0.link-speed: '100' is not valid; did you mean 100-full or 100-half?" \
    set eth0.link-speed 100
refused "unknown verb 'desc'; did you mean describe?" desc ntp

it 'gives the names of an id'
refused "get: unknown setting '108'; give eth0.dns or eth1.dns" get 108
refused "get: unknown setting '999'; 'velkctl list' names them all" get 999

it 'suggests a correction of a schedule'
refused "web-update: 'dialy 08:30' is not a schedule; did you mean daily?" set web-update dialy 08:30
refused "web-update: 'weekly sundax 08:30' is not a schedule; did you mean sunday?" \
    set web-update weekly sundax 08:30
refused "web-update: 'every 24h' is not a schedule; give every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off" \
    set web-update every 24h

it 'recognises a setting and an interface in the wrong place'
refused "'eth0.dns' is a setting; give a verb before it, such as get or describe" eth0.dns
refused "unknown verb 'eth0.addresx'; did you mean the setting eth0.address? Give a verb before it, such as get or describe" \
    eth0.addresx
refused "set: 'eth0' is an interface, not a setting; 'velkctl show eth0' shows its settings" set eth0 x
refused "get: unknown setting 'gatewxy'; did you mean eth0.gateway or eth1.gateway?" get gatewxy

it 'refuses a word after help VERB'
refused 'help: too many arguments; usage: velkctl help [VERB]' help get extra

it 'takes no mask for a key'
refused 'eth1.psk: this is the mask that is shown in place of a key; give a text of 1 to 64 bytes, or none' \
    set eth1.psk '********'

it 'says where an option of a verb belongs'
refused "'--timeout' is an option of a verb; give it after the verb" \
    --timeout 5 get eth0.dns
refused "'--wait' is an option of a verb; give it after the verb" --wait=5 set ntp on

it 'says how --wait takes its seconds'
seconds="--wait takes its seconds after '='; write --wait=SECONDS"
refused "restart: $seconds" restart --wait 5 eth0
refused "restart: $seconds" restart eth0 --wait 5
refused "set: $seconds" set --wait 5 ntp on
refused "set: $seconds" set eth1.psk some-key --wait 12345678
refused "call: $seconds" call get 108 --wait 5
refused "eth1.channel: '99' is not valid; give a number from 1 to 13" \
    set eth1.channel --wait 99

it 'repeats no word next to a key, and says so'
hidden='not repeated here as it may be a key'
refused "set: unknown option, $hidden; a value that begins with a dash needs -- before it; 'velkctl set --help' lists the options" \
    set eth1.psk --hunter2
refused "set: unknown option, $hidden; did you mean --wait?" set eth1.psk a-key --wiat
refused "list: unexpected argument, $hidden; usage: velkctl list [eth0|eth1] [OPTION...]" \
    list eth1.psk some-key
refused "get: unknown setting, $hidden; 'velkctl list' names them all" get eth1.psk secretpass

it 'does not accept none as a text unless forced'
for name in location administrator eth1.ssid; do
    refused "$name: 'none' would be a text here; give '' to clear the setting, or --force to set that text" \
        set "$name" none
done
on_device sh -c 'velkctl set location none --force && velkctl get location
    velkctl set location "" && velkctl get location'
status_is 0
error_is ''
output_is "none
''"

it 'forces no value where none is given'
refused 'eth0.dns: no value given; give one to three IPv4 addresses such as 192.168.0.1, or none' \
    set eth0.dns --force
refused 'ntp: no value given; give on or off' set --force ntp

it 'refuses a word that is no text'
refused "unknown verb '\\xff\\x1b'; 'velkctl --help' lists the verbs" \
    $'\xff\e'
refused "unknown verb ''; 'velkctl --help' lists the verbs" ''
for word in - --; do
    refused "unknown verb '$word'; 'velkctl --help' lists the verbs" "$word" get ntp
done
refused "ntp: '$(printf '%040d' 0)...' is not valid; give on or off" \
    set ntp "$(printf '%0513d' 0)"
refused "get: unknown setting '-'; 'velkctl list' names them all" get -
refused "get: unknown setting ''; 'velkctl list' names them all" get ''
refused "get: argument missing; usage: velkctl get NAME... [OPTION...]" get --
refused "get: unknown setting '--json'; 'velkctl list' names them all" get -- --json
refused "--timeout: '-1' is not a time; give whole seconds, 1 to 86400" get ntp --timeout=-1
refused "--timeout: '0' is not a time; give whole seconds, 1 to 86400" get ntp --timeout 0
refused "--timeout: '' is not a time; give whole seconds, 1 to 86400" get ntp --timeout=
refused "get: option '--timeout' is given twice; give it once" get ntp --timeout 1 --timeout 2

# ---- call -------------------------------------------------------------------------------------
it 'takes the data bytes of a call from standard input and from a file'
on_device sh -c 'velk-sandbox cable out; mkdir /run/keys
    echo a-long-enough-key >/run/keys/psk && printf "61 6c 6f\n6e" >/run/keys/hex
    velkctl call set 314 eth1 --text @/run/keys/psk && velkctl get eth1.psk --show-secrets
    echo another-long-key | velkctl call set 314 eth1 --text - && velkctl get eth1.psk --show-secrets
    echo 61:62:63:64:65:66:67:68 | velkctl call set 314 eth1 --hex=- && velkctl get eth1.psk --show-secrets
    printf "%01533d\n" 0 | sed "s/00/00:/g; s/:.\$//" >/run/keys/long
    velkctl call set 314 eth1 --hex @/run/keys/long
    velkctl call set 314 eth1 --hex @/run/keys/hex
    velkctl call set 314 eth1 --text @/run/keys/none
    velkctl call set 314 eth1 --text - </dev/null'
status_is 2
output_is 'LIB_VELK_SUCCESS (0): done
a-long-enough-key
LIB_VELK_SUCCESS (0): done
another-long-key
LIB_VELK_SUCCESS (0): done
abcdefgh'
error_is "velkctl: call: --hex: more than 512 bytes; give at most 512
velkctl: call: --hex: the file after @ has more than one line
  fix: give the value as the only one
velkctl: call: --text: the file after @ cannot be read
  No such file or directory
  fix: give - for standard input or @FILE for another file
velkctl: call: --text: standard input is empty; give the value as one line"

finish
