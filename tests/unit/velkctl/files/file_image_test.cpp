// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The whole contents of a file, to compare and to restore.
#include "velkctl/files/file_image.h"

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

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
    EXPECT_EQ(WriteFileImage({.path = kFile, .exists = true, .bytes = "x", .mode = 0777}), 0);
    EXPECT_EQ(FlushFile(kFile), 0);
    EXPECT_EQ(ReadFile(kFile), "x");
    EXPECT_EQ(testkit::IdentityOf(kFile), identity);
}

TEST_F(FileImageTest, MakesAndRemovesAFile) {
    FileImage image{.path = kFile, .exists = true, .bytes = "x", .mode = 0604};
    image.owner = geteuid();
    image.group = getegid();
    EXPECT_EQ(WriteFileImage(image), 0);
    EXPECT_EQ(ReadFile(kFile), "x");
    EXPECT_EQ(testkit::IdentityOf(kFile).mode & 07777U, 0604U);
    EXPECT_EQ(WriteFileImage({kFile}), 0);
    EXPECT_FALSE(testkit::Exists(kFile));
    EXPECT_EQ(WriteFileImage({kFile}), 0) << "it is gone already";
    EXPECT_EQ(FlushFile(kFile), 0);
}

TEST_F(FileImageTest, ReportsAFileThatCannotBeMade) {
    EXPECT_EQ(WriteFileImage({.path = "/etc/network/none/x", .exists = true}), ENOENT);
    FileImage image{.path = kFile, .exists = true};
    libc().Script(testkit::Call::kFchmod, {testkit::Fail(EPERM)});
    image.owner = geteuid();
    image.group = getegid();
    EXPECT_EQ(WriteFileImage(image), EPERM);
}

TEST_F(FileImageTest, KeepsTheFileOnAFullDisk) {
    const testkit::Emptied full("/etc/network", "size=8k");
    WriteFile(kFile, "text");
    const FileImage image{.path = kFile, .exists = true, .bytes = std::string(64 * 1024, 'x')};
    EXPECT_EQ(WriteFileImage(image), ENOSPC);
    EXPECT_EQ(ReadFile(kFile), "text");
}

TEST_F(FileImageTest, NeedsNoRoomBesideItsBlocksOnAFullDisk) {
    const testkit::Emptied full("/etc/network", "size=8k");
    WriteFile(kFile, "the new text");
    WriteFile("/etc/network/fill", std::string(4096, 'x'));
    EXPECT_EQ(WriteFileImage({.path = kFile, .exists = true, .bytes = "text"}), 0);
    EXPECT_EQ(ReadFile(kFile), "text");
    const FileImage longer{.path = kFile, .exists = true, .bytes = std::string(4097, 'x')};
    EXPECT_EQ(WriteFileImage(longer), ENOSPC);
    EXPECT_EQ(ReadFile(kFile), "text");
}

TEST_F(FileImageTest, ReportsAFileThatCannotBeFlushed) {
    WriteFile(kFile, "text");
    libc().Script(testkit::Call::kOpen, {testkit::Fail(EIO)});
    EXPECT_EQ(FlushFile(kFile), EIO);
}

}  // namespace
