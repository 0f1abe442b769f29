// trial.h - one request on a device made for it, with or without a fault, and what became of it.
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

// What a call left behind.
struct Outcome {
    int result = 0;
    _velk_request response{};
    Files files;
    std::string wireless;  // the daemon's stored configuration, byte by byte
    std::vector<std::string> leftovers;
    int allocations_made = 0;
    int allocations_held = 0;
    std::vector<int> descriptors_left;  // numbers that were not open before
    int semaphores_mapped = 0;
    bool is_lock_free = true;
    bool has_fault_struck = false;
};

// The call as it goes when nothing fails.
struct Reference {
    Files before;
    std::string wireless_before;
    Outcome outcome;
    std::string course;  // tells calls that go different ways apart
    CallLog log;
    // Every text that stood in a file at any moment of the call.
    std::map<std::string, std::set<std::optional<std::string>>> states;

    // How often a call of this kind can fail.
    int Made(const Kind& kind) const;
    bool ChangesSomething() const;
};

class Trial {
  public:
    // On the scene's device, with these texts in its files and these bytes as the wireless daemon's
    // configuration where given.
    Trial(const Scene& scene, const _velk_request& request, const Files& files = {},
          const std::string& wireless = {});

    Reference RunWithoutFault();
    Outcome RunWith(const Fault& fault);
    // The same request once more on the same device, all faults mended.
    Outcome RunAgain();

  private:
    // With the fault, when it is one of an allocation.
    Outcome Run(const Fault* fault = nullptr);
    void Call(const Fault* fault, Outcome& outcome);

    Device device_;
    const _velk_request request_;
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_TRIAL_H_
