// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/command_output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::MakeRequest;
using testkit::Pass;
using testkit::Return;
using velk::CommandLine;
using velk::CommandOutput;

class CommandOutputTest : public testkit::DeviceTest {
  protected:
    static std::vector<std::string> FilesIn(const char* folder) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
    static std::vector<std::string> LinesOf(CommandOutput& output) {
        std::vector<std::string> lines;
        for (std::string_view line; output.ReadLine(line);) {
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
    EXPECT_FALSE(testkit::Exists(testkit::kResultFile));
    EXPECT_THAT(libc().Commands(),
                ElementsAre("printf 'one\\ntwo' > /var/tmp/get_result", "rm /var/tmp/get_result"));
}

TEST_F(CommandOutputTest, AFailedCommandLeavesAnEmptyResult) {
    CommandOutput output(CommandLine("false > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), 0);
    EXPECT_TRUE(output.is_open());
    EXPECT_TRUE(output.is_empty());
    EXPECT_TRUE(testkit::Exists(testkit::kResultFile)) << "it stays until Remove()";
}

TEST_F(CommandOutputTest, AShellThatCannotBeRunIsReported) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    testkit::WriteFile(testkit::kResultFile, "old");
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

TEST_F(CommandOutputTest, TheTurnIsHeldUntilTheEnd) {
    const auto is_locked = [] {
        const velk::UniqueFd fd(open(testkit::kEditFolder, O_RDONLY | O_CLOEXEC));
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

TEST_F(CommandOutputTest, NothingButTheResultIsLeftInTheFolder) {
    { const CommandOutput output(CommandLine("true > %s", velk::kResultFile)); }
    EXPECT_THAT(FilesIn(testkit::kEditFolder), ElementsAre("get_result"));
    CommandOutput(CommandLine("true > %s", velk::kResultFile)).Remove();
    EXPECT_THAT(FilesIn(testkit::kEditFolder), IsEmpty());
}

TEST_F(CommandOutputTest, AShellThatDoesNotRunLeavesNothing) {
    libc().Script(Call::kSystem, {Return(127 << 8)});
    const CommandOutput output(CommandLine("true > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), 0);
    EXPECT_FALSE(output.is_open());
    EXPECT_THAT(FilesIn(testkit::kEditFolder), IsEmpty());
}

TEST_F(CommandOutputTest, AShellThatCannotBeRunLeavesNothing) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    const CommandOutput output(CommandLine("true > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), -1);
    EXPECT_THAT(FilesIn(testkit::kEditFolder), IsEmpty());
}

TEST_F(CommandOutputTest, AFileThatCannotBeTheCallersIsNotWrittenTo) {
    libc().Script(Call::kOpen, {Pass(), Fail(EEXIST)});
    testkit::WriteFile("/var/tmp/other", "theirs");
    ASSERT_EQ(link("/var/tmp/other", velk::kResultFile), 0);
    libc().ScriptAlways(Call::kUnlink, Fail(EPERM));
    const CommandOutput output(CommandLine("echo ours > %s", velk::kResultFile));
    EXPECT_EQ(output.run_result(), 0);
    EXPECT_FALSE(output.is_open());
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_EQ(testkit::ReadFile("/var/tmp/other"), "theirs");
}

TEST_F(CommandOutputTest, ALineOf64KBIsRead) {
    CommandOutput output(
        CommandLine("{ printf %%065535d 0; echo; echo end; } > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre(std::string(65535, '0'), "end"));
}

TEST_F(CommandOutputTest, ALongerLineEndsTheReading) {
    CommandOutput output(
        CommandLine("{ echo first; printf %%065536d 0; echo; echo end; } > %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), ElementsAre("first"));
}

TEST_F(CommandOutputTest, AFileWithoutNewlinesIsNotReadToItsEnd) {
    CommandOutput output(CommandLine("truncate -s 1G %s", velk::kResultFile));
    EXPECT_THAT(LinesOf(output), IsEmpty());
    EXPECT_LT(libc().Events(Call::kRead).size(), 5U);
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

TEST_F(CommandOutputTest, AReaderDoesNotWaitForTheSetLock) {
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

TEST_F(TwoReadersTest, ReadEachOthersOutputWithoutTheLock) {
    libc().ScriptAlways(Call::kFlock, Return(0));
    EXPECT_GT(WrongAnswers(), 0) << "the test above would not notice a missing lock";
}

}  // namespace
