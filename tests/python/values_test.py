# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Values and their data bytes, without a device."""
import asyncio
import copy
import datetime
import enum
import ipaddress
import pickle
import struct
import traceback
import unittest
from unittest import mock

import velk
import velk.aio
from velk import errors, record, text
from velk.schedule import Frequency, Schedule, Weekday

KEY = "a key that nobody must see"


class Words(str, enum.Enum):
    """Texts. The str() of each is another text, such as Words.HOST."""

    HOST = "time.example"
    ADDRESS = "10.0.0.9"
    MASK = "24"
    ON = "on"
    STATIC = "static"
    WRONG = "wrong "


def encoded(name, value):
    return bytes(velk.find(name).encode(value)).rstrip(b"\0")


def decoded(name, content):
    return velk.find(name).decode(record.data(content))


class Encoding(unittest.TestCase):
    def test_writes_the_bytes_of_each_kind(self):
        address = ipaddress.IPv4Address
        for name, value, expected in [
                ("ntp", True, b"\1"), ("ntp", False, b"\2"), ("ntp", "on", b"\1"), ("ntp", "off", b"\2"),
                ("eth0.method", velk.Method.DHCP, b"\2"), ("eth0.method", "static", b"\1"),
                ("eth0.link-speed", velk.LinkSpeed.HALF_10, b"\5"),
                ("eth1.service-set", velk.ServiceSet.AD_HOC, b"\2"),
                ("eth1.encryption", velk.Encryption.WEP, b"\2"), ("eth1.encryption", "2", b"\2"),
                ("eth1.encryption", "4", b"\4"), ("eth1.channel", 13, b"\x0d"),
                ("eth0.address", "10.0.0.9", b"10.0.0.9"), ("eth0.address", address("10.0.0.9"), b"10.0.0.9"),
                ("eth0.netmask", "24", b"255.255.255.0"), ("eth0.netmask", "/8", b"255.0.0.0"),
                ("eth0.netmask", "32", b"255.255.255.255"), ("eth0.netmask", "/255.0.0.0", b"255.0.0.0"),
                ("eth0.gateway", None, b""), ("eth0.gateway", "none", b""),
                ("eth0.dns", [], b""), ("eth0.dns", ("1.2.3.4", address("5.6.7.8")),
                                        b"1.2.3.4\0\0\0\0\0\0\0\0\0" b"5.6.7.8"),
                ("eth0.dns", ["223.254.253.252"], b"223.254.253.252"),
                ("ntp-server", "time.example", b"time.example"), ("ntp-server", None, b""),
                ("ntp-server", ipaddress.IPv6Address("2001:db8::1"), b"2001:db8::1"),
                ("web-update", Schedule.off(), b"\x63\x6300:00"), ("web-update", "every 6h", b"\1\x0600:00"),
                ("web-update", Schedule.daily("8:05"), b"\2\x0108:05"),
                ("web-update", Schedule.weekly(Weekday.SATURDAY, datetime.time(23, 59)), b"\3\x0723:59"),
                ("web-update", "monthly 31 08:30", b"\4\x1f08:30"),
                ("location", "", b""), ("location", "none", b"none"), ("location", "a\\x20b\u00e9", b"a b\xc3\xa9"),
                ("eth1.ssid", "x" * 32, b"x" * 32), ("eth1.psk", None, b""), ("eth1.psk", velk.Secret("k"), b"k"),
                ("eth1.wep-key-1", velk.Secret("0123456789"), b"0123456789"), ("psk", velk.Secret("none"), b"none")]:
            with self.subTest(name=name, value=value):
                self.assertEqual(expected, encoded(name, value))

    def test_refuses_values_that_are_not_valid(self):
        give_address = "; give an IPv4 address such as 192.168.0.10"
        give_mask = "; give an IPv4 mask such as 255.255.255.0"
        give_servers = "; give one to three IPv4 addresses such as 192.168.0.1, or none"
        give_host = "; give a host name or address such as 192.168.0.1, or none"
        give_key = "; give a text of 1 to 64 bytes, or none"
        give_text = "; give a text of at most 511 bytes"
        for name, value, problem in [
                ("ntp", "maybe", "'maybe' is not valid; give on or off"),
                ("eth0.method", "DHCP", "'DHCP' is not valid; give static or dhcp"),
                ("eth1.channel", 14, "'14' is not valid; give a number from 1 to 13"),
                ("eth1.channel", 0, "'0' is not valid; give a number from 1 to 13"),
                ("eth0.address", "300.1.1.1", "'300.1.1.1' is not an IPv4 address" + give_address),
                ("eth0.address", "", "'' is not an IPv4 address" + give_address),
                ("eth0.address", "none", "'none' is not an IPv4 address" + give_address),
                ("eth0.address", "1.2.3.4\0", "'1.2.3.4\\x00' is not an IPv4 address" + give_address),
                ("eth0.address", "010.0.0.1", "'010.0.0.1' has a number with a leading zero; other programs read "
                                              "it as octal" + give_address),
                ("eth0.address", "127.0.0.1", "'127.0.0.1' is a loopback address; the device reaches only itself "
                                              "there" + give_address),
                ("eth0.address", "0.1.1.1", "'0.1.1.1' is not the address of a host, as it begins with 0" +
                 give_address),
                ("eth0.address", "255.255.255.255", "'255.255.255.255' is the broadcast address" + give_address),
                ("eth0.address", "240.0.0.1", "'240.0.0.1' is a reserved address" + give_address),
                ("eth0.address", "224.0.0.1", "'224.0.0.1' is a multicast address" + give_address),
                ("eth0.netmask", "33", "'33' is no mask: a prefix length is 1 to 32" + give_mask),
                ("eth0.netmask", "0", "'0' is not a mask: it has no ones" + give_mask),
                ("eth0.netmask", "/", "'/' has no prefix length" + give_mask),
                ("eth0.netmask", "255.0.255.0", "'255.0.255.0' is not a mask: a zero precedes a one" + give_mask),
                ("eth0.dns", ["1.1.1.1", "x"], "'x' is not an IPv4 address" + give_servers),
                ("eth0.dns", ["1.1.1.1"] * 2, "'1.1.1.1' is given twice; give every server once"),
                ("eth0.dns", ["1.1.1.1", "1.1.1.2", "1.1.1.3", "1.1.1.4"], "4 addresses given" + give_servers),
                ("ntp-server", "off", "'off' would be a host name here; give none to clear the setting"),
                ("ntp-server", "-x", "'-x' is not a host name" + give_host),
                ("ntp-server", "a b", "'a b' is not a host name" + give_host),
                ("ntp-server", "a.1", "'a.1' is not an IPv4 address" + give_host),
                ("ntp-server", "a" * 64, "'" + "a" * 40 + "...' is too long; a part without a dot has 64 of at most "
                                                          "63 characters" + give_host),
                ("web-update", "every 24h", "'every 24h' is not a schedule; give every 6h, daily 08:30, weekly "
                                            "sunday 08:30, monthly 31 08:30 or off"),
                ("location", "x" * 512, "512 bytes given" + give_text),
                ("location", "a\n", "control characters, such as the end of a line, are not taken" + give_text),
                ("location", "a\\x0a", "control characters, such as the end of a line, are not taken" + give_text),
                ("location", "a\x85", "control characters, such as the end of a line, are not taken" + give_text),
                ("location", "a\r", "it ends with CR (carriage return), as in a CR LF file" + give_text),
                ("location", "\ud800", "it is not Unicode" + give_text),
                ("eth1.psk", velk.Secret(""), "0 bytes given" + give_key),
                ("eth1.psk", velk.Secret("********"), "this is the mask that is shown in place of a key" + give_key),
                ("eth1.psk", velk.Secret("\ud800"), "it is not Unicode" + give_key),
                ("eth1.wep-key-1", velk.Secret("0123456xyz"), "a key of 10 or 26 bytes consists of hex digits; give a "
                                                              "text of 5 or 13 bytes, 10 or 26 hex digits, or none")]:
            with self.subTest(name=name, value=value):
                with self.assertRaises(velk.InvalidValueError) as raised:
                    encoded(name, value)
                self.assertEqual(f"{velk.find(name).name}: {problem}", str(raised.exception))

    def test_refuses_other_types(self):
        for name, value, problem in [
                ("ntp", 1, "int, not bool; give on or off"),
                ("eth0.method", velk.LinkSpeed.AUTO, "LinkSpeed, not Method or str; give static or dhcp"),
                ("eth1.channel", True, "bool, not int; give a number from 1 to 13"),
                ("eth1.channel", "6", "str, not int; give a number from 1 to 13"),
                ("eth0.address", None, "NoneType, not IPv4Address or str; give an IPv4 address such as 192.168.0.10"),
                ("eth0.dns", "1.1.1.1", "str, not a list of IPv4Address or str; give one to three IPv4 addresses "
                                        "such as 192.168.0.1, or none"),
                ("eth0.dns", [1], "a list with int, not a list of IPv4Address or str; give one to three IPv4 addresses "
                                  "such as 192.168.0.1, or none"),
                ("location", None, "NoneType, not str; give a text of at most 511 bytes"),
                ("eth1.psk", KEY, "str, not Secret; give a text of 1 to 64 bytes, or none")]:
            with self.subTest(name=name, value=value):
                with self.assertRaises(TypeError) as raised:
                    encoded(name, value)
                self.assertEqual(f"{name}: its type is {problem}", str(raised.exception))


    def test_takes_the_content_of_a_class_of_texts(self):
        for name, value, expected in [
                ("ntp-server", Words.HOST, b"time.example"), ("location", Words.HOST, b"time.example"),
                ("eth0.address", Words.ADDRESS, b"10.0.0.9"), ("eth0.netmask", Words.MASK, b"255.255.255.0"),
                ("eth0.dns", [Words.ADDRESS], b"10.0.0.9"), ("ntp", Words.ON, b"\1"),
                ("eth0.method", Words.STATIC, b"\1"), ("eth1.psk", velk.Secret(Words.HOST), b"time.example")]:
            with self.subTest(name=name):
                self.assertEqual(expected, encoded(name, value))
        for name in ["ntp", "ntp-server", "eth0.address", "eth0.method", "web-update"]:
            with self.subTest(name=name), self.assertRaisesRegex(velk.InvalidValueError, "'wrong '"):
                encoded(name, Words.WRONG)


class Decoding(unittest.TestCase):
    def test_returns_python_types(self):
        for name, content, expected in [
                ("ntp", b"\1", True), ("ntp", b"\2", False), ("eth0.method", b"\2", velk.Method.DHCP),
                ("eth1.channel", b"\0", 0), ("eth1.channel", b"\xff", 255),
                ("eth0.address", b"", None), ("eth0.address", b"127.0.0.1", ipaddress.IPv4Address("127.0.0.1")),
                ("eth0.dns", b"", []), ("eth0.dns", bytes(16) + b"1.2.3.4", [ipaddress.IPv4Address("1.2.3.4")]),
                ("eth0.dns", b"255.255.255.255\0" * 3, [ipaddress.IPv4Address("255.255.255.255")] * 3),
                ("ntp-server", b"", None), ("ntp-server", b"a.b\0c", "a.b"), ("location", b"", ""),
                ("location", b"x" * 512, "x" * 512), ("eth0.mac-address", b"0200000000AF", "02:00:00:00:00:AF"),
                ("eth0.mac-address", b"020", "020"), ("eth1.access-point", b"", None),
                ("eth1.hardware-version", b"A", "A"), ("eth1.rate", b"\1\2\3\4\5", b"\1\2\3\4"),
                ("eth1.signal", struct.pack("=HH", 1, 65535), (1, 65535)),
                ("eth1.psk", b"", None), ("eth1.psk", b"k\xff", velk.Secret("k\\xff")),
                ("web-update", b"\1\6", Schedule.every(6)), ("web-update", b"\x63\x6300:00", Schedule.off()),
                ("web-update", b"\3\x018:30", Schedule.weekly(Weekday.SUNDAY, datetime.time(8, 30)))]:
            with self.subTest(name=name, content=content):
                self.assertEqual(expected, decoded(name, content))

    def test_reports_values_that_are_not_valid(self):
        for name, content, shown in [
                ("ntp", b"\0", "0"), ("eth0.method", b"\7", "7"), ("eth1.encryption", b"\5", "5"),
                ("eth0.address", b"300.1\n", "300.1\\x0a"),
                ("eth0.dns", b"1.2.3.4".ljust(16, b"\0") + b"x", "1.2.3.4 x"),
                ("web-update", b"\3\x0908:30", "weekly 9 08:30"), ("web-update", b"\2\x0125:00", "daily 25:00"),
                ("web-update", b"\7\3t", "schedule 7 3 t")]:
            with self.subTest(name=name, content=content):
                with self.assertRaises(velk.DeviceValueError) as raised:
                    decoded(name, content)
                self.assertEqual(shown, raised.exception.text)
        with self.assertRaisesRegex(velk.DeviceValueError, r"^eth0\.address: the device holds '300\.1\\x0a', which is "
                                                           "not valid$"):
            decoded("eth0.address", b"300.1\n")

    def test_writes_bytes_that_are_no_text_as_escapes(self):
        for content, shown in [
                (b"caf\xc3\xa9 \xf0\x9f\x93\xb6", "caf\u00e9 \U0001f4f6"), (b"a\xffb\xc3", "a\\xffb\\xc3"),
                (b"\xc0\x80\xed\xa0\x80", "\\xc0\\x80\\xed\\xa0\\x80"),
                (b"\x1b[2J\x7f\xc2\x85", "\\x1b[2J\\x7f\\xc2\\x85"),
                (b"a\xe2\x80\x8bb", "a\\xe2\\x80\\x8bb"), (b"\\x41 \\ \\xg", "\\x5cx41 \\ \\xg"), (b"a\0b", "a")]:
            with self.subTest(content=content):
                self.assertEqual(shown, text.shown(content))
                self.assertEqual(content.split(b"\0")[0], text.bytes_of(shown))


class Schedules(unittest.TestCase):
    def test_are_texts_of_velkctl(self):
        for words in ["off", "every 1h", "every 23h", "daily 00:00", "weekly monday 23:59", "monthly 1 08:30"]:
            self.assertEqual(words, str(Schedule.parse(words)))

    def test_refuse_wrong_parts(self):
        for make in [lambda: Schedule.every(0), lambda: Schedule.every(24), lambda: Schedule.every(True),
                     lambda: Schedule.daily("24:00"), lambda: Schedule.daily("8:3"),
                     lambda: Schedule.daily(datetime.time(8, 30, 1)), lambda: Schedule.monthly(32, "08:30"),
                     lambda: Schedule.weekly(8, "08:30"), lambda: Schedule(Frequency.OFF, 1),
                     lambda: Schedule(Frequency.DAILY), lambda: Schedule(Frequency.HOURS, 6, datetime.time(8)),
                     lambda: Schedule.parse("daily"), lambda: Schedule.parse("weekly someday 08:30"),
                     lambda: Schedule.parse("daily 08:30 ")]:
            with self.assertRaises(ValueError):
                make()


class Secrets(unittest.TestCase):
    def test_are_shown_as_asterisks(self):
        key = velk.Secret(KEY)
        self.assertEqual("Secret('********')", repr(key))
        self.assertEqual("******** ********   {'psk': Secret('********')}", f"{key} {key!s:10} {dict(psk=key)}")
        self.assertEqual(KEY, key.reveal())
        for make in [lambda: pickle.dumps(key), lambda: vars(key), key.__getstate__]:
            with self.assertRaises(TypeError):
                make()

    def test_have_a_text(self):
        for wrong in [KEY.encode(), None, 5]:
            with self.assertRaisesRegex(TypeError, f"^the text of a Secret is a str, not {type(wrong).__name__}$"):
                velk.Secret(wrong)
        self.assertNotIn(KEY, self.shown_failure(lambda: velk.Secret(KEYS_OF_BYTES[0])))

    def test_are_equal_if_their_texts_are(self):
        self.assertEqual(velk.Secret(KEY), velk.Secret(KEY))
        self.assertNotEqual(velk.Secret(KEY), velk.Secret("another"))
        self.assertNotEqual(velk.Secret(KEY), KEY)
        self.assertEqual(1, len({velk.Secret(KEY), velk.Secret(KEY)}))
        self.assertEqual(velk.Secret("\ud800"), copy.deepcopy(velk.Secret("\ud800")))

    def test_are_in_no_frame_of_a_traceback(self):
        for name, key, result in [("eth1.wep-key-1", KEY, 0), ("eth1.psk", KEY * 4, 0), ("eth1.psk", KEY + "\r", 0),
                                  ("eth1.psk", KEY + "\ud800", 0), ("eth1.psk", KEY, -1)]:
            for run in [lambda: velk.set(name, SECRETS[key]), lambda: asyncio.run(velk.aio.set(name, SECRETS[key]))]:
                with mock.patch.object(record, "execute", return_value=(result, record.Request())):
                    shown = self.shown_failure(run)
                self.assertIn("/velk/device.py", shown)
                self.assertNotIn(KEY, shown)

    def shown_failure(self, run):
        """The traceback with the variables of all frames, without those of this file."""
        try:
            run()
        except (TypeError, velk.VelkError) as error:
            lines = traceback.TracebackException.from_exception(error, capture_locals=True).format()
            return "".join(line for line in lines if __file__ not in line) + repr(error)
        return self.fail("no exception")


KEYS_OF_BYTES = [KEY.encode()]
SECRETS = {key: velk.Secret(key) for key in [KEY, KEY * 4, KEY + "\r", KEY + "\ud800"]}


class Errors(unittest.TestCase):
    def test_each_result_has_its_exception(self):
        for result, kind, message in [
                (-1, velk.FailureError, "file, socket, time-out or unreadable value (LIB_VELK_FAILURE, -1)"),
                (-3, velk.LockedError, "another program is changing settings (LIB_VELK_LOCKED, -3)"),
                (-4, velk.InvalidParameterError, "the library does not take this command, interface or value "
                                                 "(LIB_VELK_INVALID_PARAMETER, -4)"),
                (-5, velk.NoAdapterError, "no supported wireless adapter is attached (LIB_VELK_NO_ADAPTER, -5)"),
                (-6, velk.WiredLinkedError, "refused while the cable is in the wired port (LIB_VELK_WIRED_LINKED, -6)"),
                (-2, velk.ResultError, "an unknown result (unknown, -2)")]:
            error = errors.result_error("it failed", result)
            for same in [error, pickle.loads(pickle.dumps(error)), copy.copy(error)]:
                self.assertIs(kind, type(same))
                self.assertEqual((result, f"it failed: {message}"), (same.result, str(same)))

    def test_names_of_settings(self):
        self.assertEqual("eth1.psk", velk.find("psk").name)
        for name, message in [
                ("eth0.dsn", "unknown setting 'eth0.dsn'; did you mean eth0.dns or eth1.dns?"),
                ("dns", "unknown setting 'dns'; did you mean eth0.dns or eth1.dns?"),
                ("eth0.psk", "unknown setting 'eth0.psk'; did you mean eth1.psk?"),
                ("\x1b", "unknown setting '\\x1b'; velk.settings() returns all")]:
            with self.assertRaises(velk.UnknownSettingError) as raised:
                velk.find(name)
            self.assertEqual(message, str(raised.exception))
        for name in [104, None, b"ntp", ["ntp"]]:
            with self.assertRaisesRegex(TypeError, f"^the name of a setting is a str, not {type(name).__name__}$"):
                velk.get(name)
        self.assertIs(velk.find("psk"), velk.find(velk.find("eth1.psk")))

    def test_directions(self):
        with self.assertRaisesRegex(velk.UnsupportedError, "^eth0.dhcp-notice: cannot be read, only set$"):
            velk.get("eth0.dhcp-notice")
        with self.assertRaisesRegex(velk.UnsupportedError, "^eth1.rate: cannot be set, only read$"):
            velk.set("eth1.rate", "x")

    def test_interfaces_of_restart(self):
        for arguments in [dict(interface="eth2"), dict(interface=""), dict(interface="eth0", notify_only=True)]:
            with self.assertRaises(ValueError):
                velk.restart(**arguments)

    def test_settings_of_an_interface(self):
        self.assertEqual(velk.settings(), velk.settings("") + velk.settings("eth0") + velk.settings("eth1"))
        self.assertEqual(("administrator", "eth0.mac-address", "eth1.standards-enabled"),
                         (velk.settings("")[0].name, velk.settings("eth0")[0].name, velk.settings("eth1")[-1].name))
        self.assertEqual((), velk.settings("eth2"))
