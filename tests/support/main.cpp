// main.cpp - moves the unit tests onto a private device before the first one runs.
#include <algorithm>
#include <exception>
#include <string_view>

#include <gmock/gmock.h>

#include "sandbox/device.h"
#include "support/device_test.h"

namespace {

bool IsListing(int argc, char** argv) {
    return std::any_of(argv, argv + argc, [](const char* argument) {
        return std::string_view(argument) == "--gtest_list_tests";
    });
}

void EnterPrivateDevice() {
    sandbox::DeviceOptions options;
    options.keep = {VELK_SOURCE_DIR, VELK_BINARY_DIR};
    options.protect_machine = false;  // counters and reports of the test run go to the build folder
    try {
        sandbox::EnterDevice(options);
    } catch (const std::exception& error) {
        testkit::SetNoDeviceReason(error.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    const bool listing = IsListing(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    if (!listing) {
        EnterPrivateDevice();
    }
    return RUN_ALL_TESTS();
}
