// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// duration.cpp - durations in words.
#include "velkctl/text/duration.h"

#include <algorithm>
#include <array>

namespace velkctl {
namespace {

struct Unit {
    long long seconds;
    const char* name;
};
constexpr std::array<Unit, 4> kUnits{
    {{24 * 60 * 60, "day"}, {60 * 60, "hour"}, {60, "minute"}, {1, "second"}}};

}  // namespace

std::string FormatDuration(long long seconds) {
    const auto* unit = std::ranges::find_if(
        kUnits, [&](const Unit& candidate) { return seconds >= candidate.seconds; });
    const Unit& used = unit == kUnits.end() ? kUnits.back() : *unit;
    const long long number = seconds / used.seconds;
    return std::to_string(number) + " " + used.name + (number == 1 ? "" : "s");
}

}  // namespace velkctl
