// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Hosts that get signals while they call.
#include <atomic>
#include <csignal>

#include <gmock/gmock.h>
#include <sys/time.h>

#include "fault/kit/host.h"
#include "support/fake_daemon.h"
#include "support/paths.h"

namespace fault {
namespace {

using testing::Contains;
using testkit::kReplySocket;
using testkit::kSemaphoreFile;
using testkit::LibcRecorder;

std::atomic<int> alarms = 0;

// The handler stays: a signal may be on its way when its timer is stopped.
void CountAlarms(int flags) {
    alarms = 0;
    struct sigaction action {};
    action.sa_handler = [](int) { ++alarms; };
    action.sa_flags = flags;
    sigaction(SIGALRM, &action, nullptr);
}

// Sends SIGALRM to the process repeatedly during its lifetime.
class AlarmStorm {
  public:
    explicit AlarmStorm(int flags) {
        CountAlarms(flags);
        Every(500);
    }
    ~AlarmStorm() { Every(0); }
    AlarmStorm(const AlarmStorm&) = delete;
    AlarmStorm& operator=(const AlarmStorm&) = delete;

  private:
    static void Every(suseconds_t microseconds) {
        const itimerval timer{{0, microseconds}, {0, microseconds}};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
};

TEST_F(HostTest, AHostWithSignalsArrivingCanSet) {
    for (const int flags : {0, SA_RESTART}) {
        const AlarmStorm storm(flags);
        for (const char* address : {"10.1.2.3", "10.1.2.4", "10.1.2.5"}) {
            EXPECT_TRUE(AddressCanBeSet(address)) << flags;
        }
        EXPECT_GT(alarms, 3) << "too calm";
    }
    EXPECT_THAT(libc().Logs(), testing::Not(Contains(testing::HasSubstr("Interrupted"))));
}

// A signal ends only the wait for the daemon. Nothing is changed, nothing remains, and the same
// query can be made again.
TEST(SignalTest, AQueryThatASignalInterruptsIsAFailure) {
    LibcRecorder::Get().Reset();
    testkit::EmptyDevice();
    testkit::FakeDaemon daemon;
    daemon.StaySilent();
    for (const int flags : {0, SA_RESTART}) {
        CountAlarms(flags);
        LibcRecorder::Get().OnCall(testkit::Call::kSelect, [](const testkit::Event&) {
            const itimerval soon{{0, 20 * 1000}, {0, 20 * 1000}};
            setitimer(ITIMER_REAL, &soon, nullptr);
        });
        LibcRecorder::Get().ForgetEvents();
        _velk_request response{};
        EXPECT_EQ(QuerySsid(response), -1);
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        EXPECT_THAT(LibcRecorder::Get().Logs(),
                    Contains("RecvWlanResponseMessage select errno=4:Interrupted system call"));
        EXPECT_FALSE(testkit::Exists(kReplySocket));
        EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
    }
    daemon.Stop();
    LibcRecorder::Get().Reset();
}

}  // namespace
}  // namespace fault
