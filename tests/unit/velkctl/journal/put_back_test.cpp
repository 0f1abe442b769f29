// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Puts the files and values of a change back.
#include "velkctl/journal/put_back.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testkit::DataOf;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::Data;
using velkctl::EntryState;
using velkctl::FileCase;
using velkctl::FileImage;
using velkctl::FindSetting;
using velkctl::JournalEntry;
using velkctl::PutBackOptions;
using velkctl::PutBackResult;

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kCopy[] = "/var/tmp/interfaces";

FileImage ImageOf(const char* path, std::string bytes) {
    return {.path = path, .exists = true, .bytes = std::move(bytes), .mode = 0640};
}

// The text of the interfaces file with an address of eth0.
std::string TextWith(std::string_view address) {
    return "# ours\niface eth0 inet static\n\taddress " + std::string(address) +
           "\n\tnetmask 255.255.255.0\n";
}

class PutBackTest : public testkit::DeviceTest {
  protected:
    // A change of the address from .1 to .2.
    static JournalEntry Change() {
        JournalEntry entry{.state = EntryState::kDone};
        entry.steps = {
            {*FindSetting("eth0.address"), DataOf("192.168.0.2"), DataOf("192.168.0.1")}};
        entry.before = {ImageOf(kInterfaces, TextWith("192.168.0.1"))};
        entry.after = {ImageOf(kInterfaces, TextWith("192.168.0.2"))};
        return entry;
    }
    static FileCase CaseOf(std::string_view bytes, const JournalEntry& entry = Change()) {
        WriteFile(kInterfaces, bytes);
        return CompareFile(velkctl::ReadFileImage(kInterfaces), entry);
    }
    PutBackResult Run(const JournalEntry& entry, PutBackOptions options = {}) {
        return PutBack(entry, options, device);
    }
    static std::vector<std::string> Texts(const std::vector<velkctl::Problem>& problems) {
        std::vector<std::string> texts;
        for (const velkctl::Problem& problem : problems) {
            texts.push_back(problem.message + "; " + problem.detail);
        }
        return texts;
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
};

TEST_F(PutBackTest, KnowsTheFileFromBeforeAndAfter) {
    EXPECT_EQ(CaseOf(TextWith("192.168.0.1")), FileCase::kOld);
    EXPECT_EQ(CaseOf(TextWith("192.168.0.2")), FileCase::kNew);
    EXPECT_EQ(CaseOf(TextWith("192.168.0.3")), FileCase::kOther);
    JournalEntry entry = Change();
    AddAfter(entry, ImageOf(kInterfaces, TextWith("192.168.0.4")));
    EXPECT_EQ(CaseOf(TextWith("192.168.0.2"), entry), FileCase::kNew) << "after an earlier step";
}

TEST_F(PutBackTest, KnowsAFileThatIsCutAtAnyPlace) {
    for (const char* address : {"192.168.0.1", "192.168.0.2"}) {
        const std::string text = TextWith(address);
        for (size_t length = 0; length < text.size(); ++length) {
            const std::string part = text.substr(0, length);
            EXPECT_EQ(CaseOf(part), FileCase::kCut) << length;
            EXPECT_EQ(CaseOf(part + std::string(text.size() - length, '\0')), FileCase::kCut);
        }
        EXPECT_EQ(CaseOf(text + std::string(512, '\0')), FileCase::kCut);
        EXPECT_EQ(CaseOf(text + "x"), FileCase::kOther);
    }
}

TEST_F(PutBackTest, KnowsAFileWithUnwrittenBlocks) {
    const std::string text = TextWith("192.168.0.2");
    EXPECT_EQ(CaseOf(std::string(8, '\0') + text.substr(8)), FileCase::kCut);
    EXPECT_EQ(CaseOf(text.substr(0, 8) + std::string(8, '\0') + text.substr(16)), FileCase::kCut);
    EXPECT_EQ(CaseOf(std::string(8, '\0') + text.substr(8) + "x"), FileCase::kOther);
    EXPECT_EQ(CaseOf(std::string(8, '\0') + text), FileCase::kOther);
}

// Between two edits, the first line is new and the second old.
TEST_F(PutBackTest, KnowsAFileThatIsCutBetweenTwoEdits) {
    JournalEntry entry = Change();
    entry.state = EntryState::kApplying;
    entry.before = {ImageOf(kInterfaces, "#one\n#two\n")};
    entry.after = {ImageOf(kInterfaces, "one\ntwo\n")};
    EXPECT_EQ(CaseOf("one\n#two\n", entry), FileCase::kNew);
    for (const std::string_view cut : {"one\n#two"sv, "one\n#"sv, "one\n#t\0\0\0"sv}) {
        EXPECT_EQ(CaseOf(cut, entry), FileCase::kCut) << cut;
    }
    EXPECT_EQ(CaseOf("one\n#x", entry), FileCase::kOther);
    EXPECT_EQ(CaseOf("one\n#two\n#", entry), FileCase::kOther);
    entry.state = EntryState::kDone;
    EXPECT_EQ(CaseOf("one\n#t", entry), FileCase::kOther);
}

TEST_F(PutBackTest, KnowsTheFileOfAnInterruptedEdit) {
    JournalEntry entry = Change();
    entry.after.clear();
    WriteFile(kCopy, TextWith("192.168.0.2"));
    ASSERT_EQ(chmod(kCopy, 0600), 0);
    EXPECT_EQ(CaseOf(TextWith("192.168.0.2"), entry), FileCase::kOther) << "the change is closed";
    entry.state = EntryState::kApplying;
    EXPECT_EQ(CaseOf(TextWith("192.168.0.2"), entry), FileCase::kNew);
    EXPECT_EQ(CaseOf("# ours\niface eth0 inet static\n\taddress 192.168.0.2", entry),
              FileCase::kCut);
    EXPECT_EQ(CaseOf("# other\n", entry), FileCase::kOther);
    WriteFile(kCopy, "");
    EXPECT_EQ(CaseOf(TextWith("192.168.0.2"), entry), FileCase::kOther);
}

// Any user can make such a file.
TEST_F(PutBackTest, DoesNotTrustAnEditCopyOfAnother) {
    JournalEntry entry = Change();
    entry.state = EntryState::kApplying;
    const std::string theirs = "# an administrator\n";
    WriteFile(kCopy, theirs);
    ASSERT_EQ(chmod(kCopy, 0644), 0);
    EXPECT_EQ(CaseOf(theirs, entry), FileCase::kOther) << "another mode";
    ASSERT_EQ(chmod(kCopy, 0600), 0);
    EXPECT_EQ(CaseOf(theirs, entry), FileCase::kNew);
    ASSERT_EQ(link(kCopy, "/var/tmp/second-name"), 0);
    EXPECT_EQ(CaseOf(theirs, entry), FileCase::kOther) << "two names";
    ASSERT_EQ(unlink(kCopy), 0);
    ASSERT_EQ(symlink(kInterfaces, kCopy), 0);
    EXPECT_EQ(CaseOf(theirs, entry), FileCase::kOther) << "a link to the file itself";
    ASSERT_EQ(unlink("/var/tmp/second-name"), 0);
}

TEST_F(PutBackTest, TakesAnUnreadableFileForThatOfAnother) {
    ASSERT_EQ(mkfifo(kInterfaces, 0600), 0);
    EXPECT_EQ(CompareFile(velkctl::ReadFileImage(kInterfaces), Change()), FileCase::kOther);
    ASSERT_EQ(unlink(kInterfaces), 0);
    EXPECT_EQ(CompareFile(velkctl::ReadFileImage(kInterfaces), Change()), FileCase::kOther);
    JournalEntry entry = Change();
    entry.before.front().error = EACCES;
    EXPECT_EQ(CaseOf(TextWith("192.168.0.2"), entry), FileCase::kOther);
}

TEST_F(PutBackTest, GivesAFileItsBytesInPlace) {
    for (const std::string& now : {TextWith("192.168.0.2"), ""s, "# ou"s, "# ou\0\0"s}) {
        WriteFile(kInterfaces, now);
        ASSERT_EQ(chmod(kInterfaces, 0604), 0);
        const testkit::FileIdentity identity = testkit::IdentityOf(kInterfaces);
        const PutBackResult result = Run(Change());
        EXPECT_TRUE(result.is_whole());
        EXPECT_TRUE(result.has_changed);
        EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.1"));
        EXPECT_EQ(testkit::IdentityOf(kInterfaces), identity);
    }
    const PutBackResult again = Run(Change());
    EXPECT_TRUE(again.is_whole());
    EXPECT_FALSE(again.has_changed);
}

// sed(1) makes a new file with mode 0600 first.
TEST_F(PutBackTest, GivesAFileTheModeThatAPowerCutHasTaken) {
    JournalEntry entry = Change();
    entry.state = EntryState::kApplying;
    entry.before.front().owner = geteuid();
    entry.before.front().group = getegid();
    for (const char* address : {"192.168.0.1", "192.168.0.2"}) {
        WriteFile(kInterfaces, TextWith(address));
        ASSERT_EQ(chmod(kInterfaces, 0600), 0);
        EXPECT_TRUE(Run(entry).is_whole());
        EXPECT_EQ(testkit::IdentityOf(kInterfaces).mode & 07777U, 0640U);
    }
    ASSERT_EQ(chmod(kInterfaces, 0600), 0);
    libc().Script(testkit::Call::kFchmod, {testkit::Fail(EPERM)});
    EXPECT_EQ(Texts(Run(entry).left),
              std::vector{"/etc/network/interfaces: not put back; Operation not permitted"s});
}

TEST_F(PutBackTest, KeepsTheTextOfAnotherProgram) {
    WriteFile(kInterfaces, TextWith("192.168.0.2") + "# theirs\n");
    const PutBackResult result = Run(Change());
    EXPECT_TRUE(result.is_whole());
    EXPECT_TRUE(result.has_changed);
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.1") + "# theirs\n");
    EXPECT_FALSE(Run(Change()).has_changed);
}

TEST_F(PutBackTest, KeepsTheValueOfAnotherProgram) {
    WriteFile(kInterfaces, TextWith("192.168.0.3"));
    EXPECT_EQ(
        Texts(FindObstacles(Change(), {}, device)),
        std::vector{"eth0.address: not put back; it was set since, to '192.168.0.3'; saved value: "
                    "'192.168.0.1'; file: /etc/network/interfaces"s});
    PutBackResult result = Run(Change());
    EXPECT_FALSE(result.has_changed);
    EXPECT_EQ(
        Texts(result.left),
        std::vector{"eth0.address: not put back; it was set since, to '192.168.0.3'; saved value: "
                    "'192.168.0.1'; file: /etc/network/interfaces"s});
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.3"));
    result = Run(Change(), {.force = true});
    EXPECT_TRUE(result.is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.1"));
    EXPECT_TRUE(FindObstacles(Change(), {}, device).empty());
}

// The files were read for the entry of an undo; then another program has written.
TEST_F(PutBackTest, WritesNoBytesIfAFileHasChangedSinceTheUndoBegan) {
    JournalEntry entry = Change();
    entry.before[0].bytes.append("# once\n");
    const std::vector begun_with{ImageOf(kInterfaces, TextWith("192.168.0.2") + "# theirs\n")};
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    EXPECT_TRUE(Run(entry, {.begun_with = &begun_with}).is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.1"));
}

// Another program, which does not use the lock, writes at each moment when it is taken.
TEST_F(PutBackTest, GivesUpIfAnotherProgramWritesAgainAndAgain) {
    VkLibUnLock(VkLibLock());
    int count = 0;
    libc().OnCall(testkit::Call::kFlock, [&, self = getpid()](const testkit::Event&) {
        if (getpid() == self) {  // not in the private copy
            const std::string line = "# " + std::to_string(++count) + "\n";
            WriteFile(kInterfaces, TextWith("192.168.0.2") + line);
        }
    });
    EXPECT_EQ(Texts(Run(Change()).left),
              std::vector{"eth0.address: not put back; another program changes its file again and "
                          "again; saved value: '192.168.0.1'; file: /etc/network/interfaces"s});
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.2") + "# " + std::to_string(count) + "\n");
}

// Another program writes when the value was compared, and is to be replaced.
TEST_F(PutBackTest, KeepsAValueThatAnotherProgramHasSetMeanwhile) {
    WriteFile(kInterfaces, TextWith("192.168.0.2") + "# theirs\n");
    VkLibUnLock(VkLibLock());
    int count = 0;
    libc().OnCall(testkit::Call::kFlock, [&, self = getpid()](const testkit::Event&) {
        // The files were read under the first two.
        if (getpid() == self && ++count == 3) {
            WriteFile(kInterfaces, TextWith("192.168.0.3"));
        }
    });
    EXPECT_EQ(
        Texts(Run(Change()).left),
        std::vector{"eth0.address: not put back; it was set since, to '192.168.0.3'; saved value: "
                    "'192.168.0.1'; file: /etc/network/interfaces"s});
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.3"));
}

TEST_F(PutBackTest, NamesASettingWithoutAnOldValue) {
    JournalEntry entry = Change();
    entry.steps.front().old_value.reset();
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    EXPECT_TRUE(FindObstacles(entry, {}, device).empty()) << "bytes put it back";
    WriteFile(kInterfaces, TextWith("192.168.0.2") + "# theirs\n");
    const std::vector expected{
        "eth0.address: not put back; its old value is not known; file: /etc/network/interfaces"s};
    EXPECT_EQ(Texts(FindObstacles(entry, {}, device)), expected);
    EXPECT_EQ(Texts(Run(entry).left), expected);
}

TEST_F(PutBackTest, NamesASettingThatCannotBeRead) {
    EXPECT_EQ(Texts(Run(Change()).left),
              std::vector{"eth0.address: not put back; it cannot be read: file, socket, time-out "
                          "or unreadable value; saved value: '192.168.0.1'; file: "
                          "/etc/network/interfaces"s});
}

TEST_F(PutBackTest, NamesASettingThatCannotBeSet) {
    WriteFile(kInterfaces, TextWith("192.168.0.2") + "# theirs\n");
    ASSERT_EQ(mkdir(kCopy, 0700), 0);
    EXPECT_EQ(Texts(Run(Change()).left),
              std::vector{"eth0.address: not put back; file, socket, time-out or unreadable "
                          "value; saved value: '192.168.0.1'; file: "
                          "/etc/network/interfaces"s});
    ASSERT_EQ(rmdir(kCopy), 0);
}

TEST_F(PutBackTest, NamesASettingThatTheDeviceDoesNotTake) {
    WriteFile(kInterfaces, TextWith("192.168.0.2") + "# theirs\n");
    libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(0));
    EXPECT_EQ(Texts(Run(Change()).left),
              std::vector{"eth0.address: not put back; the library reported success, but the "
                          "device holds another value; saved value: '192.168.0.1'; file: "
                          "/etc/network/interfaces"s});
}

TEST_F(PutBackTest, NamesAFileThatCannotBeFlushed) {
    WriteFile(kInterfaces, TextWith("192.168.0.1"));
    // The library's lock is opened, then the file is read.
    libc().PlanFault(testkit::Call::kOpen, 3, testkit::Reach::kThatOne, EIO);
    EXPECT_EQ(Texts(Run(Change()).left),
              std::vector{"/etc/network/interfaces: not put back; Input/output error"s});
}

// A later try must not replace a value that somebody has set after the first one.
TEST_F(PutBackTest, NamesTheItemsThatWerePutBack) {
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    EXPECT_EQ(Run(Change()).put_back, (std::vector{std::string(kInterfaces), "eth0.address"s}));
    WriteFile(kInterfaces, TextWith("192.168.0.2") + "# theirs\n");
    EXPECT_EQ(Run(Change()).put_back, std::vector{"eth0.address"s});
    WriteFile(kInterfaces, TextWith("192.168.0.3"));
    EXPECT_EQ(Run(Change()).put_back, std::vector<std::string>());
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    libc().Script(testkit::Call::kWrite, {testkit::Fail(ENOSPC)});
    EXPECT_EQ(Run(Change()).put_back, std::vector<std::string>());
}

TEST_F(PutBackTest, TouchesNoItemThatWasPutBack) {
    JournalEntry entry = Change();
    entry.state = EntryState::kStuck;
    entry.put_back = {kInterfaces, "eth0.address"};
    for (const std::string& now : {TextWith("192.168.0.2"), TextWith("192.168.0.3")}) {
        WriteFile(kInterfaces, now);
        EXPECT_TRUE(Run(entry, {.force = true}).is_whole());
        EXPECT_EQ(ReadFile(kInterfaces), now);
    }
}

// The address was put back alone. The bytes from before would replace its value of today.
TEST_F(PutBackTest, GivesNoBytesToAFileWithASettingThatWasPutBack) {
    JournalEntry entry = Change();
    entry.steps.push_back(
        {*FindSetting("eth0.netmask"), DataOf("255.255.0.0"), DataOf("255.255.255.0")});
    entry.put_back = {"eth0.address"};
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    EXPECT_TRUE(Run(entry).is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.2"));
}

TEST_F(PutBackTest, KeepsTheValueOfALaterChange) {
    JournalEntry later = Change();
    later.steps.front().new_value = DataOf("192.168.0.3");
    for (const char* address : {"192.168.0.2", "192.168.0.3"}) {
        later.after = {ImageOf(kInterfaces, TextWith(address))};
        WriteFile(kInterfaces, TextWith(address));
        const PutBackResult result = Run(Change(), {.later = {&later}});
        EXPECT_TRUE(result.is_whole());
        EXPECT_FALSE(result.has_changed);
        EXPECT_EQ(result.kept, std::vector{"eth0.address"s});
        EXPECT_EQ(ReadFile(kInterfaces), TextWith(address));
    }
    EXPECT_TRUE(Run(Change(), {.force = true, .later = {&later}}).is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.1"));
}

// The later change has cut the end of the file itself.
TEST_F(PutBackTest, GivesNoBytesToAFileAsALaterChangeHasLeftIt) {
    JournalEntry later{.state = EntryState::kDone};
    const std::string text = "# ours\niface eth0 inet static\n\taddress 192.168.0.2\n";
    later.after = {ImageOf(kInterfaces, text)};
    WriteFile(kInterfaces, text);
    EXPECT_TRUE(Run(Change(), {.later = {&later}}).is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), "# ours\niface eth0 inet static\n\taddress 192.168.0.1\n");
}

TEST_F(PutBackTest, NamesTheFileAndTheSavedValue) {
    WriteFile(kInterfaces, TextWith("192.168.0.3"));
    const velkctl::Problem problem = Run(Change()).left.front();
    EXPECT_EQ(problem.setting, "eth0.address");
    EXPECT_EQ(problem.file, kInterfaces);
    EXPECT_EQ(problem.remedy,
              "'velkctl recover --force' replaces it; 'velkctl recover --keep' keeps it");
}

TEST_F(PutBackTest, MakesAndRemovesAFile) {
    JournalEntry entry = Change();
    entry.steps.clear();
    entry.before = {{.path = testkit::kResolverFile}};
    entry.after = {ImageOf(testkit::kResolverFile, "nameserver 1.1.1.1\n")};
    WriteFile(testkit::kResolverFile, "nameserver 1.1.1.1\n");
    EXPECT_TRUE(Run(entry).is_whole());
    EXPECT_FALSE(testkit::Exists(testkit::kResolverFile));
    std::swap(entry.before, entry.after);
    EXPECT_EQ(Run(entry).left.size(), 0U);
}

TEST_F(PutBackTest, NamesAFileThatCannotBeWritten) {
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    libc().Script(testkit::Call::kWrite, {testkit::Fail(ENOSPC)});
    EXPECT_EQ(Texts(Run(Change()).left),
              std::vector{"/etc/network/interfaces: not put back; No space left on device"s});
    EXPECT_TRUE(Run(Change()).is_whole()) << "a later try finds it cut";
}

TEST_F(PutBackTest, DoesNothingWhileAnotherProgramChangesSettings) {
    WriteFile(kInterfaces, TextWith("192.168.0.2"));
    const int lock = VkLibLock();
    const PutBackResult result = Run(Change());
    VkLibUnLock(lock);
    EXPECT_TRUE(result.is_locked);
    EXPECT_FALSE(result.is_whole());
    EXPECT_EQ(ReadFile(kInterfaces), TextWith("192.168.0.2"));
}

TEST_F(PutBackTest, LeavesTheValuesOfTheDaemonToALaterRun) {
    JournalEntry entry;
    entry.steps = {{*FindSetting("eth1.ssid"), DataOf("new"), DataOf("old")},
                   {*FindSetting("eth1.psk"), DataOf("newer key"), Data{}}};
    const PutBackResult result = Run(entry, {.at_boot = true});
    EXPECT_TRUE(result.waits_for_daemon);
    EXPECT_FALSE(result.is_whole());
    EXPECT_TRUE(result.left.empty());
    EXPECT_EQ(Run(entry).left.size(), 2U) << "no daemon runs";
}

TEST_F(PutBackTest, LeavesAValueThatThePortHasLostAtAStart) {
    JournalEntry entry;
    entry.boot_id = "of another start";
    entry.steps = {
        {*FindSetting("eth0.link-speed"), Data{VELK_LINK_100_FULL}, Data{VELK_LINK_10_FULL}}};
    EXPECT_TRUE(Run(entry).is_whole());
    EXPECT_FALSE(Run(entry, {.force = true}).is_whole()) << "no port is there";
}

// An undo of it is asked for: the port may have the new speed again.
TEST_F(PutBackTest, SetsTheLinkSpeedOfAFinishedChangeAlsoAfterAStart) {
    JournalEntry entry;
    entry.state = velkctl::EntryState::kDone;
    entry.boot_id = "of another start";
    entry.steps = {
        {*FindSetting("eth0.link-speed"), Data{VELK_LINK_100_FULL}, Data{VELK_LINK_10_FULL}}};
    EXPECT_FALSE(Run(entry).is_whole()) << "no port is there";
}

TEST_F(PutBackTest, RestartsTheSnmpAgentAfterItsFileIsPutBack) {
    JournalEntry entry;
    entry.before = {ImageOf(testkit::kSnmpFile, "syslocation here\n")};
    entry.after = {ImageOf(testkit::kSnmpFile, "syslocation there\n")};
    WriteFile(testkit::kSnmpFile, "syslocation there\n");
    EXPECT_TRUE(Run(entry).is_whole());
    EXPECT_EQ(ReadFile(testkit::kSnmpFile), "syslocation here\n");
}

}  // namespace
