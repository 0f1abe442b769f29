// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - moves the unit tests onto a private device before the first one runs.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include <gmock/gmock.h>
#include <sys/prctl.h>

#include "sandbox/device/device.h"

namespace {

bool IsListing(int argc, char** argv) {
    return std::any_of(argv, argv + argc, [](const char* argument) {
        return std::string_view(argument) == "--gtest_list_tests";
    });
}

constexpr int kSkipped = 77;  // as SKIP_RETURN_CODE in CMakeLists.txt
// The programs of a device find tools in all these folders. The caller's PATH may lack some.
constexpr char kSearchPath[] = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

// Returns false, after printing the reason, if the kernel gives no private namespaces.
bool EnterPrivateDevice() {
    sandbox::DeviceOptions options;
    options.bind_folders = {VELK_SOURCE_DIR, VELK_BINARY_DIR};
    options.protect_machine = false;  // counters and reports of the test run go to the build folder
    try {
        sandbox::EnterDevice(options);
        return true;
    } catch (const std::exception& error) {
        (void)fprintf(stderr, "skipped, no private device: %s\n", error.what());
        return false;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const bool listing = IsListing(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    (void)prctl(PR_SET_NAME, program_invocation_short_name);  // otherwise valgrind's name
    (void)setenv("PATH", kSearchPath, 1);
    if (!listing && !EnterPrivateDevice()) {
        return kSkipped;  // the tests write to the library's real paths
    }
    return RUN_ALL_TESTS();
}
