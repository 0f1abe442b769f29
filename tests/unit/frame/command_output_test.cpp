#include "frame/command_output.h"

#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::MakeRequest;
using testkit::Return;
using velk::CommandLine;
using velk::CommandOutput;

constexpr char kLockFile[] = "/var/tmp/get_result_lock";

class CommandOutputTest : public testkit::DeviceTest {
  protected:
    static std::vector<std::string> LinesOf(CommandOutput& output) {
        std::vector<std::string> lines;
        for (std::string_view line; output.Next(line);) {
            lines.emplace_back(line);
        }
        return lines;
    }
};

TEST_F(CommandOutputTest, YieldsTheLinesOfARealCommandAndRemovesTheFile) {
    CommandOutput output(CommandLine("printf 'one\\ntwo' > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), 0);
    EXPECT_TRUE(output.is_open());
    EXPECT_FALSE(output.is_empty());
    EXPECT_THAT(LinesOf(output), ElementsAre("one", "two"));
    output.Remove();
    EXPECT_FALSE(testkit::Exists("/var/tmp/get_result"));
    EXPECT_THAT(libc().Commands(),
                ElementsAre("printf 'one\\ntwo' > /var/tmp/get_result", "rm /var/tmp/get_result"));
}

TEST_F(CommandOutputTest, AFailedCommandLeavesAnEmptyResult) {
    CommandOutput output(CommandLine("false > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), 0);
    EXPECT_TRUE(output.is_open());
    EXPECT_TRUE(output.is_empty());
    EXPECT_TRUE(testkit::Exists("/var/tmp/get_result")) << "it stays until Remove()";
}

TEST_F(CommandOutputTest, AShellThatCannotBeRunIsSaid) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    testkit::WriteFile("/var/tmp/get_result", "old");
    const CommandOutput output(CommandLine("true > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), -1);
    EXPECT_FALSE(output.is_open()) << "an older result is not read";
    EXPECT_FALSE(output.is_empty());
}

TEST_F(CommandOutputTest, ALineThatDoesNotFitIsNotRun) {
    const CommandOutput output(
        CommandLine("true %s > %s", std::string(300, 'x').c_str(), velk::kResultFile));
    EXPECT_EQ(output.run_result(), -4);
    EXPECT_FALSE(output.is_open());
}

TEST_F(CommandOutputTest, TheReadersLockIsHeldUntilTheEnd) {
    const auto is_locked = [] {
        const velk::UniqueFd fd(open(kLockFile, O_RDWR | O_CLOEXEC));
        return flock(fd.get(), LOCK_EX | LOCK_NB) == -1;
    };
    bool locked_while_running = false;
    libc().OnCall(Call::kSystem,
                  [&](const testkit::Event&) { locked_while_running = is_locked(); });
    {
        CommandOutput output(CommandLine("true > %s", velk::kResultFile));
        EXPECT_TRUE(locked_while_running);
        locked_while_running = false;
        output.Remove();
        EXPECT_TRUE(locked_while_running) << "while the file is removed";
        EXPECT_TRUE(is_locked());
    }
    EXPECT_FALSE(is_locked());
}

TEST_F(CommandOutputTest, TheLockFileIsForEveryUserAndCloseOnExec) {
    const mode_t saved = umask(077);
    { const CommandOutput output(CommandLine("true > %s", velk::kResultFile)); }
    umask(saved);
    struct stat status {};
    ASSERT_EQ(stat(kLockFile, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0666U);
    for (const testkit::Event& event : libc().Events(Call::kOpen)) {
        EXPECT_NE(event.number & O_CLOEXEC, 0) << event.text;
    }
}

TEST_F(CommandOutputTest, AChildThatIsLeftRunningDoesNotHoldTheLock) {
    {
        const CommandOutput output(
            CommandLine("sleep 5 >/dev/null 2>&1 & true > %s", velk::kResultFile));
    }
    const velk::UniqueFd fd(open(kLockFile, O_RDWR | O_CLOEXEC));
    EXPECT_EQ(flock(fd.get(), LOCK_EX | LOCK_NB), 0);
}

TEST_F(CommandOutputTest, SignalsDoNotShortenTheWaitForTheLock) {
    const velk::UniqueFd holder(open(kLockFile, O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    ASSERT_EQ(flock(holder.get(), LOCK_EX), 0);
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().Script(Call::kNanosleep, {Fail(EINTR), Fail(EINTR)});
    const CommandOutput output(CommandLine("true > %s", velk::kResultFile));
    EXPECT_EQ(libc().Texts(Call::kNanosleep).size(), 302U);
}

TEST_F(CommandOutputTest, AHeldLockIsWaitedForAFewSecondsAndThenDoneWithout) {
    const velk::UniqueFd holder(open(kLockFile, O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    ASSERT_EQ(flock(holder.get(), LOCK_EX), 0);
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    CommandOutput output(CommandLine("echo here > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre("here"));
    EXPECT_EQ(libc().Events(Call::kNanosleep).size(), 300U) << "of 10 ms: 3 seconds";
    EXPECT_EQ(libc().Events(Call::kNanosleep)[0].text, "10000000");
}

TEST_F(CommandOutputTest, ALockThatCannotBeHadIsDoneWithout) {
    libc().Script(Call::kOpen, {Fail(EACCES), Fail(EACCES)});
    CommandOutput output(CommandLine("echo here > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre("here"));
    EXPECT_TRUE(libc().Events(Call::kFlock).empty());
    EXPECT_TRUE(libc().Events(Call::kFchmod).empty());
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(CommandOutputTest, ALinkInTheLocksPlaceIsNeverFollowed) {
    { const CommandOutput output(CommandLine("true > %s", velk::kResultFile)); }
    const std::vector<testkit::Event> opens = libc().Events(Call::kOpen);
    ASSERT_GE(opens.size(), 2U);
    EXPECT_EQ(opens[0].number, O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    EXPECT_EQ(opens[1].number, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC);
}

TEST_F(CommandOutputTest, OnlyAHeldLockIsWaitedFor) {
    libc().ScriptAlways(Call::kFlock, Fail(ENOLCK));
    CommandOutput output(CommandLine("echo here > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre("here"));
    EXPECT_TRUE(libc().Events(Call::kNanosleep).empty());
}

TEST_F(CommandOutputTest, APlantedLinkIsNotFollowed) {
    ASSERT_EQ(symlink("/var/tmp/elsewhere", kLockFile), 0);
    CommandOutput output(CommandLine("echo here > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre("here"));
    EXPECT_FALSE(testkit::Exists("/var/tmp/elsewhere"));
}

TEST_F(CommandOutputTest, TheFileIsClosedBeforeItIsRemoved) {
    CommandOutput output(CommandLine("echo here > %s", velk::kResultFile));
    size_t before = testkit::OpenDescriptors().size();
    size_t while_removing = 0;
    libc().OnCall(Call::kSystem, [&](const testkit::Event&) {
        while_removing = testkit::OpenDescriptors().size();
    });
    output.Remove();
    EXPECT_EQ(while_removing, before - 1);
}

TEST_F(CommandOutputTest, ItIsNotTheSetLock) {
    const int lock = VkLibLock();
    CommandOutput output(CommandLine("echo here > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre("here"));
    EXPECT_TRUE(libc().Events(Call::kNanosleep).empty());
    VkLibUnLock(lock);
}

// Two processes that read other things through the one result file, thousands of times.
class TwoReadersTest : public testkit::DeviceTest {
  protected:
    static constexpr int kRounds = 5000;

    // Counts the wrong answers of both readers.
    static int WrongAnswers() {
        testkit::FakeShell shell;
        shell.Prints("sudo ethtool eth0",
                     {"Speed: 100Mb/s\nDuplex: Full\nAuto-negotiation: off\n"});
        shell.Prints("ifconfig", {"eth0 x\n     inet addr:192.168.0.10  Mask:255.255.255.0\n"});
        const pid_t child = fork();
        if (child == 0) {
            _exit(WrongSpeeds() == 0 ? 0 : 1);
        }
        const int wrong_addresses = WrongAddresses();
        int status = 0;
        waitpid(child, &status, 0);
        return wrong_addresses + (status == 0 ? 0 : 1);
    }

    static int WrongSpeeds() {
        int wrong = 0;
        for (int i = 0; i < kRounds; ++i) {
            _velk_request answer;
            const _velk_request request = MakeRequest(VELK_GET, VELK_CMD_LINK_SPEED, "eth0");
            const int result = execute_velk_command(&request, &answer);
            wrong += result != 0 || answer.data[0] != VELK_LINK_100_FULL ? 1 : 0;
        }
        return wrong;
    }

    static int WrongAddresses() {
        int wrong = 0;
        for (int i = 0; i < kRounds; ++i) {
            char out[VELK_DATA_SIZE] = "";
            const int result = GetIpAddress(MakeRequest(VELK_GET, 104, "eth0"), out);
            wrong += result != 0 || strcmp(out, "192.168.0.10") != 0 ? 1 : 0;
        }
        return wrong;
    }
};

TEST_F(TwoReadersTest, NeverReadEachOthersOutput) {
    EXPECT_EQ(WrongAnswers(), 0);
}

TEST_F(TwoReadersTest, DoSoWithoutTheLock) {
    libc().ScriptAlways(Call::kFlock, Return(0));
    EXPECT_GT(WrongAnswers(), 0) << "the test above would not notice a missing lock";
}

}  // namespace
