// Commands in a private copy of the device's files.
#include "velkctl/preview/trial_run.h"

#include <algorithm>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/find_row.h"
#include "support/device_test.h"

namespace {

using testkit::Exists;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::Data;
using velkctl::Event;
using velkctl::EventKind;
using velkctl::FileImage;
using velkctl::RunTrial;
using velkctl::TrialRun;
using velkctl::TrialStep;

constexpr char kInterfaces[] = "/etc/network/interfaces";
constexpr char kResolver[] = "/etc/resolv.dnsmasq.conf";
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
    WriteFile(kInterfaces, kStatic);
    const TrialRun run = RunTrial({kSetAddress}, {});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_TRUE(run.ok());
    EXPECT_EQ(TextAfter(run, kInterfaces), kChanged);
    EXPECT_EQ(ReadFile(kInterfaces), kStatic);
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
    WriteFile(kInterfaces, "iface eth0 inet dhcp\n");
    const TrialRun run =
        RunTrial({kSetAddress}, {}, {{.path = kInterfaces, .exists = true, .bytes = kStatic}});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_EQ(TextAfter(run, kInterfaces), kChanged);
    EXPECT_EQ(ReadFile(kInterfaces), "iface eth0 inet dhcp\n");
}

TEST_F(TrialRunTest, StopsAtTheFirstFailure) {
    WriteFile(kInterfaces, kStatic);
    const TrialRun run = RunTrial({{VELK_SET, 999}, kSetAddress}, {});
    ASSERT_FALSE(run.problem) << run.problem->message << run.problem->detail;
    EXPECT_FALSE(run.ok());
    ASSERT_EQ(run.answers.size(), 1U);
    EXPECT_EQ(run.answers[0].result, LIB_VELK_INVALID_PARAMETER);
    EXPECT_EQ(TextAfter(run, kInterfaces), kStatic);
}

}  // namespace
