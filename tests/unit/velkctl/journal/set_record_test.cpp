// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The journal entry of a plain set.
#include "velkctl/journal/set_record.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/mounted.h"
#include "support/paths.h"

namespace {

using testkit::DataOf;
using testkit::WriteFile;
using velkctl::Answer;
using velkctl::Data;
using velkctl::EntryState;
using velkctl::FindSetting;
using velkctl::JournalEntry;
using velkctl::JournalLock;
using velkctl::ReadJournal;
using velkctl::SetRecord;
using velkctl::Setting;
using velkctl::SettingChange;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr auto& kFolder = testkit::kJournalFolder;

class SetRecordTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, "iface eth0 inet static\n\taddress 192.168.0.1\n");
    }
    static SettingChange Address(std::string_view address) {
        return {*FindSetting("eth0.address"), DataOf(address)};
    }
    // Makes the changes, as the set verb does, and returns the errors.
    std::string Make(const std::vector<SettingChange>& changes) {
        testing::internal::CaptureStderr();
        SetRecord record(changes, 0, device, report);
        if (!record.is_refused()) {
            for (const SettingChange& change : changes) {
                (void)device.Set(change.setting, change.value);
            }
            record.Finish();
        }
        return testing::internal::GetCapturedStderr();
    }
    static std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const velkctl::StoredEntry& stored : ReadJournal().entries) {
            for (const velkctl::Step& step : stored.decoded.entry.steps) {
                names.push_back(step.setting.name());
            }
        }
        return names;
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    velkctl::Device device{{}, report};
};

TEST_F(SetRecordTest, IsClosedAfterTheSet) {
    EXPECT_EQ(Make({Address("192.168.0.2")}), "");
    const JournalEntry entry = ReadJournal().entries.front().decoded.entry;
    EXPECT_EQ(entry.state, EntryState::kDone);
    EXPECT_EQ(entry.before[0].bytes, "iface eth0 inet static\n\taddress 192.168.0.1\n");
    EXPECT_EQ(entry.after[0].bytes, "iface eth0 inet static\n\taddress 192.168.0.2\n");
}

// Ctrl-C ends velkctl while the last change is read back.
TEST_F(SetRecordTest, IsClosedBeforeTheLastChangeIsReadBack) {
    SetRecord record({Address("192.168.0.2"), {*FindSetting("ntp"), Data{1}}}, 0, device, report);
    ASSERT_TRUE(device.Set(*FindSetting("eth0.address"), DataOf("192.168.0.2")).ok());
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kApplying);
    EXPECT_FALSE(device.Set(*FindSetting("ntp"), Data{1}).ok()) << "there is no crontab";
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kDone);
    EXPECT_EQ(Names(), std::vector<std::string>{"eth0.address"});
}

TEST_F(SetRecordTest, IsOnDiskBeforeTheSet) {
    std::vector<EntryState> states;
    libc().OnCall(testkit::Call::kSystem, [&](const testkit::Event&) {
        states.push_back(ReadJournal().entries.front().decoded.entry.state);
    });
    SetRecord record({Address("192.168.0.2")}, 0, device, report);
    (void)record.BeforeAttempt();
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kApplying);
    record.Finish();
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(SetRecordTest, IsRemovedIfNothingHasChanged) {
    EXPECT_EQ(Make({Address("192.168.0.1")}), "");
    EXPECT_TRUE(ReadJournal().entries.empty());
    EXPECT_EQ(Make({{*FindSetting("eth1.ssid"), DataOf("x")}}), "") << "no daemon runs";
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(SetRecordTest, HasTheStepsThatHaveChangedSomething) {
    EXPECT_EQ(Make({Address("192.168.0.2"), {*FindSetting("ntp-server"), DataOf("1.1.1.1")}}), "");
    EXPECT_EQ(Names(), std::vector<std::string>{"eth0.address"});
}

TEST_F(SetRecordTest, KeepsAStepThatTimedOut) {
    SetRecord record({{*FindSetting("eth0.link-speed"), Data{5}}}, 0, device, report);
    (void)record.BeforeAttempt();
    record.AfterAttempt({.result = LIB_VELK_FAILURE, .timed_out = true});
    record.Finish();
    EXPECT_EQ(Names(), std::vector<std::string>{"eth0.link-speed"});
}

TEST_F(SetRecordTest, BeginsAfterTheLockIsFree) {
    SetRecord record({Address("192.168.0.2")}, 0, device, report);
    const int lock = VkLibLock();
    EXPECT_FALSE(record.BeforeAttempt());
    VkLibUnLock(lock);
    EXPECT_TRUE(ReadJournal().entries.empty());
    record.AfterAttempt({LIB_VELK_LOCKED});
    (void)record.BeforeAttempt();
    EXPECT_EQ(ReadJournal().entries.size(), 1U);
    record.Finish();
}

// Another program takes the lock between the entry and the set.
TEST_F(SetRecordTest, ReadsTheFilesAnewAfterARefusedAttempt) {
    SetRecord record({Address("192.168.0.3")}, 0, device, report);
    ASSERT_TRUE(record.BeforeAttempt());
    record.AfterAttempt({LIB_VELK_LOCKED});
    EXPECT_TRUE(ReadJournal().entries.empty()) << "Ctrl-C may end the waiting";
    const std::string theirs = "iface eth0 inet static\n\taddress 192.168.0.2\n";
    WriteFile(kInterfaces, theirs);
    ASSERT_TRUE(record.BeforeAttempt());
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.before[0].bytes, theirs);
    record.Finish();
}

TEST_F(SetRecordTest, KeepsTheEntryIfALaterChangeIsRefused) {
    SetRecord record({Address("192.168.0.2"), {*FindSetting("ntp"), Data{1}}}, 0, device, report);
    ASSERT_TRUE(device.Set(*FindSetting("eth0.address"), DataOf("192.168.0.2")).ok());
    record.AfterAttempt({LIB_VELK_LOCKED});
    record.Finish();
    EXPECT_EQ(Names(), std::vector<std::string>{"eth0.address"});
}

TEST_F(SetRecordTest, WatchesTheDeviceNoLongerThanItLives) {
    { const SetRecord record({Address("192.168.0.2")}, 0, device, report); }
    EXPECT_TRUE(device.Set(*FindSetting("eth0.address"), DataOf("192.168.0.2")).ok());
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(SetRecordTest, RefusesTheSetOfAnotherRunThatKeepsAnEntry) {
    const SetRecord one({Address("192.168.0.2")}, 0, device, report);
    velkctl::Device second({}, report);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(SetRecord({Address("192.168.0.3")}, 0, second, report).is_refused());
    (void)testing::internal::GetCapturedStderr();
}

TEST_F(SetRecordTest, NotesAnInterruptedChangeOnce) {
    {
        SetRecord record({Address("192.168.0.2")}, 0, device, report);
        (void)record.BeforeAttempt();
    }
    SetRecord record({Address("192.168.0.3")}, 0, device, report);
    testing::internal::CaptureStderr();
    (void)record.BeforeAttempt();
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    record.AfterAttempt({LIB_VELK_LOCKED});
    testing::internal::CaptureStderr();
    (void)record.BeforeAttempt();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    record.Finish();
}

TEST_F(SetRecordTest, LeavesALockThatCannotBeUsedToTheLibrary) {
    ASSERT_EQ(mkdir(testkit::kLockFile, 0700), 0);
    SetRecord record({Address("192.168.0.2")}, 0, device, report);
    EXPECT_TRUE(record.BeforeAttempt());
    record.AfterAttempt({LIB_VELK_FAILURE});
    record.Finish();
    EXPECT_TRUE(ReadJournal().entries.empty());
    ASSERT_EQ(rmdir(testkit::kLockFile), 0);
}

TEST_F(SetRecordTest, RefusesTheSetOfAnotherRun) {
    const JournalLock other(JournalLock::Use::kAlone, 0);
    const std::string holder = "  process " + std::to_string(getpid()) + " (";
    const std::string error = Make({Address("192.168.0.2")});
    EXPECT_TRUE(
        error.starts_with("velkctl: set: nothing was changed\n"
                          "  another program is changing settings\n" +
                          holder))
        << error;
    EXPECT_TRUE(
        error.ends_with(" holds the lock\n"
                        "  fix: try again, or let --wait=SECONDS try again\n"))
        << error;
}

TEST_F(SetRecordTest, NotesAJournalThatCannotBeMade) {
    std::filesystem::remove_all(kFolder);
    WriteFile(kFolder, "");
    EXPECT_EQ(Make({Address("192.168.0.2")}),
              "velkctl: note: set: undo cannot take this set back\n"
              "  /var/libvelk/journal: Not a directory\n"
              "  fix: make /var/libvelk/journal a folder that can be written, or give "
              "--no-journal\n");
    EXPECT_EQ(testkit::ReadFile(kInterfaces), "iface eth0 inet static\n\taddress 192.168.0.2\n");
    std::filesystem::remove_all(kFolder);
}

TEST_F(SetRecordTest, NotesAJournalThatCannotBeWritten) {
    for (const auto& [error, fix] : {std::pair(EACCES, "run it as root, or give --no-journal"),
                                     std::pair(ENOSPC,
                                               "free space on the disk of /var/libvelk, "
                                               "or give --no-journal")}) {
        SetRecord record({Address("192.168.0.2")}, 0, device, report);
        libc().Script(testkit::Call::kWrite, {testkit::Fail(error)});
        testing::internal::CaptureStderr();
        (void)record.BeforeAttempt();
        EXPECT_NE(testing::internal::GetCapturedStderr().find(fix), std::string::npos);
        record.Finish();
        EXPECT_TRUE(ReadJournal().entries.empty());
    }
}

TEST_F(SetRecordTest, NotesAnEntryThatCannotBeClosed) {
    SetRecord record({Address("192.168.0.2")}, 0, device, report);
    (void)record.BeforeAttempt();
    WriteFile(kInterfaces, "iface eth0 inet static\n\taddress 192.168.0.2\n");
    libc().Script(testkit::Call::kWrite, {testkit::Fail(EIO)});
    testing::internal::CaptureStderr();
    record.AfterAttempt({LIB_VELK_SUCCESS});
    record.Finish();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "velkctl: note: set: undo cannot take this set back\n"
              "  /var/libvelk/journal: Input/output error\n"
              "  fix: make /var/libvelk/journal a folder that can be written, or give "
              "--no-journal\n");
    EXPECT_TRUE(ReadJournal().entries.empty()) << "recover would take the set back";
}

TEST_F(SetRecordTest, FindsAFullDiskBeforeTheSet) {
    const testkit::Emptied full(kFolder, "size=4k,mode=700");
    WriteFile(kInterfaces,
              "iface eth0 inet static\n\taddress 192.168.0.1\n" + std::string(2500, '#') + "\n");
    SetRecord record({Address("192.168.0.2")}, 0, device, report);
    testing::internal::CaptureStderr();
    (void)record.BeforeAttempt();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("No space left on device"),
              std::string::npos);
    EXPECT_TRUE(ReadJournal().entries.empty());
}

// A set of the same value writes its file again. Until that is on disk, a power cut can empty it.
TEST_F(SetRecordTest, KeepsTheEntryOfAFileThatCannotBeFlushed) {
    SetRecord record({Address("192.168.0.1")}, 0, device, report);
    (void)record.BeforeAttempt();
    libc().PlanFault(testkit::Call::kOpen, 2, testkit::Reach::kThatOne, EIO);  // the first reads it
    testing::internal::CaptureStderr();
    record.AfterAttempt({LIB_VELK_SUCCESS});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "velkctl: note: set: the journal may call this set interrupted\n"
              "  /var/libvelk/journal: Input/output error\n"
              "  fix: make /var/libvelk/journal a folder that can be written\n");
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kApplying);
}

TEST_F(SetRecordTest, NotesEarlierChangesThatWereInterrupted) {
    {
        SetRecord record({Address("192.168.0.2")}, 0, device, report);
        (void)record.BeforeAttempt();
    }
    const std::string id = ReadJournal().entries.front().decoded.entry.id;
    EXPECT_EQ(Make({Address("192.168.0.3")}),
              "velkctl: note: change " + id +
                  " was interrupted\n  fix: 'velkctl recover' takes it back\n");
}

}  // namespace
