// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The process that takes a change back if it is not confirmed in time, and the runs that do so in
// its place. tests/device/velkctl/confirm_test.sh tests the processes.
#include "velkctl/guardian/guardian.h"

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/guardian/guardian_process.h"
#include "velkctl/guardian/news.h"
#include "velkctl/guardian/overdue_change.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/waiting_change.h"

namespace {

using testing::HasSubstr;
using testkit::DataOf;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::ChangeSet;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::GuardianFacts;
using velkctl::GuardianProcess;
using velkctl::JournalEntry;
using velkctl::JournalLock;
using velkctl::MillisecondsSinceBoot;
using velkctl::OpenChange;
using velkctl::ReadJournal;
using velkctl::Report;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 192.168.0.2\n";
constexpr int64_t kMinute = 60'000;

ChangeSet Changes() {
    return {{*FindSetting("eth0.address"), DataOf("192.168.0.2")}};
}

class GuardianTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_TRUE(JournalLock(JournalLock::Use::kAlone, 0).is_held()) << "makes the folder";
    }

    // Makes a change up to this state. It has this time left.
    void Change(EntryState state, int64_t left) {
        OpenChange change;
        ASSERT_EQ(change.Begin({.kind = velkctl::EntryKind::kApply,
                                .steps = velkctl::JournalSteps(Changes())},
                               device),
                  0);
        change.RecordWindow({60, MillisecondsSinceBoot() + left});
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
        WriteFile(kInterfaces, kNewText);
        ASSERT_EQ(change.RecordFiles(), 0);
        ASSERT_EQ(change.Advance(state), 0);
        id = change.entry().id;
    }

    static JournalEntry Stored() { return ReadJournal().entries.back().decoded.entry; }

    std::string Settle(Report::Detail detail = Report::Detail::kUsual) {
        report.set_detail(detail);
        testing::internal::CaptureStderr();
        velkctl::SettleLastChange(report);
        return testing::internal::GetCapturedStderr();
    }

    Report report{Report::Form::kText};
    const velkctl::Device device{{}, report};
    std::string id;
};

TEST_F(GuardianTest, HasACommandOfItsOwn) {
    EXPECT_TRUE(velkctl::IsGuardianCommand("velkctl-guardian"));
    EXPECT_FALSE(velkctl::IsGuardianCommand("velkctl"));
    EXPECT_FALSE(velkctl::IsGuardianCommand(nullptr));
    EXPECT_EQ(velkctl::RunGuardian({}), 2);
}

TEST_F(GuardianTest, IsNeededForAChange) {
    GuardianProcess guardian("/bin/false");
    velkctl::JournalRecord record({}, report, {.guard = &guardian, .window_seconds = 60});
    const std::optional<velkctl::BeginFailure> failure = record.Begin(Changes(), {}, device);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->status, ExitStatus::kFailed);
    EXPECT_EQ(failure->problem.message, "apply: the guardian of the change could not be started");
    EXPECT_TRUE(ReadJournal().entries.empty()) << "nothing was begun";
}

TEST_F(GuardianTest, IsNotThereIfItCannotBeRun) {
    GuardianProcess guardian("/nowhere");
    GuardianFacts facts;
    EXPECT_TRUE(guardian.Start("k7f2", facts));
}

// A guardian that only says its number.
class StandIn final : public velkctl::ChangeGuard {
  public:
    std::optional<velkctl::Problem> Start(const std::string& /*id*/,
                                          GuardianFacts& facts) override {
        state = Stored();
        facts.guardian = 12;
        return std::nullopt;
    }
    EntryState state = EntryState::kDone;

  private:
    static EntryState Stored() { return ReadJournal().entries.back().decoded.entry.state; }
};

TEST_F(GuardianTest, IsStartedBeforeTheFirstStep) {
    StandIn guard;
    velkctl::JournalRecord record({}, report,
                                  {.guard = &guard, .window_seconds = 60, .step_seconds = 100});
    ASSERT_FALSE(record.Begin(Changes(), {}, device));
    EXPECT_EQ(guard.state, EntryState::kPrepared);
    EXPECT_EQ(Stored().state, EntryState::kApplying);
    EXPECT_EQ(Stored().guardian.guardian, 12);
    EXPECT_GT(Stored().window.deadline, MillisecondsSinceBoot() + 150'000);
    WriteFile(kInterfaces, kNewText);
    ASSERT_FALSE(record.Finish());
    EXPECT_EQ(Stored().state, EntryState::kWaiting);
    EXPECT_LE(Stored().window.deadline, MillisecondsSinceBoot() + 60'000);
}

TEST_F(GuardianTest, LeavesTheDecisionToACommand) {
    StandIn guard;
    velkctl::JournalRecord record({}, report,
                                  {.guard = &guard, .window_seconds = 60, .is_asked = true});
    ASSERT_FALSE(record.Begin(Changes(), {}, device));
    WriteFile(kInterfaces, kNewText);
    ASSERT_FALSE(record.Finish());
    EXPECT_EQ(Stored().state, EntryState::kConfirmed);
}

TEST_F(GuardianTest, HasNothingToKeepOfAChangeThatHasChangedNothing) {
    StandIn guard;
    velkctl::JournalRecord record({}, report, {.guard = &guard, .window_seconds = 60});
    ASSERT_FALSE(record.Begin(Changes(), {}, device));
    EXPECT_EQ(record.entry().id, Stored().id);
    ASSERT_FALSE(record.Finish());
    EXPECT_TRUE(ReadJournal().entries.empty());
    EXPECT_EQ(record.entry().id, "") << "no change waits";
}

// ---- A run of velkctl ---------------------------------------------------------------------------

TEST_F(GuardianTest, IsReplacedByTheNextRun) {
    Change(EntryState::kWaiting, -1);
    EXPECT_THAT(Settle(), HasSubstr("note: change " + id + " of "));
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(Stored().state, EntryState::kReverted);
    EXPECT_EQ(Stored().cause, "it was not confirmed in time");
    EXPECT_EQ(Settle(), "");
}

TEST_F(GuardianTest, IsReplacedAlsoForARunThatWasKilled) {
    for (const EntryState state : {EntryState::kApplying, EntryState::kReverting}) {
        WriteFile(kInterfaces, kText);
        Change(state, -1);
        EXPECT_NE(Settle(), "");
        EXPECT_EQ(ReadFile(kInterfaces), kText);
        EXPECT_EQ(Stored().state, EntryState::kReverted);
    }
}

TEST_F(GuardianTest, IsNotReplacedBeforeTheDeadline) {
    Change(EntryState::kWaiting, kMinute);
    EXPECT_EQ(Settle(), "");
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(GuardianTest, IsNotReplacedWhileAnotherRunDecides) {
    Change(EntryState::kWaiting, -1);
    const JournalLock lock(JournalLock::Use::kShared, 0);
    EXPECT_EQ(Settle(), "");
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(GuardianTest, IsReportedOnce) {
    Change(EntryState::kWaiting, kMinute);
    {
        OpenChange change(ReadJournal().entries.back());
        change.RecordTakingBack(std::string(velkctl::kCauseDeadline), true);
        ASSERT_EQ(change.Advance(EntryState::kReverted), 0);
    }
    EXPECT_EQ(Settle(Report::Detail::kQuiet), "") << "a later run may say it";
    const std::string news = "velkctl: note: " + NewsOf(Stored()) + "\n";
    EXPECT_THAT(news, HasSubstr(" was not confirmed and has been put back\n"));
    EXPECT_EQ(Settle(), news);
    EXPECT_EQ(Settle(), "");
    EXPECT_EQ(Stored().state, EntryState::kReverted);
}

TEST_F(GuardianTest, NamesTheReasonAndTheExtentOfARevert) {
    JournalEntry entry{.id = "k7f2", .state = EntryState::kStuck};
    entry.cause = velkctl::kCauseInterrupted;
    EXPECT_THAT(NewsOf(entry), HasSubstr(" was interrupted and has been put back in part"));
}

}  // namespace
