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

    // Begins again with each new object.
    Findings RunAll() {
        while (!RunThrough()) {
        }
        return std::move(findings_);
    }

  private:
    bool RunThrough() {
        findings_ = {};
        findings_.runs.resize(static_cast<size_t>(bounds_.preemptions) + 1);
        size_t number = 0;
        std::vector<Branch> branches(1);
        while (!branches.empty() && !findings_.failure) {
            const Branch branch = std::move(branches.back());
            branches.pop_back();
            const bool is_left_out = branch.preemptions > 0 && ++number % bounds_.stride != 0;
            if (!is_left_out && !RunOne(branch, branches)) {
                return false;
            }
        }
        return true;
    }

    // Returns false if there is a new object.
    bool RunOne(const Branch& branch, std::vector<Branch>& branches) {
        const Course course = Run(meeting_.Prepare(), branch.schedule);
        ++findings_.runs[static_cast<size_t>(branch.preemptions)];
        findings_.failure = FailureOf(meeting_, branch.schedule, course);
        if (!findings_.failure && objects_.Learn(course)) {
            return false;
        }
        findings_.strayed += IsAsBefore(branch, course) ? 0 : 1;
        Add(branch, course, branches);
        return true;
    }

    static bool IsAsBefore(const Branch& branch, const Course& course) {
        const std::vector<Decision>& decisions = course.decisions;
        return branch.beginning.size() <= decisions.size() &&
               std::equal(branch.beginning.begin(), branch.beginning.end(), decisions.begin(),
                          [](const std::string& call, const Decision& decision) {
                              return call == decision.call.name;
                          });
    }

    // Later decisions first: branches are taken from the end.
    void Add(const Branch& branch, const Course& course, std::vector<Branch>& branches) {
        const size_t first = branch.schedule.empty() ? 0 : branch.schedule.back().decision + 1;
        const std::vector<bool> points = FindPoints(course);
        if (branch.schedule.empty()) {
            findings_.points = static_cast<size_t>(std::ranges::count(points, true));
        }
        for (size_t i = course.decisions.size(); i-- > first;) {
            const bool is_preemption = course.decisions[i].is_preemption();
            const int preemptions = branch.preemptions + (is_preemption ? 1 : 0);
            if (points[i] && preemptions <= bounds_.preemptions) {
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
            points.push_back(!decision.is_preemption() ||
                             (is_contended && decision.turn == turn && !decision.others.empty()));
            if (is_contended && decision.makes_call) {
                turn = decision.turn;
            }
        }
        return points;
    }

    Meeting& meeting_;
    const Bounds bounds_;
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
