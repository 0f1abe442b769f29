# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# fixes_test.sh - every fix that velkctl doctor prints removes its finding and makes no new one.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

fixes=$VELK_SOURCE/tests/device/velkctl/fixes
APPLY_FIX=$(cat "$fixes/apply_fix.py")
export APPLY_FIX
found=$lib_folder/found
: >"$found"

# A device with the tools and lines that the sample one lacks: nothing is wrong with it.
make_healthy_rootfs
printf '%s\n' 'iface lo inet loopback' '' 'auto eth0' 'iface eth0 inet static' '	address 10.0.0.10' \
    '	netmask 255.255.255.0' '	gateway 10.0.0.1' '' 'auto eth1' 'iface eth1 inet dhcp' \
    '	address 10.0.0.2' '	netmask 255.0.0.0' '	gateway 10.0.0.1' \
    >"$healthy/etc/network/interfaces"

keep_own='mkdir /run/own; cd /; cp -RL --parents etc/network etc/dhclient* etc/resolv* sbin/dhclient-script \
    var/cron var/libvelk usr/local/share /run/own 2>/dev/null; cd /run; '

# Breaks a device by a script, and applies the fix of the finding that FINDING describes. HAND is a script
# for a fix in words, or the value that takes the place of VALUE in the fix.
fixed() { # fixed FINDING BREAK [HAND]
    it "fixes '$1'"
    run velk-sandbox --quiet --rootfs "$healthy" -- sh -c 'exec python3 -c "$APPLY_FIX" "$@"' \
        sh "$keep_own $stand_in_word $2" "$1" "${3:-}"
    check 'result' fixed "$([ "$status" = 0 ] && echo fixed || printf '%s' "$output$error")"
    [ "$status" != 0 ] || printf '%s\n' "$output" >>"$found"
}

# Breaks a device by several faults of one line, and applies the fixes, the last one first.
all_fixed() { # all_fixed NAME BREAK [HAND]
    it "fixes $1"
    run velk-sandbox --quiet --rootfs "$healthy" -- sh -c 'exec python3 -c "$APPLY_FIX" "$@"' \
        sh "$keep_own $stand_in_word $2" '' "${3:-}"
    check 'result' fixed "$([ "$status" = 0 ] && echo fixed || printf '%s' "$output$error")"
}

# An ordinary user cannot break the device in every way.
fixed_by_root() { [ "$(id -u)" != 0 ] || fixed "$@"; }

interfaces=/etc/network/interfaces

# ---- files and folders --------------------------------------------------------------------------
fixed 'file is missing' "rm $interfaces"
fixed 'is in its place' 'rm /var/cron/tabs/root; mkfifo /var/cron/tabs/root'
fixed 'NUL bytes' 'printf "\000\n" >>/var/cron/tabs/root'
fixed 'larger than 1 MiB' "head -c 2000000 /dev/zero >$interfaces"
fixed 'end with CR LF' "sed -i 's/\$/\\r/' $interfaces"
fixed 'may not write the file' "mount --bind -o ro $interfaces $interfaces" \
    "mount -o remount,bind,rw $interfaces"
fixed 'folder is missing' 'rm -r /var/libvelk'
fixed_by_root 'may not write the folder' 'mount -t tmpfs -o ro none /var/libvelk' \
    'mount -o remount,rw /var/libvelk'
fixed 'file system is full' 'mount -t tmpfs -o size=128k none /var/tmp
    dd if=/dev/zero of=/var/tmp/filler bs=1k count=100 2>/dev/null' 'rm /var/tmp/filler'

# ---- /etc/network/interfaces --------------------------------------------------------------------
fixed 'no line begins with' "sed -i '/^iface eth0/,/gateway/d' $interfaces" \
    "printf 'iface eth0 inet static\n\taddress 10.0.0.9\n\tnetmask 255.0.0.0\n\tgateway 10.0.0.8\n' >/run/s
    cat $interfaces >>/run/s; cat /run/s >$interfaces"
fixed 'does not recognise the header' "sed -i 's/^iface eth0/iface  eth0/' $interfaces" \
    "sed -i 's/^iface  eth0/iface eth0/' $interfaces"
fixed 'neither static nor dhcp' "sed -i '/^iface eth0/s/static/bootp/' $interfaces"
fixed 'takes this line for the' "sed -i '/^iface eth1/a\\\\thwaddress ether 02:00:00:00:00:01' $interfaces" \
    "sed -i '/hwaddress/d' $interfaces; printf '\thwaddress ether 02:00:00:00:00:01\n' >>$interfaces"
fixed 'is below .*outside the stanza' "sed -i '/^iface eth0/a auto eth2' $interfaces"
fixed 'white space around' "sed -i '0,/address /s/address /address  /' $interfaces" \
    "sed -i 's/address  /address /' $interfaces"
fixed 'still applies' "sed -i 's/^\(\tgateway\) 10.*/&\n\1 10.0.0.4/' $interfaces"
fixed 'has a second line' "sed -i 's/^\(\taddress\) 10.0.0.10/&\n\1 10.0.0.4/' $interfaces"
fixed 'no blank follows' "sed -i '0,/address /s/address /address\t/' $interfaces" \
    "sed -i 's/address\t/address /' $interfaces"
fixed 'is the last one and has no' "sed -i '/netmask 255.0/d' $interfaces"
fixed 'would be set in the wrong place' "sed -i '0,/gateway/{/gateway/d}' $interfaces"
fixed 'second stanza' "sed -i '/^iface eth1/i iface eth0 inet static\n\taddress 10.0.0.8' $interfaces" \
    "sed -i '/address 10.0.0.8/d' $interfaces
    awk '/^iface eth0/ && seen++ {next} {print}' $interfaces >/run/s; cat /run/s >$interfaces"

# ---- /etc/dhclient.conf -------------------------------------------------------------------------
dhcp=/etc/dhclient.conf
fixed 'takes a comment' "sed -i '1i # the interface of the wired port' $dhcp"
fixed 'block ends on its first line' "sed -i '/\"eth0\" {/,/}/d' $dhcp
    echo 'interface \"eth0\" { request routers; }' >>$dhcp" \
    "sed -i 's/^\(interface \"eth0\" {\) \(.*\) }/\1\n\2\n}/' $dhcp"
fixed 'as a word ends the block' "sed -i '\$d' $dhcp" "echo '}' >>$dhcp"
fixed 'would break the file when set to dhcp' "sed -i '/\"eth0\" {/a # a comment' $dhcp" \
    "sed -i '/# a comment/d; 1i # a comment' $dhcp"
fixed 'looks like a comment' "sed -i '/\"eth0\" {/,/}/s/^/#/; /#interface/a # a comment' $dhcp" \
    "sed -i '/# a comment/d; 1i # a comment' $dhcp"
fixed 'recognise the opening line' "sed -i 's/interface \"eth0\"/interface\"eth0\"/' $dhcp"
fixed 'no block of the interface' "sed -i '/\"eth0\" {/,/}/d' $dhcp" \
    "printf 'interface \"eth0\" {\n\trequest routers;\n}\n' >>$dhcp"
fixed 'outside the blocks' "printf 'subnet 10.0.0.0 {\n}\n' >>$dhcp" "sed -i '/^subnet/,\$d' $dhcp"
fixed 'is also added to' "sed -i '/\"eth0\" {/,/}/s/^.*request.*/\trequest ntp-servers;\n\tsend host-name \"velk\";/' $dhcp" \
    "sed -i '/\trequest ntp-servers;/{h;d};/send host-name/{G}' $dhcp"
fixed 'ends this request statement' "sed -i '/\"eth0\" {/,/}/s/servers;/servers/' $dhcp" \
    "sed -i '/\"eth0\" {/,/}/s/servers\$/servers;/' $dhcp"
fixed 'no request statement applies' "sed -i '/\"eth0\" {/,/}/{/request/d}' $dhcp" \
    "sed -i '/\"eth0\" {/a request subnet-mask, broadcast-address, routers;' $dhcp"

# ---- scripts of the DHCP client -----------------------------------------------------------------
hooks=/etc/dhclient-exit-hooks
client=/sbin/dhclient-script
fixed 'an .elif. within' "sed -i 's/^else/elif true; then/' $hooks" "sed -i 's/^elif.*/else/' $hooks"
fixed 'an .if. within a block' "sed -i '/^else/i if true; then echo; fi' $hooks" \
    "sed -i 's/^if true.*/[ 1 ] \&\& echo/' $hooks"
fixed 'the library takes .!=' "sed -i 's/= \"eth0\"/!= \"eth1\"/' $hooks" "sed -i 's/!= \"eth1\"/= \"eth0\"/' $hooks"
fixed 'depends on the interface' "sed -i 's/\"\$interface\" = \"eth0\"/\"\${interface}\" = \"eth0\"/' $hooks" \
    "sed -i 's/\"\${interface}\"/\"\$interface\"/' $hooks"
fixed "with 'fi' as a word" "sed -i '/^fi/d' $hooks" "echo fi >>$hooks"
fixed 'before or after the command' "sed -i \"s,/usr/sbin/avahi-autoipd -wD,'/usr/sbin/avahi-autoipd' -wD,\" $hooks" \
    "sed -i \"s,'/usr/sbin/avahi-autoipd',/usr/sbin/avahi-autoipd,\" $hooks"
fixed 'no line .*has .*printdhcp' "sed -i '/printdhcpnotice/d' $hooks" \
    "sed -i '/^\t:/{s,\$,\n\t[ \"\$reason\" != BOUND ] || /sbin/printdhcpnotice.pl eth0 \"\$new_ip_address\",;:a;n;ba}' $hooks"
fixed 'there are two .#' "sed -i 's,^.*avahi-autoipd -wD.*eth0,##&,' $hooks" "sed -i 's/^##/#/' $hooks"
fixed 'takes this definition' "sed -i 's/^make_resolv_conf()/make_resolv_conf ()/' $client" \
    "sed -i 's/^make_resolv_conf ()/make_resolv_conf()/' $client"
fixed 'eth0 calls make_resolv_conf' "sed -i '0,/^\t\tmake_resolv_conf/{/^\t\tmake_resolv_conf/d}' $client" \
    "sed -i '0,/^\t\t:/s//&\n\t\tmake_resolv_conf/' $client"

# ---- crontab and SNMP agent ---------------------------------------------------------------------
crontab=/var/cron/tabs/root
fixed 'also occurs earlier' "sed -i 's/192.168.0.1/usr/' $crontab" "sed -i 's/-u usr/-u 192.0.2.1/' $crontab"
fixed 'for the server' "sed -i 's/-u 192.168.0.1/-t 5/' $crontab"
fixed 'entry has no server' "sed -i 's,ntpdate.*,ntpdate,' $crontab"
fixed 'server is the last word' "sed -i 's,ntpdate.*,ntpdate -u 192.168.0.1,' $crontab"
fixed 'two entries are on one line' "sed -i '/ntpdate/{N;s/> .*log\n//}' $crontab" \
    "sed -i 's,^\(.*ntpdate -u 192.168.0.1\)\(.*\),0 * * * * /usr/bin/ntpdate -u 192.0.2.1 > /var/libvelk/ntp.log\n\2,' $crontab"
fixed 'taken for an entry' "sed -i '1i # ntpdate sets the clock' $crontab"
fixed 'output does not go to' "sed -i 's,> /var/libvelk/ntp.log,> /dev/null,' $crontab"
fixed 'no entry runs ntpdate' "sed -i '/ntpdate/d' $crontab"
fixed 'does not write such a schedule' "sed -i 's/^30 01 .*perl/30 01 * 2 * perl/' $crontab"
fixed 'not as the library writes it' "sed -i 's/^30 01/30  01/' $crontab"
snmp=/usr/local/share/etc/snmp/snmpd.conf
fixed 'has the directive' "sed -i '/syscontact/d' $snmp"
fixed 'in small letters' "sed -i 's/syscontact/sysContact/' $snmp" "sed -i 's/sysContact/syscontact/' $snmp"
fixed 'the text contains' "sed -i 's/^LOCATION=.*/LOCATION=a syscontact/' /var/libvelk/libvelk"

# ---- /var/tmp, lock and remains -----------------------------------------------------------------
fixed 'folder is in the place of the edit copy' 'mkdir /var/tmp/root'
fixed 'FIFO is in the place of the edit copy' 'mkfifo /var/tmp/root'
fixed 'has more text than' "(umask 022; { cat $interfaces; echo '	up true'; } >/var/tmp/interfaces); : >$interfaces"
fixed 'seems to have been cut' "umask 077; cp $interfaces /var/tmp/interfaces; : >$interfaces" \
    "cat /var/tmp/interfaces >$interfaces; rm /var/tmp/interfaces"
fixed 'same as the file' 'umask 077; cp /var/cron/tabs/root /var/tmp/root'
fixed 'left, .*old; it is empty' 'umask 077; : >/var/tmp/root'
fixed 'differs from the file' 'umask 077; sed s/^0/5/ /var/cron/tabs/root >/var/tmp/root'
lock=/var/tmp/vklib_lock
hold="flock --no-fork $lock sleep 60 >/dev/null 2>&1 & echo \$! >/run/holder
    while flock -n $lock true; do sleep 0.05; done"
release="kill \$(cat /run/holder); until flock -n $lock true; do sleep 0.05; done"
fixed 'mode is not 666' ": >$lock; chmod 600 $lock"
fixed 'is in the place of the lock' "mkdir $lock"
fixed_by_root 'lock file belongs to' ": >$lock; chmod 666 $lock; chown 1 $lock"
fixed 'lock is held by' ": >$lock; chmod 666 $lock; chown 0 $lock; $hold" "$release"
fixed 'edit may be under way' "umask 077; cp $crontab /var/tmp/root; sed -i s/5/6/ /var/tmp/root
    : >$lock; chmod 666 $lock; $hold" "rm /var/tmp/root; $release"
fixed 'the output of tools' 'mkfifo /var/tmp/get_result'
fixed 'result was left' ': >/var/tmp/get_result'
fixed 'folder is in the place of the reply' 'mkdir /tmp/WlanAplFromWlanSock'
fixed 'reply socket without a process' "python3 -c 'import socket; socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM).bind(\"/tmp/WlanAplFromWlanSock\")'"
semaphore=/dev/shm/sem.WlanAplRecvSem
fixed 'is in the place of the semaphore' "mkdir $semaphore"
fixed 'an empty file is in the place' ": >$semaphore"
fixed 'a semaphore was left' "head -c 32 /dev/zero >$semaphore; chmod 666 $semaphore"

# ---- values ------------------------------------------------------------------------------------
resolver=/etc/resolv.dnsmasq.conf
fixed 'is short for' "sed -i '0,/netmask/s/netmask .*/netmask 24/' $interfaces"
fixed 'is not an IPv4 address' "echo 'nameserver foo' >$resolver" 192.0.2.1
fixed 'is outside the network' "sed -i '0,/gateway/s/gateway .*/gateway 172.16.0.1/' $interfaces" 10.0.0.1
fixed 'is the broadcast address' "sed -i '0,/address/s/address .*/address 10.0.0.255/' $interfaces" 10.0.0.10
fixed 'is also the address of eth0' "velkctl set eth1.method static
    sed -i 's/address .*/address 10.0.0.10/' $interfaces" 10.0.0.2
fixed 'is the address of eth0' "echo 'nameserver 10.0.0.10' >$resolver" 192.0.2.1
fixed 'eth0.address is missing' "sed -i '0,/address/{/address/d}' $interfaces"
fixed 'eth1.address and eth1.netmask are missing' "sed -i '/iface eth1/,\$d' $interfaces
    printf 'iface eth1 inet static\n\niface lo inet loopback\n' >>$interfaces"
fixed 'is a loopback address' "echo 'nameserver 127.0.0.1' >$resolver" 192.0.2.1

fixed 'DHCP client, process .* still runs' \
    'bash -c "exec -a dhclient sh -c \"kill -STOP \\\$\\\$; :\" eth0" & echo $! >/run/client; sleep 0.5' \
    'kill -9 "$(cat /run/client)"'

# ---- the journal -------------------------------------------------------------------------------
# Takes the state "done" from the only entry.
interrupt='cd /var/libvelk/journal; head -c -28 0* >/run/entry; cat /run/entry >$(echo 0*); cd /run'
fixed 'neither finished nor taken back' "velkctl set eth0.address 10.0.0.11; $interrupt"
fixed 'could not be put back' "velkctl set eth0.address 10.0.0.11; $interrupt
    velkctl set eth0.address 10.0.0.12 --no-journal; velkctl recover --quiet 2>/dev/null"

# ---- two faults of one line -------------------------------------------------------------------
all_fixed 'a server that is not valid and the last word of its line' \
    "sed -i 's/ntpdate -u .*/ntpdate -u bad;host/' $crontab"
all_fixed 'an option that is taken for the server' "sed -i 's/-u 192.168.0.1/-t 5 -u bad;host/' $crontab"
all_fixed 'a line with another option above an address that is not valid' \
    "sed -i '/^iface eth0/a\\\\thwaddress ether 02:00:00:00:00:01' $interfaces
    sed -i '0,/address 10/s/address 10.*/address 999.1.1.1/' $interfaces" 10.0.0.10

# ---- daemon, adapter and tools ------------------------------------------------------------------
restart_daemon='velk-sandbox adapter out; velk-sandbox adapter in'
fixed 'socket is missing' 'rm /tmp/WlanAplToWlanSock' "$restart_daemon"
fixed 'does not run .*no adapter is attached' 'velk-sandbox adapter out' 'velk-sandbox adapter in'
fixed 'adapter is not attached' 'velk-sandbox adapter out' 'velk-sandbox adapter in'
fixed 'nothing came within' 'wland --tell silent' "wland --tell normal"
fixed 'answers with an error' 'wland --tell garbage' "wland --tell normal"
fixed 'its record has channel' 'wland --tell empty' "wland --tell normal"
fixed_by_root 'in none of the folders' 'mkdir /run/mine; mv /sbin/ifup /run/mine; mount -t tmpfs none /usr/local/sbin'
fixed 'is not installed' ': >/tmp/none; stand_in ifconfig /tmp/none' 'umount "$(readlink -f /sbin/ifconfig)"'
fixed 'library looks for .inet addr' \
    'stand_in_script ifconfig "echo \"    inet 127.0.0.1  netmask 255.0.0.0\""' 'umount "$(readlink -f /sbin/ifconfig)"'
fixed 'ran for more than' 'stand_in_script ifconfig "exec sleep 60"' 'umount "$(readlink -f /sbin/ifconfig)"'

if [ "$(id -u)" = 0 ]; then
    it 'has a case for every finding'
    run python3 "$fixes/uncovered.py" "$VELK_SOURCE/velkctl/doctor" "$found" "$fixes/exceptions.txt"
    status_is 0
    error_is ''
    output_is ''
fi

finish
