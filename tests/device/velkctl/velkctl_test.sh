# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# velkctl_test.sh - the command-line tool for people and scripts.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Runs a command on a device with this text in the resolver file (escapes as in printf), before any
# set. Shows the file after the command's output, and the lock file.
with_resolver() { # TEXT COMMAND...
    on_device sh -c '
        resolver=/etc/resolv.dnsmasq.conf
        printf "$1" >$resolver
        rm -f /var/tmp/vklib_lock
        shift
        "$@"
        status=$?
        echo "-- $resolver"
        cat $resolver
        echo "--"
        [ -e /var/tmp/vklib_lock ] && echo "lock file made"
        exit $status' sh "$@"
}

# Runs a command on a device without a resolver file.
without_resolver() { # COMMAND...
    on_device sh -c 'rm /etc/resolv.dnsmasq.conf && exec "$@"' sh "$@"
}

# Checks the error of the last run, with the indented lines of each message joined to its first one.
error_unfolds_to() { # MESSAGE
    error=${error//$',\n  but'/, but}
    error=${error//$'\n  fix: '/; }
    error=${error//$'\n  '/; }
    error_is "$1"
}

# Checks that velkctl refuses these arguments with this message, with nothing changed or printed.
refused() { # MESSAGE ARGUMENT...
    lib_message=$1
    shift
    with_resolver 'nameserver 9.9.9.9\n' velkctl "$@"
    status_is 2
    error_unfolds_to "velkctl: $lib_message"
    output_is '-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--'
}

# ---- get --------------------------------------------------------------------------------------
it 'shows the bare value of one setting'
with_resolver 'nameserver 192.168.0.1\n' velkctl get eth0.dns
status_is 0
error_is ''
output_is '192.168.0.1
-- /etc/resolv.dnsmasq.conf
nameserver 192.168.0.1
--'

it 'shows three addresses, separated by blanks'
with_resolver 'nameserver 1.1.1.1\nnameserver 255.255.255.255\n# no server\nnameserver 3.3.3.3' \
    velkctl get eth1.dns
status_is 0
error_is ''
output_is '1.1.1.1 255.255.255.255 3.3.3.3
-- /etc/resolv.dnsmasq.conf
nameserver 1.1.1.1
nameserver 255.255.255.255
# no server
nameserver 3.3.3.3--'

it 'shows the first three of four addresses'
with_resolver 'nameserver 1.1.1.1\nnameserver 2.2.2.2\nnameserver 3.3.3.3\nnameserver 4.4.4.4\n' \
    velkctl get eth0.dns
status_is 0
output_has '1.1.1.1 2.2.2.2 3.3.3.3
-- '

it 'shows none when there is no address'
with_resolver '# nothing yet\n' velkctl get eth0.dns
status_is 0
error_is ''
output_is 'none
-- /etc/resolv.dnsmasq.conf
# nothing yet
--'

it 'shows the server after a line without an address'
with_resolver 'nameserver\nnameserver 2.2.2.2\n' velkctl get eth0.dns
status_is 0
output_is '2.2.2.2
-- /etc/resolv.dnsmasq.conf
nameserver
nameserver 2.2.2.2
--'

it 'shows an address that fills its slot'
with_resolver 'nameserver 2001:db8::1:2:3a\nnameserver 2.2.2.2\n' velkctl get eth0.dns
status_is 0
output_has '2001:db8::1:2:3a 2.2.2.2
-- '

it 'never sends control characters to the terminal'
on_device sh -c 'printf "nameserver \033[31m\177\377\n" >/etc/resolv.dnsmasq.conf
    velkctl get eth0.dns'
status_is 0
output_is '\x1b[31m\x7f\xff'

it 'names the settings when several are asked for'
on_device sh -c 'echo "nameserver 1.1.1.1" >/etc/resolv.dnsmasq.conf
    velkctl get eth1.dns eth0.dns eth1.dns'
status_is 0
error_is ''
output_is 'eth1.dns  1.1.1.1
eth0.dns  1.1.1.1
eth1.dns  1.1.1.1'

it 'says that a setting could not be read'
without_resolver velkctl get eth0.dns
status_is 1
output_is ''
error_is "velkctl: eth0.dns: could not be read
  likely cause: /etc/resolv.dnsmasq.conf: the file is missing
  fix: put the device's own file there
  result: LIB_VELK_FAILURE (-1)"

it 'names the settings that could not be read for the same reason'
without_resolver velkctl get eth0.dns eth1.dns
status_is 1
output_is ''
error_is "velkctl: 2 settings could not be read:
  eth0.dns eth1.dns
  likely cause: /etc/resolv.dnsmasq.conf: the file is missing
  fix: put the device's own file there
  result: LIB_VELK_FAILURE (-1)"

it 'reads no setting when one of the names is wrong'
refused "get: unknown setting 'eth0.dsn'; did you mean eth0.dns?" \
    get eth0.dns eth0.dsn

it 'fails when its output cannot be written'
on_device sh -c 'velkctl list >/dev/full'
status_is 1
error_is 'velkctl: cannot write to standard output: No space left on device'

# ---- set --------------------------------------------------------------------------------------
it 'replaces all servers by one'
with_resolver '# mine\nnameserver 9.9.9.9\nnameserver 8.8.8.8\n' velkctl set eth0.dns 10.0.0.1
status_is 0
error_is ''
output_is '-- /etc/resolv.dnsmasq.conf
nameserver 10.0.0.1
--
lock file made'

it 'sets three servers'
with_resolver 'nameserver 9.9.9.9\n' velkctl set eth1.dns 1.1.1.1 223.255.255.254 3.3.3.3
status_is 0
error_is ''
output_is '-- /etc/resolv.dnsmasq.conf
nameserver 1.1.1.1
nameserver 223.255.255.254
nameserver 3.3.3.3
--
lock file made'

it 'removes all servers with none'
with_resolver 'nameserver 9.9.9.9\n' velkctl set eth0.dns none
status_is 0
error_is ''
output_is '-- /etc/resolv.dnsmasq.conf
--
lock file made'

it 'takes addresses after --'
with_resolver 'nameserver 9.9.9.9\n' velkctl set -- eth0.dns 1.1.1.1
status_is 0
output_has 'nameserver 1.1.1.1
--'

it 'reads back the value it set, on either interface'
on_device sh -c 'velkctl set eth0.dns 1.2.3.4 5.6.7.8 && velkctl get eth0.dns eth1.dns'
status_is 0
output_is 'eth0.dns  1.2.3.4 5.6.7.8
eth1.dns  1.2.3.4 5.6.7.8'

it 'sets a value as get shows it'
on_device sh -c 'velkctl set eth0.dns 1.1.1.1 2.2.2.2 && before=$(velkctl get eth0.dns) &&
    velkctl set eth0.dns none && velkctl get eth0.dns &&
    velkctl set eth0.dns $before && velkctl get eth0.dns'
status_is 0
output_is 'none
1.1.1.1 2.2.2.2'

it 'makes the file when it is missing'
without_resolver sh -c 'velkctl set eth0.dns 1.1.1.1 && cat /etc/resolv.dnsmasq.conf'
status_is 0
output_is 'nameserver 1.1.1.1'

it 'says that a setting could not be set'
without_resolver sh -c 'mkdir /etc/resolv.dnsmasq.conf && velkctl set eth0.dns 1.1.1.1'
status_is 1
output_is ''
error_is "velkctl: eth0.dns: could not be set
  likely cause: /etc/resolv.dnsmasq.conf: a folder, a FIFO or a device is in its place
  fix: put the device's own file in its place
  result: LIB_VELK_FAILURE (-1)"

it 'changes nothing while another program holds the lock'
with_resolver 'nameserver 9.9.9.9\n' flock -x /var/tmp/vklib_lock velkctl set eth0.dns 1.1.1.1
status_is 3
error_has 'velkctl: eth0.dns: could not be set
  another program is changing settings
  process '
output_is '-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--
lock file made'

it 'reads while another program holds the lock'
with_resolver 'nameserver 9.9.9.9\n' flock -x /var/tmp/vklib_lock velkctl get eth0.dns
status_is 0
error_is ''
output_is '9.9.9.9
-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--
lock file made'

# ---- values and names that are refused --------------------------------------------------------
it 'refuses four addresses'
refused 'eth0.dns: 4 addresses given; give one to three IPv4 addresses such as 192.168.0.1, or none' \
    set eth0.dns 1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4

it 'refuses a value that is not an address'
for word in 300.1.1.1 1.1.1 1.1.1.0x8 ::1 localhost '1.1.1.1;2.2.2.2' \
    '[1.1.1.1]' '{}' %% ++ -5 list ''; do
    refused "eth0.dns: '$word' is not an IPv4 address; give one to three IPv4 addresses such as 192.168.0.1, or none" \
        set eth0.dns 1.1.1.1 "$word"
done
refused "eth0.dns: '1.1.1.010' has a number with a leading zero; other programs read it as octal; give one to three IPv4 addresses such as 192.168.0.1, or none" \
    set eth0.dns 1.1.1.1 1.1.1.010

it 'refuses one wrong address among right ones'
refused "eth1.dns: '1.1.1.256' is not an IPv4 address; give one to three IPv4 addresses such as 192.168.0.1, or none" \
    set eth1.dns 1.1.1.1 1.1.1.256 3.3.3.3

it 'refuses none among addresses'
refused "eth0.dns: 'none' takes no other value; give either addresses or none" set eth0.dns none 1.1.1.1

it 'names a word in another script as it is written'
LC_ALL=C.UTF-8 refused "eth0.dns: 'café' is not an IPv4 address; give one to three IPv4 addresses such as 192.168.0.1, or none" \
    set eth0.dns café

it 'prints a problem on one line, without control characters'
refused "eth0.dns: '\\x1b[31m\\x0a1.1.1.1' is not an IPv4 address; give one to three IPv4 addresses such as 192.168.0.1, or none" \
    set eth0.dns $'\e[31m\n1.1.1.1'

it 'refuses a missing value'
refused 'eth0.dns: no value given; give one to three IPv4 addresses such as 192.168.0.1, or none' \
    set eth0.dns

it 'refuses a missing name'
refused 'get: argument missing; usage: velkctl get NAME... [OPTION...]' get
refused 'set: argument missing; usage: velkctl set NAME VALUE...|NAME=VALUE... [OPTION...]' set

it 'refuses an unknown name'
refused "get: unknown setting 'nonsense'; 'velkctl list' names them all" get nonsense
refused "set: unknown setting 'nonsense'; 'velkctl list' names them all" set nonsense 1.1.1.1
refused "set: unknown setting ''; 'velkctl list' names them all" set '' 1.1.1.1

it 'refuses an interface that the setting is not for'
refused "get: unknown setting 'eth2.dns'; give eth0.dns or eth1.dns" get eth2.dns
refused "set: unknown setting 'eth2.dns'; give eth0.dns or eth1.dns" set eth2.dns 1.1.1.1
refused "set: 'dns' is a setting of both interfaces; give eth0.dns or eth1.dns" set dns 1.1.1.1

it 'refuses an unknown verb'
refused "unknown verb 'put'; 'velkctl --help' lists the verbs" \
    put eth0.dns 1.1.1.1
refused "no verb given; 'velkctl --help' lists the verbs"

it 'refuses an unknown option'
refused "unknown option '--hurry'; 'velkctl --help' lists the options" \
    --hurry set eth0.dns 1.1.1.1
refused "set: unknown option '--hurry'; a value that begins with a dash needs -- before it; 'velkctl set --help' lists the options" \
    set --hurry eth0.dns 1.1.1.1
refused "set: unknown option '-q'; a value that begins with a dash needs -- before it; 'velkctl set --help' lists the options" \
    set eth0.dns 1.1.1.1 -q
refused "get: unknown option '--version'; 'velkctl get --help' lists the options" \
    get --version eth0.dns
refused "call: unknown option '--texts'; did you mean --text?" \
    call set 108 eth0 --texts=1.1.1.1

it 'refuses a value for an option that takes none'
refused "option '--help' takes no value; leave it out" --help=foo
refused "option '--help' takes no value; leave it out" --help=
refused "unknown option '-hfoo'; 'velkctl --help' lists the options" -hfoo
refused "option '--version' takes no value; leave it out" --version=foo
refused "set: option '--help' takes no value; leave it out" set eth0.dns 1.1.1.1 --help=foo
refused "set: unknown option '-hallo'; a value that begins with a dash needs -- before it; 'velkctl set --help' lists the options" \
    set eth0.dns -hallo
refused "get: option '--show-secrets' takes no value; leave it out" get eth0.dns --show-secrets=no

it 'refuses a value after a name that is read'
refused "get: 'eth0.dns' is followed by '='; give the name alone" get eth0.dns=1.1.1.1

it 'refuses an argument too many'
refused "list: unexpected argument 'eth0.dns'; usage: velkctl list [eth0|eth1] [OPTION...]" list eth0 eth0.dns
refused "call: unexpected argument 'x'; usage: velkctl call get|set|restart ID [INTERFACE] [OPTION...]" \
    call set 108 eth0 x

# ---- list -------------------------------------------------------------------------------------
it 'lists each setting with its directions and description'
on_device velkctl list
status_is 0
error_is ''
output_has 'eth0.mac-address        get      hardware address: 6 bytes in hex
'
output_has 'eth0.dns                get set  DNS servers of eth0 and eth1: up to three
'
output_has 'eth1.dns                get set  DNS servers of eth0 and eth1: up to three
'
output_has 'eth0.link-speed         get set  speed in Mbit/s and duplex, or auto
'
output_has 'eth1.wep-key-1          get set  WEP key, or none; secret
'
output_has 'eth1.psk                get set  pre-shared key, or none; secret
'

# ---- call -------------------------------------------------------------------------------------
it 'shows the result and the data bytes of a get'
with_resolver 'nameserver 1.1.1.1\nnameserver 2.2.2.2\n' velkctl call get 108 eth0
status_is 0
error_is ''
output_is 'LIB_VELK_SUCCESS (0): done
00000000  31 2e 31 2e 31 2e 31 00  00 00 00 00 00 00 00 00  |1.1.1.1.........|
00000010  32 2e 32 2e 32 2e 32                              |2.2.2.2|
00000017
-- /etc/resolv.dnsmasq.conf
nameserver 1.1.1.1
nameserver 2.2.2.2
--'

it 'shows the result alone when the data bytes are zero'
with_resolver '' velkctl call get 108 eth1
status_is 0
output_is 'LIB_VELK_SUCCESS (0): done
-- /etc/resolv.dnsmasq.conf
--'

it 'shows the result of a get that failed'
without_resolver velkctl call get 108 eth0
status_is 1
error_is ''
output_is 'file, socket, time-out or unreadable value
  result: LIB_VELK_FAILURE (-1)'

it 'sends text unchanged'
for text in 10.0.0.1 '[a,b]' '{}' %% nonsense; do
    with_resolver 'nameserver 9.9.9.9\n' velkctl call set 108 eth0 --text "$text"
    status_is 0
    error_is ''
    output_is "LIB_VELK_SUCCESS (0): done
-- /etc/resolv.dnsmasq.conf
nameserver $text
--
lock file made"
done

it 'takes text after an equals sign, and a text that looks like an option'
with_resolver '' velkctl call --text=10.0.0.1 set 108 eth0
output_has 'nameserver 10.0.0.1
--'
with_resolver '' velkctl call set 108 eth0 --text --hex
output_has 'nameserver --hex
--'

it 'sends no data bytes for an empty text'
for argument in --text= --hex=; do
    with_resolver 'nameserver 9.9.9.9\n' velkctl call set "$argument" 108 eth0
    status_is 0
    output_is 'LIB_VELK_SUCCESS (0): done
-- /etc/resolv.dnsmasq.conf
--
lock file made'
done

it 'sends bytes given as hex digits'
for hex in 31302e302e302e31 '31 30 2E 30 2e 30 2e 31' 31:30:2e:30:2e:30:2e:31; do
    with_resolver '' velkctl call set 108 eth0 --hex "$hex"
    status_is 0
    error_is ''
    output_is 'LIB_VELK_SUCCESS (0): done
-- /etc/resolv.dnsmasq.conf
nameserver 10.0.0.1
--
lock file made'
done

it 'sends 512 bytes of text'
with_resolver '' velkctl call set 108 eth0 --text "$(printf '%0512d' 0)"
status_is 0
output_is 'LIB_VELK_SUCCESS (0): done
-- /etc/resolv.dnsmasq.conf
nameserver 0000000000000000
nameserver 0000000000000000
nameserver 0000000000000000
--
lock file made'

it 'refuses 513 bytes'
refused 'call: --text: 513 bytes are too many; give at most 512' \
    call set 108 eth0 --text "$(printf '%0513d' 0)"
refused 'call: --hex: more than 512 bytes; give at most 512' \
    call set 108 eth0 --hex "$(printf '%01026d' 0)"

it 'refuses hex digits that make no bytes'
refused "call: --hex: odd number of hex digits at character 3; give two hex digits for each byte, such as 31:30" \
    call set 108 eth0 --hex 0a1
refused "call: --hex: odd number of hex digits at character 1; give two hex digits for each byte, such as 31:30" \
    call set 108 eth0 --hex '0 a'
refused "call: --hex: character 2 is not a hex digit; give two hex digits for each byte, such as 31:30" \
    call set 108 eth0 --hex 0x31

it 'refuses data given in more than one way'
refused 'call: --text and --hex exclude each other; give one of them' \
    call set 108 eth0 --text a --hex 31
refused "call: option '--text' is given twice; give it once" \
    call set 108 eth0 --text a --text b

it 'refuses an option without its value'
refused "call: option '--text' needs a value; write --text=VALUE" call set 108 eth0 --text
refused "call: option '--hex' needs a value; write --hex=VALUE" call set 108 eth0 --hex

it 'refuses a command that is not valid'
refused "call: 'put' is not a command type; give get, set or restart" call put 108 eth0
for id in dns 108x 0x6c -1 4294967296 ''; do
    refused "call: '$id' is not a command id; give a decimal number such as 108" \
        call set "$id" eth0
done
refused "call: argument missing; usage: velkctl call get|set|restart ID [INTERFACE] [OPTION...]" \
    call set
refused "call: 'eth0eth0eth0eth01' is too long for an interface; give eth0, eth1 or another name of at most 16 bytes" \
    call set 108 eth0eth0eth0eth01

it 'leaves ids and interfaces to the library'
for arguments in 'get 108' 'get 108 eth2' 'get 108 eth0eth0eth0eth0' 'get 999 eth0' \
    'get 4294967295 eth0' 'set 108' 'set 999 eth0' 'restart 108 eth0'; do
    case $arguments in
        restart*) why='  108 takes no restart
' ;;
        *[!0]' '[94]*)
            id=${arguments#* }
            why="  command ${id%% *} does not exist
"
            ;;
        *) why='  108 takes the interface eth0 or eth1
' ;;
    esac
    # shellcheck disable=SC2086  # words
    with_resolver 'nameserver 9.9.9.9\n' velkctl call $arguments --text 1.1.1.1
    status_is 2
    error_is ''
    output_has "the library does not take this command, interface or value
$why"
    output_has "  result: LIB_VELK_INVALID_PARAMETER (-4)
-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--"
done

it 'shows that the lock is held'
with_resolver 'nameserver 9.9.9.9\n' \
    flock -x /var/tmp/vklib_lock velkctl call set 108 eth0 --text 1.1.1.1
status_is 3
error_is ''
output_has 'another program is changing settings
  process '
output_has ' old) holds the lock
  result: LIB_VELK_LOCKED (-3)
-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--'
output_has 'lock file made'

# ---- the wired port and the adapter -----------------------------------------------------------
# Runs a command on a device with an eth0 and an eth1 of its own, where ethtool shows these lines (as
# printf writes them) of the wired port, and nothing that is run with sudo does anything but to be
# noted. The device has this list of USB devices and no wireless daemon. Shows the notes after the
# command's output.
with_ports() { # ETHTOOL-LINES USB-DEVICES COMMAND...
    on_device sh -c "$stand_in_word"'
        ip link del eth0 2>/dev/null
        ip link del eth1 2>/dev/null
        ip link add eth0 address 02:00:5e:10:0a:ff type veth \
            peer name eth1 address 02:00:5e:10:0b:01 || exit 99
        mkdir /tmp/tools
        printf "$1" >/tmp/tools/port
        printf "%s\n" "#!/bin/sh" "tool=\${1##*/}; shift" "echo \"\$tool \$*\" >>/tmp/tools/notes" \
            "[ \"\$tool \$*\" = \"ethtool eth0\" ] && cat /tmp/tools/port" "exit 0" >/tmp/tools/sudo
        chmod +x /tmp/tools/sudo
        stand_in sudo /tmp/tools/sudo
        printf "$2" >/proc/bus/usb/devices
        rm -f /tmp/WlanAplToWlanSock /var/tmp/vklib_lock
        shift 2
        "$@"
        status=$?
        echo "-- run"
        [ ! -e /tmp/tools/notes ] || cat /tmp/tools/notes
        [ -e /var/tmp/vklib_lock ] && echo "lock file made"
        exit $status' sh "$@"
}
no_link='\tSpeed: Unknown!\n\tAuto-negotiation: on\n\tLink detected: no\n'
link='\tSpeed: 100Mb/s\n\tDuplex: Full\n\tAuto-negotiation: on\n\tLink detected: yes\n'
adapter='S:  Product=QT4408RKM\n'

it 'shows the hardware address of the wired port'
with_ports "$link" '' velkctl get eth0.mac-address
status_is 0
error_is ''
output_is '02:00:5E:10:0A:FF
-- run'

it 'shows none for a missing port'
with_ports "$link" '' sh -c 'ip link del eth0 && velkctl get eth0.mac-address'
status_is 0
output_has 'none
'

it 'shows the hardware address of the adapter while the cable is out'
with_ports "$no_link" "$adapter" velkctl get eth1.mac-address
status_is 0
error_is ''
output_is '02:00:5E:10:0B:01
-- run
ethtool eth0'

it 'shows the link speed by name'
with_ports "$link" '' velkctl get eth0.link-speed
status_is 0
error_is ''
output_is 'auto
-- run
ethtool eth0'
while read -r name speed duplex; do
    with_ports "\\tSpeed: $speed\\n\\tDuplex: $duplex\\n\\tAuto-negotiation: off\\n" '' \
        velkctl get eth0.link-speed
    status_is 0
    output_is "$name
-- run
ethtool eth0"
done <<'END'
100-full 100Mb/s Full
100-half 100Mb/s Half
10-full 10Mb/s Full
10-half 10Mb/s Half
END

it 'says that a speed could not be read'
with_ports '\tSpeed: 1000Mb/s\n\tAuto-negotiation: off\n' '' velkctl get eth0.link-speed
status_is 1
error_is "velkctl: eth0.link-speed: could not be read
  fix: run 'velkctl doctor' to look for the cause
  result: LIB_VELK_FAILURE (-1)"

it 'sets the link speed and checks that the port has taken it'
while read -r name speed duplex negotiation options; do
    with_ports "\\tSpeed: $speed\\n\\tDuplex: $duplex\\n\\tAuto-negotiation: $negotiation\\n" '' \
        velkctl set eth0.link-speed "$name"
    status_is 0
    error_is ''
    output_is "-- run
ethtool eth0
ethtool -s eth0 $options
ethtool eth0
lock file made"
done <<'END'
auto 100Mb/s Full on autoneg on
100-full 100Mb/s Full off speed 100 duplex full autoneg off
100-half 100Mb/s Half off speed 100 duplex half autoneg off
10-full 10Mb/s Full off speed 10 duplex full autoneg off
10-half 10Mb/s Half off speed 10 duplex half autoneg off
END

it 'says that the port has not taken the link speed'
with_ports "$link" '' velkctl set eth0.link-speed 10-half
status_is 6
error_is "velkctl: eth0.link-speed: the library reported success,
  but the device holds 'auto'"

# Checks that velkctl refuses these arguments with this message, with nothing run, locked or printed.
refused_unsent() { # MESSAGE ARGUMENT...
    lib_message=$1
    shift
    with_ports "$no_link" "$adapter" velkctl "$@"
    status_is 2
    error_unfolds_to "velkctl: $lib_message"
    output_is '-- run'
}

it 'refuses an unknown link speed'
for word in 1 0 full ''; do
    refused_unsent "eth0.link-speed: '$word' is not valid; give auto, 100-full, 100-half, 10-full or 10-half" \
        set eth0.link-speed "$word"
done
for word in 1000-full 100-FULL; do
    refused_unsent "eth0.link-speed: '$word' is not valid; did you mean 100-full?" \
        set eth0.link-speed "$word"
done
refused_unsent 'eth0.link-speed: no value given; give auto, 100-full, 100-half, 10-full or 10-half' \
    set eth0.link-speed
refused_unsent 'eth0.link-speed: 2 values given; give auto, 100-full, 100-half, 10-full or 10-half' \
    set eth0.link-speed 100 full
refused_unsent "set: unknown setting 'eth1.link-speed'; give eth0.link-speed" \
    set eth1.link-speed auto

it 'does not set a setting that can only be read'
for name in eth0.mac-address eth1.mac-address eth1.hardware-version eth1.software-version \
    eth1.standard eth1.region eth1.rate eth1.access-point eth1.signal; do
    refused_unsent "$name: cannot be set, only read; 'velkctl get $name' reads it" set "$name" 1
done

# ---- wireless settings ------------------------------------------------------------------------
state_settings='eth1.mac-address eth1.hardware-version eth1.software-version eth1.standard eth1.region
    eth1.rate eth1.access-point eth1.signal'
configuration='eth1.service-set eth1.ssid eth1.channel eth1.encryption eth1.authentication
    eth1.wep-key-1 eth1.wep-key-2 eth1.wep-key-3 eth1.wep-key-4 eth1.wep-default-key eth1.psk
    eth1.standards-enabled'

it 'says that there is no adapter'
for name in $state_settings; do
    with_ports "$no_link" '' velkctl get "$name"
    status_is 4
    error_is "velkctl: $name: could not be read
  no supported wireless adapter is attached
  fix: attach an adapter of /usr/local/share/apps/wlan/supportlist.ini
  result: LIB_VELK_NO_ADAPTER (-5)"
    output_is '-- run'
done

it 'says that the cable is in the wired port'
for name in $state_settings; do
    with_ports "$link" "$adapter" velkctl get "$name"
    status_is 5
    error_is "velkctl: $name: could not be read
  refused while the cable is in the wired port
  fix: pull the cable; wireless works only without it
  result: LIB_VELK_WIRED_LINKED (-6)"
    output_is '-- run
ethtool eth0'
done

it 'fails without a wireless daemon'
for name in $configuration eth1.rate; do
    with_ports "$no_link" "$adapter" velkctl get "$name"
    status_is 1
    error_is "velkctl: $name: could not be read
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  fix: start the wireless daemon
  result: LIB_VELK_FAILURE (-1)"
done
with_ports "$no_link" "$adapter" velkctl set eth1.channel 6
status_is 1
error_is "velkctl: eth1.channel: could not be set
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  fix: start the wireless daemon
  result: LIB_VELK_FAILURE (-1)"

it 'refuses values that a wireless setting does not have'
refused_unsent "eth1.service-set: '1' is not valid; give infrastructure or ad-hoc" \
    set eth1.service-set 1
for word in 0 14 01 +1 wep ''; do
    refused_unsent "eth1.channel: '$word' is not valid; give a number from 1 to 13" \
        set eth1.channel "$word"
done
by_daemon='the wireless daemon defines the meaning; see its manual'
refused_unsent "eth1.encryption: '5' is not valid; the wireless daemon defines the meaning of 1, 3 and 4; see its manual; give 1, 2 (wep), 3 or 4" \
    set eth1.encryption 5
refused_unsent "eth1.authentication: '0' is not valid; $by_daemon; give a number from 1 to 4" \
    set eth1.authentication 0
refused_unsent "eth1.wep-default-key: '5' is not valid; give a number from 1 to 4" \
    set eth1.wep-default-key 5
refused_unsent "eth1.standards-enabled: '1' is not valid; $by_daemon; give 2 or 3" \
    set eth1.standards-enabled 1
refused_unsent 'eth1.ssid: 33 bytes given; give a text of at most 32 bytes' \
    set eth1.ssid "$(printf '%033d' 0)"
refused_unsent 'eth1.ssid: 2 values given; give a text of at most 32 bytes, in quotes if it has blanks' \
    set eth1.ssid my network
refused_unsent 'eth1.ssid: control characters, such as the end of a line, are not taken; give a text of at most 32 bytes' \
    set eth1.ssid $'net\n'

# ---- secrets ----------------------------------------------------------------------------------
# Checks that the output of velkctl has no part of the secret.
no_secret() {
    case $output$error in
        *hunter*) check 'output' 'no secret' "$output$error" ;;
        *) check 'output' 'no secret' 'no secret' ;;
    esac
}

it 'reports the length of a wrong key, not the key'
refused_unsent 'eth1.psk: 66 bytes given; give a text of 1 to 64 bytes, or none' \
    set eth1.psk "hunter$(printf '%060d' 0)"
refused_unsent 'eth1.psk: 0 bytes given; give a text of 1 to 64 bytes, or none' set eth1.psk ''
refused_unsent 'eth1.psk: 2 values given; give a text of 1 to 64 bytes, or none, in quotes if it has blanks' \
    set eth1.psk hunter two
refused_unsent 'eth1.wep-key-4: 6 bytes given; give a text of 5 or 13 bytes, 10 or 26 hex digits, or none' \
    set eth1.wep-key-4 hunter

it 'never repeats a key at any place'
for arguments in 'set eth1.psk hunter22' 'set eth1.psk -hunter22' 'set eth1.psk --hunter=2' \
    'set eth1.psk @hunter22' 'set eth1.psk=hunter22 hunter23' 'set psk=hunter22 hunter=23' \
    'set eth1.psk=@hunter22' 'set eth1.pks=hunter22' 'set hunter22 eth1.psk' \
    'set eth1.pks -hunter22' 'set eth1.wep-key-2 hunter' 'eth1.psk=hunter22' 'get eth1.psk=hunter22' \
    'call set 314 eth1 hunter22' 'call set 314 hunter22hunter22hunter22' \
    'call set 314 eth1 --hunter22' 'call set 314 eth1 --hex hunter22' \
    'call set 314 eth1 --text hunter22' 'get eth1.psk hunter22' 'get eth1.psk --hunter22' \
    'help set eth1.psk hunter22' 'describe eth1.psk hunter22' 'show eth1.psk hunter22' \
    'restart eth1.psk hunter22' 'list eth1.psk hunter22'; do
    # shellcheck disable=SC2086  # words
    with_ports "$no_link" "$adapter" velkctl $arguments
    no_secret
    check 'failed' yes "$([ "$status" -ne 0 ] && echo yes)"
done

it 'reads a key from standard input'
with_ports "$no_link" "$adapter" sh -c 'echo hunter22 | velkctl set eth1.psk -'
status_is 1 # there is no daemon to send it to
error_is "velkctl: eth1.psk: could not be set
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  fix: start the wireless daemon
  result: LIB_VELK_FAILURE (-1)"
with_ports "$no_link" "$adapter" sh -c 'echo hunter | velkctl set eth1.wep-key-1 -'
status_is 2
error_is 'velkctl: eth1.wep-key-1: 6 bytes given
  fix: give a text of 5 or 13 bytes, 10 or 26 hex digits, or none'
with_ports "$no_link" "$adapter" sh -c 'printf "hunter\r\n" | velkctl set eth1.psk -'
status_is 2
error_is 'velkctl: eth1.psk: it ends with CR (carriage return), as in a CR LF file
  fix: give a text of 1 to 64 bytes, or none'
refused_unsent 'eth1.psk: standard input is empty; give the value as one line' set eth1.psk -

it 'leaves the lines after the key unread'
with_ports "$no_link" "$adapter" sh -c \
    'printf "hunter\nrest\n" | { velkctl set eth1.wep-key-1 - 2>/dev/null; cat; }'
output_is 'rest
-- run'

it 'reads a key from a file'
with_ports "$no_link" "$adapter" sh -c \
    'echo hunter22 >/tmp/key && velkctl set eth1.psk @/tmp/key'
status_is 1 # there is no daemon to send it to
error_is "velkctl: eth1.psk: could not be set
  likely cause: /tmp/WlanAplToWlanSock: its socket is missing
  fix: start the wireless daemon
  result: LIB_VELK_FAILURE (-1)"
with_ports "$no_link" "$adapter" sh -c \
    'echo hunter >/tmp/key && velkctl set eth1.wep-key-3 @/tmp/key'
status_is 2
error_is 'velkctl: eth1.wep-key-3: 6 bytes given
  fix: give a text of 5 or 13 bytes, 10 or 26 hex digits, or none'
with_ports "$no_link" "$adapter" sh -c \
    'printf "hunter22\nhunter23\n" >/tmp/key && velkctl set eth1.psk @/tmp/key'
status_is 2
error_is 'velkctl: eth1.psk: the file after @ has more than one line
  fix: give the value as the only one'
no_secret
refused_unsent "eth1.psk: the file after @ cannot be read; No such file or directory; give - for standard input or @FILE for another file" \
    set eth1.psk @/tmp/hunter22

it 'takes - and @ literally for a setting that is no secret'
refused_unsent "eth1.channel: '-' is not valid; give a number from 1 to 13" \
    set eth1.channel -
refused_unsent "eth1.channel: '@/etc/hostname' is not valid; give a number from 1 to 13" \
    set eth1.channel @/etc/hostname

# ---- restart ----------------------------------------------------------------------------------
bring_up='ip link set eth0 up; ip link set eth1 up; ip addr add 192.168.0.10/24 dev eth0;'
it 'restarts the wired port'
with_ports "$link" '' sh -c "$bring_up velkctl restart eth0"
status_is 0
error_is ''
output_is 'eth0: 192.168.0.10 (static)
-- run
ifdown eth0
ifup eth0
lock file made'

it 'brings the adapter up alone while the cable is in'
with_ports "$link" "$adapter" sh -c "$bring_up velkctl restart eth1"
status_is 0
error_is ''
output_is 'eth1: up, without an address while the cable is in
-- run
ifdown eth1
ethtool eth0
ifconfig eth1 up
lock file made'

it 'notifies the wireless daemon only'
with_ports "$link" "$adapter" velkctl restart eth1 --notify-only
status_is 0
error_is ''
output_is '-- run
ethtool eth0
lock file made'
with_ports "$no_link" "$adapter" velkctl restart --notify-only eth1
status_is 1 # there is no daemon
error_is "velkctl: eth1: could not be restarted
  fix: run 'velkctl doctor' to look for the cause
  result: LIB_VELK_FAILURE (-1)"

it 'restarts nothing without an adapter, or while the lock is held'
with_ports "$no_link" '' velkctl restart eth1
status_is 4
error_is 'velkctl: eth1: could not be restarted
  no supported wireless adapter is attached
  fix: attach an adapter of /usr/local/share/apps/wlan/supportlist.ini
  result: LIB_VELK_NO_ADAPTER (-5)'
with_ports "$link" '' flock -x /var/tmp/vklib_lock velkctl restart eth0
status_is 3
error_has 'velkctl: eth0: could not be restarted
  another program is changing settings
  process '
output_is '-- run
lock file made'

it 'refuses to restart an unknown interface'
refused_unsent "restart: 'eth2' is not an interface of the device; did you mean eth0 or eth1?" restart eth2
refused_unsent "restart: '' is not an interface of the device; give eth0 or eth1" restart ''
refused_unsent 'restart: --notify-only is for eth1; leave it out for eth0' \
    restart eth0 --notify-only
refused_unsent 'restart: argument missing; usage: velkctl restart eth0|eth1 [OPTION...]' restart
refused_unsent "restart: unexpected argument 'eth0'; usage: velkctl restart eth0|eth1 [OPTION...]" \
    restart eth1 eth0

# ---- help -------------------------------------------------------------------------------------
it 'explains itself, its verbs and its exit statuses'
run velkctl --help
status_is 0
error_is ''
output_has 'Usage: velkctl VERB [ARGUMENT...]'
output_has '
  get       show the value of settings
  set       change settings
  show      show all settings, or those of an interface
  restart   bring an interface down and up to apply its settings
  apply     change settings as one change, and restart
  export    print all settings as one JSON document
  import    apply a document that export has written
  diff      compare a document with the device or with another one
  list      list all settings, or those of an interface
  describe  describe a setting and its values
  explain   explain a result of the library or an exit status
  status    compare the configuration with the running state
  doctor    look for problems with files, tools and daemons
  metrics   print the state of the device for a monitoring agent
  selftest  try every command, without changing the device
  capture   write all that the library reads on this device to a file
  confirm   keep the change that waits for its confirmation
  extend    give a change more time for its confirmation
  revert    put back the change that waits for its confirmation
  pending   show the change that waits for its confirmation
  undo      take back a change of settings
  history   list the changes that undo can take back
  recover   take back changes that were interrupted
  call      run a command of the library without checks
  help      show help for velkctl or for a verb
'
output_has '
Exit status:
  0         done
  1         failed, or a problem or difference was found
  2         wrong usage, or a name or value that is not valid
  3         another program is changing settings
  4         no supported wireless adapter is attached
  5         refused while the cable is in the wired port
  6         done, but the device lacks the value or address
  7         no answer before the timeout
  8         another change waits for its confirmation
  9         a change was taken back only in part
'
general_help=$output
for words in -h help 'help help' 'help --help'; do
    # shellcheck disable=SC2086  # words
    run velkctl $words
    status_is 0
    output_is "$general_help"
done

it 'explains each verb, with an example'
for verb in get set show restart apply export import diff list describe explain doctor metrics selftest capture call; do
    run velkctl "$verb" --help
    status_is 0
    error_is ''
    output_has "velkctl $verb: "
    output_has "
Usage: velkctl $verb"
    output_has "Example"
    output_has "
  velkctl $verb"
    verb_help=$output
    run velkctl help "$verb"
    status_is 0
    error_is ''
    output_is "$verb_help"
done

it 'explains the options of call'
run velkctl call --help
output_has 'Usage: velkctl call get|set|restart ID [INTERFACE] [OPTION...]
'
output_has '
  --text TEXT         data bytes as text, at most 512; or - or @FILE
  --hex HEX           data bytes as pairs of hex digits; or - or @FILE
  --wait              try again for 30 s while settings are locked; or --wait=N
  --timeout SECONDS   stop if no answer comes within SECONDS
  --json              print one JSON document
  --quiet             print only values and problems
  --verbose           print also the output of tools
  --show-secrets      show keys instead of asterisks
'

it 'gives its version'
run velkctl --version
status_is 0
error_is ''
output_is 'velkctl 1.0.0'

finish
