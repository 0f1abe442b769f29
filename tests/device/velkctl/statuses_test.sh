# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# statuses_test.sh - the failure that decides the exit status of velkctl when there are several.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Runs lines on a device. Prints the exit status of each line that begins with "velkctl".
statuses() {
    on_device sh -c "$stand_in_word"'
        printf "%s\n" "$1" >/tmp/lines
        while IFS= read -r line <&3; do
            eval "$line" >/tmp/out 2>/tmp/errors
            status=$?
            case $line in velkctl*) echo "$status $line" ;; esac
        done 3</tmp/lines' sh "$1"
}

it 'ends a get with the status of the first failure'
statuses 'rm /etc/network/interfaces
velkctl get eth1.signal eth0.method
velkctl get eth0.method eth1.signal
velkctl get eth0.dns eth1.signal eth0.method eth0.dns
velkctl get eth0.dns'
output_is '5 velkctl get eth1.signal eth0.method
1 velkctl get eth0.method eth1.signal
5 velkctl get eth0.dns eth1.signal eth0.method eth0.dns
0 velkctl get eth0.dns'
error_is ''

it 'names the missing adapter and the cable by their own statuses'
statuses 'velkctl get eth1.signal
velk-sandbox cable out
velkctl get eth1.signal
velk-sandbox adapter out
velkctl get eth1.signal
velkctl get eth1.ssid eth1.signal
velkctl get eth1.signal --json
velkctl set eth1.ssid x
velkctl restart eth1'
output_is '5 velkctl get eth1.signal
0 velkctl get eth1.signal
4 velkctl get eth1.signal
4 velkctl get eth1.ssid eth1.signal
4 velkctl get eth1.signal --json
4 velkctl set eth1.ssid x
4 velkctl restart eth1'

it 'ends a diff with a difference, else with the first failure'
statuses 'velkctl export >/tmp/export
velkctl diff /tmp/export
velkctl set eth0.dns 10.9.8.7
velkctl diff /tmp/export
rm /etc/network/interfaces
velkctl diff /tmp/export
velkctl set eth0.dns 192.168.0.1 192.168.0.2
velkctl diff /tmp/export
velkctl diff /tmp/export /tmp/export
velkctl diff /tmp/missing
velkctl diff /tmp/export /tmp/missing'
output_is '0 velkctl export >/tmp/export
0 velkctl diff /tmp/export
0 velkctl set eth0.dns 10.9.8.7
6 velkctl diff /tmp/export
6 velkctl diff /tmp/export
0 velkctl set eth0.dns 192.168.0.1 192.168.0.2
1 velkctl diff /tmp/export
0 velkctl diff /tmp/export /tmp/export
2 velkctl diff /tmp/missing
2 velkctl diff /tmp/export /tmp/missing'

it 'ends an export with success unless a setting that it should have is unread'
statuses 'velkctl export
velk-sandbox cable out; velk-sandbox adapter out
velkctl export
rm /var/cron/tabs/root
velkctl export'
output_is '0 velkctl export
0 velkctl export
1 velkctl export'

it 'ends a set of several with the status of the one that failed'
statuses 'velk-sandbox adapter out
velkctl set eth0.dns=10.0.0.1 eth1.ssid=x ntp-server=1.2.3.4
velkctl get ntp-server
velkctl set eth0.dns=10.0.0.300 ntp-server=1.2.3.4
velkctl set eth0.dns=10.0.0.2 nonsense=1'
output_is '4 velkctl set eth0.dns=10.0.0.1 eth1.ssid=x ntp-server=1.2.3.4
0 velkctl get ntp-server
2 velkctl set eth0.dns=10.0.0.300 ntp-server=1.2.3.4
2 velkctl set eth0.dns=10.0.0.2 nonsense=1'

it 'ends a show with success also if settings cannot be read'
statuses 'rm /etc/network/interfaces
velkctl show
velkctl show eth0
velkctl show eth7'
output_is '0 velkctl show
0 velkctl show eth0
2 velkctl show eth7'

it 'ends an undo that can change nothing with the status of the setting that it could not read'
statuses 'velkctl set eth0.dns=10.0.0.1 ntp-server=10.0.0.9
velkctl undo
velkctl undo zzzz
velkctl set eth0.gateway=192.168.0.9 eth0.dns=10.0.0.3
velkctl set eth0.dns=10.0.0.7 --no-journal
velkctl undo
velkctl undo --force
velkctl set eth1.ssid=attic eth0.dns=10.0.0.3
velkctl set eth0.dns=10.0.0.7 --no-journal
velk-sandbox adapter out
velkctl undo'
output_is '0 velkctl set eth0.dns=10.0.0.1 ntp-server=10.0.0.9
0 velkctl undo
2 velkctl undo zzzz
0 velkctl set eth0.gateway=192.168.0.9 eth0.dns=10.0.0.3
0 velkctl set eth0.dns=10.0.0.7 --no-journal
1 velkctl undo
0 velkctl undo --force
0 velkctl set eth1.ssid=attic eth0.dns=10.0.0.3
0 velkctl set eth0.dns=10.0.0.7 --no-journal
4 velkctl undo'

it 'ends an apply by its conflicts before an adapter that is missing'
statuses 'velk-sandbox adapter out
velk-sandbox cable out; velkctl export >/tmp/plan; velk-sandbox cable in
sed -i "s/\"eth0.gateway\": \"192.168.0.1\"/\"eth0.gateway\": \"10.0.0.1\"/" /tmp/plan
velkctl apply /tmp/plan --restart=eth1
sed -i "s/\"eth0.gateway\": \"10.0.0.1\"/\"eth0.gateway\": \"192.168.0.3\"/" /tmp/plan
velkctl apply /tmp/plan --restart=eth1
velkctl get eth0.gateway'
output_is '2 velkctl apply /tmp/plan --restart=eth1
4 velkctl apply /tmp/plan --restart=eth1
0 velkctl get eth0.gateway'

it 'ends with the lock that another program holds'
statuses 'flock /var/tmp/vklib_lock sleep 100 & while flock --nonblock /var/tmp/vklib_lock true; do sleep 0.01; done
velkctl set eth0.dns 10.0.0.1
velkctl set eth0.dns=10.0.0.1 ntp=on --wait=1
velkctl set eth0.dns 10.0.0.1 --wait=20 --timeout=1
velkctl set eth0.dns 10.0.0.1 --wait=1 --timeout=20
velkctl restart eth0 --wait=1 --timeout=20
velkctl get eth0.dns --timeout=20'
output_is '3 velkctl set eth0.dns 10.0.0.1
3 velkctl set eth0.dns=10.0.0.1 ntp=on --wait=1
3 velkctl set eth0.dns 10.0.0.1 --wait=20 --timeout=1
3 velkctl set eth0.dns 10.0.0.1 --wait=1 --timeout=20
3 velkctl restart eth0 --wait=1 --timeout=20
0 velkctl get eth0.dns --timeout=20'

finish
