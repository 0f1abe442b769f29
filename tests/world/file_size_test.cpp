// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A set in a host with a limit on the size of files leaves the file unchanged.
#include <csignal>
#include <string>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "world/calls.h"
#include "world/child.h"
#include "world/samples.h"

namespace world {
namespace {

using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;

constexpr char kOld[] = "192.168.0.10";
constexpr char kNew[] = "10.100.100.100";
constexpr rlim_t kLimit = 100;  // less than the file has
constexpr int kEndedBySizeSignal = 128 + SIGXFSZ;

class FileSizeTest : public testkit::DeviceTest {
  protected:
    void SetUp() override { testkit::WriteFile(kInterfacesFile, InterfacesWith(kOld)); }

    // Sets the address in a host with that limit, and with this action for SIGXFSZ. Returns 0 if
    // the library answered -1.
    static int SetWith(void (*action)(int)) {
        return InChild({.limits = {{RLIMIT_CORE, 0}, {RLIMIT_FSIZE, kLimit}}}, [&] {
            (void)signal(SIGXFSZ, action);
            return SetAddress(kNew) == LIB_VELK_FAILURE ? 0 : 1;
        });
    }
};

TEST_F(FileSizeTest, TheSignalEndsAHostAndTheFileIsKept) {
    EXPECT_EQ(SetWith(SIG_DFL), kEndedBySizeSignal);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kOld));
    EXPECT_EQ(testkit::ReadFile(kInterfacesCopy), InterfacesWith(kNew).substr(0, kLimit))
        << "the edit copy stays as long as it got";
    EXPECT_EQ(SetAddress(kNew), LIB_VELK_SUCCESS) << "and the next set replaces it";
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kNew));
}

TEST_F(FileSizeTest, AHostThatIgnoresTheSignalGetsAFailureAndTheFileIsKept) {
    EXPECT_EQ(SetWith(SIG_IGN), 0);
    EXPECT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith(kOld));
    EXPECT_FALSE(testkit::Exists(kInterfacesCopy));
}

}  // namespace
}  // namespace world
