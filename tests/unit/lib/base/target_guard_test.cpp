// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/target_guard.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace {

using testkit::Call;
using testkit::Fail;
using testkit::kInterfacesCopy;
using testkit::Pass;
using testkit::ReadFile;
using testkit::WriteFile;
using velk::TargetGuard;
using velk::UniqueFd;

const std::string kTarget = testkit::kInterfacesFile;

// A text of several pieces of 4 KB.
std::string LongText(char letter) {
    return std::string(9000, letter) + "\n";
}

class TargetGuardTest : public testkit::DeviceTest {
  protected:
    // Returns the file's text after the guard, if it has this text after the copying. Its time
    // changes.
    std::string TextAfterRepair(const std::string& old_text, const std::string& new_text,
                                const std::string& text_after_copying) {
        WriteFile(kTarget, old_text);
        WriteFile(kInterfacesCopy, new_text);
        const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
        TargetGuard guard(kTarget, copy.get());
        usleep(10000);  // file times have a resolution of some milliseconds
        WriteFile(kTarget, text_after_copying);
        EXPECT_EQ(guard.Repair(), 0);
        has_repaired_ = guard.has_repaired();
        return ReadFile(kTarget);
    }

    bool has_repaired_ = false;
};

TEST_F(TargetGuardTest, AnEmptyFileGetsTheNewText) {
    EXPECT_EQ(TextAfterRepair("old\n", "new text\n", ""), "new text\n");
    EXPECT_TRUE(has_repaired_);
}

TEST_F(TargetGuardTest, APieceOfTheNewTextIsMadeWhole) {
    for (const size_t size : {1U, 4095U, 4096U, 4097U, 9000U}) {
        const std::string text = LongText('n');
        EXPECT_TRUE(TextAfterRepair("old\n", text, text.substr(0, size)) == text) << size;
    }
}

TEST_F(TargetGuardTest, APieceAsLongAsTheOldTextIsMadeWhole) {
    EXPECT_EQ(TextAfterRepair("one\n", "one\ntwo\n", "one\n"), "one\ntwo\n");
}

TEST_F(TargetGuardTest, TheNewTextStays) {
    EXPECT_EQ(TextAfterRepair("old\n", "new text\n", "new text\n"), "new text\n");
    EXPECT_FALSE(has_repaired_);
    EXPECT_EQ(TextAfterRepair("an old text that is longer\n", "new\n", "new\n"), "new\n");
    EXPECT_FALSE(has_repaired_);
}

TEST_F(TargetGuardTest, AnotherTextStays) {
    EXPECT_EQ(TextAfterRepair("old\n", "new text\n", "theirs"), "theirs");
    EXPECT_EQ(TextAfterRepair("old\n", "new\n", "longer than the new text\n"),
              "longer than the new text\n");
    const std::string other = LongText('n').substr(0, 5000) + "x";
    EXPECT_TRUE(TextAfterRepair("old\n", LongText('n'), other) == other);
    EXPECT_FALSE(has_repaired_);
}

TEST_F(TargetGuardTest, AFileThatNobodyHasTouchedStays) {
    WriteFile(kTarget, "one\n");
    WriteFile(kInterfacesCopy, "one\ntwo\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    EXPECT_EQ(guard.Repair(), 0);
    EXPECT_EQ(ReadFile(kTarget), "one\n") << "though it is a piece of the new text";
    EXPECT_FALSE(guard.has_repaired());
}

TEST_F(TargetGuardTest, AFileThatIsGoneStaysSo) {
    WriteFile(kTarget, "one\n");
    WriteFile(kInterfacesCopy, "two\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    unlink(kTarget.c_str());
    EXPECT_EQ(guard.Repair(), 0);
    EXPECT_FALSE(testkit::Exists(kTarget));
}

TEST_F(TargetGuardTest, ACopyThatCannotBeReadIsAFailure) {
    WriteFile(kInterfacesCopy, "new text\n");
    const UniqueFd write_only(open(kInterfacesCopy, O_WRONLY | O_CLOEXEC));
    for (const char* text : {"", "new"}) {
        WriteFile(kTarget, "old\n");
        TargetGuard guard(kTarget, write_only.get());
        WriteFile(kTarget, text);
        EXPECT_EQ(guard.Repair(), EBADF);
    }
    TargetGuard without_copy(kTarget, -1);
    EXPECT_EQ(without_copy.Repair(), EBADF);
}

TEST_F(TargetGuardTest, ATargetThatCannotBeReadIsAFailure) {
    WriteFile(kInterfacesCopy, LongText('n'));
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    const std::string folder = "/etc/network";
    WriteFile(kTarget, "old\n");
    TargetGuard guard(folder, copy.get());
    usleep(20000);
    WriteFile(folder + "/another", "");
    EXPECT_EQ(guard.Repair(), EISDIR);
    unlink((folder + "/another").c_str());
    const std::string below_a_file = kTarget + "/x";
    TargetGuard misplaced(below_a_file, copy.get());
    EXPECT_EQ(misplaced.Repair(), ENOTDIR);
}

TEST_F(TargetGuardTest, AFailingCloseFailsTheRepair) {
    WriteFile(kTarget, "old\n");
    WriteFile(kInterfacesCopy, "new text\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    WriteFile(kTarget, "");
    libc().Script(Call::kClose, {Pass(), Fail(ENOSPC)});
    EXPECT_EQ(guard.Repair(), ENOSPC);
}

TEST_F(TargetGuardTest, AFileThatCannotBeComparedIsAFailure) {
    WriteFile(kTarget, "old\n");
    WriteFile(kInterfacesCopy, "new text\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    WriteFile(kTarget, "new");
    libc().Script(Call::kOpen, {Fail(EACCES)});
    EXPECT_EQ(guard.Repair(), EACCES);
    EXPECT_EQ(ReadFile(kTarget), "new");
}

// Somebody else writes the file at that moment.
TEST_F(TargetGuardTest, AFileThatIsCutWhileItIsComparedStays) {
    WriteFile(kTarget, "old\n");
    WriteFile(kInterfacesCopy, "new text\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    WriteFile(kTarget, "new");
    libc().OnCall(Call::kOpen,
                  [](const testkit::Event&) { EXPECT_EQ(truncate(kTarget.c_str(), 0), 0); });
    EXPECT_EQ(guard.Repair(), 0);
    EXPECT_FALSE(guard.has_repaired());
    libc().OnCall(Call::kOpen, nullptr);
    EXPECT_EQ(ReadFile(kTarget), "");
}

// A character device takes every byte, and fails to flush them.
TEST_F(TargetGuardTest, AFailingFlushFailsTheRepair) {
    WriteFile(kTarget, "old\n");
    WriteFile(kInterfacesCopy, "new text\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    WriteFile(kTarget, "");
    const int device = open("/dev/null", O_WRONLY | O_CLOEXEC);
    libc().Script(Call::kOpen, {Pass(), testkit::Return(device)});
    EXPECT_EQ(guard.Repair(), EINVAL);
    EXPECT_FALSE(guard.has_repaired());
}

TEST_F(TargetGuardTest, AFileThatWasEmptyBeforeAndAfterTheCopyingIsRepaired) {
    WriteFile(kTarget, "");
    WriteFile(kInterfacesCopy, "new\n");
    const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
    TargetGuard guard(kTarget, copy.get());
    WriteFile(kTarget, "");
    EXPECT_EQ(guard.Repair(), 0);
    EXPECT_EQ(ReadFile(kTarget), "new\n");
}

TEST_F(TargetGuardTest, AFailedRepairReturnsItsErrno) {
    for (const auto& [call, error] : {std::pair(Call::kOpen, EROFS), {Call::kWrite, ENOSPC}}) {
        WriteFile(kTarget, "old\n");
        WriteFile(kInterfacesCopy, "new text\n");
        const UniqueFd copy(open(kInterfacesCopy, O_RDONLY | O_CLOEXEC));
        TargetGuard guard(kTarget, copy.get());
        WriteFile(kTarget, "");
        if (call == Call::kOpen) {
            libc().Script(call, {Pass(), Fail(error)});
        } else {
            libc().Script(call, {Fail(error)});
        }
        EXPECT_EQ(guard.Repair(), error);
        EXPECT_FALSE(guard.has_repaired());
    }
}

}  // namespace
