# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# snmp_test.sh - administrator and location of the device, queried from the real SNMP agent.
# shellcheck shell=bash
# shellcheck disable=SC2016  # values contain shell syntax
# shellcheck source=tests/device/real/lib.sh
. "${VELK_SOURCE:?}/tests/device/real/lib.sh" || exit
command -v snmpget >/dev/null || skip 'snmpget is not installed'

# Prints the bytes of an object in hexadecimal, so that no program interprets them.
ask() {
    snmpget -v2c -c public -Oxqv -t 1 -r 5 127.0.0.1 "1.3.6.1.2.1.1.$1.0" | tr -d '" \n' | tr A-F a-f
}
contact() { ask 4; }
location() { ask 6; }
bytes_of() { printf '%s' "$1" | od -An -v -tx1 | tr -d ' \n'; }

it 'returns the values of the sample file'
check 'contact' "$(bytes_of Robin)" "$(contact)"
check 'location' "$(bytes_of 'Second floor, by the window')" "$(location)"

it 'returns each text unchanged and executes none of it'
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

it 'returns two quotes for an empty text'
velkctl set location ''
check 'location' "$(bytes_of '""')" "$(location)"

it 'returns a text without the blanks around it, as the agent reads it'
velkctl set location '  in between  '
check 'location' "$(bytes_of 'in between')" "$(location)"

it 'returns no text that the agent reads as a comment or as too long'
for value in '# nine' "$(printf '%256s' '' | tr ' ' x)"; do
    run velkctl set location "$value"
    status_is 0
    check 'location' "$(bytes_of Unknown)" "$(location)"
    run velkctl get location
    output_is "$value"
done

it 'has one running agent after all restarts'
check 'agents' 1 "$(pgrep -cx snmpd)"

finish
