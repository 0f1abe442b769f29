// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The folder of journal entries: its lock, its files and its limits.
#include "velkctl/journal/journal_folder.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/mounted.h"
#include "support/paths.h"

namespace {

using testkit::Exists;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::EntryFile;
using velkctl::EntryHealth;
using velkctl::EntryState;
using velkctl::JournalEntry;
using velkctl::JournalListing;
using velkctl::JournalLock;
using velkctl::PruneJournal;
using velkctl::ReadJournal;
using velkctl::RemoveTornEntries;
using velkctl::StoredEntry;

constexpr auto& kFolder = testkit::kJournalFolder;

class JournalFolderTest : public testkit::DeviceTest {
  protected:
    static std::string MakeEntry(EntryState state, size_t size = 0) {
        JournalEntry entry{.state = state};
        entry.before = {{.path = "/etc/network/interfaces", .exists = true}};
        entry.before.front().bytes.assign(size, 'x');
        const EntryFile file(entry);
        EXPECT_EQ(file.error(), 0);
        return entry.id;
    }
    static std::vector<std::string> Ids() {
        std::vector<std::string> ids;
        for (const StoredEntry& stored : ReadJournal().entries) {
            ids.push_back(stored.decoded.entry.id);
        }
        return ids;
    }
    void SetUp() override { ASSERT_TRUE(JournalLock(JournalLock::Use::kShared, 0).is_held()); }
};

TEST_F(JournalFolderTest, IsForItsOwnerAlone) {
    std::filesystem::remove_all(kFolder);
    for (const mode_t mask : {0U, 0777U}) {
        const mode_t before = umask(mask);
        EXPECT_TRUE(JournalLock(JournalLock::Use::kShared, 0).is_held());
        (void)MakeEntry(EntryState::kDone);
        (void)umask(before);
        EXPECT_EQ(testkit::IdentityOf(kFolder).mode & 07777U, 0700U);
        EXPECT_EQ(testkit::IdentityOf(ReadJournal().entries.front().path).mode & 07777U, 0600U);
        std::filesystem::remove_all(kFolder);
    }
}

TEST_F(JournalFolderTest, IsNotTrustedIfOthersMayWriteThere) {
    for (const mode_t mode : {0720U, 0702U}) {
        ASSERT_EQ(chmod(kFolder, mode), 0);
        EXPECT_EQ(JournalLock(JournalLock::Use::kShared, 0).error(), EPERM);
        EXPECT_EQ(ReadJournal().error, EPERM);
    }
    ASSERT_EQ(chmod(kFolder, 0755), 0);
    EXPECT_TRUE(JournalLock(JournalLock::Use::kShared, 0).is_held());
}

TEST_F(JournalFolderTest, IsNotFollowedToAnotherFolder) {
    std::filesystem::remove_all(kFolder);
    ASSERT_EQ(symlink("/var/tmp", kFolder), 0);
    EXPECT_EQ(JournalLock(JournalLock::Use::kShared, 0).error(), ENOTDIR);
    EXPECT_EQ(ReadJournal().error, ENOTDIR);
    ASSERT_EQ(unlink(kFolder), 0);
}

TEST_F(JournalFolderTest, DoesNotWaitForAFifo) {
    ASSERT_EQ(mkfifo((std::string(kFolder) + "/000001-fifo").c_str(), 0600), 0);
    EXPECT_EQ(ReadJournal().entries.front().decoded.health, velkctl::EntryHealth::kTorn);
}

TEST_F(JournalFolderTest, ReportsALockThatCannotBeUsed) {
    libc().Script(testkit::Call::kFlock, {testkit::Fail(ENOLCK)});
    EXPECT_EQ(JournalLock(JournalLock::Use::kAlone, 60).error(), ENOLCK);
}

TEST_F(JournalFolderTest, IsSharedByPlainSets) {
    const JournalLock one(JournalLock::Use::kShared, 0);
    const JournalLock other(JournalLock::Use::kShared, 0);
    EXPECT_TRUE(one.is_held());
    EXPECT_TRUE(other.is_held());
    EXPECT_EQ(JournalLock(JournalLock::Use::kAlone, 0).error(), EWOULDBLOCK);
}

TEST_F(JournalFolderTest, IsHeldAloneByOtherChanges) {
    const JournalLock one(JournalLock::Use::kAlone, 0);
    EXPECT_TRUE(one.is_held());
    EXPECT_EQ(JournalLock(JournalLock::Use::kShared, 0).error(), EWOULDBLOCK);
    EXPECT_EQ(JournalLock(JournalLock::Use::kAlone, 0).error(), EWOULDBLOCK);
}

TEST_F(JournalFolderTest, IsAwaited) {
    std::optional<JournalLock> one(std::in_place, JournalLock::Use::kAlone, 0);
    EXPECT_EQ(JournalLock(JournalLock::Use::kAlone, 1).error(), EWOULDBLOCK);
    libc().OnCall(testkit::Call::kNanosleep, [&](const testkit::Event&) { one.reset(); });
    EXPECT_TRUE(JournalLock(JournalLock::Use::kAlone, 60).is_held());
}

TEST_F(JournalFolderTest, CannotBeLockedIfItCannotBeMade) {
    std::filesystem::remove_all(kFolder);
    WriteFile(kFolder, "");
    EXPECT_EQ(JournalLock(JournalLock::Use::kShared, 0).error(), ENOTDIR);
    EXPECT_EQ(ReadJournal().error, ENOTDIR);
    std::filesystem::remove_all(kFolder);
    EXPECT_EQ(ReadJournal().error, 0) << "no journal, no entries";
}

TEST_F(JournalFolderTest, ListsTheOldestEntryFirst) {
    const std::string one = MakeEntry(EntryState::kDone);
    const std::string two = MakeEntry(EntryState::kApplying);
    EXPECT_EQ(Ids(), (std::vector{one, two}));
    EXPECT_NE(one, two);
    EXPECT_EQ(one.size(), 4U);
    WriteFile(std::string(kFolder) + "/readme", "");
    WriteFile(std::string(kFolder) + "/000009-toolong", "");
    EXPECT_EQ(Ids(), (std::vector{one, two}));
}

TEST_F(JournalFolderTest, KnowsAnEntryThatIsInUse) {
    JournalEntry entry{.state = EntryState::kApplying};
    {
        const EntryFile file(entry);
        EXPECT_TRUE(ReadJournal().entries.front().is_in_use);
        EXPECT_FALSE(ReadJournal().entries.front().is_interrupted());
    }
    EXPECT_FALSE(ReadJournal().entries.front().is_in_use);
    EXPECT_TRUE(ReadJournal().entries.front().is_interrupted());
}

TEST_F(JournalFolderTest, ContinuesAnEntryInFrontOfATornTail) {
    (void)MakeEntry(EntryState::kApplying);
    const StoredEntry whole = ReadJournal().entries.front();
    WriteFile(whole.path, ReadFile(whole.path) + "torn");
    {
        const StoredEntry stored = ReadJournal().entries.front();
        EntryFile file(stored.path, stored.decoded.valid_length);
        file.Append(EncodeState(EntryState::kReverted));
        file.Sync();
        EXPECT_EQ(file.error(), 0);
    }
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kReverted);
}

TEST_F(JournalFolderTest, TakesTheNextNumberIfAnotherSetHasTakenIt) {
    libc().Script(testkit::Call::kOpen, {testkit::Fail(EEXIST)});
    (void)MakeEntry(EntryState::kDone);
    EXPECT_TRUE(ReadJournal().entries.front().path.starts_with("/var/libvelk/journal/000002-"));
}

TEST_F(JournalFolderTest, ReportsAnEntryThatCannotBeContinued) {
    EntryFile file(std::string(kFolder) + "/000001-none", 0);
    EXPECT_EQ(file.error(), ENOENT);
    file.Append("x");
    file.Sync();
    EXPECT_EQ(file.error(), ENOENT);
    EXPECT_FALSE(file.Remove());
}

// Otherwise the entry of a change that was not made may be there again after a power cut.
TEST_F(JournalFolderTest, FlushesTheRemovalOfAnEntry) {
    JournalEntry entry;
    EntryFile file(entry);
    const size_t opened = libc().Events(testkit::Call::kOpen).size();
    file.Remove();
    ASSERT_EQ(libc().Events(testkit::Call::kOpen).size(), opened + 1);
    EXPECT_EQ(libc().Events(testkit::Call::kOpen).back().text, kFolder);
}

TEST_F(JournalFolderTest, LeavesNoEntryOnAFullDisk) {
    const testkit::Emptied full(kFolder, "size=4k,mode=700");
    JournalEntry entry;
    entry.before = {{.path = "/etc/network/interfaces", .exists = true}};
    entry.before.front().bytes.assign(64 * 1024, 'x');
    EXPECT_EQ(EntryFile(entry).error(), ENOSPC);
    EXPECT_TRUE(ReadJournal().entries.empty());
}

TEST_F(JournalFolderTest, KeepsSixteenEntries) {
    std::vector<std::string> ids;
    for (int i = 0; i < 20; ++i) {
        PruneJournal(0);
        ids.push_back(MakeEntry(EntryState::kDone));
    }
    EXPECT_EQ(Ids(), std::vector(ids.begin() + 4, ids.end()));
}

TEST_F(JournalFolderTest, KeepsSixteenEntriesBesideOpenOnes) {
    for (size_t i = 0; i < velkctl::kMostEntries; ++i) {
        (void)MakeEntry(EntryState::kStuck);
    }
    const std::string one = MakeEntry(EntryState::kDone);
    const std::string other = MakeEntry(EntryState::kDone);
    PruneJournal(0);
    ASSERT_EQ(Ids().size(), velkctl::kMostEntries + 2);
    EXPECT_EQ(Ids()[velkctl::kMostEntries], one);
    EXPECT_EQ(Ids().back(), other);
}

TEST_F(JournalFolderTest, KeepsNotMoreThanItsSize) {
    (void)MakeEntry(EntryState::kDone, 100 * 1024);
    const std::string open = MakeEntry(EntryState::kApplying, 100 * 1024);
    const std::string last = MakeEntry(EntryState::kDone, 100 * 1024);
    PruneJournal(10 * 1024);
    EXPECT_EQ(Ids().size(), 3U) << "the open entry does not count";
    PruneJournal(100 * 1024);
    EXPECT_EQ(Ids(), (std::vector{open, last}));
    PruneJournal(300 * 1024);
    EXPECT_EQ(Ids(), std::vector{open}) << "an open entry always stays";
}

// Otherwise a change that is put back on a full disk would count as done.
TEST_F(JournalFolderTest, HasNoStateThatMayNotBeOnDisk) {
    JournalEntry entry;
    EntryFile file(entry);
    file.Append(velkctl::EncodeState(EntryState::kApplying));
    file.Append(velkctl::EncodeState(EntryState::kDone));
    const std::string aside = std::string(kFolder) + ".aside";
    std::filesystem::rename(kFolder, aside);
    file.Sync();
    std::filesystem::rename(aside, kFolder);
    EXPECT_EQ(file.error(), ENOENT);
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kApplying);
}

TEST_F(JournalFolderTest, RemovesTornEntries) {
    const std::string whole = MakeEntry(EntryState::kDone);
    WriteFile(std::string(kFolder) + "/000007-torn", "torn");
    RemoveTornEntries(ReadJournal());
    EXPECT_EQ(Ids(), std::vector{whole});
}

TEST_F(JournalFolderTest, GivesTheSameNumberToNoTwoEntries) {
    (void)MakeEntry(EntryState::kDone);
    for (int i = 0; i < 200; ++i) {
        const std::string id = MakeEntry(EntryState::kDone);
        const JournalListing listing = ReadJournal();
        ASSERT_EQ(listing.entries.size(), 2U);
        EXPECT_EQ(listing.entries.back().decoded.entry.id, id);
        (void)unlink(listing.entries.front().path.c_str());
        (void)MakeEntry(EntryState::kDone);
        (void)unlink(listing.entries.back().path.c_str());
    }
}

}  // namespace
