// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Each write of a set, apply, undo or recover of velkctl and its tools fails: the disk is full, its
// quota is used up, it became read-only or it is broken. The exit status, the device and the
// journal agree, and with a sound disk a later run finishes. See docs/reliability.md.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "fault/kit/changes.h"
#include "fault/kit/requests.h"
#include "fault/kit/scene.h"
#include "fault/kit/tracer.h"
#include "support/device_test.h"
#include "support/dice.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/exit_status.h"

namespace fault {
namespace {

using velkctl::ExitStatus;

enum class Verb { kSet, kApply, kUndo, kRecover };

// A run of velkctl with failing writes, and the runs before it.
struct Scenario {
    std::string name;
    Verb verb;
    std::vector<Work> before;
    Work failing;
    std::optional<Moment> last_cut{};  // the last run before it was killed there
};

struct Counts {
    int all = 0;
    int done = 0;       // status 0
    int unchanged = 0;  // status 1, as before
    int undone = 0;     // a set failed in a file; undo or recover has put it back
    int finished = 0;   // status 9, or 1 of recover; a later recover has finished
    int cut = 0;        // a set without an entry has left a file cut, with its edit copy
    int between = 0;    // status 0, but one of the files of a set is as before
};

enum class Points { kAll, kSome };

constexpr size_t kSome = 16;
constexpr unsigned kSeed = 20;

constexpr std::array kFaults{
    WriteFault{0, ENOSPC}, WriteFault{0, ENOSPC, true}, WriteFault{0, EDQUOT},
    WriteFault{0, EROFS},  WriteFault{0, EROFS, true},  WriteFault{0, EIO},
};

void Prepare(const Scenario& scenario) {
    for (size_t i = 0; i < scenario.before.size(); ++i) {
        const bool is_last = i + 1 == scenario.before.size();
        const TracedRun run =
            RunTraced(scenario.before[i], is_last ? scenario.last_cut : std::nullopt);
        ASSERT_TRUE(run.was_cut || run.result == 0);
    }
}

std::vector<WriteFault> FaultsOf(const std::vector<std::string>& writes, Points points) {
    std::vector<WriteFault> faults;
    for (size_t i = 0; i < writes.size(); ++i) {
        for (WriteFault fault : kFaults) {
            if (CanFailWith(writes[i], fault.error)) {
                fault.number = i + 1;
                faults.push_back(fault);
            }
        }
    }
    testkit::Dice dice(kSeed);
    while (points == Points::kSome && faults.size() > kSome) {
        faults.erase(faults.begin() + static_cast<ptrdiff_t>(dice.Below(faults.size())));
    }
    return faults;
}

bool HasOpenEntry() {
    return std::ranges::any_of(velkctl::ReadJournal().entries, [](const auto& stored) {
        return stored.is_whole() && !stored.decoded.entry.is_closed();
    });
}

int Recover() {
    return RunTraced(ChangeDevice::Recover()).result.value_or(-1);
}

// The device of one point, and the states that are right.
class Point {
  public:
    Point(const Scenario& scenario, DeviceState before, DeviceState after, Counts& counts)
        : verb_(scenario.verb),
          before_(std::move(before)),
          after_(std::move(after)),
          counts_(counts) {
        testkit::EmptyDevice();
        device_.emplace();
        Prepare(scenario);
    }

    void Check(const TracedRun& run) {
        ++counts_.all;
        const auto status = static_cast<ExitStatus>(run.result.value_or(-1));
        if (status == ExitStatus::kDone) {
            CheckDone();
        } else if (verb_ == Verb::kSet) {
            CheckFailedSet();
        } else if (status == ExitStatus::kPartlyBack || verb_ == Verb::kRecover) {
            CheckFinished();
        } else {
            // Without its file the lock of the library counts as held.
            EXPECT_THAT(status, testing::AnyOf(ExitStatus::kFailed, ExitStatus::kLocked));
            CheckUnchanged();
        }
    }

  private:
    void ExpectState(const DeviceState& expected) {
        const DeviceState state = device_->State();
        EXPECT_TRUE(state == expected) << Differences(state, expected);
    }

    // A set or undo that could not be closed is noted, and taken back by recover.
    void CheckDone() {
        if (verb_ == Verb::kSet && device_->State() != after_) {
            return CheckBetween();
        }
        ++counts_.done;
        ExpectState(after_);
        const bool is_open = HasOpenEntry() && (verb_ == Verb::kSet || verb_ == Verb::kUndo);
        EXPECT_EQ(Recover(), 0);
        ExpectState(is_open ? before_ : after_);
        EXPECT_FALSE(HasOpenEntry());
    }

    // The library does not notice that a tool could not write the second file of a set, and only
    // the first is read back.
    void CheckBetween() {
        ++counts_.between;
        for (const auto& [path, text] : device_->State().files) {
            EXPECT_TRUE(text == before_.files.at(path) || text == after_.files.at(path)) << path;
        }
        TakeBack();
    }

    // An entry of a set that has changed nothing is removed, so there may be none.
    void TakeBack() {
        if (HasOpenEntry() || device_->State() == before_) {
            EXPECT_EQ(Recover(), 0);
        } else {
            EXPECT_EQ(RunTraced(ChangeDevice::Undo()).result, 0);
        }
        ExpectState(before_);
        EXPECT_FALSE(HasOpenEntry());
    }

    void CheckUnchanged() {
        ++counts_.unchanged;
        ExpectState(before_);
        EXPECT_EQ(Recover(), 0);
        ExpectState(before_);
        EXPECT_FALSE(HasOpenEntry());
    }

    void CheckFinished() {
        ++counts_.finished;
        EXPECT_TRUE(HasOpenEntry());
        EXPECT_EQ(Recover(), 0);
        ExpectState(verb_ == Verb::kRecover ? after_ : before_);
        EXPECT_FALSE(HasOpenEntry());
    }

    // A set puts nothing back. Its entry does.
    void CheckFailedSet() {
        const DeviceState state = device_->State();
        if (state == before_) {
            return CheckUnchanged();
        }
        if (velkctl::ReadJournal().entries.empty()) {
            ++counts_.cut;
            EXPECT_THAT(RemainingFiles(), testing::SizeIs(1)) << Differences(state, before_);
            return;
        }
        ++counts_.undone;
        TakeBack();
    }

    const Verb verb_;
    const DeviceState before_;
    const DeviceState after_;
    Counts& counts_;
    std::optional<ChangeDevice> device_;
};

std::string NameOf(const WriteFault& fault, const std::vector<std::string>& writes) {
    return std::string(strerror(fault.error)) + " at " + std::to_string(fault.number) +
           (fault.all_later ? " and later: " : ": ") + writes[fault.number - 1];
}

class FailingWrite : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        if (!CanFailWrites()) {
            GTEST_SKIP() << "no call can be made to fail on this processor";
        }
    }

    static void FailEach(const Scenario& scenario, Points points) {
        Counts counts;
        FailEach(scenario, points, counts);
        Print(scenario.name, counts);
    }

    static void FailEach(const Scenario& scenario, Points points, Counts& counts) {
        ChangeDevice device;
        Prepare(scenario);
        const DeviceState before = device.State();
        const TracedRun whole = RunTraced(scenario.failing);
        const DeviceState after = device.State();
        ASSERT_EQ(whole.result, 0) << scenario.name;
        for (const WriteFault& fault : FaultsOf(whole.writes, points)) {
            SCOPED_TRACE(scenario.name + ": " + NameOf(fault, whole.writes));
            Point point(scenario, before, after, counts);
            const TracedRun run = RunFailing(scenario.failing, fault);
            EXPECT_TRUE(run.has_fault_struck);
            point.Check(run);
        }
    }

    static void Print(const std::string& name, const Counts& counts) {
        printf("| %s | %d | %d | %d | %d | %d | %d | %d |\n", name.c_str(), counts.all, counts.done,
               counts.unchanged, counts.finished, counts.undone, counts.between, counts.cut);
        (void)fflush(stdout);  // a child would print it once more
    }
};

class FailingWriteOfSet : public FailingWrite, public testing::WithParamInterface<Group> {};

Changes SomeChanges() {
    return {ChangeTo("eth0.address", "10.1.2.3"), ChangeTo("eth0.gateway", "10.1.2.4"),
            ChangeTo("eth0.dns", "10.1.2.5")};
}

Moment MiddleOf(const Work& work) {
    const ChangeDevice device;
    const std::vector<Moment> moments = RunTraced(work).Moments();
    return moments[moments.size() * 3 / 4];
}

std::vector<Scenario> Scenarios() {
    const Work address = ChangeDevice::Set({ChangeTo("eth0.address", "10.1.2.3")});
    const Work method = ChangeDevice::Set({ChangeTo("eth0.method", "dhcp")});
    const Work ssid = ChangeDevice::Set({ChangeTo("eth1.ssid", "office")});
    const Work apply = ChangeDevice::Apply(SomeChanges());
    const Work location = ChangeDevice::Apply({ChangeTo("location", "here")});
    const Work undo = ChangeDevice::Undo();
    const Work recover = ChangeDevice::Recover();
    return {
        {"set of the address", Verb::kSet, {}, address},
        {"set of the method", Verb::kSet, {}, method},
        {"set of the SSID", Verb::kSet, {}, ssid},
        {"apply of 3 settings", Verb::kApply, {}, apply},
        {"apply of the location", Verb::kApply, {}, location},
        {"undo of a set of the SSID", Verb::kUndo, {ssid}, undo},
        {"undo of the apply of 3 settings", Verb::kUndo, {apply}, undo},
        {"recover of the apply of 3 settings", Verb::kRecover, {apply}, recover, MiddleOf(apply)}};
}

TEST_F(FailingWrite, LeavesADeviceThatAgreesWithStatusAndJournal) {
    for (const Scenario& scenario : Scenarios()) {
        FailEach(scenario, Points::kSome);
    }
}

// It takes long, as the next one: only scripts/test --thorough runs them.
TEST_F(FailingWrite, DISABLED_LeavesADeviceThatAgreesAtEachWrite) {
    for (const Scenario& scenario : Scenarios()) {
        FailEach(scenario, Points::kAll);
    }
}

TEST_P(FailingWriteOfSet, DISABLED_LeavesADeviceThatAgreesAtEachWrite) {
    Counts counts;
    for (const Request& request : GetParam()) {
        const ChangeDevice device;
        const Work set = ChangeDevice::Set({ChangeOf(request.request).value()});
        if (RunTraced(set).result == 0) {
            FailEach({request.name, Verb::kSet, {}, set}, Points::kAll, counts);
        }
    }
    Print(GetParam().front().name, counts);
}

INSTANTIATE_TEST_SUITE_P(All, FailingWriteOfSet, testing::ValuesIn(SetRequests()),
                         [](const auto& group) { return TestName(group.param); });

}  // namespace
}  // namespace fault
