# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# status_test.sh - the configuration beside the running state.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

script() { on_device sh -c "$1"; }

it 'ends with 0 if all is as configured'
script 'velkctl status'
status_is 0
error_is ''
output_is 'name              configured       running
eth0.link         -                up
eth0.dhcp-client  off              off
eth0.lease        -                none
eth0.address      192.168.0.10     192.168.0.10
eth0.netmask      255.255.255.0    255.255.255.0
eth0.gateway      192.168.0.1      192.168.0.1
eth1.adapter      -                attached
eth1.daemon       -                on
eth1.use          -                not used while the cable is in
eth1.link         -                up
eth1.dhcp-client  on               off
eth1.lease        dhcp             none
eth1.address      dhcp             none
eth1.netmask      dhcp             none
eth1.gateway      dhcp             none
lock              -                free'

it 'says first that a machine without most of the files is not the device'
script 'cd /etc; rm network/interfaces dhclient.conf dhclient-exit-hooks /sbin/dhclient-script resolv.dnsmasq.conf
    velkctl status | head -1; rm /var/cron/tabs/root; velkctl status eth0 | head -4'
error_is ''
output_is 'name              configured       running
this does not look like the device (6 of its files are missing)
  velk-sandbox makes a simulated one
name              configured       running
eth0.link         -                up'

it 'shows an address that waits for a restart'
script 'velkctl set eth0.address 192.168.0.99 && velkctl status eth0'
status_is 1
error_is ''
output_is 'name              configured       running
eth0.link         -                up
eth0.dhcp-client  off              off
eth0.lease        -                none
eth0.address      192.168.0.99     192.168.0.10     differs
eth0.netmask      255.255.255.0    255.255.255.0
eth0.gateway      192.168.0.1      192.168.0.1'

it 'shows a port on DHCP without a client or an address'
script 'velkctl set eth0.method dhcp --no-verify; ifconfig eth0 0.0.0.0; velkctl status eth0'
status_is 1
output_has 'eth0.dhcp-client  on               off              differs'
output_has 'eth0.address      dhcp             none             differs'

# Sets eth0 to DHCP with an address, runs the commands while a client of eth0 with these arguments runs.
with_client() { # with_client ARGUMENTS COMMANDS
    script "velkctl set eth0.method dhcp --no-verify; ifconfig eth0 192.168.0.109
        mkfifo /tmp/never
        bash -c 'exec -a dhclient bash -c \"read -r line </tmp/never\" $1 eth0' & client=\$!
        sleep 0.3; $2
        kill \$client"
}
# Prints a lease file. The expiry is in the syntax of date.
LEASE='lease() {
        printf "%s\n" "lease {" "  interface \"eth0\";" "  fixed-address $1;" \
            "  expire $(date -u -d "$2" "+%w %Y/%m/%d %H:%M:%S");" "}"
    }'

it 'finds the DHCP client, and its lease in the file of its command line'
with_client '-lf /tmp/leases' "$LEASE
    lease 192.168.0.109 2037-01-02T03:04:05Z >/tmp/leases; velkctl status eth0"
status_is 0
output_has 'eth0.dhcp-client  on               on'
output_has 'eth0.lease        dhcp             192.168.0.109 until 2037-01-02 03:04:05 UTC'
output_has 'eth0.address      dhcp             192.168.0.109
eth0.netmask      dhcp             255.255.255.0
eth0.gateway      dhcp             '

it 'marks an address that is not of the lease'
with_client '' "$LEASE
    mkdir -p /var/lib/dhcp
    lease 192.168.0.110 2037-01-02T03:04:05Z >/var/lib/dhcp/dhclient.eth0.leases
    velkctl status eth0"
output_has 'eth0.lease        dhcp             192.168.0.110 until 2037-01-02 03:04:05 UTC'
output_has 'eth0.address      dhcp             192.168.0.109    differs'

it 'finds a lease in the file of a client that was started for the other interface'
with_client '-lf /tmp/own' "$LEASE
    : >/tmp/own; lease 192.168.0.109 2037-01-02T03:04:05Z >/tmp/other; mkfifo /tmp/nothing
    bash -c 'exec -a dhclient bash -c \"read -r line </tmp/nothing\" -lf /tmp/other eth1' & other=\$!
    sleep 0.3; velkctl status eth0; kill \$other"
output_has 'eth0.lease        dhcp             192.168.0.109 until 2037-01-02 03:04:05 UTC'

it 'marks an expired lease and the address from it'
with_client '-lf /tmp/leases' "$LEASE
    lease 192.168.0.109 2020-01-02T03:04:05Z >/tmp/leases; velkctl status eth0"
output_has 'eth0.lease        dhcp             none             differs'
output_has 'eth0.address      dhcp             192.168.0.109    differs'

it 'does not mark a lease that cannot be read, but a link-local address'
with_client '-lf /tmp/missing' 'velkctl status eth0'
output_has 'eth0.lease        dhcp             unknown
eth0.address      dhcp             192.168.0.109
'
with_client '-lf /tmp/missing' 'ifconfig eth0 169.254.7.1; velkctl status eth0'
output_has 'eth0.address      dhcp             169.254.7.1      differs'

it 'marks an old static address after a change to DHCP'
script 'velkctl set eth0.method dhcp --no-verify; velkctl status eth0'
status_is 1
output_has 'eth0.lease        dhcp             none             differs'
output_has 'eth0.address      dhcp             192.168.0.10     differs'

it 'shows all addresses of an interface'
script 'ip addr add 10.1.2.3/8 dev eth0; velkctl status eth0'
status_is 0
output_has 'eth0.address      192.168.0.10     192.168.0.10 10.1.2.3
eth0.netmask      255.255.255.0    255.255.255.0 255.0.0.0
'

it 'does not compare eth1 without an adapter'
script 'velk-sandbox cable out; velk-sandbox adapter out
    until [ "$(cat /sys/class/net/eth0/carrier)" = 0 ]; do sleep 0.1; done
    until velkctl status eth0 | grep -q "no link"; do sleep 0.1; done
    velkctl status eth1'
status_is 0
output_has 'eth1.use          -                not used without an adapter'
output_has 'eth1.address      dhcp             none
'

it 'compares eth1 while the cable is out'
script 'velk-sandbox cable out
    until [ "$(cat /sys/class/net/eth0/carrier)" = 0 ]; do sleep 0.1; done
    until velkctl status eth0 | grep -q "no link"; do sleep 0.1; done
    velkctl status eth1'
status_is 1
output_has 'eth1.use          -                used'
output_has 'eth1.address      dhcp             none             differs'

it 'shows an adapter and a daemon that are missing, and the holder of the lock'
script 'velk-sandbox adapter out
    while [ -e /tmp/WlanAplToWlanSock ]; do sleep 0.1; done
    flock /var/tmp/vklib_lock sleep 60 & holder=$!
    while flock --nonblock /var/tmp/vklib_lock true; do sleep 0.1; done
    velkctl status; kill $holder'
output_has 'eth1.adapter      -                none'
output_has 'eth1.daemon       -                off'
output_has 'lock              -                held by process '

it 'answers in JSON'
script 'velkctl set eth0.netmask 255.255.0.0 && velkctl status eth0 --json'
status_is 1
error_is ''
output_has '"states": ['
output_has '    {
      "name": "eth0.link",
      "configured": null,
      "running": "up",
      "differs": false
    }'
output_has '    {
      "name": "eth0.netmask",
      "configured": "255.255.0.0",
      "running": "255.255.255.0",
      "differs": true
    }'

it 'shows no configuration that cannot be read'
no_configuration() {
    output_has 'eth0.dhcp-client  -                off
eth0.lease        -                none
eth0.address      -                192.168.0.10
eth0.netmask      -                255.255.255.0
eth0.gateway      -                192.168.0.1'
    status_is 0
}
script 'rm /etc/network/interfaces; velkctl status eth0'
no_configuration
script 'sed -i s/^iface\ eth0/iface\ eth7/ /etc/network/interfaces; velkctl status eth0'
no_configuration
script 'sed -i s/eth0\ inet\ static/eth0\ inet\ bootp/ /etc/network/interfaces; velkctl status eth0'
no_configuration

finish
