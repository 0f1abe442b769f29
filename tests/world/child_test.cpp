// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The conditions of this ring apply to the tests' children, and only to them.
#include "world/child.h"

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"

namespace world {
namespace {

using ChildTest = testkit::DeviceTest;

TEST_F(ChildTest, RunsAsAnotherUser) {
    if (!IsPossible({.user = kNobody})) {
        GTEST_SKIP() << "no other users on this private device";
    }
    const auto is_nobody = [] {
        uid_t real = 0;
        uid_t effective = 0;
        uid_t saved = 0;
        return getresuid(&real, &effective, &saved) == 0 && real == kNobody &&
                       effective == kNobody && saved == kNobody && getgid() == kNobody &&
                       getgroups(0, nullptr) == 0
                   ? 0
                   : 1;
    };
    EXPECT_EQ(InChild({.user = kNobody}, is_nobody), 0);
    EXPECT_EQ(geteuid(), 0U);
}

TEST_F(ChildTest, AnotherUsersFilesAreNotOurs) {
    if (!IsPossible({.user = kNobody})) {
        GTEST_SKIP() << "no other users on this private device";
    }
    EXPECT_EQ(
        InChild({.user = kNobody},
                [] { return open("/var/tmp/theirs", O_CREAT | O_CLOEXEC, 0600) > 0 ? 0 : 1; }),
        0);
    EXPECT_EQ(testkit::IdentityOf("/var/tmp/theirs").owner, kNobody);
    testkit::WriteFile("/var/tmp/ours", "");
    EXPECT_EQ(InChild({.user = kNobody}, [] { return unlink("/var/tmp/ours") == -1 ? 0 : 1; }), 0)
        << "the folder is sticky";
}

TEST_F(ChildTest, RunsWithAnotherUmask) {
    const mode_t ours = umask(022);
    EXPECT_EQ(InChild({.umask = 0}, [] { return static_cast<int>(umask(0)); }), 0);
    EXPECT_EQ(InChild({.umask = 077}, [] { return static_cast<int>(umask(0)); }), 077);
    EXPECT_EQ(umask(ours), 022U);
}

TEST_F(ChildTest, RunsWithLimits) {
    const auto descriptors = [] {
        rlimit limit{};
        return getrlimit(RLIMIT_NOFILE, &limit) == 0 ? static_cast<int>(limit.rlim_cur) : 0;
    };
    EXPECT_EQ(InChild({.limits = {{RLIMIT_NOFILE, 20}}}, descriptors), 20);
}

TEST_F(ChildTest, RunsInALocale) {
    const auto is_utf8 = [] {
        return std::string_view(setlocale(LC_ALL, nullptr)) == "C.UTF-8" &&
                       std::string_view(getenv("LC_ALL")) == "C.UTF-8"
                   ? 0
                   : 1;
    };
    EXPECT_EQ(InChild({.locale = "C.UTF-8"}, is_utf8), 0);
    EXPECT_FALSE(IsPossible({.locale = "xx_XX.nothing"}));
}

TEST_F(ChildTest, ReturnsTheSignalThatEndedIt) {
    EXPECT_EQ(InChild({}, [] { return raise(SIGKILL); }), 128 + SIGKILL);
}

TEST_F(ChildTest, EndsWithItsObject) {
    pid_t pid = 0;
    {
        const Child child({}, [] { return pause(); });
        pid = child.pid();
        EXPECT_EQ(kill(pid, 0), 0);
    }
    EXPECT_EQ(kill(pid, 0), -1);
}

}  // namespace
}  // namespace world
