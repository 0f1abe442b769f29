// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// host.h - a host program of the library, and its requests.
#ifndef TESTS_FAULT_KIT_HOST_H_
#define TESTS_FAULT_KIT_HOST_H_

#include <functional>
#include <optional>

#include "fault/kit/scene.h"
#include "support/device_test.h"

namespace fault {

// A get or a set of the address of eth0.
int RequestAddress(uint32_t type, const char* address, _velk_request& response);

// Sets an address with the real shell and tools and reads it back.
bool AddressCanBeSet(const char* address);

int QuerySsid(_velk_request& response);

class HostTest : public testkit::DeviceTest {
  protected:
    HostTest();
    void TearDown() override;

    // Runs a function in a host program of its own. Returns true if the function does.
    static bool InAHost(const std::function<bool()>& call);

  private:
    std::optional<Device> device_;
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_HOST_H_
