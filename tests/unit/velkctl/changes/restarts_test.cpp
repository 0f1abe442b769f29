// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The restarts of a change's interfaces, one after the other.
#include "velkctl/changes/restarts.h"

#include <string>

#include "support/device_test.h"

namespace {

using velkctl::ExitStatus;
using velkctl::RestartAll;
using velkctl::RestartsResult;

class RestartsTest : public testkit::DeviceTest {
  protected:
    velkctl::Report report{velkctl::Report::Form::kText};
};

TEST_F(RestartsTest, AreNoneWithoutAnInterface) {
    const RestartsResult result = RestartAll({}, 0, report);
    EXPECT_EQ(result.status, ExitStatus::kDone);
    EXPECT_EQ(velkctl::RestartedText(result.restarts), "");
    EXPECT_EQ(velkctl::RestartsInJson(result.restarts).dump(), "[]");
}

TEST_F(RestartsTest, ReportAnInterfaceThatCannotBeRestarted) {
    testing::internal::CaptureStderr();
    const RestartsResult result = RestartAll({"eth2"}, 0, report);
    const std::string error = testing::internal::GetCapturedStderr();
    EXPECT_EQ(result.status, ExitStatus::kInvalid);
    EXPECT_TRUE(error.starts_with("velkctl: eth2: could not be restarted\n")) << error;
    EXPECT_EQ(velkctl::RestartsInJson(result.restarts).dump(),
              R"([{"interface":"eth2","seconds":0,"state":null}])");
}

// The library reports success for a restart without its tools.
TEST_F(RestartsTest, ReportAnInterfaceThatDidNotComeUp) {
    testing::internal::CaptureStderr();
    const RestartsResult result = RestartAll({"eth0"}, 0, report);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(result.status, ExitStatus::kNotHeld);
}

TEST_F(RestartsTest, AreNamedWithTheirTimes) {
    EXPECT_EQ(velkctl::RestartedText({{"eth0", 12, {}}, {"eth1", 3, {}}}),
              ", restarted eth0 (12 s), restarted eth1 (3 s)");
    EXPECT_EQ(velkctl::RestartedText({{"eth0", 12, {}, true}, {"eth1", 3, {}}}),
              ", restarted eth1 (3 s)");
}

}  // namespace
