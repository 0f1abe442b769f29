// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The edit copies that velkctl finds, their states, and the shell lines about them.
#include "velkctl/call/edit_copy.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "velkctl/settings/catalogue.h"

namespace {

using testkit::kCrontab;
using testkit::kCrontabCopy;
using testkit::kSomebody;
using testkit::WriteFile;
using velkctl::Command;
using velkctl::EditCopy;
using velkctl::EditState;
using velkctl::FindEditCopies;

class EditCopyTest : public testkit::DeviceTest {
  protected:
    static EditCopy Found() {
        const std::vector<EditCopy> copies = FindEditCopies();
        EXPECT_EQ(copies.size(), 1U);
        return copies.empty() ? EditCopy{} : copies.front();
    }
    static void WriteCopy(std::string_view text) {
        WriteFile(kCrontabCopy, text);
        ASSERT_EQ(chmod(kCrontabCopy, 0600), 0);
    }
    static EditState StateOf(std::string_view copy, std::string_view file) {
        WriteCopy(copy);
        WriteFile(kCrontab, file);
        return Found().state;
    }
};

TEST_F(EditCopyTest, FindsNoneAmongOtherFiles) {
    WriteFile(kCrontab, "a\n");
    WriteFile("/var/tmp/a-file-of-somebody", "a\n");
    EXPECT_TRUE(FindEditCopies().empty());
}

TEST_F(EditCopyTest, RecognisesAFileThatWasCut) {
    EXPECT_EQ(StateOf("a\nb\n", ""), EditState::kCut);
    EXPECT_EQ(StateOf("a\nb\n", "a\n"), EditState::kCut);
    EXPECT_EQ(StateOf("a\nb\n", "a\nb"), EditState::kCut);
    ASSERT_EQ(unlink(kCrontab), 0);
    EXPECT_EQ(Found().state, EditState::kCut);
}

TEST_F(EditCopyTest, RecognisesACopyThatMayBeIncomplete) {
    EXPECT_EQ(StateOf("", "a\nb\n"), EditState::kPart);
    EXPECT_EQ(StateOf("", ""), EditState::kPart);
    EXPECT_EQ(StateOf("a\n", "a\nb\n"), EditState::kPart);
    EXPECT_EQ(StateOf("x\ny", "a\nb\n"), EditState::kPart);
    EXPECT_EQ(StateOf("a\nb", "a\n"), EditState::kPart) << "it was never copied";
}

TEST_F(EditCopyTest, DistinguishesADoneEditFromAnUndoneOne) {
    EXPECT_EQ(StateOf("a\nb\n", "a\nb\n"), EditState::kInPlace);
    EXPECT_EQ(StateOf("a\nc\n", "a\nb\n"), EditState::kDiffers);
}

TEST_F(EditCopyTest, KnowsWhenACopyLacksItsEnd) {
    (void)StateOf("a\nb", "");
    EXPECT_EQ(Found().state, EditState::kCut) << "there is nothing else";
    EXPECT_EQ(Found().has_end, false);
    (void)StateOf("a\nb\n", "");
    EXPECT_EQ(Found().has_end, true);
}

TEST_F(EditCopyTest, DoesNotCompareUnreadableFiles) {
    const std::string huge = std::string(1024 * 1024, 'a') + "\n";
    EXPECT_EQ(StateOf("a\n", huge), EditState::kUncompared);
    EXPECT_EQ(StateOf(huge, "a\n"), EditState::kUncompared);
    EXPECT_EQ(StateOf(huge, ""), EditState::kCut);
    EXPECT_EQ(Found().has_end, std::nullopt);
    ASSERT_EQ(unlink(kCrontab), 0);
    ASSERT_EQ(mkfifo(kCrontab, 0600), 0);
    EXPECT_EQ(Found().state, EditState::kUncompared);
}

TEST_F(EditCopyTest, DoesNotTrustLinksNorOtherKindsOfFiles) {
    WriteFile(kCrontab, "");
    WriteFile("/tmp/mine", "a\n");
    ASSERT_EQ(symlink("/tmp/mine", kCrontabCopy), 0);
    EXPECT_EQ(Found().state, EditState::kForeign);
    ASSERT_EQ(unlink(kCrontabCopy), 0);
    ASSERT_EQ(mkfifo(kCrontabCopy, 0600), 0);
    EXPECT_EQ(Found().state, EditState::kForeign);
    ASSERT_EQ(unlink(kCrontabCopy), 0);
    WriteCopy("a\n");
    EXPECT_EQ(Found().state, EditState::kCut);
    ASSERT_EQ(link(kCrontabCopy, "/var/tmp/its-other-name"), 0);
    EXPECT_EQ(Found().state, EditState::kForeign);
    ASSERT_EQ(unlink("/var/tmp/its-other-name"), 0);
}

// Files that root's programs make for others usually have one of these modes.
TEST_F(EditCopyTest, DoesNotTrustAFileThatOthersMayReadOrWrite) {
    WriteFile(kCrontab, "");
    WriteCopy("a\n");
    for (const mode_t mode : {0640U, 0606U, 0700U, 0400U, 04600U, 04644U, 01600U, 0U}) {
        ASSERT_EQ(chmod(kCrontabCopy, mode), 0);
        EXPECT_EQ(Found().state, EditState::kForeign) << std::oct << mode;
        EXPECT_EQ(DescribeNewLines(Found()), "") << std::oct << mode;
    }
    ASSERT_EQ(chmod(kCrontabCopy, 0600), 0);
    EXPECT_EQ(Found().state, EditState::kCut);
}

// A host with different real and effective users makes its copies with mode 644.
TEST_F(EditCopyTest, KeepsInDoubtAFileOfMode644ThatHasMoreThanTheFile) {
    WriteCopy("a\nb\n");
    ASSERT_EQ(chmod(kCrontabCopy, 0644), 0);
    for (const char* cut : {"", "a\n", "a\nb"}) {
        WriteFile(kCrontab, cut);
        EXPECT_EQ(Found().state, EditState::kUnproven) << cut;
        EXPECT_EQ(DescribeNewLines(Found()), "") << cut;
    }
    ASSERT_EQ(unlink(kCrontab), 0);
    EXPECT_EQ(Found().state, EditState::kUnproven);
    for (const char* whole : {"a\nb\n", "b\n", "a\nb\nc\n"}) {
        WriteFile(kCrontab, whole);
        EXPECT_EQ(Found().state, EditState::kForeign) << whole;
    }
    WriteFile(kCrontab, "");
    WriteFile(kCrontabCopy, "");
    EXPECT_EQ(Found().state, EditState::kForeign) << "it has nothing";
}

TEST_F(EditCopyTest, HasNoDoubtAboutAFileOfMode644OfSomebodyElse) {
    WriteFile(kCrontab, "");
    WriteCopy("a\n");
    ASSERT_EQ(chmod(kCrontabCopy, 0644), 0);
    ASSERT_EQ(link(kCrontabCopy, "/var/tmp/its-other-name"), 0);
    EXPECT_EQ(Found().state, EditState::kForeign);
    ASSERT_EQ(unlink("/var/tmp/its-other-name"), 0);
    EXPECT_EQ(Found().state, EditState::kUnproven);
    if (chown(kCrontabCopy, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(Found().state, EditState::kForeign);
}

TEST_F(EditCopyTest, TrustsTheFilesOwnerAndNobodyElse) {
    WriteFile(kCrontab, "");
    WriteCopy("a\n");
    if (chown(kCrontabCopy, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(Found().state, EditState::kForeign);
    ASSERT_EQ(chown(kCrontab, kSomebody, kSomebody), 0);
    EXPECT_EQ(Found().state, EditState::kCut);
    ASSERT_EQ(chown(kCrontabCopy, 0, 0), 0);
    EXPECT_EQ(Found().state, EditState::kCut);
}

TEST_F(EditCopyTest, NamesTheLinesThatWouldBeAdded) {
    (void)StateOf("a\n\tup id > /tmp/x\nb\n", "b\na\n");
    EXPECT_EQ(DescribeNewLines(Found()), "; the copy would add 'up id > /tmp/x'");
    (void)StateOf("b\n\x1b[1m\n", "");
    EXPECT_EQ(DescribeNewLines(Found()), "; the copy would add 'b', '\x1b[1m'");
    (void)StateOf("b\na\n", "a\nb\n");
    EXPECT_EQ(DescribeNewLines(Found()), "; the copy would add no line");
    (void)StateOf("1\n\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n \t\n12\n", "");
    constexpr char kAdded[] =
        "; the copy would add '1', '2', '3', '4', '5', '6', '7', '8', '9', '10' and 2 more";
    EXPECT_EQ(DescribeNewLines(Found()), kAdded);
    ASSERT_EQ(unlink(kCrontab), 0);
    EXPECT_EQ(DescribeNewLines(Found()), kAdded);
}

TEST_F(EditCopyTest, NamesNoLinesWhereTheyCannotBeCompared) {
    const std::string huge = std::string(1024 * 1024, 'a') + "\n";
    (void)StateOf("a\n", huge);
    EXPECT_EQ(DescribeNewLines(Found()), "");
    (void)StateOf(huge, "");
    EXPECT_EQ(DescribeNewLines(Found()), "");
}

TEST_F(EditCopyTest, HasAdviceToFinishIt) {
    (void)StateOf("a\n", "");
    EXPECT_EQ(AdviceToFinish(Found()),
              "compare: diff /var/cron/tabs/root /var/tmp/root; if the copy is right, write its "
              "text into /var/cron/tabs/root as root");
}

TEST_F(EditCopyTest, TheShellLineThatDiscardsItTakesTheLock) {
    (void)StateOf("a\n", "");
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(DiscardCommand(Found()), "(flock 9 && rm /var/tmp/root) 9< /var/tmp/vklib_lock");
}

TEST_F(EditCopyTest, TheShellLineMakesNoLockWhereThereIsNone) {
    (void)StateOf("a\n", "");
    EXPECT_EQ(DiscardCommand(Found()), "rm /var/tmp/root");
    EXPECT_EQ(system(DiscardCommand(Found()).c_str()), 0);
    EXPECT_FALSE(testkit::Exists("/var/tmp/vklib_lock"));
    EXPECT_FALSE(testkit::Exists(kCrontabCopy));
}

// The copies that the library makes on request.
class EditsOfTheLibrary : public EditCopyTest {
  protected:
    void SetUp() override {
        WriteFile("/etc/network/interfaces", "iface eth0 inet static\n\taddress 10.0.0.2\n");
        WriteFile("/etc/dhclient-exit-hooks", "/usr/sbin/avahi-autoipd eth0\n");
        WriteFile("/etc/dhclient.conf", "request routers;\n");
        WriteFile("/sbin/dhclient-script", "make_resolv_conf\n");
        WriteFile(kCrontab, "0 * * * * ntpdate 10.0.0.1 > /var/libvelk/ntp.log\n");
        WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=a\nLOCATION=b\n");
    }
    std::set<std::string> MadeBy(const std::string& name, const std::vector<std::string>& words) {
        const velkctl::Setting setting = velkctl::FindSetting(name).value();
        const velkctl::Data data = setting.row->kind->Parse(words).data;
        libc().ForgetEvents();
        EXPECT_EQ(Execute(VELK_SET, setting.row->id, setting.interface, {data.data(), data.size()}),
                  LIB_VELK_SUCCESS)
            << name;
        std::set<std::string> made;
        for (const std::string& path : libc().Texts(testkit::Call::kOpen)) {
            if (path.starts_with("/var/tmp/") && path != "/var/tmp/vklib_lock") {
                made.insert(path);
            }
        }
        return made;
    }
    static std::set<std::string> FoundFor(const std::string& name) {
        const velkctl::Setting setting = velkctl::FindSetting(name).value();
        std::set<std::string> found;
        for (const EditCopy& copy :
             FindEditCopies(Command{VELK_SET, setting.row->id, setting.interface})) {
            found.insert(copy.path);
        }
        return found;
    }
    static void LeaveThemAll() {
        for (const char* name : {"interfaces", "dhclient-exit-hooks", "dhclient.conf",
                                 "dhclient-script", "root", "libvelk"}) {
            WriteFile(std::string("/var/tmp/") + name, "a\n");
        }
    }
};

TEST_F(EditsOfTheLibrary, HaveTheCopiesThatAreFoundForACommand) {
    struct Row {
        const char* name;
        std::vector<std::string> words;
        std::set<std::string> copies;
    };
    const std::vector<Row> rows{
        {"administrator", {"x"}, {"/var/tmp/libvelk"}},
        {"location", {"x"}, {"/var/tmp/libvelk"}},
        {"ntp", {"on"}, {"/var/tmp/root"}},
        {"ntp-server", {"10.0.0.9"}, {"/var/tmp/root"}},
        {"web-update", {"daily", "08:30"}, {"/var/tmp/root"}},
        {"dhcp-ntp", {"on"}, {"/var/tmp/dhclient-exit-hooks", "/var/tmp/dhclient.conf"}},
        {"eth0.method", {"static"}, {"/var/tmp/dhclient.conf", "/var/tmp/interfaces"}},
        {"eth0.apipa", {"on"}, {"/var/tmp/dhclient-exit-hooks"}},
        {"eth0.address", {"10.0.0.9"}, {"/var/tmp/interfaces"}},
        {"eth0.netmask", {"255.0.0.0"}, {"/var/tmp/interfaces"}},
        {"eth0.gateway", {"10.0.0.9"}, {"/var/tmp/interfaces"}},
        {"eth0.dhcp-dns", {"on"}, {"/var/tmp/dhclient-script", "/var/tmp/dhclient.conf"}},
        {"eth0.dns", {"10.0.0.9"}, {}},
        {"eth0.dhcp-notice", {"on"}, {"/var/tmp/dhclient-exit-hooks"}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(MadeBy(row.name, row.words), row.copies) << row.name;
    }
    LeaveThemAll();
    for (const Row& row : rows) {
        EXPECT_EQ(FoundFor(row.name), row.copies) << row.name;
    }
}

TEST_F(EditsOfTheLibrary, AreNotFoundForReadsAndRestarts) {
    LeaveThemAll();
    EXPECT_TRUE(FindEditCopies({VELK_GET, VELK_CMD_GATEWAY, "eth0"}).empty());
    EXPECT_TRUE(FindEditCopies({VELK_RESTART, VELK_CMD_RESTART, "eth0"}).empty());
    EXPECT_TRUE(FindEditCopies({VELK_SET, VELK_CMD_SSID, "eth1"}).empty());
    EXPECT_EQ(FindEditCopies().size(), 6U);
}

}  // namespace
