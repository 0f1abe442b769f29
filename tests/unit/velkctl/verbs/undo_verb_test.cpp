// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The verb that takes back a finished change, where the journal or the library's lock fails.
#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_folder.h"

namespace {

using testkit::Call;
using testkit::Event;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::Invocation;
using velkctl::ReadJournal;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 192.168.0.2\n";

using Words = std::vector<std::string>;

// During its lifetime this process can open one more file.
class OneDescriptor {
  public:
    OneDescriptor() {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0);
        const int next = dup(STDIN_FILENO);
        EXPECT_EQ(close(next), 0);
        rlimit few = before_;
        few.rlim_cur = static_cast<rlim_t>(next) + 1;
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    }
    ~OneDescriptor() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before_), 0); }
    OneDescriptor(const OneDescriptor&) = delete;
    OneDescriptor& operator=(const OneDescriptor&) = delete;

  private:
    rlimit before_{};
};

class UndoVerbTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_EQ(RunSet({.words = {"eth0.address", "192.168.0.2"}}, report), ExitStatus::kDone);
        ASSERT_EQ(ReadFile(kInterfaces), kNewText);
    }
    ExitStatus Undo(const std::string& id = "") {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = RunUndo({.words = id.empty() ? Words() : Words{id}}, report);
        (void)fflush(stdout);
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }
    ExitStatus Recover() {
        testing::internal::CaptureStdout();
        const ExitStatus status = RunRecover({}, report);
        (void)fflush(stdout);
        (void)testing::internal::GetCapturedStdout();
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

TEST_F(UndoVerbTest, StaysOpenIfAFileCannotBeWritten) {
    FailWrite(4);
    EXPECT_EQ(Undo(), ExitStatus::kPartlyBack);
    EXPECT_EQ(ReadFile(kInterfaces), "");
    EXPECT_EQ(error,
              "velkctl: /etc/network/interfaces: not put back\n"
              "  Input/output error\n"
              "velkctl: undo: stopped before its end\n"
              "  fix: when the disk is sound, 'velkctl recover', then undo again\n");
    EXPECT_EQ(ReadJournal().entries.back().decoded.entry.state, EntryState::kStuck);
    EXPECT_EQ(Recover(), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
    EXPECT_EQ(Undo(), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
}

TEST_F(UndoVerbTest, IsFinishedBeforeASignalEndsIt) {
    libc().OnCall(Call::kOpen, [](const Event& event) {
        if (event.text == kInterfaces && (event.number & O_ACCMODE) != O_RDONLY) {
            (void)raise(SIGINT);
        }
    });
    EXPECT_EXIT((void)RunUndo({}, report), testing::KilledBySignal(SIGINT),
                "velkctl: interrupted; the change is taken back\n");
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(ReadJournal().entries.back().decoded.entry.state, EntryState::kDone);
}

// With a line of another program the value is set in a copy first, not the file written at once.
TEST_F(UndoVerbTest, StaysOpenIfAFileOfAnotherProgramCannotBeWritten) {
    const std::string theirs = "# by hand\n";
    WriteFile(kInterfaces, kNewText + theirs);
    // The trial in a copy is another process, which writes without faults.
    libc().OnCall(Call::kOpen, [this, own = getpid()](const Event& event) {
        if (getpid() == own && event.text == kInterfaces &&
            (event.number & O_ACCMODE) != O_RDONLY) {
            libc().Script(Call::kWrite, {testkit::Fail(EIO)});
        }
    });
    EXPECT_EQ(Undo(), ExitStatus::kPartlyBack);
    EXPECT_EQ(ReadFile(kInterfaces), "");
    EXPECT_EQ(ReadJournal().entries.back().decoded.entry.state, EntryState::kStuck);
    libc().OnCall(Call::kOpen, {});
    EXPECT_EQ(Recover(), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kNewText + theirs);
}

TEST_F(UndoVerbTest, ChangesNothingWithoutAListOfTheEntries) {
    const OneDescriptor for_the_lock;
    EXPECT_EQ(RunUndo({}, report), ExitStatus::kFailed);
    EXPECT_EQ(RunRecover({}, report), ExitStatus::kFailed);
}

// The last change is of an unknown kind: an earlier one must not be taken back in its place.
TEST_F(UndoVerbTest, DoesNotPassOverAChangeOfALaterVelkctl) {
    const std::string path = ReadJournal().entries.front().path;
    const std::string id = path.substr(path.rfind('-') + 1);
    WriteFile(std::string(testkit::kJournalFolder) + "/000009-tktk",
              velkctl::EncodeFrame(velkctl::FrameKind::kHeader, R"({"schema":2})"));
    EXPECT_EQ(Undo(), ExitStatus::kFailed);
    EXPECT_EQ(error,
              "velkctl: undo: change tktk cannot be taken back\n"
              "  made by a later velkctl\n"
              "  fix: 'velkctl undo ID' takes an earlier one back\n");
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
    EXPECT_EQ(Undo(id), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
}

}  // namespace
