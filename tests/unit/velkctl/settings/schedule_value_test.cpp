// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/schedule_value.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/words.h"
#include "velkctl/settings/kinds_of_settings.h"

namespace {

using testkit::Words;
using velkctl::Data;
using velkctl::kSchedule;
using velkctl::Parsed;

constexpr char kGive[] = "give every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off";

Data DataOf(int type, int value, const std::string& time) {
    Data data{};
    data[0] = static_cast<char>(type);
    data[1] = static_cast<char>(value);
    std::copy(time.begin(), time.end(), data.begin() + 2);
    return data;
}

Words Split(const std::string& text) {
    Words words;
    std::istringstream in(text);
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

std::string TwoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

struct ScheduleText {
    std::string text;
    int type;
    int value;
    std::string time;
};

// Without this, a failing test would show the bytes of the record.
void PrintTo(const ScheduleText& spelling, std::ostream* out) {
    *out << spelling.text;
}

class ScheduleSpelling : public testing::TestWithParam<ScheduleText> {};

TEST_P(ScheduleSpelling, IsParsedToItsBytesAndPrintedAgain) {
    const Data data = DataOf(GetParam().type, GetParam().value, GetParam().time);
    const Parsed parsed = kSchedule.Parse(Split(GetParam().text));
    EXPECT_EQ(parsed.problem, "");
    EXPECT_EQ(parsed.data, data);
    EXPECT_EQ(kSchedule.Print(data), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(ScheduleKind, ScheduleSpelling,
                         testing::Values(ScheduleText{"every 1h", 1, 1, "00:00"},
                                         ScheduleText{"every 6h", 1, 6, "00:00"},
                                         ScheduleText{"every 23h", 1, 23, "00:00"},
                                         ScheduleText{"daily 00:00", 2, 1, "00:00"},
                                         ScheduleText{"daily 08:30", 2, 1, "08:30"},
                                         ScheduleText{"daily 23:59", 2, 1, "23:59"},
                                         ScheduleText{"weekly sunday 08:30", 3, 1, "08:30"},
                                         ScheduleText{"weekly monday 08:30", 3, 2, "08:30"},
                                         ScheduleText{"weekly tuesday 08:30", 3, 3, "08:30"},
                                         ScheduleText{"weekly wednesday 08:30", 3, 4, "08:30"},
                                         ScheduleText{"weekly thursday 08:30", 3, 5, "08:30"},
                                         ScheduleText{"weekly friday 08:30", 3, 6, "08:30"},
                                         ScheduleText{"weekly saturday 08:30", 3, 7, "08:30"},
                                         ScheduleText{"monthly 1 08:30", 4, 1, "08:30"},
                                         ScheduleText{"monthly 31 08:30", 4, 31, "08:30"},
                                         ScheduleText{"off", 99, 99, "00:00"}));

TEST(ScheduleKindParse, AnHourMayHaveOneDigit) {
    EXPECT_EQ(kSchedule.Parse(Words{"daily", "8:05"}).data, DataOf(2, 1, "08:05"));
    EXPECT_EQ(kSchedule.Parse(Words{"daily", "0:00"}).data, DataOf(2, 1, "00:00"));
    EXPECT_EQ(kSchedule.Parse(Words{"weekly", "friday", "9:59"}).data, DataOf(3, 6, "09:59"));
    EXPECT_EQ(kSchedule.Parse(Words{"monthly", "15", "7:00"}).data, DataOf(4, 15, "07:00"));
}

TEST(ScheduleKindParse, NeedsAValue) {
    EXPECT_EQ(kSchedule.Parse(Words{}).problem, "no value given; " + std::string(kGive));
}

TEST(ScheduleKindParse, TakesAScheduleInQuotesToo) {
    EXPECT_EQ(kSchedule.Parse(Words{"daily 08:30"}).data, DataOf(2, 1, "08:30"));
    EXPECT_EQ(kSchedule.Parse(Words{"weekly sunday", "08:30"}).data, DataOf(3, 1, "08:30"));
    EXPECT_FALSE(kSchedule.Parse(Words{"daily  08:30"}).ok());
    EXPECT_FALSE(kSchedule.Parse(Words{"off "}).ok());
}

TEST(ScheduleKindParse, SuggestsACorrectionOfAMisspeltWord) {
    EXPECT_EQ(kSchedule.Parse(Words{"weekly", "sun", "08:30"}).problem,
              "'weekly sun 08:30' is not a schedule; did you mean sunday?");
    EXPECT_EQ(kSchedule.Parse(Words{"Daily", "08:30"}).problem,
              "'Daily 08:30' is not a schedule; did you mean daily?");
}

TEST(ScheduleKindParse, RepeatsTheTextThatIsNoSchedule) {
    EXPECT_EQ(kSchedule.Parse(Words{"hourly"}).problem,
              "'hourly' is not a schedule; " + std::string(kGive));
    EXPECT_EQ(kSchedule.Parse(Words{"weekly", "7", "08:30"}).problem,
              "'weekly 7 08:30' is not a schedule; " + std::string(kGive));
    EXPECT_EQ(kSchedule.Parse(Words{"daily", "\x1b\n"}).problem,
              "'daily \\x1b\\x0a' is not a schedule; " + std::string(kGive));
    for (const std::string word : {"none", "never"}) {
        EXPECT_EQ(kSchedule.Parse(Words{word}).problem,
                  "'" + word + "' is not a schedule; did you mean off?");
    }
    EXPECT_EQ(kSchedule.Parse(Words{""}).problem, "'' is not a schedule; " + std::string(kGive));
}

TEST(ScheduleKindParse, RefusesMissingAndExtraWords) {
    for (const Words& words : {Words{"every"},
                               Words{"daily"},
                               Words{"weekly"},
                               Words{"monthly"},
                               Words{"weekly", "sunday"},
                               Words{"monthly", "31"},
                               Words{"weekly", "08:30"},
                               Words{"off", "off"},
                               Words{"off", ""},
                               Words{"every", "6h", "00:00"},
                               Words{"daily", "08:30", "08:30"},
                               Words{"weekly", "sunday", "08:30", "x"},
                               Words{"monthly", "31", "08:30", ""},
                               Words{"", "6h"},
                               Words{"weekly", "08:30", "sunday"},
                               Words{"monthly", "08:30", "31"},
                               Words{"monthly", "sunday", "08:30"},
                               Words{"weekly", "1", "08:30"},
                               Words{"yearly", "1", "08:30"},
                               Words{"none"},
                               Words{"99"},
                               Words{"6h"},
                               Words{"08:30"}}) {
        EXPECT_FALSE(kSchedule.Parse(words).ok());
        EXPECT_EQ(kSchedule.Parse(words).data, Data{});
    }
}

TEST(ScheduleKindParse, NamesAreInLowerCaseAndWhole) {
    for (const Words& words :
         {Words{"Off"}, Words{"OFF"}, Words{"off "}, Words{"Every", "6h"}, Words{"every", "6H"},
          Words{"DAILY", "08:30"}, Words{"weekly", "Sunday", "08:30"},
          Words{"weekly", "sun", "08:30"}, Words{"weekly", "sundays", "08:30"},
          Words{"weekly", "", "08:30"}, Words{"Monthly", "1", "08:30"}}) {
        EXPECT_FALSE(kSchedule.Parse(words).ok()) << words[0];
    }
}

TEST(ScheduleKindParse, HoursAreOneToTwentyThree) {
    for (const char* word : {"0h", "24h", "-1h", "+1h", "h", "", "6", "6 h", " 6h", "6hh", "6.5h",
                             "0x6h", "h6", "99999999999h", "--6h", "6h "}) {
        EXPECT_FALSE(kSchedule.Parse(Words{"every", word}).ok()) << word;
        EXPECT_EQ(kSchedule.Parse(Words{"every", word}).data, Data{}) << word;
    }
}

TEST(ScheduleKindParse, DaysOfTheMonthAreOneToThirtyOne) {
    for (const char* word :
         {"0", "32", "-1", "+1", "", " 1", "1 ", "1.", "1st", "0x1", "287", "4294967297"}) {
        EXPECT_FALSE(kSchedule.Parse(Words{"monthly", word, "08:30"}).ok()) << word;
    }
}

TEST(ScheduleKindParse, TimesAreThoseOfTheDay) {
    for (const char* word : {"24:00",  "23:60",       "0830",     "8",      "8:5",    ":30",
                             "08:",    ":",           "",         "008:30", "08:030", "-8:30",
                             "08:-1",  "+8:30",       "08:+1",    " 8:30",  "08:30 ", "8 :30",
                             "8:3x",   "x:30",        "08:30:00", "8:05:",  "8::05",  "08.30",
                             "8:30pm", "08:\xd9\xa1", "99:99"}) {
        EXPECT_FALSE(kSchedule.Parse(Words{"daily", word}).ok()) << word;
        EXPECT_FALSE(kSchedule.Parse(Words{"weekly", "sunday", word}).ok()) << word;
        EXPECT_FALSE(kSchedule.Parse(Words{"monthly", "1", word}).ok()) << word;
    }
    EXPECT_FALSE(kSchedule.Parse(Words{"daily", std::string("8\0:30", 5)}).ok());
}

TEST(ScheduleKindPrint, AnIntervalAndNoneHaveNoTime) {
    EXPECT_EQ(kSchedule.Print(DataOf(1, 6, "12:34")), "every 6h");
    EXPECT_EQ(kSchedule.Print(DataOf(99, 1, "12:34")), "off");
}

TEST(ScheduleKindPrint, TheValueOfTheDeviceIsShownUnchanged) {
    EXPECT_EQ(kSchedule.Print(DataOf(1, 0, "")), "every 0h");
    EXPECT_EQ(kSchedule.Print(DataOf(1, 255, "")), "every 255h");
    EXPECT_EQ(kSchedule.Print(DataOf(2, 7, "3:5")), "daily 3:5");
    EXPECT_EQ(kSchedule.Print(DataOf(2, 1, "*:*/5")), "daily *:*/5");
    EXPECT_EQ(kSchedule.Print(DataOf(3, 0, "08:30")), "weekly 0 08:30");
    EXPECT_EQ(kSchedule.Print(DataOf(3, 8, "08:30")), "weekly 8 08:30");
    EXPECT_EQ(kSchedule.Print(DataOf(3, 255, "08:30")), "weekly 255 08:30");
    EXPECT_EQ(kSchedule.Print(DataOf(4, 0, "08:30")), "monthly 0 08:30");
    EXPECT_EQ(kSchedule.Print(DataOf(4, 200, "08:30")), "monthly 200 08:30");
}

TEST(ScheduleKindPrint, AnUnknownTypeIsItsNumbers) {
    EXPECT_EQ(kSchedule.Print(DataOf(0, 0, "")), "schedule 0 0");
    EXPECT_EQ(kSchedule.Print(DataOf(5, 6, "08:30")), "schedule 5 6 08:30");
    EXPECT_EQ(kSchedule.Print(DataOf(255, 255, "x")), "schedule 255 255 x");
}

TEST(ScheduleKindPrint, ATimeIsSafeForATerminal) {
    EXPECT_EQ(kSchedule.Print(DataOf(2, 1, "\x1b[31m:\n\xff")), "daily \\x1b[31m:\\x0a\\xff");
    EXPECT_EQ(kSchedule.Print(DataOf(2, 1, std::string("8:3\0x", 5))), "daily 8:3");
    EXPECT_EQ(kSchedule.Print(DataOf(2, 1, std::string(510, '1'))),
              "daily " + std::string(510, '1'));
}

// ---- every value there is

void ExpectRoundTrip(const Data& data) {
    const Parsed parsed = kSchedule.Parse(Split(kSchedule.Print(data)));
    EXPECT_EQ(parsed.problem, "");
    EXPECT_EQ(parsed.data, data) << kSchedule.Print(data);
}

TEST(ScheduleKind, EveryScheduleThatIsPrintedIsParsedToTheSameBytes) {
    for (int hours = 1; hours <= 23; ++hours) {
        ExpectRoundTrip(DataOf(1, hours, "00:00"));
    }
    for (int minute = 0; minute < 24 * 60; ++minute) {
        const std::string time = TwoDigits(minute / 60) + ":" + TwoDigits(minute % 60);
        ExpectRoundTrip(DataOf(2, 1, time));
        ExpectRoundTrip(DataOf(3, 1 + minute % 7, time));
        ExpectRoundTrip(DataOf(4, 1 + minute % 31, time));
    }
    for (int day = 1; day <= 31; ++day) {
        ExpectRoundTrip(DataOf(3, 1 + day % 7, "23:59"));
        ExpectRoundTrip(DataOf(4, day, "00:00"));
    }
    ExpectRoundTrip(DataOf(99, 99, "00:00"));
}

}  // namespace
