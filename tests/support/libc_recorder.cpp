// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// libc_recorder.cpp - records calls and answers them by script.
#include "support/libc_recorder.h"

#include <utility>

#include "support/allocations.h"

namespace testkit {
namespace {

thread_local bool is_unrecorded = false;

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
    counts_.clear();
    answers_.clear();
    redirects_.clear();
    observer_ = nullptr;
    fault_.reset();
    never_waits_ = false;
    sleeps_for_real_ = false;
}

void LibcRecorder::ForgetEvents() {
    const std::lock_guard guard(mutex_);
    events_.clear();
    counts_.clear();
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

void LibcRecorder::OnEveryCall(std::function<void(const Event&)> observer) {
    const std::lock_guard guard(mutex_);
    observer_ = std::move(observer);
}

void LibcRecorder::PlanFault(Call call, int number, Reach reach, int error) {
    PlanFault(call, number, reach, Fail(error));
}

void LibcRecorder::PlanFault(Call call, int number, Reach reach, Outcome answer) {
    const std::lock_guard guard(mutex_);
    fault_ = {call, number, reach, answer};
}

bool LibcRecorder::HasFaultStruck() const {
    const std::lock_guard guard(mutex_);
    return fault_ && fault_->has_struck;
}

void LibcRecorder::ForgetFault() {
    const std::lock_guard guard(mutex_);
    fault_.reset();
}

void LibcRecorder::NeverWait() {
    const std::lock_guard guard(mutex_);
    never_waits_ = true;
}

bool LibcRecorder::never_waits() const {
    const std::lock_guard guard(mutex_);
    return never_waits_;
}

void LibcRecorder::SleepForReal() {
    const std::lock_guard guard(mutex_);
    sleeps_for_real_ = true;
}

bool LibcRecorder::sleeps_for_real() const {
    const std::lock_guard guard(mutex_);
    return sleeps_for_real_;
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

size_t LibcRecorder::Count(Call call) const {
    const std::lock_guard guard(mutex_);
    const auto found = counts_.find(call);
    return found == counts_.end() ? 0 : found->second;
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

bool LibcRecorder::IsFaultDue(Call call) {
    if (!fault_ || fault_->call != call || fault_->calls_until == 0) {
        return false;
    }
    if (--fault_->calls_until > 0) {
        return false;
    }
    fault_->calls_until = fault_->reach == Reach::kAllFrom ? 1 : 0;
    fault_->has_struck = true;
    return true;
}

// Records the call. Returns its outcome, and the hook, which must run unlocked.
LibcRecorder::Answers LibcRecorder::Reserve(const Event& event) {
    const std::lock_guard guard(mutex_);
    events_.push_back(event);
    ++counts_[event.call];
    if (IsFaultDue(event.call)) {
        return {{}, fault_->answer, nullptr, observer_};
    }
    Answers taken;
    taken.observer = observer_;
    const auto found = answers_.find(event.call);
    if (found == answers_.end()) {
        return taken;
    }
    Answers& answers = found->second;
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
    const UncountedAllocations scope;
    const Event event{call.call, std::string(call.text), call.spelling, call.number};
    const Answers answers = Reserve(event);
    if (answers.observer) {
        const Unrecorded unrecorded;
        answers.observer(event);
    }
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

}  // namespace testkit
