// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// schedule.cpp - when the web contents updater runs: its lines in the crontab.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "lib/base/data_area.h"
#include "lib/base/file_edit.h"
#include "lib/base/join_text.h"
#include "lib/base/line_reader.h"
#include "lib/base/numbers.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/request.h"
#include "velk/webup.h"

namespace velk {
namespace {

constexpr char kUpdater[] = "web_contents_updater";
constexpr auto kCommand = JoinText("perl ", kWebUpdater);
constexpr char kAny[] = "*";
constexpr char kEvery[] = "*/";

constexpr size_t kTimeOffset = VELK_SCHEDULE_TIME_OFFSET;
constexpr size_t kClearedSize = 18;  // cleared even if the get fails

struct Time {
    std::string_view hour, minute;
};

struct Schedule {
    uint8_t type;
    uint8_t value;
    Time time;
};

// The five fields before a crontab line's command.
struct CronFields {
    std::string_view minute, hour, day, month, weekday;
};

// Takes the next field off the front; fields are separated by single blanks.
std::string_view TakeField(std::string_view& line) {
    const std::string_view field = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
}

CronFields SplitFields(std::string_view line) {
    CronFields fields;
    fields.minute = TakeField(line);
    fields.hour = TakeField(line);
    fields.day = TakeField(line);
    fields.month = TakeField(line);
    fields.weekday = TakeField(line);
    return fields;
}

// Returns the number at the start of a field, cut to the data byte; 0 if there is none.
uint8_t LeadingByte(std::string_view field) {
    return static_cast<uint8_t>(ParseLeadingNumber<int>(field).value_or(0));
}

// Returns no value for a line that this library does not write.
std::optional<Schedule> ScheduleOf(const CronFields& fields) {
    if (fields.hour.starts_with(kEvery)) {
        return Schedule{
            VELK_SCHEDULE_HOURS, LeadingByte(fields.hour.substr(strlen(kEvery))), {"00", "00"}};
    }
    const Time time{fields.hour, fields.minute};
    if (fields.day != kAny) {
        return Schedule{VELK_SCHEDULE_MONTHLY, LeadingByte(fields.day), time};
    }
    if (fields.month != kAny) {
        return std::nullopt;
    }
    if (fields.weekday != kAny) {
        const auto weekday = static_cast<uint8_t>(LeadingByte(fields.weekday) + 1);
        return Schedule{VELK_SCHEDULE_WEEKLY, weekday, time};
    }
    return Schedule{VELK_SCHEDULE_DAILY, 1, time};
}

// Returns the schedule in the first line of the updater. Its time is a part of that line.
std::optional<Schedule> ReadSchedule(LineReader& crontab) {
    for (std::string_view line; crontab.ReadLine(line);) {
        if (Contains(line, kUpdater)) {
            return ScheduleOf(SplitFields(line));
        }
    }
    return Schedule{VELK_SCHEDULE_NONE, VELK_SCHEDULE_NONE, {"00", "00"}};
}

void PutSchedule(char* out, const Schedule& schedule) {
    out[VELK_SCHEDULE_TYPE_OFFSET] = static_cast<char>(schedule.type);
    out[VELK_SCHEDULE_VALUE_OFFSET] = static_cast<char>(schedule.value);
    const std::string time =
        std::string(schedule.time.hour).append(":").append(schedule.time.minute);
    const size_t length = time.copy(out + kTimeOffset, VELK_DATA_SIZE - kTimeOffset - 1);
    out[kTimeOffset + length] = '\0';
}

bool IsNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Returns no value if the text is not two numbers separated by a colon. Ranges are not checked.
std::optional<Time> ParseTime(std::string_view text) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const Time time{text.substr(0, colon), text.substr(colon + 1)};
    if (!IsNumber(time.hour) || !IsNumber(time.minute)) {
        return std::nullopt;
    }
    return time;
}

// std::to_string() would bring half a kilobyte of code and tables.
std::string NumberText(int number) {
    char text[sizeof("-2147483648")];
    (void)snprintf(text, sizeof(text), "%d", number);
    return text;
}

void AddLine(std::string& lines, const CronFields& fields) {
    for (const std::string_view field :
         {fields.minute, fields.hour, fields.day, fields.month, fields.weekday}) {
        lines.append(field).append(" ");
    }
    lines.append(kCommand).append("\n");
}

// If a month lacks the day, the updater runs on the first day of the next month instead. The second
// line holds the months after such a month.
void AddMonthlyLines(std::string& lines, int day, const Time& time) {
    const std::string number = NumberText(day);
    if (day <= 28) {
        AddLine(lines, {time.minute, time.hour, number, kAny, kAny});
        return;
    }
    const std::string first_and_day = "1," + number;
    const bool is_31 = day == 31;
    AddLine(lines, {time.minute, time.hour, number, is_31 ? "1,8" : "1,4-12", kAny});
    AddLine(lines, {time.minute, time.hour, first_and_day, is_31 ? "3,5,7,10,12" : "3", kAny});
}

// Adds the crontab's lines for a schedule. Returns false if the schedule is not valid.
bool AddLinesFor(std::string& lines, int type, int value, const Time& time) {
    switch (type) {
        case VELK_SCHEDULE_HOURS:
            AddLine(lines, {"00", kEvery + NumberText(value), kAny, kAny, kAny});
            return true;
        case VELK_SCHEDULE_DAILY:
            AddLine(lines, {time.minute, time.hour, kAny, kAny, kAny});
            return true;
        case VELK_SCHEDULE_WEEKLY:
            AddLine(lines, {time.minute, time.hour, kAny, kAny, NumberText(value - 1)});
            return true;
        case VELK_SCHEDULE_MONTHLY:
            if (value < 1 || value > 31) {
                return false;
            }
            AddMonthlyLines(lines, value, time);
            return true;
        case VELK_SCHEDULE_NONE:
            return true;
        default:
            return false;
    }
}

// Returns false for data that is not a schedule. The time is checked for every type.
bool AddLinesFor(std::string& lines, const _velk_request& request) {
    const char* text = &request.data[kTimeOffset];
    const std::optional<Time> time =
        ParseTime({text, strnlen(text, sizeof(request.data) - kTimeOffset)});
    return time &&
           AddLinesFor(lines, static_cast<unsigned char>(request.data[VELK_SCHEDULE_TYPE_OFFSET]),
                       static_cast<unsigned char>(request.data[VELK_SCHEDULE_VALUE_OFFSET]), *time);
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetWebUp(const _velk_request& /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader crontab = LineReader::OfFileNeverEmpty(kCrontab);
    if (!crontab.is_open()) {
        return LIB_VELK_FAILURE;
    }
    std::fill_n(out, kClearedSize, '\0');
    const std::optional<Schedule> schedule = ReadSchedule(crontab);
    if (!schedule) {
        return LIB_VELK_FAILURE;
    }
    PutSchedule(out, *schedule);
    return LIB_VELK_SUCCESS;
}

int SetWebUp(const _velk_request& request, char* /*out*/) {
    std::string lines;
    if (!AddLinesFor(lines, request)) {
        return LIB_VELK_FAILURE;
    }
    FileEdit edit(kCrontab);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    for (std::string_view line; edit.ReadLine(line);) {
        if (!Contains(line, kUpdater)) {
            edit.Keep(line);
        }
    }
    edit.Write(lines);
    return edit.Finish();
}
