// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/result_file.h"

#include <cerrno>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::ReadFile;
using testkit::WriteFile;
using velk::kResultFile;
using velk::OpenResultFile;
using velk::PrepareResultFile;
using velk::UniqueFd;

constexpr char kVictim[] = "/var/tmp/victim";

class ResultFilePreparationTest : public testkit::DeviceTest {};

TEST_F(ResultFilePreparationTest, AMissingFileIsMadeForTheCallerAlone) {
    const mode_t saved = umask(0777);
    EXPECT_TRUE(PrepareResultFile());
    umask(saved);
    struct stat facts {};
    ASSERT_EQ(lstat(kResultFile, &facts), 0);
    EXPECT_EQ(facts.st_mode, S_IFREG | 0600U);
    const std::vector<testkit::Event> opens = libc().Events(Call::kOpen);
    ASSERT_EQ(opens.size(), 1U);
    EXPECT_EQ(opens[0].number, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC);
}

TEST_F(ResultFilePreparationTest, TheCallersOwnFileStaysUnchanged) {
    WriteFile(kResultFile, "old\n");
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(ReadFile(kResultFile), "old\n");
    const UniqueFd file = OpenResultFile();
    EXPECT_NE(file.get(), -1);
}

TEST_F(ResultFilePreparationTest, ALinkAPipeAndAFolderAreReplaced) {
    WriteFile(kVictim, "keep me\n");
    ASSERT_EQ(symlink(kVictim, kResultFile), 0);
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(testkit::IdentityOf(kResultFile).mode, S_IFREG | 0600U);
    ASSERT_EQ(unlink(kResultFile), 0);
    ASSERT_EQ(mkfifo(kResultFile, 0666), 0);
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(testkit::IdentityOf(kResultFile).mode, S_IFREG | 0600U);
    ASSERT_EQ(unlink(kResultFile), 0);
    ASSERT_EQ(mkdir(kResultFile, 0777), 0);
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(testkit::IdentityOf(kResultFile).mode, S_IFREG | 0600U);
    EXPECT_EQ(ReadFile(kVictim), "keep me\n");
}

TEST_F(ResultFilePreparationTest, AFolderThatIsNotEmptyIsMovedAway) {
    ASSERT_EQ(mkdir(kResultFile, 0777), 0);
    WriteFile(std::string(kResultFile) + "/inside", "");
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(testkit::IdentityOf(kResultFile).mode, S_IFREG | 0600U);
    for (const auto& entry : std::filesystem::directory_iterator(testkit::kEditFolder)) {
        if (entry.is_directory()) {
            EXPECT_TRUE(entry.path().string().starts_with(std::string(kResultFile) + "."));
            std::filesystem::remove_all(entry.path());
        }
    }
}

TEST_F(ResultFilePreparationTest, AFileOfAnotherUserIsReplaced) {
    WriteFile(kResultFile, "theirs\n");
    if (chown(kResultFile, 1234, 1234) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(OpenResultFile().get(), -1);
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(testkit::IdentityOf(kResultFile).owner, geteuid());
}

// The shell runs as the real user, so the file that it leaves is his.
TEST_F(ResultFilePreparationTest, AHostWithTwoUsersMakesNoFileAndTakesThatOfEither) {
    if (setresuid(1234, 0, 0) == -1) {
        GTEST_SKIP() << "the private device has no other users";
    }
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_FALSE(Exists(kResultFile));
    WriteFile(kResultFile, "ours\n");
    EXPECT_NE(OpenResultFile().get(), -1);
    EXPECT_EQ(chown(kResultFile, 1234, 1234), 0);
    EXPECT_NE(OpenResultFile().get(), -1);
    EXPECT_EQ(setresuid(0, 0, 0), 0);
}

TEST_F(ResultFilePreparationTest, AnEntryThatVanishesDuringTheRemovalIsNoFailure) {
    ASSERT_EQ(mkfifo(kResultFile, 0666), 0);
    libc().Script(Call::kUnlink, {Fail(ENOENT)});
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(testkit::IdentityOf(kResultFile).mode, S_IFREG | 0600U);
}

TEST_F(ResultFilePreparationTest, AFileWithASecondNameIsReplaced) {
    WriteFile(kVictim, "keep me\n");
    ASSERT_EQ(link(kVictim, kResultFile), 0);
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_EQ(ReadFile(kVictim), "keep me\n");
    EXPECT_NE(testkit::IdentityOf(kResultFile).inode, testkit::IdentityOf(kVictim).inode);
}

TEST_F(ResultFilePreparationTest, AnEntryThatCannotBeRemovedFailsAfterOneTry) {
    ASSERT_EQ(mkfifo(kResultFile, 0666), 0);
    libc().ScriptAlways(Call::kUnlink, Fail(EPERM));
    EXPECT_FALSE(PrepareResultFile());
    EXPECT_EQ(libc().Events(Call::kUnlink).size(), 1U);
}

TEST_F(ResultFilePreparationTest, AnEntryThatComesBackEachTimeFailsAfter16Tries) {
    ASSERT_EQ(mkfifo(kResultFile, 0666), 0);
    libc().ScriptAlways(Call::kUnlink, testkit::Return(0));
    EXPECT_FALSE(PrepareResultFile());
    EXPECT_EQ(libc().Events(Call::kUnlink).size(), 16U);
}

TEST_F(ResultFilePreparationTest, AFileThatCannotBeMadeIsLeftToTheShell) {
    libc().Script(Call::kOpen, {Fail(EROFS)});
    EXPECT_TRUE(PrepareResultFile());
    EXPECT_FALSE(Exists(kResultFile));
}

TEST_F(ResultFilePreparationTest, AFileThatNoShellHasWrittenIntoIsMissing) {
    EXPECT_TRUE(PrepareResultFile());
    const UniqueFd file = OpenResultFile();
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(file.get(), -1);
    EXPECT_FALSE(Exists(kResultFile));
}

TEST_F(ResultFilePreparationTest, AFileThatAShellHasEmptiedIsThere) {
    EXPECT_TRUE(PrepareResultFile());
    WriteFile(kResultFile, "");
    const UniqueFd file = OpenResultFile();
    EXPECT_NE(file.get(), -1);
}

TEST_F(ResultFilePreparationTest, ALinkIsNotOpened) {
    WriteFile(kVictim, "theirs\n");
    ASSERT_EQ(symlink(kVictim, kResultFile), 0);
    EXPECT_EQ(OpenResultFile().get(), -1);
    ASSERT_EQ(unlink(kResultFile), 0);
    ASSERT_EQ(link(kVictim, kResultFile), 0);
    EXPECT_EQ(OpenResultFile().get(), -1);
    ASSERT_EQ(unlink(kResultFile), 0);
    ASSERT_EQ(mkfifo(kResultFile, 0666), 0);
    EXPECT_EQ(OpenResultFile().get(), -1);
}

}  // namespace
