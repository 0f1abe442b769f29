// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about the entries of the crontab.
#include <string>
#include <string_view>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using velkctl::CheckTimeEntry;
using velkctl::CheckWebUpdate;
using velkctl::FormatFindings;

class CrontabCheck : public testkit::DeviceTest {
  protected:
    static std::string ExamineTime(std::string_view text) {
        testkit::WriteFile("/var/cron/tabs/root", text);
        return FormatFindings(CheckTimeEntry());
    }
    static std::string ExamineUpdate(std::string_view text) {
        testkit::WriteFile("/var/cron/tabs/root", text);
        return FormatFindings(CheckWebUpdate());
    }
};

constexpr char kWriteEntry[] =
    "  fix: write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log\n";

TEST_F(CrontabCheck, SaysNothingAboutAProperTimeEntry) {
    EXPECT_EQ(ExamineTime("0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n"), "");
    EXPECT_EQ(ExamineTime("#0 * * * * ntpdate -u  > /var/libvelk/ntp.log"), "");
}

TEST_F(CrontabCheck, FindsNoTimeEntry) {
    EXPECT_EQ(ExamineTime("0 * * * * true\n"),
              "problem: ntp and ntp-server cannot be set\n"
              "  /var/cron/tabs/root: no entry runs ntpdate\n" +
                  std::string(kWriteEntry));
}

TEST_F(CrontabCheck, FindsAServerThatIsTheLastWord) {
    EXPECT_EQ(
        ExamineTime("0 * * * * ntpdate 2>/var/libvelk/ntp.log 10.0.0.1\n"),
        "problem: ntp-server is read and set in the wrong place\n"
        "  /var/cron/tabs/root:1: the library takes '2>/var/libvelk/ntp.log' for the server\n" +
            std::string(kWriteEntry));
    EXPECT_EQ(ExamineTime("0 * * * * ntpdate 10.0.0.1\n"),
              "problem: ntp-server cannot be set\n"
              "  /var/cron/tabs/root:1: the server is the last word of the line\n"
              "  a set joins the entry with the next line\n" +
                  std::string(kWriteEntry) +
                  "warning: ntp-result does not show the result of this entry\n"
                  "  /var/cron/tabs/root:1: its output does not go to /var/libvelk/ntp.log\n" +
                  kWriteEntry);
}

TEST_F(CrontabCheck, FindsNoPlaceForAServer) {
    EXPECT_EQ(ExamineTime("0 * * * * ntpdate -u\n"),
              "problem: ntp-server cannot be set\n"
              "  /var/cron/tabs/root:1: the entry has no server\n"
              "  it has no '>' before which to put one\n" +
                  std::string(kWriteEntry) +
                  "warning: ntp-result does not show the result of this entry\n"
                  "  /var/cron/tabs/root:1: its output does not go to /var/libvelk/ntp.log\n" +
                  kWriteEntry);
    EXPECT_EQ(
        ExamineTime("0 * * * * ntpdate -u > /var/libvelk/ntp.log\n"),
        "problem: ntp-server cannot be set\n"
        "  /var/cron/tabs/root:1: a new server would be joined to another word on the line\n" +
            std::string(kWriteEntry));
}

TEST_F(CrontabCheck, FindsAServerWithTextThatOccursEarlierOnTheLine) {
    const auto finding = [](const std::string& server) {
        return "problem: ntp-server cannot be set\n"
               "  /var/cron/tabs/root:1: '" +
               server +
               "' also occurs earlier on the line\n"
               "  a set replaces it there\n"
               "  fix: with an editor, write the server's address or another name in its place\n";
    };
    EXPECT_EQ(ExamineTime("5 * * * * ntpdate 5 > /var/libvelk/ntp.log\n"), finding("5"));
    EXPECT_EQ(ExamineTime("0 * * * * /usr/bin/ntpdate -u ntp > /var/libvelk/ntp.log\n"),
              finding("ntp"));
    EXPECT_EQ(ExamineTime("0 * * * * ntpdate -q q > /var/libvelk/ntp.log\n"), finding("q"))
        << "within an option";
}

TEST_F(CrontabCheck, FindsTwoEntriesOnOneLine) {
    EXPECT_EQ(ExamineTime("0 * * * * ntpdate 10.0.0.95 4 * * 1 true > /var/libvelk/ntp.log\n"),
              "problem: ntp-server is joined with another entry\n"
              "  /var/cron/tabs/root:1: two entries are on one line\n"
              "  a set of a server at the end of the line joins them\n"
              "  fix: put the second one on a line of its own\n"
              "  write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log\n");
}

TEST_F(CrontabCheck, FindsAnOptionThatIsTakenForTheServer) {
    EXPECT_EQ(ExamineTime("0 * * * * ntpdate -t 5 10.0.0.1 > /var/libvelk/ntp.log\n"),
              "problem: ntp-server is read and set in the wrong place\n"
              "  /var/cron/tabs/root:1: the library takes the option '-t 5' for the server\n" +
                  std::string(kWriteEntry));
}

TEST_F(CrontabCheck, FindsRemarksAndTwoMarks) {
    EXPECT_EQ(ExamineTime("# ntpdate sets the clock\n"
                          "##0 * * * * ntpdate 10.0.0.1 > /var/libvelk/ntp.log\n"),
              "problem: a set of ntp or ntp-server would change a comment\n"
              "  /var/cron/tabs/root:1: '# ntpdate sets the clock' is taken for an entry\n"
              "  fix: remove the word 'ntpdate' from the comment\n"
              "problem: ntp cannot be switched on\n"
              "  /var/cron/tabs/root:2: there are two '#' before the entry\n"
              "  switching on removes only one\n"
              "  fix: leave one '#', in the first column\n");
}

TEST_F(CrontabCheck, SaysNothingAboutAnUpdateAsTheLibraryWritesIt) {
    EXPECT_EQ(ExamineUpdate("30 01 * * 0 perl /usr/bin/web_contents_updater.pl\n"), "");
    EXPECT_EQ(ExamineUpdate("00 */6 * * * perl /usr/bin/web_contents_updater.pl"), "");
    EXPECT_EQ(ExamineUpdate("30 01 31 1,8 * perl /usr/bin/web_contents_updater.pl\n"
                            "30 01 1,31 3,5,7,10,12 * perl /usr/bin/web_contents_updater.pl\n"),
              "");
    EXPECT_EQ(ExamineUpdate("0 3 * * * true\n"), "");
}

TEST_F(CrontabCheck, FindsAnUpdateThatCannotBeRead) {
    EXPECT_EQ(ExamineUpdate("0 3 * 5 * perl /usr/bin/web_contents_updater.pl\n"),
              "problem: web-update cannot be read\n"
              "  /var/cron/tabs/root:1: the library does not write such a schedule\n"
              "  fix: set it again: velkctl set web-update SCHEDULE\n");
}

TEST_F(CrontabCheck, FindsAnUpdateThatIsReadWrongly) {
    for (const std::string line : {"#30 01 * * 0 perl /usr/bin/web_contents_updater.pl",
                                   "30  01 * * 0 perl /usr/bin/web_contents_updater.pl",
                                   "30 01 * * 0 perl /usr/bin/web_contents_updater.pl -v"}) {
        EXPECT_EQ(ExamineUpdate(line + "\n"),
                  "warning: web-update is read wrongly, and a set replaces the line\n"
                  "  /var/cron/tabs/root:1: '" +
                      line +
                      "' is not as the library writes it\n"
                      "  fix: set it again: velkctl set web-update SCHEDULE\n");
    }
}

}  // namespace
