// libc_recorder.cpp - records calls and answers them by script.
#include "support/libc_recorder.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace testkit {
namespace {

thread_local int allocations_until_fault = 0;  // 0: none is planned
thread_local bool in_recorder = false;
thread_local bool is_unrecorded = false;

// The recorder's own allocations are not the library's.
class RecorderScope {
  public:
    RecorderScope() : outer_(std::exchange(in_recorder, true)) {}
    ~RecorderScope() { in_recorder = outer_; }
    RecorderScope(const RecorderScope&) = delete;
    RecorderScope& operator=(const RecorderScope&) = delete;

  private:
    const bool outer_;
};

bool IsFaultDue() {
    if (in_recorder || allocations_until_fault == 0) {
        return false;
    }
    return --allocations_until_fault == 0;
}

void* Allocate(size_t size) {
    if (IsFaultDue()) {
        throw std::bad_alloc();
    }
    void* memory = malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

Outcome Pass() {
    return {};
}

Outcome Fail(int error) {
    return {false, -1, error};
}

Outcome Return(long result) {
    return {false, result, 0};
}

LibcRecorder& LibcRecorder::Get() {
    static auto* recorder = new LibcRecorder;  // outlives every late caller
    return *recorder;
}

void LibcRecorder::Reset() {
    const std::lock_guard guard(mutex_);
    events_.clear();
    answers_.clear();
    redirects_.clear();
}

void LibcRecorder::Script(Call call, std::initializer_list<Outcome> outcomes) {
    const std::lock_guard guard(mutex_);
    answers_[call].next.assign(outcomes);
}

void LibcRecorder::ScriptAlways(Call call, Outcome outcome) {
    const std::lock_guard guard(mutex_);
    answers_[call].always = outcome;
}

void LibcRecorder::OnCall(Call call, std::function<void(const Event&)> hook) {
    const std::lock_guard guard(mutex_);
    answers_[call].hook = std::move(hook);
}

void LibcRecorder::Redirect(const std::string& path, const std::string& other) {
    const std::lock_guard guard(mutex_);
    redirects_[path] = other;
}

const char* LibcRecorder::Target(const char* path) const {
    const std::lock_guard guard(mutex_);
    const auto found = redirects_.find(std::string_view(path));
    return found == redirects_.end() ? path : found->second.c_str();
}

std::vector<Event> LibcRecorder::Events(Call call) const {
    const std::lock_guard guard(mutex_);
    std::vector<Event> found;
    for (const Event& event : events_) {
        if (event.call == call) {
            found.push_back(event);
        }
    }
    return found;
}

std::vector<std::string> LibcRecorder::Texts(Call call) const {
    std::vector<std::string> texts;
    for (const Event& event : Events(call)) {
        texts.push_back(event.text);
    }
    return texts;
}

std::vector<std::string> LibcRecorder::Story() const {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> story;
    for (const Event& event : events_) {
        if (event.call == Call::kSystem) {
            story.push_back("system " + event.text);
        } else if (event.call == Call::kSleep) {
            story.push_back("sleep " + event.text);
        } else if (event.call == Call::kSyslog) {
            story.push_back("log " + event.text);
        }
    }
    return story;
}

std::vector<std::string> LibcRecorder::Order(const std::set<Call>& calls) const {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> order;
    for (const Event& event : events_) {
        if (calls.contains(event.call)) {
            order.push_back(event.spelling);
        }
    }
    return order;
}

// Notes the call; hands out its answer and the hook, which must run unlocked.
LibcRecorder::Answers LibcRecorder::Reserve(const Event& event) {
    const std::lock_guard guard(mutex_);
    events_.push_back(event);
    const auto found = answers_.find(event.call);
    if (found == answers_.end()) {
        return {};
    }
    Answers& answers = found->second;
    Answers taken;
    taken.hook = answers.hook;
    taken.always = answers.always;
    if (!answers.next.empty()) {
        taken.always = answers.next.front();
        answers.next.pop_front();
    }
    return taken;
}

Outcome LibcRecorder::Take(const CallView& call) {
    if (is_unrecorded) {
        return Pass();
    }
    const RecorderScope scope;
    const Event event{call.call, std::string(call.text), call.spelling, call.number};
    const Answers answers = Reserve(event);
    if (answers.hook) {
        answers.hook(event);
    }
    return answers.always;
}

Unrecorded::Unrecorded() : outer_(std::exchange(is_unrecorded, true)) {
}

Unrecorded::~Unrecorded() {
    is_unrecorded = outer_;
}

AllocationFault::AllocationFault(int number) {
    allocations_until_fault = number;
}

AllocationFault::~AllocationFault() {
    allocations_until_fault = 0;
}

}  // namespace testkit

void* operator new(size_t size) {
    return testkit::Allocate(size);
}

void* operator new[](size_t size) {
    return testkit::Allocate(size);
}

void operator delete(void* memory) noexcept {
    free(memory);
}

void operator delete[](void* memory) noexcept {
    free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    free(memory);
}

void operator delete[](void* memory, size_t) noexcept {
    free(memory);
}
