// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/wait.h"

#include <chrono>
#include <csignal>

#include <gmock/gmock.h>
#include <sys/time.h>

#include "support/device_test.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testkit::Call;
using testkit::Return;

constexpr milliseconds kSecond{1000};

milliseconds TimeOfWaiting(unsigned seconds) {
    const auto start = std::chrono::steady_clock::now();
    velk::WaitSeconds(seconds);
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

void IgnoreAlarm(int /*signal*/) {
}

// Has a handler run at each of these intervals.
class Timer {
  public:
    explicit Timer(milliseconds interval) {
        struct sigaction action {};
        action.sa_handler = IgnoreAlarm;
        sigaction(SIGALRM, &action, &old_action_);
        const timeval pause{0, std::chrono::microseconds(interval).count()};
        const itimerval timer{pause, pause};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
    ~Timer() {
        const itimerval none{};
        setitimer(ITIMER_REAL, &none, nullptr);
        sigaction(SIGALRM, &old_action_, nullptr);
    }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

  private:
    struct sigaction old_action_ {};
};

class WaitTest : public testkit::DeviceTest {};

TEST_F(WaitTest, SleepsTheTimeInOneCall) {
    velk::WaitSeconds(30);
    EXPECT_THAT(libc().Texts(Call::kSleep), ElementsAre("30"));
    EXPECT_THAT(libc().Events(Call::kClockNanosleep), IsEmpty());
}

TEST_F(WaitTest, NoTimeIsNoWait) {
    velk::WaitSeconds(0);
    EXPECT_THAT(libc().Events(Call::kClockNanosleep), IsEmpty());
}

TEST_F(WaitTest, LastsItsTimeUndisturbed) {
    libc().SleepForReal();
    EXPECT_THAT(TimeOfWaiting(1), Ge(kSecond));
    EXPECT_THAT(libc().Events(Call::kClockNanosleep), IsEmpty());
}

TEST_F(WaitTest, LastsItsTimeUnderSignalsTwentyTimesASecond) {
    libc().SleepForReal();
    const Timer timer(milliseconds(50));
    EXPECT_THAT(TimeOfWaiting(2), Ge(2 * kSecond));
    EXPECT_THAT(libc().Texts(Call::kSleep), ElementsAre("2"));
}

TEST_F(WaitTest, LastsItsTimeUnderASignalInTheLastSecond) {
    libc().SleepForReal();
    const Timer timer(milliseconds(700));
    EXPECT_THAT(TimeOfWaiting(1), Ge(kSecond));
}

TEST_F(WaitTest, ASleepThatAlwaysReturnsItsArgumentDoesNotHangIt) {
    libc().ScriptAlways(Call::kSleep, Return(1));
    EXPECT_THAT(TimeOfWaiting(1), Ge(kSecond));
    EXPECT_THAT(libc().Texts(Call::kSleep), ElementsAre("1"));
}

}  // namespace
