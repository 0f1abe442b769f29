// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The change that must be confirmed.
#include "velkctl/journal/waiting_change.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "support/data_of.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/set_record.h"
#include "velkctl/journal/unrecorded_change.h"
#include "velkctl/settings/setting_change.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using testkit::DataOf;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::ConfirmWindow;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::FindUnconfirmed;
using velkctl::Invocation;
using velkctl::JournalEntry;
using velkctl::JournalLock;
using velkctl::MillisecondsSinceBoot;
using velkctl::OpenChange;
using velkctl::ReadJournal;
using velkctl::Report;
using velkctl::SettingChange;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 192.168.0.2\n";
constexpr int64_t kMinute = 60'000;

class WaitingChangeTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_TRUE(JournalLock(JournalLock::Use::kAlone, 0).is_held()) << "makes the folder";
    }

    // Makes a change up to this state. It has this time left.
    void Change(EntryState state, int64_t left = kMinute, std::string_view address = "192.168.0.2",
                const std::string& text = kNewText) {
        const std::vector<SettingChange> changes{{*FindSetting("eth0.address"), DataOf(address)}};
        OpenChange change;
        ASSERT_EQ(change.Begin({.kind = velkctl::EntryKind::kApply, .steps = JournalSteps(changes)},
                               device),
                  0);
        change.RecordWindow({60, MillisecondsSinceBoot() + left});
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
        WriteFile(kInterfaces, text);
        ASSERT_EQ(change.RecordFiles(), 0);
        ASSERT_EQ(change.Advance(state), 0);
        id = change.entry().id;
    }

    static JournalEntry Stored() { return ReadJournal().entries.back().decoded.entry; }

    // Runs a verb and keeps its output.
    ExitStatus Run(ExitStatus (*verb)(const Invocation&, Report&),
                   const std::vector<std::string>& words = {}) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = verb({.words = words}, report);
        (void)fflush(stdout);
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }

    Report report{Report::Form::kText};
    velkctl::Device device{{}, report};
    std::string id;
    std::string output;
    std::string error;
};

TEST_F(WaitingChangeTest, IsFoundUntilItIsConfirmedOrTakenBack) {
    EXPECT_FALSE(FindUnconfirmed());
    for (const EntryState state :
         {EntryState::kApplying, EntryState::kWaiting, EntryState::kReverting}) {
        Change(state);
        EXPECT_TRUE(FindUnconfirmed()) << NameOf(state);
    }
    for (const EntryState state :
         {EntryState::kConfirmed, EntryState::kReverted, EntryState::kStuck}) {
        Change(state);
        EXPECT_FALSE(FindUnconfirmed()) << NameOf(state);
    }
}

TEST_F(WaitingChangeTest, AllowsNoChangeWithoutAnEntry) {
    Change(EntryState::kWaiting);
    testing::internal::CaptureStderr();
    const velkctl::UnrecordedChange change("restart", 0, report);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                StartsWith("velkctl: restart: nothing was changed\n  change " + id + " of "));
    EXPECT_EQ(change.refusal(), ExitStatus::kWaits);
}

// A stuck change keeps the values that others have set since.
TEST_F(WaitingChangeTest, IsALaterChangeOfAStuckOne) {
    Change(EntryState::kStuck);
    const std::string stuck = id;
    EXPECT_TRUE(velkctl::ReadLaterChanges(stuck).empty());
    WriteFile(kInterfaces, kText);
    Change(EntryState::kConfirmed);
    Change(EntryState::kReverted);
    Change(EntryState::kWaiting);
    const std::vector<JournalEntry> later = velkctl::ReadLaterChanges(stuck);
    ASSERT_EQ(later.size(), 2U);
    EXPECT_EQ(later.front().state, EntryState::kConfirmed);
    EXPECT_EQ(later.back().id, id);
    EXPECT_TRUE(velkctl::ReadLaterChanges(id).empty());
}

TEST_F(WaitingChangeTest, KeepsTheValueOfALaterChange) {
    constexpr char kLaterText[] = "iface eth0 inet static\n\taddress 192.168.0.3\n";
    Change(EntryState::kStuck);
    const std::string stuck = id;
    Change(EntryState::kConfirmed, kMinute, "192.168.0.3", kLaterText);
    EXPECT_EQ(Run(velkctl::RunRevert, {stuck}), ExitStatus::kDone);
    EXPECT_EQ(error,
              "velkctl: note: eth0.address: keeps its value, which a later change has set\n");
    EXPECT_EQ(ReadFile(kInterfaces), kLaterText);
}

TEST_F(WaitingChangeTest, IsNotInterruptedWhileItsTimeRuns) {
    Change(EntryState::kWaiting);
    EXPECT_FALSE(ReadJournal().entries.back().is_interrupted());
    EXPECT_FALSE(IsOverdue(Stored()));
    Change(EntryState::kWaiting, -1);
    EXPECT_TRUE(ReadJournal().entries.back().is_interrupted());
    EXPECT_TRUE(IsOverdue(Stored()));
}

TEST_F(WaitingChangeTest, KeepsItsFactsInTheJournal) {
    Change(EntryState::kWaiting);
    {
        OpenChange change(ReadJournal().entries.back());
        change.RecordGuardian({11, 12, "/dev/pts/3", 13, 14});
        change.RecordTakingBack("for a test", true);
        change.RecordFilesBack();
        EXPECT_EQ(change.Sync(), 0);
    }
    const JournalEntry entry = Stored();
    EXPECT_EQ(entry.window.seconds, 60);
    EXPECT_EQ(entry.guardian.keeper, 11);
    EXPECT_EQ(entry.guardian.guardian, 12);
    EXPECT_EQ(entry.guardian.terminal, "/dev/pts/3");
    EXPECT_EQ(entry.guardian.session, 13);
    EXPECT_EQ(entry.guardian.session_start, 14);
    EXPECT_EQ(entry.cause, "for a test");
    EXPECT_TRUE(entry.is_untold);
    EXPECT_EQ(entry.files_back, velkctl::RunningBootId());
    EXPECT_FALSE(HasGuardian(entry));
}

// ---- confirm ------------------------------------------------------------------------------------

TEST_F(WaitingChangeTest, IsConfirmedOnce) {
    Change(EntryState::kWaiting);
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kDone);
    EXPECT_THAT(output, HasSubstr(" is confirmed"));
    EXPECT_EQ(Stored().state, EntryState::kConfirmed);
    EXPECT_EQ(Run(velkctl::RunConfirm, {id}), ExitStatus::kDone);
    EXPECT_THAT(output, HasSubstr(" is already confirmed"));
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(WaitingChangeTest, IsNotConfirmedAfterItsTime) {
    Change(EntryState::kWaiting, -1);
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kFailed);
    EXPECT_THAT(error, HasSubstr(" is being put back\n  it was not confirmed in time"));
    EXPECT_EQ(Stored().state, EntryState::kWaiting) << "unchanged";
}

TEST_F(WaitingChangeTest, IsNotConfirmedAfterItsRevert) {
    for (const EntryState state :
         {EntryState::kReverting, EntryState::kReverted, EntryState::kStuck}) {
        Change(state);
        EXPECT_EQ(Run(velkctl::RunConfirm, {id}), ExitStatus::kFailed);
        EXPECT_THAT(error, HasSubstr(" put back"));
        EXPECT_EQ(Stored().state, state);
    }
    Change(EntryState::kApplying);
    EXPECT_EQ(Run(velkctl::RunConfirm, {id}), ExitStatus::kFailed);
    EXPECT_THAT(error, HasSubstr(" was interrupted"));
}

TEST_F(WaitingChangeTest, MustExistToBeConfirmed) {
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kFailed);
    EXPECT_EQ(error, "velkctl: confirm: no change waits for its confirmation\n");
    EXPECT_EQ(Run(velkctl::RunConfirm, {"nope"}), ExitStatus::kFailed);
    EXPECT_EQ(error,
              "velkctl: confirm: there is no change 'nope'\n"
              "  fix: 'velkctl pending' shows the change that waits\n");
}

TEST_F(WaitingChangeTest, IsDecidedByItsUserOrRootAlone) {
    constexpr uid_t kOther = 12345;
    Change(EntryState::kWaiting);
    const std::string path = ReadJournal().entries.back().path;
    const auto give_to = [&](uid_t user) {
        for (const char* file : {velk::kJournalFolder, velk::kJournalLock, path.c_str()}) {
            ASSERT_EQ(chown(file, user, user), 0) << file;
        }
    };
    give_to(kOther);
    const auto confirm = [&] {
        if (setuid(kOther) == -1) {
            _exit(2);
        }
        _exit(velkctl::RunConfirm({}, report) == ExitStatus::kFailed ? 0 : 1);
    };
    EXPECT_EXIT(confirm(), testing::ExitedWithCode(0), " is one of root");
    give_to(0);
    EXPECT_EQ(Stored().state, EntryState::kWaiting);
}

TEST_F(WaitingChangeTest, IsDecidedUnderTheLock) {
    Change(EntryState::kWaiting);
    const JournalLock lock(JournalLock::Use::kAlone, 0);
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kFailed);
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kLocked);
    EXPECT_EQ(Run(velkctl::RunExtend, {"60"}), ExitStatus::kLocked);
    EXPECT_EQ(Stored().state, EntryState::kWaiting);
}

// ---- extend -------------------------------------------------------------------------------------

TEST_F(WaitingChangeTest, GetsMoreTime) {
    Change(EntryState::kWaiting);
    const int64_t deadline = Stored().window.deadline;
    EXPECT_EQ(Run(velkctl::RunExtend, {"40", id}), ExitStatus::kDone);
    EXPECT_THAT(output, HasSubstr(" waits for its confirmation; 100 s left\n"));
    EXPECT_EQ(Stored().window.deadline, deadline + 40'000);
    EXPECT_EQ(Stored().state, EntryState::kWaiting);
}

TEST_F(WaitingChangeTest, GetsNoTimeOutsideTheLimits) {
    Change(EntryState::kWaiting);
    const int64_t deadline = Stored().window.deadline;
    for (const char* word : {"9", "86401", "-10", "ten", "10.5", ""}) {
        EXPECT_EQ(Run(velkctl::RunExtend, {word}), ExitStatus::kInvalid) << word;
        EXPECT_THAT(error, HasSubstr("give whole seconds, 10 to 86400")) << word;
    }
    EXPECT_EQ(Run(velkctl::RunExtend, {"86400"}), ExitStatus::kInvalid);
    EXPECT_EQ(error, "velkctl: extend: more than 86400 s would be left; give a shorter time\n");
    EXPECT_EQ(Stored().window.deadline, deadline);
}

TEST_F(WaitingChangeTest, GetsNoTimeAfterItsEnd) {
    Change(EntryState::kConfirmed);
    EXPECT_EQ(Run(velkctl::RunExtend, {"60"}), ExitStatus::kFailed);
    EXPECT_THAT(error, HasSubstr(" is already confirmed"));
    Change(EntryState::kWaiting, -1);
    EXPECT_EQ(Run(velkctl::RunExtend, {"60"}), ExitStatus::kFailed);
}

// ---- revert -------------------------------------------------------------------------------------

TEST_F(WaitingChangeTest, IsPutBackOnce) {
    Change(EntryState::kWaiting);
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kDone);
    EXPECT_THAT(output, HasSubstr(" is put back\n"));
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(Stored().state, EntryState::kReverted);
    EXPECT_EQ(Stored().cause, "'velkctl revert' has asked for it");
    EXPECT_FALSE(Stored().is_untold);
    EXPECT_EQ(Run(velkctl::RunRevert, {id}), ExitStatus::kDone);
    EXPECT_THAT(output, HasSubstr(" is already put back\n"));
}

TEST_F(WaitingChangeTest, IsNotPutBackAfterItsConfirmation) {
    Change(EntryState::kConfirmed);
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kFailed);
    EXPECT_THAT(error, HasSubstr("  fix: 'velkctl undo " + id + "' takes it back"));
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(WaitingChangeTest, StaysOpenWhileAnotherProgramChangesSettings) {
    Change(EntryState::kWaiting);
    const int held = VkLibLock();
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kLocked);
    VkLibUnLock(held);
    EXPECT_EQ(Stored().state, EntryState::kReverting);
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kFailed) << "it is too late";
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kDone);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
}

TEST_F(WaitingChangeTest, IsPutBackInPartIfAnotherProgramHasSetItsValue) {
    Change(EntryState::kWaiting);
    WriteFile(kInterfaces, "iface eth0 inet static\n\taddress 192.168.0.3\n");
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kPartlyBack);
    EXPECT_THAT(error, HasSubstr("eth0.address: not put back"));
    EXPECT_EQ(Stored().state, EntryState::kStuck);
}

// ---- Other changes ------------------------------------------------------------------------------

TEST_F(WaitingChangeTest, KeepsOtherChangesAway) {
    Change(EntryState::kWaiting);
    using Verb = ExitStatus (*)(const Invocation&, Report&);
    const std::vector<std::pair<Verb, std::vector<std::string>>> changes{
        {velkctl::RunSet, {"eth0.address", "192.168.0.9"}},
        {velkctl::RunApply, {"eth0.address=192.168.0.9"}},
        {velkctl::RunApply, {"eth0.address=192.168.0.2"}},
        {velkctl::RunUndo, {}},
        {velkctl::RunRestart, {"eth0"}},
        {velkctl::RunCall, {"set", "104", "eth0"}},
    };
    for (const auto& [verb, words] : changes) {
        EXPECT_EQ(Run(verb, words), ExitStatus::kWaits) << error;
        EXPECT_THAT(error, HasSubstr("\n  change " + id + " of root waits for its confirmation"));
        EXPECT_THAT(error, HasSubstr("\n  fix: 'velkctl confirm " + id +
                                     "' keeps it, 'velkctl revert " + id + "' puts it back\n"));
    }
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(WaitingChangeTest, KeepsASetAwayThatHasWaitedForTheLock) {
    Change(EntryState::kWaiting);
    testing::internal::CaptureStderr();
    const velkctl::SetRecord record({{*FindSetting("eth0.address"), DataOf("192.168.0.9")}}, 0,
                                    device, report);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                StartsWith("velkctl: set: nothing was changed\n  change " + id));
    EXPECT_EQ(record.refusal(), ExitStatus::kWaits);
}

TEST_F(WaitingChangeTest, IsNamedByItsState) {
    const auto detail = [&] { return velkctl::FindWaitingProblem("x")->detail; };
    const auto remedy = [&] { return velkctl::FindWaitingProblem("x")->remedy; };
    Change(EntryState::kApplying);
    EXPECT_EQ(detail(), "change " + id + " of root was interrupted");
    EXPECT_EQ(remedy(), "'velkctl recover' takes it back");
    Change(EntryState::kReverting);
    EXPECT_EQ(detail(), "change " + id + " of root is being put back");
    const OpenChange change(ReadJournal().entries.back());
    EXPECT_EQ(remedy(), "try again later");
}

TEST_F(WaitingChangeTest, IsShown) {
    EXPECT_EQ(Run(velkctl::RunPending), ExitStatus::kDone);
    EXPECT_EQ(output, "no change waits for its confirmation\n");
    Change(EntryState::kWaiting);
    EXPECT_EQ(Run(velkctl::RunPending), ExitStatus::kDone);
    EXPECT_THAT(output, StartsWith("change " + id + " of root waits for its confirmation since "));
    EXPECT_THAT(output, HasSubstr("; 60 s left\n  eth0.address  192.168.0.1 -> 192.168.0.2\n"
                                  "'velkctl confirm " +
                                  id + "' keeps it, "));
    EXPECT_THAT(error, HasSubstr("note: no guardian runs for change " + id));
}

TEST(UserName, IsANumberWithoutAName) {
    EXPECT_EQ(velkctl::UserName(0), "root");
    EXPECT_EQ(velkctl::UserName(4'000'000'000U), "user 4000000000");
}

}  // namespace
