# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# time_limits_test.sh - velkctl while the device is busy, slow, or its user in a hurry.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
# shellcheck source=tests/device/velkctl/stuck_log.sh
. "$VELK_SOURCE/tests/device/velkctl/stuck_log.sh" || exit

needs_sandbox
command -v python3 >/dev/null || skip 'no python3 here, for signals and terminals'

# The shell functions of the scripts on the device.
words='
    # Another program that changes settings; $holder is its number.
    hold_lock() { # SECONDS
        flock /var/tmp/vklib_lock sleep "$1" &
        holder=$!
        while flock --nonblock /var/tmp/vklib_lock true; do sleep 0.01; done
    }
    # Replaces the daemon of the device by one with this reply mode. Pulls the cable, because wireless
    # queries are refused while it is in.
    reply() { # MODE OPTION...
        own=$(cat /run/velk-sandbox/wland.pid) && velk-sandbox cable out && kill $own
        while kill -0 $own 2>/dev/null; do sleep 0.01; done
        wland --background --reply "$@"
    }
    # Lists the files that a query, a tool or an edit left, if any; the lock always stays.
    left() {
        for path in /tmp/WlanAplFromWlanSock /dev/shm/sem.WlanAplRecvSem /var/tmp/*; do
            case $path in
                */vklib_lock | */\*) ;;
                *) [ ! -e "$path" ] || echo "left: $path" ;;
            esac
        done
        flock --nonblock /var/tmp/vklib_lock true || echo "left: the lock"
    }
    # Says whether a time, in seconds, has passed since the start of the script.
    began=$(date +%s%N)
    took() { # AT-LEAST AT-MOST
        passed=$((($(date +%s%N) - began) / 1000000))
        [ $passed -ge "${1}000" ] && [ $passed -le "${2}000" ] && echo "in time" || echo "$passed ms"
    }
    asked=/tmp/WlanAplFromWlanSock # is there while the daemon is asked
    interrupted_by() { python3 -c "$INTERRUPT" "$@"; }
    at_terminal() { TERM=linux NO_COLOR=1 python3 -c "$TERMINAL" "$@"; }
'

# Runs a command, sends it a signal after a time, counted from when it blocks signals if there is a
# plus, or once a file is there, and says how it ended. It waits at most a minute for the moment, and
# not at all for a command that has ended.
export INTERRUPT='
import os, signal, subprocess, sys, time

def blocked(process):
    with open(f"/proc/{process}/status") as status:
        return next(int(line.split()[1], 16) for line in status if line.startswith("SigBlk"))

def wait_until(has_come):
    tries = 2000  # of 10 ms or more
    # An ended command keeps its number in /proc until poll() has seen it.
    while program.poll() is None and not has_come():
        tries -= 1
        if tries == 0:
            print("no moment for the signal")
            break
        time.sleep(0.01)

name, moment, *command = sys.argv[1:]
program = subprocess.Popen(command)
if moment.startswith("/"):
    wait_until(lambda: os.path.exists(moment))
else:
    if moment.startswith("+"):
        wait_until(lambda: blocked(program.pid) != 0)
    time.sleep(float(moment))
program.send_signal(getattr(signal, name))
status = program.wait()
sys.stdout.flush()
print("ended by", signal.Signals(-status).name if status < 0 else status)
'

# Runs a command with errors, input and Ctrl-C at a terminal of its own, and shows its output
# there. Ctrl-C is typed once it has written a certain text, if any.
export TERMINAL='
import os, pty, sys
ctrl_c, *command = sys.argv[1:]
process, terminal = pty.fork()
if process == 0:
    os.execvp(command[0], command)
shown = b""
while True:
    try:
        shown += os.read(terminal, 1000)
    except OSError:
        break
    if ctrl_c != "-" and ctrl_c.encode() in shown:
        os.write(terminal, b"\x03")
        ctrl_c = "-"
status = os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])
print(repr(shown.decode()), status)
'

# Runs a script on a device.
on_desk() {
    on_device sh -c "$stand_in_word$stuck_log_word$words$1"
    lib_command=$1
}

# The words that name a process, without its number.
anonymous() { printf '%s\n' "$1" | sed -E 's/process [0-9]+/process N/; s/[0-9]+ (seconds?|minutes?) old/M seconds old/'; }

# ---- the lock ---------------------------------------------------------------------------------

it 'says at once who holds the lock'
on_desk 'hold_lock 100; velkctl set eth0.dns 10.0.0.1; status=$?; took 0 60; echo $holder; exit $status'
status_is 3
has 'standard output' 'in time' "$output"
has 'standard error' "process ${output##*
} (flock, " "$error"
check 'standard error' 'velkctl: eth0.dns: could not be set
  another program is changing settings
  process N (flock, M seconds old) holds the lock
  fix: try again, or let --wait=SECONDS try again
  result: LIB_VELK_LOCKED (-3)' \
    "$(anonymous "$error")"

it 'waits until the lock is free'
on_desk 'hold_lock 2; velkctl set eth0.dns 10.0.0.1 --wait; status=$?; took 1 20
    velkctl get eth0.dns; exit $status'
status_is 0
output_is 'in time
10.0.0.1'
check 'standard error' 'velkctl: note: waiting at most 30 s for the lock, held by process N (flock, M seconds old)' \
    "$(anonymous "$error")"

it 'waits no longer than --wait'
on_desk 'hold_lock 100; velkctl restart eth0 --wait=1; status=$?; took 1 60; exit $status'
status_is 3
output_is 'in time'
check 'standard error' 'velkctl: note: waiting at most 1 s for the lock, held by process N (flock, M seconds old)
velkctl: eth0: could not be restarted
  another program is changing settings
  process N (flock, M seconds old) still holds the lock after 1 s
  fix: try again, or let --wait=SECONDS try again
  result: LIB_VELK_LOCKED (-3)' \
    "$(anonymous "$error")"

it 'notes the waiting within the document'
on_desk 'hold_lock 100; velkctl call set 108 eth0 --text 10.0.0.1 --wait=1 --json >/tmp/answer
    status=$?; python3 -c "
import json
answer = json.load(open(\"/tmp/answer\"))
print(len(answer[\"notes\"]), answer[\"notes\"][0][:47], answer[\"result\"][\"code\"])"; exit $status'
status_is 3
error_is ''
output_is '1 waiting at most 1 s for the lock, held by proce -3'

it 'stops waiting for the lock at a signal'
on_desk 'hold_lock 100; interrupted_by SIGINT 0.5 velkctl set eth0.dns 10.0.0.1 --wait; took 0 25'
output_is 'ended by SIGINT
in time'

it 'finishes its document when a signal ends its waiting for the lock'
on_desk 'hold_lock 100; interrupted_by SIGTERM +0.5 velkctl set eth0.dns 10.0.0.1 --wait --json >/tmp/answer
    tail -n 1 /tmp/answer; head -n -1 /tmp/answer | python3 -c "
import json, sys
answer = json.load(sys.stdin)
print(answer[\"status\"], answer[\"errors\"][0][\"message\"])"'
error_is ''
output_is 'ended by SIGTERM
143 interrupted'

it 'reads settings while the lock is held'
on_desk 'hold_lock 100; velkctl get eth0.method'
status_is 0
error_is ''
output_is static

# ---- timeout ----------------------------------------------------------------------------------

it 'stops a query without an answer at the timeout'
on_desk 'reply silent; velkctl get eth1.ssid --timeout 1; status=$?; took 1 40; left; exit $status'
status_is 7
output_is 'in time'
error_is 'velkctl: eth1.ssid: could not be read
  no answer after 1 s; waited for the wireless daemon to answer
  fix: run it again with a longer --timeout'

it 'stops a query at the timeout while the daemon is suspended'
on_desk 'velk-sandbox cable out; daemon=$(cat /run/velk-sandbox/wland.pid); kill -STOP $daemon
    velkctl get eth1.signal --timeout 1; status=$?; left; kill -CONT $daemon; exit $status'
status_is 7
output_is ''
error_is 'velkctl: eth1.signal: could not be read
  no answer after 1 s
  waited for ethtool to report the link state, then the wireless daemon to answer
  fix: run it again with a longer --timeout'

it 'says that a change that was stopped may be incomplete'
on_desk 'reply silent; velkctl set eth1.ssid x --timeout 1; status=$?; left; exit $status'
status_is 7
output_is ''
error_is 'velkctl: eth1.ssid: could not be set
  no answer after 1 s
  waited for the wireless daemon to answer; eth1.ssid may be incomplete
  fix: run it again with a longer --timeout'

it 'asks again after a timeout'
on_desk 'reply silent; velkctl get eth1.ssid --timeout 1 2>/dev/null; wland --tell normal
    velkctl get eth1.ssid --timeout 30'
status_is 0
error_is ''
output_is velk-lab

it 'ends a tool that hangs'
on_desk 'mkdir /tmp/tools
    printf "#!/bin/sh\ntouch /tmp/began\nsleep 600\necho went on >/tmp/note\n" >/tmp/tools/sudo
    chmod +x /tmp/tools/sudo; stand_in sudo /tmp/tools/sudo
    velkctl get eth0.link-speed --timeout 1; status=$?; took 1 40; left
    ls /tmp/began /tmp/note 2>&1; pgrep -a sleep; exit $status'
status_is 7
error_is "velkctl: eth0.link-speed: could not be read
  no answer after 1 s; waited for /bin/sh /usr/bin/sudo ethtool eth0
  fix: run it again with a longer --timeout"
output_is "in time
ls: cannot access '/tmp/note': No such file or directory
/tmp/began"

it 'stops no command that is in time'
on_desk 'velkctl set eth0.dns 10.0.0.1 --timeout 20 && velkctl get eth0.dns --timeout 20
    velkctl set eth0.dns 10.0.0.300 --timeout 20; echo $?'
output_is '10.0.0.1
2'

it 'refuses a time that is not valid'
on_desk 'velkctl get eth0.dns --timeout soon'
status_is 2
error_is "velkctl: --timeout: 'soon' is not a time; give whole seconds, 1 to 86400"

it 'shows the rest of the settings when the daemon is silent'
on_desk 'reply silent; velkctl show eth1 --timeout 1 >/tmp/shown; status=$?; took 1 60
    grep -c "daemon does not answer" /tmp/shown; grep -E "(method|no answer)" /tmp/shown | tr -s " "
    left; exit $status'
status_is 0
error_is ''
has 'standard output' 'in time' "$output"
has 'standard output' 'eth1.method dhcp' "$output"
has 'standard output' '(no answer after 1 s)' "$output"

# ---- signals ----------------------------------------------------------------------------------

it 'leaves no files if a signal ends it during a query'
for signal in SIGINT SIGTERM SIGHUP SIGQUIT; do
    on_desk "reply silent; interrupted_by $signal \$asked velkctl get eth1.ssid; took 0 40; left"
    output_is "ended by $signal
in time"
    error_is ''
done

it 'says that a change may be incomplete if a signal ends it'
for signal in SIGINT SIGTERM SIGHUP SIGQUIT; do
    on_desk "reply silent; interrupted_by $signal \$asked velkctl set eth1.ssid x --no-journal; left"
    output_is "ended by $signal"
    error_is 'velkctl: interrupted; eth1.ssid may be incomplete; run it again'
done

it 'says that a restart may be incomplete if a signal ends it'
on_desk 'mkdir /tmp/tools; : >/tmp/tools/real-sudo
    mount --bind "$(readlink -f "$(command -v sudo)")" /tmp/tools/real-sudo
    printf "%s\n" "#!/bin/sh" "/tmp/tools/real-sudo \"\$@\"" "[ \$1 != ifdown ] || : >/tmp/is-down" >/tmp/tools/sudo
    chmod +x /tmp/tools/sudo; stand_in sudo /tmp/tools/sudo
    interrupted_by SIGTERM /tmp/is-down velkctl restart eth0 2>/tmp/errors; grep velkctl: /tmp/errors; left'
output_is 'ended by SIGTERM
velkctl: interrupted; restart of eth0 may be incomplete; run it again'

it 'finishes its document when a signal ends it'
on_desk 'reply silent; interrupted_by SIGTERM $asked velkctl set eth1.ssid x --no-journal --json >/tmp/answer
    tail -n 1 /tmp/answer; head -n -1 /tmp/answer | python3 -c "
import json, sys
print(json.load(sys.stdin)[\"errors\"][0][\"message\"])"'
error_is ''
output_is 'ended by SIGTERM
interrupted; eth1.ssid may be incomplete; run it again'

it 'shows the settings it has read if a signal ends it'
on_desk 'reply silent; interrupted_by SIGTERM $asked velkctl get eth0.method eth1.ssid >/tmp/answer
    cat /tmp/answer'
output_is 'eth0.method  static
ended by SIGTERM'

it 'is ended by a signal while it waits for a file'
for signal in SIGINT SIGTERM SIGHUP SIGQUIT; do
    on_desk "rm /etc/network/interfaces; mkfifo /etc/network/interfaces
        interrupted_by $signal 0.3 velkctl get eth0.method
        interrupted_by $signal 0.3 velkctl get eth0.address
        interrupted_by $signal 0.3 velkctl set eth0.gateway 192.168.0.1; left; took 0 60"
    error_is ''
    output_is "ended by $signal
ended by $signal
ended by $signal
in time"
done

it 'stops waiting for a file at the timeout'
on_desk 'rm /etc/network/interfaces; mkfifo /etc/network/interfaces
    velkctl get eth0.method --timeout 1; echo $?
    velkctl get eth0.address --timeout 1; echo $?
    velkctl set eth0.gateway 192.168.0.1 --timeout 1; echo $?; left; took 0 60'
error_is 'velkctl: eth0.method: could not be read
  no answer after 1 s
  fix: run it again with a longer --timeout
velkctl: eth0.address: could not be read
  no answer after 1 s
  fix: run it again with a longer --timeout
velkctl: eth0.gateway: could not be set
  no answer after 1 s; eth0.gateway may be incomplete
  fix: run it again with a longer --timeout'
output_is '7
7
7
in time'

it 'stops a set at the timeout while the system log is stuck'
on_desk 'velkctl set ntp on; cp /var/cron/tabs/root /run/before
    with_stuck_log timeout -s KILL 60 velkctl set ntp off --timeout 2; status=$?; took 1 60; left
    cmp /var/cron/tabs/root /run/before; exit $status'
status_is 7
output_is 'in time'
error_is 'velkctl: ntp: could not be set
  no answer after 2 s; ntp may be incomplete
  fix: run it again with a longer --timeout'

it 'is ended by a signal while the system log is stuck'
for signal in SIGINT SIGTERM; do
    on_desk "velkctl set ntp on
        with_stuck_log timeout -s KILL 60 python3 -c \"\$INTERRUPT\" $signal +0.5 velkctl set ntp off; took 0 60; left"
    output_is "ended by $signal
in time"
    error_is 'velkctl: interrupted; ntp may be incomplete; run it again'
done

it 'interrupts no set that it has finished'
on_desk 'for pause in 0 .004 .008 .012 .016 .02 .025 .03 .035 .04 .05; do
        interrupted_by SIGINT $pause velkctl set eth0.address 192.168.0.77 >/dev/null 2>&1
        [ "$(velkctl get --value eth0.address)" = 192.168.0.10 ] || velkctl history | grep interrupted
        velkctl recover --quiet; velkctl set eth0.address 192.168.0.10 --quiet --no-journal
    done; left'
output_is ''
error_is ''

it 'shows no output of a tool that worked'
on_desk 'rm -f /var/libvelk/ntp.log
    velkctl set ntp off; echo $?; velkctl set ntp off --json >/tmp/answer
    python3 -c "import json; print(json.load(open(\"/tmp/answer\"))[\"notes\"])"'
error_is ''
output_is '0
[]'

it 'shows all output of tools with --verbose'
on_desk 'rm -f /var/libvelk/ntp.log
    velkctl set ntp off --verbose; echo $?; velkctl set ntp off --verbose --json >/tmp/answer
    python3 -c "import json; print(*json.load(open(\"/tmp/answer\"))[\"notes\"])"'
error_is "velkctl: ntp: rm: cannot remove '/var/libvelk/ntp.log': No such file or directory"
output_is "0
ntp: rm: cannot remove '/var/libvelk/ntp.log': No such file or directory"

it 'prints only values and problems with --quiet'
on_desk 'hold_lock 1; velkctl set eth0.dns 10.0.0.1 --wait --quiet; echo $?
    velkctl set eth0.dhcp-notice on --quiet; velkctl get eth0.dns --quiet
    velkctl set eth0.dns 10.0.0.300 --quiet'
error_is "velkctl: eth0.dns: '10.0.0.300' is not an IPv4 address
  fix: give one to three IPv4 addresses such as 192.168.0.1, or none"
output_is '0
10.0.0.1'

it 'refuses --quiet with --verbose'
run velkctl list --quiet --verbose
status_is 2
error_is 'velkctl: list: --quiet and --verbose exclude each other; give one of them'

it 'continues when the signal is ignored'
on_desk 'reply silent; (trap "" HUP INT
        exec python3 -c "$INTERRUPT" SIGHUP 0.5 velkctl get eth1.ssid --timeout 1); left'
output_is 'ended by 7'

# Ends changes at random moments: however far they came, the files are whole and nothing is left.
it 'leaves complete files only, whenever a signal ends it'
on_desk 'cp /etc/network/interfaces /tmp/static
    velkctl set eth0.method dhcp 2>/dev/null; cp /etc/network/interfaces /tmp/dhcp
    for signal in SIGINT SIGTERM; do
        for moment in 0 0.002 0.004 0.006 0.008 0.01 0.012 0.015 0.02 0.03; do
            for method in static dhcp; do
                interrupted_by $signal $moment velkctl set eth0.method $method >/dev/null 2>&1
                left
                cmp -s /etc/network/interfaces /tmp/static ||
                    cmp -s /etc/network/interfaces /tmp/dhcp || echo "half written at $moment"
            done
        done
    done
    for moment in 0 0.002 0.004 0.006 0.01; do
        interrupted_by SIGINT $moment velkctl get eth0.link-speed eth0.address >/dev/null 2>&1; left
        interrupted_by SIGINT $moment velkctl set location somewhere >/dev/null 2>&1; left
    done'
error_is ''
output_is ''

it 'ends its working process when it is killed'
on_desk 'reply silent; velkctl set eth1.ssid x & tool=$!
    until [ -e $asked ]; do sleep 0.01; done; pgrep -c velkctl
    kill -KILL $tool; while pgrep velkctl; do sleep 0.1; done >/dev/null; pgrep -c velkctl; flock --nonblock /var/tmp/vklib_lock echo free'
output_is '2
0
free'

it 'reports a library that was killed'
on_desk 'reply silent; velkctl get eth1.ssid & until [ -e $asked ]; do sleep 0.01; done
    kill -KILL $(pgrep -P $!); wait $!; status=$?; left; exit $status'
status_is 1
output_is ''
error_is "velkctl: note: eth1.ssid: the library ended without an answer, by signal 9 (Killed)
velkctl: eth1.ssid: could not be read
  fix: run 'velkctl doctor' to look for the cause
  result: LIB_VELK_FAILURE (-1)"

# ---- at a terminal ----------------------------------------------------------------------------

it 'shows a progress line at a terminal and removes it'
on_desk 'reply silent; at_terminal - velkctl get eth1.ssid --timeout 3'
status_is 0
output_has "'\\reth1.ssid: 1 s of at most 3 s, waiting for the wireless daemon to answer\\reth1.ssid: 2 s of at most 3 s, waiting for the wireless daemon to answer\\r  "
output_has " \\rvelkctl: eth1.ssid: could not be read\\r\\n  no answer after 3 s; waited for the wireless daemon to answer\\r\\n  fix: run it again with a longer --timeout\\r\\n' 7"

it 'removes the progress line before the answer'
on_desk 'reply late --delay 1.5; at_terminal - velkctl get eth1.ssid'
output_has "'\\reth1.ssid: 1 s of at most 60 s, waiting for the wireless daemon to answer\\r  "
output_has " \\rvelk-lab\\r\\n' 0"

it 'ends at once at Ctrl-C, and removes the progress line'
on_desk 'reply silent; at_terminal "1 s of" velkctl set eth1.ssid x --no-journal; took 1 40; left'
output_has "'\\reth1.ssid: 1 s of at most 60 s, waiting for the wireless daemon to answer"
output_has " \\rvelkctl: interrupted; eth1.ssid may be incomplete; run it again\\r\\n' -2"
output_has 'in time'

it 'shows no progress line in a document, a quick answer or a pipe'
on_desk 'reply silent; at_terminal - velkctl get eth1.ssid --timeout 2 --json | grep -c waiting
    at_terminal - velkctl get eth0.method
    velkctl get eth1.ssid --timeout 2 2>&1 | cat'
error_is ''
output_is "0
'static\\r\\n' 0
velkctl: eth1.ssid: could not be read
  no answer after 2 s; waited for the wireless daemon to answer
  fix: run it again with a longer --timeout"

it 'exits with 130 for the shell at Ctrl-C'
on_desk 'reply silent; at_terminal "1 s of" bash -c "trap : INT; velkctl get eth1.ssid; echo status \$?" | grep -o "status 130"'
output_is 'status 130'

finish
