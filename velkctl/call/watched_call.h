// watched_call.h - runs a command that a time or a signal may end.
#ifndef VELKCTL_CALL_WATCHED_CALL_H_
#define VELKCTL_CALL_WATCHED_CALL_H_

#include <chrono>
#include <optional>
#include <string>

#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/report/report.h"
#include "velkctl/text/data.h"

namespace velkctl {

// A command on its way, and what it takes to tell about it.
struct Call {
    const Command& command;
    const Data& data;
    const std::string& what;  // is done, in words: "eth1.signal"
    std::optional<std::chrono::steady_clock::time_point> deadline;
    Report& report;

    bool is_late() const { return deadline && std::chrono::steady_clock::now() >= *deadline; }
};

// Runs the command in a process of its own. At its deadline, or when a signal comes, that process
// is ended and tidied up after; at a signal velkctl ends, and this does not return. What the tools
// of the device say meanwhile is passed on as notes.
Answer ExecuteWatched(const Call& call);

}  // namespace velkctl

#endif  // VELKCTL_CALL_WATCHED_CALL_H_
