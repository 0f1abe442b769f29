// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A command in a process of its own: its answer, its end and its tools.
#include "velkctl/call/child_call.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/kernel_features.h"
#include "unit/velkctl/call/samples.h"

namespace {

using testkit::Call;
using testkit::Event;
using testkit::Exists;
using testkit::kRestart;
using testkit::Return;
using testkit::WriteFile;
using velkctl::ChildCall;
using velkctl::Command;
using velkctl::StopSignals;

constexpr Command kGetDns{VELK_GET, VELK_CMD_DNS, "eth0"};

constexpr std::chrono::milliseconds kNoGrace{0};

void AwaitFile(const char* path) {
    while (!Exists(path)) {
        (void)usleep(1000);
    }
}

class ChildCallTest : public testkit::DeviceTest {
  protected:
    const StopSignals signals;
};

TEST_F(ChildCallTest, ReturnsTheAnswerOfTheLibrary) {
    WriteFile("/etc/resolv.dnsmasq.conf", "nameserver 10.0.0.1\n");
    ChildCall child(kGetDns, {}, signals);
    EXPECT_EQ(child.start_error(), 0);
    const auto answer = child.TakeAnswer();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->result, LIB_VELK_SUCCESS);
    EXPECT_STREQ(answer->data.data(), "10.0.0.1");
    EXPECT_EQ(child.end_signal(), 0);
}

TEST_F(ChildCallTest, ReturnsTheResultOfAFailure) {
    ChildCall child({VELK_GET, 999, "eth0"}, {}, signals);
    EXPECT_EQ(child.TakeAnswer()->result, LIB_VELK_INVALID_PARAMETER);
}

TEST_F(ChildCallTest, HasNoAnswerAfterASignalEndedItsProcess) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)raise(SIGKILL); });
    ChildCall child(kRestart, {}, signals);
    EXPECT_FALSE(child.TakeAnswer());
    EXPECT_EQ(child.end_signal(), SIGKILL);
}

TEST_F(ChildCallTest, SeesTheSignalsThatVelkctlHoldsBack) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)raise(SIGTERM); });
    ChildCall child(kRestart, {}, signals);
    EXPECT_FALSE(child.TakeAnswer());
    EXPECT_EQ(child.end_signal(), SIGTERM);
}

TEST_F(ChildCallTest, CanBeStoppedInTheMiddle) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    ChildCall child(kRestart, {}, signals);
    EXPECT_TRUE(child.Stop(kNoGrace).empty());
    EXPECT_EQ(child.end_signal(), SIGKILL);
}

TEST_F(ChildCallTest, SendsNoSignalAfterTheEndOfItsProcess) {
    const pid_t bystander = fork();
    if (bystander == 0) {
        (void)pause();
        _exit(0);
    }
    libc().OnCall(Call::kSystem, [](const Event&) { (void)raise(SIGKILL); });
    ChildCall child(kRestart, {}, signals);
    EXPECT_FALSE(child.TakeAnswer());
    EXPECT_TRUE(child.Stop(kNoGrace).empty());
    EXPECT_EQ(waitpid(bystander, nullptr, WNOHANG | WUNTRACED), 0) << "not stopped or ended";
    (void)kill(bystander, SIGKILL);
    (void)waitpid(bystander, nullptr, 0);
}

// Starts a tool that writes its number into /tmp/tool first.
void StartTool(const std::function<void()>& tool) {
    if (fork() != 0) {
        return;
    }
    WriteFile("/tmp/tool.new", std::to_string(getpid()));
    (void)rename("/tmp/tool.new", "/tmp/tool");
    tool();
    _exit(0);
}

pid_t ToolThatRuns() {
    AwaitFile("/tmp/tool");
    return std::stoi(testkit::ReadFile("/tmp/tool"));
}

// A process that has ended, but has not been collected, still has its number.
bool Runs(pid_t process) {
    const std::string stat = testkit::ReadFile("/proc/" + std::to_string(process) + "/stat");
    const auto found = velkctl::ParseProcess(stat);
    return found && !found->has_ended;
}

// Waits for the end of the tool: until then it keeps the lock that it has inherited.
void EndTool(pid_t tool) {
    (void)kill(tool, SIGKILL);
    while (Runs(tool)) {
        (void)sched_yield();
    }
}

TEST_F(ChildCallTest, LetsAToolEndByItself) {
    libc().OnCall(Call::kSystem, [](const Event&) {
        StartTool([] {
            AwaitFile("/tmp/waited-for");
            WriteFile("/tmp/ended", "");
        });
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    const pid_t tool = ToolThatRuns();
    // The first pause of Stop() lasts until the tool has ended, however busy the machine is.
    libc().OnCall(Call::kNanosleep, [tool](const Event&) {
        WriteFile("/tmp/waited-for", "");
        while (Runs(tool)) {
            (void)usleep(1000);
        }
    });
    EXPECT_TRUE(child.Stop(std::chrono::seconds(1)).empty());
    EXPECT_TRUE(Exists("/tmp/ended"));
}

TEST_F(ChildCallTest, EndsAToolThatTakesTooLong) {
    libc().OnCall(Call::kSystem, [](const Event&) {
        StartTool([] { (void)pause(); });
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    const pid_t tool = ToolThatRuns();
    EXPECT_EQ(child.Tools().size(), 1U);
    EXPECT_TRUE(child.Stop(kNoGrace).empty());
    EXPECT_FALSE(Runs(tool));
}

TEST_F(ChildCallTest, EndsAToolThatIgnoresARequestToEnd) {
    libc().OnCall(Call::kSystem, [](const Event&) {
        StartTool([] {
            (void)signal(SIGTERM, SIG_IGN);
            WriteFile("/tmp/ignores", "");
            for (;;) {
                (void)pause();
            }
        });
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    const pid_t tool = ToolThatRuns();
    AwaitFile("/tmp/ignores");
    EXPECT_TRUE(child.Stop(kNoGrace).empty());
    EXPECT_FALSE(Runs(tool));
}

TEST_F(ChildCallTest, EndsADaemonThatTheCommandStarted) {
    SKIP_WITHOUT(kAdoption);
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        StartTool([] {
            (void)setsid();
            StartTool([] {
                WriteFile("/tmp/daemon", "");
                (void)pause();
            });
        });
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    AwaitFile("/tmp/daemon");
    EXPECT_TRUE(child.Tools().empty());
    EXPECT_TRUE(child.Stop(kNoGrace).empty());
    EXPECT_FALSE(Runs(ToolThatRuns()));
}

TEST_F(ChildCallTest, ReportsAToolThatCannotBeEnded) {
    SKIP_WITHOUT(kAdoption);
    // An ordinary user, who may not end a tool of root. The saved user allows the way back.
    if (geteuid() != 0 || setresuid(65534, 65534, 0) != 0) {
        GTEST_SKIP() << "only root can run as another user";
    }
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        if (fork() == 0) {
            (void)setresuid(0, 0, 0);
            StartTool([] { (void)pause(); });
            _exit(0);
        }
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    const pid_t tool = ToolThatRuns();
    const auto left = child.Stop(kNoGrace);
    ASSERT_EQ(setresuid(0, 0, 0), 0);
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left.front().process, tool);
    EXPECT_EQ(left.front().command, velkctl::CommandOf(getpid()));
    EndTool(tool);
}

TEST_F(ChildCallTest, LeavesToolsInTheBackgroundAtWork) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) { StartTool([] { (void)pause(); }); });
    std::vector<velkctl::RunningTool> tools;
    {
        ChildCall child(kRestart, {}, signals);
        EXPECT_TRUE(child.TakeAnswer());
        tools = child.Tools();
    }
    EXPECT_EQ(tools.size(), 2U) << "of two runs of the shell";
    for (const velkctl::RunningTool& tool : tools) {
        EXPECT_TRUE(Runs(tool.process));
        EndTool(tool.process);
    }
}

TEST_F(ChildCallTest, KeepsTheOutputOfToolsApart) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        (void)write(STDOUT_FILENO, "to output\n", 10);
        (void)write(STDERR_FILENO, "\nto errors\n", 11);
    });
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        ChildCall child(kRestart, {}, signals);
        EXPECT_TRUE(child.TakeAnswer());
        const std::vector<std::string> twice{"to output", "to errors", "to output", "to errors"};
        EXPECT_EQ(child.tool_output(), twice) << "of two runs of the shell";
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ChildCallTest, KeepsTheBeginningOfALongOutput) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        for (int i = 10000; i < 30000; ++i) {
            (void)dprintf(STDERR_FILENO, "%d\n", i);
        }
    });
    ChildCall child(kRestart, {}, signals);
    EXPECT_TRUE(child.TakeAnswer());
    EXPECT_EQ(child.tool_output().size(), 10923U) << "of 65536 bytes";
}

TEST_F(ChildCallTest, EndsWithItsOwner) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    { const ChildCall child(kRestart, {}, signals); }
    VkLibUnLock(VkLibLock());  // free, or this would leave a descriptor open
}

}  // namespace
