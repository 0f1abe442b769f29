// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// runs.h - the runs of velkctl that requests may cause.
#ifndef WEB_SERVER_RUNS_H_
#define WEB_SERVER_RUNS_H_

#include <optional>
#include <string>
#include <string_view>

#include "web/server/answer.h"
#include "web/server/velkctl_run.h"

namespace velkweb {

// A run, or the reason why the request is not valid.
struct Planned {
    VelkctlRun run{};
    std::optional<Trouble> trouble{};
};

// Each takes the object of a request's body. A member that the request does not have is not valid.
Planned PlanCheck(const Json& body);
Planned PlanApply(const Json& body);
Planned PlanConfirm(const Json& body);
Planned PlanRevert(const Json& body);
Planned PlanRestart(const Json& body);
Planned PlanUndo(const Json& body);

// The setting of the name that a page asks about.
Planned PlanDescribe(const std::string& name);

}  // namespace velkweb

#endif  // WEB_SERVER_RUNS_H_
