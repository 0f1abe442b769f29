# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# cron_test.sh - the crontab, run by the real cron in accelerated time.
# shellcheck shell=bash
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit
command -v faketime >/dev/null || skip 'faketime, which accelerates time, is not installed'

# Replaces the device's cron by one with minutes of one second. Its jobs see the real time.
kill "$(cat /run/crond.pid)"
cron_at() { # cron_at 'DATE TIME'
    faketime -f "@$1 x60" cron -f 2>/dev/null &
    cron=$!
}
end_cron() {
    pkill -P "$cron"
    kill "$cron" 2>/dev/null
    wait "$cron" 2>/dev/null
}
updates() { grep -c updated /var/log/web_contents_updater.log; }
has_updated() { [ -e /var/log/web_contents_updater.log ]; }

it 'sets the time every hour, from the server that is set'
run velkctl set ntp-server time.example
status_is 0
run crontab -l
output_has 'ntpdate -u time.example'
rm -f /var/libvelk/ntp.log
cron_at '2026-01-04 00:58:40'
soon grep 'adjust time server time.example' /var/libvelk/ntp.log
end_cron
run velkctl get ntp-result
output_is reached

it 'does not set the time while that is disabled'
run velkctl set ntp off
status_is 0
run velkctl set web-update every 1h
status_is 0
cron_at '2026-01-04 00:58:40'
soon has_updated
check 'ntp.log' absent "$([ -e /var/libvelk/ntp.log ] && echo present || echo absent)"
end_cron

it 'sets the time again when enabled, and reports that the server cannot be reached'
run velkctl set ntp on
status_is 0
velk-sandbox router out
cron_at '2026-01-04 00:58:40'
soon grep 'no server suitable' /var/libvelk/ntp.log
end_cron
velk-sandbox router in
run velkctl get ntp-result
output_is not-reached

# The time on each line is about a minute before the update.
it 'updates the web contents by each kind of schedule'
while IFS='|' read -r schedule moment; do
    rm -f /var/log/web_contents_updater.log
    # shellcheck disable=SC2086  # a schedule is words
    run velkctl set web-update $schedule
    status_is 0
    run crontab -n /var/cron/tabs/root
    status_is 0
    cron_at "$moment"
    soon has_updated
    end_cron
    check "updates by '$schedule'" 1 "$(updates)"
done <<END
every 2h|2026-01-04 03:58:40
daily 08:30|2026-01-05 08:28:40
weekly sunday 08:30|2026-01-04 08:28:40
monthly 31 08:30|2026-01-31 08:28:40
monthly 31 08:30|2026-03-01 08:28:40
END

it 'does not update on other days'
velkctl set web-update weekly sunday 08:30
rm -f /var/log/web_contents_updater.log
cron_at '2026-01-05 08:28:40'
sleep 4
check 'updates' none "$(has_updated && echo some || echo none)"
end_cron

finish
