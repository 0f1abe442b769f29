// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/shell.h"

#include <cerrno>
#include <csignal>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/device_test.h"
#include "support/kernel_features.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::ReadFile;

class ShellTest : public testkit::DeviceTest {};

TEST_F(ShellTest, RunsTheCommandInAShell) {
    EXPECT_EQ(SystemCommand("echo \"$((1 + 1))\" > /var/tmp/result"), 0);
    EXPECT_EQ(ReadFile("/var/tmp/result"), "2\n");
}

TEST_F(ShellTest, TheCommandsExitStatusIsNotExamined) {
    EXPECT_EQ(SystemCommand("false"), 0);
    EXPECT_EQ(SystemCommand("exit 127"), 0);
    EXPECT_EQ(SystemCommand("kill -9 $$"), 0);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ShellTest, AShellThatCannotBeRunIsLogged) {
    libc().Script(Call::kSystem, {Fail(EAGAIN)});
    EXPECT_EQ(SystemCommand("true"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=11:Resource temporarily unavailable"));
}

// In a program that ignores its children system(3) finds none, although the shell ran to its end.
TEST_F(ShellTest, AShellIsAFailureIfTheHostIgnoresItsChildren) {
    SKIP_WITHOUT(kIgnoredChildren);
    struct sigaction before {};
    struct sigaction ignore {};
    ignore.sa_flags = SA_NOCLDWAIT;
    ASSERT_EQ(sigaction(SIGCHLD, &ignore, &before), 0);
    EXPECT_EQ(SystemCommand("sleep 0.1; echo done > /var/tmp/result"), -1);
    sigaction(SIGCHLD, &before, nullptr);
    EXPECT_EQ(testkit::ReadFile("/var/tmp/result"), "done\n");
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=10:No child processes"));
}

TEST_F(ShellTest, AShellIsAFailureIfAnotherThreadReapedIt) {
    libc().Script(Call::kSystem, {Fail(ECHILD)});
    EXPECT_EQ(SystemCommand("true"), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=10:No child processes"));
}

TEST_F(ShellTest, FormatsTheCommandLine) {
    EXPECT_EQ(velk::CommandLine("true %s %d", "eth0", 5).Run(), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("true eth0 5"));
}

TEST_F(ShellTest, ACommandLineOf255BytesIsRun) {
    EXPECT_EQ(velk::CommandLine("true %s", std::string(250, 'x').c_str()).Run(), 0);
    EXPECT_EQ(libc().Commands().size(), 1U);
    EXPECT_EQ(libc().Commands()[0].size(), 255U);
}

TEST_F(ShellTest, ALongerCommandLineIsRefusedWithoutShowingIt) {
    EXPECT_EQ(velk::CommandLine("true %s", std::string(251, 'x').c_str()).Run(),
              LIB_VELK_INVALID_PARAMETER);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_THAT(libc().Logs(), ElementsAre("command line of 256 bytes does not fit"));
}

TEST_F(ShellTest, ACommandLineThatCannotBeFormattedIsRefused) {
    const wchar_t no_character[] = {0x7FFFFFFF, 0};
    EXPECT_EQ(velk::CommandLine("true %ls", no_character).Run(), LIB_VELK_INVALID_PARAMETER);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_THAT(libc().Logs(), ElementsAre("command line of -1 bytes does not fit"));
}

TEST_F(ShellTest, AShellThatCannotBeRunIsAFailureOfTheLine) {
    libc().Script(Call::kSystem, {Fail(ENOMEM)});
    EXPECT_EQ(velk::CommandLine("true").Run(), LIB_VELK_FAILURE);
}

}  // namespace
