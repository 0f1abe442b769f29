# snmp_test.sh - who looks after the device and where it stands, asked of the real SNMP agent.
# shellcheck shell=bash
# shellcheck disable=SC2016  # what looks like the shell's own is a value
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit
command -v snmpget >/dev/null || skip 'no snmpget here'

# The value of an object, as its bytes in hexadecimal, so that nothing is made of it on the way.
ask() {
    snmpget -v2c -c public -Oxqv -t 1 -r 5 127.0.0.1 "1.3.6.1.2.1.1.$1.0" | tr -d '" \n' | tr A-F a-f
}
contact() { ask 4; }
location() { ask 6; }
bytes_of() { printf '%s' "$1" | od -An -v -tx1 | tr -d ' \n'; }

it 'shows what the sample file holds'
check 'contact' "$(bytes_of Robin)" "$(contact)"
check 'location' "$(bytes_of 'Second floor, by the window')" "$(location)"

it 'shows a text as it was set, and runs nothing of it'
while IFS= read -r value; do
    run velkctl set administrator "$value"
    status_is 0
    run velkctl set location "$value"
    status_is 0
    check "contact [$value]" "$(bytes_of "$value")" "$(contact)"
    check "location [$value]" "$(bytes_of "$value")" "$(location)"
done <<END
Alice
O'Neil & Co/IT
\$(touch /tmp/canary) \`touch /tmp/canary\`
'; touch /tmp/canary; echo '
a"b'c"d'e
back\\slash \\\\ \\n \\1 \\& \\/
s/x/y/e;w /tmp/canary
/e
a # b
&&&///"""
| touch /tmp/canary > /tmp/canary # no
*.[]^\$ äöü 100%
$(printf '%255s' '' | tr ' ' x)
END
check 'canary' absent "$([ -e /tmp/canary ] && echo present || echo absent)"

it 'shows two quotes for an empty text'
velkctl set location ''
check 'location' "$(bytes_of '""')" "$(location)"

it 'leaves out the blanks around a text, as the agent reads it'
velkctl set location '  in between  '
check 'location' "$(bytes_of 'in between')" "$(location)"

it 'knows nothing of a text that the agent takes for a comment, or for too long'
for value in '# nine' "$(printf '%256s' '' | tr ' ' x)"; do
    run velkctl set location "$value"
    status_is 0
    check 'location' "$(bytes_of Unknown)" "$(location)"
    run velkctl get location
    output_is "$value"
done

it 'leaves one agent running, however often it was restarted'
check 'agents' 1 "$(pgrep -cx snmpd)"

finish
