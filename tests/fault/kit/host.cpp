// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// host.cpp - a host program of the library, and its requests.
#include "fault/kit/host.h"

#include <cstring>

#include <sys/wait.h>
#include <unistd.h>

namespace fault {

int RequestAddress(uint32_t type, const char* address, _velk_request& response) {
    const _velk_request request = testkit::MakeRequest(type, VELK_CMD_IP_ADDRESS, "eth0", address);
    return execute_velk_command(&request, &response);
}

bool AddressCanBeSet(const char* address) {
    _velk_request response{};
    return RequestAddress(VELK_SET, address, response) == 0 &&
           RequestAddress(VELK_GET, "", response) == 0 && strcmp(response.data, address) == 0;
}

int QuerySsid(_velk_request& response) {
    const _velk_request request = testkit::MakeRequest(VELK_GET, VELK_CMD_SSID, "eth1");
    return execute_velk_command(&request, &response);
}

HostTest::HostTest() {
    device_.emplace(Scene{});
    device_->UseRealTools();
    VkLibUnLock(VkLibLock());  // an earlier call has made its file
    libc().ForgetEvents();
}

void HostTest::TearDown() {
    device_.reset();
    DeviceTest::TearDown();
}

bool HostTest::InAHost(const std::function<bool()>& call) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(call() ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status == 0;
}

}  // namespace fault
