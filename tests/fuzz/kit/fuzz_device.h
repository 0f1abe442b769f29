// fuzz_device.h - what every fuzz target stands on: a private device, a faked shell, hard checks.
#ifndef TESTS_FUZZ_KIT_FUZZ_DEVICE_H_
#define TESTS_FUZZ_KIT_FUZZ_DEVICE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "velk.h"

namespace fuzz {

// Ends the process, saying what did not hold, so that the fuzzer keeps the input.
void Check(bool holds, std::string_view what);

// One input's turn: an empty recorder, a shell that runs in this process. When it ends, no
// descriptor is left open, no result but a documented one was seen, and every shell line was one of
// the library's.
class Turn {
  public:
    Turn();
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    testkit::FakeShell& shell() { return shell_; }

    // Runs a request; checks its result, the header of the response and that the request is as it
    // was.
    int Execute(const _velk_request& request);
    int Execute(uint32_t type, uint32_t id, std::string_view interface, std::string_view data = {});

    _velk_request response{};

  private:
    std::ptrdiff_t descriptors_;      // that were open when it began; set before the shell is there
    std::vector<std::string> texts_;  // of the requests so far
    testkit::FakeShell shell_;
};

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_FUZZ_DEVICE_H_
