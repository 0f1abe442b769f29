#include "lib/base/shell.h"

#include <cerrno>
#include <csignal>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::Pass;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr char kSource[] = "/var/tmp/root";
constexpr char kTarget[] = "/var/cron/tabs/root";

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
TEST_F(ShellTest, AShellThatNobodyKeepsTheStatusOfIsAFailure) {
    struct sigaction before {};
    struct sigaction ignore {};
    ignore.sa_flags = SA_NOCLDWAIT;
    ASSERT_EQ(sigaction(SIGCHLD, &ignore, &before), 0);
    EXPECT_EQ(SystemCommand("sleep 0.1; echo done > /var/tmp/result"), -1);
    sigaction(SIGCHLD, &before, nullptr);
    EXPECT_EQ(testkit::ReadFile("/var/tmp/result"), "done\n");
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=10:No child processes"));
}

TEST_F(ShellTest, AShellThatSomebodyElseWaitedForIsAFailure) {
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

TEST_F(ShellTest, AShellThatCannotBeRunIsAFailureOfTheLine) {
    libc().Script(Call::kSystem, {Fail(ENOMEM)});
    EXPECT_EQ(velk::CommandLine("true").Run(), LIB_VELK_FAILURE);
}

class FileCopyAndDeleteTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        (void)!system("rm -f /var/cron/tabs/root");
        DeviceTest::TearDown();
    }
};

TEST_F(FileCopyAndDeleteTest, RunsTheTwoLines) {
    WriteFile(kSource, "new\n");
    EXPECT_EQ(FileCopyAndDelete(kSource, kTarget), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("cat /var/tmp/root > /var/cron/tabs/root", "rm /var/tmp/root"));
    EXPECT_EQ(ReadFile(kTarget), "new\n");
    EXPECT_FALSE(testkit::Exists(kSource));
}

TEST_F(FileCopyAndDeleteTest, KeepsTheTargetsInodeAndMode) {
    WriteFile(kTarget, "old, and longer than the new text\n");
    chmod(kTarget, 0640);
    struct stat before {};
    stat(kTarget, &before);
    WriteFile(kSource, "new\n");
    EXPECT_EQ(FileCopyAndDelete(kSource, kTarget), 0);
    struct stat after {};
    stat(kTarget, &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(ReadFile(kTarget), "new\n");
}

TEST_F(FileCopyAndDeleteTest, AMissingSourceLeavesTheTargetEmpty) {
    WriteFile(kTarget, "old\n");
    EXPECT_EQ(FileCopyAndDelete("/var/tmp/missing", kTarget), 0);
    EXPECT_EQ(ReadFile(kTarget), "");
}

TEST_F(FileCopyAndDeleteTest, AFailedCopyIsNotSeen) {
    WriteFile(kSource, "new\n");
    libc().Script(Call::kSystem, {Fail(ENOMEM), Pass()});
    EXPECT_EQ(FileCopyAndDelete(kSource, kTarget), 0);
    EXPECT_FALSE(testkit::Exists(kSource));
}

TEST_F(FileCopyAndDeleteTest, GivesTheResultOfTheRemoval) {
    WriteFile(kSource, "new\n");
    libc().Script(Call::kSystem, {Pass(), Fail(ENOMEM)});
    EXPECT_EQ(FileCopyAndDelete(kSource, kTarget), -1);
    EXPECT_EQ(ReadFile(kTarget), "new\n");
    EXPECT_TRUE(testkit::Exists(kSource));
}

TEST_F(FileCopyAndDeleteTest, PathsThatDoNotFitAreRefusedAndNothingIsRemoved) {
    const std::string source = "/var/tmp/" + std::string(120, 's');
    WriteFile(source, "edit");
    const std::string target = "/var/tmp/" + std::string(120, 't');
    EXPECT_EQ(FileCopyAndDelete(source, target), LIB_VELK_INVALID_PARAMETER);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_EQ(ReadFile(source), "edit");
}

}  // namespace
