// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// explorer.cpp - runs callers with every schedule that has up to a number of preemptions.
#include "schedules/kit/explorer.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace schedules {
namespace {

std::optional<Failure> FailureOf(Meeting& meeting, const Schedule& schedule, const Course& course) {
    const std::string text = course.problem.empty() ? meeting.Check(course) : course.problem;
    return text.empty() ? std::nullopt : std::optional(Failure{schedule, text, course});
}

// The objects of all runs, with those who use and change them.
class Objects {
  public:
    // Returns true if there is an object more that callers contend for.
    bool Learn(const Course& course) {
        const size_t before = contended_.size();
        for (const Decision& decision : course.decisions) {
            if (decision.makes_call) {
                Learn(decision);
            }
        }
        return contended_.size() > before;
    }

    bool AreContended(const SharedCall& call) const {
        return std::ranges::any_of(
            call.touches, [&](const Touch& touch) { return contended_.contains(touch.object); });
    }

  private:
    void Learn(const Decision& decision) {
        for (const Touch& touch : decision.call.touches) {
            users_[touch.object].insert(decision.caller);
            if (touch.writes) {
                written_.insert(touch.object);
            }
            if (users_[touch.object].size() > 1 && written_.contains(touch.object)) {
                contended_.insert(touch.object);
            }
        }
    }

    std::map<std::string, std::set<std::string>> users_;
    std::set<std::string> written_;
    std::set<std::string> contended_;
};

// A schedule to run: one more choice than a run before.
struct Branch {
    Schedule schedule{};
    int preemptions = 0;
    std::vector<std::string> beginning{};  // the calls of that run up to there
};

class Exploration {
  public:
    Exploration(Meeting& meeting, const Bounds& bounds) : meeting_(meeting), bounds_(bounds) {}

    // Begins again if there was a new object. Most of them are known from runs without preemptions.
    Findings RunAll() {
        while (!findings_.failure && LearnFrom(0)) {
        }
        while (!findings_.failure && LearnFrom(bounds_.preemptions)) {
        }
        return std::move(findings_);
    }

  private:
    // Returns true if there was a new object.
    bool LearnFrom(int preemptions) {
        most_ = preemptions;
        findings_ = {};
        findings_.runs.resize(static_cast<size_t>(bounds_.preemptions) + 1);
        bool has_learned = false;
        size_t number = 0;
        std::vector<Branch> branches(1);
        while (!branches.empty() && !findings_.failure) {
            const Branch branch = std::move(branches.back());
            branches.pop_back();
            if (branch.preemptions == 0 || ++number % bounds_.stride == 0) {
                has_learned = RunOne(branch, branches) || has_learned;
            }
        }
        return has_learned;
    }

    // Returns true if there was a new object.
    bool RunOne(const Branch& branch, std::vector<Branch>& branches) {
        const Course course = Run(meeting_.Prepare(), branch.schedule);
        ++findings_.runs[static_cast<size_t>(branch.preemptions)];
        findings_.failure = FailureOf(meeting_, branch.schedule, course);
        Compare(branch, course);
        const bool has_learned = objects_.Learn(course);
        Add(branch, course, branches);
        return has_learned;
    }

    // The same schedule must lead to the same calls.
    void Compare(const Branch& branch, const Course& course) {
        for (size_t i = 0; i < branch.beginning.size(); ++i) {
            const bool is_there = i < course.decisions.size();
            const std::string call = is_there ? course.decisions[i].call.name : "the end";
            if (call != branch.beginning[i] && findings_.strayed.empty()) {
                findings_.strayed = TextOf(branch.schedule) + ": at " + std::to_string(i) + " " +
                                    call + " instead of " + branch.beginning[i];
            }
        }
    }

    // Later decisions first: branches are taken from the end.
    void Add(const Branch& branch, const Course& course, std::vector<Branch>& branches) {
        const size_t first = branch.schedule.empty() ? 0 : branch.schedule.back().decision + 1;
        const std::vector<bool> points = FindPoints(course);
        if (branch.schedule.empty()) {
            findings_.points = static_cast<size_t>(std::ranges::count(points, true));
        }
        for (size_t i = course.decisions.size(); i-- > first;) {
            const int preemptions = branch.preemptions + (course.decisions[i].is_free ? 0 : 1);
            if (points[i] && preemptions <= most_) {
                AddChoices(branch, course, i, preemptions, branches);
            }
        }
    }

    static void AddChoices(const Branch& branch, const Course& course, size_t at, int preemptions,
                           std::vector<Branch>& branches) {
        std::vector<std::string> beginning;
        for (size_t i = 0; i < at; ++i) {
            beginning.push_back(course.decisions[i].call.name);
        }
        for (const std::string& other : course.decisions[at].others) {
            Branch next{branch.schedule, preemptions, beginning};
            next.schedule.push_back({at, other});
            branches.push_back(std::move(next));
        }
    }

    // Returns true for each decision with a choice that has an effect of its own. A caller that has
    // made no such call since it began to run need not have begun.
    std::vector<bool> FindPoints(const Course& course) const {
        std::vector<bool> points;
        size_t turn = 0;  // the last one with such a call
        for (const Decision& decision : course.decisions) {
            const bool is_contended = objects_.AreContended(decision.call);
            const bool is_new = is_contended && decision.turn == turn;
            points.push_back(!decision.others.empty() && (decision.call.name.empty() || is_new));
            if (is_contended && decision.makes_call) {
                turn = decision.turn;
            }
        }
        return points;
    }

    Meeting& meeting_;
    const Bounds bounds_;
    int most_ = 0;  // preemptions
    Objects objects_;
    Findings findings_;
};

}  // namespace

Findings Explore(Meeting& meeting, const Bounds& bounds) {
    return Exploration(meeting, bounds).RunAll();
}

std::optional<Failure> Replay(Meeting& meeting, const Schedule& schedule) {
    return FailureOf(meeting, schedule, Run(meeting.Prepare(), schedule));
}

}  // namespace schedules
