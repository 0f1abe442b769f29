// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about files that queries and tools have left.
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/doctor/checks.h"

namespace {

using testing::HasSubstr;
using testkit::WriteFile;
using velkctl::FormatFindings;

class RemainsCheck : public testkit::DeviceTest {};

TEST_F(RemainsCheck, SaysNothingWhereNothingWasLeft) {
    EXPECT_EQ(FormatFindings(velkctl::CheckResultFile()), "");
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()), "");
}

TEST_F(RemainsCheck, FindsEntriesThatToolsCannotWriteInto) {
    constexpr auto& kResult = testkit::kResultFile;
    ASSERT_EQ(mkfifo(kResult, 0600), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckResultFile()),
              "warning: address, netmask and link-speed may not have been read\n"
              "  /var/tmp/get_result: a FIFO is in the place of the output of tools\n"
              "  the next reading removes it\n"
              "  fix: rm /var/tmp/get_result\n");
    ASSERT_EQ(unlink(kResult), 0);
    ASSERT_EQ(symlink("/etc/hosts", kResult), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckResultFile()),
              "warning: address, netmask and link-speed may not have been read\n"
              "  /var/tmp/get_result: a symbolic link is in the place of the output of tools\n"
              "  the next reading removes it\n"
              "  fix: rm /var/tmp/get_result\n");
}

// In a folder that everybody may write, only root and the owner may remove a file.
TEST_F(RemainsCheck, FindsFilesThatTheCallerMayNotRemove) {
    constexpr auto& kResult = testkit::kResultFile;
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
              "problem: address, netmask and link-speed cannot be read\n"
              "  /var/tmp/get_result: a file is in the place of the output of tools\n"
              "  fix: rm /var/tmp/get_result\n");
}

TEST_F(RemainsCheck, FindsAResultAReplySocketAndASemaphore) {
    WriteFile("/var/tmp/get_result", "x");
    WriteFile("/tmp/WlanAplFromWlanSock", "");
    WriteFile("/dev/shm/sem.WlanAplRecvSem", std::string(32, '\0'));
    EXPECT_THAT(FormatFindings(velkctl::CheckResultFile()),
                HasSubstr("warning: address, netmask and link-speed may not have been read\n"
                          "  /var/tmp/get_result: a result was left, "));
    const std::string words = FormatFindings(velkctl::CheckQueryRemains());
    EXPECT_THAT(
        words,
        HasSubstr("warning: wireless settings may not have been read\n"
                  "  /tmp/WlanAplFromWlanSock: a reply socket without a process was left, "));
    EXPECT_THAT(words, HasSubstr("warning: wireless settings may not have been read\n"
                                 "  /dev/shm/sem.WlanAplRecvSem: a semaphore was left, "));
}

TEST_F(RemainsCheck, FindsASemaphoreThatEndsTheProgram) {
    WriteFile("/dev/shm/sem.WlanAplRecvSem", "");
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()),
              "problem: reading a wireless setting ends the program (SIGBUS)\n"
              "  /dev/shm/sem.WlanAplRecvSem: an empty file is in the place of the semaphore\n"
              "  fix: rm /dev/shm/sem.WlanAplRecvSem\n");
}

}  // namespace
