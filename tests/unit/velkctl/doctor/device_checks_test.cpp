// The doctor's findings about files, folders, remains, the lock and the wireless daemon.
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"

namespace {

using testkit::WriteFile;
using velkctl::FileState;
using velkctl::FormatFindings;
using velkctl::ReadTextFile;

bool Holds(const std::string& whole, const std::string& part) {
    return whole.find(part) != std::string::npos;
}

class TextFileTest : public testkit::DeviceTest {};

TEST_F(TextFileTest, ReadsLinesAsTheLibrarySeesThem) {
    WriteFile("/tmp/text", "one\n\n\x01two");
    EXPECT_EQ(ReadTextFile("/tmp/text").lines,
              (std::vector<std::string>{"one\n", "\n", "\x01two\n"}));
    WriteFile("/tmp/text", "");
    EXPECT_EQ(ReadTextFile("/tmp/text").state, FileState::kText);
    EXPECT_TRUE(ReadTextFile("/tmp/text").lines.empty());
}

TEST_F(TextFileTest, DoesNotWaitForAFifoNorReadAFolderOrAHugeFile) {
    ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
    EXPECT_EQ(ReadTextFile("/tmp/fifo").state, FileState::kNotRegular);
    EXPECT_EQ(ReadTextFile("/tmp").state, FileState::kNotRegular);
    EXPECT_EQ(ReadTextFile("/tmp/missing").state, FileState::kMissing);
    WriteFile("/tmp/huge", std::string(1024 * 1024 + 1, 'a'));
    EXPECT_EQ(ReadTextFile("/tmp/huge").state, FileState::kTooLarge);
}

class FilesCheck : public testkit::DeviceTest {};

TEST_F(FilesCheck, NamesTheSettingsThatAMissingFileAffects) {
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_TRUE(Holds(words,
                      "problem: method, address, netmask and gateway can be neither read nor set: "
                      "/etc/network/interfaces: the file is missing\n"
                      "  fix: put the device's own file there\n"))
        << words;
    EXPECT_TRUE(Holds(words,
                      "problem: administrator and location can be neither read nor set: "
                      "/var/libvelk/libvelk: the file is missing\n"));
    EXPECT_TRUE(Holds(words,
                      "problem: administrator and location do not reach the SNMP agent: "
                      "/usr/local/share/etc/snmp/snmpd.conf: the file is missing\n"));
    EXPECT_TRUE(Holds(words,
                      "warning: dns cannot be read until it is set: /etc/resolv.dnsmasq.conf: the "
                      "file is missing\n"));
}

TEST_F(FilesCheck, FindsAFifoInTheFilesPlace) {
    ASSERT_EQ(mkfifo("/etc/dhclient.conf", 0600), 0);
    EXPECT_TRUE(Holds(FormatFindings(velkctl::CheckFiles()),
                      "problem: method, dhcp-dns and dhcp-ntp can be neither read nor set: "
                      "/etc/dhclient.conf: a folder, a FIFO or a device is in its place\n"));
    EXPECT_EQ(FormatFindings(velkctl::CheckDhcpConfig()), "");
}

TEST_F(FilesCheck, FindsFilesThatAreNotTextOrTooLarge) {
    WriteFile("/etc/network/interfaces", std::string(2000000, '\0'));
    WriteFile("/var/cron/tabs/root", std::string("a\0b\n", 4));
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_TRUE(Holds(words,
                      "problem: method, address, netmask and gateway cannot be examined: "
                      "/etc/network/interfaces: the file is larger than 1 MiB\n"))
        << words;
    EXPECT_TRUE(Holds(words,
                      "problem: ntp, ntp-server and web-update may be read and set wrongly: "
                      "/var/cron/tabs/root: the file has NUL bytes; it is no text\n"))
        << words;
}

TEST_F(FilesCheck, FindsLinesThatEndWithCarriageReturnsWhereTheyMatter) {
    WriteFile("/sbin/dhclient-script", "if [ x$interface = xeth0 ]; then\r\nfi\r\n\n");
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 10.0.0.1\r\n");
    const std::string words = FormatFindings(velkctl::CheckFiles());
    EXPECT_TRUE(Holds(words,
                      "problem: dhcp-dns may be read and set wrongly: /sbin/dhclient-script: 2 of "
                      "its 3 lines end with CR LF\n"
                      "  fix: sed -i 's/[[:cntrl:]]$//' /sbin/dhclient-script\n"))
        << words;
    EXPECT_FALSE(Holds(words, "/etc/resolv.dnsmasq.conf")) << words;
    EXPECT_EQ(FormatFindings(velkctl::CheckClientScript()), "")
        << "its words are not what they seem";
}

TEST_F(FilesCheck, SaysNothingAboutFoldersThatAreThere) {
    EXPECT_EQ(FormatFindings(velkctl::CheckFolders()), "");
}

TEST_F(FilesCheck, FindsDirectivesThatTheSnmpAgentsFileLacks) {
    constexpr char kSnmp[] = "/usr/local/share/etc/snmp/snmpd.conf";
    WriteFile(kSnmp, "syscontact a\nsyslocation b\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile(kSnmp, "sysContact a\n# syslocation b\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()),
              "problem: administrator does not reach the SNMP agent: "
              "/usr/local/share/etc/snmp/snmpd.conf:1: 'sysContact a' is not written in small "
              "letters\n"
              "  fix: write syscontact\n"
              "problem: location does not reach the SNMP agent: "
              "/usr/local/share/etc/snmp/snmpd.conf: no line has the directive syslocation\n"
              "  fix: add a line \"syslocation unknown\"\n");
}

TEST_F(FilesCheck, FindsATextThatASetOfTheOtherOneCuts) {
    constexpr char kIdentityFile[] = "/var/libvelk/libvelk";
    WriteFile(kIdentityFile, "ADMINISTRATOR=syscontact a\nLOCATION=syslocation b\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile(kIdentityFile, "ADMINISTRATOR=see syslocation\nLOCATION=by syscontact\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()),
              "problem: administrator is cut for the SNMP agent when location is set: "
              "/var/libvelk/libvelk: the text holds 'syslocation', from which on that set replaces "
              "a line\n"
              "  fix: velkctl set administrator TEXT, without that word\n"
              "problem: location is cut for the SNMP agent when administrator is set: "
              "/var/libvelk/libvelk: the text holds 'syscontact', from which on that set replaces "
              "a line\n"
              "  fix: velkctl set location TEXT, without that word\n");
    EXPECT_TRUE(libc().Logs().empty());
    ASSERT_EQ(unlink(kIdentityFile), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    EXPECT_TRUE(libc().Logs().empty());
}

// A get of the library would log that, and wait while nobody reads the system log.
TEST_F(FilesCheck, LogsNothingOfATextThatIsGoneInTheMiddle) {
    WriteFile("/usr/local/share/etc/snmp/snmpd.conf", "syscontact a\nsyslocation b\n");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=see syslocation\n");
    libc().Script(testkit::Call::kOpen, {testkit::Pass(), testkit::Pass(), testkit::Fail(ENOENT)});
    EXPECT_TRUE(Holds(FormatFindings(velkctl::CheckIdentity()), "the text holds 'syslocation'"));
    EXPECT_TRUE(libc().Logs().empty());
}

// As the library reads it: 511 bytes of the first line of a setting.
TEST_F(FilesCheck, LooksOnlyAtTheTextThatIsRead) {
    const std::string filler(511 - std::string_view("syslocation").size(), 'a');
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=" + filler + "asyslocation\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=a\nADMINISTRATOR=syslocation\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=" + filler + "syslocation\n");
    EXPECT_TRUE(Holds(FormatFindings(velkctl::CheckIdentity()), "the text holds 'syslocation'"));
}

class IfconfigCheck : public testkit::DeviceTest {};

TEST_F(IfconfigCheck, KnowsTheFormThatIsRead) {
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfigOutput(
                  "lo  Link encap:Local Loopback\n    inet addr:127.0.0.1  Mask:255.0.0.0\n")),
              "");
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfigOutput("")), "");
}

TEST_F(IfconfigCheck, FindsTheFormThatIsNotRead) {
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfigOutput(
                  "lo: flags=73<UP>\n        inet 127.0.0.1  netmask 255.0.0.0\n")),
              "problem: ifconfig prints addresses in a form that the library does not read: it "
              "prints 'inet 127.0.0.1  netmask 255.0.0.0', and 'inet addr:' and 'Mask:' are looked "
              "for; address and netmask of a DHCP interface read as none\n"
              "  fix: install an ifconfig that prints 'inet addr:192.168.0.10', as busybox's "
              "does\n");
}

class LeftoversCheck : public testkit::DeviceTest {};

TEST_F(LeftoversCheck, SaysNothingWhereNothingWasLeft) {
    EXPECT_EQ(FormatFindings(velkctl::CheckResultFile()), "");
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()), "");
}

TEST_F(LeftoversCheck, FindsEntriesThatToolsCannotWriteInto) {
    constexpr char kResult[] = "/var/tmp/get_result";
    ASSERT_EQ(mkfifo(kResult, 0600), 0);
    EXPECT_EQ(
        FormatFindings(velkctl::CheckResultFile()),
        "warning: link-speed and the address and netmask of a lease may not have been read: "
        "/var/tmp/get_result: a FIFO is in the place of the output of tools; the next reading "
        "removes it\n"
        "  fix: rm /var/tmp/get_result\n");
    ASSERT_EQ(unlink(kResult), 0);
    ASSERT_EQ(symlink("/etc/hosts", kResult), 0);
    EXPECT_EQ(
        FormatFindings(velkctl::CheckResultFile()),
        "warning: link-speed and the address and netmask of a lease may not have been read: "
        "/var/tmp/get_result: a symbolic link is in the place of the output of tools; the next "
        "reading removes it\n"
        "  fix: rm /var/tmp/get_result\n");
}

// In a folder that everybody may write, only root and the owner may remove a file.
TEST_F(LeftoversCheck, FindsFilesThatTheCallerMayNotRemove) {
    constexpr char kResult[] = "/var/tmp/get_result";
    WriteFile(kResult, "x");
    ASSERT_EQ(chmod("/var/tmp", 01777), 0);
    std::string words;
    const auto judge = [&] { words = FormatFindings(velkctl::CheckResultFile()); };
    if (setresuid(1234, 1234, 0) == -1) {
        GTEST_SKIP() << "the private device has no other users";
    }
    judge();
    ASSERT_EQ(setresuid(0, 0, 0), 0);
    EXPECT_EQ(words,
              "problem: link-speed and the address and netmask of a lease cannot be read: "
              "/var/tmp/get_result: a file is in the place of the output of tools\n"
              "  fix: rm /var/tmp/get_result\n");
}

TEST_F(LeftoversCheck, FindsAResultAReplySocketAndASemaphore) {
    WriteFile("/var/tmp/get_result", "x");
    WriteFile("/tmp/WlanAplFromWlanSock", "");
    WriteFile("/dev/shm/sem.WlanAplRecvSem", std::string(32, '\0'));
    EXPECT_TRUE(
        Holds(FormatFindings(velkctl::CheckResultFile()),
              "warning: link-speed and the address and netmask of a lease may not have been "
              "read: /var/tmp/get_result: a result was left, "));
    const std::string words = FormatFindings(velkctl::CheckQueryRemains());
    EXPECT_TRUE(Holds(words,
                      "warning: wireless settings may not have been read: "
                      "/tmp/WlanAplFromWlanSock: a reply socket without a process was left, "))
        << words;
    EXPECT_TRUE(Holds(words,
                      "warning: wireless settings may not have been read: "
                      "/dev/shm/sem.WlanAplRecvSem: a semaphore was left, "))
        << words;
}

TEST_F(LeftoversCheck, FindsASemaphoreThatEndsTheProgram) {
    WriteFile("/dev/shm/sem.WlanAplRecvSem", "");
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()),
              "problem: wireless settings end the program that reads them: "
              "/dev/shm/sem.WlanAplRecvSem: an empty file is in the place of the semaphore\n"
              "  fix: rm /dev/shm/sem.WlanAplRecvSem\n");
}

class LockCheck : public testkit::DeviceTest {};

TEST_F(LockCheck, SaysNothingAboutAFreeLock) {
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()), "");
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()), "");
}

TEST_F(LockCheck, NamesTheHolderOfTheLock) {
    const int lock = VkLibLock();
    const std::string words = FormatFindings(velkctl::CheckLock());
    VkLibUnLock(lock);
    EXPECT_TRUE(Holds(words,
                      "warning: settings cannot be changed now: /var/tmp/vklib_lock: the lock is "
                      "held by process "))
        << words;
    EXPECT_TRUE(Holds(words, " (unit_tests, ")) << words;
}

TEST_F(LockCheck, FindsALockThatOthersCannotTake) {
    WriteFile("/var/tmp/vklib_lock", "");
    ASSERT_EQ(chmod("/var/tmp/vklib_lock", 0600), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()),
              "warning: settings cannot be changed by every user: /var/tmp/vklib_lock: the lock "
              "file's mode is not 666\n"
              "  fix: chmod 666 /var/tmp/vklib_lock\n");
}

TEST_F(LockCheck, FindsALockThatItsOwnerCouldReplace) {
    WriteFile("/var/tmp/vklib_lock", "");
    ASSERT_EQ(chmod("/var/tmp/vklib_lock", 0666), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()), "");
    if (chown("/var/tmp/vklib_lock", 1234, 1234) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(
        FormatFindings(velkctl::CheckLock()),
        "warning: settings can be changed by two programs at once: /var/tmp/vklib_lock: the "
        "lock file belongs to user 1234, who can remove it while it is locked and make a new one\n"
        "  fix: chown -h root /var/tmp/vklib_lock, and have an init script make it at boot, "
        "as root and with mode 666, before programs of other users run\n");
}

TEST_F(LockCheck, FindsALinkInItsPlace) {
    ASSERT_EQ(symlink("/etc/hosts", "/var/tmp/vklib_lock"), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()),
              "problem: settings cannot be changed: /var/tmp/vklib_lock: a symbolic link is in the "
              "place of the lock file\n"
              "  fix: rm /var/tmp/vklib_lock\n");
}

class DaemonCheck : public testkit::DeviceTest {
  protected:
    static std::string Examine() {
        velkctl::Report report(velkctl::Report::Form::kText);
        return FormatFindings(velkctl::CheckDaemon(report));
    }
    static SMsgConf WithChannel(uint16_t channel) {
        SMsgConf conf{};
        conf.channel = channel;
        return conf;
    }
    static void AttachAdapter() { WriteFile("/proc/bus/usb/devices", "S:  Product=QT4408RKM\n"); }
};

TEST_F(DaemonCheck, OnlyWarnsOfNoDaemonWithoutAnAdapter) {
    WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    EXPECT_EQ(Examine(),
              "warning: the wireless daemon does not run: /tmp/WlanAplToWlanSock: its socket is "
              "missing, and no adapter is attached\n"
              "  fix: plug an adapter in, and start the wireless daemon unless that does\n");
}

TEST_F(DaemonCheck, SaysNothingAboutADaemonThatAnswers) {
    AttachAdapter();
    testkit::FakeDaemon daemon;
    daemon.SetConf(WithChannel(13));
    EXPECT_EQ(Examine(), "");
}

TEST_F(DaemonCheck, WarnsOfARecordWithoutAChannel) {
    AttachAdapter();
    testkit::FakeDaemon daemon;
    daemon.SetConf(WithChannel(14));
    EXPECT_EQ(Examine(),
              "warning: the wireless daemon may not answer with its configuration: "
              "/tmp/WlanAplToWlanSock: its record has the channel 14, which is not valid\n"
              "  fix: set eth1.channel, or restart the wireless daemon\n");
}

TEST_F(DaemonCheck, WarnsOfAnAdapterThatIsNotAttached) {
    EXPECT_EQ(FormatFindings(velkctl::CheckAdapter()), "") << "the list itself is missing";
    WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckAdapter()),
              "warning: wireless adapter is not attached: /proc/bus/usb/devices: the list has no "
              "supported adapter; the settings of eth1 about adapter and connection are refused\n"
              "  fix: plug in one that /usr/local/share/apps/wlan/supportlist.ini names\n");
    AttachAdapter();
    EXPECT_EQ(FormatFindings(velkctl::CheckAdapter()), "");
}

TEST_F(DaemonCheck, FindsNoDaemon) {
    AttachAdapter();
    EXPECT_EQ(Examine(),
              "problem: the wireless daemon does not run: /tmp/WlanAplToWlanSock: its socket is "
              "missing\n"
              "  fix: start the wireless daemon\n");
    WriteFile("/tmp/WlanAplToWlanSock", "");
    EXPECT_EQ(Examine(),
              "problem: the wireless daemon does not run: /tmp/WlanAplToWlanSock: no process "
              "listens at its socket\n"
              "  fix: start the wireless daemon\n");
}

}  // namespace
