// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// schedule_value.h - values that are a schedule: hourly, daily, weekly or monthly.
#ifndef VELKCTL_SETTINGS_SCHEDULE_VALUE_H_
#define VELKCTL_SETTINGS_SCHEDULE_VALUE_H_

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A schedule in words: "every 6h", "daily 08:30", "weekly sunday 08:30", "monthly 31 08:30" or
// "off". Print() shows the device's schedule unchanged, also with an invalid day or hour.
class ScheduleKind final : public ValueKind {
  public:
    constexpr ScheduleKind() = default;

    std::string_view Type() const override { return "schedule"; }
    std::string Wanted() const override;
    std::string Example() const override { return "weekly sunday 08:30"; }
    Parsed Parse(std::span<const std::string> words) const override;
    // Also "schedule TYPE VALUE TIME" with any bytes and text, as an unknown type is shown.
    Parsed Force(std::span<const std::string> words) const override;
    // The first words of each form, up to the day.
    std::vector<std::string> Values() const override;
    std::vector<Meaning> Meanings() const override;
    std::string Print(const Data& data) const override;
};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_SCHEDULE_VALUE_H_
