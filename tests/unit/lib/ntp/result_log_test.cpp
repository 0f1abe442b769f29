// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"
#include "unit/lib/ntp/samples.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kNtpLog;
using testkit::kReached;
using testkit::MakeRequest;
using testkit::WriteFile;

constexpr char kNotReached[] =
    "21 Nov 10:00:00 ntpdate[123]: no server suitable for synchronization found\n";

class ResultLogTest : public testkit::DeviceTest {
  protected:
    static int Result() {
        char out[VELK_DATA_SIZE] = "?unchanged";
        EXPECT_EQ(GetNtpCommunicate(MakeRequest(VELK_GET, VELK_CMD_NTP_RESULT, ""), out), 0);
        EXPECT_STREQ(out + 1, "unchanged") << "one byte and nothing else";
        return out[0];
    }
    static int ResultOf(std::string_view log) {
        WriteFile(kNtpLog, log);
        return Result();
    }
    testkit::FakeShell shell;
};

TEST_F(ResultLogTest, ALastLineWithATimeServerIsAServerReached) {
    EXPECT_EQ(ResultOf(kReached), 1);
    EXPECT_EQ(ResultOf("21 Nov 10:00:00 ntpdate[1]: step time server 10.0.0.1 offset 1 sec"), 1);
    EXPECT_EQ(ResultOf(std::string(kNotReached) + kReached), 1);
}

TEST_F(ResultLogTest, ALastLineWithoutOneIsNoServerReached) {
    EXPECT_EQ(ResultOf(kNotReached), 2);
    EXPECT_EQ(ResultOf(std::string(kReached) + kNotReached), 2);
    EXPECT_EQ(ResultOf(std::string(kReached) + "x"), 2);
    EXPECT_EQ(ResultOf(std::string(kReached) + "\n"), 2) << "the last line is empty";
    EXPECT_EQ(ResultOf("21 Nov 10:00:00 Time Server, time  server, timeserver\n"), 2);
    EXPECT_EQ(ResultOf("21 Nov 10:00:00 ntpdate[1]: adjust time\nserver 10.0.0.1\n"), 2);
}

TEST_F(ResultLogTest, AnEmptyLogIsNoServerReached) {
    EXPECT_EQ(ResultOf(""), 2);
    EXPECT_EQ(ResultOf("\n"), 2);
}

TEST_F(ResultLogTest, AMissingLogIsNoResult) {
    EXPECT_EQ(Result(), 3);
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(ResultLogTest, ALogThatCannotBeOpenedIsNoResult) {
    WriteFile(kNtpLog, kReached);
    libc().Script(Call::kOpen, {Fail(EACCES)});
    EXPECT_EQ(Result(), 3);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ResultLogTest, TheTimeServerCountsFromTheTwelfthCharacterOn) {
    EXPECT_EQ(ResultOf("time server 10.0.0.1\n"), 2);
    EXPECT_EQ(ResultOf("0123456789time server\n"), 2);
    EXPECT_EQ(ResultOf("0123456789atime server\n"), 1);
    EXPECT_EQ(ResultOf("0123456789abtime server\n"), 1);
    EXPECT_EQ(ResultOf("time server time server\n"), 1) << "the second one stands far enough back";
}

TEST_F(ResultLogTest, ShortLinesAreNoServerReached) {
    for (const char* line : {"x", "0123456789", "0123456789a", "0123456789ab", "time server"}) {
        EXPECT_EQ(ResultOf(line), 2) << line;
        EXPECT_EQ(ResultOf(std::string(kReached) + line + "\n"), 2) << line;
    }
}

TEST_F(ResultLogTest, LongLinesAreReadWhole) {
    EXPECT_EQ(ResultOf(std::string(100000, 'x') + "time server"), 1);
    EXPECT_EQ(ResultOf(std::string(65536 - 5, 'x') + "time server\n"), 1);
}

TEST_F(ResultLogTest, CarriageReturnsAndNulsAreOfTheLine) {
    EXPECT_EQ(ResultOf("21 Nov 10:00:00 adjust time server 10.0.0.1\r\n"), 1);
    EXPECT_EQ(ResultOf(std::string("21 Nov 10:00\0:00 time server", 28)), 1);
}

TEST_F(ResultLogTest, ANullOutputIsRefused) {
    WriteFile(kNtpLog, kReached);
    EXPECT_EQ(GetNtpCommunicate(MakeRequest(VELK_GET, VELK_CMD_NTP_RESULT, ""), nullptr), -4);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(ResultLogTest, AGetReadsTheLogOnceAndRunsNothing) {
    WriteFile(kNtpLog, kReached);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP_RESULT, ""), 0);
    EXPECT_EQ(testkit::Data(response), "\x01" + std::string(511, '\0'));
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kNtpLog));
    EXPECT_THAT(libc().Events(Call::kRead), SizeIs(testing::Le(2)));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(ResultLogTest, TheLogIsDeletedByTheShell) {
    WriteFile(kNtpLog, kReached);
    DeleteNtpLog();
    EXPECT_THAT(libc().Story(), ElementsAre("system rm /var/libvelk/ntp.log"));
    EXPECT_FALSE(Exists(kNtpLog));
    EXPECT_EQ(Result(), 3);
}

TEST_F(ResultLogTest, AFailingDeletionIsLoggedByTheShellHelperAlone) {
    WriteFile(kNtpLog, kReached);
    libc().Script(Call::kSystem, {Fail(ENOMEM)});
    libc().OnCall(Call::kSystem, nullptr);
    DeleteNtpLog();
    EXPECT_THAT(libc().Story(), ElementsAre("system rm /var/libvelk/ntp.log",
                                            "log system errno=12:Cannot allocate memory"));
    EXPECT_EQ(Result(), 1);
}

TEST_F(ResultLogTest, AMissingLogIsDeletedLikeAnother) {
    DeleteNtpLog();
    EXPECT_THAT(libc().Story(), ElementsAre("system rm /var/libvelk/ntp.log"));
}

}  // namespace
