# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Paths in manual pages and documents."""
import re

import tables

PATHS = tables.texts("lib/base/paths.h")
RUN_PATHS = tables.texts("sandbox/process/run_paths.h")

# libvelk(3) names each file that the library uses. These are folders, programs, parts of a name, and the journal,
# which is velkctl's.
NOT_IN_LIBRARY_PAGE = {"kLibraryFolder", "kJournalFolder", "kJournalLock", "kLinkLocalDaemon", "kClockSetter", "kFinishNotice",
                       "kStartNotice", "kSnmpScript", "kEthtool", "kWebUpdater", "kLeaseFolder", "kEditFolder", "kSocketFolder",
                       "kSemaphoreName", "kSemaphoreFolder", "kSyslogPrefix"}
# velkctl(1) names the files that hold settings but that of the SNMP daemon, the lock, and its own.
SETTINGS = ["kInterfacesFile", "kDhcpConfigFile", "kExitHooks", "kClientScript", "kResolverFile", "kCrontab", "kIdentityFile"]
INSTALLED = ["velkctl.schema.json", "bash-completion/completions/velkctl", "zsh/site-functions/_velkctl"]

# Paths of the machine and of examples, which no source names.
OF_EVERY_SYSTEM = ["/", "/bin", "/sbin", "/usr", "/usr/bin", "/usr/sbin", "/usr/local", "/usr/local/bin", "/usr/local/sbin", "/etc", "/var",
                   "/var/log", "/dev", "/proc", "/sys", "/dev/null"]


def in_page(name):
    """Returns the absolute paths that a manual page marks."""
    text = tables.read(f"docs/man/{name}")
    return {word for line in re.findall(r"^\.(?:It )?Pa (.*)$", text, re.M) for word in line.split() if word.startswith("/")}


def in_sources(*folders):
    """Returns the absolute paths in the texts of sources, and those of paths.h with a file's name."""
    literals = re.findall(r'"((?:[^"\\\n]|\\.)*)"', tables.sources(*folders))
    return {path for literal in literals for path in re.findall(r"(?<![\w.])/[\w./-]*[\w]", literal)}


class LibraryPage(tables.TestCase):
    def test_names_every_file_of_the_library(self):
        expected = [path for name, path in PATHS.items() if name not in NOT_IN_LIBRARY_PAGE]
        expected += [PATHS["kSyslogPrefix"] + "0", PATHS["kSyslogPrefix"] + "1"]
        self.assertEqual(sorted(tables.manual_paths("libvelk.3")), sorted(expected))

    def test_names_the_folder_of_edit_copies(self):
        self.has("\n".join(tables.manual("libvelk.3", "FILES")), f"\n.Pa {PATHS['kEditFolder']} ,", "libvelk(3)")


class VelkctlPage(tables.TestCase):
    def test_names_every_file_of_the_settings(self):
        expected = [PATHS[name] for name in SETTINGS + ["kLockFile", "kJournalFolder"]] + INSTALLED
        self.assertEqual(sorted(tables.manual_paths("velkctl.1")), sorted(expected))

    def test_settings_are_in_no_other_file(self):
        """The catalogue's constants are those of the page, with the SNMP daemon's file."""
        found = set(re.findall(r"\bvelk::(k\w+)", tables.read("velkctl/settings/catalogue.cpp"))) & set(PATHS)
        programs = {"kLinkLocalDaemon", "kClockSetter", "kFinishNotice", "kStartNotice"}
        self.assertEqual(found - programs - {"kSnmpFile", "kNtpLog"}, set(SETTINGS))


class SandboxPage(tables.TestCase):
    def test_names_the_files_of_a_device(self):
        expected = [RUN_PATHS[name] for name in ("kStandInFolder", "kNameFile", "kShellStartFile", "kDaemonPidFile")]
        expected += ["/etc/init.d/boot", "/var/log/router.log", "share/bash-completion/completions/velk-sandbox",
                     "share/zsh/site-functions/_velk-sandbox", "rootfs", "real-rootfs", "router", "stand-ins"]
        self.assertEqual(sorted(tables.manual_paths("velk-sandbox.1")), sorted(expected))

    def test_names_folders_and_files_that_are_there(self):
        folders = {path.name for path in (tables.SOURCE / "sandbox/data").iterdir()}
        self.assertEqual(folders, {"rootfs", "real-rootfs", "router", "stand-ins"})
        self.assertTrue((tables.SOURCE / "sandbox/data/real-rootfs/etc/init.d/boot").exists())
        self.has(tables.read("sandbox/data/router/dnsmasq.conf") + tables.sources("sandbox/hardware"), "/var/log/router.log",
                 "the router's configuration")


class WebPage(tables.TestCase):
    def test_names_the_files_of_the_server(self):
        expected = [tables.texts("web/server/users.h")["kUsersFile"], "/etc/sudoers.d/velk-web",
                    tables.texts("web/server/run_folder.h")["kRunFolder"], "/usr/share/velk-web"]
        self.assertEqual(tables.manual_paths("velk-web.8"), expected)


class Pages(tables.TestCase):
    def test_every_path_of_a_manual_page_is_in_the_sources(self):
        known = in_sources("lib", "velkctl", "sandbox", "web") | set(OF_EVERY_SYSTEM)
        data = "\n".join(path.read_text(encoding="utf-8") for folder in ("sandbox/data", "packaging")
                         for path in sorted((tables.SOURCE / folder).rglob("*")) if path.is_file())
        for page in ("velkctl.1", "libvelk.3", "velk-sandbox.1", "velk-web.8"):
            for path in sorted(in_page(page)):
                if path not in known and path not in data and not any(one.startswith(path + "/") for one in known):
                    self.assertTrue(path.startswith(tuple(PATHS.values())), f"{page}: {path}")


if __name__ == "__main__":
    import unittest
    unittest.main()
