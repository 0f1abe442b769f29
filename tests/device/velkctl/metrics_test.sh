# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# metrics_test.sh - the numbers for a monitoring agent: their format, their values, and the file with them.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox

# Prints the samples of a text in the Prometheus format, one a line, or its first error. Stricter than the
# agent: help and type come before the samples, no metric comes twice, and no sample has a time.
PARSER='
import re, sys
text = sys.stdin.read()
assert text.endswith("\n"), "no newline at the end"
label = r"[a-z_]+=\"(?:[^\"\\\n]|\\[\\\"n])*\""
sample = re.compile(r"(velk_[a-z_]+)(\{" + label + "(?:," + label + r")*\})? (-?[0-9]+)")
metrics, samples, lines = set(), set(), iter(text.splitlines())
for line in lines:
    match = re.fullmatch(r"# HELP (velk_[a-z_]+) .+\.", line)
    if match:
        name = match.group(1)
        assert name not in metrics, "twice: " + name
        metrics.add(name)
        assert next(lines) == "# TYPE " + name + " gauge", "no type: " + name
        continue
    match = sample.fullmatch(line)
    assert match and match.group(1) == name, "no sample: " + line
    assert line.rpartition(" ")[0] not in samples, "twice: " + line
    samples.add(line.rpartition(" ")[0])
    print(line)
'

it 'prints the numbers of a healthy device'
make_healthy_rootfs
run velk-sandbox --quiet --rootfs "$healthy" -- velkctl metrics
status_is 0
error_is ''
metrics=$output
check 'some numbers' 'velk_device 1
velk_doctor_problems 0
velk_doctor_warnings 0
velk_status_differs{part="eth0.address"} 0
velk_status_on{part="eth0.link"} 1
velk_status_on{part="eth1.adapter"} 1
velk_status_on{part="lock"} 0
velk_address_info{interface="eth0",configured="192.168.0.10",running="192.168.0.10"} 1
velk_change_waiting 0' "$(printf '%s\n' "$metrics" | python3 -c "$PARSER" |
    grep -E '^velk_(device|doctor|address.*eth0|change)|eth0.address|eth0.link|adapter|lock')"

it 'prints the problems of a device, with status 0'
run velk-sandbox --quiet --rootfs "$healthy" -- sh -c '
    sed -i /ntpdate/d /var/cron/tabs/root
    sed -i s/192.168.0.10/192.168.0.77/ /etc/network/interfaces
    velkctl apply eth0.dns=10.0.0.1 --confirm-within 300 --quiet
    flock /var/tmp/vklib_lock sleep 60 & while flock -n /var/tmp/vklib_lock true; do sleep 0.1; done
    velkctl metrics'
status_is 0
check 'the numbers that are other' 'velk_doctor_problems 1
velk_doctor_finding{severity="problem",subject="ntp and ntp-server",effect="cannot be set"} 1
velk_doctor_finding{severity="warning",subject="settings",effect="cannot be changed now"} 1
velk_status_differs{part="eth0.address"} 1
velk_status_on{part="lock"} 1
velk_address_info{interface="eth0",configured="192.168.0.77",running="192.168.0.10"} 1
velk_change_waiting 1' "$(printf '%s\n' "$output" | python3 -c "$PARSER" |
    grep -E 'problem|eth0.address|lock"|eth0",conf|change')"

it 'prints a text that the agent takes'
if command -v promtool >/dev/null; then
    for text in "$metrics" "$output"; do
        run promtool check metrics <<<"$text"
        status_is 0
        output_is ''
    done
fi

it 'writes a file that other users can read, and no other file'
on_device sh -c 'umask 077; mkdir /tmp/m && echo old >/tmp/m/velk.prom && chmod 600 /tmp/m/velk.prom
    velkctl metrics --output /tmp/m/velk.prom; echo "$?"; stat -c "%n %a" /tmp/m/*; grep -c "^velk_device 1" /tmp/m/velk.prom'
output_is '0
/tmp/m/velk.prom 644
1'

it 'leaves the old file if there is no room for the new one'
on_device sh -c 'mkdir /tmp/m && mount -t tmpfs -o size=8k m /tmp/m && echo old >/tmp/m/velk.prom
    head -c 4k /dev/zero >/tmp/m/full; velkctl metrics --output /tmp/m/velk.prom; echo "$?"; ls /tmp/m; cat /tmp/m/velk.prom'
output_is '1
full
velk.prom
old'
error_is 'velkctl: /tmp/m/velk.prom: could not be written
  No space left on device
  fix: give a FILE in a folder that this user may write'

if [ "$(id -u)" = 0 ]; then
    it 'prints nothing about the journal to a user who may not read it'
    on_device sh -c "mkdir -m 755 /run/programs
        install -m 755 -t /run/programs $VELK_BUILD/velkctl $VELK_BUILD/libvelk.so.1"'
        velkctl set eth0.dns 10.0.0.1 --quiet
        velkctl metrics | grep -c velk_change_waiting
        setpriv --reuid 65534 --regid 65534 --clear-groups env LD_LIBRARY_PATH=/run/programs \
            /run/programs/velkctl metrics >/tmp/metrics
        echo "$?"; grep -c velk_device /tmp/metrics; grep -c velk_change_waiting /tmp/metrics'
    output_is '3
0
3
0'
fi

it 'refuses a name that is no file'
on_device velkctl metrics --output /dev/null
status_is 2
error_is "velkctl: metrics: '/dev/null' is no file; give the name of a file"

finish
