# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# user_test.sh - the settings page as its own user velk-web, on a device with the real sudo, the rules of
# packaging/sudoers.d/velk-web and the init script.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit

packaging=$VELK_SOURCE/packaging
install -m 440 "$packaging/sudoers.d/velk-web" /etc/sudoers.d/velk-web
echo 'Defaults logfile=/tmp/sudo.log, loglinelen=0' >/etc/sudoers.d/log
install -m 755 "$VELK_BUILD/velkctl" "$VELK_BUILD/libvelk.so.1" /usr/bin
install -m 755 "$VELK_BUILD/velk-web" /usr/sbin
mkdir -p /usr/share/velk-web
cp -R "$VELK_BUILD/web-page/." /usr/share/velk-web
rm /usr/share/velk-web/page/cgi-bin/velk
ln -s ../../../../sbin/velk-web /usr/share/velk-web/page/cgi-bin/velk
chmod -R a+rX /usr/share/velk-web
echo 'velk-web:x:64998:64998::/nonexistent:/usr/sbin/nologin' >>/etc/passwd
echo 'velk-web:x:64998:' >>/etc/group
# As adduser makes it: sudo asks PAM about the account.
echo 'velk-web:!:20000::::::' >>/etc/shadow
echo 'PORT=192.168.0.10:8080' >/etc/default/velk-web
as_page() { run setpriv --reuid velk-web --regid velk-web --init-groups "$@"; }

it 'sets a password, which the group of the server can read'
run sh -c 'echo correct horse | /usr/sbin/velk-web --set-password admin'
status_is 0
check 'the file of the users' '640 root velk-web' "$(stat -c '%a %U %G' /etc/velk/web-users)"

it 'starts with the init script, as its own user'
velkctl apply eth0.method=static eth0.address=192.168.0.10/24 --restart=eth0 >/dev/null
run sh "$packaging/init.d/velk-web" start
status_is 0
run sh "$packaging/init.d/velk-web" status
status_is 0
server=$(cat /run/velk-web.pid)
wait_until sh -c 'ss -ltn | grep -q 192.168.0.10:8080'
check 'user of the server' velk-web "$(ps -o user:20= -p "$server")"
check 'its folder' '700 velk-web velk-web' "$(stat -c '%a %U %G' /run/velk-web)"

it 'reads, changes, confirms and takes back through sudo'
run python3 "$VELK_SOURCE/tests/web/server/user_browser.py"
error_is ''
output_is "eth0
list 200 list []
show 200 show []
status 200 status []
doctor 200 doctor []
pending 200 pending []
history 200 history []
describe 200 describe []
check eth0.gateway
waiting True
confirmed
waiting
reverted
0
location"

it 'ran nothing else through sudo, and sudo refused nothing'
check 'refused' '' "$(grep 'velk-web : ' /tmp/sudo.log | grep -v ' : velk-web : PWD=')"
check 'programs' /usr/bin/velkctl \
    "$(sed -n 's/.* : velk-web : .* COMMAND=\([^ ]*\).*/\1/p' /tmp/sudo.log | sort -u)"

it 'gives the user velk-web no other run of velkctl and no file of the device'
while read -r words; do
    # shellcheck disable=SC2086 # words
    as_page sudo -n $words
    check "$words" 'refused' "$([ "$status" != 0 ] && grep -q 'password is required\|not allowed' <<<"$error" && echo refused)"
done <<'END'
/usr/bin/velkctl set location x --json
/usr/bin/velkctl get eth1.psk --show-secrets --json
/usr/bin/velkctl show --show-secrets --timeout=20 --json
/usr/bin/velkctl export --include-secrets --json
/usr/bin/velkctl capture - --json
/usr/bin/velkctl apply - --confirm-if=id --json
/usr/bin/velkctl apply - --restart=auto --confirm-if=id --json
/usr/bin/velkctl apply /etc/shadow --restart=auto --json
/usr/bin/velkctl call set 104 eth0 --hex=00 --json
/usr/bin/velkctl undo --force --json
/usr/bin/velkctl revert abcd --wait=9 --json
/usr/bin/velkctl restart eth0 eth1 --json
/usr/bin/velkctl recover --force --json
/tmp/velkctl list --json
/bin/sh
END
for file in /etc/network/interfaces /etc/velk/web-users /var/libvelk/libvelk /usr/share/velk-web/page/index.html; do
    as_page test -w "$file"
    check "$file" 1 "$status"
done
as_page ls /var/libvelk/journal
check 'the journal' 2 "$status"

it 'gives new files a mode that the user does not choose'
echo '{"schema": 1, "settings": {"eth0.dns": ["192.168.0.2"]}}' >/tmp/change
rm -f /etc/resolv.dnsmasq.conf
as_page sh -c 'umask 777; sudo -n /usr/bin/velkctl apply - --restart=never --json </tmp/change'
status_is 0
check 'mode' 644 "$(stat -c %a /etc/resolv.dnsmasq.conf)"

it 'keeps a run folder of another user closed'
kill "$server"
rm -rf /run/velk-web
install -d -m 755 -o nobody /run/velk-web
run env GATEWAY_INTERFACE=CGI/1.1 REQUEST_METHOD=GET PATH_INFO=/session /usr/sbin/velk-web
output_has 'Status: 500'
output_has 'the folder of the sessions cannot be used'

it 'stops with the init script'
run sh "$packaging/init.d/velk-web" start
run sh "$packaging/init.d/velk-web" stop
status_is 0
run sh "$packaging/init.d/velk-web" status
status_is 1
finish
