// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_test.h - the fixture of tests that touch the device's files.
#ifndef TESTS_SUPPORT_DEVICE_TEST_H_
#define TESTS_SUPPORT_DEVICE_TEST_H_

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

#include "support/libc_recorder.h"
#include "velk.h"

namespace testkit {

void WriteFile(const std::string& path, std::string_view text);
std::string ReadFile(const std::string& path);  // "(missing)" if there is no such file
bool Exists(const std::string& path);

// Identifies a file independently of its text.
struct FileIdentity {
    ino_t inode;
    uid_t owner;
    gid_t group;
    mode_t mode;
    bool operator==(const FileIdentity&) const = default;
};
FileIdentity IdentityOf(const std::string& path);  // fails the test if there is no such file

// Returns the descriptors that this process has open.
std::vector<int> OpenDescriptors();

// True if nobody holds the set/restart lock.
bool IsLockFree();

// A user and a group that own nothing on the device.
inline constexpr uid_t kSomebody = 12345;

// Removes all files in the library's folders. The fixture below does so before each test.
void EmptyDevice();

_velk_request MakeRequest(uint32_t type, uint32_t id, std::string_view interface,
                          std::string_view data = {});

// Returns a response filled with a byte that no handler writes, so that a test notices if it is
// not cleared.
_velk_request DirtyResponse();

// Returns the first `size` bytes of a response's data.
std::string Data(const _velk_request& response, size_t size = VELK_DATA_SIZE);

// Every test starts on an empty device with an empty recorder, and must leave no descriptor open
// and the lock free. It changes files at their real paths: main() runs no test if the
// process could not move onto a private device.
class DeviceTest : public ::testing::Test {
  protected:
    // Empties the device and the recorder, so that members of a derived fixture can already script
    // calls.
    DeviceTest();
    void TearDown() override;

    LibcRecorder& libc() { return LibcRecorder::Get(); }

    // Runs a request into `response`.
    int Execute(const _velk_request& request);
    int Execute(uint32_t type, uint32_t id, std::string_view interface, std::string_view data = {});

    _velk_request response = DirtyResponse();

  private:
    std::vector<int> descriptors_;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_DEVICE_TEST_H_
