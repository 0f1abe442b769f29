// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The lines that tools print, and those that mean no failure.
#include "velkctl/files/tool_output.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::IsHarmless;
using velkctl::OutputLines;
using velkctl::WithoutHarmless;

using Lines = std::vector<std::string>;

TEST(ToolOutputTest, EveryLineIsKeptInItsOrder) {
    EXPECT_EQ(OutputLines("b\na\n\nb\nthe rest"), (Lines{"b", "a", "b", "the rest"}));
    EXPECT_EQ(OutputLines("\n"), Lines());
    EXPECT_EQ(OutputLines(""), Lines());
}

TEST(ToolOutputTest, MessagesOfToolsThatWorkAreHarmless) {
    EXPECT_TRUE(IsHarmless("rm: cannot remove '/var/libvelk/ntp.log': No such file or directory"));
    EXPECT_TRUE(IsHarmless("rm: can't remove '/var/libvelk/ntp.log': No such file or directory"));
    EXPECT_TRUE(IsHarmless("ifdown: interface eth1 not configured"));
    EXPECT_TRUE(IsHarmless("Error: ipv4: Address not found."));
    EXPECT_TRUE(IsHarmless("sudo: unable to resolve host velk: Name or service not known"));
}

TEST(ToolOutputTest, OtherMessagesAreNot) {
    EXPECT_FALSE(IsHarmless("rm: cannot remove '/etc/passwd': No such file or directory"));
    EXPECT_FALSE(IsHarmless("ifdown: interface eth1 is busy"));
    EXPECT_FALSE(IsHarmless("Error: ipv4: Address already assigned."));
    EXPECT_FALSE(IsHarmless("sudo: a password is required"));
    EXPECT_FALSE(IsHarmless(""));
}

TEST(ToolOutputTest, HarmlessLinesAreLeftOut) {
    EXPECT_EQ(WithoutHarmless({"one", "ifdown: interface eth0 not configured", "two"}),
              (Lines{"one", "two"}));
}

}  // namespace
