// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The progress line at a terminal.
#include "velkctl/report/progress.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::ProgressDisplay;
using velkctl::ProgressLine;

TEST(ProgressLineTest, HasTheTimeAndTheReason) {
    EXPECT_EQ(ProgressLine("eth1.signal", "the wireless daemon to answer", 12, 122),
              "eth1.signal: 12 s of at most 122 s, waiting for the wireless daemon to answer");
}

TEST(ProgressLineTest, LeavesOutAnUnknownEnd) {
    EXPECT_EQ(ProgressLine("location", "the SNMP daemon to restart", 2, 0),
              "location: 2 s, waiting for the SNMP daemon to restart");
}

TEST(ProgressDisplayTest, WritesEachLineOverTheOneBeforeAndIsGoneInTheEnd) {
    testing::internal::CaptureStderr();
    {
        ProgressDisplay display(true);
        display.Show("ten, 10 s");
        display.Show("two, 2 s");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\rten, 10 s"
              "\rtwo, 2 s "
              "\r        \r");
}

TEST(ProgressDisplayTest, CutsALineThatWouldNotFit) {
    testing::internal::CaptureStderr();
    {
        ProgressDisplay display(true);
        display.Show(std::string(100, 'x'));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\r" + std::string(79, 'x') + "\r" + std::string(79, ' ') + "\r");
}

TEST(ProgressDisplayTest, WritesNothingIfItIsDisabled) {
    testing::internal::CaptureStderr();
    {
        ProgressDisplay display(false);
        display.Show("ten, 10 s");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ProgressDisplayTest, WritesNothingIfNothingWasShown) {
    testing::internal::CaptureStderr();
    { const ProgressDisplay display(true); }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
