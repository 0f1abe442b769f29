# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# link_test.sh - speed, duplex and link, with the real ethtool on a tap interface.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

# Prints the mode in the kernel, from the machine's ethtool.
mode() {
    /usr/sbin/ethtool eth0 | sed -nE 's/^\t(Speed|Duplex|Auto-negotiation): //p' | paste -s -d ' '
}
carrier() { cat /sys/class/net/eth0/carrier; }

it 'uses the real ethtool, not a stand-in'
check 'program' ELF "$(head -c 4 "$(command -v ethtool)" | tr -d '\177')"

it 'sets the port to each mode and reads it back'
while read -r setting speed duplex negotiation; do
    run velkctl set eth0.link-speed "$setting"
    status_is 0
    check "mode $setting" "$speed $duplex $negotiation" "$(mode)"
    run velkctl get eth0.link-speed
    output_is "$setting"
done <<END
100-full 100Mb/s Full off
100-half 100Mb/s Half off
10-full 10Mb/s Full off
10-half 10Mb/s Half off
auto 10Mb/s Half on
END

it 'fails to get a mode that it cannot set'
run ethtool -s eth0 speed 1000 duplex full autoneg off
run velkctl get eth0.link-speed
status_is 1
velkctl set eth0.link-speed auto

it 'detects when the cable is disconnected and connected'
run velk-sandbox cable out
status_is 0
check 'carrier' 0 "$(carrier)"
run ping -c 1 -W 1 192.168.0.1
status_is 1
run velk-sandbox cable in
status_is 0
check 'carrier' 1 "$(carrier)"
run ping -c 1 -W 2 192.168.0.1
status_is 0

it 'refuses to get values of the adapter while the cable is connected'
for setting in mac-address hardware-version software-version standard region rate access-point signal; do
    run velkctl get eth1.$setting
    status_is 5
    output_is ''
done

it 'gets values of the adapter while the cable is disconnected'
velk-sandbox cable out
run velkctl get eth1.mac-address eth1.hardware-version eth1.standard eth1.region
status_is 0
output_has 'eth1.mac-address       02:00:00:00:00:11'

it 'gets the address of the adapter only while the cable is disconnected'
run ifup eth1
soon has_lease eth1 1
run velkctl get eth1.address
output_is "$(kernel_address eth1 | sed 's:/24::')"
velk-sandbox cable in
run velkctl get eth1.address
status_is 0
output_is none
run ifdown eth1

it 'treats the cable as disconnected while the port is down'
ifconfig eth0 down
run velkctl get eth1.mac-address
status_is 0
ifconfig eth0 up
run velkctl get eth1.mac-address
status_is 5

it 'reports a missing adapter with the cable connected and disconnected'
velk-sandbox adapter out
for position in in out; do
    velk-sandbox cable $position
    run velkctl get eth1.mac-address
    status_is 4
done

finish
