// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about files that queries and tools have left.
#include <string>

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
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

TEST_F(RemainsCheck, SaysThatTheNextResultOverwritesAPlainFileAlone) {
    constexpr auto& kResult = testkit::kResultFile;
    WriteFile(kResult, "x");
    EXPECT_THAT(FormatFindings(velkctl::CheckResultFile()),
                HasSubstr("the next one overwrites it"));
    ASSERT_EQ(link(kResult, "/var/tmp/second-name"), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckResultFile()),
              "warning: address, netmask and link-speed may not have been read\n"
              "  /var/tmp/get_result: a file is in the place of the output of tools\n"
              "  the next reading removes it\n"
              "  fix: rm /var/tmp/get_result\n");
    ASSERT_EQ(unlink("/var/tmp/second-name"), 0);
    if (chown(kResult, testkit::kSomebody, testkit::kSomebody) == 0) {
        EXPECT_THAT(FormatFindings(velkctl::CheckResultFile()),
                    HasSubstr("a file is in the place of the output of tools"));
    }
}

TEST_F(RemainsCheck, FindsAFolderInThePlaceOfTheReplySocket) {
    ASSERT_EQ(mkdir(testkit::kReplySocket, 0755), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()),
              "problem: wireless settings can be neither read nor set\n"
              "  /tmp/WlanAplFromWlanSock: a folder is in the place of the reply socket\n"
              "  fix: rm -r /tmp/WlanAplFromWlanSock\n");
    ASSERT_EQ(rmdir(testkit::kReplySocket), 0);
}

TEST_F(RemainsCheck, FindsALinkInThePlaceOfTheSemaphore) {
    ASSERT_EQ(symlink("/etc/hosts", testkit::kSemaphoreFile), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()),
              "problem: wireless settings can be neither read nor set\n"
              "  /dev/shm/sem.WlanAplRecvSem: a symbolic link is in the place of the semaphore\n"
              "  fix: rm /dev/shm/sem.WlanAplRecvSem\n");
}

TEST_F(RemainsCheck, FindsFilesOfAnotherUser) {
    WriteFile(testkit::kReplySocket, "");
    WriteFile(testkit::kSemaphoreFile, std::string(32, '\0'));
    ASSERT_EQ(chmod(testkit::kSemaphoreFile, 0600), 0);
    ASSERT_EQ(chmod("/tmp", 01777), 0);
    if (setresuid(testkit::kSomebody, testkit::kSomebody, 0) == -1) {
        GTEST_SKIP() << "the private device has no other users";
    }
    const std::string words = FormatFindings(velkctl::CheckQueryRemains());
    ASSERT_EQ(setresuid(0, 0, 0), 0);
    EXPECT_THAT(words, HasSubstr("a file of another user is in the place of the reply socket\n"
                                 "  this user may not remove it\n"));
    EXPECT_THAT(words, HasSubstr("a semaphore of another user is in the way"));
    EXPECT_THAT(FormatFindings(velkctl::CheckQueryRemains()), HasSubstr("a semaphore was left"))
        << "root may use it";
}

// A query waits for it and posts it.
TEST_F(RemainsCheck, FindsASemaphoreThatTheUserMayOnlyRead) {
    WriteFile(testkit::kSemaphoreFile, std::string(32, '\0'));
    ASSERT_EQ(chmod(testkit::kSemaphoreFile, 0644), 0);
    if (setresuid(testkit::kSomebody, testkit::kSomebody, 0) == -1) {
        GTEST_SKIP() << "the private device has no other users";
    }
    const std::string words = FormatFindings(velkctl::CheckQueryRemains());
    ASSERT_EQ(setresuid(0, 0, 0), 0);
    EXPECT_THAT(words, HasSubstr("a semaphore of another user is in the way"));
}

// While a query is under way, its files are no remains.
TEST_F(RemainsCheck, SaysNothingDuringAQuery) {
    WriteFile(testkit::kSemaphoreFile, "");
    const int query = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{AF_UNIX, {}};
    (void)std::string(testkit::kReplySocket).copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(query, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckQueryRemains()), "");
    (void)close(query);
    EXPECT_THAT(FormatFindings(velkctl::CheckQueryRemains()),
                HasSubstr("an empty file is in the place of the semaphore"));
}

}  // namespace
