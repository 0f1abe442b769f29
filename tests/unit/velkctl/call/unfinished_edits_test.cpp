// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The notes about edit copies that a set replaces.
#include "velkctl/call/unfinished_edits.h"

#include <string>

#include "support/device_test.h"
#include "support/paths.h"
#include "unit/velkctl/call/samples.h"

namespace {

using testkit::kChange;
using testkit::kLockFile;
using testkit::WriteCopy;
using testkit::WriteFile;
using velkctl::Command;

class UnfinishedEdits : public testkit::DeviceTest {
  protected:
    static std::string NotesOf(const Command& command) {
        velkctl::Report report(velkctl::Report::Form::kText);
        testing::internal::CaptureStderr();
        velkctl::NoteUnfinishedEdits(command, "eth0.method", report);
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(UnfinishedEdits, AreNotedBeforeTheyAreLost) {
    VkLibUnLock(VkLibLock());
    WriteFile("/etc/dhclient.conf", "");
    WriteCopy("/var/tmp/dhclient.conf", "timeout 10;\n\x1b[1m\n");
    EXPECT_EQ(NotesOf(kChange),
              "velkctl: note: eth0.method: this set replaces the edit copy /var/tmp/dhclient.conf\n"
              "  /etc/dhclient.conf seems cut by an interrupted edit\n"
              "  the copy has the rest; the copy would add 'timeout 10;', '\\x1b[1m'\n"
              "  fix: before a set, compare: diff /etc/dhclient.conf /var/tmp/dhclient.conf; "
              "if the copy is right, write its text into /etc/dhclient.conf as root\n");
    EXPECT_EQ(NotesOf({VELK_GET, VELK_CMD_IP_METHOD, "eth0"}), "");
    EXPECT_EQ(NotesOf({VELK_SET, VELK_CMD_GATEWAY, "eth0"}), "");
}

// A host with different real and effective users makes its copies with mode 644.
TEST_F(UnfinishedEdits, MayBeInACopyOfMode644) {
    WriteFile("/etc/dhclient.conf", "");
    WriteCopy("/var/tmp/dhclient.conf", "timeout 10;\n");
    ASSERT_EQ(chmod("/var/tmp/dhclient.conf", 0644), 0);
    EXPECT_EQ(NotesOf(kChange),
              "velkctl: note: eth0.method: this set replaces /var/tmp/dhclient.conf\n"
              "  it may be the only complete text of /etc/dhclient.conf\n"
              "  fix: look at it before a set\n");
    EXPECT_EQ(NotesOf({VELK_SET, VELK_CMD_GATEWAY, "eth0"}), "");
}

TEST_F(UnfinishedEdits, AreNotedWithoutTheSystemLog) {
    WriteFile(kLockFile, "");
    WriteFile("/etc/dhclient.conf", "");
    WriteCopy("/var/tmp/dhclient.conf", "timeout 10;\n");
    EXPECT_NE(NotesOf(kChange), "");
    EXPECT_TRUE(libc().Logs().empty());
}

TEST_F(UnfinishedEdits, AreNotNotedIfNothingIsLost) {
    WriteFile("/etc/dhclient.conf", "timeout 9;\n");
    WriteCopy("/var/tmp/dhclient.conf", "timeout 10;\n");
    EXPECT_EQ(NotesOf(kChange), "");
    WriteCopy("/var/tmp/dhclient.conf", "");
    EXPECT_EQ(NotesOf(kChange), "");
}

TEST_F(UnfinishedEdits, ExcludeFilesOfOtherPrograms) {
    WriteFile("/etc/dhclient.conf", "");
    WriteFile("/var/tmp/dhclient.conf", "timeout 10;\n");
    ASSERT_EQ(chmod("/var/tmp/dhclient.conf", 0640), 0);
    EXPECT_EQ(NotesOf(kChange), "");
}

TEST_F(UnfinishedEdits, AreNotNotedWhileTheLockIsHeld) {
    WriteFile("/etc/dhclient.conf", "");
    WriteCopy("/var/tmp/dhclient.conf", "timeout 10;\n");
    const int lock = VkLibLock();
    EXPECT_EQ(NotesOf(kChange), "");
    VkLibUnLock(lock);
}

}  // namespace
