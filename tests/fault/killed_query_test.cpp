// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A killed wireless query leaves its request at the daemon, its semaphore and its socket to the
// next query. The daemon keeps running.
#include <csignal>
#include <cstring>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::FakeDaemon;
using testkit::kReplySocket;
using testkit::kSemaphoreFile;
using testkit::LibcRecorder;

constexpr char kProduct[] = "P:  Vendor=2c51 ProdID=0a12 Rev= 1.04";

// The calls of a query, in their order. A kill comes right before one of them.
constexpr Call kKillPoints[] = {Call::kSemOpen,  Call::kConnect,  Call::kSendto,
                                Call::kBind,     Call::kSemPost,  Call::kSelect,
                                Call::kRecvfrom, Call::kSemClose, Call::kSemUnlink};

class KilledQueryTest : public testkit::DeviceTest {
  protected:
    KilledQueryTest() {
        WriteFiles({});
        shell_.emplace();
        shell_->Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
        StartDaemon();
    }
    void TearDown() override {
        daemon_.reset();
        shell_.reset();
        DeviceTest::TearDown();
    }

    void StartDaemon() {
        daemon_.reset();
        daemon_.emplace();
        SMsgConf conf{};
        conf.ssid_length = 4;
        memcpy(conf.ssid, "home", 4);
        conf.channel = 6;
        daemon_->SetConf(conf);
        SMsgState state{};
        strcpy(state.product, kProduct);
        daemon_->SetState(state);
    }

    // Runs a get in a child that sends itself this signal right before its first call of this kind.
    static pid_t InterruptGetAt(Call call, uint32_t id, int signal) {
        const pid_t child = fork();
        if (child == 0) {
            LibcRecorder::Get().OnCall(call, [signal](const Event&) { (void)raise(signal); });
            const _velk_request request = testkit::MakeRequest(VELK_GET, id, "eth1");
            _velk_request own{};
            (void)execute_velk_command(&request, &own);
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, WUNTRACED), child);
        EXPECT_EQ(signal == SIGSTOP ? WIFSTOPPED(status) : WIFSIGNALED(status), true) << status;
        return child;
    }
    static void KillGetAt(Call call, uint32_t id) { (void)InterruptGetAt(call, id, SIGKILL); }

    // Waits until the daemon, a thread of this process, has opened the semaphore.
    static void AwaitDaemonAtTheSemaphore() {
        for (int tries = 0; tries < 1000; ++tries) {
            if (testkit::ReadFile("/proc/self/maps").find(kSemaphoreFile) != std::string::npos) {
                return;
            }
            usleep(10 * 1000);
        }
        FAIL() << "the daemon did not come";
    }

    void ExpectNothingLeft() {
        EXPECT_FALSE(testkit::Exists(kReplySocket));
        EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
    }

    std::optional<testkit::FakeShell> shell_;
    std::optional<FakeDaemon> daemon_;
};

TEST_F(KilledQueryTest, AKilledQueryLeavesNothingThatBlocksTheSameQuestion) {
    for (const Call call : kKillPoints) {
        SCOPED_TRACE(static_cast<int>(call));
        KillGetAt(call, VELK_CMD_SSID);
        EXPECT_EQ(Execute(VELK_GET, VELK_CMD_SSID, "eth1"), 0);
        EXPECT_STREQ(response.data, "home");
        ExpectNothingLeft();
        StartDaemon();
    }
}

// The daemon still waits until the killed query listens, and takes the next query for it. No reply
// says which query it belongs to.
TEST_F(KilledQueryTest, AKilledQueryMayLeaveItsAnswerToAGetOfTheOtherRecord) {
    KillGetAt(Call::kBind, VELK_CMD_RATE);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_CHANNEL, "eth1"), 0);
    EXPECT_EQ(response.data[0], 0) << "the byte of the state at the offset of the channel";
    ExpectNothingLeft();
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_CHANNEL, "eth1"), 0);
    EXPECT_EQ(response.data[0], 6);
}

TEST_F(KilledQueryTest, AKilledQueryLeavesNoAnswerWhereItsSemaphoreIsRemoved) {
    KillGetAt(Call::kBind, VELK_CMD_RATE);
    AwaitDaemonAtTheSemaphore();
    EXPECT_EQ(unlink(kSemaphoreFile), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_CHANNEL, "eth1"), 0);
    EXPECT_EQ(response.data[0], 6);
    ExpectNothingLeft();
}

TEST_F(KilledQueryTest, AKilledQueryMayLeaveItsAnswerToASetOfTheOtherRecord) {
    KillGetAt(Call::kBind, VELK_CMD_RATE);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_CHANNEL, "eth1", "\x0b"), 0);
    ExpectNothingLeft();
    daemon_->Stop();
    EXPECT_THAT(daemon_->types(), testing::ElementsAre(4, 3, 2));
    const SMsgConf stored = daemon_->conf();
    EXPECT_EQ(stored.channel, 11);
    EXPECT_EQ(memcmp(&stored, kProduct, strlen(kProduct)), 0) << "the rest is the state";
}

// Two gets at once, one of them slow, have the same effect: gets take no lock.
TEST_F(KilledQueryTest, AnOvertakenQueryMayLeaveItsAnswerToAGetOfTheOtherRecord) {
    const pid_t slow = InterruptGetAt(Call::kBind, VELK_CMD_RATE, SIGSTOP);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_CHANNEL, "eth1"), 0);
    EXPECT_EQ(response.data[0], 0);
    EXPECT_EQ(kill(slow, SIGKILL), 0);
    EXPECT_EQ(waitpid(slow, nullptr, 0), slow);
}

// A post without a waiting daemon, for example after its restart, would make the daemon answer the
// next query before that listens.
TEST_F(KilledQueryTest, APostOfAKilledQueryIsNotTakenForTheNextOnes) {
    daemon_->StaySilent();
    KillGetAt(Call::kSelect, VELK_CMD_SSID);
    StartDaemon();
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_SSID, "eth1"), 0);
    EXPECT_STREQ(response.data, "home");
    ExpectNothingLeft();
}

}  // namespace
}  // namespace fault
