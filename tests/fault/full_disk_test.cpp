// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The disk is full when the shell puts an edited file in place. See docs/reliability.md.
#include <string>

#include <gmock/gmock.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/mounted.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;

constexpr char kOldAddress[] = "\taddress 10.0.0.5\n";
constexpr char kNewAddress[] = "\taddress 10.100.100.100\n";

// Returns the interfaces file with this address line at its end.
std::string InterfacesOf(size_t size, const std::string& address) {
    const std::string begin = "#";
    const std::string end = "\niface eth0 inet static\n" + address;
    return begin + std::string(size - begin.size() - end.size(), '-') + end;
}

class FullDiskTest : public testkit::DeviceTest {};

// The file fills its disk, and the edited text is longer.
TEST_F(FullDiskTest, ACopyThatDoesNotFitIsCutReportedAndKept) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const std::string edited = InterfacesOf(page + 1, kNewAddress);
    const std::string before =
        InterfacesOf(page + 1 - (sizeof(kNewAddress) - sizeof(kOldAddress)), kOldAddress);
    Device device({});
    device.UseRealTools();
    const testkit::Emptied folder("/etc/network", ("size=" + std::to_string(page)).c_str());
    testkit::WriteFile(kInterfacesFile, before);
    ASSERT_EQ(testkit::ReadFile(kInterfacesFile), before);

    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.100.100.100"), -1);

    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), edited.substr(0, page));
    EXPECT_EQ(testkit::ReadFile(kInterfacesCopy), edited) << "the only whole text";
    EXPECT_THAT(testkit::LibcRecorder::Get().Logs(),
                testing::ElementsAre("FileEdit mend errno=28:No space left on device"));
}

}  // namespace
}  // namespace fault
