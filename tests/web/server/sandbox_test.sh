# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# sandbox_test.sh - velk-sandbox --web: the settings page of a device in a browser of the machine.
# Root runs it a second time as an ordinary user.
# shellcheck shell=bash
# shellcheck disable=SC2016  # scripts in quotes are for the shell on the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit
needs_sandbox
this_file=$(realpath "$0")
name=web.$$

# Starts a device with the page. It ends when the descriptor 9 is closed.
start() { # OPTION...
    mkfifo "$lib_folder/keep"
    velk-sandbox --name "$name" "$@" -- cat <"$lib_folder/keep" >/dev/null 2>"$lib_folder/start" &
    device=$!
    exec 9>"$lib_folder/keep"
    rm "$lib_folder/keep"
    wait_until grep -q '^  password ' "$lib_folder/start" || cat "$lib_folder/start"
    address=$(sed -n 's/^velk-sandbox: settings page: //p' "$lib_folder/start")
    password=$(sed -n 's/^  password //p' "$lib_folder/start")
    port=${address##*:}
    port=${port%/}
}
end() {
    exec 9>&-
    wait "$device"
}
# Prints the status and the body of an answer.
ask() { # METHOD PATH [BODY]
    run python3 -c "$browser" "$port" "$@"
}
browser='import http.client, sys
port, method, path, body = (sys.argv[1:] + [""])[:4]
connection = http.client.HTTPConnection("127.0.0.1", int(port), timeout=30)
connection.request(method, path, body or None, {"Content-Type": "application/json"} if body else {})
answer = connection.getresponse()
print(answer.status, answer.getheader("Content-Type"))
print(answer.read().decode())'
# Prints the local addresses, in hexadecimal digits, on which something listens at the port.
listeners() { awk -v port="$(printf ':%04X' "$port")" '$4 == "0A" && $2 ~ port"$" { print $2 }' /proc/net/tcp /proc/net/tcp6; }

it 'prints address, user and password, also with --quiet'
start --quiet --web
check 'output at the start' "velk-sandbox: settings page: http://127.0.0.1:$port/
  user admin
  password $password" "$(cat "$lib_folder/start")"
check 'length of the password' 12 "${#password}"

it 'listens on 127.0.0.1 alone'
check 'listeners' "0100007F:$(printf %04X "$port")" "$(listeners)"

it 'serves the page and its server side'
ask GET /
output_has '200 text/html'
ask GET /page.css
output_has '200 text/css'
ask GET /cgi-bin/velk/session
output_has '401 application/json; charset=utf-8'
ask POST /cgi-bin/velk/login "{\"user\":\"admin\",\"password\":\"$password\"}"
output_has '200 application/json; charset=utf-8'
output_has '"host_name":"velk"'
ask POST /cgi-bin/velk/login '{"user":"admin","password":"password"}'
output_has '401 application/json; charset=utf-8'

it 'has nothing of the network of the machine but the connection'
run velk-sandbox enter --name "$name" -- sh -c 'ls /sys/class/net | xargs'
output_is 'eth0 eth1 lo'

it 'ends with the device, and leaves no process and no listener'
page_process=$(pgrep -x velk-web-port -n)
end
check 'listeners' '' "$(listeners)"
check "process $page_process" ended "$([ -e "/proc/$page_process" ] && echo runs || echo ended)"

it 'takes a port, and reports one that is in use'
start --quiet --web "$port"
check 'address' "http://127.0.0.1:$port/" "$address"
run velk-sandbox --quiet --web "$port" -- true
status_is 125
error_is "velk-sandbox: --web: cannot listen on port $port: Address already in use
  fix: give another port, or none for a free one"
end

it 'refuses a port that is none'
for word in 70000 x; do
    run velk-sandbox "--web=$word" -- true
    status_is 2
    error_is "velk-sandbox: --web: '$word' is not a port
  fix: give a number up to 65535, or none for a free port"
done

again_as_ordinary_user "$this_file"
finish
