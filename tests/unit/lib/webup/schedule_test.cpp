// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kCrontab;
using testkit::kCrontabCopy;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr char kUpdater[] = "05 3 * * * perl /usr/bin/web_contents_updater.pl\n";

// The data bytes of a schedule.
std::string Bytes(int type, int value, const std::string& time) {
    return std::string{static_cast<char>(type), static_cast<char>(value)} + time;
}

// The whole data area that begins with these bytes.
std::string Area(const std::string& bytes) {
    return bytes + std::string(VELK_DATA_SIZE - bytes.size(), '\0');
}

class ScheduleTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        rmdir(kCrontabCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    static int Set(const std::string& data) {
        return SetWebUp(MakeRequest(VELK_SET, VELK_CMD_WEB_UPDATE, "", data), nullptr);
    }
    // The data area after a get of a crontab with this text.
    std::string Got(std::string_view crontab, int result = 0) {
        WriteFile(kCrontab, crontab);
        EXPECT_EQ(Execute(VELK_GET, VELK_CMD_WEB_UPDATE, ""), result);
        return testkit::Data(response);
    }
    testkit::FakeShell shell;
};

// ---- every kind of schedule

struct Row {
    std::string name;
    std::string set;
    std::string lines;
    std::string got;
};

// Without this, a failing test would show the bytes of the record.
void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

class EverySchedule : public ScheduleTest, public testing::WithParamInterface<Row> {};

TEST_P(EverySchedule, IsWrittenAfterTheOtherLinesAndReadBack) {
    WriteFile(kCrontab, std::string("0 * * * * ntpdate x > y\n") + kUpdater + "#last");
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_WEB_UPDATE, "", GetParam().set), 0);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
    EXPECT_EQ(ReadFile(kCrontab), "0 * * * * ntpdate x > y\n#last\n" + GetParam().lines);
    EXPECT_FALSE(Exists(kCrontabCopy));
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_WEB_UPDATE, ""), 0);
    EXPECT_EQ(testkit::Data(response), Area(GetParam().got));
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_WEB_UPDATE, "", GetParam().set), 0);
    EXPECT_EQ(ReadFile(kCrontab), "0 * * * * ntpdate x > y\n#last\n" + GetParam().lines);
}

std::string NameOf(const testing::TestParamInfo<Row>& row) {
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Hours, EverySchedule,
    testing::Values(
        Row{"One", Bytes(1, 1, "08:30"), "00 */1 * * * perl /usr/bin/web_contents_updater.pl\n",
            Bytes(1, 1, "00:00")},
        Row{"Six", Bytes(1, 6, "0:0"), "00 */6 * * * perl /usr/bin/web_contents_updater.pl\n",
            Bytes(1, 6, "00:00")},
        Row{"TwentyThree", Bytes(1, 23, "00:00"),
            "00 */23 * * * perl /usr/bin/web_contents_updater.pl\n", Bytes(1, 23, "00:00")},
        Row{"None", Bytes(1, 0, "00:00"), "00 */0 * * * perl /usr/bin/web_contents_updater.pl\n",
            Bytes(1, 0, "00:00")},
        Row{"Most", Bytes(1, 255, "00:00"),
            "00 */255 * * * perl /usr/bin/web_contents_updater.pl\n", Bytes(1, 255, "00:00")}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Daily, EverySchedule,
    testing::Values(Row{"Padded", Bytes(2, 1, "08:30"),
                        "30 08 * * * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(2, 1, "08:30")},
                    Row{"AsGiven", Bytes(2, 1, "3:05"),
                        "05 3 * * * perl /usr/bin/web_contents_updater.pl\n", Bytes(2, 1, "3:05")},
                    Row{"OutOfRange", Bytes(2, 1, "99:0099"),
                        "0099 99 * * * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(2, 1, "99:0099")},
                    Row{"WithAnyValue", Bytes(2, 200, "1:2"),
                        "2 1 * * * perl /usr/bin/web_contents_updater.pl\n", Bytes(2, 1, "1:2")}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Weekly, EverySchedule,
    testing::Values(
        Row{"Sunday", Bytes(3, 1, "08:30"), "30 08 * * 0 perl /usr/bin/web_contents_updater.pl\n",
            Bytes(3, 1, "08:30")},
        Row{"Monday", Bytes(3, 2, "08:30"), "30 08 * * 1 perl /usr/bin/web_contents_updater.pl\n",
            Bytes(3, 2, "08:30")},
        Row{"Tuesday", Bytes(3, 3, "08:30"), "30 08 * * 2 perl /usr/bin/web_contents_updater.pl\n",
            Bytes(3, 3, "08:30")},
        Row{"Wednesday", Bytes(3, 4, "08:30"),
            "30 08 * * 3 perl /usr/bin/web_contents_updater.pl\n", Bytes(3, 4, "08:30")},
        Row{"Thursday", Bytes(3, 5, "08:30"), "30 08 * * 4 perl /usr/bin/web_contents_updater.pl\n",
            Bytes(3, 5, "08:30")},
        Row{"Friday", Bytes(3, 6, "08:30"), "30 08 * * 5 perl /usr/bin/web_contents_updater.pl\n",
            Bytes(3, 6, "08:30")},
        Row{"Saturday", Bytes(3, 7, "08:30"), "30 08 * * 6 perl /usr/bin/web_contents_updater.pl\n",
            Bytes(3, 7, "08:30")},
        Row{"BeforeSunday", Bytes(3, 0, "08:30"),
            "30 08 * * -1 perl /usr/bin/web_contents_updater.pl\n", Bytes(3, 0, "08:30")},
        Row{"FarOut", Bytes(3, 255, "08:30"),
            "30 08 * * 254 perl /usr/bin/web_contents_updater.pl\n", Bytes(3, 255, "08:30")}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Monthly, EverySchedule,
    testing::Values(Row{"First", Bytes(4, 1, "01:30"),
                        "30 01 1 * * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(4, 1, "01:30")},
                    Row{"TwentyEighth", Bytes(4, 28, "01:30"),
                        "30 01 28 * * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(4, 28, "01:30")},
                    Row{"TwentyNinth", Bytes(4, 29, "01:30"),
                        "30 01 29 1,4-12 * perl /usr/bin/web_contents_updater.pl\n"
                        "30 01 1,29 3 * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(4, 29, "01:30")},
                    Row{"Thirtieth", Bytes(4, 30, "01:30"),
                        "30 01 30 1,4-12 * perl /usr/bin/web_contents_updater.pl\n"
                        "30 01 1,30 3 * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(4, 30, "01:30")},
                    Row{"ThirtyFirst", Bytes(4, 31, "01:30"),
                        "30 01 31 1,8 * perl /usr/bin/web_contents_updater.pl\n"
                        "30 01 1,31 3,5,7,10,12 * perl /usr/bin/web_contents_updater.pl\n",
                        Bytes(4, 31, "01:30")}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    None, EverySchedule,
    testing::Values(Row{"WithItsValue", Bytes(99, 99, "00:00"), "", Bytes(99, 99, "00:00")},
                    Row{"WithAnyValue", Bytes(99, 1, "8:30"), "", Bytes(99, 99, "00:00")}),
    NameOf);

// Every day of the month up to the 28th takes one line.
TEST_F(ScheduleTest, MonthsWithoutGapsTakeOneLine) {
    for (int day = 1; day <= 28; ++day) {
        WriteFile(kCrontab, "");
        EXPECT_EQ(Set(Bytes(4, day, "7:5")), 0);
        EXPECT_EQ(ReadFile(kCrontab),
                  "5 7 " + std::to_string(day) + " * * perl /usr/bin/web_contents_updater.pl\n");
    }
}

// ---- reading lines from elsewhere

TEST_F(ScheduleTest, WithoutTheUpdaterThereIsNoSchedule) {
    EXPECT_EQ(Got(""), Area(Bytes(99, 99, "00:00")));
    EXPECT_EQ(Got("\n\n"), Area(Bytes(99, 99, "00:00")));
    EXPECT_EQ(Got("0 * * * * ntpdate x > y\nweb_contents_update\nWEB_CONTENTS_UPDATER\n"),
              Area(Bytes(99, 99, "00:00")));
}

TEST_F(ScheduleTest, TheFirstLineOfTheUpdaterCounts) {
    EXPECT_EQ(Got("true\n1 2 * * * web_contents_updater\n3 4 5 * * web_contents_updater\n"),
              Area(Bytes(2, 1, "2:1")));
    EXPECT_EQ(Got("3 4 5 * * /opt/web_contents_updater2 -x\n1 2 * * * web_contents_updater"),
              Area(Bytes(4, 5, "4:3")));
}

TEST_F(ScheduleTest, TextsOfTheTimeAreReturnedUnchanged) {
    EXPECT_EQ(Got("5 3 * * * web_contents_updater\n"), Area(Bytes(2, 1, "3:5")));
    EXPECT_EQ(Got("*/5 * * * * web_contents_updater\n"), Area(Bytes(2, 1, "*:*/5")));
    EXPECT_EQ(Got("0,30 8-17 * * * web_contents_updater\n"), Area(Bytes(2, 1, "8-17:0,30")));
    EXPECT_EQ(Got("0 1,*/2 * * * web_contents_updater\n"), Area(Bytes(2, 1, "1,*/2:0")));
}

TEST_F(ScheduleTest, AnHourWithAnIntervalComesBeforeTheOtherFields) {
    EXPECT_EQ(Got("15 */6 3 4 5 web_contents_updater\n"), Area(Bytes(1, 6, "00:00")));
    EXPECT_EQ(Got("15 */12-x * 4 * web_contents_updater\n"), Area(Bytes(1, 12, "00:00")));
    EXPECT_EQ(Got("15 */ * * * web_contents_updater\n"), Area(Bytes(1, 0, "00:00")));
    EXPECT_EQ(Got("15 */x * * * web_contents_updater\n"), Area(Bytes(1, 0, "00:00")));
    EXPECT_EQ(Got("15 */007 * * * web_contents_updater\n"), Area(Bytes(1, 7, "00:00")));
}

TEST_F(ScheduleTest, ANumberThatFillsMoreThanAByteIsCutToOne) {
    EXPECT_EQ(Got("0 */255 * * * web_contents_updater\n"), Area(Bytes(1, 255, "00:00")));
    EXPECT_EQ(Got("0 */256 * * * web_contents_updater\n"), Area(Bytes(1, 0, "00:00")));
    EXPECT_EQ(Got("0 */300 * * * web_contents_updater\n"), Area(Bytes(1, 44, "00:00")));
    EXPECT_EQ(Got("1 2 300 * * web_contents_updater\n"), Area(Bytes(4, 44, "2:1")));
    EXPECT_EQ(Got("1 2 * * 300 web_contents_updater\n"), Area(Bytes(3, 45, "2:1")));
}

TEST_F(ScheduleTest, ADayOfTheMonthComesBeforeMonthAndWeekday) {
    EXPECT_EQ(Got("1 2 15 6 3 web_contents_updater\n"), Area(Bytes(4, 15, "2:1")));
    EXPECT_EQ(Got("1 2 15,30 * * web_contents_updater\n"), Area(Bytes(4, 15, "2:1")));
    EXPECT_EQ(Got("1 2 1-7 * 1 web_contents_updater\n"), Area(Bytes(4, 1, "2:1")));
    EXPECT_EQ(Got("1 2 */2 * * web_contents_updater\n"), Area(Bytes(4, 0, "2:1")));
    EXPECT_EQ(Got("1 2 ** * * web_contents_updater\n"), Area(Bytes(4, 0, "2:1")));
    EXPECT_EQ(Got("1 2 0 * * web_contents_updater\n"), Area(Bytes(4, 0, "2:1")));
    EXPECT_EQ(Got("1 2 L * * web_contents_updater\n"), Area(Bytes(4, 0, "2:1")));
}

TEST_F(ScheduleTest, TheSecondLineOfAMonthAloneReadsAsTheFirst) {
    EXPECT_EQ(Got("30 01 1,31 3,5,7,10,12 * perl /usr/bin/web_contents_updater.pl\n"),
              Area(Bytes(4, 1, "01:30")));
}

TEST_F(ScheduleTest, AMonthWithoutADayIsAFailure) {
    const std::string line = "1 2 * 6 * web_contents_updater\n";
    EXPECT_EQ(Got(line, -1), std::string(512, '\0'));
    EXPECT_EQ(Got("1 2 * jan 3 web_contents_updater\n", -1), std::string(512, '\0'));
    EXPECT_EQ(Got("1 2 * */2 * web_contents_updater\n", -1), std::string(512, '\0'));
    EXPECT_EQ(Got(line + kUpdater, -1), std::string(512, '\0'));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ScheduleTest, WeekdaysAreCountedFromOne) {
    EXPECT_EQ(Got("1 2 * * 0 web_contents_updater\n"), Area(Bytes(3, 1, "2:1")));
    EXPECT_EQ(Got("1 2 * * 6 web_contents_updater\n"), Area(Bytes(3, 7, "2:1")));
    EXPECT_EQ(Got("1 2 * * 7 web_contents_updater\n"), Area(Bytes(3, 8, "2:1")));
    EXPECT_EQ(Got("1 2 * * -1 web_contents_updater\n"), Area(Bytes(3, 0, "2:1")));
    EXPECT_EQ(Got("1 2 * * 1-5 web_contents_updater\n"), Area(Bytes(3, 2, "2:1")));
    EXPECT_EQ(Got("1 2 * * mon web_contents_updater\n"), Area(Bytes(3, 1, "2:1")))
        << "a name has no number";
}

TEST_F(ScheduleTest, TheGreatestNumberOfAWeekdayIsCutLikeOthers) {
    EXPECT_EQ(Got("1 2 * * 2147483646 web_contents_updater\n"), Area(Bytes(3, 255, "2:1")));
    EXPECT_EQ(Got("1 2 * * 2147483647 web_contents_updater\n"), Area(Bytes(3, 0, "2:1")));
}

TEST_F(ScheduleTest, TwoBlanksHaveAnEmptyFieldBetweenThem) {
    EXPECT_EQ(Got("30  2 * * * web_contents_updater\n"), Area(Bytes(4, 2, ":30")));
    EXPECT_EQ(Got(" 30 2 * * * web_contents_updater\n"), Area(Bytes(4, 2, "30:")));
    EXPECT_EQ(Got("30 2  * * * web_contents_updater\n"), Area(Bytes(4, 0, "2:30")));
    EXPECT_EQ(Got("30 2 *  * * web_contents_updater\n", -1), std::string(512, '\0'));
    EXPECT_EQ(Got("30 2 * *  * web_contents_updater\n"), Area(Bytes(3, 1, "2:30")));
}

TEST_F(ScheduleTest, TabsSeparateNoFields) {
    EXPECT_EQ(Got("30\t2\t*\t*\t*\tperl web_contents_updater\n"),
              Area(Bytes(4, 0, "web_contents_updater:30\t2\t*\t*\t*\tperl")));
    EXPECT_EQ(Got("30 2 * * *\tperl web_contents_updater\n"), Area(Bytes(3, 1, "2:30")));
    EXPECT_EQ(Got("30\t2 * * * * web_contents_updater\n"), Area(Bytes(2, 1, "*:30\t2")));
}

TEST_F(ScheduleTest, ACommentedLineIsReadLikeAnother) {
    EXPECT_EQ(Got("#30 2 * * * perl web_contents_updater\n"), Area(Bytes(2, 1, "2:#30")));
    EXPECT_EQ(Got("# web_contents_updater\n"), Area(Bytes(4, 0, "web_contents_updater:#")));
}

TEST_F(ScheduleTest, FieldsThatALineLacksAreEmpty) {
    EXPECT_EQ(Got("web_contents_updater"), Area(Bytes(4, 0, ":web_contents_updater")));
    EXPECT_EQ(Got("1 web_contents_updater\n"), Area(Bytes(4, 0, "web_contents_updater:1")));
    EXPECT_EQ(Got("1 2 web_contents_updater\n"), Area(Bytes(4, 0, "2:1")));
    EXPECT_EQ(Got("1 2 * web_contents_updater\n", -1), std::string(512, '\0'));
    EXPECT_EQ(Got("1 2 * * web_contents_updater\n"), Area(Bytes(3, 1, "2:1")));
    EXPECT_EQ(Got("@daily web_contents_updater\n"),
              Area(Bytes(4, 0, "web_contents_updater:@daily")));
    EXPECT_EQ(Got("1 */2/web_contents_updater\n"), Area(Bytes(1, 2, "00:00")));
}

TEST_F(ScheduleTest, ACarriageReturnBelongsToItsField) {
    EXPECT_EQ(Got("1 2 * * web_contents_updater\r\n"), Area(Bytes(3, 1, "2:1")));
    EXPECT_EQ(Got("1 2\r * * * web_contents_updater\n"), Area(Bytes(2, 1, "2\r:1")));
}

TEST_F(ScheduleTest, ATimeIsCutToTheDataArea) {
    const std::string hour(400, '1');
    const std::string minute(400, '2');
    EXPECT_EQ(Got(minute + " " + hour + " * * * web_contents_updater\n"),
              Bytes(2, 1, hour + ":" + std::string(108, '2')) + '\0');
    WriteFile(kCrontab, minute + " " + hour + " 7 * * web_contents_updater\n");
    char out[VELK_DATA_SIZE + 8];
    std::fill(std::begin(out), std::end(out), '?');
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), out), 0);
    EXPECT_EQ(std::string(out, sizeof(out)),
              Bytes(4, 7, hour + ":" + std::string(108, '2')) + '\0' + "????????");
    EXPECT_EQ(Got("0 " + std::string(100000, '3') + " * * * web_contents_updater\n"),
              Bytes(2, 1, std::string(509, '3')) + '\0');
}

TEST_F(ScheduleTest, ATimeThatJustFitsIsWhole) {
    const std::string hour(254, '1');
    const std::string minute(254, '2');
    EXPECT_EQ(Got(minute + " " + hour + " * * * web_contents_updater\n"),
              Bytes(2, 1, hour + ":" + minute) + '\0');
}

TEST_F(ScheduleTest, EighteenBytesAreClearedAndTheRestStays) {
    char out[VELK_DATA_SIZE];
    std::fill(std::begin(out), std::end(out), '?');
    WriteFile(kCrontab, kUpdater);
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), out), 0);
    EXPECT_EQ(std::string(out, sizeof(out)),
              Bytes(2, 1, "3:05") + std::string(12, '\0') + std::string(494, '?'));
    std::fill(std::begin(out), std::end(out), '?');
    WriteFile(kCrontab, "1 2 * 6 * web_contents_updater\n");
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), out), -1);
    EXPECT_EQ(std::string(out, sizeof(out)), std::string(18, '\0') + std::string(494, '?'));
}

TEST_F(ScheduleTest, ALongTimeIsWrittenWithItsNulAndNoMore) {
    char out[VELK_DATA_SIZE];
    std::fill(std::begin(out), std::end(out), '?');
    WriteFile(kCrontab, "0 12345678901234567890 * * * web_contents_updater\n");
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), out), 0);
    EXPECT_EQ(std::string(out, sizeof(out)),
              Bytes(2, 1, "12345678901234567890:0") + '\0' + std::string(487, '?'));
}

TEST_F(ScheduleTest, AMissingCrontabIsAFailureThatWritesNothing) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(ScheduleTest, ANullOutputIsRefused) {
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), nullptr), -4);
    WriteFile(kCrontab, kUpdater);
    EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), nullptr), -4);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(ScheduleTest, AGetReadsTheCrontabOnceAndRunsNothing) {
    EXPECT_EQ(Got(kUpdater), Area(Bytes(2, 1, "3:05")));
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kCrontab));
    EXPECT_THAT(libc().Events(Call::kRead), SizeIs(1));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

// ---- setting

class RefusedSchedule : public ScheduleTest, public testing::WithParamInterface<std::string> {};

TEST_P(RefusedSchedule, LeavesTheCrontabAndMakesNoCopy) {
    WriteFile(kCrontab, std::string("x\n") + kUpdater + "unended");
    EXPECT_EQ(Set(GetParam()), -1);
    EXPECT_EQ(ReadFile(kCrontab), std::string("x\n") + kUpdater + "unended");
    EXPECT_FALSE(Exists(kCrontabCopy));
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Story(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Time, RefusedSchedule,
    testing::Values(Bytes(2, 1, ""), Bytes(2, 1, ":"), Bytes(2, 1, "12"), Bytes(2, 1, "12:"),
                    Bytes(2, 1, ":30"), Bytes(2, 1, "12:3a"), Bytes(2, 1, "1x:30"),
                    Bytes(2, 1, " 1:30"), Bytes(2, 1, "1 :30"), Bytes(2, 1, "1: 30"),
                    Bytes(2, 1, "1:30 "), Bytes(2, 1, "1:30\n"), Bytes(2, 1, "-1:30"),
                    Bytes(2, 1, "+1:30"), Bytes(2, 1, "1:+30"), Bytes(2, 1, "1:30:00"),
                    Bytes(2, 1, "1::30"), Bytes(2, 1, "*:30"), Bytes(2, 1, "1.5:30"),
                    Bytes(2, 1, "\xd9\xa1:30"), Bytes(2, 1, std::string("1\0:30", 5)),
                    Bytes(2, 1, std::string(510, '1')), Bytes(2, 1, std::string(509, '1') + ":")));

std::vector<std::string> TimesWithAStrangeByte() {
    std::vector<std::string> schedules;
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        if (c != ':' && (c < '0' || c > '9')) {
            schedules.push_back(Bytes(2, 1, std::string("1") + c + ":30"));
        }
    }
    return schedules;
}
INSTANTIATE_TEST_SUITE_P(TimeWithAStrangeByte, RefusedSchedule,
                         testing::ValuesIn(TimesWithAStrangeByte()));

INSTANTIATE_TEST_SUITE_P(TimeOfATypeThatDoesNotUseIt, RefusedSchedule,
                         testing::Values(Bytes(1, 6, ""), Bytes(1, 6, "x:y"), Bytes(99, 99, ""),
                                         Bytes(99, 99, "12:3a"), Bytes(99, 99, "-:-")));

INSTANTIATE_TEST_SUITE_P(Type, RefusedSchedule,
                         testing::Values(Bytes(0, 1, "08:30"), Bytes(5, 1, "08:30"),
                                         Bytes('1', 1, "08:30"), Bytes(98, 99, "08:30"),
                                         Bytes(100, 99, "08:30"), Bytes(128, 1, "08:30"),
                                         Bytes(255, 1, "08:30"), std::string()));

INSTANTIATE_TEST_SUITE_P(DayOfTheMonth, RefusedSchedule,
                         testing::Values(Bytes(4, 0, "08:30"), Bytes(4, 32, "08:30"),
                                         Bytes(4, 128, "08:30"), Bytes(4, 255, "08:30")));

TEST_F(ScheduleTest, ARefusalComesBeforeAMissingCrontab) {
    EXPECT_EQ(Set(Bytes(2, 1, "12:3a")), -1);
    EXPECT_FALSE(Exists(kCrontabCopy));
    EXPECT_EQ(Set(Bytes(2, 1, "12:30")), -1);
    EXPECT_EQ(ReadFile(kCrontabCopy), "");
    EXPECT_FALSE(Exists(kCrontab));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(ScheduleTest, ACopyThatCannotBeOpenedIsAFailure) {
    ASSERT_EQ(mkdir(kCrontabCopy, 0700), 0);
    WriteFile(kCrontab, kUpdater);
    EXPECT_EQ(Set(Bytes(99, 99, "0:0")), -1);
    EXPECT_EQ(ReadFile(kCrontab), kUpdater);
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(ScheduleTest, ACopyThatCannotBeWrittenIsAFailure) {
    WriteFile(kCrontab, kUpdater);
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(Set(Bytes(2, 1, "0:0")), -1);
    EXPECT_EQ(ReadFile(kCrontab), kUpdater);
    EXPECT_FALSE(Exists(kCrontabCopy));
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
}

TEST_F(ScheduleTest, TheCopyIsPutInPlaceByTheShell) {
    WriteFile(kCrontab, "");
    EXPECT_EQ(Set(Bytes(2, 1, "3:05")), 0);
    EXPECT_THAT(libc().Story(), ElementsAre("system cat /var/tmp/root > /var/cron/tabs/root",
                                            "system rm /var/tmp/root"));
    EXPECT_EQ(ReadFile(kCrontab), kUpdater);
}

TEST_F(ScheduleTest, AFailedShellIsNotReported) {
    WriteFile(kCrontab, "x\n");
    libc().ScriptAlways(Call::kSystem, Fail(ENOMEM));
    EXPECT_EQ(Set(Bytes(2, 1, "3:05")), 0);
}

TEST_F(ScheduleTest, EveryLineOfTheUpdaterIsReplaced) {
    WriteFile(kCrontab,
              "#web_contents_updater\na\nxweb_contents_updaterx\n\nb\nweb_contents_updater");
    EXPECT_EQ(Set(Bytes(2, 1, "3:05")), 0);
    EXPECT_EQ(ReadFile(kCrontab), std::string("a\n\nb\n") + kUpdater);
}

TEST_F(ScheduleTest, ATimeMayFillTheDataAreaToItsLastByte) {
    const std::string hour(254, '1');
    const std::string minute(255, '2');
    _velk_request request =
        MakeRequest(VELK_SET, VELK_CMD_WEB_UPDATE, "", Bytes(2, 1, hour + ":" + minute));
    ASSERT_EQ(request.data[VELK_DATA_SIZE - 1], '2') << "there is no NUL";
    WriteFile(kCrontab, "");
    EXPECT_EQ(Execute(request), 0);
    EXPECT_EQ(ReadFile(kCrontab),
              minute + " " + hour + " * * * perl /usr/bin/web_contents_updater.pl\n");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_WEB_UPDATE, ""), 0);
    EXPECT_EQ(testkit::Data(response), Bytes(2, 1, hour + ":" + std::string(254, '2')) + '\0');
}

TEST_F(ScheduleTest, TheInterfaceIsIgnored) {
    WriteFile(kCrontab, kUpdater);
    for (const char* interface : {"eth0", "eth1"}) {
        EXPECT_EQ(Execute(VELK_GET, VELK_CMD_WEB_UPDATE, interface), -4);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_WEB_UPDATE, interface, Bytes(99, 99, "0:0")), -4);
    }
    EXPECT_EQ(ReadFile(kCrontab), kUpdater);
}

}  // namespace
