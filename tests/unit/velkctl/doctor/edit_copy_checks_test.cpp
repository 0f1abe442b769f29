// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about edits that were left unfinished.
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/likely_cause.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testkit::kCrontab;
using testkit::WriteFile;

constexpr auto& kCopy = testkit::kCrontabCopy;

class EditCopyCheck : public testkit::DeviceTest {
  protected:
    static std::string Said() { return FormatFindings(velkctl::CheckEditCopies()); }
    static void WriteCopy(const std::string& path, const std::string& text) {
        WriteFile(path, text);
        ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    }
    static void WriteOld(const std::string& path, const std::string& text) {
        WriteCopy(path, text);
        const timespec long_ago[2] = {{0, UTIME_NOW}, {time(nullptr) - 2 * 24 * 60 * 60 - 5, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), long_ago, 0), 0);
    }
};

TEST_F(EditCopyCheck, SaysNothingWhereNothingWasLeft) {
    WriteFile(kCrontab, "a\n");
    EXPECT_EQ(Said(), "");
}

TEST_F(EditCopyCheck, FindsAFileThatWasCut) {
    constexpr char kFix[] =
        "  fix: compare: diff /var/cron/tabs/root /var/tmp/root\n"
        "  if the copy is right, write its text into /var/cron/tabs/root as root\n";
    const std::string found =
        "problem: ntp, ntp-server and web-update may be lost\n"
        "  /var/cron/tabs/root: the file seems to have been cut while being copied\n"
        "  the rest is in the edit copy /var/tmp/root, 2 days old";
    VkLibUnLock(VkLibLock());
    WriteOld(kCopy, "0 * * * * true\n\x1b[1m\n");
    for (const char* cut : {"", "0 * * *"}) {
        WriteFile(kCrontab, cut);
        EXPECT_EQ(Said(), found +
                              "\n  the next set replaces it; the copy would add '0 * * * * "
                              "true', '\\x1b[1m'\n" +
                              kFix);
    }
    WriteOld(kCopy, "0 * * * * true\n0 *");
    WriteFile(kCrontab, "");
    EXPECT_EQ(Said(),
              found +
                  "\n  its end may be missing too\n"
                  "  the next set replaces it; the copy would add '0 * * * * true', '0 *'\n" +
                  kFix);
}

TEST_F(EditCopyCheck, AFileThatWasCutIsTheLikelyCauseOfAFailedReading) {
    WriteFile("/etc/network/interfaces", "");
    WriteOld("/var/tmp/interfaces", "iface eth0 inet static\n");
    const auto setting = velkctl::FindSetting("eth0.method").value();
    const velkctl::Findings causes = velkctl::LikelyCauses(setting);
    ASSERT_FALSE(causes.empty());
    velkctl::Problem problem{"eth0.method: could not be read"};
    AddLikelyCause(problem, causes.front());
    EXPECT_EQ(
        OneLine(problem),
        "eth0.method: could not be read; likely cause: /etc/network/interfaces: the file seems to "
        "have been cut while being copied; the rest is in the edit copy /var/tmp/interfaces, 2 "
        "days old; the next set replaces it; the copy would add 'iface eth0 inet static'; fix: "
        "compare: diff /etc/network/interfaces /var/tmp/interfaces; if the copy is right, write "
        "its text into /etc/network/interfaces as root");
}

TEST_F(EditCopyCheck, OffersToDiscardACopyThatMayNotBeWhole) {
    WriteFile(kCrontab, "0 * * * * true\n5 * * * * true\n");
    constexpr char kFix[] = "; the next set replaces it\n  fix: rm /var/tmp/root\n";
    const std::string left =
        "warning: ntp, ntp-server and web-update may not have been set\n"
        "  /var/tmp/root: an edit copy was left, 2 days old\n  ";
    WriteOld(kCopy, "");
    EXPECT_EQ(Said(), left + "it is empty" + kFix);
    for (const char* part : {"0 * * * * true\n", "0 * * * * false\n5 *"}) {
        WriteOld(kCopy, part);
        EXPECT_EQ(Said(), left + "it may be incomplete" + kFix) << part;
    }
}

TEST_F(EditCopyCheck, OffersToFinishOrDiscardAnEditThatWasNotCopied) {
    VkLibUnLock(VkLibLock());
    WriteFile(kCrontab, "0 * * * * true\n");
    WriteOld(kCopy, "5 * * * * true\n");
    EXPECT_EQ(Said(),
              "warning: ntp, ntp-server and web-update may not have been set\n"
              "  /var/tmp/root: an edit copy was left, 2 days old\n"
              "  it differs from the file\n"
              "  the next set replaces it; the copy would add '5 * * * * true'\n"
              "  fix: to discard the edit: (flock 9 && rm /var/tmp/root) 9< /var/tmp/vklib_lock\n"
              "  to finish it, compare: diff /var/cron/tabs/root /var/tmp/root\n"
              "  if the copy is right, write its text into /var/cron/tabs/root as root\n");
}

TEST_F(EditCopyCheck, OffersBothWhereTheyCannotBeCompared) {
    WriteFile(kCrontab, std::string(1024 * 1024, 'a') + "\n");
    WriteOld(kCopy, "a\n");
    EXPECT_THAT(Said(),
                HasSubstr("2 days old\n"
                          "  it cannot be compared with the file; the next set replaces it\n"
                          "  fix: to discard the edit: rm /var/tmp/root\n"
                          "  to finish it, compare: "));
}

TEST_F(EditCopyCheck, FindsTheCopyOfAFinishedEdit) {
    WriteFile(kCrontab, "0 * * * * true\n");
    WriteOld(kCopy, "0 * * * * true\n");
    EXPECT_EQ(Said(),
              "warning: ntp, ntp-server and web-update can still be set\n"
              "  /var/tmp/root: an edit copy was left, 2 days old\n"
              "  it is the same as the file; the next set replaces it\n"
              "  fix: rm /var/tmp/root\n");
}

TEST_F(EditCopyCheck, OffersNothingWhileAnEditMayBeUnderWay) {
    WriteFile(kCrontab, "");
    WriteCopy(kCopy, "0 * * * * true\n");
    const int lock = VkLibLock();
    EXPECT_THAT(
        Said(),
        MatchesRegex("warning: ntp, ntp-server and web-update may be changing now\n"
                     "  /var/tmp/root: an edit may be under way\n"
                     "  the lock is held by process [0-9]+ \\(unit_tests, [0-9]+ [a-z]+ old\\)\n"
                     "  fix: wait until that process has ended\n"));
    VkLibUnLock(lock);
    EXPECT_THAT(Said(), HasSubstr("problem: "));
}

TEST_F(EditCopyCheck, OffersOnlyToDiscardAFileOfSomebodyElse) {
    WriteFile(kCrontab, "");
    WriteCopy(kCopy, "* * * * * evil\n");
    if (chown(kCopy, 1234, 1234) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(Said(),
              "warning: ntp, ntp-server and web-update can still be set\n"
              "  /var/tmp/root: a file of user 1234 with mode 600 is not made by the library\n"
              "  it is in the place of the edit copy; the next set replaces it\n"
              "  fix: do not use its text; to remove it: rm /var/tmp/root\n");
}

TEST_F(EditCopyCheck, OffersOnlyToDiscardAFileWithAnotherName) {
    WriteFile(kCrontab, "");
    WriteCopy(kCopy, "* * * * * evil\n");
    ASSERT_EQ(link(kCopy, "/var/tmp/its-other-name"), 0);
    EXPECT_EQ(Said(),
              "warning: ntp, ntp-server and web-update can still be set\n"
              "  /var/tmp/root: a file of user " +
                  std::to_string(geteuid()) +
                  " with mode 600 and another name is not made by the library\n"
                  "  it is in the place of the edit copy; the next set replaces it\n"
                  "  fix: do not use its text; to remove it: rm /var/tmp/root\n");
    ASSERT_EQ(unlink("/var/tmp/its-other-name"), 0);
}

// A file of root that another user has moved into the folder.
TEST_F(EditCopyCheck, OffersOnlyToDiscardAFileThatOthersMayRead) {
    WriteFile(kCrontab, "");
    WriteCopy(kCopy, "* * * * * evil\n");
    ASSERT_EQ(chmod(kCopy, 0640), 0);
    EXPECT_EQ(Said(),
              "warning: ntp, ntp-server and web-update can still be set\n"
              "  /var/tmp/root: a file of user " +
                  std::to_string(geteuid()) +
                  " with mode 640 is not made by the library\n"
                  "  it is in the place of the edit copy; the next set replaces it\n"
                  "  fix: do not use its text; to remove it: rm /var/tmp/root\n");
}

TEST_F(EditCopyCheck, AdvisesToLookAtAFileThatMayBeTheOnlyCompleteText) {
    VkLibUnLock(VkLibLock());
    WriteFile(kCrontab, "0 *");
    WriteCopy(kCopy, "0 * * * * true\n");
    ASSERT_EQ(chmod(kCopy, 0644), 0);
    EXPECT_EQ(Said(),
              "warning: ntp, ntp-server and web-update may be lost\n"
              "  /var/tmp/root: a file of user " +
                  std::to_string(geteuid()) +
                  " with mode 644\n"
                  "  it has more text than /var/cron/tabs/root\n"
                  "  a setuid program may have made it as its edit copy; the next set replaces it\n"
                  "  fix: it may be the only complete text\n"
                  "  look at it before you remove it: (flock 9 && rm /var/tmp/root) 9< "
                  "/var/tmp/vklib_lock\n");
}

TEST_F(EditCopyCheck, OffersToDiscardAFileOfMode644WhereTheFileIsWhole) {
    WriteFile(kCrontab, "0 * * * * true\n");
    WriteCopy(kCopy, "* * * * * evil\n");
    ASSERT_EQ(chmod(kCopy, 0644), 0);
    EXPECT_THAT(Said(), HasSubstr("\n"
                                  "  fix: do not use its text; to remove it: rm /var/tmp/root\n"));
}

TEST_F(EditCopyCheck, FindsEntriesThatTheNextSetReplaces) {
    ASSERT_EQ(mkfifo("/var/tmp/dhclient.conf", 0600), 0);
    ASSERT_EQ(symlink("/etc/hosts", "/var/tmp/dhclient-script"), 0);
    EXPECT_EQ(Said(),
              "warning: method, dhcp-dns and dhcp-ntp can still be set\n"
              "  /var/tmp/dhclient.conf: a FIFO is in the place of the edit copy\n"
              "  the next set replaces it\n"
              "  fix: rm /var/tmp/dhclient.conf\n"
              "warning: dhcp-dns can still be set\n"
              "  /var/tmp/dhclient-script: a symbolic link is in the place of the edit copy\n"
              "  the next set replaces it\n"
              "  fix: rm /var/tmp/dhclient-script\n");
}

TEST_F(EditCopyCheck, FindsAFolderInTheWayOfAnEditCopy) {
    ASSERT_EQ(mkdir("/var/tmp/libvelk", 0700), 0);
    EXPECT_EQ(Said(),
              "problem: administrator and location cannot be set\n"
              "  /var/tmp/libvelk: a folder is in the place of the edit copy\n"
              "  fix: rm -r /var/tmp/libvelk\n");
    ASSERT_EQ(rmdir("/var/tmp/libvelk"), 0);
}

}  // namespace
