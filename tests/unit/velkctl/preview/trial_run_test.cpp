// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Commands in a private copy of the device's files.
#include "velkctl/preview/trial_run.h"

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "support/device_test.h"
#include "support/kernel_features.h"
#include "support/paths.h"

namespace {

using testkit::Call;
using testkit::Exists;
using testkit::kInterfacesFile;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::Event;
using velkctl::FileImage;
using velkctl::RunTrial;
using velkctl::SettingChange;
using velkctl::TrialRun;
using velkctl::TrialStep;

constexpr char kResolver[] = "/etc/resolv.dnsmasq.conf";
constexpr char kSupportList[] = "/usr/local/share/apps/wlan/supportlist.ini";
constexpr char kStatic[] =
    "iface eth0 inet static\n\taddress 192.168.0.10\n\tnetmask 255.255.255.0\n";
constexpr char kChanged[] = "iface eth0 inet static\n\taddress 10.0.0.7\n\tnetmask 255.255.255.0\n";

TrialStep Set(uint32_t id, std::string interface, std::string_view value) {
    TrialStep step{VELK_SET, id, std::move(interface)};
    (void)value.copy(step.data.data(), step.data.size());
    return step;
}

const TrialStep kSetAddress = Set(VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.7");

std::string TextAfter(const TrialRun& run, const std::string& path) {
    const FileImage* image = velk::FindRow(run.after, path, &FileImage::path);
    return image == nullptr || !image->exists ? "(missing)" : image->bytes;
}

class TrialRunTest : public testkit::DeviceTest {};

TEST_F(TrialRunTest, ChangesTheCopyAlone) {
    WriteFile(kInterfacesFile, kStatic);
    const TrialRun run = RunTrial({kSetAddress}, {});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_TRUE(run.ok());
    EXPECT_EQ(TextAfter(run, kInterfacesFile), kChanged);
    EXPECT_EQ(ReadFile(kInterfacesFile), kStatic);
    EXPECT_FALSE(Exists("/var/tmp/interfaces"));
    EXPECT_FALSE(Exists("/var/tmp/vklib_lock"));
}

TEST_F(TrialRunTest, MakesAFileInTheCopyAlone) {
    const TrialRun run = RunTrial({Set(VELK_CMD_DNS, "eth0", "10.0.0.1")}, {});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_EQ(TextAfter(run, kResolver), "nameserver 10.0.0.1\n");
    EXPECT_FALSE(Exists(kResolver));
}

TEST_F(TrialRunTest, BeginsWithTheImages) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n");
    const TrialRun run =
        RunTrial({kSetAddress}, {}, {{.path = kInterfacesFile, .exists = true, .bytes = kStatic}});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_EQ(TextAfter(run, kInterfacesFile), kChanged);
    EXPECT_EQ(ReadFile(kInterfacesFile), "iface eth0 inet dhcp\n");
}

TEST_F(TrialRunTest, StopsAtTheFirstFailure) {
    WriteFile(kInterfacesFile, kStatic);
    const TrialRun run = RunTrial({{VELK_SET, 999}, kSetAddress}, {});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_FALSE(run.ok());
    ASSERT_EQ(run.answers.size(), 1U);
    EXPECT_EQ(run.answers[0].result, LIB_VELK_INVALID_PARAMETER);
    EXPECT_EQ(TextAfter(run, kInterfacesFile), kStatic);
}

// The shell lines of the library are the calls of a tool that could do more than it should.
TEST_F(TrialRunTest, MakesAllElseReadOnly) {
    WriteFile(kInterfacesFile, kStatic);
    WriteFile(kSupportList, "VID=1\n");
    libc().OnCall(Call::kSystem, [](const testkit::Event&) {
        if (open("/etc/network/other", O_WRONLY | O_CREAT, 0600) != -1 ||
            open(kSupportList, O_WRONLY) != -1 || unlink(kSupportList) == 0 || getpid() != 1 ||
            mount("none", "/mnt", "tmpfs", 0, nullptr) == 0) {
            _exit(1);
        }
    });
    const TrialRun run = RunTrial({kSetAddress}, {});
    EXPECT_TRUE(run.ok());
    EXPECT_EQ(TextAfter(run, kInterfacesFile), kChanged);
}

TEST_F(TrialRunTest, HasNoAnswerAfterASignal) {
    SKIP_WITHOUT(kEndOfFirstProcess);
    WriteFile(kInterfacesFile, kStatic);
    libc().OnCall(Call::kSystem, [](const testkit::Event&) { abort(); });
    const TrialRun run = RunTrial({kSetAddress}, {});
    EXPECT_FALSE(run.ok());
    ASSERT_EQ(run.answers.size(), 1U);
    EXPECT_EQ(run.answers[0].result, LIB_VELK_FAILURE);
    EXPECT_FALSE(run.answers[0].timed_out);
}

TEST_F(TrialRunTest, EndsAtTheTimeLimit) {
    WriteFile(kInterfacesFile, kStatic);
    libc().OnCall(Call::kSystem, [](const testkit::Event&) { (void)pause(); });
    const TrialRun run = RunTrial({kSetAddress}, {.timeout_seconds = 1});
    ASSERT_EQ(run.answers.size(), 1U);
    EXPECT_TRUE(run.answers[0].timed_out);
    EXPECT_EQ(run.answers[0].timeout_seconds, 1);
    EXPECT_EQ(ReadFile(kInterfacesFile), kStatic);
}

TEST_F(TrialRunTest, IsRefusedWhileAnotherProgramHoldsTheLock) {
    const int lock = VkLibLock();
    const TrialRun run = RunTrial({kSetAddress}, {.wait_seconds = 1});
    VkLibUnLock(lock);
    ASSERT_EQ(run.answers.size(), 1U);
    EXPECT_EQ(run.answers[0].result, LIB_VELK_LOCKED);
    EXPECT_TRUE(run.after.empty());
}

// The kernel takes a copy away when its file is replaced.
TEST_F(TrialRunTest, DoesNotTakeAFileThatIsReplacedMeanwhileForItsCopy) {
    WriteFile(kInterfacesFile, kStatic);
    const pid_t editor = fork();
    if (editor == 0) {
        for (;;) {
            WriteFile("/etc/network/new", kStatic);
            (void)rename("/etc/network/new", kInterfacesFile);
        }
    }
    const TrialRun run = RunTrial({kSetAddress}, {});
    ASSERT_EQ(kill(editor, SIGKILL), 0);
    ASSERT_EQ(waitpid(editor, nullptr, 0), editor);
    // On a slow machine the editor may not have got its turn.
    if (run.problem) {
        EXPECT_THAT(run.problem->detail,
                    testing::AnyOf("keep the copy of /etc/network/interfaces: Stale file handle",
                                   "mount /etc/network/interfaces: No such file or directory"));
    } else {
        EXPECT_EQ(TextAfter(run, kInterfacesFile), kChanged);
    }
    (void)unlink("/etc/network/new");
    EXPECT_EQ(ReadFile(kInterfacesFile), kStatic);
    EXPECT_EQ(TextAfter(RunTrial({kSetAddress}, {}), kInterfacesFile), kChanged);
}

TEST_F(TrialRunTest, NeedsFilesOfUsualSize) {
    WriteFile(kInterfacesFile, std::string(2 << 20, 'x'));
    const TrialRun run = RunTrial({kSetAddress}, {});
    ASSERT_TRUE(run.problem);
    EXPECT_EQ(run.problem->message, "/etc/network/interfaces: is too large for a private copy");
}

TEST_F(TrialRunTest, RemovesAndMakesFilesInTheCopyAlone) {
    WriteFile(velk::kNtpLog, "x\n");
    ASSERT_EQ(symlink("/etc/network/resolver", kResolver), 0);
    const TrialRun run =
        RunTrial({Set(VELK_CMD_DNS, "eth0", "10.0.0.1")}, {}, {{.path = velk::kNtpLog}});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_EQ(TextAfter(run, velk::kNtpLog), "(missing)");
    EXPECT_EQ(TextAfter(run, kResolver), "nameserver 10.0.0.1\n");
    EXPECT_FALSE(Exists("/etc/network/resolver"));
    EXPECT_EQ(ReadFile(velk::kNtpLog), "x\n");
}

TEST_F(TrialRunTest, ReadsSettingsBack) {
    WriteFile(kInterfacesFile, kStatic);
    const SettingChange address{*velkctl::FindSetting("eth0.address"), kSetAddress.data};
    const SettingChange speed{*velkctl::FindSetting("eth0.link-speed")};
    std::vector<TrialStep> steps = velkctl::StepsOf({address});
    const std::vector<TrialStep> checks = velkctl::ChecksOf({address, speed});
    EXPECT_EQ(checks.size(), 2U) << "the method and the address";
    steps.insert(steps.end(), checks.begin(), checks.end());
    const TrialRun run = RunTrial(steps, {});
    ASSERT_TRUE(run.ok());
    EXPECT_EQ(velkctl::HeldAfter(run, steps, steps[0]), true);
    EXPECT_EQ(velkctl::HeldAfter(run, steps, velkctl::StepOf(speed)), std::nullopt);
    const TrialRun other =
        RunTrial(steps, {}, {{.path = kInterfacesFile, .exists = true, .bytes = "# nothing\n"}});
    EXPECT_TRUE(other.ok()) << "the library reports success";
    EXPECT_EQ(velkctl::HeldAfter(other, steps, steps[0]), std::nullopt) << "no method";
}

}  // namespace
