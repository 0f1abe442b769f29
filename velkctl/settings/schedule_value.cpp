// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// schedule_value.cpp - values that are a schedule: hourly, daily, weekly or monthly.
#include "velkctl/settings/schedule_value.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

constexpr std::string_view kWanted =
    "every 6h, daily 08:30, weekly sunday 08:30, monthly 31 08:30 or off";
constexpr std::string_view kRaw = "schedule";    // a schedule of an unknown type
constexpr std::string_view kMidnight = "00:00";  // for schedules without a time of their own

constexpr std::string_view kEvery = "every";
constexpr std::string_view kDaily = "daily";
constexpr std::string_view kWeekly = "weekly";
constexpr std::string_view kMonthly = "monthly";
constexpr std::array kForms{kEvery, kDaily, kWeekly, kMonthly, kOff};
constexpr std::array<std::string_view, 7> kWeekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                    "thursday", "friday", "saturday"};

struct Schedule {
    int type;
    int value;
    std::string time;
};

// Returns "08:05", also for "8:05".
std::optional<std::string> ParseTime(std::string_view text) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos || text.size() > kMidnight.size()) {
        return std::nullopt;
    }
    const std::string_view minute = text.substr(colon + 1);
    const std::optional<int> hours = ParseNumber<uint8_t>(text.substr(0, colon), 0, 23);
    const std::optional<int> minutes = ParseNumber<uint8_t>(minute, 0, 59);
    if (!hours || !minutes || minute.size() != 2) {
        return std::nullopt;
    }
    return std::string(*hours < 10 ? "0" : "") + std::to_string(*hours) + ":" + std::string(minute);
}

std::optional<Schedule> ParseEvery(std::string_view period) {
    if (!period.ends_with('h')) {
        return std::nullopt;
    }
    period.remove_suffix(1);
    const std::optional<int> hours = ParseNumber<uint8_t>(period, 1, 23);
    return hours ? std::optional(Schedule{VELK_SCHEDULE_HOURS, *hours, std::string(kMidnight)})
                 : std::nullopt;
}

std::optional<int> ParseWeekday(std::string_view word) {
    const auto* found = std::ranges::find(kWeekdays, word);
    return found == kWeekdays.end()
               ? std::nullopt
               : std::optional(static_cast<int>(found - kWeekdays.begin()) + 1);
}

// Returns a schedule with a day and a time; nothing if one of them is missing.
std::optional<Schedule> OnDay(int type, std::optional<int> day, const std::string& time_word) {
    const std::optional<std::string> time = ParseTime(time_word);
    return day && time ? std::optional(Schedule{type, *day, *time}) : std::nullopt;
}

std::optional<Schedule> ParseSchedule(std::span<const std::string> words) {
    if (words.size() == 1 && words[0] == kOff) {
        return Schedule{VELK_SCHEDULE_NONE, VELK_SCHEDULE_NONE, std::string(kMidnight)};
    }
    if (words.size() == 2 && words[0] == kEvery) {
        return ParseEvery(words[1]);
    }
    if (words.size() == 2 && words[0] == kDaily) {
        return OnDay(VELK_SCHEDULE_DAILY, 1, words[1]);
    }
    if (words.size() == 3 && words[0] == kWeekly) {
        return OnDay(VELK_SCHEDULE_WEEKLY, ParseWeekday(words[1]), words[2]);
    }
    if (words.size() == 3 && words[0] == kMonthly) {
        return OnDay(VELK_SCHEDULE_MONTHLY, ParseNumber<uint8_t>(words[1], 1, 31), words[2]);
    }
    return std::nullopt;
}

std::vector<std::string> ToStrings(std::span<const std::string_view> words) {
    return {words.begin(), words.end()};
}

// Returns the end of a message about words that are no schedule: the words that may be meant.
std::string Guess(std::span<const std::string> words) {
    const std::string give = "give " + std::string(kWanted);
    if (words[0] == kWeekly && words.size() > 1) {
        return DidYouMean(words[1], ToStrings(kWeekdays), give);
    }
    return std::ranges::find(kForms, words[0]) == kForms.end()
               ? DidYouMean(words[0], ToStrings(kForms), give)
               : "; " + give;
}

Parsed InData(const Schedule& schedule) {
    Parsed parsed;
    parsed.data[VELK_SCHEDULE_TYPE_OFFSET] = static_cast<char>(schedule.type);
    parsed.data[VELK_SCHEDULE_VALUE_OFFSET] = static_cast<char>(schedule.value);
    (void)schedule.time.copy(&parsed.data[VELK_SCHEDULE_TIME_OFFSET], schedule.time.size());
    return parsed;
}

std::string WeekdayName(int number) {
    const bool is_known = number >= 1 && number <= static_cast<int>(kWeekdays.size());
    return is_known ? std::string(kWeekdays[static_cast<size_t>(number - 1)])
                    : std::to_string(number);
}

// Returns the time after a blank; empty if none.
std::string TimeOf(const Data& data) {
    const char* text = &data[VELK_SCHEDULE_TIME_OFFSET];
    const std::string_view time(text, strnlen(text, data.size() - VELK_SCHEDULE_TIME_OFFSET));
    return time.empty() ? std::string() : std::string(" ").append(PrintableValue(time));
}

std::string JoinedByBlanks(std::span<const std::string> words) {
    std::string text;
    for (const std::string& word : words) {
        text.append(text.empty() ? "" : " ").append(word);
    }
    return text;
}

// A schedule in quotes is one word of the command line.
std::vector<std::string> SplitAtBlanks(std::span<const std::string> words) {
    const std::string text = JoinedByBlanks(words);
    std::vector<std::string> split;
    size_t begin = 0;
    for (size_t blank = 0; (blank = text.find(' ', begin)) != std::string::npos;
         begin = blank + 1) {
        split.push_back(text.substr(begin, blank - begin));
    }
    split.push_back(text.substr(begin));
    return split;
}

}  // namespace

std::string ScheduleKind::Wanted() const {
    return std::string(kWanted);
}

Parsed ScheduleKind::Parse(std::span<const std::string> words) const {
    if (words.empty()) {
        return Unparsable(OneWordProblem(words));
    }
    const std::vector<std::string> split = SplitAtBlanks(words);
    const std::optional<Schedule> schedule = ParseSchedule(split);
    if (!schedule) {
        return Unparsable(Quoted(JoinedByBlanks(words)) + " is not a schedule" + Guess(split));
    }
    return InData(*schedule);
}

Parsed ScheduleKind::Force(std::span<const std::string> words) const {
    if (words.size() != 4 || words[0] != kRaw ||
        words[3].size() > VELK_DATA_SIZE - VELK_SCHEDULE_TIME_OFFSET) {
        return Parse(words);
    }
    const std::optional<int> type = ParseNumber<uint8_t>(words[1], 0, 255);
    const std::optional<int> value = ParseNumber<uint8_t>(words[2], 0, 255);
    return type && value ? InData({*type, *value, words[3]}) : Parse(words);
}

std::vector<std::string> ScheduleKind::Values() const {
    std::vector<std::string> values{std::string(kOff), std::string(kEvery), std::string(kDaily)};
    for (const std::string_view weekday : kWeekdays) {
        values.push_back(std::string(kWeekly) + " " + std::string(weekday));
    }
    values.emplace_back(kMonthly);
    return values;
}

std::vector<Meaning> ScheduleKind::Meanings() const {
    return {{kEvery, "1h to 23h"},
            {kMonthly, "day 1 to 31; a month without it has the update on day 1 of the next"}};
}

std::string ScheduleKind::Print(const Data& data) const {
    const int type = static_cast<unsigned char>(data[VELK_SCHEDULE_TYPE_OFFSET]);
    const int value = static_cast<unsigned char>(data[VELK_SCHEDULE_VALUE_OFFSET]);
    const std::string time = TimeOf(data);
    switch (type) {
        case VELK_SCHEDULE_HOURS:
            return "every " + std::to_string(value) + "h";
        case VELK_SCHEDULE_DAILY:
            return "daily" + time;
        case VELK_SCHEDULE_WEEKLY:
            return "weekly " + WeekdayName(value) + time;
        case VELK_SCHEDULE_MONTHLY:
            return "monthly " + std::to_string(value) + time;
        case VELK_SCHEDULE_NONE:
            return std::string(kOff);
        default:
            return std::string(kRaw) + " " + std::to_string(type) + " " + std::to_string(value) +
                   time;
    }
}

}  // namespace velkctl
