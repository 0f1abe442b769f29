# hardware_test.sh - the device's interfaces, its cable, its adapter and the stand-ins for tools.
# Run by root, it runs a second time as an ordinary user, from a copy which that user can read.
# shellcheck shell=bash disable=SC2016
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox

this_file=$(realpath "$0")
user=$(id -u)
mark=$((200000 + $$)) # for a `sleep` that is recognised among all processes

# --- words of this file ---

words='
    cable() { velk-sandbox cable "$1" || echo "cable $1: $?"; }
    adapter() { velk-sandbox adapter "$1" || echo "adapter $1: $?"; }
    link() { ethtool eth0 | sed -n "s/.*Link detected: //p"; }
    # The result and the data bytes of a get, without blanks.
    get() {
        velkctl call get "$1" "$2" | sed -E "1s/.*\((.*)\).*/\1/; s/^[0-9a-f]{8}  ?//
            s/  *\|.*//; /^[0-9a-f]{8}\$/d; 2,\$s/ //g" | paste -s -d " "
    }
    set_speed() { velkctl call set 201 eth0 --hex "$1" | sed -E "s/.*\((.*)\).*/\1/"; }
    daemons() { cat /proc/[0-9]*/comm 2>/dev/null | grep -cx wland; }
'

# Runs a shell line on a device with these words.
on_desk() {
    on_device sh -c "$words$1"
    lib_command=$1
}

# Runs a command where some files of the machine are of no use.
run_without() { # FILE... -- COMMAND...
    local root=--map-root-user
    [ "$user" != 0 ] || root=
    # shellcheck disable=SC2086  # no word for root
    run unshare $root --mount sh -c 'while [ "$1" != -- ]; do
            mount --bind /dev/null "$1" || exit 99
            shift
        done
        shift
        exec "$@"' sh "$@"
}

links_of_machine() { ip -o link | sed -E 's/^([0-9]+: [^:]*:).*/\1/'; }
sleepers() { pgrep -fx "sleep $mark"; }

links_before=$(links_of_machine)
has_daemon=$([ -x "$VELK_BUILD/wland" ] && echo 1 || echo 0)

# --- interfaces ---

it 'has a wired port with the address of the interfaces file, and an adapter without one'
on_desk 'for port in eth0 eth1; do
        cat /sys/class/net/$port/address /sys/class/net/$port/carrier
        ip -4 -o addr show $port | sed -E "s/.*inet ([^ ]*) brd ([^ ]*) .*/\1 \2/"
    done'
output_is '02:00:00:00:00:10
1
192.168.0.10/24 192.168.0.255
02:00:00:00:00:11
1'
error_is ''

it 'takes the address from the interfaces file that it has'
mkdir -p "$lib_folder/files/etc/network"
chmod -R a+rX "$lib_folder"
printf '%s\n' 'iface eth1 inet static' 'address 10.0.0.1' 'netmask 255.0.0.0' \
    'iface eth0 inet static' 'netmask 255.255.0.0' 'address 10.1.2.3' \
    >"$lib_folder/files/etc/network/interfaces"
run velk-sandbox --quiet --rootfs "$lib_folder/files" -- ip -4 -o addr show eth0
output_has 'inet 10.1.2.3/16 brd 10.1.255.255'

it 'does without an address when that is not static'
echo 'iface eth0 inet dhcp' >"$lib_folder/files/etc/network/interfaces"
run velk-sandbox --quiet --rootfs "$lib_folder/files" -- ip -4 -o addr show eth0
status_is 0
output_is ''

it 'shows them as the library reads them'
on_desk 'get 101 eth0; get 201 eth0'
output_is '0 303230303030303030303130
0 01'

it 'prints addresses as the device does'
if command -v busybox >/dev/null; then
    on_desk 'sudo ifconfig eth0 10.2.3.4 netmask 255.255.255.0
        ifconfig eth0 | grep -c "inet addr:10.2.3.4 "
        sudo route add default gw 10.2.3.1 && route -n | sed -n "s/^0.0.0.0  *\([^ ]*\) .*/\1/p"'
    output_is '1
10.2.3.1'
    error_is ''
fi

it 'keeps each link mode that is set'
on_desk 'for mode in 02 03 04 05 01; do set_speed $mode; get 201 eth0; done'
output_is '0
0 02
0
0 03
0
0 04
0
0 05
0
0 01'
error_is ''

it 'shows the mode and the link as ethtool does'
on_desk 'sudo ethtool -s eth0 speed 10 duplex half autoneg off
    sudo /usr/sbin/ethtool eth0 | grep -E "^.(Speed|Duplex|Auto-negotiation|Link detected):"
    for words in "-s eth0 speed ten" "-s eth0 speed" nix; do
        ethtool $words >/tmp/out 2>/tmp/errors; echo $?; [ -s /tmp/errors ] || echo silent
    done'
output_is '	Speed: 10Mb/s
	Duplex: Half
	Auto-negotiation: off
	Link detected: yes
1
1
75'

# --- the cable ---

it 'pulls and plugs the cable'
on_desk 'link; cable out; link; cable out; link; cable in; link; cat /sys/class/net/eth1/carrier'
output_is 'yes
no
no
yes
1'
status_is 0
error_is ''

it 'lets the library see the cable'
on_desk 'get 101 eth1; cable out; get 101 eth1; cable in; get 101 eth1'
output_is '-6
0 303230303030303030303131
-6'

it 'keeps the link mode while the cable is out'
on_desk 'set_speed 04; cable out; get 201 eth0; set_speed 03; cable in; get 201 eth0'
output_is '0
0 04
0
0 03'

it 'sees no link on a port that is down'
on_desk 'ip link set eth0 down; link; ip link set eth0 up; link'
output_is 'no
yes'

# --- the adapter ---

it 'pulls and plugs the adapter'
on_desk 'ls /sys/class/net; grep -c ^T: /proc/bus/usb/devices; adapter out; adapter out; echo out
    ls /sys/class/net; grep -c ^T: /proc/bus/usb/devices; adapter in; adapter in; echo in
    ls /sys/class/net; cat /sys/class/net/eth1/address /sys/class/net/eth1/carrier'
output_is 'eth0
eth1
lo
2
out
eth0
lo
1
in
eth0
eth1
lo
02:00:00:00:00:11
1'
status_is 0
error_is ''

it 'leaves the list of USB devices as it was, whatever the umask'
run sh -c 'umask 077; exec velk-sandbox --quiet -- sh -c "$1"' sh "$words
    "'cp /proc/bus/usb/devices /tmp; adapter out; adapter in; stat -c %a /proc/bus/usb/devices
    cmp /tmp/devices /proc/bus/usb/devices; ls /proc/bus/usb'
output_is '644
devices'

it 'lets the wireless daemon be told on every kind of interfaces'
run_without /dev/net/tun -- velk-sandbox --quiet -- wland --tell normal
status_is 0
error_is ''

it 'lets the library see the adapter'
on_desk 'cable out; adapter out; get 101 eth1; adapter in; get 101 eth1; adapter out; cable in
    get 101 eth1; adapter in; get 101 eth1'
output_is '-5
0 303230303030303030303131
-5
-6'

if [ "$has_daemon" = 1 ]; then
    it 'runs the wireless daemon while the adapter is in'
    on_desk 'daemons; [ -S /tmp/WlanAplToWlanSock ] && get 303 eth1 | cut -c 1; adapter out; daemons
        adapter in; daemons; [ -S /tmp/WlanAplToWlanSock ] && get 303 eth1 | cut -c 1
        kill "$(cat /run/velk-sandbox/wland.pid)"; adapter out; adapter in; daemons'
    output_is '1
0
0
1
0
1'
    error_is ''
fi

it 'does without a wireless daemon that is not there'
mkdir "$lib_folder/bare"
cp -R "$VELK_BUILD/velk-sandbox" "$VELK_BUILD/rootfs" "$VELK_BUILD/stand-ins" "$lib_folder/bare"
chmod -R a+rX "$lib_folder"
run "$lib_folder/bare/velk-sandbox" -- sh -c 'velk-sandbox adapter out && velk-sandbox adapter in &&
    ls /sys/class/net/eth1/address /run/velk-sandbox/wland.pid'
output_is /sys/class/net/eth1/address
check 'complaints' '' "$(echo "$error" | grep -i daemon)"

it 'says when the wireless daemon does not start'
printf '%s\n' '#!/bin/sh' 'exit 3' >"$lib_folder/bare/wland"
chmod a+rx "$lib_folder/bare/wland"
run "$lib_folder/bare/velk-sandbox" -- sh -c 'velk-sandbox adapter out && velk-sandbox adapter in
    echo $?; ls -d /sys/class/net/eth1'
output_is '125
/sys/class/net/eth1'
check 'complaints' 2 \
    "$(echo "$error" | grep -c '^velk-sandbox: the wireless daemon did not start$')"

# --- what is refused ---

it 'refuses positions that there are not'
for arguments in cable adapter 'cable sideways' 'cable in out' 'adapter in --quiet'; do
    # shellcheck disable=SC2086  # words
    on_device velk-sandbox $arguments
    status_is 2
    check 'lines of errors' 1 "$(echo "$error" | wc -l)"
    check 'start of errors' 'velk-sandbox: ' "${error:0:14}"
done

it 'goes on without hardware that has ended'
on_desk 'kill -KILL 2; while kill -0 2 2>/dev/null; do sleep 0.01; done; cable in'
output_is 'cable in: 125'
check 'lines of errors' 1 "$(echo "$error" | wc -l)"

it 'survives the removal of its interfaces, and what is no order'
on_desk 'ip link del eth0; ip link del eth1
    python3 -c "
import socket
other = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
other.connect(\"/run/velk-sandbox/hardware\")
other.send(b\"kettle on\")
print(other.recv(99).decode())"
    adapter out; adapter in; ls /sys/class/net; sleep 0.3
    read -r _ _ _ _ _ _ _ _ _ _ _ _ _ user_ticks system_ticks _ </proc/2/stat
    [ $((user_ticks + system_ticks)) -lt 20 ] && echo idle'
output_is 'unknown order: kettle on
eth1
lo
idle'

it 'has the other kind of interfaces where taps are not to be had'
run_without /dev/net/tun -- velk-sandbox -- sh -c "$words"'cd /sys/class/net; echo *; set_speed 05
    get 201 eth0; cable out; get 101 eth1; adapter out; echo *; adapter in; cable in; link'
output_is 'eth0 eth1 lo
0
0 05
0 303230303030303030303131
eth0 lo
yes'
error_has '  stand-ins: '
error_has 'ethtool'

it 'goes on without interfaces when there are none to be had, and says so'
run_without /dev/net/tun "$(readlink -f "$(PATH=$PATH:/usr/sbin:/sbin command -v ip)")" -- \
    velk-sandbox -- sh -c 'cd /sys/class/net; echo *; velk-sandbox cable in; echo $?
        velk-sandbox adapter out; echo $?; grep -c ^T: /proc/bus/usb/devices; velk-sandbox adapter in'
output_is 'lo
125
0
1'
error_has 'velk-sandbox: eth0 and eth1 are missing: ip(8) is not installed and /dev/net/tun cannot be opened
velk-sandbox: this device has no interfaces, so it has no cable'

# --- stand-ins ---

it 'names its stand-ins at the start, and puts them first'
run velk-sandbox -- sh -c 'ls /run/velk-sandbox/bin; for tool in $(ls /run/velk-sandbox/bin); do
    command -v $tool; readlink /usr/sbin/$tool; done'
named=$(echo "$error" | sed -nE 's/^  stand-ins: //p' |
    sed 's/, /\n/g' | sort)
has 'stand-ins' snmpd "$named" # which is no tool on the search path
named=$(echo "$named" | grep -v snmpd)
expected=$named
for tool in $named; do
    expected=$expected$'\n'/run/velk-sandbox/bin/$tool$'\n'/run/velk-sandbox/bin/$tool
done
output_is "$expected"
if [ "$user" != 0 ]; then
    has 'stand-ins' sudo "$named"
elif [ -r /dev/net/tun ] && [ -x /usr/sbin/ethtool ] && [ -x /usr/bin/sudo ]; then
    check 'stand-ins of root' '' "$(echo "$named" | grep -e ethtool -e sudo)"
fi

it 'has an ethtool that refuses what the real one refuses'
on_device sh -c 'tool=$1/stand-ins/ethtool
    for words in "" -x ../eth0 "eth0 eth1" "-s eth0" "-s eth0 speed 1x" "-s eth0 duplex both" \
        "-s eth0 autoneg" "-s eth0 colour red" "-s eth9 speed 10"; do
        sh "$tool" $words >/tmp/out 2>/tmp/errors
        echo "$? $(wc -l </tmp/out) $(wc -l </tmp/errors) $words"
    done' sh "$VELK_BUILD"
output_is '1 0 2 
1 0 2 -x
1 0 2 ../eth0
1 0 2 eth0 eth1
1 0 2 -s eth0
1 0 2 -s eth0 speed 1x
1 0 2 -s eth0 duplex both
1 0 2 -s eth0 autoneg
1 0 2 -s eth0 colour red
75 0 1 -s eth9 speed 10'

# --- all at once ---

it 'answers right when two programs read at once'
on_desk 'cable out; set_speed 03
    for _ in $(seq 150); do get 201 eth0; done >/tmp/speeds &
    for _ in $(seq 150); do get 101 eth1; done >/tmp/addresses
    wait; for answers in /tmp/speeds /tmp/addresses; do sort $answers | uniq -c | tr -s " "; done'
output_is '0
 150 0 03
 150 0 303230303030303030303131'
error_is ''

it 'answers right when a program reads what another one sets'
on_desk 'set_speed 02 >/tmp/results
    for _ in $(seq 30); do set_speed 03; set_speed 02; done >>/tmp/results &
    for _ in $(seq 60); do get 201 eth0; done >/tmp/speeds
    wait; sort /tmp/results | uniq -c | tr -s " "; sort -u /tmp/speeds'
output_is ' 61 0
0 02
0 03'
error_is ''

# --- the end ---

it 'takes everything with it'
run velk-sandbox --quiet -- sh -c "sleep $mark & velk-sandbox cable out; velk-sandbox adapter out"
status_is 0
check 'processes left' '' "$(sleepers)"
check 'interfaces of the machine' "$links_before" "$(links_of_machine)"

starts_within 500

# --- again, as an ordinary user ---

again_as_ordinary_user "$this_file"

finish
