// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// schedule.cpp - proofs about the scanners of lib/webup/schedule.cpp.
#include "lib/webup/schedule.cpp"

#include "tests/proof/proof.h"

using namespace velk;

PROOF(schedule_fields, 12, "a crontab line of up to 10 bytes") {
    const std::string_view line = AnyText<10>();
    const CronFields fields = SplitFields(line);
    const std::string_view all[] = {fields.minute, fields.hour, fields.day, fields.month,
                                    fields.weekday};
    size_t position = 0;
    for (const std::string_view field : all) {
        proof_claim(field.empty() || static_cast<size_t>(field.data() - line.data()) == position,
                    "a field follows one blank");
        for (size_t i = 0; i < field.size(); ++i) {
            proof_claim(field[i] != ' ', "a field contains no blank");
        }
        position += field.size();
        proof_claim(position >= line.size() || line[position] == ' ',
                    "a field ends at a blank or with the line");
        position += position < line.size() ? 1 : 0;
    }
    proof_reached(fields.weekday.size() == 2 && position == line.size(), "five fields");
    proof_reached(fields.minute.size() == 10, "one field");
}

PROOF(schedule_of_line, 6, "five fields of up to 3 bytes") {
    const CronFields fields{AnyText<3>(), AnyText<3>(), AnyText<3>(), AnyText<3>(), AnyText<3>()};
    const std::optional<Schedule> schedule = ScheduleOf(fields);
    const bool is_hours = fields.hour.size() >= 2 && fields.hour[0] == '*' && fields.hour[1] == '/';
    const auto is_any = [](std::string_view field) { return field.size() == 1 && field[0] == '*'; };
    const bool is_refused = !is_hours && is_any(fields.day) && !is_any(fields.month);
    proof_claim(schedule.has_value() == !is_refused,
                "only a line with a month and no day is refused");
    if (!schedule) {
        proof_reached(fields.month.size() == 3, "a refused line");
        return;
    }
    proof_claim((schedule->type == VELK_SCHEDULE_HOURS) == is_hours,
                "a step of hours is the type of hours");
    proof_claim((schedule->type == VELK_SCHEDULE_MONTHLY) == (!is_hours && !is_any(fields.day)),
                "a day is the monthly type");
    proof_claim(
        (schedule->type == VELK_SCHEDULE_DAILY) ==
            (!is_hours && is_any(fields.day) && is_any(fields.month) && is_any(fields.weekday)),
        "no day and no weekday is the daily type");
    proof_claim(is_hours || (schedule->time.hour.data() == fields.hour.data() &&
                             schedule->time.minute.size() == fields.minute.size()),
                "the time is that of the line");
    const bool is_digit = fields.hour.size() == 3 && fields.hour[2] >= '0' && fields.hour[2] <= '9';
    proof_claim(!is_hours || schedule->value == (is_digit ? fields.hour[2] - '0' : 0),
                "the value is the number of hours, 0 if there is none");
    const bool is_one_digit =
        fields.weekday.size() == 1 && fields.weekday[0] >= '0' && fields.weekday[0] <= '9';
    proof_claim(schedule->type != VELK_SCHEDULE_WEEKLY || !is_one_digit ||
                    schedule->value == fields.weekday[0] - '0' + 1,
                "weekdays are counted from 1");
    proof_reached(schedule->type == VELK_SCHEDULE_WEEKLY && schedule->value == 7,
                  "the last weekday");
    proof_reached(schedule->type == VELK_SCHEDULE_MONTHLY && schedule->value == 31, "the 31st");
    proof_reached(schedule->type == VELK_SCHEDULE_HOURS && schedule->value == 9, "every 9 hours");
}

PROOF(schedule_time, 13, "a time of up to 5 bytes") {
    const std::string_view text = AnyText<5>();
    const std::optional<Time> time = ParseTime(text);
    size_t colons = 0;
    bool others = false;
    size_t first = 5;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ':') {
            first = colons == 0 ? i : first;
            ++colons;
        } else {
            others = others || text[i] < '0' || text[i] > '9';
        }
    }
    const bool is_time = colons == 1 && !others && first > 0 && first + 1 < text.size();
    proof_claim(time.has_value() == is_time, "a time is two numbers separated by a colon");
    proof_claim(!time || (time->hour.data() == text.data() && time->hour.size() == first),
                "the hour is before the colon");
    proof_claim(!time || time->minute.data() == text.data() + first + 1,
                "the minute follows the colon");
    proof_reached(is_time && first == 2 && text.size() == 5, "a time of two and two digits");
    proof_reached(!is_time && colons == 1 && !others, "a time without an hour or a minute");
}
