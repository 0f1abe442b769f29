# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# hardware_test.sh - the interfaces, cable and adapter of the simulated device, and the stand-ins.
# Root runs it a second time as an ordinary user, from a copy that this user can read.
# shellcheck shell=bash disable=SC2016
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox

this_file=$(realpath "$0")
user=$(id -u)
mark=$((200000 + $$)) # unique argument of `sleep`, to find its process

# --- functions of this file ---

functions='
    cable() { velk-sandbox cable "$1" || echo "cable $1: $?"; }
    adapter() { velk-sandbox adapter "$1" || echo "adapter $1: $?"; }
    link() { ethtool eth0 | sed -n "s/.*Link detected: //p"; }
    # Prints the result and the data bytes of a get, without blanks.
    get() {
        velkctl call get "$1" "$2" | sed -E "1{/\(-?[0-9]+\)/!d}; s/.*\((-?[0-9]+)\).*/\1/; s/^[0-9a-f]{8}  ?//
            s/  *\|.*//; /^[0-9a-f]{8}\$/d; 2,\$s/ //g" | paste -s -d " "
    }
    set_speed() { velkctl call set 201 eth0 --hex "$1" | sed -nE "s/.*\((-?[0-9]+)\).*/\1/p"; }
    daemons() { cat /proc/[0-9]*/comm 2>/dev/null | grep -cx wland; }
'

# Runs a shell line on a device with these functions.
on_device_sh() {
    on_device sh -c "$functions$1"
    lib_command=$1
}

# Runs a command in a mount namespace where some files of the machine are replaced by /dev/null.
run_without() { # FILE... -- COMMAND...
    local root=--map-root-user
    [ "$user" != 0 ] || root=
    # shellcheck disable=SC2086  # empty for root
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

it 'has a wired port with the address of the interfaces file, and an adapter without address'
on_device_sh 'for port in eth0 eth1; do
        cat /sys/class/net/$port/address /sys/class/net/$port/carrier
        ip -4 -o addr show $port | sed -E "s/.*inet ([^ ]*) brd ([^ ]*) .*/\1 \2/"
    done'
output_is '02:00:00:00:00:10
1
192.168.0.10/24 192.168.0.255
02:00:00:00:00:11
1'
error_is ''

it 'takes the address from the interfaces file of --rootfs'
mkdir -p "$lib_folder/files/etc/network"
chmod -R a+rX "$lib_folder"
printf '%s\n' 'iface eth1 inet static' 'address 10.0.0.1' 'netmask 255.0.0.0' \
    'iface eth0 inet static' 'netmask 255.255.0.0' 'address 10.1.2.3' \
    >"$lib_folder/files/etc/network/interfaces"
run velk-sandbox --quiet --rootfs "$lib_folder/files" -- ip -4 -o addr show eth0
output_has 'inet 10.1.2.3/16 brd 10.1.255.255'

it 'sets no address if it is not static'
echo 'iface eth0 inet dhcp' >"$lib_folder/files/etc/network/interfaces"
run velk-sandbox --quiet --rootfs "$lib_folder/files" -- ip -4 -o addr show eth0
status_is 0
output_is ''

it 'has interfaces that the library can read'
on_device_sh 'get 101 eth0; get 201 eth0'
output_is '0 303230303030303030303130
0 01'

it 'prints addresses in the format of the device'
if command -v busybox >/dev/null; then
    on_device_sh 'sudo ifconfig eth0 10.2.3.4 netmask 255.255.255.0
        ifconfig eth0 | grep -c "inet addr:10.2.3.4 "
        sudo route add default gw 10.2.3.1 && route -n | sed -n "s/^0.0.0.0  *\([^ ]*\) .*/\1/p"'
    output_is '1
10.2.3.1'
    error_is ''
fi

it 'keeps each link mode that is set'
on_device_sh 'for mode in 02 03 04 05 01; do set_speed $mode; get 201 eth0; done'
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

it 'prints mode and link in the format of ethtool'
on_device_sh 'sudo ethtool -s eth0 speed 10 duplex half autoneg off
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

it 'disconnects and connects the cable'
on_device_sh 'link; cable out; link; cable out; link; cable in; link; cat /sys/class/net/eth1/carrier'
output_is 'yes
no
no
yes
1'
status_is 0
error_is ''

it 'has a cable that the library detects'
on_device_sh 'get 101 eth1; cable out; get 101 eth1; cable in; get 101 eth1'
output_is '-6
0 303230303030303030303131
-6'

it 'keeps the link mode while the cable is disconnected'
on_device_sh 'set_speed 04; cable out; get 201 eth0; set_speed 03; cable in; get 201 eth0'
output_is '0
0 04
0
0 03'

it 'reports no link on a port that is down'
on_device_sh 'ip link set eth0 down; link; ip link set eth0 up; link'
output_is 'no
yes'

# --- the adapter ---

it 'disconnects and connects the adapter'
on_device_sh 'ls /sys/class/net; grep -c ^T: /proc/bus/usb/devices; adapter out; adapter out; echo out
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

it 'takes the adapter away from the list, the daemon and the kernel, in this order'
on_device_sh 'adapter out; velkctl get eth1.signal; echo $?; grep -c Driver=wlan /proc/bus/usb/devices
    [ -e /sys/class/net/eth1 ] || echo "no eth1"; [ -e /run/velk-sandbox/wland.pid ] || echo "no daemon"
    adapter in; grep -c Driver=wlan /proc/bus/usb/devices; cat /sys/class/net/eth1/carrier'
output_is "4
0
no eth1$([ "$has_daemon" = 0 ] || printf '\nno daemon')
1
1"

it 'restores the list of USB devices independently of the umask'
run sh -c 'umask 077; exec velk-sandbox --quiet -- sh -c "$1"' sh "$functions
    "'cp /proc/bus/usb/devices /tmp; adapter out; adapter in; stat -c %a /proc/bus/usb/devices
    cmp /tmp/devices /proc/bus/usb/devices; ls /proc/bus/usb'
output_is '644
devices'

it 'controls the wireless daemon with each kind of interfaces'
run_without /dev/net/tun -- velk-sandbox --quiet -- wland --tell normal
status_is 0
error_is ''

it 'has an adapter that the library detects'
on_device_sh 'cable out; adapter out; get 101 eth1; adapter in; get 101 eth1; adapter out; cable in
    get 101 eth1; adapter in; get 101 eth1'
output_is '-5
0 303230303030303030303131
-5
-6'

if [ "$has_daemon" = 1 ]; then
    it 'runs the wireless daemon while the adapter is connected'
    on_device_sh 'daemons; [ -S /tmp/WlanAplToWlanSock ] && get 303 eth1 | cut -c 1; adapter out; daemons
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

it 'works without the wireless daemon'
mkdir "$lib_folder/bare"
cp -R "$VELK_BUILD/velk-sandbox" "$VELK_BUILD/rootfs" "$VELK_BUILD/stand-ins" "$lib_folder/bare"
chmod -R a+rX "$lib_folder"
run "$lib_folder/bare/velk-sandbox" -- sh -c 'velk-sandbox adapter out && velk-sandbox adapter in &&
    ls /sys/class/net/eth1/address /run/velk-sandbox/wland.pid'
output_is /sys/class/net/eth1/address
check 'complaints' '' "$(echo "$error" | grep -i daemon)"

it 'reports that the wireless daemon did not start'
printf '%s\n' '#!/bin/sh' 'exit 3' >"$lib_folder/bare/wland"
chmod a+rx "$lib_folder/bare/wland"
run "$lib_folder/bare/velk-sandbox" -- sh -c 'velk-sandbox adapter out && velk-sandbox adapter in
    echo $?; ls -d /sys/class/net/eth1'
output_is '125
/sys/class/net/eth1'
check 'complaints' 2 \
    "$(echo "$error" | grep -c '^velk-sandbox: the wireless daemon did not start$')"

# --- errors ---

it 'refuses positions that are not valid'
while IFS='|' read -r arguments fix; do
    # shellcheck disable=SC2086  # words
    on_device velk-sandbox $arguments
    status_is 2
    check 'errors and next step' "velk-sandbox: MESSAGE
  fix: $fix" "$(sed '1s/: .*/: MESSAGE/' <<<"$error")"
done <<'END'
cable|velk-sandbox cable in, or velk-sandbox cable out
adapter|velk-sandbox adapter in, or velk-sandbox adapter out
cable sideways|velk-sandbox cable in, or velk-sandbox cable out
cable in out|see velk-sandbox cable --help
adapter in --quiet|see velk-sandbox adapter --help
END

it 'continues if the hardware process has ended'
on_device_sh 'kill -KILL 2; while kill -0 2 2>/dev/null; do sleep 0.01; done; cable in'
output_is 'cable in: 125'
check 'lines of errors' 1 "$(echo "$error" | wc -l)"

it 'continues after removal of its interfaces and an unknown order'
on_device_sh 'ip link del eth0; ip link del eth1
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

it 'has veth interfaces if taps are not available'
run_without /dev/net/tun -- velk-sandbox -- sh -c "$functions"'cd /sys/class/net; echo *; set_speed 05
    ls /run/velk-sandbox/bin/ethtool
    get 201 eth0; cable out; get 101 eth1; adapter out; echo *; adapter in; cable in; link'
output_is 'eth0 eth1 lo
0
/run/velk-sandbox/bin/ethtool
0 05
0 303230303030303030303131
eth0 lo
yes'
error_is ''

it 'continues without interfaces if none can be made, and reports it'
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

it 'has its stand-ins in one folder, first in the search path, and that of snmpd as init script'
run velk-sandbox sh -c 'cat /etc/init.d/snmpd; ls /run/velk-sandbox/bin
    for tool in $(ls /run/velk-sandbox/bin); do command -v $tool; readlink /usr/sbin/$tool; done'
agent=$(cat "$VELK_BUILD/stand-ins/snmpd")
named=$(echo "${output#"$agent"}" | grep -x '[a-z]*' | sed '/^$/d')
expected=$agent$'\n'$named
for tool in $named; do
    expected=$expected$'\n'/run/velk-sandbox/bin/$tool$'\n'/run/velk-sandbox/bin/$tool
done
output_is "$expected"
if [ "$user" != 0 ]; then
    has 'stand-ins' sudo "$named"
elif [ -r /dev/net/tun ] && [ -x /usr/sbin/ethtool ] && [ -x /usr/bin/sudo ]; then
    check 'stand-ins of root' '' "$(echo "$named" | grep -e ethtool -e sudo)"
fi

it 'has an ethtool that refuses the same arguments as the real one'
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

# The device of root may use the real tool, so the stand-in is called by its path.
it 'has an ethtool that keeps each mode of each port, and shows it'
on_device sh -c 'tool=$1/stand-ins/ethtool
    show() { sh "$tool" "$1" | sed -n "s/^.\(Speed\|Duplex\|Auto-negotiation\|Link detected\): //p" | paste -s -d " "; }
    rm -f /run/velk-sandbox/ethtool.*
    show eth0
    while read -r words; do
        sh "$tool" -s eth0 $words; echo "$? $(show eth0)"
    done <<END
speed 100 duplex half autoneg off
speed 10 duplex full
duplex half
autoneg on
speed 1000 duplex full autoneg off
END
    sh "$tool" --change eth1 speed 10 duplex half; show eth1; show eth0
    velk-sandbox cable out; show eth0; velk-sandbox cable in; show eth0
    ls /run/velk-sandbox | grep ethtool' sh "$VELK_BUILD"
output_is '100Mb/s Full on yes
0 100Mb/s Half off yes
0 10Mb/s Full off yes
0 10Mb/s Half off yes
0 10Mb/s Half on yes
0 1000Mb/s Full off yes
10Mb/s Half on yes
1000Mb/s Full off yes
1000Mb/s Full off no
1000Mb/s Full off yes
ethtool.eth0
ethtool.eth1'
error_is ''

it 'has a sudo that runs the command with its arguments and its exit status'
on_device sh -c 'tool=$1/stand-ins/sudo
    sh "$tool" printf "<%s>\n" "a b" "" "*"; sh "$tool" sh -c "exit 3"; echo $?' sh "$VELK_BUILD"
output_is '<a b>
<>
<*>
3'

it 'has an ifconfig and a route that are those of busybox'
if command -v busybox >/dev/null; then
    on_device sh -c 'cd "$1/stand-ins"; sh ifconfig eth0 10.2.3.4 netmask 255.255.0.0; sh ifconfig eth0 | grep -c "inet addr:10.2.3.4 .*Mask:255.255.0.0"
        sh route add default gw 10.2.3.1; sh route -n | sed -n "s/^0.0.0.0  *\([^ ]*\) .*/\1/p"
        sh ifconfig eth9 >/dev/null 2>&1; echo $?' sh "$VELK_BUILD"
    output_is '1
10.2.3.1
1'
fi

it 'has a script of the SNMP agent that takes the same words as that of the device'
on_device sh -c 'for word in start stop restart "" status; do sh "$1/stand-ins/snmpd" $word; echo "$? $word"; done' \
    sh "$VELK_BUILD"
output_is '0 start
0 stop
0 restart
2 
2 status'
error_is 'usage: snmpd start|stop|restart
usage: snmpd start|stop|restart'

# --- concurrent programs ---

it 'returns correct values to two programs that read at the same time'
on_device_sh 'cable out; set_speed 03
    for _ in $(seq 150); do get 201 eth0; done >/tmp/speeds &
    for _ in $(seq 150); do get 101 eth1; done >/tmp/addresses
    wait; for answers in /tmp/speeds /tmp/addresses; do sort $answers | uniq -c | tr -s " "; done'
output_is '0
 150 0 03
 150 0 303230303030303030303131'
error_is ''

it 'returns correct values to a program while another one sets them'
on_device_sh 'set_speed 02 >/tmp/results
    for _ in $(seq 30); do set_speed 03; set_speed 02; done >>/tmp/results &
    for _ in $(seq 60); do get 201 eth0; done >/tmp/speeds
    wait; sort /tmp/results | uniq -c | tr -s " "; sort -u /tmp/speeds'
output_is ' 61 0
0 02
0 03'
error_is ''

# --- the end ---

it 'leaves no process and no interface on the machine'
run velk-sandbox --quiet -- sh -c "sleep $mark & velk-sandbox cable out; velk-sandbox adapter out"
status_is 0
check 'processes left' '' "$(sleepers)"
check 'interfaces of the machine' "$links_before" "$(links_of_machine)"

starts_within 500

# --- again, as an ordinary user ---

again_as_ordinary_user "$this_file"

finish
