// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Processes and their descent, from texts as in /proc and from real processes.
#include "velkctl/files/process_list.h"

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/kernel_features.h"

namespace {

using velkctl::CommandOf;
using velkctl::DescendantsOf;
using velkctl::ListProcesses;
using velkctl::ParseProcess;
using velkctl::Process;

std::vector<pid_t> NumbersOf(const std::vector<Process>& processes) {
    std::vector<pid_t> numbers;
    for (const Process& process : processes) {
        numbers.push_back(process.id);
    }
    return numbers;
}

TEST(ProcessListTest, AProcessIsParsed) {
    const auto process = ParseProcess("223 (ifup) S 222 223 208 0 -1 4194560 1\n");
    ASSERT_TRUE(process);
    EXPECT_EQ(process->id, 223);
    EXPECT_EQ(process->parent, 222);
    EXPECT_EQ(process->session, 208);
    EXPECT_FALSE(process->has_ended);
}

TEST(ProcessListTest, ANameMayLookLikeOtherFields) {
    const auto process = ParseProcess("12 (a) Z 7 8) R 3 4 5 0\n");
    ASSERT_TRUE(process);
    EXPECT_EQ(process->parent, 3);
    EXPECT_EQ(process->session, 5);
    EXPECT_FALSE(process->has_ended);
}

TEST(ProcessListTest, AnEndedProcessIsRecognised) {
    EXPECT_TRUE(ParseProcess("12 (sh) Z 3 4 5 0\n")->has_ended);
    EXPECT_TRUE(ParseProcess("12 (sh) X 3 4 5 0\n")->has_ended);
}

TEST(ProcessListTest, OtherTextsAreNoProcess) {
    EXPECT_FALSE(ParseProcess(""));
    EXPECT_FALSE(ParseProcess("12 sh S 3 4 5"));
    EXPECT_FALSE(ParseProcess("x (sh) S 3 4 5"));
}

TEST(ProcessListTest, DescendantsComeAfterTheirParents) {
    const std::vector<Process> processes{{.id = 5, .parent = 4},
                                         {.id = 4, .parent = 2},
                                         {.id = 3, .parent = 1},
                                         {.id = 2, .parent = 1},
                                         {.id = 6, .parent = 2, .has_ended = true},
                                         {.id = 7, .parent = 6}};
    EXPECT_EQ(NumbersOf(DescendantsOf(2, processes)), (std::vector<pid_t>{4, 5, 7}));
    EXPECT_EQ(NumbersOf(DescendantsOf(5, processes)), std::vector<pid_t>());
}

TEST(ProcessListTest, AProcessThatSeemsToDescendFromItselfIsListedOnce) {
    const std::vector<Process> processes{{.id = 2, .parent = 3}, {.id = 3, .parent = 2}};
    EXPECT_EQ(NumbersOf(DescendantsOf(2, processes)), (std::vector<pid_t>{3, 2}));
}

TEST(ProcessListTest, AChildIsFoundWithItsCommand) {
    SKIP_WITHOUT(kCommandLines);
    const pid_t child = fork();
    if (child == 0) {
        (void)pause();
        _exit(0);
    }
    const std::vector<Process> all = ListProcesses();
    const std::vector<pid_t> descendants = NumbersOf(DescendantsOf(getpid(), all));
    EXPECT_NE(std::ranges::find(descendants, child), descendants.end());
    EXPECT_EQ(CommandOf(child), CommandOf(getpid()));
    EXPECT_NE(CommandOf(child).find("unit_tests"), std::string::npos);
    (void)kill(child, SIGKILL);
    (void)waitpid(child, nullptr, 0);
    EXPECT_EQ(CommandOf(child), "");
}

}  // namespace
