// A command in a process of its own: its answer, its end and its tools.
#include "velkctl/call/child_call.h"

#include <csignal>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testkit::Call;
using testkit::Event;
using testkit::Exists;
using testkit::Return;
using testkit::WriteFile;
using velkctl::ChildCall;
using velkctl::Command;
using velkctl::StopSignals;

constexpr Command kGetDns{VELK_GET, VELK_CMD_DNS, "eth0"};
constexpr Command kRestart{VELK_RESTART, VELK_CMD_RESTART, "eth0"};

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
    EXPECT_TRUE(child.Stop());
    EXPECT_EQ(child.end_signal(), SIGKILL);
}

TEST_F(ChildCallTest, LetsAToolEndByItself) {
    libc().OnCall(Call::kSystem, [](const Event&) {
        if (fork() == 0) {
            WriteFile("/tmp/began", "");
            AwaitFile("/tmp/waited-for");
            WriteFile("/tmp/ended", "");
            _exit(0);
        }
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    AwaitFile("/tmp/began");
    // The first pause of Stop() lasts until the tool has ended, however busy the machine is.
    libc().OnCall(Call::kNanosleep, [](const Event&) {
        WriteFile("/tmp/waited-for", "");
        siginfo_t ended;
        EXPECT_EQ(waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT), 0);
    });
    EXPECT_TRUE(child.Stop());
    EXPECT_TRUE(Exists("/tmp/ended"));
}

TEST_F(ChildCallTest, DoesNotWaitForALongTool) {
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        if (const pid_t tool = fork(); tool == 0) {
            (void)pause();
        } else {
            WriteFile("/tmp/tool.new", std::to_string(tool));
            (void)rename("/tmp/tool.new", "/tmp/tool");
        }
        (void)pause();
    });
    ChildCall child(kRestart, {}, signals);
    AwaitFile("/tmp/tool");
    EXPECT_FALSE(child.Stop());
    EXPECT_EQ(libc().Texts(Call::kNanosleep), std::vector<std::string>(100, "10000000"));
    const pid_t tool = std::stoi(testkit::ReadFile("/tmp/tool"));
    (void)kill(tool, SIGKILL);
    (void)waitpid(tool, nullptr, 0);
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
        EXPECT_EQ(child.tool_output(), (std::vector<std::string>{"to output", "to errors"}))
            << "each line once";
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ChildCallTest, KeepsTheBeginningOfALongOutput) {
    libc().ScriptAlways(Call::kSystem, Return(0));
    libc().OnCall(Call::kSystem, [](const Event&) {
        for (int i = 10000; i < 20000; ++i) {
            (void)dprintf(STDERR_FILENO, "%d\n", i);
        }
    });
    ChildCall child(kRestart, {}, signals);
    EXPECT_TRUE(child.TakeAnswer());
    EXPECT_EQ(child.tool_output().size(), 1366U) << "of 8192 bytes";
}

TEST_F(ChildCallTest, EndsWithItsOwner) {
    libc().OnCall(Call::kSystem, [](const Event&) { (void)pause(); });
    { const ChildCall child(kRestart, {}, signals); }
    VkLibUnLock(VkLibLock());  // free, or this would leave a descriptor open
}

}  // namespace
