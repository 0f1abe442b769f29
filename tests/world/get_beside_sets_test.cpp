// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Gets beside two programs that set all the time: no get reads a setting as off because the shell
// has just emptied its file.
#include <chrono>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "world/calls.h"
#include "world/child.h"
#include "world/samples.h"

namespace world {
namespace {

using testkit::kCrontab;
using testkit::kDhcpConfigFile;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;

constexpr int kGets = 3000;

// Sets two servers in turn until the process is killed. The method stays unchanged.
int SetServers() {
    for (int i = 0;; ++i) {
        (void)Set(VELK_CMD_NTP_SERVER, "", i % 2 == 0 ? "a.example" : "b.example");
    }
}

class GetBesideSetsTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        WaitForFreeLock();
        DeviceTest::TearDown();
    }
};

TEST_F(GetBesideSetsTest, TheMethodIsNeverOff) {
    testkit::WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u a.example >/dev/null\n");
    const Child one({}, SetServers);
    const Child other({}, SetServers);
    int given_up = 0;
    for (int i = 0; i < kGets; ++i) {
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(Execute(VELK_GET, VELK_CMD_NTP, ""), 0) << "get " << i;
        if (response.data[0] == VELK_ON) {
            continue;
        }
        // A busy machine may take longer than that from the shell's opening to cat's writing.
        ASSERT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50)) << i;
        ++given_up;
    }
    EXPECT_LT(given_up, kGets);
}

// A file that stays empty is taken as empty.
TEST_F(GetBesideSetsTest, AnEmptyFileIsReadAgainFor50MillisecondsAndThenTaken) {
    testkit::WriteFile(kCrontab, "");
    libc().ScriptAlways(testkit::Call::kNanosleep, testkit::Return(0));
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP, ""), 0);
    EXPECT_EQ(response.data[0], VELK_OFF);
    EXPECT_EQ(libc().Texts(testkit::Call::kNanosleep), std::vector<std::string>(50, "1000000"));
}

TEST_F(GetBesideSetsTest, EachFileThatIsNeverEmptyIsReadAgain) {
    const struct {
        const char* file;
        const char* text;
        uint32_t id;
        const char* interface;
        std::string answer;
    } kCases[] = {
        {kCrontab, "0 * * * * /usr/bin/ntpdate -u a.example >/dev/null\n", VELK_CMD_NTP, "",
         "\x01"},
        {kCrontab, "0 * * * * /usr/bin/ntpdate -u a.example >/dev/null\n", VELK_CMD_NTP_SERVER, "",
         "a.example"},
        {kDhcpConfigFile, "interface \"eth0\" {\n\trequest domain-name-servers;\n}\n",
         VELK_CMD_DHCP_DNS, "eth0", "\x01"},
        {kIdentityFile, "LOCATION=Cellar\n", VELK_CMD_LOCATION, "", "Cellar"},
        {kInterfacesFile, "iface eth0 inet dhcp\n", VELK_CMD_IP_METHOD, "eth0", "\x02"},
    };
    for (const auto& one : kCases) {
        testkit::WriteFile(one.file, "");
        libc().ScriptAlways(testkit::Call::kNanosleep, testkit::Return(0));
        libc().OnCall(testkit::Call::kNanosleep, [&](const testkit::Event&) {
            testkit::WriteFile(one.file, one.text);  // as the set's cat does
        });
        EXPECT_EQ(Execute(VELK_GET, one.id, one.interface), 0) << one.file;
        EXPECT_EQ(std::string(response.data), one.answer) << one.file;
    }
}

}  // namespace
}  // namespace world
