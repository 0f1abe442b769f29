// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/report/metrics.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using velkctl::Metrics;
using velkctl::MetricsInJson;
using velkctl::MetricsText;

const Metrics kTwo{{"velk_a", "A number.", {{.value = 5}}},
                   {"velk_b",
                    "Another.",
                    {{.labels = {{"part", "eth0"}, {"kind", "x"}}, .value = 0},
                     {.labels = {{"part", "eth1"}, {"kind", "y"}}, .value = -1}}}};

TEST(MetricsText, HasHelpTypeAndALineForEachSample) {
    EXPECT_EQ(MetricsText(kTwo),
              "# HELP velk_a A number.\n"
              "# TYPE velk_a gauge\n"
              "velk_a 5\n"
              "# HELP velk_b Another.\n"
              "# TYPE velk_b gauge\n"
              "velk_b{part=\"eth0\",kind=\"x\"} 0\n"
              "velk_b{part=\"eth1\",kind=\"y\"} -1\n");
}

TEST(MetricsText, EscapesBackslashQuoteAndNewlineInALabel) {
    EXPECT_EQ(MetricsText({{"velk_a", "A.", {{.labels = {{"l", "a\\b\"c\nd"}}, .value = 1}}}}),
              "# HELP velk_a A.\n"
              "# TYPE velk_a gauge\n"
              "velk_a{l=\"a\\\\b\\\"c\\nd\"} 1\n");
}

TEST(MetricsText, LeavesOutAMetricWithoutSamples) {
    EXPECT_EQ(MetricsText({{"velk_a", "A number."}}), "");
}

TEST(MetricsText, HasTheSameInADocument) {
    EXPECT_EQ(MetricsInJson(kTwo).dump(),
              R"([{"name":"velk_a","help":"A number.","samples":[{"labels":{},"value":5}]},)"
              R"({"name":"velk_b","help":"Another.","samples":[)"
              R"({"labels":{"part":"eth0","kind":"x"},"value":0},)"
              R"({"labels":{"part":"eth1","kind":"y"},"value":-1}]}])");
}

}  // namespace
