# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The package on a simulated device, compared with velkctl. Each class runs on a device of its own."""
import ast
import asyncio
import contextlib
import enum
import fcntl
import ipaddress
import json
import os
import pathlib
import pickle
import re
import subprocess
import sys
import threading
import time
import unittest
import unittest.mock

import velk
import velk.aio
from velk import record
from velk.schedule import Schedule, Weekday

IDENTITY = pathlib.Path("/var/libvelk/libvelk")
EXIT_HOOKS = pathlib.Path("/etc/dhclient-exit-hooks")
INTERFACES = pathlib.Path("/etc/network/interfaces")
LOCK = "/var/tmp/vklib_lock"
README = pathlib.Path(os.environ["VELK_SOURCE"], "bindings/python/README.md")

# For each setting that can be set: values, with the value in velkctl's JSON. The addresses precede the method, as
# with DHCP a get reads those of the lease; the method precedes the options of DHCP.
VALUES = {
    "administrator": [("", ""), ("Jo \\xff", "Jo \\xff"), ("none", "none")],
    "location": [("a 'b' & c", "a 'b' & c"), ("caf\u00e9", "caf\u00e9")],
    "ntp": [(False, "off"), (True, "on")],
    "dhcp-ntp": [(True, "on"), (False, "off")],
    "ntp-server": [("time.example", "time.example"), (ipaddress.IPv4Address("10.0.0.1"), "10.0.0.1")],
    "web-update": [(Schedule.every(5), "every 5h"), (Schedule.daily("9:05"), "daily 09:05"),
                   (Schedule.weekly(Weekday.FRIDAY, "23:59"), "weekly friday 23:59"),
                   ("monthly 31 08:30", "monthly 31 08:30"), (Schedule.off(), "off")],
    "eth1.method": [(velk.Method.STATIC, "static"), (velk.Method.DHCP, "dhcp")],
    "eth0.apipa": [(False, "off"), (True, "on")],
    "eth1.apipa": [(True, "on"), (False, "off")],
    "eth0.address": [("10.0.0.9", "10.0.0.9"), (ipaddress.IPv4Address("10.0.0.8"), "10.0.0.8")],
    "eth0.netmask": [("255.255.0.0", "255.255.0.0"), ("8", "255.0.0.0")],
    "eth0.gateway": [("10.0.0.1", "10.0.0.1"), (ipaddress.IPv4Address("10.0.0.2"), "10.0.0.2")],
    "eth0.method": [("static", "static"), (velk.Method.DHCP, "dhcp")],
    "eth0.dhcp-dns": [(True, "on"), (False, "off")],
    "eth1.dhcp-dns": [(False, "off"), (True, "on")],
    "eth0.dns": [(["10.0.0.53", ipaddress.IPv4Address("10.0.0.54"), "10.0.0.55"],
                  ["10.0.0.53", "10.0.0.54", "10.0.0.55"]), ([], [])],
    "eth1.dns": [(["10.0.0.56"], ["10.0.0.56"])],
    "eth0.link-speed": [(speed, speed.value) for speed in velk.LinkSpeed],
    "eth1.service-set": [(velk.ServiceSet.AD_HOC, "ad-hoc"), ("infrastructure", "infrastructure")],
    "eth1.ssid": [("my network", "my network"), ("", "")],
    "eth1.channel": [(1, 1), (13, 13)],
    "eth1.encryption": [(encryption, encryption.value) for encryption in velk.Encryption],
    "eth1.authentication": [(1, 1), (4, 4)],
    "eth1.wep-key-1": [(velk.Secret("abcde"), "abcde"), (None, None)],
    "eth1.wep-key-2": [(velk.Secret("abcdefghijklm"), "abcdefghijklm")],
    "eth1.wep-key-3": [(velk.Secret("0123456789"), "0123456789")],
    "eth1.wep-key-4": [(velk.Secret("0123456789abcdef0123456789"), "0123456789abcdef0123456789")],
    "eth1.wep-default-key": [(2, 2), (4, 4)],
    "eth1.psk": [(velk.Secret("a key"), "a key"), (velk.Secret("k" * 64), "k" * 64), (None, None)],
    "eth1.standards-enabled": [(2, 2), (3, 3)],
}
# Without a stanza of its own lines, the last interface of the file gains none; and a notice has no get.
SET_ELSEWHERE = {"eth1.address", "eth1.netmask", "eth1.gateway", "eth0.dhcp-notice"}


def velkctl(*arguments, text=None):
    return subprocess.run(["velkctl", *arguments], input=text, capture_output=True, text=True, check=False)


def velkctl_get(*names):
    """The values of velkctl, or the number of the result."""
    ended = velkctl("get", *names, "--json", "--show-secrets")
    return {row["name"]: row["error"]["result"]["code"] if row["error"] else row["value"]
            for row in json.loads(ended.stdout)["settings"]}


def in_json(value):
    """A value as velkctl writes it in JSON."""
    if isinstance(value, list):
        return [str(server) for server in value]
    if isinstance(value, bool):
        return "on" if value else "off"
    if isinstance(value, velk.Secret):
        return value.reveal()
    if isinstance(value, bytes):
        return value.hex()
    if isinstance(value, tuple):
        return list(value)
    return str(value) if isinstance(value, (enum.Enum, Schedule, ipaddress.IPv4Address)) else value


def python_get(name):
    try:
        return in_json(velk.get(name))
    except velk.ResultError as error:
        return error.result


@contextlib.contextmanager
def locked():
    with open(LOCK, "a", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield


class Gets(unittest.TestCase):
    def compare_all(self):
        names = [setting.name for setting in velk.settings() if setting.readable]
        mine = {name: python_get(name) for name in names}
        self.assertEqual(velkctl_get(*names), mine)
        return mine

    def test_1_every_setting_is_that_of_velkctl(self):
        values = self.compare_all()
        self.assertEqual(("192.168.0.10", -6), (values["eth0.address"], values["eth1.signal"]))

    def test_2_also_without_the_cable(self):
        subprocess.run(["velk-sandbox", "cable", "out"], check=True)
        values = self.compare_all()
        self.assertEqual(([52, 95], "82848b96", 3), tuple(values[f"eth1.{name}"] for name in ("signal", "rate",
                                                                                            "standard")))
        self.assertEqual(((52, 95), bytes.fromhex("82848b96")), (velk.get("eth1.signal"), velk.get("eth1.rate")))

    def test_3_also_without_the_adapter(self):
        subprocess.run(["velk-sandbox", "adapter", "out"], check=True)
        values = self.compare_all()
        self.assertEqual((-5, -1), (values["eth1.signal"], values["eth1.ssid"]))

    def test_any_bytes_of_a_text(self):
        before = IDENTITY.read_bytes()
        self.addCleanup(IDENTITY.write_bytes, before)
        for content in [b"caf\xc3\xa9", b"\xff\xc3 x", b"\\x41\\", b"\xe2\x80\x8b", b"\x1b[2J",
                        b"\xed\xa0\x80", b"\xc2\x85", b"\xf0\x9f\x93\xb6", b"\xf4\x90\x80\x80", b"\xe2\x80\xae\xd8\x9c"]:
            with self.subTest(content=content):
                IDENTITY.write_bytes(b"ADMINISTRATOR=" + content + b"\nLOCATION=x\n")
                self.assertEqual(velkctl_get("administrator"), {"administrator": velk.get("administrator")})

    def test_a_value_that_is_not_valid(self):
        before = INTERFACES.read_text()
        self.addCleanup(INTERFACES.write_text, before)
        INTERFACES.write_text(before.replace("192.168.0.10", "300.1"))
        with self.assertRaises(velk.DeviceValueError) as raised:
            velk.get("eth0.address")
        self.assertEqual("300.1", raised.exception.text)
        again = pickle.loads(pickle.dumps(raised.exception))
        self.assertEqual((str(raised.exception), "300.1"), (str(again), again.text))


class Sets(unittest.TestCase):
    def test_every_setting_is_set(self):
        self.assertEqual({setting.name for setting in velk.settings() if setting.writable},
                         VALUES.keys() | SET_ELSEWHERE)

    def test_velkctl_and_python_read_each_other(self):
        for name, values in VALUES.items():
            setting = velk.find(name)
            for value, expected in values:
                with self.subTest(name=name, value=value):
                    velk.set(name, value)
                    self.assertEqual({name: expected}, velkctl_get(name))
            for value, expected in values:
                with self.subTest(name=name, velkctl=value):
                    words = expected if isinstance(expected, list) else [expected]
                    words = ["none"] if not words or words == [None] else [str(word) for word in words]
                    secret = setting.secret and expected is not None
                    ended = velkctl("set", name, "--force", *(["-"] if secret else words),
                                    text=f"{expected}\n" if secret else None)
                    self.assertEqual(0, ended.returncode, ended.stderr)
                    self.assertEqual(expected, python_get(name))

    def test_addresses_of_the_last_stanza(self):
        before = INTERFACES.read_text()
        self.addCleanup(INTERFACES.write_text, before)
        INTERFACES.write_text(before + "\taddress 10.0.0.1\n\tnetmask 255.0.0.0\n\tgateway 10.0.0.2\n")
        velk.set("eth1.method", velk.Method.STATIC)
        for name, value in [("eth1.address", "10.1.0.1"), ("eth1.netmask", "255.255.0.0"), ("eth1.gateway", "10.1.0.2"),
                            ("eth1.gateway", None)]:
            velk.set(name, value)
            self.assertEqual({name: value}, velkctl_get(name))

    def test_a_notice(self):
        contents = []
        for change in [lambda: velk.set("eth0.dhcp-notice", False), lambda: velkctl("set", "eth0.dhcp-notice", "on"),
                       lambda: velkctl("set", "eth0.dhcp-notice", "off"), lambda: velk.set("eth0.dhcp-notice", True)]:
            change()
            contents.append(EXIT_HOOKS.read_text())
        self.assertEqual(contents[:2], contents[2:0:-1][:1] + contents[3:])
        self.assertNotEqual(contents[0], contents[1])

    def test_velkctl_refuses_the_same_texts(self):
        for name, words in [
                ("eth0.address", ["300.1.1.1", "010.0.0.1", "127.0.0.1", "0.1.1.1", "224.0.0.1", "240.0.0.1",
                                  "255.255.255.255", "1.2.3", "1.2.3.4 ", "", "none"]),
                ("eth0.netmask", ["0", "33", "/", "/33", "255.0.255.0", "255.255.255.00", "x", "-1"]),
                ("eth0.gateway", ["off", "0.0.0.0"]),
                ("ntp-server", ["off", "-x", "a b", "a..b", "1.2.3", "a.1", "a" * 64, "a." * 127, "::1", "1:2", "a_b.",
                                "1::2", "127.0.0.1", "x\u00e9", "fe80::1%eth0"]),
                ("web-update", ["every 0h", "every 24h", "every 06h", "daily 24:00", "daily 8:30", "daily 08:5",
                                "weekly Sunday 08:30", "monthly 0 08:30", "monthly 031 08:30", "daily  08:30", "x"]),
                ("eth1.encryption", ["2", "5", "WEP", "3"]),
                ("location", ["x" * 511, "x" * 512, "a\r", "a\tb", "a\\x0a", "a\\x80", "\u0085"]),
                ("eth1.ssid", ["x" * 32, "x" * 33, "\u00e9" * 16, "\u00e9" * 17])]:
            for word in words:
                with self.subTest(name=name, word=word):
                    ended = velkctl("set", name, "--json", "--", word)
                    document = json.loads(ended.stdout)
                    try:
                        velk.find(name).encode(word)
                        mine = []
                    except velk.InvalidValueError as error:
                        mine = [str(error)]
                    parts = ("message", "detail", "remedy")
                    theirs = ["; ".join(error[part] for part in parts if error[part]) for error in document["errors"]]
                    self.assertEqual(ended.returncode == 2, mine != [], theirs or mine)
                    # Only velkctl guesses, has --force, and names its manual.
                    if mine and not re.search("did you mean|--force|manual", theirs[0]):
                        self.assertEqual(theirs, mine)


class Results(unittest.TestCase):
    def test_failure(self):
        content = INTERFACES.read_bytes()
        INTERFACES.unlink()
        self.addCleanup(INTERFACES.write_bytes, content)
        with self.assertRaises(velk.FailureError) as raised:
            velk.get("eth0.address")
        self.assertEqual("eth0.address: could not be read: file, socket, time-out or unreadable value "
                         "(LIB_VELK_FAILURE, -1)", str(raised.exception))

    def test_locked(self):
        with locked():
            for change in [lambda: velk.set("eth0.dns", []), lambda: velk.restart("eth0")]:
                with self.assertRaises(velk.LockedError):
                    change()
            begin = time.monotonic()
            with self.assertRaises(velk.LockedError):
                velk.set("eth0.dns", [], wait=0.5)
            self.assertGreaterEqual(time.monotonic() - begin, 0.5)
            self.assertEqual("192.168.0.10", str(velk.get("eth0.address")))

    def test_waits_for_the_lock(self):
        is_locked, release = threading.Event(), threading.Event()

        def hold():
            with locked():
                is_locked.set()
                release.wait(15)
        holder = threading.Thread(target=hold)
        holder.start()
        is_locked.wait(15)
        threading.Timer(0.3, release.set).start()
        velk.set("location", "after the wait", wait=60)
        self.assertTrue(release.is_set())
        holder.join()
        self.assertEqual("after the wait", velk.get("location"))

    def test_invalid_parameter(self):
        velk.set("eth1.encryption", velk.Encryption.WEP)
        velk.set("eth1.wep-default-key", 1)
        with self.assertRaises(velk.InvalidParameterError) as raised:
            velk.set("eth1.wep-key-1", None)
        self.assertEqual("eth1.wep-key-1: could not be set: the library does not take this command, interface or value "
                         "(LIB_VELK_INVALID_PARAMETER, -4)", str(raised.exception))

    def test_no_adapter_and_cable(self):
        with self.assertRaises(velk.WiredLinkedError):
            velk.get("eth1.region")
        subprocess.run(["velk-sandbox", "adapter", "out"], check=True)
        with self.assertRaises(velk.NoAdapterError):
            velk.get("eth1.region")
        with self.assertRaises(velk.NoAdapterError):
            velk.restart("eth1", notify_only=True)


class Restarts(unittest.TestCase):
    def test_restarts(self):
        subprocess.run(["velk-sandbox", "adapter", "out"], check=True)
        velk.restart("eth0")
        subprocess.run(["velk-sandbox", "adapter", "in"], check=True)
        subprocess.run(["velk-sandbox", "cable", "out"], check=True)
        velk.restart("eth1", notify_only=True)


class Threads(unittest.TestCase):
    def test_take_turns_at_the_wireless_daemon(self):
        values = []

        def ask():
            for _ in range(5):
                values.append(velk.get("eth1.ssid"))
        threads = [threading.Thread(target=ask) for _ in range(6)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(["velk-lab"] * 30, values)

    def test_a_child_of_fork_gets_while_a_thread_of_the_parent_does(self):
        entered, leave = threading.Event(), threading.Event()
        execute = record.execute

        def slow(command):
            entered.set()
            leave.wait(15)
            return execute(command)
        with unittest.mock.patch.object(record, "execute", slow):
            thread = threading.Thread(target=velk.get, args=["eth1.ssid"])
            thread.start()
            entered.wait(15)
        child = os.fork()
        if child == 0:
            os._exit(0 if velk.get("eth1.ssid") == "velk-lab" and
                     asyncio.run(velk.aio.get("eth1.ssid")) == "velk-lab" else 1)
        self.assertEqual((child, 0), os.waitpid(child, 0))
        leave.set()
        thread.join()


class Asyncio(unittest.TestCase):
    def test_the_loop_goes_on_meanwhile(self):
        async def main():
            ticks = 0
            with locked():
                change = asyncio.ensure_future(velk.aio.set("location", "later", wait=60))
                while ticks < 20:
                    await asyncio.sleep(0.01)
                    ticks += 1
                self.assertFalse(change.done())
                self.assertEqual("192.168.0.10", str(await velk.aio.get("eth0.address")))
            await change
            return await velk.aio.get("location")
        self.assertEqual("later", asyncio.run(main()))

    def test_changes_wait_for_each_other_in_their_order(self):
        async def main():
            await asyncio.gather(*(velk.aio.set("location", f"place {number}") for number in range(10)))
            return await velk.aio.get("location")
        self.assertEqual("place 9", asyncio.run(main()))

    def test_many_gets_at_once(self):
        async def main():
            names = ["eth1.ssid", "eth1.channel", "eth0.dns", "eth0.link-speed"] * 5
            return await asyncio.gather(*map(velk.aio.get, names))
        servers = [ipaddress.IPv4Address("192.168.0.1"), ipaddress.IPv4Address("192.168.0.2")]
        self.assertEqual(["velk-lab", 6, servers, velk.LinkSpeed.AUTO] * 5, asyncio.run(main()))

    def test_exceptions_are_the_same(self):
        async def main():
            for error, call in [(velk.WiredLinkedError, velk.aio.get("eth1.rate")),
                                (velk.InvalidValueError, velk.aio.set("eth0.address", "x")),
                                (velk.UnknownSettingError, velk.aio.get("x")),
                                (ValueError, velk.aio.restart("eth2"))]:
                with self.assertRaises(error):
                    await call
            with locked(), self.assertRaises(velk.LockedError):
                await velk.aio.restart("eth0")
        asyncio.run(main())

    def test_a_cancelled_call_that_has_not_begun_is_left_out(self):
        async def main():
            with locked():
                first = asyncio.ensure_future(velk.aio.set("location", "first", wait=60))
                second = asyncio.ensure_future(velk.aio.set("location", "second", wait=60))
                with self.assertRaises(asyncio.TimeoutError):
                    await asyncio.wait_for(second, 0.2)
            await first
            await velk.aio.set("administrator", "third")
            return await velk.aio.get("location")
        self.assertEqual("first", asyncio.run(main()))

    def test_a_cancelled_change_does_not_wait_for_the_lock(self):
        async def main():
            for call in [velk.aio.set("location", "cancelled", wait=60), velk.aio.restart("eth0", wait=60)]:
                with locked(), self.assertRaises(asyncio.TimeoutError):
                    await asyncio.wait_for(call, 0.5)
            await velk.aio.set("administrator", "next")
            return await velk.aio.get("location")
        begin = time.monotonic()
        self.assertNotEqual("cancelled", asyncio.run(main()))
        self.assertLess(time.monotonic() - begin, 30)


class Manual(unittest.TestCase):
    def test_the_example_runs(self):
        example = re.search("^```python\n(.*?)^```", README.read_text(), re.DOTALL | re.MULTILINE)[1]
        code = compile(example, str(README), "exec", flags=ast.PyCF_ALLOW_TOP_LEVEL_AWAIT)

        # The example itself imports the modules that it uses.
        del sys.modules["velk.aio"], velk.aio

        async def main():
            await eval(code, {"key": "a new key"})  # pylint: disable=eval-used
        # A restart of eth0 with the adapter takes three minutes.
        with unittest.mock.patch.object(velk, "restart") as restart:
            asyncio.run(main())
        restart.assert_called_once_with("eth0")
        self.assertEqual((ipaddress.IPv4Address("192.168.0.77"), velk.Secret("a new key")),
                         (velk.get("eth0.address"), velk.get("eth1.psk")))
