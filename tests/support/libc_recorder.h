// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// libc_recorder.h - records the library's calls of libc, and answers them by script.
//
// The test executable defines system(3), sleep(3), syslog(3), open(2) and others itself, and the
// dynamic linker prefers the executable's definitions. Every call passes through to libc unless a
// test scripts it, with two exceptions: sleep(3) returns at once unless SleepForReal() was called,
// and a log line is kept but never sent, so that the machine's own log stays as it is.
#ifndef TESTS_SUPPORT_LIBC_RECORDER_H_
#define TESTS_SUPPORT_LIBC_RECORDER_H_

#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/allocations.h"

namespace testkit {

enum class Call {
    kOpen,
    kRead,
    kWrite,
    kClose,
    kFlock,
    kFchmod,
    kSocket,
    kIoctl,
    kConnect,
    kBind,
    kSendto,
    kSelect,
    kRecvfrom,
    kUnlink,
    kSemOpen,
    kSemPost,
    kSemClose,
    kSemUnlink,
    kSystem,
    kSleep,
    kNanosleep,
    kClockNanosleep,
    kSyslog
};

// The outcome of one call.
struct Outcome {
    bool pass = true;
    long result = 0;
    int error = 0;
};
Outcome Pass();
Outcome Fail(int error);      // -1 with errno
Outcome Return(long result);  // the result alone, errno untouched

// A recorded call. `text` is the shell line, the formatted log line, the path, the seconds.
struct Event {
    Call call;
    std::string text;
    std::string spelling;  // the symbol that was called: "open64", "__syslog_chk"
    int number = 0;        // log priority, open flags, lock operation, mode
};

// A call before the recorder has copied its texts.
struct CallView {
    Call call;
    std::string_view text;
    const char* spelling;
    int number = 0;
};

class LibcRecorder {
  public:
    static LibcRecorder& Get();

    // Forgets all recorded calls and every script.
    void Reset();
    // Forgets the recorded calls alone.
    void ForgetEvents();

    // The next calls of this kind return these outcomes, in order; later ones pass through.
    void Script(Call call, std::initializer_list<Outcome> outcomes);
    // Calls of this kind after the end of the script return this outcome.
    void ScriptAlways(Call call, Outcome outcome);
    // Runs `hook` before every call of this kind. A fake tool can write its files there.
    void OnCall(Call call, std::function<void(const Event&)> hook);

    // Runs `observer` before every call of any kind. Its own calls are not recorded.
    void OnEveryCall(std::function<void(const Event&)> observer);

    // Lets the call of this kind with this number (from 1, counted from now) fail in spite of any
    // script. Its hook does not run. One fault is planned at a time.
    void PlanFault(Call call, int number, Reach reach, int error);
    // Like the function above, with this outcome: system(3) reports a missing shell without an
    // errno.
    void PlanFault(Call call, int number, Reach reach, Outcome answer);
    // Returns true if the planned fault has hit a call.
    bool HasFaultStruck() const;

    void ForgetFault();

    // From now on select(2) reports ready descriptors without waiting.
    void NeverWait();
    bool never_waits() const;

    // From now on sleep(3) really sleeps, and signals interrupt it.
    void SleepForReal();
    bool sleeps_for_real() const;

    // From now on, open(2) of `path` opens `other`. This replaces files that only the kernel can
    // write.
    void Redirect(const std::string& path, const std::string& other);

    // Returns the texts of all calls of one kind, in order.
    std::vector<std::string> Texts(Call call) const;
    std::vector<std::string> Commands() const { return Texts(Call::kSystem); }
    std::vector<std::string> Logs() const { return Texts(Call::kSyslog); }
    std::vector<Event> Events(Call call) const;
    size_t Count(Call call) const;
    // Returns shell lines, sleeps and log lines in their order: "system sudo ifdown eth0".
    std::vector<std::string> Story() const;
    // Returns every call of the given kinds in their order, as the symbol alone: "sem_post".
    std::vector<std::string> Order(const std::set<Call>& calls) const;

    // Records a call of an interposed function and returns its outcome.
    Outcome Take(const CallView& call);
    // Returns the path to open instead of this one.
    const char* Target(const char* path) const;

  private:
    struct Answers {
        std::deque<Outcome> next;
        Outcome always;
        std::function<void(const Event&)> hook;
        std::function<void(const Event&)> observer;
    };
    struct Fault {
        Call call;
        int calls_until;
        Reach reach;
        Outcome answer;
        bool has_struck = false;
    };
    Answers Reserve(const Event& event);
    bool IsFaultDue(Call call);

    mutable std::mutex mutex_;
    std::vector<Event> events_;
    std::map<Call, size_t> counts_;
    std::map<Call, Answers> answers_;
    std::map<std::string, std::string, std::less<>> redirects_;
    std::function<void(const Event&)> observer_;
    std::optional<Fault> fault_;
    bool never_waits_ = false;
    bool sleeps_for_real_ = false;
};

// During its lifetime, calls of the calling thread are not recorded: for a test's own helpers.
class Unrecorded {
  public:
    Unrecorded();
    ~Unrecorded();
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;

  private:
    const bool outer_;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_LIBC_RECORDER_H_
