// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_meetings.cpp - changes of velkctl that meet other programs, or their deadline.
#include "schedules/change_meetings.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/changes.h"
#include "schedules/kit/shared_device.h"
#include "schedules/kit/timers.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/apply.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/guardian/guardian.h"
#include "velkctl/guardian/guardian_process.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"

namespace schedules {
namespace {

using fault::ChangeTo;
using velkctl::EntryState;
using velkctl::Report;

constexpr char kApply[] = "apply";
constexpr char kOutsider[] = "outsider";
constexpr char kConfirm[] = "confirm";
constexpr char kGuardian[] = "guardian";
constexpr char kDeadline[] = "deadline";

constexpr char kMessages[] = "/run/schedule-messages";
constexpr int kWindow = 600;  // in seconds

// The values before the change, of the change, and of the outsider.
constexpr std::string_view kOld = "192.168.0.10";
constexpr std::string_view kNew = "10.1.2.3";
constexpr std::string_view kHis = "10.9.9.9";
constexpr std::string_view kHisNetmask = "255.0.0.0";
constexpr std::string_view kHisLine = "# by hand\n";

// Sends the messages of velkctl to a file.
void EnterQuietly() {
    EnterDevice();
    const int file = open(kMessages, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    (void)dup2(file, STDOUT_FILENO);
    (void)dup2(file, STDERR_FILENO);
}

// Runs as `velkctl apply --confirm-within 600 --restart never` does.
int Apply() {
    EnterQuietly();
    Report report(Report::Form::kText);
    const velkctl::Device device({}, report);
    velkctl::GuardianProcess guardian(VELKCTL);
    velkctl::JournalRecord record(
        {}, report, {.guard = &guardian, .window_seconds = kWindow, .step_seconds = kWindow});
    const velkctl::ApplyPlan plan =
        MakePlan({ChangeTo("eth0.address", kNew)}, {.is_automatic = false}, device);
    const velkctl::StopSignals signals;
    const auto status = velkctl::Apply(plan, record, {}, signals, report).status;
    (void)fflush(stdout);
    return static_cast<int>(status);
}

int RunVerb(velkctl::ExitStatus (*verb)(const velkctl::Invocation&, Report&)) {
    EnterQuietly();
    Report report(Report::Form::kText);
    const auto status = verb({.limits = {.wait_seconds = 10}}, report);
    (void)fflush(stdout);
    return static_cast<int>(status);
}

// Returns the exit status of a process of its own, without a scheduler.
int InChild(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    (void)waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ReadInterfaces() {
    return testkit::ReadFile(testkit::kInterfacesFile);
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// Returns the state of the only change; nothing without an entry.
std::optional<EntryState> StoredState() {
    const auto entries = velkctl::ReadJournal().entries;
    return entries.empty() ? std::nullopt : std::optional(entries.back().decoded.entry.state);
}

std::string NameOfState() {
    const std::optional<EntryState> state = StoredState();
    return state ? std::string(NameOf(*state)) : "no entry";
}

bool IsJournalWhole() {
    for (const velkctl::StoredEntry& stored : velkctl::ReadJournal().entries) {
        if (!stored.is_whole() || stored.is_in_use) {
            return false;
        }
    }
    return true;
}

int ResultOf(const Course& course, const char* caller) {
    const auto found = course.results.find(caller);
    return found == course.results.end() ? -1 : found->second;
}

class ChangeMeeting : public Meeting {
  public:
    std::string Check(const Course& course) override {
        std::string text = FindRemains(course);
        text.append(IsJournalWhole() ? "" : "the journal is not whole\n");
        text.append(text.empty() ? CheckChange(course) : "");
        if (!text.empty()) {
            text.append("\nthe change: ").append(NameOfState()).append("\n");
            for (const auto& [caller, result] : course.results) {
                text.append(caller).append(": ").append(std::to_string(result)).append("\n");
            }
            text.append(testkit::ReadFile(kMessages));
        }
        return text;
    }

  protected:
    virtual std::string CheckChange(const Course& course) = 0;

    // Makes the device and returns the text of its interfaces file.
    static std::string Begin() {
        MakeDevice();
        (void)unlink(kMessages);
        return ReadInterfaces();
    }
};

// ---- Apply and outsider ------------------------------------------------------------------------

int SetBeside(uint32_t id, std::string_view value) {
    EnterDevice();
    _velk_request response{};
    const _velk_request request = testkit::MakeRequest(VELK_SET, id, "eth0", value);
    return execute_velk_command(&request, &response);
}

int SetAnother() {
    return SetBeside(VELK_CMD_NETMASK, kHisNetmask);
}

int SetTheSame() {
    return SetBeside(VELK_CMD_IP_ADDRESS, kHis);
}

class ApplyAndOutsider : public ChangeMeeting {
  public:
    explicit ApplyAndOutsider(int (*outsider)()) : outsider_(outsider) {}

    std::vector<Caller> Prepare() override {
        start_ = Begin();
        return {{kApply, Apply}, {kOutsider, outsider_}};
    }

  protected:
    // The guardian of a change that waits is the only process that may be left.
    std::string CheckChange(const Course& course) override {
        const int status = ResultOf(course, kApply);
        const bool waits = StoredState() == EntryState::kWaiting;
        const bool is_back = !StoredState() || StoredState() == EntryState::kReverted;
        if (status == 0 ? !waits : !is_back) {
            return "the state does not fit the status of apply";
        }
        const std::string text = CheckText(course, waits);
        if (!text.empty() || !waits) {
            return text;
        }
        const int reverted = InChild([] { return RunVerb(velkctl::RunRevert); });
        return CheckRevert(course, reverted);
    }

    virtual std::string CheckText(const Course& course, bool is_made) = 0;
    virtual std::string CheckRevert(const Course& course, int status) = 0;

    const std::string& start() const { return start_; }

  private:
    int (*const outsider_)();
    std::string start_;
};

// Both changes are in the file.
class OutsiderSetsAnother final : public ApplyAndOutsider {
  public:
    OutsiderSetsAnother() : ApplyAndOutsider(SetAnother) {}

  private:
    std::string Expected(const Course& course, bool is_made) const {
        const std::string made = is_made ? Replaced(start(), kOld, kNew) : start();
        const bool is_set = ResultOf(course, kOutsider) == LIB_VELK_SUCCESS;
        return is_set ? Replaced(made, "255.255.255.0", kHisNetmask) : made;
    }

    std::string CheckText(const Course& course, bool is_made) override {
        const int result = ResultOf(course, kOutsider);
        if (result != LIB_VELK_SUCCESS && result != LIB_VELK_LOCKED) {
            return "the outsider's set fails";
        }
        const std::string text = ReadInterfaces();
        return text == Expected(course, is_made) ? "" : "the file is another one:\n" + text;
    }

    std::string CheckRevert(const Course& course, int status) override {
        const std::string text = ReadInterfaces();
        return status == 0 && text == Expected(course, false) ? "" : "not put back:\n" + text;
    }
};

// The one that was later has its value. The outsider's value is never lost by a revert.
class OutsiderSetsTheSame final : public ApplyAndOutsider {
  public:
    OutsiderSetsTheSame() : ApplyAndOutsider(SetTheSame) {}

  private:
    std::string CheckText(const Course& course, bool is_made) override {
        const int result = ResultOf(course, kOutsider);
        if (result != LIB_VELK_SUCCESS && result != LIB_VELK_LOCKED) {
            return "the outsider's set fails";
        }
        text_ = ReadInterfaces();
        const bool is_his = result == LIB_VELK_SUCCESS && text_ == Replaced(start(), kOld, kHis);
        const bool is_ours = is_made && text_ == Replaced(start(), kOld, kNew);
        const bool is_old = !is_made && result != LIB_VELK_SUCCESS && text_ == start();
        return is_his || is_ours || is_old ? "" : "the file is another one:\n" + text_;
    }

    std::string CheckRevert(const Course& course, int status) override {
        const std::string text = ReadInterfaces();
        const std::string his = Replaced(start(), kOld, kHis);
        if (text_ == his) {
            return text == his ? "" : "the revert has lost the outsider's value:\n" + text;
        }
        const bool may_be_his = ResultOf(course, kOutsider) == LIB_VELK_SUCCESS && text == his;
        return status == 0 && (text == start() || may_be_his) ? "" : "not put back:\n" + text;
    }

    std::string text_;
};

// ---- Apply and editor --------------------------------------------------------------------------

// Saves the text that it has just read, as an editor does. It takes no lock.
int SaveWithALine() {
    EnterDevice();
    const std::string text = ReadInterfaces();
    if (text.empty()) {
        return 1;  // a set copies; a person would not save an empty file
    }
    const std::string file = std::string(testkit::kInterfacesFile) + ".new";
    testkit::WriteFile(file, text + std::string(kHisLine));
    return rename(file.c_str(), testkit::kInterfacesFile);
}

// An editor takes no lock, so either may overwrite the other's change. The file is still a whole
// one, and no revert loses the line.
class EditorSaves final : public ApplyAndOutsider {
  public:
    EditorSaves() : ApplyAndOutsider(SaveWithALine) {}

  private:
    std::string CheckText(const Course& /*course*/, bool /*is_made*/) override {
        text_ = ReadInterfaces();
        const std::string changed = Replaced(start(), kOld, kNew);
        const std::string line(kHisLine);
        const bool is_whole = text_ == start() || text_ == changed || text_ == start() + line ||
                              text_ == changed + line;
        return is_whole ? "" : "the file is no whole one:\n" + text_;
    }

    std::string CheckRevert(const Course& /*course*/, int /*status*/) override {
        const std::string text = ReadInterfaces();
        const std::string back = Replaced(text_, kNew, kOld);
        return text == back ? "" : "not put back, or the line is lost:\n" + text;
    }

    std::string text_;
};

// ---- Confirm and deadline ----------------------------------------------------------------------

// Makes a change that waits, as an apply leaves it. Returns its id.
std::string MakeWaitingChange() {
    Report report(Report::Form::kText);
    const velkctl::Device device({}, report);
    const velkctl::JournalLock lock(velkctl::JournalLock::Use::kAlone, 0);
    velkctl::OpenChange change;
    const velkctl::SettingChange step = ChangeTo("eth0.address", kNew);
    (void)change.Begin({.kind = velkctl::EntryKind::kApply, .steps = velkctl::JournalSteps({step})},
                       device);
    (void)change.Advance(EntryState::kApplying);
    (void)device.Set(step.setting, step.value);
    (void)change.RecordFiles();
    change.RecordWindow({kWindow, velkctl::MillisecondsSinceBoot() + kWindow * 1000});
    (void)change.Advance(EntryState::kWaiting);
    return change.entry().id;
}

// The run that has made the change has ended: the other end of its pipe is closed.
int Guard(const std::string& id) {
    EnterQuietly();
    int ends[2];
    (void)!pipe(ends);
    (void)dup2(ends[0], velkctl::kLifelineFd);
    (void)dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), velkctl::kReadyFd);
    for (int fd = velkctl::kReadyFd + 1; fd <= ends[1]; ++fd) {
        (void)close(fd);
    }
    return velkctl::RunGuardian({id, "0"});
}

class ConfirmAndDeadline final : public ChangeMeeting {
  public:
    std::vector<Caller> Prepare() override {
        start_ = Begin();
        (void)InChild([] {
            EnterQuietly();
            (void)MakeWaitingChange();
            return 0;
        });
        const auto entries = velkctl::ReadJournal().entries;
        const std::string id = entries.empty() ? "" : entries.back().decoded.entry.id;
        return {{kConfirm, [] { return RunVerb(velkctl::RunConfirm); }},
                {kGuardian, [id] { return Guard(id); }},
                {kDeadline,
                 [] {
                     PassSeconds(kWindow);
                     return 0;
                 },
                 Role::kEvent}};
    }

  private:
    std::string CheckChange(const Course& course) override {
        const bool is_confirmed = ResultOf(course, kConfirm) == 0;
        if (StoredState() != (is_confirmed ? EntryState::kConfirmed : EntryState::kReverted)) {
            return "the state does not fit the status of confirm";
        }
        if (IsWrong(course, is_confirmed)) {
            return is_confirmed ? "it is confirmed after the deadline"
                                : "it is not confirmed although the deadline was later";
        }
        const std::string text = ReadInterfaces();
        const std::string expected = is_confirmed ? Replaced(start_, kOld, kNew) : start_;
        return text == expected ? "" : "the file does not fit the status of confirm:\n" + text;
    }

    // True if all calls of the confirmation were after the deadline, but it was confirmed, or
    // before, but it was not.
    static bool IsWrong(const Course& course, bool is_confirmed) {
        const auto& calls = course.calls;
        const auto deadline = std::ranges::find(calls, kDeadline);
        const auto is_confirms = [](const std::string& call) {
            return call.starts_with(std::string(kConfirm) + ":");
        };
        return is_confirmed ? std::none_of(calls.begin(), deadline, is_confirms)
                            : std::none_of(deadline, calls.end(), is_confirms);
    }

    std::string start_;
};

}  // namespace

std::unique_ptr<Meeting> ApplyMeetsSetOfAnother() {
    return std::make_unique<OutsiderSetsAnother>();
}

std::unique_ptr<Meeting> ApplyMeetsSetOfTheSame() {
    return std::make_unique<OutsiderSetsTheSame>();
}

std::unique_ptr<Meeting> ApplyMeetsEditor() {
    return std::make_unique<EditorSaves>();
}

std::unique_ptr<Meeting> ConfirmMeetsDeadline() {
    return std::make_unique<ConfirmAndDeadline>();
}

}  // namespace schedules
