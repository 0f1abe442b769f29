// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A change that must be confirmed: its run is killed at each system call, the disk is full at each
// write, the power is cut while it is put back at a start, and the confirmation meets the deadline.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/changes.h"
#include "fault/kit/scene.h"
#include "fault/kit/tracer.h"
#include "lib/base/paths.h"
#include "support/device_test.h"
#include "support/mounted.h"
#include "support/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/apply.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/change_record.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/guardian/guardian_process.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"

namespace fault {
namespace {

using velkctl::ChangeSet;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::GuardianFacts;
using velkctl::GuardianProcess;
using velkctl::JournalEntry;
using velkctl::JournalLock;
using velkctl::MillisecondsSinceBoot;
using velkctl::OpenChange;
using velkctl::ReadJournal;
using velkctl::Report;

constexpr int kWindow = 600;
constexpr char kBootIdFile[] = "/proc/sys/kernel/random/boot_id";
constexpr char kOtherBootId[] = "/tmp/boot_id";

ChangeSet SomeChanges() {
    return {ChangeTo("eth0.address", "10.1.2.3"), ChangeTo("eth0.gateway", "10.1.2.4"),
            ChangeTo("eth0.dns", "10.1.2.5")};
}

// Runs as `velkctl apply --confirm-within 600` does.
int Apply(Device& tools, const std::string& path) {
    tools.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    Report report(Report::Form::kText);
    const velkctl::Device device({}, report);
    GuardianProcess guardian(VELKCTL);
    velkctl::JournalRecord record(
        {}, report, {.guard = &guardian, .window_seconds = kWindow, .step_seconds = kWindow});
    const velkctl::ApplyPlan plan = MakePlan(SomeChanges(), {.is_automatic = false}, device);
    const velkctl::StopSignals signals;
    return static_cast<int>(velkctl::Apply(plan, record, {}, signals, report).status);
}

std::optional<JournalEntry> Stored() {
    const auto entries = ReadJournal().entries;
    return entries.empty() ? std::nullopt : std::optional(entries.back().decoded.entry);
}

EntryState StoredState() {
    const std::optional<JournalEntry> entry = Stored();
    return entry ? entry->state : EntryState::kDone;
}

// True if nobody is at work on a change of this state.
bool IsSettled(EntryState state) {
    return state != EntryState::kApplying && state != EntryState::kReverting;
}

// The note of the last address is in /tmp, and lost at a start.
Files FilesToKeep() {
    Files files = ReadTargets();
    files.erase(testkit::kOldAddressFile);
    return files;
}

// Returns each file that is not as expected.
std::string Differences(const Files& expected) {
    std::string text;
    for (const auto& [path, bytes] : FilesToKeep()) {
        if (bytes != expected.at(path)) {
            text.append(path).append(":\n").append(bytes.value_or("(missing)\n"));
        }
    }
    return text;
}

// Waits until the condition holds. Returns false if it does not after so many looks, which take 10
// seconds or more: on a busy machine each takes longer.
template <typename Condition>
bool Soon(const Condition& condition, int looks = 1000) {
    while (!condition() && --looks > 0) {
        (void)poll(nullptr, 0, 10);  // no sleep takes time here
    }
    return condition();
}

// Returns the exit status of the work in a process of its own.
int InChild(const Work& work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    (void)waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void AwaitEnd(pid_t process) {
    int status = 0;
    (void)waitpid(process, &status, 0);
}

class UnconfirmedChange : public testkit::DeviceTest {
  protected:
    void SetUp() override { setenv("PATH", path_.c_str(), 1); }

    // Makes a change that waits, as an apply leaves it, with a guardian if wanted.
    void MakeWaitingChange(Device& tools, int64_t milliseconds, GuardianProcess* guardian) {
        tools.UseRealTools();
        ASSERT_TRUE(JournalLock(JournalLock::Use::kAlone, 0).is_held());
        OpenChange change;
        ASSERT_EQ(change.Begin({.kind = velkctl::EntryKind::kApply,
                                .steps = velkctl::JournalSteps({SomeChanges().front()})},
                               device_),
                  0);
        ASSERT_EQ(change.Advance(EntryState::kApplying), 0);
        ASSERT_TRUE(device_.Set(SomeChanges().front().setting, SomeChanges().front().value).ok());
        ASSERT_EQ(change.RecordFiles(), 0);
        change.RecordWindow({kWindow, MillisecondsSinceBoot() + kWindow * 1000});
        if (guardian != nullptr) {
            ASSERT_FALSE(guardian->Start(change.entry().id, facts_));
            change.RecordGuardian(facts_);
        }
        ASSERT_EQ(change.Advance(EntryState::kWaiting), 0);
        deadline_ = MillisecondsSinceBoot() + milliseconds;
        change.RecordWindow({kWindow, deadline_});
        ASSERT_EQ(change.Sync(), 0);
    }

    ExitStatus Run(ExitStatus (*verb)(const velkctl::Invocation&, Report&), bool boot = false) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const ExitStatus status = verb({.limits = {.wait_seconds = 10}, .boot = boot}, report_);
        (void)fflush(stdout);
        output_ = testing::internal::GetCapturedStdout();
        error_ = testing::internal::GetCapturedStderr();
        return status;
    }

    void KillRuns();
    void KillRun(const Moment& at, const Files& before, const Files& after);
    void TakeBackLate(int* ready);
    [[noreturn]] void Hang(int64_t milliseconds, bool ignores_sigterm);
    void MeetDeadline(int count);
    bool ConfirmBeforeDeadline(int64_t microseconds);
    TracedRun CutRecover(std::optional<Moment> at);
    void FailWrite(const WriteFault& fault, const Files& before, const Files& after);
    void CutRecovers(size_t most);

    const std::string path_ = PathWithHarmlessSudo();
    Report report_{Report::Form::kText};
    const velkctl::Device device_{{}, report_};
    GuardianFacts facts_;
    int64_t deadline_ = 0;
    int missed_ = 0;     // runs that ended before: the count of system calls differs a little
    int waiting_ = 0;    // runs that were killed while the change waited
    int confirmed_ = 0;  // races that the confirmation has won
    std::string output_;
    std::string error_;
};

// ---- The run is killed -------------------------------------------------------------------------

// The files are old at once, without another run. A change that waits is kept.
void UnconfirmedChange::KillRun(const Moment& at, const Files& before, const Files& after) {
    SCOPED_TRACE("killed " + TextOf(at));
    testkit::EmptyDevice();
    Device device{Scene{}};
    const TracedRun run = RunTraced([&] { return Apply(device, path_); }, at, Traced::kFirstOnly);
    missed_ += run.was_cut ? 0 : 1;
    EXPECT_TRUE(Soon([] { return IsSettled(StoredState()); })) << NameOf(StoredState());
    const bool waits = StoredState() == EntryState::kWaiting;
    EXPECT_EQ(Differences(waits ? after : before), "");
    waiting_ += waits ? 1 : 0;
    EXPECT_EQ(Run(waits ? velkctl::RunRevert : velkctl::RunRecover), ExitStatus::kDone) << error_;
    EXPECT_EQ(Differences(before), "");
}

void UnconfirmedChange::KillRuns() {
    testkit::EmptyDevice();
    Device device{Scene{}};
    const Files before = FilesToKeep();
    const TracedRun whole = RunTraced([&] { return Apply(device, path_); }, {}, Traced::kFirstOnly);
    ASSERT_EQ(whole.result, 0);
    const Files after = FilesToKeep();
    ASSERT_NE(Differences(before), "");
    int count = 0;
    for (const Moment& at : whole.MomentsThatDiffer()) {
        if (!HasFailure()) {
            ++count;
            KillRun(at, before, after);
        }
    }
    EXPECT_GT(count - missed_, 50);
    EXPECT_LE(missed_, 1 + count / 20);
    printf("| run of an apply killed | %d system calls | waiting: %d |\n", count, waiting_);
    (void)fflush(stdout);  // a child would print it once more
}

TEST_F(UnconfirmedChange, IsPutBackIfItsRunIsKilledAtAnySystemCall) {
    KillRuns();
}

// ---- The run hangs -----------------------------------------------------------------------------

// Begins the change with this time for all its steps, and does not go on.
void UnconfirmedChange::Hang(int64_t milliseconds, bool ignores_sigterm) {
    (void)signal(SIGTERM, ignores_sigterm ? SIG_IGN : SIG_DFL);
    const JournalLock lock(JournalLock::Use::kAlone, 0);
    OpenChange change;
    (void)change.Begin({.kind = velkctl::EntryKind::kApply,
                        .steps = velkctl::JournalSteps({SomeChanges().front()})},
                       device_);
    change.RecordWindow({kWindow, MillisecondsSinceBoot() + milliseconds});
    GuardianProcess guardian(VELKCTL);
    GuardianFacts facts;
    (void)guardian.Start(change.entry().id, facts);
    (void)change.Advance(EntryState::kApplying);
    (void)device_.Set(SomeChanges().front().setting, SomeChanges().front().value);
    (void)change.RecordFiles();
    (void)raise(SIGSTOP);  // as Ctrl-Z at a terminal does
    for (;;) {
        (void)pause();
    }
}

TEST_F(UnconfirmedChange, IsPutBackIfItsRunHangs) {
    for (const bool ignores_sigterm : {false, true}) {
        testkit::EmptyDevice();
        Device device{Scene{}};
        device.UseRealTools();
        const Files before = FilesToKeep();
        const pid_t run = fork();
        if (run == 0) {
            Hang(1000, ignores_sigterm);
        }
        int status = 0;
        bool has_ended = false;
        const auto look = [&] {
            has_ended = has_ended || waitpid(run, &status, WNOHANG) == run;
            return has_ended;
        };
        if (!Soon(look, 2000)) {
            (void)kill(run, SIGKILL);
            FAIL() << "it is not ended";
        }
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), ignores_sigterm ? SIGKILL : SIGTERM);
        EXPECT_TRUE(Soon([] { return StoredState() == EntryState::kReverted; }));
        EXPECT_EQ(Differences(before), "");
    }
}

// Returns the number of times that the process has gone to sleep, or was made to.
std::string SwitchesOf(pid_t process) {
    const std::string status = testkit::ReadFile("/proc/" + std::to_string(process) + "/status");
    return status.substr(std::min(status.find("voluntary_ctxt_switches"), status.size()));
}

// A run that could not end its steps in time takes its change back: restarts take minutes.
void UnconfirmedChange::TakeBackLate(int* ready) {
    Device device{Scene{}};
    GuardianProcess guardian(VELKCTL);
    MakeWaitingChange(device, kWindow * 1000, &guardian);
    OpenChange change(ReadJournal().entries.back());
    (void)change.Advance(EntryState::kReverting);
    change.RecordWindow({kWindow, MillisecondsSinceBoot() - 1});
    (void)change.Sync();
    (void)close(ready[1]);
    (void)pause();
}

TEST_F(UnconfirmedChange, IsLeftToARunThatTakesItBack) {
    testkit::EmptyDevice();
    const Device device{Scene{}};
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t run = fork();
    if (run == 0) {
        TakeBackLate(ready);
    }
    (void)close(ready[1]);
    char nothing = 0;
    EXPECT_EQ(read(ready[0], &nothing, 1), 0);
    (void)close(ready[0]);
    (void)poll(nullptr, 0, 300);
    const pid_t guardian = Stored().value().guardian.guardian;
    const std::string before = SwitchesOf(guardian);
    (void)poll(nullptr, 0, 1000);
    EXPECT_EQ(SwitchesOf(guardian), before) << "it sleeps";
    EXPECT_EQ(StoredState(), EntryState::kReverting);
    EXPECT_EQ(kill(run, SIGKILL), 0);
    int status = 0;
    (void)waitpid(run, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGKILL) << "the guardian has not ended it";
    EXPECT_TRUE(Soon([] { return StoredState() == EntryState::kReverted; }));
}

// ---- A step fails ------------------------------------------------------------------------------

// Has another program hold the library's lock from the set with this number on, from 1, until the
// change is taken back.
class LockedRecord final : public velkctl::ChangeRecord {
  public:
    LockedRecord(velkctl::JournalRecord& record, size_t at) : record_(record), at_(at) {}

    std::optional<velkctl::BeginFailure> Begin(const ChangeSet& steps,
                                               const std::vector<std::string>& restarts,
                                               const velkctl::Device& device) override {
        auto failure = record_.Begin(steps, restarts, device);
        LockBeforeNext();
        return failure;
    }
    void StepMade() override {
        record_.StepMade();
        LockBeforeNext();
    }
    std::optional<velkctl::Problem> Flush() override { return record_.Flush(); }
    std::optional<velkctl::Problem> Finish() override { return record_.Finish(); }
    ExitStatus TakeBack(const velkctl::Device& device, Report& report) override {
        has_failed_set_ = lock_.has_value();
        lock_.reset();
        return record_.TakeBack(device, report);
    }
    void FinishTakeBack(bool are_up) override { record_.FinishTakeBack(are_up); }

    // False if another set has failed before.
    bool has_failed_set() const { return has_failed_set_; }

  private:
    void LockBeforeNext() {
        if (++next_ == at_) {
            testkit::WriteFile(velk::kLockFile, "");  // the first set makes it
            lock_.emplace();
        }
    }

    velkctl::JournalRecord& record_;
    const size_t at_;
    size_t next_ = 0;
    std::optional<velkctl::LibraryLock> lock_;
    bool has_failed_set_ = false;
};

// Almost every setting, with another value than that of the scene.
ChangeSet ManyChanges() {
    constexpr std::pair<const char*, const char*> kWanted[] = {
        {"administrator", "me"},
        {"location", "here"},
        {"ntp", "off"},
        {"dhcp-ntp", "on"},
        {"ntp-server", "time.example"},
        {"web-update", "daily 03:00"},
        {"eth0.address", "10.1.2.3"},
        {"eth1.address", "10.2.2.3"},
        {"eth0.netmask", "255.0.0.0"},
        {"eth1.netmask", "255.255.0.0"},
        {"eth0.gateway", "10.1.2.1"},
        {"eth1.gateway", "10.2.2.1"},
        {"eth0.apipa", "off"},
        {"eth1.apipa", "on"},
        {"eth0.dns", "10.1.2.5"},
        {"eth1.dhcp-dns", "off"},
        {"eth0.dhcp-notice", "off"},
        {"eth0.link-speed", "10-half"},
        {"eth1.service-set", "ad-hoc"},
        {"eth1.ssid", "office"},
        {"eth1.channel", "9"},
        {"eth1.encryption", "3"},
        {"eth1.authentication", "2"},
        {"eth1.wep-key-1", "0abcd"},
        {"eth1.wep-key-2", "1abcd"},
        {"eth1.wep-key-3", "2abcd"},
        {"eth1.wep-key-4", "3abcd"},
        {"eth1.wep-default-key", "2"},
        {"eth1.psk", "another-secret"},
        {"eth1.standards-enabled", "2"},
    };
    ChangeSet changes;
    for (const auto& [name, text] : kWanted) {
        std::istringstream words(text);
        const std::vector<std::string> list{std::istream_iterator<std::string>(words), {}};
        const velkctl::Setting setting = FindSetting(name).value();
        const velkctl::Parsed parsed = setting.row->kind->Parse(list);
        EXPECT_TRUE(parsed.ok()) << name << ": " << parsed.problem;
        changes.push_back({setting, parsed.data});
    }
    return changes;
}

// Makes the planned change until the set with this number fails.
ExitStatus FailAt(size_t at, const velkctl::ApplyPlan& plan, Report& report) {
    GuardianProcess guardian(VELKCTL);
    velkctl::JournalRecord record(
        {}, report, {.guard = &guardian, .window_seconds = kWindow, .step_seconds = kWindow});
    LockedRecord locked(record, at);
    const velkctl::StopSignals signals;
    const ExitStatus status = velkctl::Apply(plan, locked, {}, signals, report).status;
    return locked.has_failed_set() ? status : ExitStatus::kInvalid;
}

TEST_F(UnconfirmedChange, IsPutBackWholeIfAnyOfManySetsFails) {
    const ChangeSet changes = ManyChanges();
    for (size_t at = 1; at <= changes.size() && !HasFailure(); ++at) {
        SCOPED_TRACE("set " + std::to_string(at));
        testkit::EmptyDevice();
        ChangeDevice device;
        const DeviceState before = device.State();
        const auto fail = [&](const velkctl::ApplyPlan& plan, Report& report) {
            return plan.changes.size() == changes.size() ? FailAt(at, plan, report)
                                                         : ExitStatus::kInvalid;
        };
        EXPECT_EQ(InChild(ChangeDevice::ApplyWith(changes, fail)),
                  static_cast<int>(ExitStatus::kFailed));
        EXPECT_EQ(Differences(device.State(), before), "");
        EXPECT_EQ(StoredState(), EntryState::kReverted);
    }
    printf("| a set of an apply fails | %zu sets |\n", changes.size());
    (void)fflush(stdout);  // a child would print it once more
}

// ---- The confirmation meets the deadline -------------------------------------------------------

bool UnconfirmedChange::ConfirmBeforeDeadline(int64_t microseconds) {
    testkit::EmptyDevice();
    Device device{Scene{}};
    const Files before = FilesToKeep();
    GuardianProcess guardian(VELKCTL);
    MakeWaitingChange(device, 80 + microseconds / 1000, &guardian);
    const Files after = FilesToKeep();
    const auto now = [] {
        timespec time{};
        (void)clock_gettime(CLOCK_BOOTTIME, &time);
        return time.tv_sec * int64_t{1'000'000} + time.tv_nsec / 1000;
    };
    while (now() < deadline_ * 1000 - microseconds) {
    }
    const bool is_confirmed = Run(velkctl::RunConfirm) == ExitStatus::kDone;
    AwaitEnd(facts_.keeper);
    EXPECT_EQ(StoredState(), is_confirmed ? EntryState::kConfirmed : EntryState::kReverted);
    EXPECT_EQ(Differences(is_confirmed ? after : before), "");
    EXPECT_THAT(is_confirmed ? output_ : error_,
                testing::HasSubstr(is_confirmed ? " is confirmed\n" : " put back\n"));
    confirmed_ += is_confirmed ? 1 : 0;
    return is_confirmed;
}

// A confirmation that was too late makes the next one come earlier, and one that was not, later. So
// they meet the deadline, however long a confirmation takes on this machine.
void UnconfirmedChange::MeetDeadline(int count) {
    int64_t before = 1000;
    for (int i = 0; i < count && !HasFailure(); ++i) {
        SCOPED_TRACE("run " + std::to_string(i));
        before = ConfirmBeforeDeadline(before) ? before * 2 / 3 : before * 3 / 2 + 100;
    }
    printf("| confirmation at the deadline, %d runs | confirmed: %d, put back: %d |\n", count,
           confirmed_, count - confirmed_);
    (void)fflush(stdout);  // a child would print it once more
    EXPECT_GT(confirmed_, 0);
    EXPECT_LT(confirmed_, count);
}

TEST_F(UnconfirmedChange, IsEitherConfirmedOrPutBackAtItsDeadline) {
    MeetDeadline(30);
}

// It takes long: only scripts/test --thorough runs it.
TEST_F(UnconfirmedChange, DISABLED_IsEitherConfirmedOrPutBackAtItsDeadlineAThousandTimes) {
    MeetDeadline(1000);
}

// ---- The power is cut at a start ---------------------------------------------------------------

// Cuts the power in a recover at the start of the device.
// The next start puts the change back.
TracedRun UnconfirmedChange::CutRecover(std::optional<Moment> at) {
    SCOPED_TRACE(at ? "cut " + TextOf(*at) : "not cut");
    testkit::EmptyDevice();
    Device device{Scene{}};
    const Files before = FilesToKeep();
    MakeWaitingChange(device, kWindow * 1000, nullptr);
    testkit::WriteFile(kOtherBootId, "11111111-2222-3333-4444-555555555555\n");
    const testkit::Mounted boot_id(kOtherBootId, kBootIdFile, "", MS_BIND, "");
    TracedRun run =
        RunTraced([&] { return static_cast<int>(RunRecover({.boot = true}, report_)); }, at);
    EXPECT_EQ(Run(velkctl::RunRecover, /*boot=*/true), ExitStatus::kDone) << error_;
    EXPECT_EQ(Differences(before), "");
    EXPECT_EQ(StoredState(), EntryState::kReverted);
    return run;
}

// Cuts at calls that can change the device, at most at about so many of them.
void UnconfirmedChange::CutRecovers(size_t most) {
    const std::vector<Moment> points = CutRecover({}).MomentsThatDiffer();
    const size_t step = points.size() / most + 1;
    int count = 0;
    for (size_t i = 0; i < points.size() && !HasFailure(); i += step) {
        count += CutRecover(points[i]).was_cut ? 1 : 0;
    }
    printf("| power cut in recover --boot | %d of %zu system calls |\n", count, points.size());
    (void)fflush(stdout);  // a child would print it once more
    EXPECT_GT(count, 50);
}

TEST_F(UnconfirmedChange, IsPutBackAtAStartThatIsCut) {
    CutRecovers(150);
}

// It takes long: only scripts/test --thorough runs it.
TEST_F(UnconfirmedChange, DISABLED_IsPutBackAtAStartThatIsCutAtAnySystemCall) {
    CutRecovers(SIZE_MAX);
}

// ---- Full disks --------------------------------------------------------------------------------

// Lets no file of the process grow beyond this size.
void LimitFiles(pid_t process, rlim_t size) {
    const rlimit limit{size, RLIM_INFINITY};
    (void)signal(SIGXFSZ, SIG_IGN);  // as velkctl does
    ASSERT_EQ(prlimit(process, RLIMIT_FSIZE, &limit, nullptr), 0);
}

// Returns the size of the entry of the change.
size_t SizeOfEntry() {
    const auto entries = ReadJournal().entries;
    return entries.empty() ? 0 : entries.back().size;
}

TEST_F(UnconfirmedChange, IsNotLeftHalfMadeIfAWriteOfItsEntryFails) {
    testkit::EmptyDevice();
    Device first{Scene{}};
    const Files before = FilesToKeep();
    const auto apply_with = [&](Device& device, rlim_t size) {
        return RunTraced(
                   [&] {
                       LimitFiles(0, size);
                       return Apply(device, path_);
                   },
                   {}, Traced::kFirstOnly)
            .result;
    };
    ASSERT_EQ(apply_with(first, RLIM_INFINITY), 0);
    const size_t whole = SizeOfEntry();
    int failed = 0;
    for (size_t size = whole / 8; size < whole; size += whole / 16) {
        SCOPED_TRACE("files of at most " + std::to_string(size) + " bytes");
        testkit::EmptyDevice();
        Device device{Scene{}};
        failed += apply_with(device, size) == 1 ? 1 : 0;
        EXPECT_EQ(Differences(before), "");
    }
    EXPECT_GT(failed, 5);
}

// Only the calls of the run itself fail. Those of its tools and of its guardian do not.
void UnconfirmedChange::FailWrite(const WriteFault& fault, const Files& before,
                                  const Files& after) {
    SCOPED_TRACE("write " + std::to_string(fault.number) + (fault.all_later ? " and later" : ""));
    testkit::EmptyDevice();
    Device device{Scene{}};
    const TracedRun run =
        RunFailing([&] { return Apply(device, path_); }, fault, Traced::kFirstOnly);
    EXPECT_TRUE(Soon([] { return IsSettled(StoredState()); })) << NameOf(StoredState());
    const bool waits = StoredState() == EntryState::kWaiting;
    EXPECT_EQ(run.result == 0, waits);
    EXPECT_EQ(Differences(waits ? after : before), "");
    waiting_ += waits ? 1 : 0;
    EXPECT_EQ(Run(waits ? velkctl::RunRevert : velkctl::RunRecover), ExitStatus::kDone) << error_;
    EXPECT_EQ(Differences(before), "");
}

TEST_F(UnconfirmedChange, IsNotLeftHalfMadeIfAnyWriteFails) {
    if (!CanFailWrites()) {
        GTEST_SKIP() << "no call can be made to fail on this processor";
    }
    testkit::EmptyDevice();
    Device device{Scene{}};
    const Files before = FilesToKeep();
    const TracedRun whole = RunTraced([&] { return Apply(device, path_); }, {}, Traced::kFirstOnly);
    const Files after = FilesToKeep();
    EXPECT_EQ(Run(velkctl::RunRevert), ExitStatus::kDone);
    int count = 0;
    for (size_t number = 1; number <= whole.writes.size() && !HasFailure(); ++number) {
        if (CanFailWith(whole.writes[number - 1], ENOSPC)) {
            FailWrite({number, ENOSPC}, before, after);
            FailWrite({number, ENOSPC, /*all_later=*/true}, before, after);
            count += 2;
        }
    }
    printf("| a write of an apply fails | %d | waiting: %d |\n", count, waiting_);
    (void)fflush(stdout);  // a child would print it once more
    EXPECT_GT(count, 20);
}

TEST_F(UnconfirmedChange, IsPutBackAlsoIfTheGuardianCannotWriteItsEntry) {
    testkit::EmptyDevice();
    Device device{Scene{}};
    const Files before = FilesToKeep();
    GuardianProcess guardian(VELKCTL);
    ASSERT_NO_FATAL_FAILURE(MakeWaitingChange(device, 1000, &guardian));
    LimitFiles(facts_.guardian, SizeOfEntry());
    EXPECT_TRUE(Soon([&] { return FilesToKeep() == before; }));
    AwaitEnd(facts_.keeper);
    EXPECT_FALSE(Stored()) << "a later run would take it back again";
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kFailed) << "it is too late";
}

TEST_F(UnconfirmedChange, WaitsOnIfItsConfirmationCannotBeWritten) {
    testkit::EmptyDevice();
    Device device{Scene{}};
    ASSERT_NO_FATAL_FAILURE(MakeWaitingChange(device, kWindow * 1000, nullptr));
    LimitFiles(0, SizeOfEntry());
    const ExitStatus confirmed = Run(velkctl::RunConfirm);
    const ExitStatus extended = Run([](const velkctl::Invocation& /*invocation*/, Report& report) {
        return RunExtend({.words = {"60"}}, report);
    });
    const ExitStatus reverted = Run(velkctl::RunRevert);
    LimitFiles(0, RLIM_INFINITY);
    EXPECT_EQ(confirmed, ExitStatus::kFailed);
    EXPECT_EQ(extended, ExitStatus::kFailed);
    EXPECT_EQ(reverted, ExitStatus::kFailed);
    EXPECT_EQ(StoredState(), EntryState::kWaiting);
    EXPECT_EQ(Run(velkctl::RunConfirm), ExitStatus::kDone);
}

}  // namespace
}  // namespace fault
