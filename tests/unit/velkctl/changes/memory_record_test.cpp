// The state before a change, kept in memory.
#include "velkctl/changes/memory_record.h"

#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::ExitStatus;
using velkctl::FindSetting;

constexpr char kInterfaces[] = "/etc/network/interfaces";
constexpr char kResolver[] = "/etc/resolv.dnsmasq.conf";

class MemoryRecordTest : public testkit::DeviceTest {
  protected:
    std::string Back() {
        testing::internal::CaptureStderr();
        EXPECT_EQ(record.TakeBack(device, report), ExitStatus::kFailed);
        return testing::internal::GetCapturedStderr();
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
    velkctl::MemoryRecord record;
    const velkctl::ChangeSet steps{{*FindSetting("eth0.address")}, {*FindSetting("eth0.dns")}};
};

TEST_F(MemoryRecordTest, PutsTheFilesBackAsTheyWere) {
    WriteFile(kInterfaces, "iface eth0 inet static # mine\n");
    EXPECT_FALSE(record.Begin(steps, {}, device));
    const auto identity = testkit::IdentityOf(kInterfaces);
    WriteFile(kInterfaces, "other\n");
    WriteFile(kResolver, "new\n");
    EXPECT_FALSE(record.Flush());
    EXPECT_EQ(Back(), "");
    EXPECT_EQ(ReadFile(kInterfaces), "iface eth0 inet static # mine\n");
    EXPECT_EQ(testkit::IdentityOf(kInterfaces), identity);
    EXPECT_FALSE(testkit::Exists(kResolver));
}

TEST_F(MemoryRecordTest, DoesNotBeginWithAFileThatCannotBeKept) {
    WriteFile(kInterfaces, "x\n");
    ASSERT_EQ(mkdir(kResolver, 0755), 0);
    const auto failure = record.Begin(steps, {}, device);
    ASSERT_EQ(rmdir(kResolver), 0);
    ASSERT_TRUE(failure);
    EXPECT_EQ(OneLine(failure->problem),
              "/etc/resolv.dnsmasq.conf: cannot be kept; Invalid argument");
}

TEST_F(MemoryRecordTest, NamesWhatItCannotPutBack) {
    WriteFile(kInterfaces, "x\n");
    EXPECT_FALSE(record.Begin(steps, {}, device));
    (void)unlink(kInterfaces);
    ASSERT_EQ(mkdir(kInterfaces, 0755), 0);
    const std::string error = Back();
    ASSERT_EQ(rmdir(kInterfaces), 0);
    EXPECT_TRUE(error.starts_with("velkctl: /etc/network/interfaces: could not be put back\n"))
        << error;
}

}  // namespace
