// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/file_edit.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;
using testkit::Pass;
using testkit::ReadFile;
using testkit::Return;
using testkit::WriteFile;
using velk::FileEdit;

// Copies the file through an edit, line by line, and returns the result of Finish().
int CopyThrough(const char* target = kInterfacesFile) {
    FileEdit edit(target);
    for (std::string_view line; edit.ReadLine(line);) {
        edit.Keep(line);
    }
    return edit.Finish();
}

// The same, with every line written as if it were new.
int WriteThrough() {
    FileEdit edit(kInterfacesFile);
    for (std::string_view line; edit.ReadLine(line);) {
        edit.Write(line);
    }
    return edit.Finish();
}

// Lines of many lengths, of several blocks together.
std::string ManyLines() {
    std::string text;
    for (int i = 0; i < 20000; ++i) {
        text += "line " + std::to_string(i) + std::string(static_cast<size_t>(i) % 61, '.') + "\n";
    }
    return text;
}

// A tmpfs of one page over /var/tmp.
class FullScratchFolder {
  public:
    FullScratchFolder()
        : is_mounted_(mount("tmpfs", testkit::kEditFolder, "tmpfs", 0, "size=4k,mode=1777") == 0) {}
    ~FullScratchFolder() {
        if (is_mounted_) {
            umount2(testkit::kEditFolder, MNT_DETACH);
        }
    }
    FullScratchFolder(const FullScratchFolder&) = delete;
    FullScratchFolder& operator=(const FullScratchFolder&) = delete;

    bool is_mounted() const { return is_mounted_; }

  private:
    const bool is_mounted_;
};

class FileEditTest : public testkit::DeviceTest {
  protected:
    void SetUp() override { WriteFile(kInterfacesFile, "one\ntwo\nthree\n"); }
    void TearDown() override {
        rmdir(kInterfacesCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    testkit::FakeShell shell;
};

// ---- opening

// On a 32-bit machine the time does not fit the usual time_t.
TEST_F(FileEditTest, AFileOfTheYear2100IsEdited) {
    WriteFile(kInterfacesFile, "auto lo\n");
    const timespec year_2100{4'102'444'800, 0};
    const timespec times[] = {year_2100, year_2100};
    ASSERT_EQ(utimensat(AT_FDCWD, kInterfacesFile, times, 0), 0);
    EXPECT_EQ(WriteThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "auto lo\n");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(FileEditTest, OpensTheFileAndThenTheCopy) {
    { const FileEdit edit(kInterfacesFile); }
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kInterfacesFile, kInterfacesCopy));
}

TEST_F(FileEditTest, OpensBothCloseOnExec) {
    { const FileEdit edit(kInterfacesFile); }
    const std::vector<testkit::Event> opens = libc().Events(Call::kOpen);
    ASSERT_THAT(opens, SizeIs(2));
    EXPECT_EQ(opens[0].number & O_CLOEXEC, O_CLOEXEC);
    EXPECT_EQ(opens[1].number & O_CLOEXEC, O_CLOEXEC);
    EXPECT_EQ(opens[0].number & O_ACCMODE, O_RDONLY);
    EXPECT_EQ(opens[1].number & O_ACCMODE, O_RDWR) << "the copy is read again where a file was cut";
}

TEST_F(FileEditTest, TheCopyIsNamedAfterTheFileAlone) {
    WriteFile(testkit::kCrontab, "x\n");
    { const FileEdit edit(testkit::kCrontab); }
    EXPECT_TRUE(Exists("/var/tmp/root"));
}

TEST_F(FileEditTest, TheEditIsOpenIfBothFilesAre) {
    const FileEdit edit(kInterfacesFile);
    EXPECT_TRUE(edit.is_open());
    EXPECT_EQ(edit.target_error(), 0);
    EXPECT_EQ(edit.copy_error(), 0);
}

TEST_F(FileEditTest, AnOldCopyIsEmptied) {
    WriteFile(kInterfacesCopy, "left by an interrupted edit\n");
    const FileEdit edit(kInterfacesFile);
    EXPECT_EQ(ReadFile(kInterfacesCopy), "");
}

TEST_F(FileEditTest, AMissingFileIsReportedAndTheCopyIsStillMade) {
    unlink(kInterfacesFile);
    const FileEdit edit(kInterfacesFile);
    EXPECT_FALSE(edit.is_open());
    EXPECT_EQ(edit.target_error(), ENOENT);
    EXPECT_EQ(edit.copy_error(), 0);
    EXPECT_EQ(ReadFile(kInterfacesCopy), "");
    EXPECT_FALSE(Exists(kInterfacesFile)) << "an edit makes no new file";
}

TEST_F(FileEditTest, AFolderInTheFilesPlaceIsReported) {
    unlink(kInterfacesFile);
    ASSERT_EQ(mkdir(kInterfacesFile, 0755), 0);
    {
        const FileEdit edit(kInterfacesFile);
        EXPECT_FALSE(edit.is_open());
        EXPECT_EQ(edit.target_error(), EISDIR);
        EXPECT_EQ(edit.copy_error(), 0);
    }
    rmdir(kInterfacesFile);
}

TEST_F(FileEditTest, AFolderInTheCopysPlaceIsReported) {
    ASSERT_EQ(mkdir(kInterfacesCopy, 0755), 0);
    const FileEdit edit(kInterfacesFile);
    EXPECT_FALSE(edit.is_open());
    EXPECT_EQ(edit.target_error(), 0);
    EXPECT_EQ(edit.copy_error(), EISDIR);
}

TEST_F(FileEditTest, BothErrorsAreReported) {
    libc().Script(Call::kOpen, {Fail(EACCES), Fail(EROFS)});
    const FileEdit edit(kInterfacesFile);
    EXPECT_FALSE(edit.is_open());
    EXPECT_EQ(edit.target_error(), EACCES);
    EXPECT_EQ(edit.copy_error(), EROFS);
}

TEST_F(FileEditTest, ALinkInTheCopysPlaceIsReplaced) {
    WriteFile("/etc/network/victim", "keep me\n");
    ASSERT_EQ(symlink("/etc/network/victim", kInterfacesCopy), 0);
    {
        const FileEdit edit(kInterfacesFile);
        EXPECT_TRUE(edit.is_open());
    }
    EXPECT_EQ(ReadFile("/etc/network/victim"), "keep me\n");
    EXPECT_EQ(ReadFile(kInterfacesCopy), "");
    EXPECT_FALSE(std::filesystem::is_symlink(kInterfacesCopy));
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
}

TEST_F(FileEditTest, AHardLinkInTheCopysPlaceIsReplaced) {
    WriteFile("/var/tmp/victim", "keep me\n");
    ASSERT_EQ(link("/var/tmp/victim", kInterfacesCopy), 0);
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile("/var/tmp/victim"), "keep me\n");
}

TEST_F(FileEditTest, ACopyOfSomebodyElsesIsReplaced) {
    WriteFile(kInterfacesCopy, "0 * * * * reboot\n");
    const int theirs = open(kInterfacesCopy, O_WRONLY | O_CLOEXEC);
    {
        FileEdit edit(kInterfacesFile);
        edit.Write("one\n");
        ASSERT_EQ(write(theirs, "evil", 4), 4);
        EXPECT_EQ(edit.Finish(), 0);
    }
    close(theirs);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\n");
}

TEST_F(FileEditTest, APipeInTheCopysPlaceIsReplaced) {
    ASSERT_EQ(mkfifo(kInterfacesCopy, 0666), 0);
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
}

TEST_F(FileEditTest, OnlyTheOwnerMayReadOrWriteTheCopy) {
    const mode_t saved = umask(0);
    struct stat status {};
    {
        const FileEdit edit(kInterfacesFile);
        EXPECT_EQ(stat(kInterfacesCopy, &status), 0);
    }
    umask(saved);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(FileEditTest, ACopyThatAppearsAfterTheRemovalIsNotOpened) {
    WriteFile(kInterfacesCopy, "");
    int opened = 0;
    libc().OnCall(Call::kUnlink, [&](const testkit::Event&) { ++opened; });
    libc().Script(Call::kUnlink, {testkit::Return(0)});  // as if it came back at once
    {
        const FileEdit edit(kInterfacesFile);
        EXPECT_EQ(edit.copy_error(), EEXIST);
    }
    EXPECT_EQ(opened, 1);
}

TEST_F(FileEditTest, ALinkToNothingIsReplacedToo) {
    ASSERT_EQ(symlink("/etc/network/victim", kInterfacesCopy), 0);
    {
        const FileEdit edit(kInterfacesFile);
        EXPECT_TRUE(edit.is_open());
    }
    EXPECT_FALSE(Exists("/etc/network/victim"));
}

TEST_F(FileEditTest, ALinkInTheFilesPlaceIsFollowed) {
    WriteFile("/etc/network/real", "one\n");
    unlink(kInterfacesFile);
    ASSERT_EQ(symlink("real", kInterfacesFile), 0);
    FileEdit edit(kInterfacesFile);
    std::string_view line;
    EXPECT_TRUE(edit.ReadLine(line));
    EXPECT_EQ(line, "one\n");
}

// ---- reading and writing

TEST_F(FileEditTest, EveryLineIsHandedOutWithItsNewline) {
    WriteFile(kInterfacesFile, "one\n\n\ttwo\r\nlast");
    FileEdit edit(kInterfacesFile);
    std::vector<std::string> lines;
    for (std::string_view line; edit.ReadLine(line);) {
        lines.emplace_back(line);
    }
    EXPECT_THAT(lines, ElementsAre("one\n", "\n", "\ttwo\r\n", "last\n"));
}

TEST_F(FileEditTest, TextsAreWrittenUnchanged) {
    FileEdit edit(kInterfacesFile);
    edit.Write("a");
    edit.Write("");
    edit.Write(std::string_view("b\0c", 3));
    edit.Write("\n\n");
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), std::string("ab\0c\n\n", 6));
}

TEST_F(FileEditTest, AnEditThatWritesNothingEmptiesTheFile) {
    FileEdit edit(kInterfacesFile);
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "");
}

TEST_F(FileEditTest, AnEmptyFileStaysEmpty) {
    WriteFile(kInterfacesFile, "");
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "");
}

TEST_F(FileEditTest, AnEditThatIsNotFinishedLeavesTheFileUnchangedAndKeepsTheCopy) {
    {
        FileEdit edit(kInterfacesFile);
        edit.Write("changed\n");
    }
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_TRUE(Exists(kInterfacesCopy));
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(FileEditTest, AnEditMayEndBeforeItsFile) {
    FileEdit edit(kInterfacesFile);
    std::string_view line;
    ASSERT_TRUE(edit.ReadLine(line));
    edit.Keep(line);
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\n");
}

TEST_F(FileEditTest, TheFileIsUntouchedUntilTheEnd) {
    FileEdit edit(kInterfacesFile);
    for (std::string_view line; edit.ReadLine(line);) {
        edit.Write("changed " + std::string(line));
        EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    }
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "changed one\nchanged two\nchanged three\n");
}

TEST_F(FileEditTest, AFileOfManyBlocksGoesThroughWhole) {
    const std::string text = ManyLines();
    WriteFile(kInterfacesFile, text);
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_TRUE(ReadFile(kInterfacesFile) == text);
    EXPECT_EQ(WriteThrough(), 0);
    EXPECT_TRUE(ReadFile(kInterfacesFile) == text);
}

TEST_F(FileEditTest, KeptAndNewLinesAreWrittenInOrder) {
    for (const size_t distance : {1U, 2U, 3U, 100U, 5000U}) {
        WriteFile(kInterfacesFile, ManyLines());
        std::string expected;
        FileEdit edit(kInterfacesFile);
        size_t count = 0;
        for (std::string_view line; edit.ReadLine(line);) {
            if (++count % distance == 0) {
                edit.Write("new line\n");
                expected += "new line\n";
            }
            if (count % distance != 1) {  // some lines are left out
                edit.Keep(line);
                expected += line;
            }
        }
        EXPECT_EQ(edit.Finish(), 0);
        EXPECT_TRUE(ReadFile(kInterfacesFile) == expected) << distance;
    }
}

TEST_F(FileEditTest, TheFrontOfALineIsKeptAlone) {
    FileEdit edit(kInterfacesFile);
    std::string_view line;
    while (edit.ReadLine(line)) {
        edit.Keep(line.substr(0, 2));
        edit.Write("!");
    }
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "on!tw!th!");
}

TEST_F(FileEditTest, AFileOfUsualSizeIsWrittenAtOnce) {
    FileEdit edit(kInterfacesFile);
    std::string_view line;
    while (edit.ReadLine(line)) {
        edit.Keep(line);
        edit.Write("new line\n");
    }
    const size_t writes = libc().Events(Call::kWrite).size();
    EXPECT_EQ(writes, 1U) << "the test's own";
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(libc().Texts(Call::kWrite)[writes],
              "one\nnew line\ntwo\nnew line\nthree\nnew line\n");
}

TEST_F(FileEditTest, KeptLinesAreWrittenBlockByBlock) {
    const std::string text = ManyLines();
    WriteFile(kInterfacesFile, text);
    FileEdit edit(kInterfacesFile);
    const size_t writes = libc().Events(Call::kWrite).size();
    for (std::string_view line; edit.ReadLine(line);) {
        edit.Keep(line);
    }
    EXPECT_LE(libc().Events(Call::kWrite).size() - writes, text.size() / 65536 + 2);
}

TEST_F(FileEditTest, LinesBeforeALineWithTheGivenStartAreKept) {
    WriteFile(kInterfacesFile, "one\n two\ntwo\ntwofold\nthree\nlast");
    FileEdit edit(kInterfacesFile);
    std::string_view line;
    while (edit.KeepLinesBefore("two", line)) {
        edit.Write("found " + std::string(line));
    }
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\n two\nfound two\nfound twofold\nthree\nlast\n");
}

TEST_F(FileEditTest, LinesWithTheGivenStartAreFoundInEveryBlock) {
    for (const size_t length : {10U, 4091U, 4096U, 65000U, 70000U}) {
        const std::string filler = std::string(length, 'x') + " start\n";
        std::string text;
        std::string expected;
        for (int i = 0; i < 40; ++i) {
            text += filler + "start " + std::to_string(i) + "\n" + filler;
            expected += filler + "found start " + std::to_string(i) + "\n" + filler;
        }
        WriteFile(kInterfacesFile, text);
        FileEdit edit(kInterfacesFile);
        for (std::string_view line; edit.KeepLinesBefore("start ", line);) {
            edit.Write("found ");
            edit.Keep(line);
        }
        EXPECT_EQ(edit.Finish(), 0);
        EXPECT_TRUE(ReadFile(kInterfacesFile) == expected) << length;
    }
}

TEST_F(FileEditTest, ALineLongerThanABlockGoesThroughWhole) {
    for (const size_t size : {4095U, 4096U, 65534U, 65535U, 65536U, 65537U, 300000U}) {
        const std::string text = "a\n" + std::string(size, 'x') + "\nb\n";
        WriteFile(kInterfacesFile, text);
        EXPECT_EQ(CopyThrough(), 0);
        EXPECT_TRUE(ReadFile(kInterfacesFile) == text) << size;
        WriteFile(kInterfacesFile, std::string(size, 'x'));
        EXPECT_EQ(CopyThrough(), 0);
        EXPECT_TRUE(ReadFile(kInterfacesFile) == std::string(size, 'x') + "\n") << size;
    }
}

TEST_F(FileEditTest, AShortWriteIsContinued) {
    bool is_first = true;
    libc().OnCall(Call::kWrite, [&](const testkit::Event& event) {
        if (is_first) {
            is_first = false;
            const testkit::Unrecorded quiet;
            EXPECT_EQ(write(event.number, event.text.data(), 1), 1);
        }
    });
    libc().Script(Call::kWrite, {Return(1)});
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
}

TEST_F(FileEditTest, ASignalWhileWritingMakesNoDifference) {
    libc().Script(Call::kWrite, {Fail(EINTR), Fail(EINTR)});
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(FileEditTest, AReadErrorInTheMiddleEndsTheFile) {
    const std::string first = "one\n" + std::string(4091, '#') + "\n";  // a block of 4 KB
    WriteFile(kInterfacesFile, first + "last\n");
    libc().Script(Call::kRead, {Pass(), Fail(EIO)});
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_TRUE(ReadFile(kInterfacesFile) == first);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(FileEditTest, AReadErrorAtTheEndMakesNoDifference) {
    libc().Script(Call::kRead, {Pass(), Fail(EIO)});
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
}

// ---- putting the copy in place

TEST_F(FileEditTest, TheCopyIsPutInPlaceByTheseLines) {
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "system rm /var/tmp/interfaces"));
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(FileEditTest, BothFilesAreClosedBeforeTheCopying) {
    const size_t before = testkit::OpenDescriptors().size();
    FileEdit edit(kInterfacesFile);
    for (std::string_view line; edit.ReadLine(line);) {
        edit.Write(line);
    }
    EXPECT_EQ(testkit::OpenDescriptors().size(), before + 2);
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(testkit::OpenDescriptors().size(), before);
    EXPECT_EQ(libc().Order({Call::kClose, Call::kSystem}),
              (std::vector<std::string>{"close", "close", "system", "system", "close"}))
        << "the last one is of the copy's text, which no tool inherits";
}

TEST_F(FileEditTest, AFailingCopyingIsNotNoticed) {
    libc().Script(Call::kSystem, {Return(256), Return(256)});
    EXPECT_EQ(CopyThrough(), 0);
    libc().Script(Call::kSystem, {Fail(EAGAIN), Fail(EAGAIN)});
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=11:Resource temporarily unavailable",
                                           "system errno=11:Resource temporarily unavailable"));
}

// The tools leave the file empty, and the copy where it is.
TEST_F(FileEditTest, AFileThatTheToolsCutIsRepairedAndItsCopyRemoved) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\taddress 10.0.0.5\n");
    libc().OnCall(Call::kSystem, [](const testkit::Event& event) {
        if (event.text.starts_with("cat ")) {
            WriteFile(kInterfacesFile, "");
        }
    });
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.9"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "iface eth0 inet static\n\taddress 10.0.0.9\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
    EXPECT_THAT(libc().Logs(), ElementsAre("FileEdit mended /etc/network/interfaces"));
}

TEST_F(FileEditTest, AnEditWithoutTheLockIsRepairedToo) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const testkit::Event& event) {
        if (event.text.starts_with("cat ")) {
            WriteFile(kInterfacesFile, "");
        }
    });
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
}

TEST_F(FileEditTest, ACutFileThatCannotBeRepairedIsLoggedAndItsCopyStays) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [this](const testkit::Event&) {
        WriteFile(kInterfacesFile, "");
        libc().Script(Call::kOpen, {Pass(), Fail(EROFS)});
    });
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("FileEdit mend errno=30:Read-only file system"));
    EXPECT_EQ(ReadFile(kInterfacesCopy), "one\ntwo\nthree\n");
}

TEST_F(FileEditTest, WithoutADescriptorForTheCopyNothingIsChanged) {
    FileEdit edit(kInterfacesFile);
    edit.Write("new\n");
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &saved), 0);
    const rlimit none{0, saved.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(edit.Finish(), -1);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &saved), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(FileEditTest, LinesThatDoNotFitAreNotRun) {
    const std::string target = "/etc/network/" + std::string(200, 'x');
    WriteFile(target, "one\n");
    FileEdit edit(target);
    edit.Write("new\n");
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_EQ(ReadFile(target), "one\n");
}

// The shell's rm runs as the real user, who may not remove it.
TEST_F(FileEditTest, AHostWithTwoUsersLeavesNoCopy) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const testkit::Event& event) {
        struct stat facts {};
        EXPECT_TRUE(!event.text.starts_with("cat ") || stat(kInterfacesCopy, &facts) == 0);
        EXPECT_TRUE(!event.text.starts_with("cat ") || (facts.st_mode & 07777) == 0644);
    });
    if (setresuid(1234, 0, 0) == -1) {
        GTEST_SKIP() << "the private device has no other users";
    }
    EXPECT_EQ(CopyThrough(), 0);
    EXPECT_EQ(setresuid(0, 0, 0), 0);
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

// ---- a copy that cannot be written

TEST_F(FileEditTest, AFailedWriteLeavesTheFileAsItWas) {
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(FileEditTest, AWriteThatFailsAfterAPartLeavesTheFileAsItWas) {
    libc().Script(Call::kWrite, {Return(5), Fail(EIO)});
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=5:Input/output error"));
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(FileEditTest, AWriteThatTakesNothingIsAFailureToo) {
    libc().Script(Call::kWrite, {Return(0)});
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_THAT(libc().Logs(), SizeIs(1));
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(FileEditTest, AFailedCloseLeavesTheFileAsItWas) {
    libc().ScriptAlways(Call::kClose, Fail(ENOSPC));
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(FileEditTest, TheFirstErrorIsTheOneLogged) {
    libc().ScriptAlways(Call::kClose, Fail(EIO));
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("FileEdit write errno=28:No space left on device"));
}

TEST_F(FileEditTest, NothingMoreIsWrittenAfterAFailure) {
    WriteFile(kInterfacesFile,
              std::string(300000, 'x') + "\n" + std::string(300000, 'y') + "\nend\n");
    const size_t before = libc().Events(Call::kWrite).size();
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(CopyThrough(), -1);
    EXPECT_THAT(libc().Events(Call::kWrite), SizeIs(before + 1));
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_TRUE(ReadFile(kInterfacesFile).ends_with("\nend\n"));
}

TEST_F(FileEditTest, ACloseOfTheReadFileThatFailsIsNotNoticed) {
    FileEdit edit(kInterfacesFile);
    for (std::string_view line; edit.ReadLine(line);) {
        edit.Write(line);
    }
    libc().Script(Call::kClose, {Fail(EIO)});  // the read file is closed first
    EXPECT_EQ(edit.Finish(), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\nthree\n");
}

// The same on a file system that really is full, with the real shell.
class FullFolderTest : public testkit::DeviceTest {};

TEST_F(FullFolderTest, AFileThatDoesNotFitStaysAsItWas) {
    std::string text;
    while (text.size() < 16 * 1024) {
        text += "iface eth0 inet static\n";
    }
    WriteFile(kInterfacesFile, text);
    {
        const FullScratchFolder folder;
        ASSERT_TRUE(folder.is_mounted());
        EXPECT_EQ(CopyThrough(), -1);
        EXPECT_THAT(libc().Story(),
                    ElementsAre("log FileEdit write errno=28:No space left on device"));
        EXPECT_FALSE(Exists(kInterfacesCopy)) << "what was written is removed to make room again";
    }
    EXPECT_TRUE(ReadFile(kInterfacesFile) == text);
}

TEST_F(FullFolderTest, AFileThatFitsIsEdited) {
    WriteFile(kInterfacesFile, "one\ntwo");
    {
        const FullScratchFolder folder;
        ASSERT_TRUE(folder.is_mounted());
        EXPECT_EQ(CopyThrough(), 0);
        EXPECT_FALSE(Exists(kInterfacesCopy));
    }
    EXPECT_EQ(ReadFile(kInterfacesFile), "one\ntwo\n");
}

TEST_F(FullFolderTest, NoSetChangesAFileIfItsCopyDoesNotFit) {
    const std::string text(16 * 1024, '#');
    for (const char* file :
         {testkit::kInterfacesFile, testkit::kExitHooks, testkit::kDhcpConfigFile}) {
        WriteFile(file, text);
    }
    {
        const FullScratchFolder folder;
        ASSERT_TRUE(folder.is_mounted());
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_METHOD, "eth0", "\x01"), -1);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_APIPA, "eth0", "\x01"), -1);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.1"), -1);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DHCP_NOTICE, "eth0", "\x01"), -1);
        EXPECT_EQ(SetDhcpRequest("eth0", true), -1);
        EXPECT_EQ(SetDhcpServer("eth0", "ntp-servers", true, true), -1);
        EXPECT_THAT(libc().Commands(), IsEmpty());
    }
    for (const char* file :
         {testkit::kInterfacesFile, testkit::kExitHooks, testkit::kDhcpConfigFile}) {
        EXPECT_TRUE(ReadFile(file) == text) << file;
    }
}

}  // namespace
