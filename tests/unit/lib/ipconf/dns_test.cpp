// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testing::IsEmpty;
using testkit::Call;
using testkit::Data;
using testkit::Fail;
using testkit::kResolverFile;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

// The three slots as a caller lays them out.
std::string Slots(const std::string& first, const std::string& second = "",
                  const std::string& third = "") {
    std::string data(48, '\0');
    first.copy(&data[0], 16);
    second.copy(&data[16], 16);
    third.copy(&data[32], 16);
    return data;
}

class DnsTest : public testkit::DeviceTest {
  protected:
    // Returns the answer of a get for a file with this text.
    std::string GetFrom(std::string_view text) {
        WriteFile(kResolverFile, text);
        EXPECT_EQ(Execute(VELK_GET, VELK_CMD_DNS, "eth0"), 0);
        EXPECT_EQ(Data(response).substr(48), std::string(464, '\0')) << "48 bytes at most";
        return Data(response, 48);
    }
    // Returns the file's text after a set.
    std::string SetFrom(std::string_view data) {
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth0", data), 0);
        return ReadFile(kResolverFile);
    }
};

TEST_F(DnsTest, GetsTheServersInFileOrder) {
    EXPECT_EQ(GetFrom("nameserver 192.168.0.1\nnameserver 192.168.0.2\n"),
              Slots("192.168.0.1", "192.168.0.2"));
}

TEST_F(DnsTest, GetsNothingFromAnEmptyFile) {
    EXPECT_EQ(GetFrom(""), Slots(""));
}

TEST_F(DnsTest, GetsTheFirstThreeOfFour) {
    EXPECT_EQ(GetFrom("nameserver 1.0.0.1\nnameserver 1.0.0.2\nnameserver 1.0.0.3\n"
                      "nameserver 1.0.0.4\n"),
              Slots("1.0.0.1", "1.0.0.2", "1.0.0.3"));
}

TEST_F(DnsTest, SkipsLinesThatDoNotBeginWithTheKeyword) {
    EXPECT_EQ(GetFrom("# servers\n"
                      "domain example.test\n"
                      "#nameserver 9.9.9.1\n"
                      " nameserver 9.9.9.2\n"
                      "\tnameserver 9.9.9.3\n"
                      "Nameserver 9.9.9.4\n"
                      "nameserve 9.9.9.5\n"
                      "\n"
                      "nameserver 1.0.0.1\n"),
              Slots("1.0.0.1"));
}

TEST_F(DnsTest, DoesNotCheckTheCharacterAfterTheKeyword) {
    EXPECT_EQ(GetFrom("nameservers 1.0.0.1\nnameserver#x 1.0.0.2\n"), Slots("1.0.0.1", "1.0.0.2"));
}

TEST_F(DnsTest, TakesAnyWhiteSpaceAroundTheAddress) {
    EXPECT_EQ(
        GetFrom("nameserver\t1.0.0.1\nnameserver  \t 1.0.0.2 # first\nnameserver 1.0.0.3\r\n"),
        Slots("1.0.0.1", "1.0.0.2", "1.0.0.3"));
}

TEST_F(DnsTest, ALineWithoutAnAddressTakesAnEmptySlot) {
    EXPECT_EQ(GetFrom("nameserver\nnameserver 1.0.0.2\n"), Slots("", "1.0.0.2"));
    EXPECT_EQ(GetFrom("nameserver   \nnameserver 1.0.0.2\n"), Slots("", "1.0.0.2"));
    EXPECT_EQ(GetFrom("nameserver1.0.0.1\nnameserver 1.0.0.2\n"), Slots("", "1.0.0.2"));
}

TEST_F(DnsTest, LinesWithoutAnAddressCountTowardsTheThree) {
    EXPECT_EQ(GetFrom("nameserver\nnameserver\nnameserver\nnameserver 1.0.0.4\n"), Slots(""));
}

TEST_F(DnsTest, ALastLineWithoutATerminatorCounts) {
    EXPECT_EQ(GetFrom("nameserver 1.0.0.1\nnameserver 1.0.0.2"), Slots("1.0.0.1", "1.0.0.2"));
}

TEST_F(DnsTest, AnAddressOf16BytesFillsItsSlot) {
    EXPECT_EQ(GetFrom("nameserver 1234567890123456\nnameserver 1.0.0.2\n"),
              Slots("1234567890123456", "1.0.0.2"));
}

TEST_F(DnsTest, ALongerAddressRunsOnIntoTheNextSlot) {
    EXPECT_EQ(GetFrom("nameserver 12345678901234567890\n"), Slots("1234567890123456", "7890"));
}

TEST_F(DnsTest, TheNextAddressOverwritesTheOverrun) {
    EXPECT_EQ(GetFrom("nameserver 12345678901234567890\nnameserver ::1\n"),
              Slots("1234567890123456", "::10"));
}

TEST_F(DnsTest, AMissingAddressClearsTheOverrunInItsSlot) {
    EXPECT_EQ(GetFrom("nameserver 12345678901234567890\nnameserver\n"), Slots("1234567890123456"));
    EXPECT_EQ(GetFrom("nameserver " + std::string(40, 'x') + "\nnameserver\n"),
              Slots(std::string(16, 'x'), "", std::string(8, 'x')));
}

TEST_F(DnsTest, AnAddressIsCutAtTheEndOfTheSlots) {
    const std::string word(100, 'x');
    EXPECT_EQ(GetFrom("nameserver " + word + "\n"), std::string(48, 'x'));
    EXPECT_EQ(GetFrom("nameserver 1\nnameserver 2\nnameserver " + word + "\n"),
              Slots("1", "2", std::string(16, 'x')));
}

TEST_F(DnsTest, AnEndlessLineIsReadAndCut) {
    const std::string word(10 * 1024 * 1024, 'x');
    EXPECT_EQ(GetFrom("nameserver " + word + "\n"), std::string(48, 'x'));
}

TEST_F(DnsTest, ANulEndsTheLine) {
    using std::string_literals::operator""s;
    EXPECT_EQ(GetFrom("nameserver 1.0\0.0.1\nnameserver\0 1.0.0.2\nnameserver 1.0.0.3\n"s),
              Slots("1.0", "", "1.0.0.3"));
}

TEST_F(DnsTest, RandomBytesNeverLeaveTheSlots) {
    unsigned seed = 20261121;
    for (int round = 0; round < 500; ++round) {
        std::string text;
        for (int i = 0; i < 400; ++i) {
            seed = seed * 1103515245 + 12345;
            const unsigned pick = seed >> 16;
            text += pick % 8 == 0 ? std::string("\nnameserver ")
                                  : std::string(1, static_cast<char>(pick));
        }
        GetFrom(text);
    }
}

TEST_F(DnsTest, AMissingFileIsAFailureAndTheResponseStaysZero) {
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_DNS, "eth0"), -1);
    EXPECT_EQ(Data(response), std::string(512, '\0'));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(DnsTest, AFolderInTheFilesPlaceIsAFailure) {
    ASSERT_EQ(mkdir(kResolverFile, 0755), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_DNS, "eth0"), -1);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth0", Slots("1.0.0.1")), -1);
}

TEST_F(DnsTest, ANullOutputIsRefused) {
    EXPECT_EQ(GetDns(MakeRequest(VELK_GET, VELK_CMD_DNS, "eth0"), nullptr), -4);
    EXPECT_TRUE(libc().Events(Call::kOpen).empty());
}

TEST_F(DnsTest, AGetClearsTheSlotsFirst) {
    WriteFile(kResolverFile, "nameserver 1.0.0.1\n");
    char out[64];
    memset(out, 'x', sizeof(out));
    EXPECT_EQ(GetDns(MakeRequest(VELK_GET, VELK_CMD_DNS, "eth0"), out), 0);
    EXPECT_EQ(std::string(out, 64), Slots("1.0.0.1") + std::string(16, 'x'));
}

TEST_F(DnsTest, SetsOneTwoAndThreeServers) {
    EXPECT_EQ(SetFrom(Slots("192.168.0.1")), "nameserver 192.168.0.1\n");
    EXPECT_EQ(SetFrom(Slots("192.168.0.1", "10.0.0.2")),
              "nameserver 192.168.0.1\nnameserver 10.0.0.2\n");
    EXPECT_EQ(SetFrom(Slots("192.168.0.1", "10.0.0.2", "10.0.0.3")),
              "nameserver 192.168.0.1\nnameserver 10.0.0.2\nnameserver 10.0.0.3\n");
}

TEST_F(DnsTest, SetReplacesEverythingTheFileHeld) {
    WriteFile(kResolverFile,
              "# comment\nsearch example.test\nnameserver 1.0.0.1\nnameserver 1.0.0.2\n");
    EXPECT_EQ(SetFrom(Slots("9.9.9.9")), "nameserver 9.9.9.9\n");
}

TEST_F(DnsTest, NoServersLeaveAnEmptyFile) {
    WriteFile(kResolverFile, "nameserver 1.0.0.1\n");
    EXPECT_EQ(SetFrom(Slots("")), "");
}

TEST_F(DnsTest, AnEmptySlotEndsTheList) {
    EXPECT_EQ(SetFrom(Slots("1.0.0.1", "", "1.0.0.3")), "nameserver 1.0.0.1\n");
    EXPECT_EQ(SetFrom(Slots("", "1.0.0.2", "1.0.0.3")), "");
}

TEST_F(DnsTest, ASlotWithoutATerminatorIs16Characters) {
    EXPECT_EQ(SetFrom(Slots("1234567890123456", "10.0.0.2")),
              "nameserver 1234567890123456\nnameserver 10.0.0.2\n");
}

TEST_F(DnsTest, AFilledSlotIsWrittenAs16BytesOfAnyContent) {
    using std::string_literals::operator""s;
    EXPECT_EQ(SetFrom(Slots("1.0.0.1\0\0\0\0\0\0\0\0x"s)),
              "nameserver 1.0.0.1\0\0\0\0\0\0\0\0x\n"s);
}

TEST_F(DnsTest, ATextEndsAtItsTerminator) {
    using std::string_literals::operator""s;
    EXPECT_EQ(SetFrom(Slots("1.0.0.1\0junk"s)), "nameserver 1.0.0.1\n");
}

TEST_F(DnsTest, TextsAreWrittenUnchanged) {
    EXPECT_EQ(SetFrom(Slots("not an address", " ", "a\nb")),
              "nameserver not an address\nnameserver  \nnameserver a\nb\n");
}

TEST_F(DnsTest, ASetListIsReadBack) {
    for (const std::string& slots :
         {Slots("1.2.3.4"), Slots("255.255.255.255", "0.0.0.0"),
          Slots("fe80::1", "::", "2001:db8::1"),
          Slots("1234567890123456", "1234567890123456", "1234567890123456")}) {
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth1", slots), 0);
        EXPECT_EQ(Execute(VELK_GET, VELK_CMD_DNS, "eth0"), 0);
        EXPECT_EQ(Data(response, 48), slots);
    }
}

TEST_F(DnsTest, SetKeepsInodeOwnerAndMode) {
    WriteFile(kResolverFile, "nameserver 1.0.0.1\n");
    chmod(kResolverFile, 0640);
    struct stat before {};
    stat(kResolverFile, &before);
    EXPECT_EQ(SetFrom(Slots("9.9.9.9")), "nameserver 9.9.9.9\n");
    struct stat after {};
    stat(kResolverFile, &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
}

TEST_F(DnsTest, AFileThatIsMadeHasTheModeTheUmaskLeaves) {
    const mode_t saved = umask(0);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth0", Slots("1.0.0.1")), 0);
    umask(saved);
    struct stat status {};
    ASSERT_EQ(stat(kResolverFile, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0666U);
}

TEST_F(DnsTest, SetWritesInPlaceWithoutACopyOrAShell) {
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth0", Slots("1.0.0.1")), 0);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_FALSE(testkit::Exists("/var/tmp/resolv.dnsmasq.conf"));
    const std::vector<testkit::Event> opens = libc().Events(Call::kOpen);
    EXPECT_EQ(opens.back().text, kResolverFile);
    EXPECT_EQ(opens.back().number, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
}

TEST_F(DnsTest, SetOnAFileThatCannotBeOpenedIsAFailure) {
    libc().Script(Call::kOpen, {Fail(EROFS)});
    libc().ForgetEvents();
    EXPECT_EQ(SetDns(MakeRequest(VELK_SET, VELK_CMD_DNS, "eth0", Slots("1.0.0.1")), nullptr), -1);
    EXPECT_THAT(libc().Events(Call::kWrite), IsEmpty());
}

TEST_F(DnsTest, AFailedWriteIsAFailure) {
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth0", Slots("1.0.0.1")), -1);
    EXPECT_EQ(ReadFile(kResolverFile), "");
}

TEST_F(DnsTest, AFailedCloseIsAFailure) {
    libc().Script(Call::kClose, {Fail(EIO)});
    const _velk_request request = MakeRequest(VELK_SET, VELK_CMD_DNS, "eth0", Slots("1.0.0.1"));
    EXPECT_EQ(SetDns(request, nullptr), -1);
}

}  // namespace
