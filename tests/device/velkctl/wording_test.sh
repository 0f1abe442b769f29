# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

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
error_is 'velkctl: note: eth1.psk: the key has 7 bytes
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
error_is "velkctl: ntp-server: 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...' is too long
  it has 1000 of at most 253 characters
  fix: give a host name or address such as 192.168.0.1, or none"

it 'names the setting for a word of other programs'
on_device velkctl get eth0.mask
error_is "velkctl: get: unknown setting 'eth0.mask'; did you mean eth0.netmask?"

it 'says that a command needs an interface'
on_device velkctl call get 108
status_is 2
output_is 'the library does not take this command, interface or value
  108 takes the interface eth0 or eth1
  result: LIB_VELK_INVALID_PARAMETER (-4)'

it 'says which interface and type a command takes, and that it does not exist'
on_device velkctl call get 108 eth5
output_has '  108 takes the interface eth0 or eth1'
on_device velkctl call restart 1
output_has '  1 takes the interface eth0 or eth1'
on_device velkctl call get 11 eth0
output_has '  11 takes no interface'
on_device velkctl call get 9999 eth1
output_has '  command 9999 does not exist'
on_device velkctl call restart 108 eth0
output_has '  108 takes no restart'
on_device velkctl call set 101 eth0
output_has '  101 takes no set'

it 'names the setting in the fix of a value that the library refuses'
on_device velkctl set --force eth0.link-speed 9
status_is 2
error_has "  fix: run 'velkctl describe eth0.link-speed' for the values it takes"

it 'explains a prefix length'
for word in /33 33 /0x; do
    on_device velkctl set eth0.netmask "$word"
    error_is "velkctl: eth0.netmask: '$word' is $([ "$word" = /0x ] && echo not an IPv4 mask ||
        echo no mask: a prefix length is 1 to 32)
  fix: give an IPv4 mask such as 255.255.255.0"
done
on_device velkctl set eth0.address 10.0.0.1/
error_is "velkctl: eth0.netmask: '/' has no prefix length
  fix: give an IPv4 mask such as 255.255.255.0"

it 'says that patterns are for get and show'
for verb in set describe; do
    on_device velkctl "$verb" 'eth0.*'
    error_is "velkctl: $verb: 'eth0.*' is a pattern, for get and show only; give one name"
done
on_device velkctl list 'eth*'
error_is "velkctl: list: 'eth*' is a pattern, for get and show only; give one interface"

it 'refuses a blank at the equals sign once'
for words in 'eth0.dns= 1.1.1.1' 'eth0.dns = 1.1.1.1'; do
    # shellcheck disable=SC2086  # words
    on_device velkctl set $words
    status_is 2
    error_is "velkctl: set: eth0.dns: there is a blank at the '='
  fix: write eth0.dns=VALUE without blanks"
done

it 'puts a fix after the reason'
on_device velkctl set eth1.encryption wpa2
error_is "velkctl: eth1.encryption: 'wpa2' is not valid
  the wireless daemon defines the meaning of 1, 3 and 4; see its manual
  fix: give 1, 2 (wep), 3 or 4"

it 'points in a description to no description'
for name in eth0.dns eth0.link-speed web-update; do
    on_device velkctl describe "$name"
    check 'see describe' 0 "$(grep -c 'see describe' <<<"$output")"
done

it 'takes --json, --quiet and --verbose before the verb'
for flag in --json --quiet --verbose; do
    on_device velkctl $flag get ntp
    status_is 0
    error_is ''
    on_device velkctl $flag help get
    status_is 0
done
on_device sh -c 'velkctl set eth0.method dhcp --quiet; velkctl --quiet set eth0.address 10.0.0.1'
error_is ''
on_device velkctl --quiet get ntp --verbose
status_is 2
error_is 'velkctl: get: --quiet and --verbose exclude each other; give one of them'

it 'prints messages in lines of at most 80 columns'
script 'while read -r line; do
        eval "$line" >/tmp/said 2>&1 && echo "no failure: $line"
        awk -v line="$line" "length(\$0) > 80 { print length(\$0), line, \$0 }" /tmp/said
    done <<END
velkctl
velkctl call get 108
velkctl call get 108 eth5
velkctl call restart 1
velkctl call get 108 a-name-that-is-too-long
velkctl call set 108 eth0 --hex 6
velkctl call set 108 eth0 --text @/nonexistent
velkctl put
velkctl get
velkctl get ssid rate
velkctl get "eth9.*"
velkctl get eth1
velkctl get "*"
velkctl get eth0.dns --timeout
velkctl get eth0.dns --timeout=0
velkctl get eth0.dhcp-notice
velkctl set ntp
velkctl set eth0.dns 127.0.0.1
velkctl set eth0.dns 1.1.1.1,foo,bar,1.2.3.4
velkctl set eth0.dns 1.1.1.010
velkctl set eth0.address 1
velkctl set eth0.address 10.0.0.1/33
velkctl set eth0.mac-address 1
velkctl set eth0.link-speed 1000
velkctl set eth0.gateway 10.0.0.1
velkctl set eth0.address=1.1.1.1/24 eth0.netmask=24
velkctl set eth0.dns = 1.1.1.1
velkctl set eth1.encryption wpa2
velkctl set eth1.psk @/nonexistent
velkctl set eth1.wep-key-1 123456789x
velkctl set ntp-server off
velkctl set ntp-server $(printf "x%.0s" $(seq 1000))
velkctl set ntp-server $(printf "x%.0s" $(seq 70))
velkctl set location none
velkctl set location a b
velkctl set web-update yearly
velkctl set --force eth0.link-speed 9
velkctl set "eth0.*" 1
velkctl explain ssid
velkctl explain nonsense
velkctl explain 99
velkctl restart eth0 --notify-only
velkctl status eth9
velkctl list --wait
velk-sandbox adapter out; velkctl get ssid
END'
status_is 0
error_is ''
output_is ''

# Each line names a part of a finding and breaks the device by a script. The files are put back. The
# first line of a finding may be longer: it has the names of all its settings.
it 'prints findings in lines of at most 80 columns'
script 'files="/etc/network/interfaces /etc/dhclient.conf /etc/dhclient-exit-hooks /sbin/dhclient-script
        /var/cron/tabs/root /var/libvelk/libvelk"
    i=/etc/network/interfaces d=/etc/dhclient.conf h=/etc/dhclient-exit-hooks c=/var/cron/tabs/root
    mkdir /run/own; for file in $files; do cp $file /run/own; done
    while read -r line; do
        for file in $files; do cat /run/own/${file##*/} >$file; done
        rm -rf /var/tmp/* /dev/shm/sem.*
        part=${line%% | *}; eval "${line#* | }"
        velkctl doctor >/tmp/said 2>&1
        grep -q -- "$part" /tmp/said || { echo "no finding: $part"; cat /tmp/said; }
        awk -v part="$part" "length(\$0) > 80 && !/^(problem|warning): / { print length(\$0), part, \$0 }" /tmp/said
    done <<"END"
address line | sed -i "/^iface eth0/a\\\\thwaddress ether 02:00:00:00:00:01" $i
recognise the header | sed -i "s/^iface eth0/iface  eth0/" $i
no line begins | sed -i "/^iface eth0/,/gateway/d" $i
still applies | sed -i "s/^\(\tgateway\) 192.*/&\n\1 10.0.0.4/" $i
for the start of a block | sed -i "1i # the interface of the wired port" $d
all lines up to | echo "interface \"eth0\" { request routers; }" >$d
looks like a comment | sed -i "/\"eth0\" {/a # a comment" $d
opening line | sed -i "s/interface \"eth1\"/interface\"eth1\"/" $d
its statements | sed -i "/\"eth1\" {/,/}/d" $d
outside its block | printf "subnet 10.0.0.0 {\n}\n" >>$d
.elif. within a block | sed -i "/^else/i elif false; then\n\t:" $h
does not see | sed -i "s/\"\$interface\" = \"eth0\"/\"\${interface}\" = \"eth0\"/" $h
definition for a call | sed -i "s/^make_resolv_conf()/make_resolv_conf ()/" /sbin/dhclient-script
a set replaces it there | sed -i "s/192.168.0.1/usr/" $c
for the server | sed -i "s/-u 192.168.0.1/-p 4/" $c
no server | sed -i "s/ntpdate.*/ntpdate/" $c
the last word | sed -i "s/ntpdate.*/ntpdate -u 192.168.0.1/" $c
two entries | sed -i "/ntpdate/{N;s/> .*log\n//}" $c
for an entry | sed -i "1i # ntpdate sets the clock" $c
such a schedule | sed -i "s/^30 01 .*perl/30 01 * 2 * perl/" $c
does not contain | printf "ADMINISTRATOR=a syslocation\nLOCATION=b\n" >/var/libvelk/libvelk
is not made by | cp $c /var/tmp/root; chmod 640 /var/tmp/root
setuid program | (umask 022; { cat $i; echo "up true"; } >/var/tmp/interfaces); : >$i
compare: diff | echo "0 * * * * true" >$c; (umask 077; echo "5 * * * * true" >/var/tmp/root)
the rest is in | (umask 077; echo "iface lo inet loopback" >/var/tmp/interfaces); : >$i
SIGBUS | : >/dev/shm/sem.WlanAplRecvSem
END'
status_is 0
error_is ''
output_is ''

it 'describes the update of a month without the day'
on_device velkctl describe web-update
output_has '    monthly  day 1 to 31; a month without it has the update on day 1 of the next'

it 'shows a character that turns the direction of text as its bytes'
script 'velkctl set location "$(printf "a\342\200\256b")"; velkctl get location
    export TERM=xterm LC_ALL=C.UTF-8; script -qc "velkctl get location" /dev/null | tr -d "\r"'
output_is 'a\xe2\x80\xaeb
a\xe2\x80\xaeb'

finish
