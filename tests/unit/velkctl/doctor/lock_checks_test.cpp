// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about the lock.
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using testing::HasSubstr;
using testkit::WriteFile;
using velkctl::FormatFindings;

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
    EXPECT_THAT(words, HasSubstr("warning: settings cannot be changed now\n"
                                 "  /var/tmp/vklib_lock: the lock is held by process "));
    EXPECT_THAT(words, HasSubstr(" (unit_tests, "));
}

TEST_F(LockCheck, FindsALockThatOthersCannotTake) {
    WriteFile("/var/tmp/vklib_lock", "");
    ASSERT_EQ(chmod("/var/tmp/vklib_lock", 0600), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()),
              "warning: settings cannot be changed by every user\n"
              "  /var/tmp/vklib_lock: the lock file's mode is not 666\n"
              "  fix: chmod 666 /var/tmp/vklib_lock\n");
}

TEST_F(LockCheck, FindsALockThatTheUserMayNotOpen) {
    for (const mode_t mode : {0644U, 0622U, 0600U}) {
        WriteFile("/var/tmp/vklib_lock", "");
        ASSERT_EQ(chmod("/var/tmp/vklib_lock", mode), 0);
        if (setresuid(testkit::kSomebody, testkit::kSomebody, 0) == -1) {
            GTEST_SKIP() << "the private device has no other users";
        }
        const std::string words = FormatFindings(velkctl::CheckLock());
        ASSERT_EQ(setresuid(0, 0, 0), 0);
        EXPECT_THAT(words, HasSubstr("problem: settings cannot be changed\n"
                                     "  /var/tmp/vklib_lock: this user may not open the lock file\n"
                                     "  fix: chmod 666 /var/tmp/vklib_lock\n"))
            << std::oct << mode;
    }
}

TEST_F(LockCheck, FindsALockThatItsOwnerCouldReplace) {
    WriteFile("/var/tmp/vklib_lock", "");
    ASSERT_EQ(chmod("/var/tmp/vklib_lock", 0666), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()), "");
    if (chown("/var/tmp/vklib_lock", 1234, 1234) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()),
              "warning: settings can be changed by two programs at once\n"
              "  /var/tmp/vklib_lock: the lock file belongs to user 1234\n"
              "  this user can remove it while it is locked, and make a new one\n"
              "  fix: chown -h root /var/tmp/vklib_lock\n"
              "  make it at boot by an init script, as root with mode 666\n");
}

TEST_F(LockCheck, FindsALinkInItsPlace) {
    ASSERT_EQ(symlink("/etc/hosts", "/var/tmp/vklib_lock"), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckLock()),
              "problem: settings cannot be changed\n"
              "  /var/tmp/vklib_lock: a symbolic link is in the place of the lock file\n"
              "  fix: rm /var/tmp/vklib_lock\n");
}

}  // namespace
