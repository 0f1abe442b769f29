// A process that is killed while it holds the lock.
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/concurrency.h"
#include "fault/scene.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::LibcRecorder;

// Runs a set in a child that is killed while its shell line would run.
void KillWhileHoldingTheLock(const std::function<void()>& before_the_end) {
    const pid_t child = fork();
    if (child == 0) {
        LibcRecorder::Get().OnCall(Call::kSystem, [&](const Event&) {
            const testkit::Unrecorded ours;
            before_the_end();
            (void)raise(SIGKILL);
        });
        const _velk_request request =
            testkit::MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.9.9.9");
        _velk_request response;
        (void)execute_velk_command(&request, &response);
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        << "it was to die while it held the lock";
}

TEST_F(ConcurrencyTest, AKilledHolderFreesTheLock) {
    Device device({});
    KillWhileHoldingTheLock([] {});
    EXPECT_TRUE(testkit::Exists("/var/tmp/interfaces")) << "its edit copy stays";
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), 0);
    EXPECT_STREQ(response.data, "10.1.2.3");
    EXPECT_FALSE(testkit::Exists("/var/tmp/interfaces"));
}

TEST_F(ConcurrencyTest, AKilledHolderFreesTheLockThoughAToolOfItsRunsOn) {
    Device device({});
    KillWhileHoldingTheLock([] {
        LibcRecorder::Get().Reset();
        (void)!system("sleep 600 >/dev/null 2>&1 & echo $! >/run/tool");
    });
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), 0);
    const pid_t tool = std::stoi(testkit::ReadFile("/run/tool"));
    EXPECT_GT(tool, 1);
    EXPECT_EQ(kill(tool, SIGKILL), 0) << "it was to run until now";
}

}  // namespace
}  // namespace fault
