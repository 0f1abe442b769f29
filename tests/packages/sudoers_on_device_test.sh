# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# sudoers_on_device_test.sh - an ordinary user runs every command of the library that needs sudo, on a device
# with the real sudo and the rules of packaging/sudoers.d.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

install -m 440 "$VELK_SOURCE/packaging/sudoers.d/velk" /etc/sudoers.d/velk
echo 'Defaults logfile=/tmp/sudo.log, loglinelen=0' >/etc/sudoers.d/log
# An ordinary user may not be able to look into the build folder.
mkdir -m 755 /tmp/programs
install -m 755 -t /tmp/programs "$VELK_BUILD"/{velkctl,sudo_commands,libvelk.so.1}
PATH=/tmp/programs:$PATH
# The settings' files are edited without sudo.
chown nobody /etc/network/interfaces /etc/dhclient.conf /var/libvelk /var/libvelk/libvelk
as_user() { run setpriv --reuid nobody --regid nogroup --init-groups "$@"; }

it 'refuses a user who is not in the group'
as_user velkctl set eth0.link-speed 100-full
error_has 'sudo: a password is required'
as_user velkctl doctor
output_has 'problem: ifup may not be run through sudo by this user without a password'

sed -i '$a velk:x:64999:nobody' /etc/group
: >/tmp/sudo.log

it 'satisfies the doctor'
as_user velkctl doctor
check 'tools that sudo refuses' '' "$(grep 'may not be run through sudo' <<<"$output")"

it 'sets and reads the link mode'
for mode in 100-full 100-half 10-full 10-half auto; do
    as_user velkctl set eth0.link-speed "$mode"
    status_is 0
done

it 'asks for the link before it asks the wireless adapter'
as_user velkctl call get 317 eth1
output_has 'LIB_VELK_WIRED_LINKED'

it 'hands administrator and location to the SNMP agent'
as_user velkctl set administrator "O'Neil & \"Co\"/IT \\n"
status_is 0
as_user velkctl set location ''
status_is 0

it 'restarts the interfaces'
as_user velkctl call restart 1 eth1
status_is 0
velk-sandbox cable out
as_user velkctl call restart 1 eth1
status_is 0
velk-sandbox cable in
velk-sandbox adapter out
as_user velkctl call restart 1 eth0
status_is 0

it 'changes address, mask and gateway at once'
as_user sudo_commands
output_is 'address 0
mask 0
first gateway 0
second gateway 0'

it 'ran every command that the library knows, and sudo refused none'
check 'refused' '' "$(grep -v ' : nobody : PWD=' /tmp/sudo.log)"
check 'commands' '/etc/init.d/snmpd restart
/usr/bin/sed
/usr/sbin/ethtool -s eth0 autoneg on
/usr/sbin/ethtool -s eth0 speed 10 duplex full autoneg off
/usr/sbin/ethtool -s eth0 speed 10 duplex half autoneg off
/usr/sbin/ethtool -s eth0 speed 100 duplex full autoneg off
/usr/sbin/ethtool -s eth0 speed 100 duplex half autoneg off
/usr/sbin/ethtool eth0
/usr/sbin/ifconfig eth0 192.168.0.20
/usr/sbin/ifconfig eth0 netmask 255.255.255.0
/usr/sbin/ifconfig eth1 up
/usr/sbin/ifdown eth0
/usr/sbin/ifdown eth1
/usr/sbin/ifup eth0
/usr/sbin/ifup eth1
/usr/sbin/route add default gw 192.168.0.1
/usr/sbin/route add default gw 192.168.0.2
/usr/sbin/route del default gw
/usr/sbin/route del default gw 192.168.0.1' "$(sed -n 's/.* COMMAND=//p' /tmp/sudo.log | sed 's,^/usr/bin/sed .*,/usr/bin/sed,' | LC_ALL=C sort -u)"

it 'runs no command for a script of sed'
mkdir -p '/tmp/own/s/syscontact.*' /tmp/own/x
chmod 777 /tmp/own
cd /tmp/own || exit
echo line | tee myfile 's/syscontact.*/syscontact' >/dev/null
agent=/usr/local/share/etc/snmp/snmpd.conf
as_user sudo -n sed -i 's/syscontact.*/syscontact' -e '1e id >ran' myfile x/ $agent
as_user sudo -n sed '-i s/syscontact.*/syscontact' '1e id >ran myfile x/' $agent
as_user sudo -n sed '-i s/syscontact.*/syscontact' '1e id >ran' myfile x/ $agent
check 'results of commands' '' "$(ls -d /ran* /tmp/own/ran* 2>/dev/null)"
cd /tmp || exit

it 'works without the lines for sed, but for the SNMP agent'
sed '/^# The rest is for /,$d' "$VELK_SOURCE/packaging/sudoers.d/velk" >/tmp/without-sed
install -m 440 /tmp/without-sed /etc/sudoers.d/velk
check 'lines for sed' '' "$(grep sed /etc/sudoers.d/velk)"
sed -n 's/.* COMMAND=//p' /tmp/sudo.log | grep -v '^/usr/bin/sed' | LC_ALL=C sort -u >/tmp/commands
while read -ra command; do
    as_user sudo -n -l "${command[@]}"
    status_is 0
done </tmp/commands
as_user velkctl set administrator 'Robin'
status_is 0
check 'the identity file' 'ADMINISTRATOR=Robin' "$(grep -a '^ADMINISTRATOR=' /var/libvelk/libvelk)"
check "the agent's file" '' "$(grep Robin $agent)"
as_user velkctl doctor
output_has 'sed may not be run through sudo by this user without a password'
finish
