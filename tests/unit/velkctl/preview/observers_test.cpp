// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The observers of the library's steps.
#include "velkctl/preview/observers.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/velkctl/preview/message.h"
#include "velk/wlan.h"

namespace {

using testkit::Message;
using velkctl::Event;
using velkctl::EventKind;
using velkctl::EventLog;
using velkctl::TraceObserver;
using velkctl::TrialObserver;

using Events = std::vector<Event>;

std::string last_line;
unsigned last_sleep = 0;

int RunLine(const char* line) {
    last_line = line;
    return 7;
}

unsigned Sleep(unsigned seconds) {
    last_sleep = seconds;
    return 3;
}

class ObserversTest : public testing::Test {
  protected:
    ObserversTest() {
        last_line.clear();
        last_sleep = 0;
    }
    const EventLog log;
};

TEST_F(ObserversTest, ATraceLetsEverythingPass) {
    TraceObserver trace(log);
    trace.Begin({VELK_RESTART, 1, "eth0"});
    EXPECT_EQ(trace.RunShellLine("sudo ifdown eth0", RunLine), 7);
    EXPECT_EQ(last_line, "sudo ifdown eth0");
    EXPECT_EQ(trace.Wait(30, Sleep), 3U);
    EXPECT_EQ(last_sleep, 30U);
    EXPECT_TRUE(trace.TakeLogLine("a line"));
    EXPECT_FALSE(trace.KeepsMessage(Message(VELK_WLAN_STORE)));
    EXPECT_EQ(log.Read(), (Events{{EventKind::kCommand, "restart"},
                                  {EventKind::kShellLine, "sudo ifdown eth0"},
                                  {EventKind::kWait, "30"},
                                  {EventKind::kLogLine, "a line"},
                                  {EventKind::kMessage, Message(VELK_WLAN_STORE)}}));
}

TEST_F(ObserversTest, ATrialKeepsAllFromTheDevice) {
    TrialObserver trial(log);
    EXPECT_EQ(trial.RunShellLine("sudo ifdown eth0", RunLine), 0);
    EXPECT_EQ(last_line, "");
    EXPECT_EQ(trial.Wait(30, Sleep), 0U);
    EXPECT_EQ(last_sleep, 0U);
    EXPECT_FALSE(trial.TakeLogLine("a line"));
    EXPECT_TRUE(trial.KeepsMessage(Message(VELK_WLAN_STORE)));
    EXPECT_TRUE(trial.KeepsMessage(Message(VELK_WLAN_RESTARTED)));
    EXPECT_EQ(log.Read(), (Events{{EventKind::kShellLineNotRun, "sudo ifdown eth0"},
                                  {EventKind::kWait, "30"},
                                  {EventKind::kLogLine, "a line"},
                                  {EventKind::kMessageNotSent, Message(VELK_WLAN_STORE)},
                                  {EventKind::kMessageNotSent, Message(VELK_WLAN_RESTARTED)}}));
}

TEST_F(ObserversTest, ATrialRunsLinesOnFilesWithoutSudo) {
    TrialObserver trial(log);
    EXPECT_EQ(trial.RunShellLine("sudo ethtool eth0 > x", RunLine), 7);
    EXPECT_EQ(last_line, "ethtool eth0 > x");
    EXPECT_EQ(log.Read(), (Events{{EventKind::kShellLine, "sudo ethtool eth0 > x"}}));
}

TEST_F(ObserversTest, ATrialAsksTheDaemonAndSeesItsOwnConfiguration) {
    TrialObserver trial(log);
    std::string reply = Message(0, 'd');
    EXPECT_FALSE(trial.KeepsMessage(Message(VELK_WLAN_REPORT)));
    trial.ReadReply(reply.data(), reply.size());
    EXPECT_EQ(reply, Message(0, 'd')) << "nothing is stored yet";
    EXPECT_TRUE(trial.KeepsMessage(Message(VELK_WLAN_STORE, 'n')));
    EXPECT_FALSE(trial.KeepsMessage(Message(VELK_WLAN_REPORT)));
    trial.ReadReply(reply.data(), reply.size());
    EXPECT_EQ(reply, Message(0, 'n'));
    EXPECT_FALSE(trial.KeepsMessage(Message(VELK_WLAN_STATE)));
    std::string state = Message(0, 's');
    trial.ReadReply(state.data(), state.size());
    EXPECT_EQ(state, Message(0, 's'));
}

TEST_F(ObserversTest, NoOtherMessageHasAType) {
    EXPECT_EQ(velkctl::MessageType("short"), 0);
    EXPECT_EQ(velkctl::MessageType(Message(2)), 2);
}

TEST_F(ObserversTest, TheWordsOfCommands) {
    TraceObserver trace(log);
    trace.Begin({VELK_GET, 1, ""});
    trace.Begin({VELK_SET, 1, ""});
    EXPECT_EQ(log.Read(), (Events{{EventKind::kCommand, "get"}, {EventKind::kCommand, "set"}}));
}

}  // namespace
