// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Another program writes the same file at each system call of a set, an apply and an undo of
// velkctl. Its values stay, and velkctl names the settings that it leaves.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "fault/kit/tracer.h"
#include "support/device_test.h"
#include "support/dice.h"
#include "support/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/apply.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/set_record.h"

namespace fault {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::ChangeSet;
using velkctl::Report;
using velkctl::SettingChange;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kMessages[] = "/run/fault-messages";

// The values before the change, of the change, and of the other program.
constexpr std::string_view kOld = "192.168.0.10";
constexpr std::string_view kNew = "10.1.2.3";
constexpr std::string_view kHis = "10.9.9.9";
constexpr std::string_view kHisNetmask = "255.0.0.0";
constexpr std::string_view kHisLine = "# by hand\n";

SettingChange ChangeTo(const char* name, std::string_view text) {
    SettingChange change{*velkctl::FindSetting(name), {}};
    text.copy(change.value.data(), change.value.size());
    return change;
}

// ---- The changes of velkctl --------------------------------------------------------------------

using Work = int (*)();

int MakeSet() {
    Report report(Report::Form::kText);
    velkctl::Device device({}, report);
    const ChangeSet changes{ChangeTo("eth0.address", kNew)};
    velkctl::SetRecord record(changes, 0, device, report);
    const velkctl::Answer answer = device.Set(changes[0].setting, changes[0].value);
    record.Finish();
    return answer.ok() ? 0 : 1;
}

// Without restarts.
int MakeApply() {
    Report report(Report::Form::kText);
    const velkctl::Device device({}, report);
    velkctl::JournalRecord record({}, report);
    const ChangeSet changes{ChangeTo("eth0.address", kNew)};
    const velkctl::ApplyPlan plan = MakePlan(changes, {.is_automatic = false}, device);
    const velkctl::StopSignals signals;
    return static_cast<int>(Apply(plan, record, {}, signals, report).status);
}

int Undo() {
    Report report(Report::Form::kText);
    return static_cast<int>(RunUndo({}, report));
}

// ---- The other program -------------------------------------------------------------------------

// Writes through the library. Returns false if velkctl holds its lock.
bool SetBeside(uint32_t id, std::string_view value) {
    const pid_t child = fork();
    if (child == 0) {
        _velk_request response{};
        const _velk_request request = MakeRequest(VELK_SET, id, "eth0", value);
        _exit(execute_velk_command(&request, &response) == 0 ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool SetsAnotherSetting(const std::string&) {
    return SetBeside(VELK_CMD_NETMASK, kHisNetmask);
}

bool SetsTheSameSetting(const std::string&) {
    return SetBeside(VELK_CMD_IP_ADDRESS, kHis);
}

// As an editor that has read the file before the change.
bool PutsAFileInPlace(const std::string& text) {
    const std::string file = std::string(kInterfaces) + ".new";
    WriteFile(file, text + std::string(kHisLine));
    return rename(file.c_str(), kInterfaces) == 0;
}

// Gives up if the file cannot be opened without waiting.
bool WritesInPlace(const std::string& text) {
    const int fd = open(kInterfaces, O_WRONLY | O_TRUNC | O_NONBLOCK | O_CLOEXEC);
    if (fd == -1) {
        return false;
    }
    const std::string all = text + std::string(kHisLine);
    EXPECT_EQ(write(fd, all.data(), all.size()), static_cast<ssize_t>(all.size()));
    return close(fd) == 0;
}

using Outsider = bool (*)(const std::string& text);

struct Meeting {
    const char* name;
    Work work;
    Outsider outsider;
};

struct Counts {
    int all = 0;
    int refused = 0;   // the lock or the file was not free for the other program
    int kept = 0;      // his value is there at the end, also after an undo
    int replaced = 0;  // velkctl set the same setting after him
    int in_set = 0;    // an editor wrote while the library was within a set of the file
};

std::string ValueNow(uint32_t id) {
    _velk_request response{};
    const _velk_request request = MakeRequest(VELK_GET, id, "eth0");
    return execute_velk_command(&request, &response) == 0 ? response.data : "(unreadable)";
}

std::string AddressNow() {
    return ValueNow(VELK_CMD_IP_ADDRESS);
}

std::string WithAddress(std::string text, std::string_view from, std::string_view to) {
    const size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class BesideChange : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        device_.reset();
        DeviceTest::TearDown();
    }

    // Lets the other program write before a system call that follows one that can change the
    // device: the first, then each with this distance.
    void Meet(const Meeting& meeting, size_t stride) {
        Prepare(meeting);
        const std::vector<Moment> moments = Trace(meeting.work, {}, {}).MomentsThatDiffer();
        for (size_t i = 0; i < moments.size() && !HasFailure(); i += stride) {
            SCOPED_TRACE(std::string(meeting.name) + " " + TextOf(moments[i]));
            MeetAt(meeting, moments[i]);
        }
        printf("| %s | %d | %d | %d | %d | %d |\n", meeting.name, counts_.all, counts_.refused,
               counts_.kept, counts_.replaced, counts_.in_set);
        (void)fflush(stdout);
        counts_ = {};
    }

  private:
    void Prepare(const Meeting& meeting) {
        testkit::EmptyDevice();
        device_.reset();
        device_.emplace(Scene{});
        if (meeting.work == Undo) {
            ASSERT_EQ(Trace(MakeApply, {}, {}).result, 0);
        }
    }

    TracedRun Trace(Work work, std::optional<Moment> at, const std::function<void()>& act) {
        const auto run = [&] {
            device_->UseRealTools();
            setenv("PATH", path_.c_str(), 1);
            const int file = open(kMessages, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            dup2(file, STDOUT_FILENO);
            dup2(file, STDERR_FILENO);
            const int result = work();
            (void)fflush(stdout);
            return result;
        };
        return RunTracedBeside(run, at, act);
    }

    void MeetAt(const Meeting& meeting, const Moment& at) {
        Prepare(meeting);
        const std::string text = ReadFile(kInterfaces);
        bool has_written = false;
        bool is_locked = false;
        const TracedRun run = Trace(meeting.work, at, [&] {
            is_locked = !testkit::IsLockFree();
            has_written = meeting.outsider(text);
        });
        ++counts_.all;
        if (!has_written) {
            ++counts_.refused;
            return;
        }
        SCOPED_TRACE("status " + std::to_string(*run.result) + "\n" + ReadFile(kMessages));
        if (meeting.outsider == SetsAnotherSetting) {
            CheckOtherSetting(meeting);
        } else if (meeting.outsider == SetsTheSameSetting) {
            CheckSameSetting(meeting, *run.result);
        } else {
            CheckText(meeting, text, is_locked);
        }
    }

    void CheckOtherSetting(const Meeting& meeting) {
        EXPECT_EQ(ValueNow(VELK_CMD_NETMASK), kHisNetmask);
        if (meeting.work != Undo) {
            EXPECT_EQ(AddressNow(), kNew);
            EXPECT_EQ(Trace(Undo, {}, {}).result, 0) << ReadFile(kMessages);
        }
        EXPECT_EQ(AddressNow(), kOld);
        EXPECT_EQ(ValueNow(VELK_CMD_NETMASK), kHisNetmask);
        ++counts_.kept;
    }

    void CheckSameSetting(const Meeting& meeting, int status) {
        if (meeting.work != Undo && AddressNow() == kNew) {
            EXPECT_EQ(status, 0);
            EXPECT_EQ(Trace(Undo, {}, {}).result, 0) << ReadFile(kMessages);
            EXPECT_THAT(AddressNow(), AnyOf(kOld, kHis)) << "the value when the change began";
            ++counts_.replaced;
            return;
        }
        EXPECT_EQ(AddressNow(), kHis);
        if (status != 0) {
            EXPECT_THAT(ReadFile(kMessages), HasSubstr("eth0.address: "));
        }
        if (meeting.work != Undo && status == 0) {
            EXPECT_EQ(Trace(Undo, {}, {}).result, 1);
            EXPECT_THAT(ReadFile(kMessages),
                        HasSubstr("eth0.address: not put back\n  it was set since, to "));
            EXPECT_EQ(AddressNow(), kHis);
        }
        ++counts_.kept;
    }

    // The file is his, with his old address or that of velkctl.
    void CheckText(const Meeting& meeting, const std::string& text, bool is_locked) {
        const std::string his = text + std::string(kHisLine);
        const std::string now = ReadFile(kInterfaces);
        const bool is_undo = meeting.work == Undo;
        const std::string changed =
            is_undo ? WithAddress(his, kNew, kOld) : WithAddress(his, kOld, kNew);
        if (!is_undo && is_locked && now != his && now != changed) {
            EXPECT_THAT(now, StartsWith(WithAddress(text, kOld, kNew))) << "the library wrote last";
            ++counts_.in_set;
            return;
        }
        EXPECT_THAT(now, AnyOf(his, changed));
        if (!is_undo && now != his) {
            EXPECT_EQ(Trace(Undo, {}, {}).result, 0) << ReadFile(kMessages);
            EXPECT_EQ(ReadFile(kInterfaces), his);
        }
        ++counts_.kept;
    }

    const std::string path_ = PathWithHarmlessSudo();
    std::optional<Device> device_;
    Counts counts_;
};

constexpr Meeting kMeetings[]{
    {"set: sets another setting", MakeSet, SetsAnotherSetting},
    {"set: sets the same setting", MakeSet, SetsTheSameSetting},
    {"set: puts a new file in place", MakeSet, PutsAFileInPlace},
    {"set: writes in place", MakeSet, WritesInPlace},
    {"apply: sets another setting", MakeApply, SetsAnotherSetting},
    {"apply: sets the same setting", MakeApply, SetsTheSameSetting},
    {"apply: puts a new file in place", MakeApply, PutsAFileInPlace},
    {"apply: writes in place", MakeApply, WritesInPlace},
    {"undo: sets another setting", Undo, SetsAnotherSetting},
    {"undo: sets the same setting", Undo, SetsTheSameSetting},
    {"undo: puts a new file in place", Undo, PutsAFileInPlace},
    {"undo: writes in place", Undo, WritesInPlace},
};

TEST_F(BesideChange, KeepsTheValuesOfAnotherProgram) {
    for (const Meeting& meeting : kMeetings) {
        Meet(meeting, meeting.work == MakeSet ? 10 : 100);
    }
}

// It takes long: only scripts/test --thorough runs it.
TEST_F(BesideChange, DISABLED_KeepsTheValuesOfAnotherProgramAtManySystemCalls) {
    for (const Meeting& meeting : kMeetings) {
        Meet(meeting, meeting.work == MakeSet ? 1 : 10);
    }
}

// ---- Without a tracer --------------------------------------------------------------------------

// Shared by both programs.
struct Board {
    std::atomic<bool> runs;
    // The numbers of the values that the other program has written last.
    std::atomic<int> number;
    std::atomic<int> address;
};

constexpr useconds_t kPause = 3'000;
constexpr velkctl::TimeLimits kWait{.wait_seconds = 30};

// Writes another value each time.
using Writer = void (*)(Board& board, int number);

void SetNetmask(Board& board, int number) {
    if (SetBeside(VELK_CMD_NETMASK, "10.0.0." + std::to_string(number % 200))) {
        board.number = number;
    }
}

void SetNetmaskOrAddress(Board& board, int number) {
    SetNetmask(board, number);
    if (SetBeside(VELK_CMD_IP_ADDRESS, "10.9.9." + std::to_string(number % 200))) {
        board.address = number;
    }
}

// As an editor that saves the text that it has just read.
void PutNewFile(Board& board, int number) {
    const std::string file = std::string(kInterfaces) + ".new";
    WriteFile(file, ReadFile(kInterfaces) + "# " + std::to_string(number) + "\n");
    EXPECT_EQ(rename(file.c_str(), kInterfaces), 0);
    board.number = number;
}

class LoopBesideChange : public testkit::DeviceTest {
  protected:
    LoopBesideChange()
        : board_(static_cast<Board*>(mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE,
                                          MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
        new (board_) Board{};
    }
    ~LoopBesideChange() override { munmap(board_, sizeof(Board)); }

    // Runs `work` in a process of its own, and in another the writer: some times, from some moment
    // on.
    int RunBeside(Writer writer, const std::function<int()>& work) {
        const int most = 1 + static_cast<int>(dice_.Below(20));
        const auto delay = static_cast<useconds_t>(dice_.Below(150'000));
        board_->runs = true;
        const pid_t other = Start([&] {
            usleep(delay);
            for (int number = 1; board_->runs && number <= most; ++number) {
                writer(*board_, number);
                usleep(kPause);
            }
            return 0;
        });
        const int result = Wait(Start(work));
        board_->runs = false;
        EXPECT_EQ(Wait(other), 0);
        return result;
    }

    // Runs with the real tools.
    pid_t Start(const std::function<int()>& work) {
        const pid_t child = fork();
        if (child == 0) {
            setenv("PATH", path_.c_str(), 1);
            const int file = open(kMessages, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
            dup2(file, STDOUT_FILENO);
            dup2(file, STDERR_FILENO);
            const int result = work();
            (void)fflush(stdout);
            _exit(result);
        }
        return child;
    }

    static int Wait(pid_t child) {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    void Prepare() {
        testkit::EmptyDevice();
        WriteFiles(Scene{});
        new (board_) Board{};
    }

    void KeepOthersInApplyAndUndo(int rounds);
    void KeepValuesInUndo(int rounds);
    void KeepTextsInUndo(int rounds);

    testkit::Dice dice_{1};
    Board* const board_;
    const std::string path_ = PathWithHarmlessSudo();
};

int ApplyWaiting() {
    Report report(Report::Form::kText);
    const velkctl::Device device(kWait, report);
    velkctl::JournalRecord record(kWait, report);
    const velkctl::ApplyPlan plan =
        MakePlan({ChangeTo("eth0.address", kNew)}, {.is_automatic = false}, device);
    const velkctl::StopSignals signals;
    return static_cast<int>(Apply(plan, record, kWait, signals, report).status);
}

int UndoWaiting() {
    Report report(Report::Form::kText);
    return static_cast<int>(RunUndo({.limits = kWait}, report));
}

void LoopBesideChange::KeepOthersInApplyAndUndo(int rounds) {
    int written = 0;
    for (int round = 1; round <= rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Prepare();
        const Writer writer = SetNetmask;
        EXPECT_EQ(RunBeside(writer, [] { return ApplyWaiting() + UndoWaiting(); }), 0)
            << ReadFile(kMessages);
        written += board_->number;
        EXPECT_EQ(AddressNow(), kOld);
        const std::string netmask = "10.0.0." + std::to_string(board_->number);
        EXPECT_EQ(ValueNow(VELK_CMD_NETMASK), board_->number == 0 ? "255.255.255.0" : netmask);
    }
    printf("| another setting, apply and undo | %d | %d |\n", rounds, written);
}

void LoopBesideChange::KeepValuesInUndo(int rounds) {
    int written = 0;
    for (int round = 1; round <= rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Prepare();
        ASSERT_EQ(Wait(Start(ApplyWaiting)), 0) << ReadFile(kMessages);
        const int status = RunBeside(SetNetmaskOrAddress, UndoWaiting);
        written += board_->number + board_->address;
        const std::string his = "10.9.9." + std::to_string(board_->address);
        EXPECT_EQ(AddressNow(), board_->address == 0 ? std::string(kOld) : his);
        const std::string netmask = "10.0.0." + std::to_string(board_->number);
        EXPECT_EQ(ValueNow(VELK_CMD_NETMASK), board_->number == 0 ? "255.255.255.0" : netmask);
        if (status != 0) {
            EXPECT_THAT(ReadFile(kMessages), HasSubstr("eth0.address: not put back"));
        }
    }
    printf("| the same and another setting, undo | %d | %d |\n", rounds, written);
}

void LoopBesideChange::KeepTextsInUndo(int rounds) {
    int written = 0;
    for (int round = 1; round <= rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Prepare();
        std::string text = ReadFile(kInterfaces);
        ASSERT_EQ(Wait(Start(ApplyWaiting)), 0) << ReadFile(kMessages);
        (void)RunBeside(PutNewFile, UndoWaiting);
        written += board_->number;
        for (int number = 1; number <= board_->number; ++number) {
            text.append("# ").append(std::to_string(number)).append("\n");
        }
        EXPECT_THAT(ReadFile(kInterfaces), AnyOf(text, WithAddress(text, kOld, kNew)))
            << ReadFile(kMessages);
    }
    printf("| a line by an editor, undo | %d | %d |\n", rounds, written);
}

TEST_F(LoopBesideChange, LosesNoValueOfAnotherProgram) {
    KeepOthersInApplyAndUndo(5);
    KeepValuesInUndo(5);
    KeepTextsInUndo(5);
}

// It takes long: only scripts/test --thorough runs it.
TEST_F(LoopBesideChange, DISABLED_LosesNoValueOfAnotherProgramInManyRounds) {
    KeepOthersInApplyAndUndo(300);
    KeepValuesInUndo(300);
    KeepTextsInUndo(300);
}

}  // namespace
}  // namespace fault
