// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The verb that takes an interrupted change back, where a DHCP client has to be ended first.
#include <cerrno>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/device_test.h"
#include "support/left_client.h"
#include "support/paths.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"

namespace {

using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::ReadJournal;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kStatic[] = "iface eth0 inet static\n\taddress 192.168.0.1\n";
constexpr char kDhcp[] = "iface eth0 inet dhcp\n\taddress 192.168.0.1\n";
constexpr char kFolder[] = "/run/recover-verb-test";
constexpr char kAsked[] = "/run/recover-verb-test/asked";

// A change from static to dhcp was interrupted after its restart.
class RecoverVerbTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        (void)mkdir(kFolder, 0755);
        WriteFile(kAsked, "");
        const std::string sudo = std::string(kFolder) + "/sudo";
        WriteFile(sudo, std::string("#!/bin/sh\necho \"$@\" >>") + kAsked + "\n");
        ASSERT_EQ(chmod(sudo.c_str(), 0755), 0);
        ASSERT_EQ(setenv("PATH", (std::string(kFolder) + ":" + path_).c_str(), 1), 0);
        WriteFile(kInterfaces, kStatic);
        const velkctl::JournalLock journal(velkctl::JournalLock::Use::kAlone, 0);
        velkctl::OpenChange change;
        velkctl::Data dhcp{};
        dhcp[0] = VELK_METHOD_DHCP;
        ASSERT_EQ(change.Begin({.kind = velkctl::EntryKind::kApply,
                                .steps = {{*velkctl::FindSetting("eth0.method"), dhcp}},
                                .restarts = {"eth0"}},
                               device),
                  0);
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
        WriteFile(kInterfaces, kDhcp);
        ASSERT_EQ(change.RecordFiles(), 0);
    }
    void TearDown() override {
        EXPECT_EQ(setenv("PATH", path_.c_str(), 1), 0);
        DeviceTest::TearDown();
    }
    ExitStatus Recover() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = RunRecover({}, report);
        (void)fflush(stdout);
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }

    const std::string path_ = getenv("PATH");
    const testkit::LeftClient client_;
    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
    std::string output;
    std::string error;
};

TEST_F(RecoverVerbTest, TakesNoInterfaceDownWhileAnotherProgramChangesSettings) {
    const int lock = VkLibLock();
    EXPECT_EQ(Recover(), ExitStatus::kLocked);
    VkLibUnLock(lock);
    EXPECT_EQ(ReadFile(kAsked), "");
    EXPECT_EQ(ReadFile(kInterfaces), kDhcp);
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kReverting);
}

TEST_F(RecoverVerbTest, TakesTheInterfaceUpAgainIfItsFileCannotBeWritten) {
    libc().PlanFault(testkit::Call::kWrite, 2, testkit::Reach::kThatOne, EIO);
    EXPECT_EQ(Recover(), ExitStatus::kPartlyBack);
    EXPECT_THAT(error, testing::HasSubstr("velkctl: /etc/network/interfaces: not put back\n"));
    EXPECT_THAT(ReadFile(kAsked), testing::StartsWith("ifdown eth0\n"));
    EXPECT_THAT(ReadFile(kAsked), testing::HasSubstr("ifup eth0"));
    EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kStuck);
}

}  // namespace
