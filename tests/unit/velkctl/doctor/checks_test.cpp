// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The checks together: each is part of the doctor's examination, and of that for the settings it
// affects.
#include "velkctl/doctor/checks.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/left_client.h"
#include "support/mounted.h"
#include "support/paths.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testkit::WriteFile;
using velkctl::ExamineDevice;
using velkctl::ExamineFor;
using velkctl::FindSetting;
using velkctl::FormatFindings;

std::string OfDevice() {
    velkctl::Report report(velkctl::Report::Form::kText);
    return FormatFindings(ExamineDevice(report));
}

std::string OfSetting(const std::string& name) {
    return FormatFindings(ExamineFor(FindSetting(name).value()));
}

class ExaminationTest : public testkit::DeviceTest {};

// A damage that one check alone finds.
struct Damage {
    const char* name;
    std::function<void()> make;
    std::string finding;
    std::vector<std::string> affected;  // settings: their examination names it
    std::string unaffected;             // one setting: its examination does not
};

class EachCheck : public testkit::DeviceTest, public testing::WithParamInterface<Damage> {};

TEST_P(EachCheck, IsPartOfEveryExaminationItBelongsTo) {
    const Damage& damage = GetParam();
    EXPECT_THAT(OfDevice(), Not(HasSubstr(damage.finding))) << "without the damage";
    damage.make();
    EXPECT_THAT(OfDevice(), HasSubstr(damage.finding));
    for (const std::string& setting : damage.affected) {
        EXPECT_THAT(OfSetting(setting), HasSubstr(damage.finding)) << setting;
    }
    EXPECT_THAT(OfSetting(damage.unaffected), Not(HasSubstr(damage.finding)));
}

void LeaveFifo(const char* path) {
    ASSERT_EQ(mkfifo(path, 0600), 0) << path;
}

const std::vector<Damage> kDamages{
    {"OfFiles",
     [] { LeaveFifo(testkit::kInterfacesFile); },
     "/etc/network/interfaces: a folder, a FIFO or a device is in its place",
     {"eth0.address", "eth1.method"},
     "ntp"},
    {"OfTheResolversFile",
     [] { LeaveFifo(testkit::kResolverFile); },
     "/etc/resolv.dnsmasq.conf: a folder, a FIFO or a device is in its place",
     {"eth0.dns", "eth1.dns"},
     "ntp"},
    {"OfEditCopies",
     [] { WriteFile("/var/tmp/interfaces", "x"); },
     "/var/tmp/interfaces: ",
     {"eth0.address"},
     "eth0.link-speed"},
    {"OfInterfaces",
     [] { WriteFile(testkit::kInterfacesFile, "iface eth0 inet static\naddress 10.0.0.1\n"); },
     "/etc/network/interfaces:1: ",
     {"eth0.gateway"},
     "eth0.dns"},
    {"OfExitHooks",
     [] { WriteFile(testkit::kExitHooks, "true\n"); },
     "/etc/dhclient-exit-hooks: no line",
     {"eth0.apipa"},
     "eth0.dns"},
    {"OfDhcpConfig",
     [] { WriteFile(testkit::kDhcpConfigFile, "# empty\n"); },
     "/etc/dhclient.conf: no request statement applies to eth0",
     {"eth0.dhcp-dns"},
     "eth0.dns"},
    {"OfTheClientScript",
     [] { WriteFile(testkit::kClientScript, "#!/bin/sh\n"); },
     "/sbin/dhclient-script: no line",
     {"eth0.dhcp-dns"},
     "eth0.dns"},
    {"OfTheTimeEntry",
     [] { WriteFile(testkit::kCrontab, "0 * * * * true\n"); },
     "/var/cron/tabs/root: no entry runs ntpdate",
     {"ntp", "ntp-server"},
     "web-update"},
    {"OfTheWebUpdate",
     [] { WriteFile(testkit::kCrontab, "0 3 * 5 * perl /usr/bin/web_contents_updater.pl\n"); },
     "/var/cron/tabs/root:1: the library does not write such a schedule",
     {"web-update"},
     "ntp"},
    {"OfTheIdentity",
     [] { WriteFile(testkit::kSnmpFile, "syslocation x\n"); },
     "snmpd.conf: no line has the directive syscontact",
     {"administrator"},
     "eth0.dns"},
    {"OfTheResultFile",
     [] { LeaveFifo(testkit::kResultFile); },
     "/var/tmp/get_result: a FIFO is in the place of the output of tools",
     {"eth0.link-speed", "eth0.address"},
     "ntp"},
    {"OfTheLock",
     [] { ASSERT_EQ(symlink("/etc/hosts", testkit::kLockFile), 0); },
     "/var/tmp/vklib_lock: a symbolic link is in the place of the lock file",
     {},
     "ntp"},
    {"OfTheJournal",
     [] {
         const velkctl::JournalLock lock(velkctl::JournalLock::Use::kAlone, 0);
         velkctl::JournalEntry entry{.state = velkctl::EntryState::kStuck};
         (void)velkctl::EntryFile(entry);
     },
     "is taken back only in part",
     {},
     "ntp"},
    {"OfTheAdapter",
     [] { WriteFile(testkit::kUsbDevices, "S:  Product=Keyboard\n"); },
     "/proc/bus/usb/devices: the list has no supported adapter",
     {"eth1.signal", "eth1.mac-address"},
     "eth1.ssid"},
    {"OfTheRemainsOfAQuery",
     [] { WriteFile(testkit::kSemaphoreFile, ""); },
     "/dev/shm/sem.WlanAplRecvSem: an empty file is in the place of the semaphore",
     {"eth1.ssid", "eth1.signal"},
     "ntp"},
};

void PrintTo(const Damage& damage, std::ostream* out) {
    *out << damage.name;
}

INSTANTIATE_TEST_SUITE_P(Damage, EachCheck, testing::ValuesIn(kDamages),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ExaminationTest, IncludesTheClientsOfStaticInterfaces) {
    const testkit::LeftClient client;
    WriteFile(testkit::kInterfacesFile, "auto eth0\niface eth0 inet static\n");
    EXPECT_THAT(OfDevice(), HasSubstr("a DHCP client, process "));
    EXPECT_THAT(OfSetting("eth0.address"), Not(HasSubstr("a DHCP client, process ")))
        << "it keeps nothing from being set";
}

TEST_F(ExaminationTest, IncludesTheValuesAndHowTheyFitTogether) {
    WriteFile(testkit::kInterfacesFile,
              "iface eth0 inet static\naddress 10.0.0.5\nnetmask 255.0.0.0\ngateway 192.168.0.1\n"
              "iface eth1 inet dhcp\niface lo inet loopback\n");
    WriteFile(testkit::kResolverFile, "nameserver foo\n");
    const std::string found = OfDevice();
    EXPECT_THAT(found,
                HasSubstr("problem: eth0.gateway is outside the network of the interface\n"));
    EXPECT_THAT(found, HasSubstr("'foo' is not an IPv4 address"));
}

// A query removes the remains of an earlier one: they are looked for before it.
TEST_F(ExaminationTest, QueriesTheDaemonLast) {
    WriteFile(testkit::kUsbDevices, "S:  Product=QT4408RKM\n");
    WriteFile(testkit::kReplySocket, "");
    testkit::FakeDaemon daemon;
    SMsgConf conf{};
    conf.channel = 14;
    daemon.SetConf(conf);
    const std::string found = OfDevice();
    const size_t remains = found.find("a reply socket without a process was left");
    const size_t answer = found.find("its record has channel 14");
    EXPECT_NE(remains, std::string::npos) << found;
    EXPECT_NE(answer, std::string::npos) << found;
    EXPECT_LT(remains, answer);
}

TEST_F(ExaminationTest, LeavesNotesOut) {
    velkctl::Report report(velkctl::Report::Form::kText);
    WriteFile(testkit::kInterfacesFile, "iface eth0 inet dhcp\niface eth1 inet dhcp\n");
    EXPECT_EQ(CountOf(ExamineDevice(report), velkctl::Severity::kNote), 0U);
}

// ---- Folders ------------------------------------------------------------------------------------

class FoldersCheck : public testkit::DeviceTest {
  protected:
    // Returns the findings while a file system with these options is in the folder's place.
    static std::string With(const char* folder, unsigned long flags, const char* options) {
        const testkit::Mounted mounted("none", folder, "tmpfs", flags, options);
        return FormatFindings(velkctl::CheckFolders());
    }
    static std::string ReadOnly(const char* folder) { return With(folder, MS_RDONLY, ""); }

    static std::string Refused(const std::string& subject, const std::string& folder) {
        return "problem: " + subject + "\n  " + folder +
               ": this user may not write the folder: Read-only file system\n"
               "  fix: run the program as a user who may write it, or let this user write it\n";
    }
};

TEST_F(FoldersCheck, NamesTheSettingsOfEachFolderThatCannotBeWritten) {
    EXPECT_EQ(ReadOnly("/var/tmp"), Refused("all settings in files cannot be set", "/var/tmp") +
                                        Refused("eth0.link-speed cannot be read", "/var/tmp"));
    EXPECT_EQ(ReadOnly("/var/libvelk"),
              Refused("ntp-result cannot be cleared when ntp is set to off", "/var/libvelk"));
    const std::string wireless = "wireless settings can be neither read nor set";
    EXPECT_EQ(ReadOnly("/tmp"), Refused(wireless, "/tmp"));
    EXPECT_EQ(ReadOnly("/dev/shm"), Refused(wireless, "/dev/shm"));
}

TEST_F(FoldersCheck, FindsFoldersThatAreMissingOrNone) {
    const testkit::Emptied parent("/var");
    const std::string found =
        "problem: all settings in files cannot be set\n"
        "  /var/tmp: the folder is missing\n"
        "  fix: mkdir -p /var/tmp\n"
        "problem: eth0.link-speed cannot be read\n"
        "  /var/tmp: the folder is missing\n"
        "  fix: mkdir -p /var/tmp\n"
        "problem: ntp-result cannot be cleared when ntp is set to off\n"
        "  /var/libvelk: the folder is missing\n"
        "  fix: mkdir -p /var/libvelk\n";
    EXPECT_EQ(FormatFindings(velkctl::CheckFolders()), found);
    WriteFile("/var/tmp", "");
    WriteFile("/var/libvelk", "");
    EXPECT_EQ(FormatFindings(velkctl::CheckFolders()), found);
}

TEST_F(FoldersCheck, WantsSpaceForAnEditCopy) {
    EXPECT_EQ(With("/dev/shm", 0, "size=64k"), "");
    EXPECT_EQ(With("/dev/shm", 0, "size=60k"),
              "problem: wireless settings can be neither read nor set\n"
              "  /dev/shm: the file system is full: 61440 bytes are free\n"
              "  fix: remove files that are not needed there\n");
    EXPECT_EQ(With("/dev/shm", 0, "nr_inodes=2"), "");
    EXPECT_EQ(With("/dev/shm", 0, "nr_inodes=1"),
              "problem: wireless settings can be neither read nor set\n"
              "  /dev/shm: the file system is full: no more files can be made\n"
              "  fix: remove files that are not needed there\n");
    EXPECT_EQ(With("/dev/shm", 0, "size=0,nr_inodes=0"), "") << "without a limit";
}

TEST_F(FoldersCheck, AreThoseOfTheSettingThatWasSet) {
    const testkit::Mounted mounted("none", "/var/tmp", "tmpfs", MS_RDONLY, "");
    EXPECT_THAT(OfSetting("eth0.address"), HasSubstr("all settings in files cannot be set\n"));
    EXPECT_THAT(OfSetting("eth0.link-speed"), HasSubstr("eth0.link-speed cannot be read\n"));
    EXPECT_THAT(OfSetting("eth1.ssid"), Not(HasSubstr("/var/tmp: ")));
}

TEST_F(FoldersCheck, OfTheDaemonAreThoseOfItsSettings) {
    const testkit::Mounted mounted("none", "/dev/shm", "tmpfs", MS_RDONLY, "");
    EXPECT_THAT(OfSetting("eth1.ssid"), HasSubstr("/dev/shm: this user may not write"));
    EXPECT_THAT(OfSetting("eth1.signal"), HasSubstr("/dev/shm: this user may not write"));
}

// ---- Another machine ----------------------------------------------------------------------------

TEST_F(ExaminationTest, KnowsAMachineThatIsNotTheDevice) {
    EXPECT_THAT(velkctl::DescribeOtherMachine(),
                HasSubstr("this does not look like the device (10 of its files are missing)"));
    for (const char* file : {testkit::kInterfacesFile, testkit::kDhcpConfigFile,
                             testkit::kExitHooks, testkit::kClientScript}) {
        WriteFile(file, "");
    }
    EXPECT_THAT(velkctl::DescribeOtherMachine(), HasSubstr("(6 of its files are missing)"));
    WriteFile(testkit::kCrontab, "");
    EXPECT_EQ(velkctl::DescribeOtherMachine(), "") << "half of them";
}

}  // namespace
