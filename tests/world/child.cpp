// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// child.cpp - runs a function in a process of its own, under other conditions.
#include "world/child.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>

#include <grp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace world {
namespace {

bool SetLocale(const std::string& name) {
    return setlocale(LC_ALL, name.c_str()) != nullptr && setenv("LC_ALL", name.c_str(), 1) == 0;
}

bool SetLimit(const std::pair<int, rlim_t>& limit) {
    const rlimit both{limit.second, limit.second};
    return setrlimit(static_cast<__rlimit_resource_t>(limit.first), &both) == 0;
}

// Its own entries below /proc would be root's without the last call.
bool BecomeUser(uid_t user) {
    return setgroups(0, nullptr) == 0 && setresgid(user, user, user) == 0 &&
           setresuid(user, user, user) == 0 && prctl(PR_SET_DUMPABLE, 1) == 0;
}

// The user comes last: other users may not set all of the rest.
bool Set(const Conditions& conditions) {
    if (conditions.locale && !SetLocale(*conditions.locale)) {
        return false;
    }
    if (conditions.umask) {
        (void)umask(*conditions.umask);
    }
    return std::ranges::all_of(conditions.limits, SetLimit) &&
           (!conditions.user || BecomeUser(*conditions.user));
}

// Dies with the test program. A change of user clears this, so it follows that.
void FollowParent(pid_t parent) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(Child::kImpossible);
    }
}

}  // namespace

bool IsPossible(const Conditions& conditions) {
    return InChild(conditions, [] { return 0; }) == 0;
}

Child::Child(const Conditions& conditions, const std::function<int()>& work) {
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ == 0) {
        if (!Set(conditions)) {
            _exit(kImpossible);
        }
        FollowParent(parent);
        _exit(work());
    }
}

Child::~Child() {
    Kill();
}

int Child::Wait() {
    int status = 0;
    const pid_t ended = waitpid(std::exchange(pid_, -1), &status, 0);
    if (ended == -1) {
        return kImpossible;
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void Child::Kill() {
    if (pid_ > 0) {
        (void)kill(pid_, SIGKILL);
        (void)Wait();
    }
}

int InChild(const Conditions& conditions, const std::function<int()>& work) {
    return Child(conditions, work).Wait();
}

}  // namespace world
