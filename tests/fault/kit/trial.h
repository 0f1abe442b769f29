// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial.h - one request on a device made for it, with or without a fault, and its outcome.
#ifndef TESTS_FAULT_KIT_TRIAL_H_
#define TESTS_FAULT_KIT_TRIAL_H_

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fault/kit/call_log.h"
#include "fault/kit/fault_kinds.h"
#include "fault/kit/scene.h"
#include "velk.h"

namespace fault {

// The result and the traces of a call.
struct Outcome {
    int result = 0;
    _velk_request response{};
    Files files;
    std::string wireless;  // the daemon's stored configuration, byte by byte
    std::vector<std::string> remaining_files;
    int allocations_made = 0;
    int allocations_held = 0;
    std::vector<int> descriptors_left;  // numbers that were not open before
    int semaphores_mapped = 0;
    bool is_lock_free = true;
    bool has_fault_struck = false;
};

// The same call without a fault.
struct Reference {
    Files before;
    std::string wireless_before;
    Outcome outcome;
    std::string course;  // differs between calls that go different ways
    CallLog log;
    // Every text that a file contained at any moment of the call.
    std::map<std::string, std::set<std::optional<std::string>>> states;

    // Returns the number of calls of this kind that can fail.
    int Made(const Kind& kind) const;
    bool ChangesSomething() const;
};

class Trial {
  public:
    // Runs on the scene's device. Texts and bytes, if given, replace its files and the wireless
    // daemon's configuration.
    Trial(const Scene& scene, const _velk_request& request, const Files& files = {},
          const std::string& wireless = {});

    Reference RunWithoutFault();
    Outcome RunWith(const Fault& fault);
    // Runs the same request once more on the same device, without a fault.
    Outcome RunAgain();

  private:
    // Runs the request. `fault` is not null only for an allocation.
    Outcome Run(const Fault* fault = nullptr);
    void Call(const Fault* fault, Outcome& outcome);

    Device device_;
    const _velk_request request_;
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_TRIAL_H_
