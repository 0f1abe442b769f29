# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Addresses, paths and limits of the simulated device in docs/sandbox.md and velk-sandbox(1), and those of the
settings page's server in velk-web(8)."""
import re
import unittest

import tables

PAGE = tables.without_breaks(tables.read("docs/sandbox.md"))
ADDRESS = r"\d+\.\d+\.\d+\.\d+|(?:[0-9a-f]{2}:){5}[0-9a-f]{2}"


def manual(name):
    """Returns the text of a manual page without its macros."""
    return tables.without_breaks(re.sub(r"^\.[A-Z]\w *", "", tables.read(f"docs/man/{name}"), flags=re.M))


def constants():
    ports, router = tables.read("sandbox/hardware/ports.h"), tables.read("sandbox/data/router/dnsmasq.conf")
    found = {}
    for port in ("kWiredPort", "kWirelessPort"):
        numbers = re.search(rf"{port} = {{\"\w+\", \"\w+\", {{([^}}]+)}}}}", ports)[1]
        found[port] = ":".join(f"{int(number, 0):02x}" for number in numbers.split(","))
    interfaces = tables.read("sandbox/data/rootfs/etc/network/interfaces")
    for key in ("address", "netmask", "gateway"):
        found[key] = re.search(rf"^\t{key} (.*)$", interfaces, re.M)[1]
    found["router0"], found["router1"] = re.findall(r'SetUpPort\(\*ports_, network, kRouterWire\w+, "([\d.]+)"\)',
                                                    tables.read("sandbox/hardware/router.cpp"))
    found["first0"], found["last0"], found["first1"], found["last1"] = [
        word for pair in re.findall(r"^dhcp-range=([\d.]+),([\d.]+),255\.255\.255\.0,2m$", router, re.M) for word in pair]
    found["end0"], found["end1"] = found["last0"].split(".")[3], found["last1"].split(".")[3]
    found["names"] = re.findall(r"^host-record=([\w.]+),", router, re.M)
    found["folder"] = tables.number("sandbox/device/mounts.h", r"kUsualMegabytes = (\d+);")
    files = found["folder"] * tables.number("sandbox/device/mounts.cpp", r"kFilesPerMegabyte = (\d+);")
    found["files"] = f"{files:,}"
    found["overlay"] = tables.number("sandbox/device/overlay_root.cpp", r"kMegabytes = (\d+);")
    found["connections"] = tables.number("sandbox/session/web_page.cpp", r"kMostConnections = (\d+);")
    found["members"] = tables.number("sandbox/device/device_image.cpp", r"kMostFiles = (\d+);")
    return found


CONSTANTS = constants()
ADDRESSES = [
    "`/etc/network/interfaces` ({address} in the sample) and the MAC address {kWiredPort}.", "its MAC address is {kWirelessPort}.",
    "| router, DNS and time server | {router0} | {router1} |",
    "| leases, for two minutes | {first0} to {end0} | {first1} to {end1} |",
    "`hardware-address eth0 {kWiredPort}`", "`address eth0 {address} {netmask}`", "`gateway eth0 {gateway}`", "`inet addr:{address}`",
    # The examples of a set, and the loopback interface.
    "-nameserver 192.168.0.1 -nameserver 192.168.0.2 +nameserver 192.168.0.53", "a port of 127.0.0.1,",
]
LIMITS = [
    "Each private folder holds at most {folder} MiB and {files} files", "They may take {overlay} MiB, not counting",
    "At most {connections} connections are served at once", "at most {members} of at most 1 MiB",
]


class Page(tables.TestCase):
    def test_has_the_addresses_of_the_sources(self):
        self.holds("docs/sandbox.md", PAGE, [tables.filled(fact, CONSTANTS) for fact in ADDRESSES], ADDRESS)

    def test_has_the_limits_of_the_sources(self):
        self.assertEqual(tables.number("sandbox/device/tar_reader.cpp", r"kLargestFile = (\d+) \* 1024;"), 1024)
        self.holds("docs/sandbox.md", PAGE, [tables.filled(fact, CONSTANTS) for fact in LIMITS], r"\d+ (?:MiB|files|connections)")

    def test_names_the_hosts_of_the_router(self):
        self.has(PAGE, "Its names are " + " and ".join(f"`{name}`" for name in CONSTANTS["names"]) + ".", "docs/sandbox.md")

    def test_private_paths_are_those_of_the_layout(self):
        table = re.search(r"^\| path \| on the device \|\n\|---\|---\|\n((?:\|.*\n)+)", tables.read("docs/sandbox.md"), re.M)[1]
        found = {path for cell in re.findall(r"^\| ([^|]*) \|", table, re.M) for path in re.findall(r"`(/[^`]+)`", cell)}
        paths = tables.texts("lib/base/paths.h")
        layout = tables.read("sandbox/device/device_layout.cpp")
        folders, files = layout.split("constexpr const char* kFiles[] = ")
        expected = {paths[name].rsplit("/", 1)[0] for name in re.findall(r"FolderOf\(velk::(k\w+)\)", folders)}
        expected |= {paths[name] for name in re.findall(r"{velk::(k\w+), 0", folders)}
        expected |= {paths[name] for name in re.findall(r"velk::(k\w+)", re.search(r"{(.*?)};", files, re.S)[1])}
        expected |= {"/run", "/dev", "/etc/hosts"}
        # The page names the list itself.
        usb = paths["kUsbDevices"]
        self.assertEqual(found, expected - {usb.rsplit("/", 1)[0]} | {usb})

    def test_watched_files_are_those_of_the_source(self):
        sentence = re.search(r"It watches (.*?)\. Two changes", PAGE)[1]
        found = set(re.findall(r"`(/[^`]+)`", sentence))
        paths = tables.texts("lib/base/paths.h")
        names = re.findall(r"velk::(k\w+)", re.search(r"kWatchedFiles\[\] = {(.*?)};", tables.read("sandbox/session/watch.cpp"), re.S)[1])
        in_words = {"kCrontab": "the root crontab", "kSnmpFile": "the SNMP agent's file", "kSupportList": "the adapter's support list",
                    "kUsbDevices": "the list of USB devices"}
        self.assertEqual(found, {paths[name] for name in names if name not in in_words} | {paths["kLibraryFolder"]})
        for name in names:
            if name in in_words:
                self.has(sentence, in_words[name], "docs/sandbox.md")


class SandboxManual(tables.TestCase):
    def test_has_the_addresses_and_limits_of_the_sources(self):
        facts = [tables.filled(fact, CONSTANTS) for fact in (
            "{router0} for eth0 and {router1} for eth1 ,", "holds {folder} MiB at most", "take {overlay} MiB at most", "127.0.0.1, and on no other")]
        self.holds("velk-sandbox(1)", manual("velk-sandbox.1"), facts, ADDRESS + r"|\d+ MiB")


class WebManual(tables.TestCase):
    def test_has_the_limits_of_the_sources(self):
        login, sessions, jobs = "web/server/login_limit.cpp", "web/server/sessions.h", "web/server/jobs.h"
        values = {
            "idle": tables.number(sessions, r"kIdleSeconds = int64_t{(\d+)} \* 60;"),
            "longest": tables.number(sessions, r"kLongestSessionSeconds = int64_t{(\d+)} \* 60 \* 60;"),
            "sessions": tables.number(sessions, r"kMostSessions = (\d+);"),
            "of_all": tables.number(login, r"kFreeTriesOfAll = (\d+);"),
            "wait": tables.number(login, r"kLongestWait = int64_t{(\d+)} \* 60;"),
            "wait_of_all": tables.number(login, r"kLongestWaitOfAll = (\d+);"),
            "body": tables.number("web/server/request.h", r"kLongestBody = size_t{(\d+)} \* 1024;"),
            "body_time": tables.number("web/server/request.cpp", r"kBodyTime{(\d+)};"),
            "running": tables.number(jobs, r"kMostRunningJobs = (\d+);"),
            "kept": tables.number(jobs, r"kMostJobs = (\d+);"),
            "kept_time": tables.number(jobs, r"kKeptSeconds = (\d+) \* 60;"),
            "turn": tables.number("web/server/api.cpp", r"kTurnSeconds = (\d+);"),
        }
        facts = [tables.filled(fact, values) for fact in (
            "A session ends after {idle} minutes without a request, and after {longest} hours.", "There are at most {sessions}.",
            "2 seconds, then 4, 8 and so on, up to {wait} minutes.", "After {of_all} from all addresses together, every one waits up to "
            "{wait_of_all} seconds.", "A request has at most {body} KiB, and {body_time} seconds to come.", "At most {running} changes run at "
            "once; the results of the last {kept} are kept for {kept_time} minutes.", "wait up to {turn} seconds for their turn")]
        self.assertEqual(tables.number(login, r"kFreeTries = (\d+);"), 5)  # a word in the page
        limits = re.search(r"Limits (.*?)The connection is not encrypted", manual("velk-web.8"))[1]
        self.holds("velk-web(8)", limits, facts)


if __name__ == "__main__":
    unittest.main()
