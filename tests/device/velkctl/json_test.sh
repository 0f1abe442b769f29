# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# json_test.sh - the JSON of velkctl: one document for every run, as the schema describes it, with
# every secret masked.
# shellcheck shell=bash
# shellcheck disable=SC2016,SC2089,SC2090  # scripts in quotes are for the device
# shellcheck source=tests/device/lib.sh
. "${VELK_SOURCE:?}/tests/device/lib.sh" || exit

needs_sandbox
for PYTHON in python3 /usr/bin/python3 ''; do
    [ -z "$PYTHON" ] || ! "$PYTHON" -c 'import jsonschema' 2>/dev/null || break
done
[ -n "$PYTHON" ] || skip 'no python3 with jsonschema here'
SCHEMA=$(cat "$VELK_SOURCE/docs/velkctl.schema.json")

# Runs velkctl with --json for every line of standard input, and shows how it ended, the members of
# its document that only some have, and the setting and result of each error. A line that begins
# with ! is for the shell; "locked" in front means while another program holds the lock.
ANSWERS='
import json, os, shlex, subprocess, sys

import jsonschema

schema = jsonschema.Draft202012Validator(json.loads(os.environ["SCHEMA"]))
described = "name id interface get set secret description type expected values longest_seconds takes_effect"
member_orders = {
    "settings": {"get": "name value error valid", "show": "name value error valid",
                 "set": "name value held takes_effect set",
                 "list": described, "describe": described},
    "setting": {"set": "name value held takes_effect"},
    "result": {"explain": "code name description remedy exit_status", "call": "code name description"},
    "exit_status": {"explain": "status description remedy results"},
    "metrics": {"metrics": "name help samples"},
    "commands": {"selftest": "name id type verdict problem"},
    "items": {"capture": "name member state problem"},
    "preview": {verb: "results files steps longest_seconds then_waits_for"
                for verb in ("set", "restart", "apply", "import", "call")},
    "trace": {"set": "files steps"},
    "states": {"status": "name configured running differs"},
    "changes": {"apply": "name old new", "import": "name old new"},
    "restarts": {"apply": "interface seconds state"},
    "document": {"export": "schema settings facts"},
    "differences": {"diff": "name first second only_in"},
    "findings": {"doctor": "severity subject effect description cause remedy settings"},
    "errors": {},
}

def wrong(document, finished):
    """The problems with a document, as texts."""
    if finished.stderr:
        yield "on standard error: " + finished.stderr.decode()
    if not finished.stdout.endswith(b"}\n"):
        yield "the document does not end in a line of its own"
    if document["status"] != finished.returncode:
        yield "exit status " + str(finished.returncode)
    yield from (error.json_path + ": " + error.message for error in schema.iter_errors(document))
    if document["status"] == 2:
        for error in document["errors"]:
            if not error["remedy"]:
                yield "no remedy: " + error["message"]
            if "; give " in error["message"] or "; did you" in error["message"]:
                yield "the message has the remedy in it: " + error["message"]
    keys = list(document)
    if keys[:3] != ["schema", "verb", "status"] or keys[-2:] != ["notes", "errors"]:
        yield "members in another order: " + str(keys)
    for member, orders in member_orders.items():
        things = document.get(member, [])
        for thing in things if isinstance(things, list) else [things]:
            order = orders.get(document["verb"], "message detail cause remedy setting result")
            if " ".join(thing) != order:
                yield member + " in another order: " + " ".join(thing)

def summary(error):
    return (error["setting"] or "-") + " " + (error["result"] or {"name": "-"})["name"]

for line in sys.stdin.read().splitlines():
    if line.startswith("!"):
        subprocess.run(line[1:], shell=True, check=True)
        continue
    words = shlex.split(line)
    lock = ["flock", "-x", "/var/tmp/vklib_lock"] if words[0] == "locked" else []
    words = words[1:] if lock else words
    end = words.index("--") if "--" in words else len(words)
    finished = subprocess.run(lock + ["velkctl"] + words[:end] + ["--json"] + words[end:],
                              stdin=subprocess.DEVNULL, capture_output=True)
    try:
        document = json.loads(finished.stdout)
    except ValueError as error:
        print(line, "->", error, finished)
        continue
    for problem in wrong(document, finished):
        print("  wrong:", problem)
    members = " ".join(list(document)[3:-2])
    errors = "".join("; " + summary(error) for error in document["errors"])
    print(str(document["status"]), line, "->", (members or "nothing") + errors)
'
export PYTHON SCHEMA ANSWERS

# The tools that a restart runs, which this device lacks.
tools='
    sudo=$(readlink -f "$(command -v sudo)")
    mkdir /tmp/tools
    : >/tmp/tools/real-sudo
    mount --bind "$sudo" /tmp/tools/real-sudo
    printf "%s\n" "#!/bin/sh" "case \$1 in ifup | ifdown) exit ;; esac" \
        "exec /tmp/tools/real-sudo \"\$@\"" >/tmp/tools/sudo
    chmod +x /tmp/tools/sudo
    mount --bind /tmp/tools/sudo "$sudo"
'

# Checks the answers to the lines of standard input, all on one device.
answers() {
    lines=$(cat)
    commands=$(sed -E 's/ -> .*//; s/^[0-9] //' <<<"$lines")
    on_device sh -c "$tools"' "$PYTHON" -c "$ANSWERS" <<END
$1
END' sh "$commands"
    status_is 0
    error_is ''
    output_is "$(grep -v '^!' <<<"$lines")"
}

it 'answers every verb with one document'
answers <<'END'
0 get eth0.method -> settings
0 get eth0.dns eth0.gateway web-update administrator -> settings
0 get --value eth0.dns -> settings
0 set eth0.dns 1.1.1.1 2.2.2.2 -> setting
0 set eth0.dns none -> setting
0 set eth0.dhcp-notice on -> setting
0 set --no-verify location desk -> setting
0 set --force eth0.gateway 9.9.9.9 -> setting
0 set eth0.gateway none -> setting
0 set -- location --json -> setting
0 set ntp=on eth0.dns=1.1.1.1,2.2.2.2 -> settings
0 set ntp=on -> settings
0 set eth0.address 192.168.0.12/24 -> setting settings
0 get 'eth0.*' ntp -> settings
0 get eth0 -> settings
0 show 'eth*.dns' ntp -> settings
0 show -> settings
0 show eth0 -> settings
0 restart eth1 --notify-only -> interface
0 list -> settings
0 describe eth0.gateway -> settings
0 describe 108 -> settings
0 describe dns -> settings
0 explain -3 -> result
0 explain LOCKED -> result
0 explain -99 -> result
0 explain 3 -> exit_status
0 explain 0 -> result exit_status
0 status eth1 -> states
0 call get 108 eth0 -> result data
0 call set 108 eth0 --text 10.0.0.1 -> result
END

it 'answers with the commands that it has tried'
answers <<'END'
0 selftest -> commands
!rm /etc/dhclient.conf
1 selftest -> commands; dhcp-ntp LIB_VELK_FAILURE; dhcp-ntp LIB_VELK_FAILURE; eth0.method LIB_VELK_FAILURE; eth1.method LIB_VELK_FAILURE; eth0.dhcp-dns LIB_VELK_FAILURE; eth0.dhcp-dns LIB_VELK_FAILURE; eth1.dhcp-dns LIB_VELK_FAILURE; eth1.dhcp-dns LIB_VELK_FAILURE
END

it 'answers with the metrics'
answers <<'END'
0 metrics -> metrics
0 metrics --output /tmp/velk.prom -> metrics
1 metrics --output /nowhere/velk.prom -> metrics; - -
2 metrics --output /dev/null -> nothing; - -
END

it 'answers with the items of a capture'
answers <<'END'
0 capture /tmp/device.tar -> items
1 capture /nowhere/device.tar -> items; - -
END

it 'answers a dry run and a trace with one document'
answers <<'END'
0 set eth0.dns 1.1.1.1 --dry-run -> preview
0 set eth0.dns=1.1.1.1 eth0.method=dhcp administrator=x --dry-run -> preview
0 set eth1.ssid lab --dry-run -> preview
0 set eth0.address 192.168.0.12 --trace -> trace setting
0 restart eth0 --dry-run -> preview
0 restart eth1 --notify-only --dry-run -> preview
0 call set 108 eth0 --text 10.0.0.1 --dry-run -> preview
0 call restart 1 eth1 --dry-run -> preview
2 call set 999 --dry-run -> preview; - LIB_VELK_INVALID_PARAMETER
2 call get 108 eth0 --dry-run -> nothing; - -
2 set eth0.dns nonsense --dry-run -> nothing; eth0.dns -
3 locked set eth0.dns 1.1.1.1 --dry-run -> nothing; eth0.dns LIB_VELK_LOCKED
!rm /etc/resolv.dnsmasq.conf && mkdir /etc/resolv.dnsmasq.conf
1 set eth0.dns 1.1.1.1 --dry-run -> preview; eth0.dns LIB_VELK_FAILURE
!mount --bind /etc/network/interfaces /etc/network/interfaces
!mount -o remount,bind,ro /etc/network/interfaces
6 set eth0.address 192.168.0.13 --dry-run -> preview; eth0.address -
END

it 'answers with the findings of the doctor, which are no errors'
answers <<'END'
!rm /etc/dhclient.conf
1 doctor -> device findings problems warnings
END

it 'says in a note that a value was set but not checked'
on_device sh -c 'velkctl set eth0.method dhcp 2>/dev/null && velkctl set eth0.address 10.0.0.1 --json'
status_is 0
error_is ''
output_is '{
  "schema": 3,
  "verb": "set",
  "status": 0,
  "setting": {
    "name": "eth0.address",
    "value": "10.0.0.1",
    "held": null,
    "takes_effect": "at the next restart of eth0, with method static"
  },
  "notes": [
    "eth0.address: set, but not checked; while eth0.method is dhcp, its lease is shown"
  ],
  "errors": []
}'

it 'answers a wrong usage with a document'
run velkctl --json
status_is 2
error_is ''
output_has '"verb": null'
answers <<'END'
2 put eth0.dns -> nothing; - -
2 --quick -> nothing; - -
2 get -> nothing; - -
2 get nonsense -> nothing; - -
2 get eth0.dns eth0.dsn -> nothing; - -
2 get eth0.dhcp-notice -> nothing; eth0.dhcp-notice -
2 get eth0.dns --quick -> nothing; - -
2 get eth0.dns --timeout=soon -> nothing; - -
2 set -> nothing; - -
2 set nonsense 1 -> nothing; - -
2 set eth0.mac-address 1 -> nothing; eth0.mac-address -
2 set eth0.mac-address=1 ntp=maybe 1 -> nothing; eth0.mac-address -; ntp -; - -
2 get 'eth9.*' -> nothing; - -
2 set eth0.dns 1.1.1.1 --wait=0 -> nothing; - -
2 show eth9 -> nothing; - -
2 show --timeout -> nothing; - -
2 restart eth9 -> nothing; - -
2 restart eth0 --notify-only -> nothing; - -
2 list eth0.dns -> nothing; - -
2 list --wait -> nothing; - -
2 describe nonsense -> nothing; - -
2 describe 999 -> nothing; - -
2 explain nonsense -> nothing; - -
2 explain 99 -> nothing; - -
2 doctor eth0 -> nothing; - -
2 apply -> nothing; - -
2 apply a b -> nothing; - -
2 apply /tmp/none -> nothing; - -
2 apply ntp=on --restart eth9 -> nothing; - -
0 apply eth0.dns=1.1.1.1 --check -> changes skipped checked
2 apply eth0.dns=1 --check -> nothing; eth0.dns -
2 apply eth0.dns=1 eth1.zz=1 -> nothing; eth0.dns -; - -
2 apply eth0.dns=1.1.1.1 eth1.dns=2.2.2.2 -> nothing; eth0.dns -; eth1.dns -
2 import /dev/null -> nothing; - -
2 import /tmp/none --only eth9.x -> nothing; - -
2 diff /tmp/none /dev/null -> nothing; - -; - -
2 export eth0 -> nothing; - -
2 call put 1 -> nothing; - -
2 call get dns -> nothing; - -
2 call get 108 a-name-that-is-too-long -> nothing; - -
2 call set 108 eth0 --text a --hex 61 -> nothing; - -
2 call set 108 eth0 --hex 6 -> nothing; - -
END

it 'answers a refused value with a document'
answers <<'END'
2 set eth0.address 300.1.1.1 -> nothing; eth0.address -
2 set eth0.gateway 10.9.9.9 -> nothing; eth0.gateway -
2 set eth0.dns 1.1.1.1 none -> nothing; eth0.dns -
2 set web-update weekly -> nothing; web-update -
2 set eth1.psk -> nothing; eth1.psk -
2 set eth1.psk @/nonexistent -> nothing; eth1.psk -
2 call get 999 -> result data; - LIB_VELK_INVALID_PARAMETER
2 call get 317 eth0 -> result data; - LIB_VELK_INVALID_PARAMETER
2 call set 101 eth0 -> result; - LIB_VELK_INVALID_PARAMETER
END

it 'answers every refused input with its remedy'
answers <<'END'
2 get eth0.mask -> nothing; - -
2 get dns -> nothing; - -
2 get eth2 -> nothing; - -
2 get -> nothing; - -
2 explain ssid -> nothing; - -
2 set eth0.address=1 -> nothing; eth0.address -
2 set eth0.netmask 33 -> nothing; eth0.netmask -
2 set eth0.gateway 010.0.0.1 -> nothing; eth0.gateway -
2 set eth0.link-speed 1000 -> nothing; eth0.link-speed -
2 set eth0.method dhcpp -> nothing; eth0.method -
2 set eth0.dns 127.0.0.1 -> nothing; eth0.dns -
2 set eth1.encryption wpa2 -> nothing; eth1.encryption -
2 set eth1.wep-key-1 abc -> nothing; eth1.wep-key-1 -
2 set eth1.wep-key-1 123456789x -> nothing; eth1.wep-key-1 -
2 set ntp-server off -> nothing; ntp-server -
2 set ntp-server a..b -> nothing; ntp-server -
2 set location none -> nothing; location -
2 set location a b -> nothing; location -
2 set web-update yearly -> nothing; web-update -
2 set ntp=on ntp=off -> nothing; ntp -
2 set eth0.address 1.1.1.1/24 eth0.netmask 24 -> nothing; eth0.address -
2 get ntp --timeout -> nothing; - -
2 get ntp --timeout=0 -> nothing; - -
2 get ntp --timeout=1 --timeout=2 -> nothing; - -
2 set ntp on --wait 5 -> nothing; - -
2 get ntp --quiet --verbose -> nothing; - -
2 call set 108 eth0 --text @/nonexistent -> nothing; - -
END
run velkctl set --json eth0.address=1
output_has '"message": "eth0.address: '"'1'"' is not an IPv4 address",'
output_has '"remedy": "give an IPv4 address such as 192.168.0.10",'

it 'answers with a document while another program holds the lock'
answers <<'END'
3 locked set eth0.dns 1.1.1.1 -> nothing; eth0.dns LIB_VELK_LOCKED
3 locked set eth0.dns 1.1.1.1 --wait=1 -> nothing; eth0.dns LIB_VELK_LOCKED
3 locked restart eth0 -> interface; - LIB_VELK_LOCKED
3 locked call set 108 eth0 --text 1.1.1.1 -> result; - LIB_VELK_LOCKED
0 locked get eth0.dns -> settings
END

it 'answers with a document when no adapter is attached'
answers <<'END'
!velk-sandbox adapter out
0 apply eth0.gateway=none location=here -> changes skipped restarts taken_back id state seconds_left
0 apply location=here -> changes skipped restarts taken_back id state seconds_left
4 apply eth1.ssid=lab -> nothing; eth1.ssid LIB_VELK_FAILURE
0 export -> document unread
!velkctl export --quiet >/tmp/net.json; velkctl set location there
6 diff /tmp/net.json -> differences
0 import /tmp/net.json -> changes skipped restarts taken_back id state seconds_left
0 diff /tmp/net.json -> differences
4 get eth1.mac-address -> settings; eth1.mac-address LIB_VELK_NO_ADAPTER
4 get eth1.signal eth1.rate eth0.dns -> settings; eth1.signal LIB_VELK_NO_ADAPTER; eth1.rate LIB_VELK_NO_ADAPTER
4 get eth1.ssid -> settings; eth1.ssid LIB_VELK_FAILURE
4 set eth1.ssid lab -> nothing; eth1.ssid LIB_VELK_FAILURE
4 set eth1.ssid=lab ntp=on -> settings; eth1.ssid LIB_VELK_FAILURE
0 show eth1 -> settings
4 restart eth1 -> interface; - LIB_VELK_NO_ADAPTER
4 call get 101 eth1 -> result data; - LIB_VELK_NO_ADAPTER
0 restart eth0 -> interface state
END

it 'answers with a document while the cable is in'
answers <<'END'
5 get eth1.mac-address eth1.ssid -> settings; eth1.mac-address LIB_VELK_WIRED_LINKED
0 show eth1 -> settings
5 call get 317 eth1 -> result data; - LIB_VELK_WIRED_LINKED
END

it 'answers with a document when the device does not hold the value'
answers <<'END'
!sed -i /ntpdate/d /var/cron/tabs/root
6 set ntp-server time.example -> setting; ntp-server -
6 set ntp-server=time.example eth0.dns=none -> settings; ntp-server -
6 set ntp on -> setting; ntp -
0 set ntp-server time.example --no-verify -> setting
END

it 'answers with a document when a file is missing'
answers <<'END'
!rm /etc/resolv.dnsmasq.conf && mkdir /etc/resolv.dnsmasq.conf
1 get eth0.dns eth0.method -> settings; eth0.dns LIB_VELK_FAILURE
1 set eth0.dns 1.1.1.1 -> nothing; eth0.dns LIB_VELK_FAILURE
0 show eth0 -> settings
1 call get 108 eth0 -> result data; - LIB_VELK_FAILURE
END

it 'answers with a document at the timeout'
answers <<'END'
!own=$(cat /run/velk-sandbox/wland.pid) && kill $own && while kill -0 $own 2>/dev/null; do sleep 0.01; done
!wland --reply silent --background
7 get eth1.ssid --timeout 1 -> settings; eth1.ssid -
7 set eth1.ssid lab --timeout 1 -> nothing; eth1.ssid -
0 show eth1 --timeout 1 -> settings
7 call get 303 eth1 --timeout 1 -> nothing; - -
END

# ---- the description of it -------------------------------------------------------------------
it 'has examples in docs/json.md that the schema takes'
run "$PYTHON" -c '
import json, os, re, sys
import jsonschema
schema = json.loads(os.environ["SCHEMA"])
jsonschema.Draft202012Validator.check_schema(schema)
for text in re.findall("```json\n(.*?)```", open(sys.argv[1]).read(), re.S):
    jsonschema.Draft202012Validator(schema).validate(json.loads(text))
    print(json.loads(text)["verb"])
' "$VELK_SOURCE/docs/json.md"
status_is 0
error_is ''
output_is 'get
get
show
set
set
set
restart
apply
import
export
diff
list
describe
explain
explain
status
doctor
metrics
selftest
capture
confirm
extend
revert
pending
undo
history
recover
call'

it 'has an example in velkctl(1) that the schema takes'
run "$PYTHON" -c '
import json, os, re, sys
import jsonschema
schema = jsonschema.Draft202012Validator(json.loads(os.environ["SCHEMA"]))
for text in re.findall("^[.]Bd.*\n({\n.*?^})\n[.]Ed", open(sys.argv[1]).read(), re.S | re.M):
    schema.validate(json.loads(text.replace("\\e", "\\")))
    print(json.loads(text)["verb"])
' "$VELK_SOURCE/docs/man/velkctl.1"
status_is 0
error_is ''
output_is 'get'

it 'has a schema that refuses a document without one of its members'
run "$PYTHON" -c '
import json, os
import jsonschema
schema = jsonschema.Draft202012Validator(json.loads(os.environ["SCHEMA"]))
base = {"schema": 3, "status": 0, "notes": [], "errors": []}
error = {"message": "", "detail": None, "cause": None, "remedy": None, "setting": None, "result": None}
wrong = [
    {**base, "verb": "get"},
    {**base, "verb": "get", "settings": [{"name": "ntp", "value": "on"}]},
    {**base, "verb": "set", "setting": {"name": "ntp", "value": "on", "held": "yes"}},
    {**base, "verb": "put"},
    {**base, "verb": "restart", "interface": "eth2"},
    {**base, "verb": "restart", "interface": "eth0", "errors": [error]},
    {**base, "verb": "doctor", "findings": [{"severity": "bad"}]},
    {**base, "verb": "call", "result": {"code": 0}},
    {**base, "verb": "explain", "result": {"code": 0, "name": "", "description": ""}},
    {**base, "verb": None, "status": 10},
    {**base, "verb": None, "schema": 1},
    {"verb": None},
]
print([schema.is_valid(document) for document in wrong].count(True), "of", len(wrong), "taken")
print("good:", schema.is_valid({**base, "verb": "restart", "interface": "eth0", "more": 1}))
'
status_is 0
output_is '0 of 12 taken
good: True'

# ---- values -----------------------------------------------------------------------------------
it 'has values in a form for programs'
on_device sh -c 'velkctl set eth0.dns 1.1.1.1 2.2.2.2 && velkctl set eth0.gateway none
    velk-sandbox cable out
    velkctl get --json eth0.dns eth0.gateway eth0.method eth1.channel eth1.signal location eth1.psk \
        eth1.wep-key-2 | grep \"value\" -A 4 | tr -d " \n"'
output_is '"value":["1.1.1.1","2.2.2.2"],"error":null,--"value":null,"error":null,"valid":true},{--"value":"static","error":null,"valid":true},{--"value":6,"error":null,"valid":true},{--"value":[52,95],"error":null,--"value":"Secondfloor,bythewindow","error":null,"valid":true},{--"value":"********","error":null,"valid":true},{--"value":null,"error":null,"valid":true}],'

# ---- secrets ----------------------------------------------------------------------------------
it 'shows a secret to those who ask for it with --show-secrets alone'
on_device sh -c "$tools"'
    psk=Planted-7731-psk
    wep=planted-7731w
    planted="$psk|$wep|$(printf %s $psk | od -An -tx1 | tr -d " \n")|$(printf %s $wep | od -An -tx1 | tr -d " \n")"
    # The dump of a call has the bytes apart.
    planted="$planted|$(printf %s $psk | od -An -tx1 | cut -c2-24)|7731"
    velk-sandbox cable out
    mkdir /run/keys && echo $psk >/run/keys/psk && echo $wep >/run/keys/wep
    velkctl set eth1.psk @/run/keys/psk && velkctl set eth1.wep-key-3 - </run/keys/wep
    runs=0
    try() {
        for form in "" --json; do
            runs=$((runs + 1))
            verb=$1
            shift
            velkctl $verb $form "$@" >/tmp/said 2>&1 </dev/null
            grep -Eq -- "$planted" /tmp/said && echo "gives it away: velkctl $verb $form $*"
            set -- "$verb" "$@"
        done
    }
    try get eth1.psk
    try get eth1.psk eth1.wep-key-3 eth0.dns
    try get --value eth1.wep-key-3
    try set eth1.psk @/run/keys/psk
    try set eth1.psk $psk
    try set eth1.wep-key-3 $wep
    try set eth1.psk --force $psk
    try set eth1.psk --no-verify $psk
    try set eth1.psk $psk $psk
    try set eth1.psk $psk$psk$psk$psk$psk
    try set eth1.wep-key-3 $psk
    try set eth1.psk=$psk
    try set eth1.psk --$psk
    try set eth1.psk --quick=$psk
    try set eth1.psk "$psk
"
    try set $psk eth1.psk
    try set eth2.psk $psk
    try set psk $psk
    try show
    try show eth1
    try show $psk eth1.psk
    try restart eth1 --notify-only
    try list
    try describe eth1.psk
    try describe 314
    try describe eth1.psk $psk
    try explain -1
    try doctor
    try selftest
    try capture /tmp/device.tar
    try set eth1.psk=$psk --dry-run
    try set eth1.psk=$psk --trace
    try call set 314 eth1 --text $psk --dry-run
    try call get 314 eth1
    try call get 310 eth1
    try call set 314 eth1 --text $psk
    try call set 314 eth1 --text=$psk
    try call set 314 eth1 --text $psk --hex $psk
    try call set 314 eth1 --hex $psk
    try call set 314 eth1 --texts $psk
    try call set 314 $psk
    try call set 314 eth1 $psk
    # Not held, locked and silent: no failure repeats a secret.
    exec 9>>/var/tmp/vklib_lock && flock -x 9
    try set eth1.psk $psk
    try call set 314 eth1 --text $psk
    exec 9>&-
    echo "$runs runs"
    velkctl set eth1.psk $psk
    velkctl get eth1.psk --show-secrets
    velkctl show eth1 --show-secrets --json | grep -c "\"$psk\""
    velkctl call get 314 eth1 --show-secrets --json | grep -c "\"data\": \"$(printf %s $psk | od -An -tx1 | tr -d " \n")\""'
status_is 0
error_is ''
output_is '88 runs
Planted-7731-psk
1
1'

finish
