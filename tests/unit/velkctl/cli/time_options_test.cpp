// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The values of --wait and --timeout.
#include "velkctl/cli/time_options.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::Invocation;
using velkctl::Report;
using velkctl::TimeLimits;

class TimeOptions : public testing::Test {
  protected:
    std::optional<TimeLimits> Parse(const std::optional<std::string>& wait,
                                    const std::optional<std::string>& timeout) {
        Invocation invocation;
        invocation.wait = wait;
        invocation.timeout = timeout;
        Report report(Report::Form::kText);
        testing::internal::CaptureStderr();
        const std::optional<TimeLimits> limits = velkctl::ReadTimeOptions(invocation, report);
        error = testing::internal::GetCapturedStderr();
        return limits;
    }
    std::string error;
};

TEST_F(TimeOptions, SetNoLimitsByDefault) {
    const auto limits = Parse(std::nullopt, std::nullopt);
    ASSERT_TRUE(limits);
    EXPECT_EQ(limits->wait_seconds, 0);
    EXPECT_EQ(limits->timeout_seconds, 0);
}

TEST_F(TimeOptions, AreInSeconds) {
    const auto limits = Parse("30", "86400");
    ASSERT_TRUE(limits);
    EXPECT_EQ(limits->wait_seconds, 30);
    EXPECT_EQ(limits->timeout_seconds, 86400);
}

TEST_F(TimeOptions, AreRefusedUnlessANumber) {
    EXPECT_FALSE(Parse("soon", std::nullopt));
    EXPECT_EQ(error, "velkctl: --wait: 'soon' is not a time; give whole seconds, 1 to 86400\n");
    for (const char* word : {"", "0", "-1", "1.5", "5s", " 5", "86401", "99999999999"}) {
        EXPECT_FALSE(Parse(std::nullopt, word));
        EXPECT_EQ(error, "velkctl: --timeout: '" + std::string(word) +
                             "' is not a time; give whole seconds, 1 to 86400\n");
    }
}

}  // namespace
