# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The numbers in docs/commands.md: bytes, lengths, times. tests/unit/docs/commands_test.cpp compares its commands,
shell lines and paths with the library."""
import json
import re
import unittest

import tables

# Each fact of a section is a text with the names of constants in braces, and every number of the section is in
# one of its facts. So a number that is wrong is noticed, and one that is new.
IN_ALL = ["byte 0", "Byte 0"]
DAEMON = ["{daemon} seconds for the daemon"]
STATE = ["up to {link} seconds"] + DAEMON
SECURITY = ["byte 0: 1 to {security} for the daemon's 0 to {security-1}", "its value is not 0 to {security-1}",
            "byte 0 is not 1 to {security}"]
FACT = ["Byte 0: 1 to {facts} for the daemon's 0 to {facts-1}", "with a value that is not 0 to {facts-1}",
        "With {LIB_VELK_FAILURE} for a value beyond that"]
TEXT = ["a text of at most {VELK_DATA_SIZE-1} bytes, ended by a NUL"]
SWITCH = ["byte 0 is {VELK_ON} if", "else {VELK_OFF}."]
NEITHER = ["byte 0 is neither {VELK_ON} nor {VELK_OFF}"]
OPTION = SWITCH + ["byte 0, {VELK_ON} on, any other byte off"]
ADDRESS = ["at most {VELK_DATA_SIZE-1} bytes and a NUL"]
TURN = ["{turn} seconds for the turn"]
FACTS = {
    "1": ["byte 0 is {VELK_RESTART_NOTIFY_ONLY} to notify only the wireless daemon",
          "the tools and {pause} second; with an adapter {pause+settle} seconds and the link question (up to {link} seconds)",
          "with adapter and cable {pause+settle+2*pass_pause} seconds", "the tools, {pause} second and the link question",
          "with byte 0 = {VELK_RESTART_NOTIFY_ONLY} the link question alone"],
    "2": TEXT, "3": TEXT, "4": STATE,
    "5": STATE + ["A text of at most {software_version} bytes"],
    "6": SWITCH + NEITHER,
    "7": OPTION,
    "9": TEXT,
    "10": ["{VELK_NTP_REACHED} a server was reached, {VELK_NTP_NOT_REACHED} none was, {VELK_NTP_NO_RESULT} there is no result",
           "{VELK_NTP_REACHED} means that the last line of the log holds `time server` from its {log_place+1}th character on",
           "{VELK_NTP_NOT_REACHED} any other last line, or an empty log; {VELK_NTP_NO_RESULT} a log that cannot be read"],
    "11": ["| {VELK_SCHEDULE_TYPE_OFFSET} | type: {VELK_SCHEDULE_HOURS} hourly, {VELK_SCHEDULE_DAILY} daily, "
           "{VELK_SCHEDULE_WEEKLY} weekly, {VELK_SCHEDULE_MONTHLY} monthly, {VELK_SCHEDULE_NONE} not at all |",
           "| {VELK_SCHEDULE_VALUE_OFFSET} | value: {VELK_SCHEDULE_HOURS} the hours between two runs; {VELK_SCHEDULE_DAILY} "
           "always 1; {VELK_SCHEDULE_WEEKLY} the weekday, 1 (Sunday) to 7; {VELK_SCHEDULE_MONTHLY} the day, 1 to 31; "
           "{VELK_SCHEDULE_NONE} always 99 |",
           "| {VELK_SCHEDULE_TIME_OFFSET} on | the time as a text",
           "a get of type {VELK_SCHEDULE_HOURS} or {VELK_SCHEDULE_NONE} answers `00:00`",
           "cut to {VELK_DATA_SIZE-VELK_SCHEDULE_TIME_OFFSET-1} bytes",
           "looks at byte {VELK_SCHEDULE_VALUE_OFFSET} for the types {VELK_SCHEDULE_HOURS}, {VELK_SCHEDULE_WEEKLY} and "
           "{VELK_SCHEDULE_MONTHLY} only",
           "also {VELK_SCHEDULE_HOURS} and {VELK_SCHEDULE_NONE}.",
           "byte {VELK_SCHEDULE_VALUE_OFFSET} of the types {VELK_SCHEDULE_HOURS} and {VELK_SCHEDULE_WEEKLY} is",
           "a day outside 1 to 31"],
    "101": ["{mac} upper-case hexadecimal digits and a NUL, {mac+1} bytes", "up to {link} seconds"],
    "102": ["byte 0 is {VELK_METHOD_STATIC} static, {VELK_METHOD_DHCP} DHCP",
            "byte 0 is neither {VELK_METHOD_STATIC} nor {VELK_METHOD_DHCP}"],
    "103": SWITCH,
    "104": ADDRESS + TURN + ["of up to {link} seconds"], "105": ADDRESS + TURN + ["of up to {link} seconds"],
    "106": ADDRESS + ["at worst {2*link} seconds"],
    "107": OPTION,
    "108": ["three slots of {VELK_DNS_SLOT_SIZE} bytes", "at the bytes 0, {VELK_DNS_SLOT_SIZE} and {2*VELK_DNS_SLOT_SIZE}",
            "shorter than {VELK_DNS_SLOT_SIZE} bytes", "the {VELK_DNS_SLOT_SIZE}th byte", "is {VELK_DNS_SLOT_SIZE} bytes long"],
    "109": [],
    "201": TURN + ["{VELK_LINK_AUTO} negotiated, {VELK_LINK_100_FULL} 100 Mbit/s full duplex, {VELK_LINK_100_HALF} 100 half, "
                   "{VELK_LINK_10_FULL} 10 full, {VELK_LINK_10_HALF} 10 half",
                   "A get answers {VELK_LINK_AUTO} whenever", "byte 0 is not {VELK_LINK_AUTO} to {VELK_LINK_10_HALF}",
                   "a speed of 10 or 100 Mbit/s, as with a port forced to 1000"],
    "301": STATE + FACT + ["byte 0 is {standard_if_unknown} all the same"],
    "302": DAEMON + ["{infrastructure_byte} infrastructure (the daemon's 1), {ad_hoc_byte} ad hoc (its 0)",
                     "its value is not 0 or 1", "byte 0 is neither {infrastructure_byte} nor {ad_hoc_byte}"],
    "303": DAEMON + ["a text of 0 to {VELK_SSID_SIZE} bytes", "a text of at most {VELK_SSID_SIZE} bytes",
                     "its length is beyond {VELK_SSID_SIZE}", "longer than {VELK_SSID_SIZE} bytes"],
    "304": DAEMON + ["byte 0, 1 to {VELK_CHANNELS}.", "byte 0 is not 1 to {VELK_CHANNELS}"],
    "305": STATE + FACT + ["byte 0 is {region_if_unknown} all the same"],
    "306": DAEMON + SECURITY + ["{wep} is WEP"],
    "307": DAEMON + SECURITY,
    "308": DAEMON + ["a text of 0 to {key} bytes", "the key's length is beyond {key}",
                     "a text of {VELK_WEP_SHORT_KEY} or {VELK_WEP_LONG_KEY} bytes (characters)",
                     "of {VELK_WEP_SHORT_HEX_KEY} or {VELK_WEP_LONG_HEX_KEY} bytes (hexadecimal digits)",
                     "the text is 1 to {VELK_WEP_SHORT_KEY-1}, {VELK_WEP_SHORT_KEY+1} to {VELK_WEP_SHORT_HEX_KEY-1}, "
                     "{VELK_WEP_SHORT_HEX_KEY+1}, {VELK_WEP_LONG_KEY-1}, {VELK_WEP_LONG_KEY+1} to {VELK_WEP_LONG_HEX_KEY-1} "
                     "or more than {VELK_WEP_LONG_HEX_KEY} bytes long"],
    "312": DAEMON + ["byte 0, 1 to {VELK_WEP_KEYS}.", "byte 0 is not 1 to {VELK_WEP_KEYS}"],
    "314": DAEMON + ["a text of 0 to {VELK_PSK_SIZE} bytes", "a text of at most {VELK_PSK_SIZE} bytes",
                     "the key's length is beyond {VELK_PSK_SIZE}", "longer than {VELK_PSK_SIZE} bytes"],
    "315": STATE, "316": STATE + ["{mac} upper-case hexadecimal digits and a NUL, {mac+1} bytes"],
    "317": STATE + ["numbers of {signal_bits} bits", "at the bytes 0 and {signal_bits//8}"],
    "318": DAEMON + ["{standard_g} or {standard_b} for the daemon's 0 or 1", "With {LIB_VELK_FAILURE} for a value",
                     "of a get is {standards_if_unknown} all the same", "its value is not 0 or 1",
                     "byte 0 is neither {standard_g} nor {standard_b}"],
}
# The sections before the commands, by their headings.
SHARED_FACTS = {
    "The record": ["Request and response are a `_velk_request` each, {record} bytes", "| 0 | {VELK_INTERFACE_SIZE} | `interface` |",
                   "{VELK_INTERFACE_SIZE} bytes without a NUL match no interface",
                   "| {VELK_INTERFACE_SIZE} | 4 | `command_type` | {VELK_GET} get, {VELK_SET} set, {VELK_RESTART} restart |",
                   "| {VELK_INTERFACE_SIZE+4} | 4 | `command_id` |",
                   "| {VELK_INTERFACE_SIZE+8} | {VELK_DATA_SIZE} | `data` |", '"Byte 0" below'],
    "The lock": ["the second caller gets {LIB_VELK_LOCKED} at once"],
    "Blocking": ["{turn} seconds at most", "does not change for {standstill} seconds", "up to {link} seconds and the time",
                 "up to {daemon} seconds for its answer"],
    "Texts and switch bytes": ["begins at byte 0", "is byte 0: {VELK_ON} (`VELK_ON`) on, {VELK_OFF} (`VELK_OFF`) off"],
    "The link question": ["ask again, {link_tries} times at most", "it is {link_tries} seconds of sleep and {link_tries+2} runs of tools",
                          "costs {standstill} seconds, or {turn} among many readers, in the first of the {link_tries} runs",
                          "in each run of `grep`: {link} seconds"],
}


def array_of_codes(path, name):
    rows = re.search(rf"{name}{{(.*?)}};", tables.read(path), re.S)[1]
    return {int(value): int(byte) for byte, value in re.findall(r"Code{(\d+), (\d+)}", rows)}


def constants():
    """Returns the constants that are in the public headers, and those of the sources, by their names here."""
    turns, fields, codes = "lib/base/readers_turn.cpp", "include/velk/wlan.h", "lib/wlan/configuration_fields.cpp"
    pause = tables.number(turns, r"milliseconds kPause{(\d+)};")
    found = dict(tables.public_numbers())
    found["standstill"] = tables.number(turns, r"int kPausesOfStandstill = (\d+);") * pause // 1000
    found["turn"] = tables.number(turns, r"int kPausesOfAll = (\d+);") * pause // 1000
    found["link_tries"] = tables.number("lib/presence/link_detection.cpp", r"int kEthtoolRetry = (\d+);")
    found["link"] = found["link_tries"] + 3 * found["turn"]
    found["daemon"] = tables.number("lib/wlan/channel.cpp", r"kReplySeconds = (\d+);")
    found["log_place"] = tables.number("lib/ntp/result_log.cpp", r"kFirstPlace = (\d+);")
    found["record"] = tables.number("include/velk/request.h", r"sizeof\(_velk_request\) == (\d+)")
    found["pause"], found["settle"], found["pass_pause"] = [
        int(seconds) for seconds in re.findall(r"WaitSeconds\((\d+)\)", tables.read("lib/restart/restart.cpp"))][:3]
    found["software_version"] = tables.number(fields, r"char software_version\[(\d+)\];")
    found["key"] = tables.number(fields, r"char key\[(\d+)\];")
    found["mac"] = 2 * tables.number(fields, r"uint8_t access_point\[(\d+)\];")
    found["signal_bits"] = tables.number(fields, r"uint(\d+)_t signal\[2\];")
    found["security"] = max(array_of_codes(codes, "kSecurityCodes").values())
    found["wep"] = array_of_codes(codes, "kSecurityCodes")[tables.number(codes, r"kEncryptionWep = (\d+);")]
    found["facts"] = max(array_of_codes("lib/wlan/state.cpp", "kOneBasedCodes").values())
    found["standard_if_unknown"] = tables.number("lib/wlan/state.cpp", r"PutFact\(state.dot11_phy, (\d+), out\)")
    found["region_if_unknown"] = tables.number("lib/wlan/state.cpp", r"PutFact\(state.region, (\d+), out\)")
    found["standards_if_unknown"] = tables.number(codes, r"out\[0\] = (\d+);")
    found["infrastructure_byte"], found["ad_hoc_byte"] = [array_of_codes(codes, "kServiceSetCodes")[value] for value in (1, 0)]
    found["standard_g"], found["standard_b"] = [array_of_codes(codes, "kDot11PhyCodes")[value] for value in (0, 1)]
    return found


CONSTANTS = constants()


def sections():
    """Returns each section of a command by its ids: its parts with numbers as one text."""
    found = {}
    text = tables.read("docs/commands.md")
    for ids, body in re.findall(r"^### ([0-9, ]+): [^\n]+$(.*?)(?=^### |\Z)", text, re.S | re.M):
        parts = dict(re.findall(r"^\*\*([^*\n]+)\*\*\n(.*?)(?=^\*\*[^*\n]+\*\*$|\Z)", body, re.S | re.M))
        when = " ".join(re.findall(r"^\| -?\d+ \| (.*) \|$", parts["Results"], re.M))
        found[ids] = tables.without_breaks(" ".join([parts["Data"], when, parts["Longest blocking time"]]))
    return found


def shared(heading):
    text = re.search(rf"^## {heading}\n(.*?)(?=^## )", tables.read("docs/commands.md"), re.S | re.M)[1]
    return tables.without_breaks(re.sub(r"^```\w*\n.*?^```$", "", text, flags=re.S | re.M))


# The row of each result begins in every section in the same way, after a condition such as "set: ".
MEANINGS = {0: "done", -3: "the lock is held by another call", -4: "an interface other than", -5: "no supported adapter is attached",
            -6: ("the wired port has a link", "the link came up during the call")}


class Results(tables.TestCase):
    def test_each_has_its_meaning_in_every_section(self):
        parts = re.findall(r"^\*\*Results\*\*\n(.*?)^\*\*", tables.read("docs/commands.md"), re.S | re.M)
        rows = re.findall(r"^\| (-?\d+) \| (?:(?:set|get[^|:]*|`eth1`): )?([^|]+) \|$", "\n".join(parts), re.M)
        count = 0
        for result, when in rows:
            meaning = MEANINGS.get(int(result))
            if meaning:
                self.assertTrue(when.startswith(meaning), f"{result}: {when}")
                count += 1
            else:
                self.assertEqual(int(result), tables.results()["LIB_VELK_FAILURE"], when)
                self.assertFalse(when.startswith(("done", "an interface other than")), f"{result}: {when}")
        self.assertGreater(count, 100)


class Numbers(tables.TestCase):
    def check(self, name, text, facts):
        text = re.sub(r"eth[01]", "", text)
        self.holds(name, text, [tables.filled(fact, CONSTANTS) for fact in facts] + [one for one in IN_ALL if one in text])

    def test_commands_have_those_of_the_sources(self):
        self.assertEqual([ids.split(",")[0] for ids in sections()], list(FACTS))
        for ids, text in sections().items():
            with self.subTest(ids):
                self.check(ids, text, FACTS[ids.split(",")[0]])

    def test_shared_sections_have_those_of_the_sources(self):
        for heading, facts in SHARED_FACTS.items():
            with self.subTest(heading):
                self.check(heading, shared(heading), facts)

    def test_every_value_of_the_public_header_is_in_a_fact(self):
        used = set(re.findall(r"[A-Z][A-Z0-9_]+", str(FACTS) + str(SHARED_FACTS)))
        version = {name for name in tables.public_numbers() if name.startswith("VELK_VERSION_")}
        ids = {name for name in tables.public_numbers() if name.startswith("VELK_CMD_")}
        # Messages to the daemon are no data of a command. The slots are written as a word. The results have
        # their table.
        others = {name for name in tables.public_numbers() if name.startswith("VELK_WLAN_")} | {"VELK_DNS_SLOTS"} | set(tables.results())
        self.assertEqual(set(tables.public_numbers()) - used - version - ids - others, set())
        self.assertEqual(tables.public_numbers()["VELK_DNS_SLOTS"], 3)

    def test_waits_are_those_of_velkctl(self):
        settings = json.loads(tables.output("velkctl", "list", "--json"))["settings"]
        for ids, text in sections().items():
            for setting in settings:
                if str(setting["id"]) not in ids.split(", ") or setting["interface"] == "eth0" or not setting["get"]:
                    continue
                expected = 0
                if f"up to {CONSTANTS['link']} seconds" in text:
                    expected += CONSTANTS["link"]
                if f"at worst {2 * CONSTANTS['link']} seconds" in text:
                    expected += 2 * CONSTANTS["link"]
                if "seconds for the daemon" in text:
                    expected += CONSTANTS["daemon"]
                self.assertEqual(setting["longest_seconds"], expected, setting["name"])


if __name__ == "__main__":
    unittest.main()
