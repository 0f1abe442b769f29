# verbs_test.sh - what velkctl's verbs tell people, at a terminal too.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
command -v python3 >/dev/null || skip 'no python3 here, for terminals'

# Types lines at a terminal of the command's own, each when a question (": ") is there, and shows what
# stood on it. The line ^C is typed as the key.
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
    TYPED=$1 on_device python3 -c "$TYPIST" "${@:2}"
}

# ---- show -------------------------------------------------------------------------------------
it 'shows all settings of an interface, below each other'
on_device velkctl show eth0
status_is 0
error_is ''
output_is 'eth0.mac-address  020000000010
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
output_has 'eth1.signal             (refused while the cable is in the wired port)
'

it 'shows secrets to those who ask'
on_device velkctl show eth1 --show-secrets
status_is 0
check 'no mask' 0 "$(printf '%s\n' "$output" | grep -c '\*\*\*\*')"

it 'colours what cannot be read, at a terminal alone, and not against NO_COLOR'
typing '' velkctl show eth1
output_has 'eth1.signal             <esc>[33m(refused while the cable is in the wired port)<esc>[0m'
typing '' env NO_COLOR=1 velkctl show eth1
output_has 'eth1.signal             (refused while the cable is in the wired port)'
on_device velkctl show eth1
check 'no escapes' 0 "$(printf '%s' "$output" | grep -c "$(printf '\033')")"

it 'asks a daemon that does not answer once'
on_device sh -c 'velk-sandbox cable out; kill -STOP $(cat /run/velk-sandbox/wland.pid)
    velkctl show eth1 --timeout 1; kill -CONT $(cat /run/velk-sandbox/wland.pid)'
output_has 'eth1.hardware-version   (given up, it took too long)
eth1.software-version   (not asked: the wireless daemon did not answer before)
'
output_has 'eth1.method             dhcp
'

it 'refuses an interface that there is not'
on_device velkctl show eth2
status_is 2
output_is ''
error_is "velkctl: show: 'eth2' is not an interface of the device; give eth0 or eth1"

# ---- get, set ---------------------------------------------------------------------------------
it 'shows bare values for scripts'
on_device velkctl get --value eth0.address eth0.netmask
status_is 0
output_is '192.168.0.10
255.255.255.0'

it 'refuses a gateway outside the network, unless forced'
on_device sh -c 'velkctl set eth0.gateway 10.0.0.1; echo $?; velkctl get eth0.gateway
    velkctl set eth0.gateway 10.0.0.1 --force; echo $?; velkctl get eth0.gateway'
error_is 'velkctl: eth0.gateway: 10.0.0.1 is outside the network of the interface, 192.168.0.0/24; give another, set the address and netmask first, or give --force'
output_is '2
192.168.0.1
0
10.0.0.1'

it 'sends nonsense as it is when forced'
on_device sh -c 'velkctl set eth0.address nonsense --force; velkctl get eth0.address
    velkctl set ntp-server "a b" --force; grep -c "ntpdate -u a b >" /var/cron/tabs/root
    velkctl set eth0.method 3 --force; velkctl set eth0.dns 1.2.3.4.5 --force; velkctl get eth0.dns
    velkctl set web-update schedule 1 200 00:00 --force; velkctl get web-update'
output_is 'nonsense
1
1.2.3.4.5
every 200h'
error_is "velkctl: ntp-server: the library reported success, but the device holds 'a'
velkctl: eth0.method: could not be set: the library does not take this command, interface or value (LIB_VELK_INVALID_PARAMETER, -4)"

it 'does not read back when told so'
on_device sh -c 'velkctl set eth1.method static && velkctl set eth1.gateway 10.0.0.1 --no-verify'
status_is 0
error_is ''

it 'guesses what a misspelt word means'
on_device velkctl get eth0.gateways
status_is 2
error_is "velkctl: get: unknown setting 'eth0.gateways'; did you mean eth0.gateway?"
on_device velkctl gte eth0.dns
status_is 2
error_is "velkctl: unknown verb 'gte'; did you mean get? ('velkctl --help' explains them)"

# ---- secrets at a terminal --------------------------------------------------------------------
it 'asks for a secret twice, and does not show it'
typing 'hunter2222
hunter2222' velkctl set eth1.psk
output_is 'new value of eth1.psk: 
the same again: 
ended with 0'

it 'takes no secret that was typed in two ways'
typing 'hunter2222
hunter2223' velkctl set eth1.psk
output_is 'new value of eth1.psk: 
the same again: 
velkctl: eth1.psk: the second value differs from the first
ended with 2'

it 'does not show what is typed for -'
typing 'hunter2222' velkctl set eth1.psk -
output_is 'value: 
ended with 0'

it 'leaves the terminal as it was when Ctrl-C ends the question'
typing '^C' sh -c 'trap : INT; velkctl set eth1.psk; echo "status $?"; stty -a | grep -o " [-]*echo "'
output_has 'status 130
 echo '

it 'asks nobody where there is no terminal'
on_device velkctl set eth1.psk
status_is 2
error_is 'velkctl: eth1.psk: no value given; give a text of 1 to 64 bytes, or none'

# ---- describe, explain ------------------------------------------------------------------------
it 'says what a setting is'
on_device velkctl describe eth0.dhcp-notice
status_is 0
output_is 'eth0.dhcp-notice
  print a notice when DHCP starts and has finished: on or off
  command 109: set
  example: velkctl set eth0.dhcp-notice VALUE'
on_device velkctl describe 314
output_is 'eth1.psk
  pre-shared key: a text of 1 to 64 bytes, or none; secret
  command 314: get and set
  a secret: masked unless --show-secrets is given; - , @FILE or a prompt take it
  reading it may take 60 seconds: it waits for the wireless daemon to answer
  example: velkctl get eth1.psk'

it 'describes the setting of every interface by its short name'
on_device velkctl describe gateway
check 'both' 'eth0.gateway eth1.gateway' "$(printf '%s\n' "$output" | grep '^eth' | xargs)"

it 'refuses to describe what there is not'
on_device velkctl describe 8
status_is 2
error_is "velkctl: describe: unknown setting '8'; 'velkctl list' names them all"

it 'explains a result by number and by name'
for word in -3 LIB_VELK_LOCKED LOCKED; do
    on_device velkctl explain "$word"
    status_is 0
    output_is "LIB_VELK_LOCKED (-3): another program is changing settings now, try again
  what to do: '--wait' tries again until the other program is done
  exit status of velkctl: 3"
done
on_device velkctl explain nothing
status_is 2
error_is "velkctl: explain: 'nothing' is not a result; give a number such as -3, or its name"

finish
