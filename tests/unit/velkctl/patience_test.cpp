// Commands that find the device busy or take long.
#include "velkctl/patience.h"

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testing::MatchesRegex;
using testkit::Call;
using testkit::Event;
using testkit::Return;
using velkctl::Answer;
using velkctl::Command;
using velkctl::Data;
using velkctl::ExitStatus;
using velkctl::Invocation;
using velkctl::Patience;
using velkctl::PatienceOf;
using velkctl::Report;

constexpr char kResolver[] = "/etc/resolv.dnsmasq.conf";
constexpr Command kSetDns{VELK_SET, VELK_CMD_DNS, "eth0"};
constexpr Command kRestart{VELK_RESTART, VELK_CMD_RESTART, "eth0"};

class PatienceTest : public testkit::DeviceTest {
  protected:
    Answer Run(const Command& command, const Patience& patience, const std::string& what) {
        Data data{};
        (void)std::string("10.0.0.1").copy(data.data(), data.size());
        Report report(Report::Form::kText);
        testing::internal::CaptureStderr();
        Answer answer = ExecutePatiently(command, data, patience, what, report);
        error = testing::internal::GetCapturedStderr();
        return answer;
    }
    std::optional<Patience> Parse(const std::optional<std::string>& wait,
                                  const std::optional<std::string>& timeout) {
        Invocation invocation;
        invocation.wait = wait;
        invocation.timeout = timeout;
        Report report(Report::Form::kText);
        testing::internal::CaptureStderr();
        const std::optional<Patience> patience = PatienceOf(invocation, report);
        error = testing::internal::GetCapturedStderr();
        return patience;
    }
    // "process 1234 (unit_tests)"
    static std::string ThisProcess() {
        return "process " + std::to_string(getpid()) + " (unit_tests)";
    }
    std::string error;
};

TEST_F(PatienceTest, ThereIsNoneUnlessItIsAskedFor) {
    const auto patience = Parse(std::nullopt, std::nullopt);
    ASSERT_TRUE(patience);
    EXPECT_EQ(patience->wait_seconds, 0);
    EXPECT_EQ(patience->timeout_seconds, 0);
}

TEST_F(PatienceTest, IsInSeconds) {
    const auto patience = Parse("30", "86400");
    ASSERT_TRUE(patience);
    EXPECT_EQ(patience->wait_seconds, 30);
    EXPECT_EQ(patience->timeout_seconds, 86400);
}

TEST_F(PatienceTest, IsRefusedWhenItIsNoNumber) {
    EXPECT_FALSE(Parse("soon", std::nullopt));
    EXPECT_EQ(error, "velkctl: --wait: 'soon' is not a time; give whole seconds, 1 to 86400\n");
    for (const char* word : {"", "0", "-1", "1.5", "5s", " 5", "86401", "99999999999"}) {
        EXPECT_FALSE(Parse(std::nullopt, word));
        EXPECT_EQ(error, "velkctl: --timeout: '" + std::string(word) +
                             "' is not a time; give whole seconds, 1 to 86400\n");
    }
}

TEST_F(PatienceTest, ACommandThatFindsTheLockFreeDoesNotWait) {
    const Answer answer = Run(kSetDns, {30, 0}, "eth0.dns");
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
    EXPECT_EQ(testkit::ReadFile(kResolver), "nameserver 10.0.0.1\n");
    EXPECT_TRUE(libc().Texts(Call::kNanosleep).empty());
    EXPECT_EQ(error, "");
}

TEST_F(PatienceTest, WithoutPatienceALockedDeviceIsReportedAtOnce) {
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    EXPECT_EQ(StatusOf(answer), ExitStatus::kLocked);
    EXPECT_EQ(DescribeFailure("eth0.dns: could not be set", answer),
              "eth0.dns: could not be set: another program is changing settings now, try again "
              "(LIB_VELK_LOCKED, -3); " +
                  ThisProcess() + " holds the lock");
    EXPECT_TRUE(libc().Texts(Call::kNanosleep).empty());
    EXPECT_EQ(error, "");
}

TEST_F(PatienceTest, AHolderThatCannotBeFoundIsLeftOut) {
    libc().Redirect("/proc/locks", "/tmp/missing");
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {1, 0}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(DescribeFailure("eth0.dns: could not be set", answer),
              "eth0.dns: could not be set: another program is changing settings now, try again "
              "(LIB_VELK_LOCKED, -3)");
    EXPECT_EQ(error, "velkctl: waiting for the lock\n");
}

TEST_F(PatienceTest, ALockThatIsHeldIsTriedLessAndLessOften) {
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {4, 0}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
    // The nanoseconds beside the whole seconds.
    EXPECT_EQ(libc().Texts(Call::kNanosleep),
              (std::vector<std::string>{"50000000", "100000000", "200000000", "400000000",
                                        "800000000", "0", "0", "450000000"}));
    EXPECT_FALSE(testkit::Exists(kResolver));
    EXPECT_THAT(error, MatchesRegex("velkctl: waiting for the lock, held by process [0-9]+ "
                                    "\\(unit_tests\\) since [0-9]+ s\n"));
}

TEST_F(PatienceTest, ALockThatIsGivenBackIsTaken) {
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
    EXPECT_EQ(answer.remark, "");
    EXPECT_EQ(pauses, 3);
    EXPECT_EQ(testkit::ReadFile(kResolver), "nameserver 10.0.0.1\n");
}

TEST_F(PatienceTest, ATimeoutEndsTheWaitingToo) {
    const int lock = VkLibLock();
    const Answer answer = Run(kSetDns, {30, 1}, "eth0.dns");
    VkLibUnLock(lock);
    EXPECT_FALSE(answer.timed_out);
    EXPECT_EQ(answer.result, LIB_VELK_LOCKED);
}

TEST_F(PatienceTest, ARestartThatTakesTooLongIsGivenUp) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run(kRestart, {0, 1}, "restart of eth0");
    EXPECT_TRUE(answer.timed_out);
    EXPECT_EQ(StatusOf(answer), ExitStatus::kTimedOut);
    EXPECT_EQ(DescribeFailure("eth0: could not be restarted", answer),
              "eth0: could not be restarted: given up, it took too long; it may be half done");
    EXPECT_EQ(WhyNot(answer), "given up, it took too long");
    EXPECT_EQ(error, "");
}

TEST_F(PatienceTest, AChangeThatTakesTooLongIsGivenUp) {
    testkit::WriteFile("/etc/dhclient-exit-hooks", "/usr/sbin/avahi-autoipd eth0\n");
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run({VELK_SET, VELK_CMD_APIPA, "eth0"}, {0, 1}, "eth0.apipa");
    EXPECT_EQ(DescribeFailure("eth0.apipa: could not be set", answer),
              "eth0.apipa: could not be set: given up, it took too long; it may be half changed");
    EXPECT_FALSE(testkit::Exists("/var/tmp/dhclient-exit-hooks"));
}

TEST_F(PatienceTest, AReadingThatTakesTooLongChangedNothing) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    const Answer answer = Run({VELK_GET, VELK_CMD_LINK_SPEED, "eth0"}, {0, 1}, "eth0.link-speed");
    EXPECT_EQ(DescribeFailure("eth0.link-speed: could not be read", answer),
              "eth0.link-speed: could not be read: given up, it took too long");
}

TEST_F(PatienceTest, ALibraryThatIsKilledIsAFailure) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)raise(SIGKILL); });
    const Answer answer = Run(kRestart, {}, "restart of eth0");
    EXPECT_FALSE(answer.timed_out);
    EXPECT_EQ(answer.result, LIB_VELK_FAILURE);
    EXPECT_EQ(error,
              "velkctl: restart of eth0: the library ended without an answer, by signal 9 "
              "(Killed)\n");
}

TEST_F(PatienceTest, WhatIsReadFromAFileNeedsNoProcess) {
    testkit::WriteFile(kResolver, "nameserver 10.0.0.1\n");
    const Answer answer = Run({VELK_GET, VELK_CMD_DNS, "eth0"}, {}, "eth0.dns");
    EXPECT_EQ(answer.result, LIB_VELK_SUCCESS);
    // A child's calls would not be recorded here.
    std::vector<std::string> opened = libc().Texts(Call::kOpen);
    EXPECT_EQ(opened, std::vector<std::string>{kResolver});
}

}  // namespace
