# velkctl_test.sh - the command-line tool, as people and scripts use it.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "$VELK_SOURCE/tests/device/lib.sh"

needs_sandbox

# Runs a command on a device whose resolver file holds this text (\n and the like as printf writes
# them) and where no set has run yet. Shows the file behind the command's output, and the lock file.
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

# Holds that velkctl refuses these arguments with this message, with nothing changed or printed.
refused() { # MESSAGE ARGUMENT...
    lib_message=$1
    shift
    with_resolver 'nameserver 9.9.9.9\n' velkctl "$@"
    status_is 2
    error_is "velkctl: $lib_message"
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

it 'shows the server behind a line without an address'
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
output_is 'eth1.dns = 1.1.1.1
eth0.dns = 1.1.1.1
eth1.dns = 1.1.1.1'

it 'says that a setting could not be read'
without_resolver velkctl get eth0.dns
status_is 1
output_is ''
error_is 'velkctl: eth0.dns: could not be read (LIB_VELK_FAILURE, -1)'

it 'says of each setting that it could not be read'
without_resolver velkctl get eth0.dns eth1.dns
status_is 1
output_is ''
error_is 'velkctl: eth0.dns: could not be read (LIB_VELK_FAILURE, -1)
velkctl: eth1.dns: could not be read (LIB_VELK_FAILURE, -1)'

it 'reads no setting when one of the names is wrong'
refused "get: unknown setting 'eth0.dsn'; 'velkctl list' names them all" \
    get eth0.dns eth0.dsn

it 'fails when its output gets lost'
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
with_resolver 'nameserver 9.9.9.9\n' velkctl set eth1.dns 1.1.1.1 255.255.255.255 3.3.3.3
status_is 0
error_is ''
output_is '-- /etc/resolv.dnsmasq.conf
nameserver 1.1.1.1
nameserver 255.255.255.255
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

it 'takes addresses behind --'
with_resolver 'nameserver 9.9.9.9\n' velkctl set -- eth0.dns 1.1.1.1
status_is 0
output_has 'nameserver 1.1.1.1
--'

it 'reads back what it set, on either interface'
on_device sh -c 'velkctl set eth0.dns 1.2.3.4 5.6.7.8 && velkctl get eth0.dns eth1.dns'
status_is 0
output_is 'eth0.dns = 1.2.3.4 5.6.7.8
eth1.dns = 1.2.3.4 5.6.7.8'

it 'sets what get has shown'
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
error_is 'velkctl: eth0.dns: could not be set (LIB_VELK_FAILURE, -1)'

it 'changes nothing while another program holds the lock'
with_resolver 'nameserver 9.9.9.9\n' flock -x /var/tmp/vklib_lock velkctl set eth0.dns 1.1.1.1
status_is 3
error_is 'velkctl: eth0.dns: could not be set: another program is changing settings now, try again (LIB_VELK_LOCKED, -3)'
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
refused 'eth0.dns: 4 addresses given; give one to three, or none' \
    set eth0.dns 1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4

it 'refuses what is no address'
for word in 300.1.1.1 1.1.1 1.1.1.010 ::1 localhost 1.1.1.1,2.2.2.2 '1.1.1.1 2.2.2.2' \
    '[1.1.1.1]' '{}' %% ++ -5 list ''; do
    refused "eth0.dns: '$word' is not an IPv4 address; give one to three such as 192.168.0.1, or none" \
        set eth0.dns 1.1.1.1 "$word"
done

it 'refuses one wrong address among right ones'
refused "eth1.dns: '1.1.1.256' is not an IPv4 address; give one to three such as 192.168.0.1, or none" \
    set eth1.dns 1.1.1.1 1.1.1.256 3.3.3.3

it 'refuses none among addresses'
refused "eth0.dns: 'none' stands alone; give either addresses or none" set eth0.dns none 1.1.1.1

it 'keeps its complaint on one line, without control characters'
refused "eth0.dns: '\\x1b[31m\\x0a1.1.1.1' is not an IPv4 address; give one to three such as 192.168.0.1, or none" \
    set eth0.dns $'\e[31m\n1.1.1.1'

it 'refuses a missing value'
refused 'eth0.dns: no value given; give one to three IPv4 addresses such as 192.168.0.1, or none' \
    set eth0.dns

it 'refuses a missing name'
refused 'get: argument missing; usage: velkctl get NAME...' get
refused 'set: argument missing; usage: velkctl set NAME VALUE...' set

it 'refuses a name that there is not'
refused "get: unknown setting 'nonsense'; 'velkctl list' names them all" get nonsense
refused "set: unknown setting 'nonsense'; 'velkctl list' names them all" set nonsense 1.1.1.1
refused "set: unknown setting ''; 'velkctl list' names them all" set '' 1.1.1.1

it 'refuses an interface that the setting is not for'
refused "get: unknown setting 'eth2.dns'; give eth0.dns or eth1.dns" get eth2.dns
refused "set: unknown setting 'eth2.dns'; give eth0.dns or eth1.dns" set eth2.dns 1.1.1.1
refused "set: unknown setting 'dns'; give eth0.dns or eth1.dns" set dns 1.1.1.1

it 'refuses a verb that there is not'
refused "unknown verb 'put'; give get, set, list or call ('velkctl --help' explains them)" \
    put eth0.dns 1.1.1.1
refused "no verb given; give get, set, list or call ('velkctl --help' explains them)"

it 'refuses an option that there is not'
refused "unknown option '--quick'; 'velkctl --help' lists the options" \
    --quick set eth0.dns 1.1.1.1
refused "set: unknown option '--quick'; 'velkctl set --help' lists the options" \
    set --quick eth0.dns 1.1.1.1
refused "set: unknown option '-q'; 'velkctl set --help' lists the options" \
    set eth0.dns 1.1.1.1 -q
refused "get: unknown option '--version'; 'velkctl get --help' lists the options" \
    get --version eth0.dns
refused "call: unknown option '--texts=1.1.1.1'; 'velkctl call --help' lists the options" \
    call set 108 eth0 --texts=1.1.1.1

it 'refuses an argument too many'
refused "list: 'eth0.dns' is one argument too many; usage: velkctl list" list eth0.dns
refused "call: 'x' is one argument too many; usage: velkctl call get|set|restart ID [INTERFACE] [--text TEXT | --hex HEX]" \
    call set 108 eth0 x

# ---- list -------------------------------------------------------------------------------------
it 'lists each setting with its directions and what it is'
on_device velkctl list
status_is 0
error_is ''
output_has 'eth0.dns  get set  DNS servers: one to three IPv4 addresses, or none; eth0 and eth1 share one list
'
output_has 'eth1.dns  get set  DNS servers: one to three IPv4 addresses, or none; eth0 and eth1 share one list'

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
output_is 'LIB_VELK_FAILURE (-1): file, socket, time-out or unreadable value'

it 'sends text as it stands'
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

it 'takes text behind an equals sign, and a text that looks like an option'
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
refused 'call: --text: 513 bytes are too many; the data area holds 512' \
    call set 108 eth0 --text "$(printf '%0513d' 0)"
refused 'call: --hex: more than 512 bytes; the data area holds 512' \
    call set 108 eth0 --hex "$(printf '%01026d' 0)"

it 'refuses hex digits that make no bytes'
refused "call: --hex: the digit '1' at character 3 stands alone; give two hex digits for each byte, such as 31:30" \
    call set 108 eth0 --hex 0a1
refused "call: --hex: the digit '0' at character 1 stands alone; give two hex digits for each byte, such as 31:30" \
    call set 108 eth0 --hex '0 a'
refused "call: --hex: 'x' at character 2 is not a hex digit; give two hex digits for each byte, such as 31:30" \
    call set 108 eth0 --hex 0x31

it 'refuses data given in more than one way'
refused 'call: --text and --hex exclude each other; give one of them' \
    call set 108 eth0 --text a --hex 31
refused "call: option '--text' is given twice; give it once" \
    call set 108 eth0 --text a --text b

it 'refuses an option without its value'
refused "call: option '--text' needs a value behind it" call set 108 eth0 --text
refused "call: option '--hex' needs a value behind it" call set 108 eth0 --hex

it 'refuses what is no command'
refused "call: 'put' is not a command type; give get, set or restart" call put 108 eth0
for id in dns 108x 0x6c -1 4294967296 ''; do
    refused "call: '$id' is not a command id; give a decimal number such as 108" \
        call set "$id" eth0
done
refused "call: argument missing; usage: velkctl call get|set|restart ID [INTERFACE] [--text TEXT | --hex HEX]" \
    call set
refused "call: interface 'eth0eth0eth0eth01' is too long; give eth0, eth1 or another name of at most 16 bytes" \
    call set 108 eth0eth0eth0eth01

it 'leaves ids and interfaces to the library'
for arguments in 'get 108' 'get 108 eth2' 'get 108 eth0eth0eth0eth0' 'get 999 eth0' \
    'get 4294967295 eth0' 'set 108' 'set 999 eth0' 'restart 108 eth0'; do
    # shellcheck disable=SC2086  # words
    with_resolver 'nameserver 9.9.9.9\n' velkctl call $arguments --text 1.1.1.1
    status_is 2
    error_is ''
    output_has 'LIB_VELK_INVALID_PARAMETER (-4): the library does not take this command, interface or value
-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--'
done

it 'shows that the lock is held'
with_resolver 'nameserver 9.9.9.9\n' \
    flock -x /var/tmp/vklib_lock velkctl call set 108 eth0 --text 1.1.1.1
status_is 3
error_is ''
output_is 'LIB_VELK_LOCKED (-3): another program is changing settings now, try again
-- /etc/resolv.dnsmasq.conf
nameserver 9.9.9.9
--
lock file made'

# ---- help -------------------------------------------------------------------------------------
it 'explains itself, its verbs and its exit statuses'
run velkctl --help
status_is 0
error_is ''
output_has 'Usage: velkctl VERB [ARGUMENT...]'
output_has '
  get   show the value of settings
  set   change a setting
  list  name all settings, what can be done with them and what they are
  call  run a command of the library as it stands
'
output_has 'Exit status: 0 done, 1 failed, 2 wrong usage or value, 3 another program is changing
settings, 4 no wireless adapter, 5 refused while the cable is in the wired port.'
general_help=$output
run velkctl -h
status_is 0
output_is "$general_help"

it 'explains each verb, with an example'
for verb in get set list call; do
    run velkctl "$verb" --help
    status_is 0
    error_is ''
    output_has "velkctl $verb: "
    output_has "
Usage: velkctl $verb"
    output_has "Example"
    output_has "
  velkctl $verb"
done

it 'explains the options of call'
run velkctl call --help
output_has 'Usage: velkctl call get|set|restart ID [INTERFACE] [--text TEXT | --hex HEX]
'
output_has '
  --text TEXT                 data bytes as text, at most 512
  --hex HEX                   data bytes as pairs of hex digits; blanks or colons may stand between
'

it 'gives its version'
run velkctl --version
status_is 0
error_is ''
output_is 'velkctl 1.0.0'

finish
