// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The device as the verbs see it: busy, slow, or ready at once.
#include "velkctl/call/device.h"

#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "unit/velkctl/call/samples.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/watched_call.h"

namespace {

using testing::MatchesRegex;
using testkit::Call;
using testkit::Event;
using testkit::kResolverFile;
using testkit::kRestart;
using testkit::Return;
using velkctl::Answer;
using velkctl::Command;
using velkctl::Data;
using velkctl::Device;
using velkctl::ExitStatus;
using velkctl::OnSignal;
using velkctl::Report;
using velkctl::StopSignals;
using velkctl::TimeLimits;

constexpr Command kSetDns{VELK_SET, VELK_CMD_DNS, "eth0"};

class VelkctlDeviceTest : public testkit::DeviceTest {
  protected:
    // `then` uses the report after the command.
    Answer Run(const Command& command, const TimeLimits& limits, const std::string& subject,
               const std::function<void(Report&)>& then = {}) {
        Data data{};
        (void)std::string("10.0.0.1").copy(data.data(), data.size());
        Report report(Report::Form::kText);
        report.set_detail(detail);
        testing::internal::CaptureStderr();
        Answer answer = Device(limits, report).Execute(command, data, subject);
        if (then) {
            then(report);
        }
        error = testing::internal::GetCapturedStderr();
        return answer;
    }
    Report::Detail detail = Report::Detail::kUsual;
    std::string error;
};

TEST_F(VelkctlDeviceTest, ACommandWithAFreeLockDoesNotWait) {
    const Answer answer = Run(kSetDns, {30, 0}, "eth0.dns");
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
    EXPECT_EQ(testkit::ReadFile(kResolverFile), "nameserver 10.0.0.1\n");
    EXPECT_TRUE(libc().Texts(Call::kNanosleep).empty());
    EXPECT_EQ(error, "");
}

TEST_F(VelkctlDeviceTest, WithoutWaitALockedDeviceIsReportedAtOnce) {
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_EQ(StatusOf(answer), ExitStatus::kLocked);
    EXPECT_THAT(OneLine(ProblemOf("eth0.dns: could not be set", "eth0.dns", answer)),
                MatchesRegex("eth0.dns: could not be set; another program is changing settings; "
                             "process " +
                             std::to_string(getpid()) +
                             " \\(unit_tests, [0-9]+ [a-z]+ old\\) holds the lock; fix: try "
                             "again, or let --wait=SECONDS try again \\(LIB_VELK_LOCKED, -3\\)"));
    EXPECT_TRUE(libc().Texts(Call::kNanosleep).empty());
    EXPECT_EQ(error, "");
}

TEST_F(VelkctlDeviceTest, AnUnknownHolderIsNotNamed) {
    const int lock = VkLibLock();
    libc().Redirect("/proc/locks", "/tmp/missing");
    libc().Redirect("/proc/" + std::to_string(getpid()) + "/fdinfo/" + std::to_string(lock),
                    "/tmp/missing");
    const Answer answer = Run(kSetDns, {1, 0}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(OneLine(ProblemOf("eth0.dns: could not be set", "eth0.dns", answer)),
              "eth0.dns: could not be set; another program is changing settings; fix: try again, "
              "or let --wait=SECONDS try again (LIB_VELK_LOCKED, -3)");
    EXPECT_EQ(error, "velkctl: note: waiting at most 1 s for the lock\n");
}

TEST_F(VelkctlDeviceTest, PausesBetweenTriesForTheLockGrow) {
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {1, 0}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_EQ(libc().Texts(Call::kNanosleep),
              (std::vector<std::string>{"50000000", "100000000", "200000000", "250000000",
                                        "250000000", "150000000"}));
    EXPECT_FALSE(testkit::Exists(kResolverFile));
    EXPECT_THAT(
        error,
        MatchesRegex("velkctl: note: waiting at most 1 s for the lock, held by process [0-9]+ "
                     "\\(unit_tests, [0-9]+ [a-z]+ old\\)\n"));
}

TEST_F(VelkctlDeviceTest, AReleasedLockIsTaken) {
    int lock = VkLibLock();
    int pauses = 0;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        if (++pauses == 3) {
            VkLibUnLock(lock);
        }
    });
    const Answer answer = Run(kSetDns, {30, 0}, "eth0.dns");
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
    EXPECT_EQ(answer.note, "");
    EXPECT_EQ(pauses, 3);
    EXPECT_EQ(testkit::ReadFile(kResolverFile), "nameserver 10.0.0.1\n");
}

TEST_F(VelkctlDeviceTest, ATimeoutEndsTheWaitForTheLock) {
    // The first pause outlasts the time. After a shorter one, a busy machine may end another try.
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [](const Event&) { (void)usleep(2100 * 1000); });
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {30, 2}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_FALSE(answer.timed_out);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_EQ(libc().Texts(Call::kNanosleep), std::vector<std::string>{"50000000"});
    EXPECT_TRUE(error.starts_with("velkctl: note: waiting at most 2 s for the lock")) << error;
}

// The shorter of the two ends the wait for the lock.
TEST_F(VelkctlDeviceTest, AWaitForTheLockEndsBeforeALongerTimeout) {
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {1, 20}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_FALSE(answer.timed_out);
    EXPECT_THAT(answer.note, MatchesRegex("process .* still holds the lock after 1 s"));
    EXPECT_TRUE(error.starts_with("velkctl: note: waiting at most 1 s for the lock")) << error;
}

TEST_F(VelkctlDeviceTest, ATimeoutIsNoWaitForTheLock) {
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {0, 300}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_THAT(answer.note, MatchesRegex("process .* holds the lock"));
    EXPECT_EQ(error, "");
    EXPECT_TRUE(libc().Texts(Call::kNanosleep).empty());
}

// After the wait, the command has the rest of its time.
TEST_F(VelkctlDeviceTest, ACommandThatGetsTheLockIsStoppedAtItsTimeout) {
    int lock = VkLibLock();
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        if (lock != -1) {
            VkLibUnLock(lock);
            lock = -1;
        }
    });
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run(kRestart, {30, 1}, "restart of eth0");
    EXPECT_TRUE(answer.timed_out);
    EXPECT_EQ(answer.timeout_seconds, 1);
    EXPECT_EQ(answer.note, "restart of eth0 may be incomplete");
}

TEST_F(VelkctlDeviceTest, AShorterLimitOfTheCallerEndsAReading) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    Report report(Report::Form::kText);
    const velkctl::Setting speed = *velkctl::FindSetting("eth0.link-speed");
    EXPECT_EQ(Device({}, report).GetWithin(speed, 1).timeout_seconds, 1);
    EXPECT_EQ(Device({0, 4}, report).GetWithin(speed, 1).timeout_seconds, 1);
    EXPECT_EQ(Device({0, 1}, report).GetWithin(speed, 4).timeout_seconds, 1);
}

TEST_F(VelkctlDeviceTest, ARestartIsStoppedAtItsTimeout) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run(kRestart, {0, 1}, "restart of eth0");
    EXPECT_TRUE(answer.timed_out);
    EXPECT_EQ(StatusOf(answer), ExitStatus::kTimedOut);
    EXPECT_EQ(OneLine(ProblemOf("eth0: could not be restarted", "", answer)),
              "eth0: could not be restarted; no answer after 1 s; waited for the interface to come "
              "up; restart of eth0 may be incomplete; fix: run it again with a longer --timeout");
    EXPECT_EQ(FailureReason(answer), "no answer after 1 s");
    EXPECT_EQ(error, "");
}

TEST_F(VelkctlDeviceTest, AChangeIsStoppedAtItsTimeout) {
    testkit::WriteFile("/etc/dhclient-exit-hooks", "/usr/sbin/avahi-autoipd eth0\n");
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run({VELK_SET, VELK_CMD_APIPA, "eth0"}, {0, 1}, "eth0.apipa");
    EXPECT_EQ(OneLine(ProblemOf("eth0.apipa: could not be set", "", answer)),
              "eth0.apipa: could not be set; no answer after 1 s; eth0.apipa may be incomplete; "
              "fix: run it again with a longer --timeout");
    EXPECT_FALSE(testkit::Exists("/var/tmp/dhclient-exit-hooks"));
}

TEST_F(VelkctlDeviceTest, AReadingAtItsTimeoutChangedNothing) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run({VELK_GET, VELK_CMD_LINK_SPEED, "eth0"}, {0, 1}, "eth0.link-speed");
    EXPECT_EQ(OneLine(ProblemOf("eth0.link-speed: could not be read", "", answer)),
              "eth0.link-speed: could not be read; no answer after 1 s; waited for ethtool to "
              "finish; fix: run it again with a longer --timeout");
}

// ---- Signals that the caller holds back --------------------------------------------------------

// Takes a pending signal away, which would end the tests.
void Forget(const StopSignals& signals) {
    int signal = 0;
    (void)sigwait(&signals.signals(), &signal);
}

TEST_F(VelkctlDeviceTest, ASignalEndsTheCommandAloneIfTheCallerGoesOn) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    Report report(Report::Form::kText);
    const StopSignals signals;
    (void)raise(SIGTERM);
    const Answer answer =
        Device({}, report, OnSignal::kEndCommand).Execute(kRestart, {}, "restart of eth0");
    Forget(signals);
    EXPECT_TRUE(answer.interrupted);
    EXPECT_FALSE(answer.ok());
    EXPECT_EQ(StatusOf(answer), ExitStatus::kFailed);
    EXPECT_EQ(OneLine(ProblemOf("eth0: could not be restarted", "", answer)),
              "eth0: could not be restarted; a signal has ended it");
}

// A change of files alone is usually finished within a second: a signal waits for it.
TEST_F(VelkctlDeviceTest, AShortChangeIsFinishedBeforeASignalEndsIt) {
    testkit::WriteFile(testkit::kExitHooks, "#/usr/sbin/avahi-autoipd eth0\n");
    libc().OnCall(Call::kSystem, [](const Event&) { (void)usleep(200 * 1000); });
    Report report(Report::Form::kText);
    const Data on{VELK_ON};
    const StopSignals signals;
    (void)raise(SIGTERM);
    const Answer answer = Device({}, report, OnSignal::kEndCommand)
                              .Execute({VELK_SET, VELK_CMD_APIPA, "eth0"}, on, "eth0.apipa");
    Forget(signals);
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
    EXPECT_FALSE(answer.interrupted);
    EXPECT_EQ(testkit::ReadFile(testkit::kExitHooks), "/usr/sbin/avahi-autoipd eth0\n");
}

TEST_F(VelkctlDeviceTest, AChangeThatHangsIsEndedSoonAfterASignal) {
    testkit::WriteFile(testkit::kExitHooks, "/usr/sbin/avahi-autoipd eth0\n");
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    Report report(Report::Form::kText);
    const StopSignals signals;
    (void)raise(SIGTERM);
    const Answer answer = Device({}, report, OnSignal::kEndCommand)
                              .Execute({VELK_SET, VELK_CMD_APIPA, "eth0"}, {}, "eth0.apipa");
    Forget(signals);
    EXPECT_TRUE(answer.interrupted);
}

TEST_F(VelkctlDeviceTest, ACommandThatPutsTheDeviceInOrderIsNotEndedByASignal) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) { (void)usleep(100 * 1000); });
    Report report(Report::Form::kText);
    const StopSignals signals;
    (void)raise(SIGTERM);
    const Answer answer =
        Device({}, report, OnSignal::kFinishCommand).Execute(kRestart, {}, "restart of eth0");
    Forget(signals);
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
}

TEST_F(VelkctlDeviceTest, ASignalEndsTheWaitForTheLockIfTheCallerGoesOn) {
    Report report(Report::Form::kText);
    report.set_detail(Report::Detail::kQuiet);
    const int lock = VkLibLock();
    const StopSignals signals;
    (void)raise(SIGTERM);
    const Answer answer =
        Device({30, 0}, report, OnSignal::kEndCommand).Execute(kSetDns, {}, "eth0.dns");
    Forget(signals);
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_EQ(libc().Texts(Call::kNanosleep), std::vector<std::string>{"50000000"});
}

TEST_F(VelkctlDeviceTest, ALibraryThatIsKilledIsAFailure) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)raise(SIGKILL); });
    const Answer answer = Run(kRestart, {}, "restart of eth0");
    EXPECT_FALSE(answer.timed_out);
    EXPECT_EQ(answer.result, LIB_VELK_FAILURE);
    EXPECT_EQ(error,
              "velkctl: note: restart of eth0: the library ended without an answer, by signal 9 "
              "(Killed)\n");
}

TEST_F(VelkctlDeviceTest, OutputOfToolsIsShownWithAProblem) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        constexpr char kOutput[] = "b\x1b\nifdown: interface eth0 not configured\na\nb\x1b\n";
        (void)write(STDERR_FILENO, kOutput, sizeof(kOutput) - 1);
    });
    const Answer answer = Run(kRestart, {}, "restart of eth0", [](Report& report) {
        report.Complain("the restart failed");
        report.Complain("another failure");
    });
    EXPECT_EQ(answer.tool_output.front(), "b\x1b");
    const std::string lines =
        "velkctl: restart of eth0: b\\x1b\nvelkctl: restart of eth0: a\n"
        "velkctl: restart of eth0: b\\x1b\n";
    EXPECT_EQ(error, lines + lines + "velkctl: the restart failed\nvelkctl: another failure\n")
        << "of two runs of the shell";
}

TEST_F(VelkctlDeviceTest, OutputOfToolsIsNotShownWithoutAProblem) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) { (void)write(STDERR_FILENO, "a\n", 2); });
    EXPECT_EQ(Run(kRestart, {}, "restart of eth0").result, LIB_VELK_SUCCESS);
    EXPECT_EQ(error, "");
}

TEST_F(VelkctlDeviceTest, VerboseShowsAllOutputOfTools) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        (void)write(STDERR_FILENO, "ifdown: interface eth0 not configured\n", 38);
    });
    detail = Report::Detail::kVerbose;
    (void)Run(kRestart, {}, "restart of eth0");
    const std::string line = "velkctl: restart of eth0: ifdown: interface eth0 not configured\n";
    EXPECT_EQ(error, line + line);
}

TEST_F(VelkctlDeviceTest, ARestartEndsWithItsToolsInTheBackground) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        if (fork() == 0) {
            (void)usleep(300 * 1000);
            testkit::WriteFile("/tmp/ended", "");
            _exit(0);
        }
    });
    Report report(Report::Form::kText);
    EXPECT_EQ(Device({}, report).Restart("eth0", {}).result, LIB_VELK_SUCCESS);
    EXPECT_TRUE(testkit::Exists("/tmp/ended"));
}

TEST_F(VelkctlDeviceTest, ARestartIsStoppedWithItsToolsInTheBackground) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        if (fork() == 0) {
            (void)pause();
            _exit(0);
        }
    });
    Report report(Report::Form::kText);
    const Answer answer = Device({0, 1}, report).Restart("eth0", {});
    EXPECT_TRUE(answer.timed_out);
    EXPECT_NE(answer.awaited.find("unit_tests"), std::string::npos) << answer.awaited;
}

TEST_F(VelkctlDeviceTest, AConfiguredAddressNeedsNoProcessAndALeaseDoes) {
    constexpr Command kGetAddress{VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"};
    testkit::WriteFile("/etc/network/interfaces", "iface eth0 inet static\naddress 10.0.0.5\n");
    EXPECT_STREQ(Run(kGetAddress, {}, "eth0.address").data.data(), "10.0.0.5");
    EXPECT_EQ(libc().Texts(Call::kOpen).size(), 2U) << "for the method and the address";
    testkit::WriteFile("/etc/network/interfaces", "iface eth0 inet dhcp\n");
    (void)Run(kGetAddress, {}, "eth0.address");
    EXPECT_EQ(libc().Texts(Call::kOpen).size(), 3U) << "for the method";
}

TEST_F(VelkctlDeviceTest, AReadingOfAFileNeedsNoProcess) {
    testkit::WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    const Answer answer = Run({VELK_GET, VELK_CMD_DNS, "eth0"}, {}, "eth0.dns");
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
    // A child's calls would not be recorded here.
    std::vector<std::string> opened = libc().Texts(Call::kOpen);
    EXPECT_EQ(opened, std::vector<std::string>{kResolverFile});
}

}  // namespace
