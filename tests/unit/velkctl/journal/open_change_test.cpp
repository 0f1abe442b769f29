// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The journal entry of a change that is under way.
#include "velkctl/journal/open_change.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/put_back.h"

namespace {

using testkit::DataOf;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::Data;
using velkctl::EntryState;
using velkctl::FindSetting;
using velkctl::JournalEntry;
using velkctl::JournalLock;
using velkctl::OpenChange;
using velkctl::PutBackResult;
using velkctl::ReadJournal;
using velkctl::SettingChange;
using velkctl::StoredEntry;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 192.168.0.2\n";

class OpenChangeTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_TRUE(JournalLock(JournalLock::Use::kAlone, 0).is_held()) << "makes the folder";
    }
    static velkctl::ChangePlan Plan() {
        const std::vector<SettingChange> changes{
            {*FindSetting("eth0.address"), DataOf("192.168.0.2")}};
        return {.steps = JournalSteps(changes)};
    }
    int Begin(OpenChange& change) { return change.Begin(Plan(), device); }
    static JournalEntry Stored() { return ReadJournal().entries.back().decoded.entry; }

    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
};

TEST_F(OpenChangeTest, KeepsFilesAndValuesFromBefore) {
    OpenChange change;
    EXPECT_FALSE(change.is_begun());
    ASSERT_EQ(Begin(change), 0);
    EXPECT_TRUE(change.is_begun());
    EXPECT_TRUE(change.interrupted().empty());
    const JournalEntry entry = Stored();
    EXPECT_EQ(entry.state, EntryState::kPrepared);
    EXPECT_EQ(entry.boot_id, velkctl::RunningBootId());
    EXPECT_EQ(entry.boot_id.size(), 36U);
    EXPECT_GT(entry.boot_time, 0);
    ASSERT_EQ(entry.steps.size(), 1U);
    EXPECT_EQ(entry.steps[0].old_value, DataOf("192.168.0.1"));
    ASSERT_EQ(entry.before.size(), 1U);
    EXPECT_EQ(entry.before[0].path, kInterfaces);
    EXPECT_EQ(entry.before[0].bytes, kText);
}

TEST_F(OpenChangeTest, KeepsTheServersThatALeaseReplaces) {
    velkctl::ChangePlan plan{.steps =
                                 velkctl::JournalSteps({{*FindSetting("eth0.method"), Data{}}})};
    OpenChange without_restart;
    ASSERT_EQ(without_restart.Begin(plan, device), 0);
    EXPECT_EQ(
        std::ranges::count(Stored().before, testkit::kResolverFile, &velkctl::FileImage::path), 0);
    plan.restarts = {"eth0"};
    OpenChange change;
    ASSERT_EQ(change.Begin(plan, device), 0);
    EXPECT_EQ(
        std::ranges::count(Stored().before, testkit::kResolverFile, &velkctl::FileImage::path), 1);
}

TEST_F(OpenChangeTest, KnowsNoOldAddressOfALease) {
    WriteFile(kInterfaces, "iface eth0 inet dhcp\n");
    OpenChange change;
    ASSERT_EQ(Begin(change), 0);
    EXPECT_EQ(Stored().steps[0].old_value, std::nullopt);
}

TEST_F(OpenChangeTest, KnowsNoOldValueThatCannotBeRead) {
    OpenChange change;
    ASSERT_EQ(change.Begin({.steps = {{*FindSetting("eth0.dhcp-notice"), Data{}},
                                      {*FindSetting("eth1.ssid"), Data{}}}},
                           device),
              0);
    EXPECT_EQ(Stored().steps[0].old_value, std::nullopt);
    EXPECT_EQ(Stored().steps[1].old_value, std::nullopt) << "no daemon runs";
}

TEST_F(OpenChangeTest, CanBeRepeatedWhileAnotherProgramChangesSettings) {
    OpenChange change;
    const int held = VkLibLock();
    EXPECT_EQ(Begin(change), EWOULDBLOCK);
    VkLibUnLock(held);
    EXPECT_FALSE(change.is_begun());
    EXPECT_TRUE(ReadJournal().entries.empty());
    EXPECT_EQ(Begin(change), 0);
}

// A program that sets the address while the old values are read is not taken for this change.
TEST_F(OpenChangeTest, ReadsTheFilesAfterTheValues) {
    constexpr char kTheirs[] = "iface eth0 inet static\n\taddress 192.168.0.9\n";
    int opened = 0;
    libc().OnCall(testkit::Call::kOpen, [&](const testkit::Event& event) {
        if (event.text == kInterfaces && ++opened == 2) {
            WriteFile(kInterfaces, kTheirs);
        }
    });
    OpenChange change;
    ASSERT_EQ(Begin(change), 0);
    EXPECT_EQ(Stored().before[0].bytes, kTheirs);
}

TEST_F(OpenChangeTest, RecordsFilesThatHaveChanged) {
    OpenChange change;
    ASSERT_EQ(Begin(change), 0);
    EXPECT_EQ(change.Advance(EntryState::kApplying), 0);
    EXPECT_EQ(change.RecordFiles(), 0);
    EXPECT_TRUE(change.HasChangedNoFile());
    WriteFile(kInterfaces, kNewText);
    EXPECT_EQ(change.RecordFiles(), 0);
    EXPECT_FALSE(change.HasChangedNoFile());
    EXPECT_EQ(change.FlushFiles(), 0);
    EXPECT_EQ(change.Advance(EntryState::kDone), 0);
    EXPECT_EQ(change.entry().state, EntryState::kDone);
    const JournalEntry entry = Stored();
    EXPECT_EQ(entry.state, EntryState::kDone);
    ASSERT_EQ(entry.after.size(), 1U);
    EXPECT_EQ(entry.after[0].bytes, kNewText);
}

TEST_F(OpenChangeTest, RecordsTheStepsThatWereMade) {
    OpenChange change;
    ASSERT_EQ(change.Begin({.steps = {{*FindSetting("eth0.address"), DataOf("192.168.0.2")},
                                      {*FindSetting("eth0.netmask"), DataOf("255.0.0.0")}}},
                           device),
              0);
    change.RecordSteps(2);
    EXPECT_EQ(Stored().steps.size(), 2U);
    change.RecordMade({"eth0.netmask"});
    EXPECT_EQ(change.entry().steps.size(), 1U);
    EXPECT_EQ(Stored().steps.front().setting.name(), "eth0.netmask");
}

TEST_F(OpenChangeTest, LeavesNoEntryIfItIsDiscarded) {
    OpenChange change;
    ASSERT_EQ(Begin(change), 0);
    change.Discard();
    EXPECT_FALSE(change.is_begun());
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(OpenChangeTest, FailsIfTheJournalCannotBeWritten) {
    OpenChange change;
    libc().Script(testkit::Call::kWrite, {testkit::Fail(ENOSPC)});
    EXPECT_EQ(Begin(change), ENOSPC);
    EXPECT_FALSE(change.is_begun());
    EXPECT_TRUE(ReadJournal().entries.empty());
    ASSERT_EQ(Begin(change), 0);
    libc().Script(testkit::Call::kWrite, {testkit::Fail(EIO)});
    EXPECT_EQ(change.Advance(EntryState::kApplying), EIO);
    EXPECT_EQ(change.entry().state, EntryState::kPrepared);
}

TEST_F(OpenChangeTest, FindsEarlierChangesThatWereInterrupted) {
    std::string id;
    {
        OpenChange change;
        ASSERT_EQ(Begin(change), 0);
        id = change.entry().id;
    }
    OpenChange next;
    ASSERT_EQ(Begin(next), 0);
    EXPECT_EQ(next.interrupted(), id);
}

class TakeBackTest : public OpenChangeTest {
  protected:
    // Begins a change and leaves it, as if killed.
    void Interrupt(EntryState state, const std::string& text) {
        OpenChange change;
        ASSERT_EQ(Begin(change), 0);
        ASSERT_EQ(change.Advance(state), 0);
        WriteFile(kInterfaces, text);
    }
    PutBackResult TakeBackLast(velkctl::PutBackOptions options = {}) {
        OpenChange change(ReadJournal().entries.back());
        testing::internal::CaptureStderr();
        PutBackResult result = PutBackOpen(change, options, device, report);
        CloseTakenBack(change, result, report);
        error = testing::internal::GetCapturedStderr();
        return result;
    }

    std::string error;
};

TEST_F(TakeBackTest, HasNothingToDoForAPreparedChange) {
    Interrupt(EntryState::kPrepared, kNewText);
    EXPECT_TRUE(TakeBackLast().is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), kNewText) << "another program has set it";
    EXPECT_EQ(Stored().state, EntryState::kReverted);
}

// The state after "prepared" was on disk, and was damaged since.
TEST_F(TakeBackTest, PutsACutFileBackIfAFrameIsLost) {
    Interrupt(EntryState::kPrepared, "iface eth0");
    const std::string path = ReadJournal().entries.back().path;
    WriteFile(path, ReadFile(path) + velkctl::EncodeState(EntryState::kApplying).substr(1));
    EXPECT_TRUE(TakeBackLast().is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(Stored().state, EntryState::kReverted);
}

// Otherwise a later run would take back settings of others.
TEST_F(TakeBackTest, LeavesNoEntryIfItsEndCannotBeWritten) {
    Interrupt(EntryState::kApplying, kText);
    libc().ScriptAlways(testkit::Call::kWrite, testkit::Fail(ENOSPC));
    EXPECT_TRUE(TakeBackLast().is_whole());
    EXPECT_TRUE(ReadJournal().entries.empty());
    EXPECT_EQ(error, "");
}

TEST_F(TakeBackTest, NotesAnEntryThatStaysOpen) {
    Interrupt(EntryState::kApplying, kText);
    const std::string id = ReadJournal().entries.back().decoded.entry.id;
    libc().ScriptAlways(testkit::Call::kWrite, testkit::Fail(ENOSPC));
    libc().ScriptAlways(testkit::Call::kUnlink, testkit::Fail(EROFS));
    EXPECT_TRUE(TakeBackLast().is_whole());
    EXPECT_EQ(error, "velkctl: note: the journal may call change " + id +
                         " interrupted, although it is put back\n"
                         "  /var/libvelk/journal: No space left on device\n"
                         "  fix: free space on the disk of /var/libvelk\n");
}

TEST_F(TakeBackTest, PutsACutFileBack) {
    Interrupt(EntryState::kApplying, "iface eth0");
    EXPECT_TRUE(TakeBackLast().is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(Stored().state, EntryState::kReverted);
    EXPECT_EQ(error, "");
}

TEST_F(TakeBackTest, PutsAValueBackIfTheNewTextIsUnknown) {
    Interrupt(EntryState::kApplying, kNewText);
    EXPECT_TRUE(TakeBackLast().is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), kText);
}

TEST_F(TakeBackTest, IsStuckWhereAnItemIsLeft) {
    Interrupt(EntryState::kReverting, "iface eth0 inet static\n\taddress 192.168.0.3\n");
    EXPECT_FALSE(TakeBackLast().is_whole());
    EXPECT_EQ(Stored().state, EntryState::kStuck);
    EXPECT_EQ(error,
              "velkctl: eth0.address: not put back\n"
              "  it was set since, to '192.168.0.3'\n"
              "  saved value: '192.168.0.1'; file: /etc/network/interfaces\n"
              "  fix: 'velkctl recover --force' replaces it; 'velkctl recover --keep' keeps it\n");
    EXPECT_TRUE(TakeBackLast({.force = true}).is_whole());
    EXPECT_EQ(Stored().state, EntryState::kReverted);
}

// The file is put back by the first try. Somebody then sets the new value of the change again.
TEST_F(TakeBackTest, TouchesNothingAgainThatWasPutBack) {
    {
        OpenChange change;
        ASSERT_EQ(change.Begin({.steps = {{*FindSetting("eth0.address"), DataOf("192.168.0.2")},
                                          {*FindSetting("eth1.ssid"), DataOf("x")}}},
                               device),
                  0);
        WriteFile(kInterfaces, kNewText);
        ASSERT_EQ(change.RecordFiles(), 0);
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
    }
    EXPECT_EQ(TakeBackLast().left.size(), 1U) << "no daemon runs";
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    EXPECT_EQ(Stored().put_back, (std::vector<std::string>{kInterfaces, "eth0.address"}));
    WriteFile(kInterfaces, kNewText);
    EXPECT_FALSE(TakeBackLast().has_changed);
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(TakeBackTest, TouchesNothingAgainThatWasPutBackAtBoot) {
    {
        OpenChange change;
        ASSERT_EQ(change.Begin({.steps = {{*FindSetting("eth0.address"), DataOf("192.168.0.2")},
                                          {*FindSetting("eth1.ssid"), DataOf("x")}}},
                               device),
                  0);
        WriteFile(kInterfaces, kNewText);
        ASSERT_EQ(change.RecordFiles(), 0);
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
    }
    EXPECT_TRUE(TakeBackLast({.at_boot = true}).waits_for_daemon);
    EXPECT_EQ(ReadFile(kInterfaces), kText);
    WriteFile(kInterfaces, kNewText);
    (void)TakeBackLast();
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(TakeBackTest, NotesTheValueOfALaterChange) {
    Interrupt(EntryState::kApplying, kNewText);
    const JournalEntry later = Stored();
    EXPECT_TRUE(TakeBackLast({.later = {&later}}).is_whole());
    EXPECT_EQ(error,
              "velkctl: note: eth0.address: keeps its value, which a later change has set\n");
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
}

TEST_F(TakeBackTest, SaysThatAnotherProgramKeepsTheLock) {
    Interrupt(EntryState::kApplying, kNewText);
    const int lock = VkLibLock();
    EXPECT_TRUE(TakeBackLast({.lock_seconds = 0}).is_locked);
    VkLibUnLock(lock);
    EXPECT_TRUE(error.starts_with("velkctl: change " + Stored().id +
                                  ": not put back\n  another program is changing settings\n"
                                  "  process "))
        << error;
    EXPECT_TRUE(
        error.ends_with(" holds the lock\n"
                        "  fix: 'velkctl recover' takes it back after that\n"))
        << error;
    EXPECT_EQ(ReadFile(kInterfaces), kNewText);
    EXPECT_EQ(Stored().state, EntryState::kReverting);
}

TEST_F(TakeBackTest, StaysOpenForTheDaemon) {
    {
        OpenChange change;
        ASSERT_EQ(change.Begin({.steps = {{*FindSetting("eth1.ssid"), DataOf("x")}}}, device), 0);
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
    }
    EXPECT_TRUE(TakeBackLast({.at_boot = true}).waits_for_daemon);
    EXPECT_EQ(Stored().state, EntryState::kReverting);
}

TEST_F(OpenChangeTest, KeepsTheLogThatASetOfNtpRemoves) {
    WriteFile(testkit::kNtpLog, "adjust\n");
    OpenChange change;
    const std::vector<SettingChange> changes{{*FindSetting("ntp"), Data{0}}};
    ASSERT_EQ(change.Begin({.steps = JournalSteps(changes)}, device), 0);
    EXPECT_EQ(Stored().before.back().bytes, "adjust\n");
    ASSERT_EQ(unlink(testkit::kNtpLog), 0);
    ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
    EXPECT_TRUE(PutBackOpen(change, {}, device, report).is_whole());
    EXPECT_EQ(ReadFile(testkit::kNtpLog), "adjust\n");
}

}  // namespace
