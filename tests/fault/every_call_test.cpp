// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Every call that a request makes fails once, and once with all later ones of its kind.
#include <algorithm>
#include <set>

#include <gmock/gmock.h>

#include "fault/kit/answer_check.h"
#include "fault/kit/expectation.h"
#include "fault/kit/outcome_table.h"
#include "fault/kit/requests.h"
#include "fault/kit/trial.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kExitHooks;
using testkit::kStartNotice;

// The notices are switched by two edits of one file. If the copying of the first one cannot be run,
// the second edits the unchanged file.
std::optional<std::string> HooksWithTheSecondNoticeAlone(const Scene& scene,
                                                         const _velk_request& request) {
    const Device device(scene);
    EXPECT_EQ(SetDhclient(request, kStartNotice), 0);
    return ReadTargets().at(kExitHooks);
}

void CheckNothingIsHeld(const Fault& fault, const Reference& reference, const Outcome& outcome) {
    EXPECT_TRUE(outcome.is_lock_free);
    EXPECT_EQ(outcome.allocations_held, 0);
    EXPECT_EQ(outcome.semaphores_mapped, 0);
    EXPECT_THAT(outcome.descriptors_left, testing::IsEmpty());
    for (const std::string& path : outcome.remaining_files) {
        const bool is_usual = std::ranges::count(reference.outcome.remaining_files, path) != 0;
        EXPECT_TRUE(is_usual || MayBeLeft(path, fault, reference)) << path << " remains";
        const bool is_unread =
            fault.kind.call == testkit::Call::kOpen || fault.kind.call == testkit::Call::kRead;
        if (IsEditCopy(path) && is_unread) {
            EXPECT_EQ(testkit::ReadFile(path), "") << path;
        }
    }
}

// The next call must go as on a device with the same files and no earlier fault.
void CheckTheNextCallWorks(const Outcome& expected, const Outcome& next) {
    EXPECT_EQ(next.result, expected.result);
    EXPECT_EQ(testkit::Data(next.response), testkit::Data(expected.response));
    EXPECT_TRUE(next.files == expected.files) << "the next call makes other files";
    EXPECT_TRUE(next.wireless == expected.wireless) << "the next call stores something else";
    EXPECT_EQ(next.remaining_files, expected.remaining_files);
    EXPECT_EQ(next.allocations_held, 0);
    EXPECT_EQ(next.semaphores_mapped, 0);
    EXPECT_TRUE(next.is_lock_free);
    EXPECT_TRUE(next.descriptors_left.empty());
}

class EveryCallTest : public testkit::DeviceTest, public testing::WithParamInterface<Group> {
  protected:
    void FailEveryCall(const Scene& scene, const _velk_request& request,
                       const Reference& reference) {
        OutcomeTable::Get().AddRequest();
        next_outcomes_.clear();
        for (const Kind& kind : kKinds) {
            for (int number = 1; number <= reference.Made(kind); ++number) {
                FailOne(scene, request, reference, {kind, number, testkit::Reach::kThatOne});
                FailOne(scene, request, reference, {kind, number, testkit::Reach::kAllFrom});
            }
        }
    }

  private:
    void FailOne(const Scene& scene, const _velk_request& request, const Reference& reference,
                 const Fault& fault) {
        SCOPED_TRACE(NameOf(scene) + "; " + NameOf(fault));
        Outcome outcome;
        Outcome next;
        {
            Trial trial(scene, request);  // ended before others make the device anew
            outcome = trial.RunWith(fault);
            ASSERT_TRUE(outcome.has_fault_struck);
            CheckNothingIsHeld(fault, reference, outcome);
            next = trial.RunAgain();
        }
        OutcomeTable::Get().Add(fault, reference, outcome);
        AnswerCheck(scene, request, reference, fault).Check(outcome);
        CheckTheNextCallWorks(NextOutcome(scene, request, outcome), next);
    }

    const Outcome& NextOutcome(const Scene& scene, const _velk_request& request,
                               const Outcome& outcome) {
        const auto start = std::pair(outcome.files, outcome.wireless);
        const auto found = next_outcomes_.find(start);
        if (found != next_outcomes_.end()) {
            return found->second;
        }
        Trial trial(scene, request, outcome.files, outcome.wireless);
        return next_outcomes_[start] = trial.RunAgain();
    }

    std::map<std::pair<Files, std::string>, Outcome> next_outcomes_;
};

// A set of the link speed changes the port and no file. Restarts and gets change neither.
bool MustChangeSomething(const _velk_request& request) {
    return request.command_type == VELK_SET && request.command_id != VELK_CMD_LINK_SPEED;
}

TEST_P(EveryCallTest, AnyFailingCallGivesADocumentedResultAndNothingElse) {
    std::set<std::pair<std::string, int>> courses;
    bool changes_something = false;
    for (const Request& request : GetParam()) {
        for (const Scene& scene : AllScenes()) {
            Reference reference = Trial(scene, request.request).RunWithoutFault();
            changes_something = changes_something || reference.ChangesSomething();
            if (!courses.emplace(reference.course, reference.outcome.allocations_made).second) {
                continue;  // goes the way of an earlier one
            }
            if (request.request.command_id == VELK_CMD_DHCP_NOTICE) {
                reference.states.at(kExitHooks)
                    .insert(HooksWithTheSecondNoticeAlone(scene, request.request));
            }
            FailEveryCall(scene, request.request, reference);
            ASSERT_FALSE(HasFailure()) << request.name;
        }
    }
    EXPECT_FALSE(courses.empty());
    EXPECT_EQ(changes_something, MustChangeSomething(GetParam().front().request));
}

INSTANTIATE_TEST_SUITE_P(All, EveryCallTest, testing::ValuesIn(AllRequests()),
                         [](const auto& group) { return TestName(group.param); });

// Prints the table after the last test of this process.
class TablePrinter : public testing::Environment {
  public:
    void TearDown() override { OutcomeTable::Get().Print(); }
};

[[maybe_unused]] const testing::Environment* const printer =
    testing::AddGlobalTestEnvironment(new TablePrinter);

}  // namespace
}  // namespace fault
