// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_test.cpp - the fixture of tests that touch the device's files.
#include "support/device_test.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/paths.h"

namespace testkit {
namespace {

namespace fs = std::filesystem;

// The library's folders. Files that an earlier test left there are removed.
constexpr const char* kScratchFolders[] = {kSocketFolder,
                                           kEditFolder,
                                           kSemaphoreFolder,
                                           "/etc/network",
                                           "/proc/bus/usb",
                                           "/usr/local/share/apps/wlan",
                                           "/usr/local/share/etc/snmp",
                                           "/var/cron/tabs",
                                           kJournalFolder,
                                           kLibraryFolder,
                                           "/var/log/syslog"};
constexpr const char* kDeviceFiles[] = {kDhcpConfigFile, kExitHooks, kResolverFile, kClientScript};

}  // namespace

void EmptyDevice() {
    std::error_code ignored;
    for (const char* folder : kScratchFolders) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
            // A folder here belongs to the checkout, which stays visible if it is below /tmp.
            if (!entry.is_directory()) {
                fs::remove(entry.path(), ignored);
            }
        }
    }
    for (const char* file : kDeviceFiles) {
        fs::remove_all(file, ignored);
    }
}

void WriteFile(const std::string& path, std::string_view text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return "(missing)";
    }
    std::ostringstream text;
    text << file.rdbuf();
    return std::move(text).str();
}

bool Exists(const std::string& path) {
    return fs::exists(fs::symlink_status(path));
}

FileIdentity IdentityOf(const std::string& path) {
    struct stat facts {};
    EXPECT_EQ(stat(path.c_str(), &facts), 0) << path;
    return {facts.st_ino, facts.st_uid, facts.st_gid, facts.st_mode};
}

std::vector<int> OpenDescriptors() {
    std::vector<int> numbers;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        const int number = std::stoi(entry.path().filename());
        if (fcntl(number, F_GETFD) != -1) {
            numbers.push_back(number);
        }
    }
    // The listing's own descriptor is closed now.
    std::erase_if(numbers, [](int number) { return fcntl(number, F_GETFD) == -1; });
    return numbers;
}

_velk_request MakeRequest(uint32_t type, uint32_t id, std::string_view interface,
                          std::string_view data) {
    _velk_request request{};
    interface.copy(request.interface, sizeof(request.interface));
    request.command_type = type;
    request.command_id = id;
    data.copy(request.data, sizeof(request.data));
    return request;
}

_velk_request DirtyResponse() {
    _velk_request response;
    memset(&response, 0xEE, sizeof(response));
    return response;
}

std::string Data(const _velk_request& response, size_t size) {
    return {response.data, size};
}

bool IsLockFree() {
    const int fd = open(kLockFile, O_RDWR | O_CLOEXEC);
    if (fd == -1) {
        return true;
    }
    const bool is_free = flock(fd, LOCK_EX | LOCK_NB) == 0;
    close(fd);
    return is_free;
}

DeviceTest::DeviceTest() {
    LibcRecorder::Get().Reset();
    EmptyDevice();
    descriptors_ = OpenDescriptors();
}

void DeviceTest::TearDown() {
    LibcRecorder::Get().Reset();
    EXPECT_EQ(OpenDescriptors(), descriptors_) << "a descriptor was left open";
    EXPECT_TRUE(IsLockFree()) << "the lock was left taken";
}

int DeviceTest::Execute(const _velk_request& request) {
    response = DirtyResponse();
    return execute_velk_command(&request, &response);
}

int DeviceTest::Execute(uint32_t type, uint32_t id, std::string_view interface,
                        std::string_view data) {
    return Execute(MakeRequest(type, id, interface, data));
}

}  // namespace testkit
