// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The reason why a setting cannot be read, on a private device.
#include "velkctl/verbs/read_failure.h"

#include <string>

#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testkit::WriteFile;
using velkctl::Answer;
using velkctl::ReadFailure;

class ReadFailureTest : public testkit::DeviceTest {
  protected:
    static ReadFailure Of(const std::string& name, const Answer& answer) {
        return ReadFailureOf(velkctl::FindSetting(name).value(), answer);
    }
    static void IsUnreadable(const ReadFailure& failure, const std::string& reason) {
        EXPECT_EQ(failure.of_one, reason);
        EXPECT_EQ(failure.of_several, "cannot be read: " + reason);
    }
};

TEST_F(ReadFailureTest, NamesTheCableAndTheAdapter) {
    const ReadFailure cable = Of("eth1.signal", {LIB_VELK_WIRED_LINKED});
    EXPECT_EQ(cable.of_one, "needs the cable out");
    EXPECT_EQ(cable.of_several, "need the cable out");
    const ReadFailure adapter = Of("eth1.signal", {LIB_VELK_NO_ADAPTER});
    EXPECT_EQ(adapter.of_one, "needs a wireless adapter");
    EXPECT_EQ(adapter.of_several, "need a wireless adapter");
}

TEST_F(ReadFailureTest, NamesTheLimitOfACommandWithoutAnAnswer) {
    const Answer answer{.result = LIB_VELK_FAILURE, .timed_out = true, .timeout_seconds = 5};
    IsUnreadable(Of("eth1.ssid", answer), "no answer after 5 s");
}

TEST_F(ReadFailureTest, NamesTheFileThatIsMissing) {
    const std::string file = testkit::kIdentityFile;
    IsUnreadable(Of("location", {LIB_VELK_FAILURE}), file + " is missing");
}

TEST_F(ReadFailureTest, NamesTheDaemonThatDoesNotRun) {
    const ReadFailure failure = Of("eth1.ssid", {LIB_VELK_FAILURE});
    EXPECT_TRUE(failure.of_one.starts_with("the wireless daemon ")) << failure.of_one;
}

TEST_F(ReadFailureTest, NamesTheDoctorIfNoCauseIsFound) {
    WriteFile(testkit::kIdentityFile, "LOCATION=a\n");
    const ReadFailure failure = Of("location", {LIB_VELK_FAILURE});
    EXPECT_EQ(failure.of_one, "unreadable: run 'velkctl doctor'");
    EXPECT_EQ(failure.of_several, "cannot be read: run 'velkctl doctor'");
}

TEST_F(ReadFailureTest, NamesTheSettingThatASilentDaemonWasNotAskedFor) {
    const ReadFailure failure = velkctl::SkippedAsDaemonIsSilent();
    EXPECT_EQ(failure.of_one, "skipped: the wireless daemon does not answer");
    EXPECT_EQ(failure.of_several, "were skipped: the wireless daemon does not answer");
}

}  // namespace
