// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/inherited_lock.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include "lib/base/unique_fd.h"

namespace {

bool IsCloseOnExec(const velk::UniqueFd& fd) {
    return fcntl(fd.get(), F_GETFD) == FD_CLOEXEC;
}

class InheritedLockTest : public testing::Test {
  protected:
    ~InheritedLockTest() override { velk::EndLending(); }

    const velk::UniqueFd fd{open("/dev/null", O_RDONLY | O_CLOEXEC)};
};

TEST_F(InheritedLockTest, ProgramsInheritALentLockDuringTheScopeOnly) {
    velk::LendLock(fd.get());
    {
        const velk::InheritedLock lock;
        EXPECT_FALSE(IsCloseOnExec(fd));
    }
    EXPECT_TRUE(IsCloseOnExec(fd));
    EXPECT_FALSE(velk::EndLending());
}

TEST_F(InheritedLockTest, NothingIsInheritedAfterTheLending) {
    velk::LendLock(fd.get());
    velk::EndLending();
    velk::InheritedLock lock;
    EXPECT_TRUE(IsCloseOnExec(fd));
    lock.LeaveToTools();
    EXPECT_FALSE(velk::EndLending());
}

TEST_F(InheritedLockTest, ALockIsLeftToToolsUntilTheNextLending) {
    velk::LendLock(fd.get());
    velk::InheritedLock().LeaveToTools();
    EXPECT_TRUE(velk::EndLending());
    velk::LendLock(fd.get());
    EXPECT_FALSE(velk::EndLending());
}

}  // namespace
