// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The steps of the library as people and programs see them.
#include "velkctl/preview/library_steps.h"

#include <vector>

#include <gtest/gtest.h>

#include "unit/velkctl/preview/message.h"
#include <nlohmann/json.hpp>

namespace {

using testkit::Message;
using velkctl::Event;
using velkctl::EventKind;
using velkctl::LibraryStep;
using velkctl::SecondsWaited;
using velkctl::StepsIn;

using Steps = std::vector<LibraryStep>;

TEST(LibrarySteps, AreThoseOfChanges) {
    const std::vector<Event> events{{EventKind::kCommand, "get"},
                                    {EventKind::kShellLine, "ifconfig > x"},
                                    {EventKind::kWait, "5"},
                                    {EventKind::kCommand, "set"},
                                    {EventKind::kShellLine, "cat x > y"},
                                    {EventKind::kWait, "2"},
                                    {EventKind::kShellLineNotRun, "sudo ifdown eth0"},
                                    {EventKind::kLogLine, "a line"},
                                    {EventKind::kAnswer, ""}};
    EXPECT_EQ(StepsIn(events), (Steps{{"shell", "cat x > y"},
                                      {"wait", "2 s"},
                                      {"not_run", "sudo ifdown eth0"},
                                      {"log", "a line"}}));
    EXPECT_EQ(SecondsWaited(events), 2);
    EXPECT_EQ(TextOf(StepsIn(events)),
              "  shell     cat x > y\n"
              "  wait      2 s\n"
              "  not run   sudo ifdown eth0\n"
              "  log       a line\n");
    EXPECT_EQ(velkctl::InJson(Steps{{"log", "a line"}}).dump(),
              R"([{"kind":"log","text":"a line"}])");
}

TEST(LibrarySteps, NameTheMessagesOfTheDaemon) {
    EXPECT_EQ(StepsIn({{EventKind::kMessage, Message(1)},
                       {EventKind::kMessageNotSent, Message(2)},
                       {EventKind::kMessage, Message(3)},
                       {EventKind::kMessage, Message(4)}}),
              (Steps{{"message", "to the wireless daemon: eth1 was restarted"},
                     {"not_sent", "to the wireless daemon: store this configuration"},
                     {"message", "to the wireless daemon: report the configuration"},
                     {"message", "to the wireless daemon: report the state"}}));
}

TEST(LibrarySteps, ListRepeatedStepsOnce) {
    std::vector<Event> events{{EventKind::kLogLine, "first"}};
    for (int i = 0; i < 5; ++i) {
        events.push_back({EventKind::kShellLine, "look"});
        events.push_back({EventKind::kWait, "1"});
    }
    events.push_back({EventKind::kLogLine, "last"});
    EXPECT_EQ(StepsIn(events), (Steps{{"log", "first"},
                                      {"shell", "look"},
                                      {"wait", "1 s"},
                                      {"again", "the last 2 steps, 4 times"},
                                      {"log", "last"}}));
    EXPECT_EQ(SecondsWaited(events), 5);
}

TEST(LibrarySteps, KeepAFewEqualOnes) {
    const Event wait{EventKind::kWait, "1"};
    EXPECT_EQ(StepsIn({wait, wait, wait}).size(), 3U);
    EXPECT_EQ(StepsIn({wait, wait, wait, wait}),
              (Steps{{"wait", "1 s"}, {"again", "the last step, 3 times"}}));
}

TEST(LibrarySteps, MaskSecrets) {
    EXPECT_EQ(StepsIn({{EventKind::kShellLine, "password=x"}}),
              (Steps{{"shell", "password=********"}}));
}

}  // namespace
