// trial.cpp - one request on a device made for it.
#include "fault/trial.h"

#include <algorithm>
#include <iterator>

#include "support/device_test.h"

namespace fault {
namespace {

using testkit::LibcRecorder;
using Kinds = testkit::Call;

const std::set<Kinds> kEveryCall{
    Kinds::kOpen,      Kinds::kRead,      Kinds::kWrite,  Kinds::kClose,   Kinds::kFlock,
    Kinds::kFchmod,    Kinds::kSocket,    Kinds::kIoctl,  Kinds::kConnect, Kinds::kBind,
    Kinds::kSendto,    Kinds::kSelect,    Kinds::kUnlink, Kinds::kSemOpen, Kinds::kRecvfrom,
    Kinds::kSemClose,  Kinds::kSemPost,   Kinds::kSystem, Kinds::kSleep,   Kinds::kSyslog,
    Kinds::kNanosleep, Kinds::kSemUnlink,
};

int MappedSemaphores() {
    const std::string maps = testkit::ReadFile("/proc/self/maps");
    int count = 0;
    constexpr char kName[] = "/dev/shm/sem.";
    for (size_t at = maps.find(kName); at != std::string::npos; at = maps.find(kName, at + 1)) {
        ++count;
    }
    return count;
}

std::vector<int> Added(const std::vector<int>& before, const std::vector<int>& after) {
    std::vector<int> added;
    std::ranges::set_difference(after, before, std::back_inserter(added));
    return added;
}

std::vector<int> SortedDescriptors() {
    std::vector<int> numbers = testkit::OpenDescriptors();
    std::ranges::sort(numbers);
    return numbers;
}

}  // namespace

// Nothing but the call itself: the test's own allocations must neither fail nor count.
void Trial::Call(const Fault* fault, Outcome& outcome) {
    const testkit::AllocationCount count;
    std::optional<testkit::AllocationFault> planned;
    if (fault != nullptr && !fault->kind.call) {
        planned.emplace(fault->number, fault->reach);
    }
    outcome.result = execute_velk_command(&request_, &outcome.response);
    outcome.allocations_made = count.made();
    outcome.allocations_held = count.held();
}

Outcome Trial::Run(const Fault* fault) {
    Outcome outcome;
    outcome.response = testkit::DirtyResponse();
    const std::vector<int> descriptors = SortedDescriptors();
    LibcRecorder::Get().ForgetEvents();
    Call(fault, outcome);
    const testkit::Unrecorded unrecorded;
    device_.daemon().ServePending();
    outcome.files = ReadTargets();
    outcome.leftovers = Leftovers();
    outcome.descriptors_left = Added(descriptors, SortedDescriptors());
    outcome.semaphores_mapped = MappedSemaphores();
    outcome.is_lock_free = testkit::IsLockFree();
    return outcome;
}

Reference Trial::RunWithoutFault() {
    Reference reference;
    reference.before = ReadTargets();
    LibcRecorder& libc = LibcRecorder::Get();
    libc.OnEveryCall([&] {
        for (const auto& [path, text] : ReadTargets()) {
            reference.states[path].insert(text);
        }
    });
    reference.outcome = Run();
    libc.OnEveryCall(nullptr);
    for (const auto& [path, text] : reference.outcome.files) {
        reference.states[path].insert(text);
    }
    for (const Kind& kind : kKinds) {
        reference.made[kind.name] = kind.call ? static_cast<int>(libc.Events(*kind.call).size())
                                              : reference.outcome.allocations_made;
    }
    reference.course = std::to_string(reference.outcome.result);
    reference.course += reference.outcome.files == reference.before ? " unchanged" : " changed";
    for (const std::string& step : libc.Order(kEveryCall)) {
        reference.course += "\n" + step;
    }
    for (const std::string& line : libc.Commands()) {
        reference.course += "\n" + line;
    }
    return reference;
}

Outcome Trial::RunWith(const Fault& fault) {
    if (fault.kind.call) {
        LibcRecorder::Get().PlanFault(*fault.kind.call, fault.number, fault.reach,
                                      fault.kind.error);
    }
    return Run(&fault);
}

Outcome Trial::RunAgain() {
    LibcRecorder::Get().ForgetFault();
    return Run();
}

}  // namespace fault
