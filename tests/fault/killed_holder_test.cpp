// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A process that is killed while it holds the lock.
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/concurrency.h"
#include "fault/kit/scene.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::kInterfacesCopy;
using testkit::LibcRecorder;

// Runs a set in a child that is killed while its first shell line would run.
void KillWhileHoldingTheLock(const _velk_request& request,
                             const std::function<void()>& before_the_end) {
    const pid_t child = fork();
    if (child == 0) {
        LibcRecorder::Get().OnCall(Call::kSystem, [&](const Event&) {
            const testkit::Unrecorded ours;
            before_the_end();
            (void)raise(SIGKILL);
        });
        _velk_request response;
        (void)execute_velk_command(&request, &response);
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        << "it was to die while it held the lock";
}

const _velk_request kSetAddress =
    testkit::MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.9.9.9");
const _velk_request kSetLinkSpeed =
    testkit::MakeRequest(VELK_SET, VELK_CMD_LINK_SPEED, "eth0", "\x01");

// Leaves a process running that a shell line has started, and stores its number.
void LeaveToolRunning() {
    LibcRecorder::Get().Reset();
    (void)!system("sleep 600 >/dev/null 2>&1 & echo $! >/run/tool");
}

void EndTool() {
    const pid_t tool = std::stoi(testkit::ReadFile("/run/tool"));
    EXPECT_GT(tool, 1);
    EXPECT_EQ(kill(tool, SIGKILL), 0) << "it was to run until now";
}

TEST_F(ConcurrencyTest, AKilledHolderFreesTheLock) {
    Device device({});
    KillWhileHoldingTheLock(kSetAddress, [] {});
    EXPECT_TRUE(testkit::Exists(kInterfacesCopy)) << "its edit copy stays";
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), 0);
    EXPECT_STREQ(response.data, "10.1.2.3");
    EXPECT_FALSE(testkit::Exists(kInterfacesCopy));
}

TEST_F(ConcurrencyTest, AKilledHolderFreesTheLockThoughAToolOfItsRunsOn) {
    Device device({});
    KillWhileHoldingTheLock(kSetLinkSpeed, LeaveToolRunning);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), 0);
    EndTool();
}

TEST_F(ConcurrencyTest, AKilledHoldersCopyingKeepsTheLockUntilItEnds) {
    Device device({});
    KillWhileHoldingTheLock(kSetAddress, LeaveToolRunning);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), -3);
    EndTool();
    while (Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3") == -3) {
        // The kernel takes a moment to end a process.
    }
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), 0);
    EXPECT_STREQ(response.data, "10.1.2.3");
}

}  // namespace
}  // namespace fault
