// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The problem to report for a failed answer.
#include "velkctl/call/answer.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::Answer;
using velkctl::Problem;
using velkctl::ProblemOf;

Problem NotSet(const Answer& answer) {
    return ProblemOf("eth0.dns: could not be set", "eth0.dns", answer);
}

TEST(ProblemOf, HasTheReasonTheRemedyAndTheResult) {
    EXPECT_EQ(OneLine(NotSet({-5})),
              "eth0.dns: could not be set; no supported wireless adapter is attached; fix: attach "
              "an adapter of /usr/local/share/apps/wlan/supportlist.ini (LIB_VELK_NO_ADAPTER, -5)");
    EXPECT_EQ(OneLine(NotSet({-3})),
              "eth0.dns: could not be set; another program is changing settings; fix: try again, "
              "or let --wait=SECONDS try again (LIB_VELK_LOCKED, -3)");
    EXPECT_EQ(OneLine(NotSet({-9})),
              "eth0.dns: could not be set; a result that velkctl does not know; fix: install the "
              "velkctl that belongs to this library (unknown result, -9)");
    EXPECT_EQ(NotSet({-3}).setting, "eth0.dns");
}

TEST(ProblemOf, APlainFailureHasNoReason) {
    const Problem problem = NotSet({-1});
    EXPECT_EQ(problem.detail, "");
    EXPECT_EQ(problem.remedy, "run 'velkctl doctor' to look for the cause");
    EXPECT_EQ(problem.result, -1);
}

TEST(ProblemOf, ATimeoutHasNoResult) {
    const Problem problem = NotSet({.result = -1,
                                    .timed_out = true,
                                    .timeout_seconds = 5,
                                    .awaited = "ifup eth0\x1b",
                                    .note = "eth0.dns may be incomplete"});
    EXPECT_EQ(problem.detail,
              "no answer after 5 s; waited for ifup eth0\\x1b; eth0.dns may be incomplete");
    EXPECT_EQ(problem.remedy, "run it again with a longer --timeout");
    EXPECT_FALSE(problem.result);
    EXPECT_EQ(NotSet({.result = -1, .timed_out = true}).detail, "no answer in time");
}

}  // namespace
