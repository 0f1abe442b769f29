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
eth0.address      192.168.0.10     192.168.0.10
eth0.netmask      255.255.255.0    255.255.255.0
eth0.gateway      192.168.0.1      192.168.0.1
eth1.adapter      -                attached
eth1.daemon       -                on
eth1.link         -                up
eth1.dhcp-client  on               off
eth1.address      dhcp             none
eth1.gateway      -                none
lock              -                free'

it 'shows an address that waits for a restart'
script 'velkctl set eth0.address 192.168.0.99 && velkctl status eth0'
status_is 1
error_is ''
output_is 'name              configured       running
eth0.link         -                up
eth0.dhcp-client  off              off
eth0.address      192.168.0.99     192.168.0.10     differs
eth0.netmask      255.255.255.0    255.255.255.0
eth0.gateway      192.168.0.1      192.168.0.1'

it 'shows a port on DHCP without a client or an address'
script 'velkctl set eth0.method dhcp --no-verify; ifconfig eth0 0.0.0.0; velkctl status eth0'
status_is 1
output_has 'eth0.dhcp-client  on               off              differs'
output_has 'eth0.address      dhcp             none             differs'

it 'finds the DHCP client'
script 'velkctl set eth0.method dhcp --no-verify
    mkfifo /tmp/never
    bash -c "exec -a dhclient bash -c \"read -r line </tmp/never\" eth0" & client=$!
    sleep 0.3; velkctl status eth0; kill $client'
status_is 0
output_has 'eth0.dhcp-client  on               on'
output_has 'eth0.address      dhcp             192.168.0.10'

it 'compares eth1 while the cable is out'
script 'velk-sandbox cable out
    until [ "$(cat /sys/class/net/eth0/carrier)" = 0 ]; do sleep 0.1; done
    until velkctl status eth0 | grep -q "no link"; do sleep 0.1; done
    velkctl status eth1'
status_is 1
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
script 'rm /etc/network/interfaces; velkctl status eth0'
output_has 'eth0.dhcp-client  -                off'

finish
