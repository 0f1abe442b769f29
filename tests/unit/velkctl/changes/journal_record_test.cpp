// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The state before a change, kept in the journal.
#include "velkctl/changes/journal_record.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/time_limits.h"

namespace {

using testkit::Call;
using testkit::DataOf;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::BeginFailure;
using velkctl::ChangeSet;
using velkctl::Data;
using velkctl::EntryKind;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::JournalEntry;
using velkctl::JournalLock;
using velkctl::JournalRecord;
using velkctl::ReadJournal;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 192.168.0.2\n";

const ChangeSet kChanges{{*FindSetting("eth0.address"), DataOf("192.168.0.2")}};

class JournalRecordTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_TRUE(JournalLock(JournalLock::Use::kAlone, 0).is_held()) << "makes the folder";
    }
    void TearDown() override {
        record.reset();
        testkit::DeviceTest::TearDown();
    }
    // Begins a record, with the errors of that in `error`.
    std::optional<BeginFailure> Begin(const ChangeSet& changes = kChanges) {
        record.reset();
        testing::internal::CaptureStderr();
        record = std::make_unique<JournalRecord>(limits, report);
        std::optional<BeginFailure> failure = record->Begin(changes, {"eth0"}, device);
        error = testing::internal::GetCapturedStderr();
        return failure;
    }
    static JournalEntry Stored() { return ReadJournal().entries.back().decoded.entry; }

    velkctl::TimeLimits limits;
    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
    std::unique_ptr<JournalRecord> record;
    std::string error;
};

TEST_F(JournalRecordTest, KnowsTheFilesBeforeAndAfterTheChange) {
    ASSERT_FALSE(Begin());
    EXPECT_EQ(error, "");
    const JournalEntry entry = Stored();
    EXPECT_EQ(entry.kind, EntryKind::kApply);
    EXPECT_EQ(entry.state, EntryState::kApplying);
    EXPECT_EQ(entry.restarts, std::vector<std::string>{"eth0"});
    EXPECT_EQ(entry.before[0].bytes, kText);
    ASSERT_EQ(entry.after.size(), 1U);
    EXPECT_EQ(entry.after[0].bytes, kNewText);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
}

TEST_F(JournalRecordTest, IsDoneWithTheFilesAsTheyAre) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, kNewText);
    record->StepMade();
    EXPECT_FALSE(record->Flush());
    WriteFile(kInterfaces, "# by hand\n");
    EXPECT_FALSE(record->Finish());
    EXPECT_EQ(Stored().state, EntryState::kDone);
    EXPECT_EQ(Stored().after[0].bytes, "# by hand\n");
}

// A tool could not write the file, and the library reported success.
TEST_F(JournalRecordTest, NoticesAFileThatWasNotWritten) {
    ASSERT_FALSE(Begin());
    record->StepMade();
    const std::optional<velkctl::Problem> problem = record->Flush();
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->message, "/etc/network/interfaces: not written");
    EXPECT_EQ(problem->detail, "the library reported success, but the file is as before");
}

// The device has the value: another step might have switched it.
TEST_F(JournalRecordTest, ExpectsNoChangeOfAValueThatTheDeviceHas) {
    ASSERT_FALSE(Begin({{*FindSetting("eth0.address"), DataOf("192.168.0.1")}}));
    EXPECT_FALSE(record->Flush());
}

// A setting that cannot be read is set again.
TEST_F(JournalRecordTest, LeavesNoEntryIfNothingHasChanged) {
    ASSERT_FALSE(Begin({{*FindSetting("eth0.address"), DataOf("192.168.0.1")}}));
    record->StepMade();
    EXPECT_FALSE(record->Finish());
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(JournalRecordTest, KeepsTheTextThatAnotherProgramWroteBeforeAStepWasRecorded) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, std::string(kNewText) + "# by hand\n");
    record->StepMade();
    EXPECT_EQ(record->TakeBack(device, report), ExitStatus::kFailed);
    EXPECT_EQ(ReadFile(kInterfaces), std::string(kText) + "# by hand\n");
}

// The second step has failed: another program set its value before.
TEST_F(JournalRecordTest, PutsBackTheStepsThatWereMade) {
    WriteFile(kInterfaces, std::string(kText) + "\tgateway 192.168.0.8\n");
    ASSERT_FALSE(Begin({kChanges[0], {*FindSetting("eth0.gateway"), DataOf("192.168.0.9")}}));
    WriteFile(kInterfaces, std::string(kNewText) + "\tgateway 192.168.0.7\n");
    record->StepMade();
    EXPECT_EQ(record->TakeBack(device, report), ExitStatus::kFailed);
    EXPECT_EQ(ReadFile(kInterfaces), std::string(kText) + "\tgateway 192.168.0.7\n");
    record->FinishTakeBack(true);
    EXPECT_EQ(Stored().state, EntryState::kReverted);
}

TEST_F(JournalRecordTest, PutsTheFilesBack) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, kNewText);
    record->StepMade();
    EXPECT_EQ(record->TakeBack(device, report), ExitStatus::kFailed);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(Stored().state, EntryState::kReverting) << "the restarts come before its end";
    record->FinishTakeBack(true);
    EXPECT_EQ(Stored().state, EntryState::kReverted);
}

// A program keeps the lock for longer than a plain set takes.
TEST_F(JournalRecordTest, WaitsForTheLibraryToPutTheFilesBack) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, kNewText);
    record->StepMade();
    const auto start = std::chrono::steady_clock::now();
    int lock = VkLibLock();
    libc().OnCall(Call::kNanosleep, [&](const testkit::Event&) {
        if (lock != -1 && std::chrono::steady_clock::now() - start > std::chrono::seconds(3)) {
            VkLibUnLock(std::exchange(lock, -1));
        }
    });
    EXPECT_EQ(record->TakeBack(device, report), ExitStatus::kFailed);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
}

TEST_F(JournalRecordTest, StaysOpenIfAnInterfaceIsNotUpAgain) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, kNewText);
    record->StepMade();
    EXPECT_EQ(record->TakeBack(device, report), ExitStatus::kFailed);
    record->FinishTakeBack(false);
    EXPECT_EQ(Stored().state, EntryState::kStuck);
}

TEST_F(JournalRecordTest, NamesAValueThatItCannotPutBack) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, kNewText);
    record->StepMade();
    WriteFile(kInterfaces, "iface eth0 inet static\n\taddress 192.168.0.3\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(record->TakeBack(device, report), ExitStatus::kPartlyBack);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "velkctl: eth0.address: not put back\n"
              "  it was set since, to '192.168.0.3'\n"
              "  saved value: '192.168.0.1'; file: /etc/network/interfaces\n"
              "  fix: 'velkctl recover --force' replaces it; 'velkctl recover --keep' keeps it\n");
    record->FinishTakeBack(true);
    EXPECT_EQ(Stored().state, EntryState::kStuck);
}

TEST_F(JournalRecordTest, RunsNoTrialForSettingsOutsideOfFiles) {
    const Data full_100{VELK_LINK_100_FULL};
    ASSERT_FALSE(Begin({{*FindSetting("eth0.link-speed"), full_100}}));
    EXPECT_TRUE(Stored().after.empty());
}

TEST_F(JournalRecordTest, GoesOnIfNoTrialIsPossible) {
    WriteFile(testkit::kResolverFile, std::string(2 << 20, 'x'));
    ASSERT_FALSE(Begin());
    EXPECT_TRUE(
        error.starts_with("velkctl: note: the files after this change are not known before it\n"
                          "  /etc/resolv.dnsmasq.conf: is too large for a private copy\n"))
        << error;
    EXPECT_TRUE(Stored().after.empty());
}

TEST_F(JournalRecordTest, IsRefusedWhileAnotherRunChangesSettings) {
    const JournalLock other(JournalLock::Use::kShared, 0);
    const std::optional<BeginFailure> failure = Begin();
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->status, ExitStatus::kLocked);
    EXPECT_EQ(failure->problem.message, "apply: the change was not begun");
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(JournalRecordTest, IsRefusedWhileTheLibraryIsInUse) {
    const int lock = VkLibLock();
    const std::optional<BeginFailure> failure = Begin();
    VkLibUnLock(lock);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->status, ExitStatus::kLocked);
    EXPECT_EQ(failure->problem.detail.find("another program is changing settings; process " +
                                           std::to_string(getpid()) + " (unit_tests, "),
              0U)
        << failure->problem.detail;
    EXPECT_TRUE(failure->problem.detail.ends_with(" old) holds the lock"));
}

TEST_F(JournalRecordTest, NotesTheHolderOfTheLibrarysLockWhileItWaits) {
    const int lock = VkLibLock();
    limits.wait_seconds = 1;
    const std::optional<BeginFailure> failure = Begin();
    VkLibUnLock(lock);
    ASSERT_TRUE(failure);
    EXPECT_TRUE(
        error.starts_with("velkctl: note: waiting at most 1 s for the lock, held by process " +
                          std::to_string(getpid()) + " (unit_tests, "))
        << error;
}

TEST_F(JournalRecordTest, DoesNotWaitAfterASignal) {
    const int lock = VkLibLock();
    limits.wait_seconds = 30;
    const velkctl::StopSignals signals;
    (void)raise(SIGTERM);
    const auto start = std::chrono::steady_clock::now();
    const std::optional<BeginFailure> failure = Begin();
    int signal = 0;
    (void)sigwait(&signals.signals(), &signal);
    VkLibUnLock(lock);
    EXPECT_TRUE(failure);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(JournalRecordTest, NotesAnEarlierChangeThatWasInterrupted) {
    ASSERT_FALSE(Begin());
    const std::string id = Stored().id;
    ASSERT_FALSE(Begin()) << "the first record has ended without an end of its change";
    EXPECT_EQ(error, "velkctl: note: change " + id +
                         " was interrupted\n  fix: 'velkctl recover' takes it back\n");
}

// The entry, its expected file and its second state are a write each.
TEST_F(JournalRecordTest, IsRefusedIfTheJournalCannotBeWritten) {
    for (const int number : {1, 2, 3}) {
        libc().ForgetFault();
        libc().PlanFault(Call::kWrite, number, testkit::Reach::kThatOne, EIO);
        const std::optional<BeginFailure> failure = Begin();
        libc().ForgetFault();
        ASSERT_TRUE(failure) << number;
        EXPECT_EQ(failure->status, ExitStatus::kFailed);
        EXPECT_EQ(ReadFile(kInterfaces), kText);
        EXPECT_TRUE(ReadJournal().entries.empty());
    }
}

TEST_F(JournalRecordTest, ReportsAJournalThatFailsLater) {
    ASSERT_FALSE(Begin());
    WriteFile(kInterfaces, kNewText);
    libc().Script(Call::kOpen, {testkit::Return(-1), testkit::Fail(EIO)});
    const std::optional<velkctl::Problem> flush = record->Flush();
    ASSERT_TRUE(flush);
    EXPECT_EQ(flush->message, "apply: the files could not be written to disk");
    libc().Script(Call::kWrite, {testkit::Fail(EIO)});
    const std::optional<velkctl::Problem> finish = record->Finish();
    ASSERT_TRUE(finish);
    EXPECT_EQ(finish->message, "apply: the change could not be recorded");
}

}  // namespace
