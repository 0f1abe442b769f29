// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <string>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"
#include "unit/lib/ntp/samples.h"

namespace {

using testing::IsEmpty;
using testkit::Call;
using testkit::kCrontab;
using testkit::kEntry;
using testkit::kNtpLog;
using testkit::kReached;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

class NtpCommandsTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kCrontab, kEntry);
        WriteFile(kNtpLog, kReached);
    }
    static std::string Get(uint32_t id) {
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetNtp(MakeRequest(VELK_GET, id, ""), out), 0);
        return out;
    }
    static int Set(uint32_t id, std::string_view data) {
        return SetNtp(MakeRequest(VELK_SET, id, "", data), nullptr);
    }
    testkit::FakeShell shell;
};

TEST_F(NtpCommandsTest, EachIdGetsItsSetting) {
    EXPECT_EQ(Get(6), "\x01");
    EXPECT_EQ(Get(9), "192.168.1.10");
    EXPECT_EQ(Get(10), "\x01");
}

TEST_F(NtpCommandsTest, EachIdSetsItsSetting) {
    EXPECT_EQ(Set(9, "10.0.0.1"), 0);
    EXPECT_EQ(ReadFile(kCrontab),
              "0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n");
    EXPECT_EQ(ReadFile(kNtpLog), kReached);
    EXPECT_EQ(Set(6, "\x02"), 0);
    EXPECT_EQ(ReadFile(kCrontab),
              "#0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n");
}

TEST_F(NtpCommandsTest, OtherIdsAreRefusedByTheGetter) {
    char out[VELK_DATA_SIZE] = "unchanged";
    for (const uint32_t id : {0U, 1U, 5U, 7U, 8U, 11U, 109U, 0x10006U, 0xffffffffU}) {
        EXPECT_EQ(GetNtp(MakeRequest(VELK_GET, id, ""), out), -4) << id;
    }
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(NtpCommandsTest, OtherIdsAreRefusedByTheSetter) {
    for (const uint32_t id : {0U, 1U, 5U, 7U, 8U, 10U, 11U, 109U, 0x10006U, 0xffffffffU}) {
        EXPECT_EQ(Set(id, "\x01"), -4) << id;
    }
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(NtpCommandsTest, ANullOutputIsRefusedForEveryId) {
    for (const uint32_t id : {6U, 9U, 10U, 7U, 0U}) {
        EXPECT_EQ(GetNtp(MakeRequest(VELK_GET, id, ""), nullptr), -4) << id;
    }
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(NtpCommandsTest, ResultsArePassedOn) {
    EXPECT_EQ(Set(6, "\x03"), -4);
    unlink(kCrontab);
    unlink(kNtpLog);
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetNtp(MakeRequest(VELK_GET, 6, ""), out), -1);
    EXPECT_EQ(GetNtp(MakeRequest(VELK_GET, 9, ""), out), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(Get(10), "\x03");
    EXPECT_EQ(Set(6, "\x01"), -1);
    EXPECT_EQ(Set(9, "x"), -1);
}

TEST_F(NtpCommandsTest, TheInterfaceIsIgnored) {
    for (const char* interface : {"eth0", "eth1", "x"}) {
        for (const uint32_t id : {6U, 9U, 10U}) {
            EXPECT_EQ(Execute(VELK_GET, id, interface), -4) << interface << " " << id;
            EXPECT_EQ(Execute(VELK_SET, id, interface, "\x02"), -4) << interface << " " << id;
        }
    }
    EXPECT_EQ(ReadFile(kCrontab), kEntry);
    EXPECT_EQ(ReadFile(kNtpLog), kReached);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(NtpCommandsTest, TheResultCannotBeSet) {
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_NTP_RESULT, "", "\x02"), -4);
    EXPECT_EQ(ReadFile(kCrontab), kEntry);
    EXPECT_EQ(ReadFile(kNtpLog), kReached);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(NtpCommandsTest, SwitchedOffThereIsNoResult) {
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP_RESULT, ""), 0);
    EXPECT_EQ(testkit::Data(response), "\x01" + std::string(511, '\0'));
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_NTP, "", "\x02"), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP_RESULT, ""), 0);
    EXPECT_EQ(testkit::Data(response), "\x03" + std::string(511, '\0'));
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP, ""), 0);
    EXPECT_EQ(testkit::Data(response), "\x02" + std::string(511, '\0'));
}

TEST_F(NtpCommandsTest, ASetServerIsReadBack) {
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_NTP_SERVER, "", "pool.ntp.org"), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP_SERVER, ""), 0);
    EXPECT_EQ(testkit::Data(response), "pool.ntp.org" + std::string(500, '\0'));
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_NTP_SERVER, "", ""), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP_SERVER, ""), 0);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
}

}  // namespace
