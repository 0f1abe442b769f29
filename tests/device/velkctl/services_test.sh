# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# services_test.sh - identity, time, DHCP options and the web update schedule, end to end.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Runs a script on a device, with further words as its arguments.
script() { on_device sh -c "$1" sh "${@:2}"; }

# ---- identity ---------------------------------------------------------------------------------
it 'shows the administrator and the location'
on_device velkctl get administrator location
status_is 0
output_is 'administrator  Robin
location       Second floor, by the window'

it 'stores a text as it is, in its own file and in the SNMP daemon'"'"'s, and runs nothing of it'
quotes=$(printf "%511s" '' | tr ' ' "'")
while IFS= read -r value; do
    script '
        velkctl set administrator "$1" && velkctl set location "$1" &&
        LC_ALL=C.UTF-8 velkctl get administrator &&
        head -n 2 /var/libvelk/libvelk && grep "^sys[cl]o" /usr/local/share/etc/snmp/snmpd.conf
        ls /tmp | grep -i canary' "$value"
    error_is ''
    output_is "$value
ADMINISTRATOR=$value
LOCATION=$value
syscontact $value
syslocation $value"
done <<END
O'Neil & Co/IT
\$(touch /tmp/canary) \`touch /tmp/canary\`
'; touch /tmp/canary; echo '
a"b'c"d'e
back\\slash \\\\ \\n \\1 \\& \\/
s/x/y/e;w /tmp/canary
/e
&&&///"""
| touch /tmp/canary > /tmp/canary # no
*.[]^\$ äöü 100%
$quotes
END

it 'shows an empty text, and gives the SNMP daemon a pair of quotes'
script "velkctl set location '' && velkctl get location &&
    grep LOCATION /var/libvelk/libvelk && grep syslocation /usr/local/share/etc/snmp/snmpd.conf"
status_is 0
error_is ''
output_is "''
LOCATION=
syslocation \"\""

it 'leaves the rest of both files alone'
script 'grep -v "^syscontact" /usr/local/share/etc/snmp/snmpd.conf >/tmp/before
    velkctl set administrator Alice
    grep -v "^syscontact" /usr/local/share/etc/snmp/snmpd.conf | diff /tmp/before - && cat /var/libvelk/libvelk'
status_is 0
error_is ''
output_is 'ADMINISTRATOR=Alice
LOCATION=Second floor, by the window'

it 'refuses a text that is too long, or of two lines'
script 'velkctl set administrator "$1"' "$(printf '%512s' '')"
status_is 2
error_is 'velkctl: administrator: 512 bytes given; give a text of at most 511 bytes'
script 'velkctl set administrator "two
lines"; status=$?; cat /var/libvelk/libvelk; exit $status'
status_is 2
error_is 'velkctl: administrator: control characters, such as the end of a line, are not taken
  fix: give a text of at most 511 bytes'
output_is 'ADMINISTRATOR=Robin
LOCATION=Second floor, by the window'

it 'refuses a text at which a set of the other one would cut the SNMP daemon'"'"'s line'
script '
    velkctl set administrator "ask for syslocation at the desk"; echo $?
    velkctl set location "by the syscontact"; echo $?
    velkctl set --force administrator "ask for syslocation at the desk"; echo $?
    velkctl set location "Room 5"; echo $?
    grep "^sys[cl]o" /usr/local/share/etc/snmp/snmpd.conf; velkctl doctor | grep -A 2 "problem: administrator is"
    velkctl set administrator Alice && velkctl set location "Room 5"; echo $?
    grep "^sys[cl]o" /usr/local/share/etc/snmp/snmpd.conf'
output_is "2
2
0
2
syscontact ask for syslocation at the desk
syslocation Second floor, by the window
problem: administrator is cut for the SNMP agent when location is set
  /var/libvelk/libvelk: the text contains 'syslocation'
  a set of location replaces the line from there on
0
syscontact Alice
syslocation Room 5"
error_is "velkctl: administrator: the text contains 'syslocation'
  a set of location replaces the line from there on
  its file is /usr/local/share/etc/snmp/snmpd.conf
  fix: give other words, or --force
velkctl: location: the text contains 'syscontact'
  a set of administrator replaces the line from there on
  its file is /usr/local/share/etc/snmp/snmpd.conf
  fix: give other words, or --force
velkctl: location: the present administrator contains 'syslocation'
  this set would replace the line from there on
  its file is /usr/local/share/etc/snmp/snmpd.conf
  fix: give --force, or first velkctl set administrator TEXT without that word"

# ---- time -------------------------------------------------------------------------------------
it 'switches time synchronisation off and on, and forgets the old result with it'
script '
    echo "21 Nov 05:31:07 ntpdate[145]: adjust time server 192.168.0.1 offset +0.000080 sec" >/var/libvelk/ntp.log
    velkctl get ntp ntp-result && velkctl set ntp off && velkctl get ntp ntp-result
    grep ntpdate /var/cron/tabs/root && velkctl set ntp on && velkctl get ntp && grep ntpdate /var/cron/tabs/root'
status_is 0
error_is ''
output_is 'ntp         on
ntp-result  reached
ntp         off
ntp-result  no-result
#0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log
on
0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log'

it 'says when no server was reached'
script 'echo "21 Nov 05:31:05 ntpdate[127]: no server suitable for synchronization found" >/var/libvelk/ntp.log
    velkctl get ntp-result'
output_is 'not-reached'

it 'changes the time server, and removes it'
script 'velkctl set ntp-server time.example && velkctl get ntp-server && grep ntpdate /var/cron/tabs/root
    velkctl set ntp-server none && velkctl get ntp-server && velkctl set ntp-server 10.0.0.1 &&
    grep ntpdate /var/cron/tabs/root'
status_is 0
error_is ''
output_is 'time.example
0 * * * * /usr/bin/ntpdate -u time.example > /var/libvelk/ntp.log
none
0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log'

it 'refuses a name with characters for the shell of cron'
for value in 'a b' '-q' '$(reboot)' 'x;reboot' 'x>y' '' '*' 'x%y'; do
    script 'velkctl set ntp-server "$1"; status=$?; cat /var/cron/tabs/root | grep -c "192.168.0.1 >"; exit $status' "$value"
    status_is 2
    output_is 1
done

it 'refuses a time server with a text that is a part of the command that cron runs'
for value in ntp usr bin u d ntpdate; do
    script 'velkctl set ntp-server "$1"; status=$?; grep -c "/usr/bin/ntpdate -u 192.168.0.1 >" /var/cron/tabs/root
        ls /var/tmp; exit $status' "$value"
    status_is 2
    output_is 1
    error_is "velkctl: ntp-server: '$value' also occurs earlier in /var/cron/tabs/root:1
  the next set would replace it there, in the command that cron runs
  fix: give the server's address or another name, or --force"
done

it 'sends a server that is a part of the command when forced, then refuses every other, and the doctor reports it'
script 'velkctl set --force ntp-server ntp && velkctl set ntp-server python3; echo $?
    velkctl set ntp-server none; echo $?
    grep ntpdate /var/cron/tabs/root; velkctl doctor | grep -A 3 "problem: ntp"'
output_is "2
2
0 * * * * /usr/bin/ntpdate -u ntp > /var/libvelk/ntp.log
problem: ntp-server cannot be set
  /var/cron/tabs/root:1: 'ntp' also occurs earlier on the line
  a set replaces it there
  fix: with an editor, write the server's address or another name in its place"
present="velkctl: ntp-server: the present server 'ntp' also occurs earlier in /var/cron/tabs/root:1
  this set would replace it there, in the command that cron runs
  fix: write another server into that line with an editor, or give --force"
error_is "$present
$present"

it 'says that a crontab without an entry takes no server, and why'
script 'sed -i /ntpdate/d /var/cron/tabs/root; velkctl set ntp-server time.example'
status_is 6
error_is "velkctl: ntp-server: the library reported success, but the device holds 'none'
  likely cause: /var/cron/tabs/root: no entry runs ntpdate
  fix: write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log"

it 'says that an entry without server or redirection cannot be changed, and leaves the crontab'
script 'echo "0 * * * * /usr/bin/ntpdate -u" >/var/cron/tabs/root
    velkctl set ntp-server time.example; status=$?; cat /var/cron/tabs/root; exit $status'
status_is 1
error_is "velkctl: ntp-server: could not be set
  likely cause: /var/cron/tabs/root:1: the entry has no server
  it has no '>' before which to put one
  fix: write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log
  result: LIB_VELK_FAILURE (-1)"
output_is '0 * * * * /usr/bin/ntpdate -u'

# ---- DHCP options -----------------------------------------------------------------------------
it 'asks DHCP for time servers or not, and the exit hooks follow'
script 'velkctl get dhcp-ntp && velkctl set dhcp-ntp on && velkctl get dhcp-ntp &&
    grep -c ntp-servers /etc/dhclient.conf && velkctl set dhcp-ntp off && velkctl get dhcp-ntp
    grep -c ntp-servers /etc/dhclient.conf; grep -c "^#.*ntpdate" /etc/dhclient-exit-hooks
    sh -n /etc/dhclient-exit-hooks'
status_is 0
error_is ''
output_is 'off
on
2
off
0
2'

it 'asks DHCP for DNS servers of the adapter or not, and the script follows'
script 'velkctl get eth1.dhcp-dns && velkctl set eth1.dhcp-dns off && velkctl get eth1.dhcp-dns
    grep -c domain-name-servers /etc/dhclient.conf; grep -n "#.*make_resolv_conf$" /sbin/dhclient-script
    sh -n /sbin/dhclient-script && velkctl set eth1.dhcp-dns on && velkctl get eth1.dhcp-dns'
status_is 0
error_is ''
output_is 'on
off
1
26:#		make_resolv_conf
on'

it 'reports an interface without requests, its block being switched off'
script 'velkctl set eth0.dhcp-dns on'
status_is 6
error_is "velkctl: eth0.dhcp-dns: the library reported success, but the device holds 'off'
  likely cause: /etc/dhclient.conf:7: the block of the interface is switched off
  no other request statement applies
  fix: if DHCP is wanted: velkctl set eth0.method dhcp"

# ---- web update -------------------------------------------------------------------------------
it 'shows when the web contents are updated'
on_device velkctl get web-update
output_is 'weekly sunday 01:30'

# Asks the cron of the distribution, which lays its own copy below /var/spool, whether it takes the
# device's crontab. Only root can: cron gives the copy to a group, and the device of an ordinary user
# has none but the user's.
cron_takes='cron_takes() { true; }'
[ "$(id -u)" != 0 ] || cron_takes='mountpoint -q /var/spool/cron || mount -t tmpfs tmpfs /var/spool/cron
cron_takes() { crontab -n /var/cron/tabs/root >/tmp/said 2>&1; }'

it 'writes every schedule as cron takes it, and reads it back'
schedules='every 1h
every 23h
daily 00:00
daily 23:59
weekly sunday 08:30
weekly saturday 08:30
monthly 1 08:30
monthly 28 08:30
monthly 29 08:30
monthly 30 08:30
monthly 31 08:30
off'
script "$cron_takes"'
    echo "$1" | while read -r schedule; do
        velkctl set web-update $schedule && velkctl get web-update
        cron_takes || { echo "refused:"; cat /tmp/said /var/cron/tabs/root; }
    done' "$schedules"
status_is 0
error_is ''
output_is "$schedules"

it 'writes lines that cron would not take, when forced'
script 'velkctl call set 11 "" --hex 01:00:30:3a:30 && grep updater /var/cron/tabs/root'
status_is 0
output_has '00 */0 * * * perl /usr/bin/web_contents_updater.pl'
if [ "$(id -u)" = 0 ]; then
    script "$cron_takes"'
        velkctl call set 11 "" --hex 01:00:30:3a:30 && ! cron_takes && cat /tmp/said'
    status_is 0
    output_has 'errors in crontab file'
fi

it 'adds a second line for months that are too short'
script 'velkctl set web-update monthly 31 1:30 && grep updater /var/cron/tabs/root'
output_is '30 01 31 1,8 * perl /usr/bin/web_contents_updater.pl
30 01 1,31 3,5,7,10,12 * perl /usr/bin/web_contents_updater.pl'

it 'keeps the other lines of the crontab'
script 'velkctl set web-update daily 4:05 && velkctl set web-update off && cat /var/cron/tabs/root'
output_is '0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log
15 3 * * * /usr/sbin/logrotate /etc/logrotate.conf'

it 'refuses an unknown schedule'
for words in 'daily' 'daily 24:00' 'daily 12:3a' 'daily 1:5' 'every 0h' 'every 24h' 'every 6' 'weekly 08:30' \
    'monthly 0 08:30' 'monthly 32 08:30' 'monthly 08:30' 'nonsense' 'off now'; do
    script 'before=$(cat /var/cron/tabs/root); velkctl set web-update $1; status=$?
        [ "$before" = "$(cat /var/cron/tabs/root)" ] && ls /var/tmp; exit $status' "$words"
    status_is 2
    output_is ''
    error_is "velkctl: web-update: '$words' is not a schedule
  fix: give every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off"
done
for words in 'weekly Sunday 08:30' 'Daily 08:30'; do
    script 'before=$(cat /var/cron/tabs/root); velkctl set web-update $1; status=$?
        [ "$before" = "$(cat /var/cron/tabs/root)" ] && ls /var/tmp; exit $status' "$words"
    status_is 2
    output_is ''
    error=${error//$'\n  fix: '/; }
    error_has "velkctl: web-update: '$words' is not a schedule; did you mean "
done

it 'keeps inode, owner and mode of every file it edits'
script 'files="/etc/dhclient.conf /etc/dhclient-exit-hooks /sbin/dhclient-script /var/cron/tabs/root /var/libvelk/libvelk"
    facts() { stat -c "%n %i %u:%g %a" $files; }
    chmod 640 /var/cron/tabs/root; before=$(facts)
    velkctl set dhcp-ntp on; velkctl set eth1.dhcp-dns off; velkctl set ntp off; velkctl set ntp-server x
    velkctl set web-update every 2h; velkctl set location here
    [ "$before" = "$(facts)" ] && echo kept; ls /var/tmp'
status_is 0
output_is 'kept
vklib_lock'

finish
