// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The width of the output of help, list, describe and explain.
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/words.h"
#include "velkctl/cli/command_line.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/settings/catalogue.h"

namespace {

using testkit::Words;

constexpr size_t kColumns = 80;
constexpr int kLowestResult = -6;
constexpr int kHighestStatus = 9;

// Returns the lines that do not fit, after the arguments.
std::string WideLinesOf(const Words& arguments) {
    velkctl::Report report(velkctl::Report::Form::kText);
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunCommandLine(arguments, report), velkctl::ExitStatus::kDone) << arguments.back();
    std::istringstream output(testing::internal::GetCapturedStdout());
    std::string wide;
    for (std::string line; std::getline(output, line);) {
        if (line.size() > kColumns) {
            wide.append(arguments.back()).append(": ").append(line).append("\n");
        }
    }
    return wide;
}

TEST(LineWidth, OfEveryHelpIsThatOfATerminal) {
    EXPECT_EQ(WideLinesOf({"--help"}), "");
    for (const velkctl::Verb& verb : velkctl::Verbs()) {
        EXPECT_EQ(WideLinesOf({"help", std::string(verb.name)}), "");
    }
}

TEST(LineWidth, OfTheListIsThatOfATerminal) {
    EXPECT_EQ(WideLinesOf({"list"}), "");
}

TEST(LineWidth, OfEveryDescriptionIsThatOfATerminal) {
    for (const velkctl::Setting& setting : velkctl::Settings()) {
        EXPECT_EQ(WideLinesOf({"describe", setting.name()}), "");
    }
}

TEST(LineWidth, OfEveryExplanationIsThatOfATerminal) {
    for (int number = kLowestResult; number <= kHighestStatus; ++number) {
        EXPECT_EQ(WideLinesOf({"explain", std::to_string(number)}), "");
    }
}

}  // namespace
