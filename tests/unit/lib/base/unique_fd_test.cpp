// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/unique_fd.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>

#include "support/device_test.h"

namespace {

using testkit::Call;
using velk::UniqueFd;

class UniqueFdTest : public testkit::DeviceTest {
  protected:
    static int Open() { return open("/dev/null", O_RDONLY | O_CLOEXEC); }
    static bool IsOpen(int fd) { return fcntl(fd, F_GETFD) != -1; }
};

TEST_F(UniqueFdTest, ClosesAtTheEndOfItsScope) {
    const int fd = Open();
    { const UniqueFd owner(fd); }
    EXPECT_FALSE(IsOpen(fd));
}

TEST_F(UniqueFdTest, ClosesNothingWhenItHoldsNothing) {
    { const UniqueFd owner; }
    EXPECT_TRUE(libc().Events(Call::kClose).empty());
}

TEST_F(UniqueFdTest, OwnsDescriptorZeroToo) {
    libc().ScriptAlways(Call::kClose, testkit::Pass());
    const int saved = dup(0);
    { const UniqueFd owner(0); }
    EXPECT_FALSE(IsOpen(0));
    dup2(saved, 0);
    close(saved);
}

TEST_F(UniqueFdTest, GivesItsDescriptorAway) {
    const int fd = Open();
    {
        UniqueFd owner(fd);
        EXPECT_EQ(owner.Release(), fd);
        EXPECT_EQ(owner.get(), -1);
    }
    EXPECT_TRUE(IsOpen(fd));
    close(fd);
}

TEST_F(UniqueFdTest, MovesWithoutClosing) {
    const int fd = Open();
    UniqueFd first(fd);
    UniqueFd second(std::move(first));
    UniqueFd third;
    third = std::move(second);
    EXPECT_EQ(third.get(), fd);
    EXPECT_TRUE(IsOpen(fd));
}

TEST_F(UniqueFdTest, ReturnsTheResultOfTheClose) {
    UniqueFd owner(Open());
    libc().Script(Call::kClose, {testkit::Fail(EIO)});
    EXPECT_EQ(owner.Reset(), -1);
    EXPECT_EQ(owner.Reset(), 0) << "nothing is held any more";
}

}  // namespace
