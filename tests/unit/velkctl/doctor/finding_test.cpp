// How a finding of the doctor is told.
#include "velkctl/doctor/finding.h"

#include <gtest/gtest.h>

#include "velk.h"
#include <nlohmann/json.hpp>

namespace {

using velkctl::Finding;
using velkctl::Findings;
using velkctl::Severity;

const Finding kProblem{
    .subject = "eth1.gateway",
    .effect = "cannot be set",
    .what = "no \x1b line",
    .file = "/etc/network/interfaces",
    .line = 12,
    .remedy = "add one",
    .concerns = {{.id = VELK_CMD_GATEWAY, .interface = "eth1"}, {.id = VELK_CMD_IP_METHOD}}};
const Finding kWarning{.severity = Severity::kWarning,
                       .subject = "grep",
                       .effect = "is not installed",
                       .what = "no log",
                       .remedy = "install it"};

TEST(Finding, IsTwoLinesOfText) {
    EXPECT_EQ(velkctl::FindingsInWords({kProblem, kWarning}),
              "problem: eth1.gateway cannot be set: /etc/network/interfaces:12: no \\x1b line\n"
              "  mend: add one\n"
              "warning: grep is not installed: no log\n"
              "  mend: install it\n");
}

TEST(Finding, HasTheSameKeysInEveryObject) {
    EXPECT_EQ(velkctl::FindingInJson(kProblem).dump(),
              R"({"severity":"problem","subject":"eth1.gateway","effect":"cannot be set",)"
              R"("what":"no \\x1b line","file":"/etc/network/interfaces","line":12,)"
              R"("remedy":"add one",)"
              R"("settings":["eth0.method","eth1.method","eth1.gateway"]})");
    EXPECT_EQ(velkctl::FindingInJson(kWarning).dump(),
              R"({"severity":"warning","subject":"grep","effect":"is not installed",)"
              R"("what":"no log","file":null,"line":null,"remedy":"install it","settings":[]})");
}

TEST(Finding, HasAPlaceAsCompilersWriteIt) {
    EXPECT_EQ(velkctl::PlaceOf(kProblem), "/etc/network/interfaces:12");
    EXPECT_EQ(velkctl::PlaceOf({.file = "/etc/dhclient.conf"}), "/etc/dhclient.conf");
    EXPECT_EQ(velkctl::PlaceOf(kWarning), "");
}

TEST(Finding, IsCountedInTheSummary) {
    EXPECT_EQ(velkctl::Summary({}), "all is well");
    EXPECT_EQ(velkctl::Summary({kProblem}), "1 problem, 0 warnings");
    EXPECT_EQ(velkctl::Summary({kProblem, kProblem, kWarning}), "2 problems, 1 warning");
}

}  // namespace
