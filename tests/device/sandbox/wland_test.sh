# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# wland_test.sh - the simulated wireless daemon, tested through the library and at its sockets.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox
command -v python3 >/dev/null || skip 'python3, which this test uses as a client of the daemon, is not installed'

# --- functions of this file ---

# A checkout below /tmp stays visible on the device. KEPT is its name, omitted from listings of /tmp.
KEPT=/
case $VELK_BUILD in /tmp/*) KEPT=${VELK_BUILD#/tmp/} KEPT=${KEPT%%/*} ;; esac
export KEPT

# Functions for scripts on the device.
functions='
    ls() { command ls "$@" | grep -vxF "$KEPT" || :; }

    # Ends the daemon that the device starts with.
    own=$(cat /run/velk-sandbox/wland.pid) && kill $own &&
        while kill -0 $own 2>/dev/null; do sleep 0.01; done

    mkdir /tmp/tools
    # The only privileged command of these tests detects the cable.
    printf "%s\n" "#!/bin/sh" "[ \"\$*\" = \"/usr/sbin/ethtool eth0\" ] || exit" \
        "echo \" Link detected: \$(cat /tmp/tools/cable)\"" >/tmp/tools/sudo
    chmod +x /tmp/tools/sudo
    stand_in sudo /tmp/tools/sudo
    echo no >/tmp/tools/cable

    # Waits until a command succeeds. The limit is a number of tries: 30 seconds or more.
    wait_until() {
        for try in $(seq 300); do
            "$@" && return
            sleep 0.1
        done
        echo "never: $*"
        return 1
    }
    is_gone() { ! kill -0 "$1" 2>/dev/null; }
    stop() {
        running=$(cat /tmp/pid)
        kill "$running" && wait_until is_gone "$running"
    }
    print_log() { cat /tmp/log; }

    # Prints ids with their results and data bytes, one line each.
    get() {
        for id; do
            velkctl call get "$id" eth1 --show-secrets | sed -E "1{/\(-?[0-9]+\)/!d}; s/.*\((-?[0-9]+)\).*/$id: \1/
                s/^[0-9a-f]{8}  //; /^[0-9a-f]{8}\$/d" | tr -s "\n " " " | sed "s/ \$//"
            echo
        done
    }
    set_to() { # ID OPTION VALUE
        velkctl call set "$1" eth1 "$2" "$3" | sed -nE "s/.*\((-?[0-9]+)\).*/$1= \1/p"
    }
    # Starts a query that gets no answer, and prints "waits" if it still runs after a second.
    wait_in_vain() {
        velkctl call get 303 eth1 >/tmp/answer &
        query=$!
        wait_until test -e /tmp/WlanAplFromWlanSock
        sleep 1
        kill -0 $query && echo waits
    }
    give_up() {
        kill -KILL $query  # it cannot clean up
        wait $query || return 0
    } 2>/dev/null
'

# A client of the daemon that does not use the library.
export CLIENT='
import ctypes, os, socket, struct, sys, time

def send(data):
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as sender:
        sender.sendto(data, "/tmp/WlanAplToWlanSock")

def message(kind, body=b""):
    return struct.pack("<hxx", kind) + body.ljust(236, b"\0")

libc = ctypes.CDLL(None)
libc.sem_open.restype = ctypes.c_void_p

def semaphore(posts):
    flags = os.O_CREAT | os.O_RDWR
    return ctypes.c_void_p(libc.sem_open(b"/WlanAplRecvSem", flags, 0o666, posts))

def ask(kind):
    """Posts after half a second. Prints when the reply came, and returns it."""
    ready = semaphore(0)
    receiver = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    receiver.bind("/tmp/WlanAplFromWlanSock")
    send(message(kind))
    receiver.settimeout(0.5)
    try:
        receiver.recv(4096)
        print("before the post")
    except socket.timeout:
        print("after the post")
    libc.sem_post(ready)
    receiver.settimeout(60)
    reply = receiver.recv(4096)
    receiver.settimeout(0.3)
    try:
        receiver.recv(4096)
        print("replied again")
    except socket.timeout:
        pass
    libc.sem_unlink(b"/WlanAplRecvSem")
    os.unlink("/tmp/WlanAplFromWlanSock")
    return reply

verb, *arguments = sys.argv[1:]
if verb == "message":
    send(message(int(arguments[0])))
elif verb == "bytes":
    send(b"A" * int(arguments[0]))
elif verb == "slow":
    ready = semaphore(1)  # as a killed program leaves it
    send(message(3))
    time.sleep(0.5)
    receiver = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    receiver.bind("/tmp/WlanAplFromWlanSock")
    libc.sem_post(ready)
    receiver.settimeout(60)
    print(len(receiver.recv(4096)))
elif verb == "make-semaphore":
    semaphore(0)
elif verb == "store":
    send(message(2, bytes(range(236))))
elif verb == "ask":
    reply = ask(int(arguments[0]))
    print(len(reply), reply[:4].hex(), reply[4:].rstrip(b"\0").hex())
elif verb == "is-stored":
    print(ask(3)[4:] == bytes(range(236)))
elif verb == "leave-socket":
    socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM).bind("/tmp/WlanAplToWlanSock")
elif verb == "occupy":
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as other:
        other.bind("/tmp/WlanAplToWlanSock")
        os.system("timeout 60 wland")
        print(os.path.exists("/tmp/WlanAplToWlanSock"))
'

# Runs a script on a device.
on_device_sh() {
    on_device sh -c "$stand_in_word$functions$1"
    lib_command=$1
}

# Runs a script on a device where the daemon runs in the background.
with_wland() { # OPTIONS SCRIPT
    on_device_sh "wland --background --pid-file /tmp/pid $1 || exit; $2"
}

# Runs a script on a device where the daemon, $daemon, logs to /tmp/log.
with_log() { # OPTIONS SCRIPT
    on_device_sh "wland $1 2>/tmp/log & daemon=\$!
        wait_until test -S /tmp/WlanAplToWlanSock; $2"
}

# The function `client`, for scripts on the device.
client='client() { python3 -c "$CLIENT" "$@"; }
'

# --- configuration ---

it 'starts with a configuration'
with_wland '' 'get 302 303 304 306 307 308 309 312 314 318'
status_is 0
error_is ''
output_is '302: 0 01 |.|
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
304: 0 06 |.|
306: 0 03 |.|
307: 0 02 |.|
308: 0 64 65 73 6b 31 |desk1|
309: 0
312: 0 01 |.|
314: 0 73 61 6d 70 6c 65 2d 6b 65 79 2d 6f 66 2d 74 68 |sample-key-of-th| 65 2d 64 65 73 6b |e-desk|
318: 0 03 |.|'

it 'stores all values that are set'
with_wland '' 'set_to 302 --hex 02; set_to 303 --text "a b"; set_to 304 --hex 0d
    set_to 306 --hex 02; set_to 307 --hex 04; set_to 308 --text 0123456789abc
    set_to 309 --text 12345; set_to 310 --text 0123456789
    set_to 311 --text 0123456789abcdef0123456789; set_to 312 --hex 04; set_to 314 --text key
    set_to 318 --hex 02
    get 302 303 304 306 307 308 309 310 311 312 314 318'
status_is 0
error_is ''
output_is '302= 0
303= 0
304= 0
306= 0
307= 0
308= 0
309= 0
310= 0
311= 0
312= 0
314= 0
318= 0
302: 0 02 |.|
303: 0 61 20 62 |a b|
304: 0 0d |.|
306: 0 02 |.|
307: 0 04 |.|
308: 0 30 31 32 33 34 35 36 37 38 39 61 62 63 |0123456789abc|
309: 0 31 32 33 34 35 |12345|
310: 0 30 31 32 33 34 35 36 37 38 39 |0123456789|
311: 0 30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 |0123456789abcdef| 30 31 32 33 34 35 36 37 38 39 |0123456789|
312: 0 04 |.|
314: 0 6b 65 79 |key|
318: 0 02 |.|'

it 'keeps its value if a set is refused'
with_wland '' 'set_to 304 --hex 0e; get 304'
output_is '304= -4
304: 0 06 |.|'

it 'starts with the same configuration again'
with_wland '' 'set_to 303 --text new; stop
    wland --background; get 303'
output_is '303= 0
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|'

# --- state ---

it 'reports a state'
with_wland '' 'get 4 5 301 305 315 316 317'
status_is 0
error_is ''
output_is '4: 0 31 2e 30 31 |1.01|
5: 0 32 2e 34 2e 31 |2.4.1|
301: 0 03 |.|
305: 0 02 |.|
315: 0 82 84 8b 96 |....|
316: 0 30 30 31 44 37 33 41 41 30 42 46 46 |001D73AA0BFF|
317: 0 34 00 5f |4._|'

it 'reports a state that matches the configuration'
with_wland '' 'set_to 318 --hex 02; get 301; set_to 302 --hex 02; get 316 317
    set_to 302 --hex 01; set_to 303 --text ""; get 315 316 317'
output_is '318= 0
301: 0 02 |.|
302= 0
316: 0 30 30 30 30 30 30 30 30 30 30 30 30 |000000000000|
317: 0 34 00 5f |4._|
302= 0
303= 0
315: 0
316: 0 30 30 30 30 30 30 30 30 30 30 30 30 |000000000000|
317: 0'

it 'gets no query for the state with the cable connected or without adapter'
with_log --verbose 'echo yes >/tmp/tools/cable; get 316
    echo no >/tmp/tools/cable; : >/proc/bus/usb/devices; get 316; get 303
    wait_until grep -q replied /tmp/log; print_log'
output_is '316: -6
316: -5
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
wland: received a query for the configuration
wland: replied with 240 bytes'

it 'logs that the interface was restarted'
with_log '' 'velkctl call restart 1 eth1 --hex 02 >/tmp/answer && wait_until grep restarted /tmp/log'
output_is 'wland: the wireless interface was restarted'

# --- faulty replies ---

it 'can send no reply'
with_log '--verbose --reply silent' 'wait_in_vain; give_up; wait_until grep -q received /tmp/log; print_log; cat /tmp/answer'
error_is ''
output_is 'waits
wland: received a query for the configuration'

it 'answers a query after a killed query'
with_wland '--reply silent' 'wait_in_vain; give_up
    ls /dev/shm /tmp/WlanAplFromWlanSock; wland --tell normal
    start=$(date +%s); get 303; [ $(($(date +%s) - start)) -lt 30 ] && echo "in time"
    ls /dev/shm; ls -d /tmp/W*'
error_is ''
output_is 'waits
/tmp/WlanAplFromWlanSock

/dev/shm:
sem.WlanAplRecvSem
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
in time
/tmp/WlanAplToWlanSock'

it 'waits for the post of the program if an old post is left'
with_wland '' "$client"'client slow'
error_is ''
output_is 240

it 'can send a short reply'
with_wland '--reply short' 'get 303 302 304'
output_is '303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
302: 0 01 |.|
304: 0'

it 'can send an empty reply'
with_wland '--reply empty' 'get 303 302 304'
output_is '303: 0
302: 0 02 |.|
304: 0'

it 'can send a reply of garbage'
with_wland '--reply garbage' 'get 303 302 304 314 305 315'
output_is '303: -1
302: -1
304: 0 a5 |.|
314: -1
305: -1 01 |.|
315: 0 a5 a5 a5 a5 |....|'

it 'can send a late reply'
with_wland '--reply late --delay 0.7' 'start=$(date +%s%N); get 303
    took=$((($(date +%s%N) - start) / 1000000))
    [ $took -ge 700 ] && [ $took -lt 50000 ] && echo late || echo $took ms'
output_is '303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
late'

it 'sends late replies too late for any program without --delay'
with_log '--reply late' 'wait_in_vain; give_up; print_log'
output_is waits

it 'logs that a late reply is not delivered'
with_log '--reply late --delay 5' 'wait_in_vain; give_up
    wait_until grep late /tmp/log'
output_is 'waits
wland: late reply not delivered: Connection refused'

it 'logs that no program waits for its reply'
with_log '' "$client"'client message 3; wait_until grep "no reply" /tmp/log'
output_is 'wland: no reply sent: cannot open the semaphore: No such file or directory'

# --- orders while it runs ---

it 'changes its reply mode on --tell'
with_wland '' 'for mode in garbage short empty normal; do
        wland --tell $mode && get 303
    done
    wland --tell late --delay 0.6; start=$(date +%s%N); get 303
    [ $((($(date +%s%N) - start) / 1000000)) -ge 600 ] && echo late
    wland --tell silent; wait_in_vain; give_up'
status_is 0
error_is ''
output_is '303: -1
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
303: 0
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
late
waits'

it 'drops pending late replies on --tell'
with_log '--reply late --delay 5' 'wait_in_vain; give_up; wland --tell normal
    get 303; sleep 5; print_log'
output_is 'waits
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
wland: the reply mode is normal'

it 'keeps its delay on --tell without --delay'
with_wland '--delay 0.6' 'wland --tell late; start=$(date +%s%N); get 303
    took=$((($(date +%s%N) - start) / 1000000))
    [ $took -ge 600 ] && [ $took -lt 50000 ] && echo late || echo $took ms'
output_is '303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
late'

it 'reports on --tell that no daemon is running'
on_device_sh 'wland --tell normal'
status_is 1
output_is ''
error_is 'wland: the daemon is not running'

# --- at its sockets ---

it 'replies once, after the post, with type and record'
with_wland '' "$client"'client ask 3; client ask 4'
status_is 0
error_is ''
conf=080076656c6b2d6c6162$(printf '%048d' 0)010001000600010002000100000005006465736b31
output_is "after the post
240 03000000 $conf$(printf '%0226d' 0)160073616d706c652d6b65792d6f662d7468652d6465736b
after the post
240 04000000 503a202056656e646f723d3263353120\
50726f6449443d30613132205265763d20312e3031$(printf '%054d' 0)322e342e31$(printf '%054d' 0)0100\
$(printf '%088d' 0)001d73aa0bff000000000200000082848b9634005f"

it 'sends faulty replies only after the post, too'
for mode in short empty garbage 'late --delay 0'; do
    with_wland "--reply $mode" "$client"'client ask 3 | cut -c 1-14'
    output_has 'after the post'
done

it 'keeps every byte of a configuration'
with_wland '' "$client"'client store; client is-stored'
error_is ''
output_is 'after the post
True'

it 'ignores and logs messages that are not valid'
with_log '' "$client"'client bytes 0; client bytes 1; client bytes 239; client bytes 241; client bytes 70000
    client message 0; client message 5; client message -1; get 303; print_log'
error_is ''
output_is '303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
wland: ignored a datagram of 0 bytes
wland: ignored a datagram of 1 bytes
wland: ignored a datagram of 239 bytes
wland: ignored a datagram of 241 bytes
wland: ignored a datagram of 70000 bytes
wland: ignored a message of type 0
wland: ignored a message of type 5
wland: ignored a message of type -1'

it 'accepts requests of every user'
with_wland '' 'stat -c "%F %a" /tmp/WlanAplToWlanSock'
output_is 'socket 666'

it 'never logs keys'
with_log --verbose 'get 308 314 >/tmp/answer; set_to 314 --text secret-psk; set_to 308 --text s3cr3
    get 303 >/tmp/answer; kill $daemon; wait $daemon; grep -c stored /tmp/log; grep -E "desk|psk|key|s3c" /tmp/log'
output_is '314= 0
308= 0
2'

# --- start and end ---

it 'leaves no files'
for signal in TERM INT; do
    on_device_sh "wland --pid-file /tmp/pid & daemon=\$!
        wait_until test -S /tmp/WlanAplToWlanSock; wait_until test -s /tmp/pid
        [ \$(cat /tmp/pid) = \$daemon ] && echo its number; get 303
        kill -$signal \$daemon; wait \$daemon; echo \"ends with \$?\"; ls /tmp /dev/shm
        wland --tell normal"
    output_is 'its number
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
ends with 0
/dev/shm:

/tmp:
tools'
    error_is 'wland: the daemon is not running'
done

it 'can be ended while it waits for a post'
with_log '' "$client"'client make-semaphore; client message 3; sleep 0.3; start=$(date +%s%N); kill $daemon; wait $daemon; echo "ends with $?"
    [ $((($(date +%s%N) - start) / 1000000)) -lt 2000 ] && echo soon; ls -d /tmp/W*'
output_is 'ends with 0
soon'

it 'moves to the background once it accepts requests'
on_device_sh 'wland --background --pid-file /tmp/pid && ls /tmp/WlanAplToWlanSock /tmp/pid
    readlink /proc/$(cat /tmp/pid)/fd/0 /proc/$(cat /tmp/pid)/fd/1 /proc/$(cat /tmp/pid)/fd/2 \
        /proc/$(cat /tmp/pid)/cwd
    stop; ls /tmp'
status_is 0
error_is ''
output_is '/tmp/WlanAplToWlanSock
/tmp/pid
/dev/null
/dev/null
/dev/null
/
tools'

it 'removes a PID file with a relative path'
on_device_sh 'cd /var/tmp && wland --background --pid-file here && cp here /tmp/pid; stop; ls /var/tmp'
status_is 0
output_is ''

it 'refuses to run twice'
with_wland '' 'for options in "" --background; do
        wland --pid-file /tmp/other $options; echo $?
    done
    get 303; ls /tmp'
error_is 'wland: the daemon is already running
wland: the daemon is already running'
output_is '1
1
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|
WlanAplToWlanSock
pid
tools'

it 'keeps the socket of another daemon'
on_device_sh "$client"'client occupy'
error_is 'wland: the daemon is already running'
output_is True

it 'starts after a killed daemon'
with_wland '' 'kill -KILL $(cat /tmp/pid); wait_until is_gone $(cat /tmp/pid); ls /tmp/W*
    wland --background && get 303'
output_is '/tmp/WlanAplToWlanSock
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|'

it 'replaces a socket without a listener'
on_device_sh "$client"'client leave-socket; ls /tmp/W*; wland --background; get 303'
output_is '/tmp/WlanAplToWlanSock
303: 0 76 65 6c 6b 2d 6c 61 62 |velk-lab|'

it 'reports that it cannot start, and leaves no files'
on_device_sh 'for options in "" --background; do
        wland --pid-file /nowhere/pid $options; echo $?; ls /tmp
    done'
error_is 'wland: cannot make /nowhere/pid: No such file or directory
wland: cannot make /nowhere/pid: No such file or directory'
output_is '1
tools
1
tools'
on_device_sh 'mkdir /tmp/WlanAplToWlanSock; wland'
status_is 1
error_is 'wland: cannot make /tmp/WlanAplToWlanSock: Address already in use'

it 'refuses arguments that are not valid'
for words_given in --bogus stray '--reply loud' --reply '--delay -1' '--delay nan' '--delay 1x' \
    '--delay 3601' --delay '--tell loud' '--tell normal --reply normal' '--tell normal --background' \
    '--tell normal --verbose' '--tell normal --pid-file file' $'two\nlines'; do
    # shellcheck disable=SC2086
    if [ "$words_given" = $'two\nlines' ]; then on_device wland "$words_given"; else
        on_device wland $words_given
    fi
    status_is 2
    output_is ''
    check "lines of errors for $words_given" 1 "$(echo "$error" | wc -l)"
    check 'start of errors' 'wland: ' "${error:0:7}"
done

it 'prints its options and its version'
run wland --help
check 'lines that are too long' '' "$(grep -E '.{81}' <<<"$output")"
status_is 0
output_has '--tell MODE'
run wland --version
status_is 0
output_has 'wland '

finish
