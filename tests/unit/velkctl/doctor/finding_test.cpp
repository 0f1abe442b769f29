// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The text and the JSON of a finding of the doctor.
#include "velkctl/doctor/finding.h"

#include <gtest/gtest.h>

#include "velk.h"
#include <nlohmann/json.hpp>

namespace {

using velkctl::Finding;
using velkctl::Severity;

const Finding kProblem{.subject = "eth1.gateway",
                       .effect = "cannot be set",
                       .description = "no \x1b line",
                       .file = "/etc/network/interfaces",
                       .line = 12,
                       .remedy = "add one",
                       .affected = velkctl::UnionOf(velkctl::SettingsOf(VELK_CMD_GATEWAY, "eth1"),
                                                    velkctl::SettingsOf(VELK_CMD_IP_METHOD))};
const Finding kWarning{.severity = Severity::kWarning,
                       .subject = "grep",
                       .effect = "is not installed",
                       .description = "no log",
                       .remedy = "install it"};

TEST(Finding, HasSubjectReasonAndFixOnLinesOfTheirOwn) {
    EXPECT_EQ(velkctl::FormatFindings({kProblem, kWarning}),
              "problem: eth1.gateway cannot be set\n"
              "  /etc/network/interfaces:12: no \\x1b line\n"
              "  fix: add one\n"
              "warning: grep is not installed\n"
              "  no log\n"
              "  fix: install it\n");
}

TEST(Finding, HasTheSameKeysInEveryObject) {
    EXPECT_EQ(
        velkctl::FindingInJson(kProblem).dump(),
        R"({"severity":"problem","subject":"eth1.gateway","effect":"cannot be set",)"
        R"("description":"no \\x1b line","cause":{"file":"/etc/network/interfaces","line":12},)"
        R"("remedy":"add one",)"
        R"("settings":["eth0.method","eth1.method","eth1.gateway"]})");
    EXPECT_EQ(velkctl::FindingInJson(kWarning).dump(),
              R"({"severity":"warning","subject":"grep","effect":"is not installed",)"
              R"("description":"no log","cause":null,"remedy":"install it","settings":[]})");
}

TEST(Finding, HasAPlaceAsCompilersWriteIt) {
    EXPECT_EQ(velkctl::LocationOf(kProblem), "/etc/network/interfaces:12");
    EXPECT_EQ(velkctl::LocationOf({.file = "/etc/dhclient.conf"}), "/etc/dhclient.conf");
    EXPECT_EQ(velkctl::LocationOf(kWarning), "");
}

TEST(Finding, IsCountedInTheSummary) {
    EXPECT_EQ(velkctl::Summary({}), "no problems found");
    EXPECT_EQ(velkctl::Summary({kProblem}), "1 problem, 0 warnings");
    EXPECT_EQ(velkctl::Summary({kProblem, kProblem, kWarning}), "2 problems, 1 warning");
}

}  // namespace
