// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial.cpp - one request on a device made for it.
#include "fault/kit/trial.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "support/allocations.h"
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

std::string WirelessOf(Device& device) {
    const SMsgConf conf = device.daemon().conf();
    return {reinterpret_cast<const char*>(&conf), sizeof(conf)};
}

}  // namespace

int Reference::Made(const Kind& kind) const {
    return kind.call ? static_cast<int>(log.Calls(*kind.call).size()) : outcome.allocations_made;
}

bool Reference::ChangesSomething() const {
    return before != outcome.files || wireless_before != outcome.wireless;
}

Trial::Trial(const Scene& scene, const _velk_request& request, const Files& files,
             const std::string& wireless)
    : device_(scene, files), request_(request) {
    if (!wireless.empty()) {
        SMsgConf conf;
        memcpy(&conf, wireless.data(), sizeof(conf));
        device_.daemon().SetConf(conf);
    }
}

// Covers only the call itself: the test's own allocations must neither fail nor count.
void Trial::Call(const Fault* fault, Outcome& outcome) {
    const testkit::AllocationCount count;
    std::optional<testkit::AllocationFault> planned;
    if (fault != nullptr && !fault->kind.call) {
        planned.emplace(fault->number, fault->reach);
    }
    outcome.result = execute_velk_command(&request_, &outcome.response);
    outcome.allocations_made = count.made();
    outcome.allocations_held = count.held();
    outcome.has_fault_struck =
        planned ? planned->has_struck() : LibcRecorder::Get().HasFaultStruck();
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
    outcome.wireless = WirelessOf(device_);
    outcome.remaining_files = RemainingFiles();
    outcome.descriptors_left = Added(descriptors, SortedDescriptors());
    outcome.semaphores_mapped = MappedSemaphores();
    outcome.is_lock_free = testkit::IsLockFree();
    return outcome;
}

Reference Trial::RunWithoutFault() {
    Reference reference;
    reference.before = ReadTargets();
    reference.wireless_before = WirelessOf(device_);
    LibcRecorder& libc = LibcRecorder::Get();
    libc.OnEveryCall([&](const testkit::Event& event) {
        reference.log.Note(event);
        for (const auto& [path, text] : ReadTargets()) {
            reference.states[path].insert(text);
        }
    });
    reference.outcome = Run();
    libc.OnEveryCall(nullptr);
    for (const auto& [path, text] : reference.outcome.files) {
        reference.states[path].insert(text);
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
                                      fault.kind.answer);
    }
    return Run(&fault);
}

Outcome Trial::RunAgain() {
    LibcRecorder::Get().ForgetFault();
    return Run();
}

}  // namespace fault
