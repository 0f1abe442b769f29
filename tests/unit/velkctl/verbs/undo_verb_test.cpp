// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The verb that takes back a finished change, where the journal or the library's lock fails.
#include <cerrno>
#include <string>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_folder.h"

namespace {

using testkit::Call;
using testkit::Event;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::ExitStatus;
using velkctl::Invocation;
using velkctl::ReadJournal;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 192.168.0.2\n";

class UndoVerbTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_EQ(RunSet({.words = {"eth0.address", "192.168.0.2"}}, report), ExitStatus::kDone);
        ASSERT_EQ(ReadFile(kInterfaces), kNewText);
    }
    ExitStatus Undo() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = RunUndo({}, report);
        (void)fflush(stdout);
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }
    // The write of this number fails.
    void FailWrite(int number) {
        libc().ForgetFault();
        libc().PlanFault(Call::kWrite, number, testkit::Reach::kThatOne, EIO);
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    std::string output;
    std::string error;
};

TEST_F(UndoVerbTest, TakesTheLastChangeBack) {
    EXPECT_EQ(Undo(), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(error, "");
}

TEST_F(UndoVerbTest, ChangesNothingWithoutItsEntry) {
    for (const int number : {1, 2, 3}) {
        FailWrite(number);
        EXPECT_EQ(Undo(), ExitStatus::kFailed);
        EXPECT_EQ(error,
                  "velkctl: undo: nothing was changed\n"
                  "  /var/libvelk/journal: Input/output error\n"
                  "  fix: make /var/libvelk/journal a folder that can be written\n");
        EXPECT_EQ(ReadFile(kInterfaces), kNewText);
        EXPECT_EQ(ReadJournal().entries.size(), 1U);
    }
}

TEST_F(UndoVerbTest, NotesAnEntryThatCannotBeClosed) {
    FailWrite(5);
    EXPECT_EQ(Undo(), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(error,
              "velkctl: note: undo: undo cannot take this back\n"
              "  /var/libvelk/journal: Input/output error\n"
              "  fix: make /var/libvelk/journal a folder that can be written\n");
    EXPECT_EQ(ReadJournal().entries.size(), 1U) << "recover would make the change again";
}

TEST_F(UndoVerbTest, ChangesNothingIfAnotherProgramTakesTheLockMeanwhile) {
    int lock = -1;
    libc().OnCall(Call::kWrite, [&](const Event&) {
        if (lock == -1) {
            lock = VkLibLock();
        }
    });
    EXPECT_EQ(Undo(), ExitStatus::kLocked);
    VkLibUnLock(lock);
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
    EXPECT_EQ(ReadJournal().entries.size(), 1U);
    EXPECT_TRUE(
        error.starts_with("velkctl: undo: nothing was changed\n"
                          "  another program is changing settings\n"
                          "  process "))
        << error;
    EXPECT_TRUE(
        error.ends_with(" holds the lock\n"
                        "  fix: try again, or let --wait=SECONDS try again\n"))
        << error;
}

}  // namespace
