// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/file_io.h"

#include <cerrno>

#include <fcntl.h>
#include <gmock/gmock.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testkit::Call;
using testkit::Fail;
using testkit::Pass;

constexpr char kFile[] = "/var/tmp/file";

class FileIoTest : public testkit::DeviceTest {
  protected:
    static velk::UniqueFd Create() {
        return velk::UniqueFd(open(kFile, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    }
};

TEST_F(FileIoTest, ReadsAgainAfterASignal) {
    testkit::WriteFile(kFile, "abc");
    const velk::UniqueFd fd(open(kFile, O_RDONLY | O_CLOEXEC));
    libc().Script(Call::kRead, {Fail(EINTR), Fail(EINTR), Pass()});
    char buffer[8];
    EXPECT_EQ(velk::ReadSome(fd.get(), buffer, sizeof(buffer)), 3);
}

TEST_F(FileIoTest, SaysThatAReadFailed) {
    libc().Script(Call::kRead, {Fail(EIO)});
    char buffer[8];
    EXPECT_EQ(velk::ReadSome(0, buffer, sizeof(buffer)), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(FileIoTest, WritesTheRestAfterAShortWriteAndASignal) {
    const velk::UniqueFd fd = Create();
    libc().Script(Call::kWrite, {testkit::Return(2), Fail(EINTR), Pass()});
    EXPECT_TRUE(velk::WriteAll(fd.get(), "abcdef"));
    EXPECT_THAT(libc().Texts(Call::kWrite), ElementsAre("abcdef", "cdef", "cdef"));
    EXPECT_EQ(testkit::ReadFile(kFile), "cdef");
}

TEST_F(FileIoTest, SaysThatAWriteFailed) {
    const velk::UniqueFd fd = Create();
    libc().Script(Call::kWrite, {testkit::Return(2), Fail(ENOSPC)});
    EXPECT_FALSE(velk::WriteAll(fd.get(), "abcdef"));
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(FileIoTest, AWriteThatTakesNothingIsAFailure) {
    const velk::UniqueFd fd = Create();
    libc().ScriptAlways(Call::kWrite, testkit::Return(0));
    EXPECT_FALSE(velk::WriteAll(fd.get(), "abcdef"));
}

TEST_F(FileIoTest, WritesNothingForNothing) {
    EXPECT_TRUE(velk::WriteAll(-1, ""));
    EXPECT_TRUE(libc().Events(Call::kWrite).empty());
}

}  // namespace
