// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The whole contents of a file, to compare and to restore.
#include "velkctl/files/file_image.h"

#include <cerrno>
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/mounted.h"

namespace {

using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::FileImage;
using velkctl::FlushFile;
using velkctl::ReadFileImage;
using velkctl::WriteFileImage;

using namespace std::string_literals;

constexpr char kFile[] = "/etc/network/interfaces";

class FileImageTest : public testkit::DeviceTest {};

TEST_F(FileImageTest, HasBytesModeAndOwner) {
    WriteFile(kFile, "a\0b"s);
    ASSERT_EQ(chmod(kFile, 0604), 0);
    const FileImage image = ReadFileImage(kFile);
    EXPECT_EQ(image.path, kFile);
    EXPECT_TRUE(image.exists);
    EXPECT_EQ(image.bytes, "a\0b"s);
    EXPECT_EQ(image.mode, 0604U);
    EXPECT_EQ(image.owner, geteuid());
    EXPECT_EQ(image.group, getegid());
    EXPECT_EQ(image.error, 0);
}

TEST_F(FileImageTest, KnowsMissingAndUnreadableFiles) {
    EXPECT_FALSE(ReadFileImage(kFile).exists);
    EXPECT_EQ(ReadFileImage(kFile).error, 0);
    ASSERT_EQ(mkfifo(kFile, 0600), 0);
    EXPECT_TRUE(ReadFileImage(kFile).exists);
    EXPECT_EQ(ReadFileImage(kFile).error, EINVAL);
    ASSERT_EQ(unlink(kFile), 0);
    WriteFile(kFile, std::string(1024 * 1024 + 1, 'x'));
    EXPECT_EQ(ReadFileImage(kFile).error, EFBIG);
    libc().Script(testkit::Call::kOpen, {testkit::Fail(EACCES)});
    EXPECT_EQ(ReadFileImage(kFile).error, EACCES);
}

TEST_F(FileImageTest, IsComparedByItsContents) {
    const FileImage none{kFile};
    const FileImage one{.path = kFile, .exists = true, .bytes = "x"};
    const FileImage other{.path = "y", .exists = true, .bytes = "x", .mode = 0600};
    const FileImage empty{.path = kFile, .exists = true};
    const FileImage unread{.path = kFile, .exists = true, .error = EACCES};
    EXPECT_TRUE(none.HasContentsOf(none));
    EXPECT_TRUE(one.HasContentsOf(other));
    EXPECT_FALSE(one.HasContentsOf(empty));
    EXPECT_FALSE(empty.HasContentsOf(none));
    EXPECT_FALSE(unread.HasContentsOf(empty));
    EXPECT_FALSE(empty.HasContentsOf(unread));
}

TEST_F(FileImageTest, IsWrittenInPlace) {
    WriteFile(kFile, "a longer text");
    const testkit::FileIdentity identity = testkit::IdentityOf(kFile);
    const FileImage image{.path = kFile, .exists = true, .bytes = "x", .mode = 0777};
    EXPECT_EQ(WriteFileImage(image, ReadFileImage(kFile)), 0);
    EXPECT_EQ(FlushFile(kFile), 0);
    EXPECT_EQ(ReadFile(kFile), "x");
    EXPECT_EQ(testkit::IdentityOf(kFile), identity);
}

// Another program writes between the comparison and the write.
TEST_F(FileImageTest, KeepsTheTextOfAnotherProgram) {
    WriteFile(kFile, "theirs");
    const FileImage ours{.path = kFile, .exists = true, .bytes = "ours"};
    for (const FileImage& now :
         {FileImage{.path = kFile, .exists = true, .bytes = "their"},
          FileImage{.path = kFile, .exists = true, .bytes = "theirs."}, FileImage{kFile}}) {
        EXPECT_EQ(WriteFileImage(ours, now), ESTALE);
        EXPECT_EQ(now.exists ? WriteFileImage({kFile}, now) : ESTALE, ESTALE);
        EXPECT_EQ(ReadFile(kFile), "theirs");
    }
    const FileImage now = ReadFileImage(kFile);
    ASSERT_EQ(unlink(kFile), 0);
    EXPECT_EQ(WriteFileImage(ours, now), ESTALE);
    EXPECT_FALSE(testkit::Exists(kFile));
}

// An editor puts a new file in place while the old one is written.
TEST_F(FileImageTest, KeepsAFileThatIsPutInPlaceMeanwhile) {
    WriteFile(kFile, "old");
    const FileImage now = ReadFileImage(kFile);
    libc().OnCall(testkit::Call::kWrite, [](const testkit::Event&) {
        const velk::UniqueFd file(open("/etc/network/new", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        EXPECT_EQ(rename("/etc/network/new", kFile), 0);
    });
    EXPECT_EQ(WriteFileImage({.path = kFile, .exists = true, .bytes = "ours"}, now), ESTALE);
    EXPECT_EQ(ReadFile(kFile), "");
}

TEST_F(FileImageTest, IsWrittenWhileSomebodyHasItOpen) {
    WriteFile(kFile, "old");
    const velk::UniqueFd reader(open(kFile, O_RDONLY | O_CLOEXEC));
    const FileImage image{.path = kFile, .exists = true, .bytes = "new"};
    EXPECT_EQ(WriteFileImage(image, ReadFileImage(kFile)), 0);
    EXPECT_EQ(ReadFile(kFile), "new");
}

TEST_F(FileImageTest, LetsOthersWaitUntilItIsWritten) {
    WriteFile(kFile, "old");
    bool was_refused = false;
    libc().OnCall(testkit::Call::kWrite, [&](const testkit::Event&) {
        was_refused = open(kFile, O_RDONLY | O_NONBLOCK | O_CLOEXEC) == -1 && errno == EAGAIN;
    });
    const FileImage image{.path = kFile, .exists = true, .bytes = "new"};
    EXPECT_EQ(WriteFileImage(image, ReadFileImage(kFile)), 0);
    EXPECT_TRUE(was_refused);
    EXPECT_EQ(ReadFile(kFile), "new");
}

TEST_F(FileImageTest, MakesAndRemovesAFile) {
    FileImage image{.path = kFile, .exists = true, .bytes = "x", .mode = 0604};
    image.owner = geteuid();
    image.group = getegid();
    EXPECT_EQ(WriteFileImage(image, {kFile}), 0);
    EXPECT_EQ(ReadFile(kFile), "x");
    EXPECT_EQ(testkit::IdentityOf(kFile).mode & 07777U, 0604U);
    EXPECT_EQ(WriteFileImage({kFile}, image), 0);
    EXPECT_FALSE(testkit::Exists(kFile));
    EXPECT_EQ(WriteFileImage({kFile}, image), 0) << "it is gone already";
    EXPECT_EQ(FlushFile(kFile), 0);
}

TEST_F(FileImageTest, ReportsAFileThatCannotBeMade) {
    constexpr char kNone[] = "/etc/network/none/x";
    EXPECT_EQ(WriteFileImage({.path = kNone, .exists = true}, {kNone}), ENOENT);
    FileImage image{.path = kFile, .exists = true};
    libc().Script(testkit::Call::kFchmod, {testkit::Fail(EPERM)});
    image.owner = geteuid();
    image.group = getegid();
    EXPECT_EQ(WriteFileImage(image, {kFile}), EPERM);
}

TEST_F(FileImageTest, KeepsTheFileOnAFullDisk) {
    const testkit::Emptied full("/etc/network", "size=8k");
    WriteFile(kFile, "text");
    const FileImage image{.path = kFile, .exists = true, .bytes = std::string(64 * 1024, 'x')};
    EXPECT_EQ(WriteFileImage(image, ReadFileImage(kFile)), ENOSPC);
    EXPECT_EQ(ReadFile(kFile), "text");
}

TEST_F(FileImageTest, ReportsAFileThatCannotBeFlushed) {
    WriteFile(kFile, "text");
    libc().Script(testkit::Call::kOpen, {testkit::Fail(EIO)});
    EXPECT_EQ(FlushFile(kFile), EIO);
}

}  // namespace
