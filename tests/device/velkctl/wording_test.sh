# wording_test.sh - messages about usual mistakes with values and names.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

script() { on_device sh -c "$1"; }

it 'says that the WEP key in use cannot be cleared, and sends nothing'
script 'velkctl set eth1.encryption wep; printf abcde | velkctl set eth1.wep-key-1 -
    velkctl set eth1.wep-default-key 1; velkctl set eth1.wep-key-1 none'
status_is 2
error_is 'velkctl: eth1.wep-key-1: the key in use cannot be cleared
  eth1.encryption is wep, and eth1.wep-default-key names it
  fix: set eth1.wep-default-key or eth1.encryption first'
script 'velkctl set eth1.encryption wep; printf abcde | velkctl set eth1.wep-key-2 -
    velkctl set eth1.wep-default-key 1; velkctl set eth1.wep-key-2 none; velkctl get eth1.wep-key-2'
status_is 0
error_is ''
output_is 'none'

it 'notes a pre-shared key that WPA does not take, and sets it'
script 'printf hunter2 | velkctl set eth1.psk -; velkctl get --show-secrets eth1.psk'
status_is 0
error_is 'velkctl: eth1.psk: the key has 7 bytes
  WPA takes a passphrase of 8 to 63 characters or 64 hex digits'
output_is 'hunter2'

it 'names the carriage return of a key file with CR LF'
script 'printf "hunter2222\r\n" >/tmp/key; velkctl set eth1.psk @/tmp/key'
status_is 2
error_is 'velkctl: eth1.psk: it ends with CR (carriage return), as in a CR LF file
  fix: give a text of 1 to 64 bytes, or none'

it 'suggests off for a schedule of none or never'
for word in none never; do
    on_device velkctl set web-update "$word"
    status_is 2
    error_is "velkctl: web-update: '$word' is not a schedule; did you mean off?"
done

it 'does not take off for the name of a time server'
on_device velkctl set ntp-server off
status_is 2
error_is "velkctl: ntp-server: 'off' would be a host name here
  fix: give none to clear the setting, or --force to set that name"

it 'says that a value is too long, and repeats only its beginning'
on_device velkctl set ntp-server "$(printf 'x%.0s' {1..1000})"
status_is 2
error_is "velkctl: ntp-server: 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...' is too long: 1000 of at most 253 characters
  fix: give a host name or address such as 192.168.0.1, or none"

it 'names the setting for a word of other programs'
on_device velkctl get eth0.mask
error_is "velkctl: get: unknown setting 'eth0.mask'; did you mean eth0.netmask?"

it 'says that a command needs an interface'
on_device velkctl call get 108
status_is 2
output_is 'LIB_VELK_INVALID_PARAMETER (-4): the library does not take this command, interface or value; 108 needs an interface: eth0 or eth1'

it 'describes the update of a month without the day'
on_device velkctl describe web-update
output_has '    monthly  day 1 to 31; a month without it has the update on day 1 of the next'

it 'shows a character that turns the direction of text as its bytes'
script 'velkctl set location "$(printf "a\342\200\256b")"; velkctl get location
    export TERM=xterm LC_ALL=C.UTF-8; script -qc "velkctl get location" /dev/null | tr -d "\r"'
output_is 'a\xe2\x80\xaeb
a\xe2\x80\xaeb'

finish
