// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fuzz_device.h - the base of every fuzz target: a private device, a fake shell, hard checks.
#ifndef TESTS_FUZZ_KIT_FUZZ_DEVICE_H_
#define TESTS_FUZZ_KIT_FUZZ_DEVICE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/check.h"
#include "support/device_test.h"
#include "support/fake_shell.h"
#include "velk.h"

namespace fuzz {

// One input's turn: an empty recorder, a shell that runs in this process. Its end checks that no
// descriptor is left open, that all results are documented ones, and that every shell line is one
// of the library's.
class Turn {
  public:
    Turn();
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    testkit::FakeShell& shell() { return shell_; }

    // Runs a request; checks its result, the header of the response and that the request is
    // unchanged.
    int Execute(const _velk_request& request);
    int Execute(uint32_t type, uint32_t id, std::string_view interface, std::string_view data = {});

    _velk_request response{};

  private:
    std::ptrdiff_t descriptors_;      // open at the start, before the shell exists
    std::vector<std::string> texts_;  // the texts of the requests so far
    testkit::FakeShell shell_;
};

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_FUZZ_DEVICE_H_
