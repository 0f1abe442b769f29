// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Callers that meet on one device, with one schedule after another.
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>

#include <gmock/gmock.h>

#include "schedules/change_meetings.h"
#include "schedules/kit/explorer.h"
#include "schedules/library_meetings.h"
#include "schedules/wireless_meetings.h"
#include "support/device_test.h"

namespace schedules {
namespace {

struct Pair {
    const char* name;
    std::unique_ptr<Meeting> (*make)();
    size_t stride;  // between the schedules of the sample
};

void PrintTo(const Pair& pair, std::ostream* out) {
    *out << pair.name;
}

constexpr std::array kPairs{
    Pair{"get_get", GetMeetsGet, 2},
    Pair{"get_set_of_another", GetMeetsSetOfAnother, 1},
    Pair{"get_set_of_the_same", GetMeetsSetOfTheSame, 1},
    Pair{"set_set_of_another", SetMeetsSetOfAnother, 2},
    Pair{"set_set_of_the_same", SetMeetsSetOfTheSame, 2},
    Pair{"wireless_set_set", WirelessSetMeetsSet, 4},
    Pair{"wireless_get_set", WirelessGetMeetsSet, 4},
    Pair{"apply_set_of_another", ApplyMeetsSetOfAnother, 40},
    Pair{"apply_set_of_the_same", ApplyMeetsSetOfTheSame, 40},
    Pair{"apply_editor", ApplyMeetsEditor, 40},
    Pair{"confirm_deadline", ConfirmMeetsDeadline, 16},
};

class Schedules : public testkit::DeviceTest, public testing::WithParamInterface<Pair> {
  protected:
    void SetUp() override {
        if (!CanStep()) {
            GTEST_SKIP() << "no caller can be stepped on this processor";
        }
    }

    static void Report(const Failure& failure) {
        std::string calls;
        for (const std::string& call : failure.course.calls) {
            calls.append("  ").append(call).append("\n");
        }
        ADD_FAILURE() << failure.text << "\nwith the schedule: " << GetParam().name << " "
                      << TextOf(failure.schedule) << "\n"
                      << calls;
    }

    static void ExploreUpTo(const Bounds& bounds) {
        const auto begin = std::chrono::system_clock::now();
        const std::unique_ptr<Meeting> meeting = GetParam().make();
        const Findings findings = Explore(*meeting, bounds);
        if (findings.failure) {
            Report(*findings.failure);
        }
        EXPECT_EQ(findings.strayed, "") << "a run that differs from the one before";
        std::string runs;
        for (const size_t count : findings.runs) {
            runs.append(" ").append(std::to_string(count)).append(" |");
        }
        const std::chrono::duration<double> time = std::chrono::system_clock::now() - begin;
        printf("| %s | %zu |%s %.1f s |\n", GetParam().name, findings.points, runs.c_str(),
               time.count());
        (void)fflush(stdout);
    }
};

TEST_P(Schedules, KeepTheDeviceWholeWithSomePreemptions) {
    ExploreUpTo({.preemptions = 1, .stride = GetParam().stride});
}

// These take long: only scripts/schedules runs them.
TEST_P(Schedules, DISABLED_KeepTheDeviceWholeWithOnePreemption) {
    ExploreUpTo({.preemptions = 1});
}

TEST_P(Schedules, DISABLED_KeepTheDeviceWholeWithTwoPreemptions) {
    ExploreUpTo({.preemptions = 2});
}

// The schedule is in the environment.
TEST_P(Schedules, DISABLED_Replay) {
    const char* const text = getenv("VELK_SCHEDULE");
    ASSERT_NE(text, nullptr);
    const std::unique_ptr<Meeting> meeting = GetParam().make();
    if (const std::optional<Failure> failure = Replay(*meeting, ParseSchedule(text))) {
        Report(*failure);
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, Schedules, testing::ValuesIn(kPairs),
                         [](const auto& pair) { return std::string(pair.param.name); });

}  // namespace
}  // namespace schedules
