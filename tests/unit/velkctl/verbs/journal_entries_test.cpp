// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Changes of the journal in the output of verbs.
#include "velkctl/verbs/journal_entries.h"

#include <cstdint>
#include <ctime>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using velkctl::LocalTime;

TEST(JournalEntries, HaveAReadableTime) {
    EXPECT_EQ(LocalTime(0).size(), std::string_view("1970-01-01 00:00:00").size());
}

// A damaged entry can have such a time with a right checksum.
TEST(JournalEntries, MayHaveATimeOutsideOfTheCalendar) {
    if (sizeof(time_t) < sizeof(int64_t)) {
        GTEST_SKIP() << "the C library has no such time";
    }
    EXPECT_EQ(LocalTime(INT64_MAX / 2), "unknown");
}

}  // namespace
