// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// If the copying of a set ends in the middle, the file is complete afterwards: the old or the new
// text.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "world/calls.h"
#include "world/child.h"
#include "world/samples.h"

namespace world {
namespace {

using testkit::kIdentityFile;
using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kTools[] = "/run/tools";
constexpr char kOld[] = "192.168.0.10";
constexpr char kNew[] = "10.100.100.100";
constexpr int kRounds = 200;

class CutTargetTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::WriteFile(kInterfacesFile, InterfacesWith(kOld));
        std::filesystem::create_directories(kTools);
        std::filesystem::permissions(kTools, std::filesystem::perms(0755));
    }
    void TearDown() override {
        WaitForFreeLock();
        std::filesystem::remove_all(kTools);
        DeviceTest::TearDown();
    }

    // Makes a program that is found before the real one with that name.
    static void MakeTool(const std::string& name, const std::string& script) {
        const std::string path = std::string(kTools) + "/" + name;
        testkit::WriteFile(path, "#!/bin/sh\n" + script);
        std::filesystem::permissions(path, std::filesystem::perms(0755));
    }
    static int SetWithPath(const std::string& path) {
        return InChild({}, [&] {
            setenv("PATH", path.c_str(), 1);
            return SetAddress(kNew) == 0 ? 0 : 1;
        });
    }
    static std::string ToolsFirst() { return std::string(kTools) + ":/usr/bin:/bin"; }

    static bool IsWhole() {
        const std::string text = testkit::ReadFile(kInterfacesFile);
        return text == InterfacesWith(kOld) || text == InterfacesWith(kNew);
    }
};

TEST_F(CutTargetTest, ACatThatIsKilledLeavesTheNewText) {
    MakeTool("cat", "kill -KILL $$\n");
    EXPECT_EQ(SetWithPath(ToolsFirst()), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
    EXPECT_FALSE(testkit::Exists(kInterfacesCopy));
}

TEST_F(CutTargetTest, ACatThatIsKilledHalfWayLeavesTheNewText) {
    MakeTool("cat", "head -c 40 \"$1\"; kill -KILL $$\n");
    EXPECT_EQ(SetWithPath(ToolsFirst()), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
}

TEST_F(CutTargetTest, AMissingCatLeavesTheNewText) {
    MakeTool("rm", "exec /bin/rm \"$@\"\n");
    EXPECT_EQ(SetWithPath(kTools), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
    EXPECT_FALSE(testkit::Exists(kInterfacesCopy));
}

TEST_F(CutTargetTest, ASearchPathWithoutToolsLeavesTheNewTextAndNoCopy) {
    EXPECT_EQ(SetWithPath("/nowhere"), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
    EXPECT_FALSE(testkit::Exists(kInterfacesCopy)) << "rm is missing, too";
}

TEST_F(CutTargetTest, AFileThatWasEmptyGetsItsText) {
    testkit::WriteFile(kIdentityFile, "");
    MakeTool("cat", "kill -KILL $$\n");
    const int result = InChild({}, [&] {
        setenv("PATH", ToolsFirst().c_str(), 1);
        return Set(VELK_CMD_LOCATION, "", "Cellar");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(testkit::ReadFile(kIdentityFile), "LOCATION=Cellar\n");
}

TEST_F(CutTargetTest, TheFileIsRepairedInPlace) {
    MakeTool("cat", "kill -KILL $$\n");
    const testkit::FileIdentity before = testkit::IdentityOf(kInterfacesFile);
    EXPECT_EQ(SetWithPath(ToolsFirst()), 0);
    EXPECT_TRUE(testkit::IdentityOf(kInterfacesFile) == before);
}

TEST_F(CutTargetTest, AFileThatAnotherProgramHasChangedMeanwhileIsKept) {
    MakeTool("cat", "echo 'not a piece of the copy'\n");
    EXPECT_EQ(SetWithPath(ToolsFirst()), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), "not a piece of the copy\n");
}

TEST_F(CutTargetTest, ALineThatCannotStartChangesNothing) {
    libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(127 << 8));
    EXPECT_EQ(SetAddress(kNew), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kOld));
    EXPECT_TRUE(testkit::Exists(kInterfacesCopy)) << "nothing removed it";
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(CutTargetTest, ARepairedFileIsLoggedOnce) {
    libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(0));
    libc().OnCall(testkit::Call::kSystem, [](const testkit::Event& event) {
        if (event.text.starts_with("cat ")) {
            testkit::WriteFile(kInterfacesFile, "");
        }
    });
    EXPECT_EQ(SetAddress(kNew), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "system rm /var/tmp/interfaces",
                            "log FileEdit mended /etc/network/interfaces"));
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
}

TEST_F(CutTargetTest, ACutFileThatCannotBeRepairedIsReportedAndItsCopyRemains) {
    libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(0));
    libc().OnCall(testkit::Call::kSystem, [this](const testkit::Event&) {
        testkit::WriteFile(kInterfacesFile, "");
        libc().Script(testkit::Call::kOpen, {testkit::Pass(), testkit::Fail(EROFS)});
    });
    EXPECT_EQ(SetAddress(kNew), -1);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "log FileEdit mend errno=30:Read-only file system"));
    EXPECT_EQ(testkit::ReadFile(kInterfacesCopy), InterfacesWith(kNew)) << "the only whole text";
}

// ---- ends at random moments, and limits

void Ignore(int /*signal*/) {
}

// Makes a process group in which this signal ends none but the tools: exec(2) takes handlers away.
void LeadGroupOfMortalTools(int number) {
    setpgid(0, 0);
    (void)signal(number, Ignore);
}

TEST_F(CutTargetTest, ToolsKilledAtAnyMomentLeaveAWholeFile) {
    const int result = InChild({}, [] {
        LeadGroupOfMortalTools(SIGTERM);
        const Child killer({}, [] {
            for (unsigned moment = 0;; moment = (moment + 1337) % 9000) {
                usleep(moment);
                (void)kill(0, SIGTERM);
            }
            return 0;
        });
        for (int i = 0; i < kRounds; ++i) {
            (void)SetAddress(i % 2 == 0 ? kNew : kOld);
            if (!IsWhole()) {
                return 1;
            }
        }
        return 0;
    });
    EXPECT_EQ(result, 0) << testkit::ReadFile(kInterfacesFile);
}

TEST_F(CutTargetTest, OneInterruptionOfTheWholeGroupLeavesAWholeFile) {
    const int result = InChild({}, [] {
        LeadGroupOfMortalTools(SIGINT);
        for (int i = 0; i < kRounds; ++i) {
            Child interrupter({}, [&] {
                usleep(static_cast<useconds_t>(i * 41 % 4000));
                return kill(0, SIGINT);
            });
            (void)SetAddress(i % 2 == 0 ? kNew : kOld);
            (void)interrupter.Wait();
            if (!IsWhole()) {
                return 1;
            }
        }
        return 0;
    });
    EXPECT_EQ(result, 0) << testkit::ReadFile(kInterfacesFile);
}

TEST_F(CutTargetTest, NoLimitOfDescriptorsLeavesACutFile) {
    for (rlim_t limit = 4; limit < 16; ++limit) {
        testkit::WriteFile(kInterfacesFile, InterfacesWith(kOld));
        (void)InChild({.limits = {{RLIMIT_NOFILE, limit}}}, [] { return SetAddress(kNew); });
        EXPECT_TRUE(IsWhole()) << limit;
    }
}

// A user of this test's own: the limit counts all processes of a user.
TEST_F(CutTargetTest, NoLimitOfProcessesLeavesACutFile) {
    constexpr uid_t kUser = 54321;
    constexpr int kRepaired = 10;
    if (!IsPossible({.user = kUser})) {
        GTEST_SKIP() << "the private device has no other users";
    }
    ASSERT_EQ(chown(kInterfacesFile, kUser, kUser), 0);
    int repaired = 0;
    for (rlim_t limit = 0; limit < 5; ++limit) {
        testkit::WriteFile(kInterfacesFile, InterfacesWith(kOld));
        const int result = InChild({.user = kUser, .limits = {{RLIMIT_NPROC, limit}}}, [] {
            (void)SetAddress(kNew);
            const std::vector<std::string> logs = testkit::LibcRecorder::Get().Logs();
            return logs.empty() || !logs.back().starts_with("FileEdit mended") ? 0 : kRepaired;
        });
        repaired += result == kRepaired ? 1 : 0;
        EXPECT_TRUE(IsWhole()) << limit;
    }
    EXPECT_GT(repaired, 0) << "with one of the limits the shell starts, and cat does not";
}

// The shell alone is killed. Its cat has already opened both files and writes later. It keeps low
// descriptors: the lock is one of them.
TEST_F(CutTargetTest, ACatThatOutlivesItsShellKeepsOtherSetsWaiting) {
    MakeTool("cat",
             "exec 9<\"$1\"; kill -KILL $PPID; until [ -e /run/tools/go ]; do sleep 0.01; done\n"
             "exec /bin/cat <&9\n");
    EXPECT_EQ(SetWithPath(ToolsFirst()), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
    EXPECT_EQ(SetAddress(kOld), LIB_VELK_LOCKED) << "its text would be written over";
    testkit::WriteFile("/run/tools/go", "");
    WaitForFreeLock();
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
    EXPECT_EQ(SetAddress(kOld), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kOld));
}

TEST_F(CutTargetTest, NoUmaskKeepsTheToolsFromTheCopy) {
    if (!IsPossible({.user = kNobody})) {
        GTEST_SKIP() << "the private device has no other users";
    }
    ASSERT_EQ(chown(kInterfacesFile, kNobody, kNobody), 0);
    for (const mode_t mask : {0777U, 0477U, 0U}) {
        testkit::WriteFile(kInterfacesFile, InterfacesWith(kOld));
        EXPECT_EQ(InChild({.user = kNobody, .umask = mask}, [] { return SetAddress(kNew); }), 0);
        EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew)) << mask;
    }
}

// The shell gives up the effective user: it must be able to read the copy as the real one.
TEST_F(CutTargetTest, AHostWithTwoUsersSetsTheFile) {
    if (!IsPossible({.user = kNobody})) {
        GTEST_SKIP() << "the private device has no other users";
    }
    ASSERT_EQ(chmod(kInterfacesFile, 0666), 0);
    for (const mode_t mask : {0077U, 0777U}) {
        testkit::WriteFile(kInterfacesFile, InterfacesWith(kOld));
        EXPECT_EQ(InChild({.umask = mask},
                          [] {
                              if (setresuid(kNobody, 0, 0) != 0) {
                                  return 1;
                              }
                              testkit::LibcRecorder::Get().OnCall(
                                  testkit::Call::kSystem, [](const testkit::Event& event) {
                                      struct stat facts {};
                                      if (event.text.starts_with("cat ") &&
                                          (stat(kInterfacesCopy, &facts) != 0 ||
                                           (facts.st_mode & 07777) != 0644)) {
                                          _exit(2);
                                      }
                                  });
                              return SetAddress(kNew);
                          }),
                  0)
            << mask;
        EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew)) << mask;
        EXPECT_FALSE(testkit::Exists(kInterfacesCopy)) << "the real user may not remove it";
    }
    chmod(kInterfacesFile, 0644);
}

}  // namespace
}  // namespace world
