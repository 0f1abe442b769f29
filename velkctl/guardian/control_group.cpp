// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// control_group.cpp - takes the guardian out of the login session that systemd may end.
#include "velkctl/guardian/control_group.h"

#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/files/tool_run.h"

namespace velkctl {
namespace {

constexpr char kSystemd[] = "/run/systemd/system";
// The group of all processes, of the unified hierarchy and of the older one.
constexpr const char* kTopGroups[] = {"/sys/fs/cgroup/cgroup.procs",
                                      "/sys/fs/cgroup/systemd/cgroup.procs"};

// Asks systemd for a scope of its own. There a shutdown kills the process at once, while in another
// group it would wait a minute and a half for a process that ignores SIGTERM.
bool MoveToScope(const std::string& id) {
    const ToolRun run = RunTool({"busctl",
                                 "call",
                                 "org.freedesktop.systemd1",
                                 "/org/freedesktop/systemd1",
                                 "org.freedesktop.systemd1.Manager",
                                 "StartTransientUnit",
                                 "ssa(sv)a(sa(sv))",
                                 "velkctl-guardian-" + id + ".scope",
                                 "replace",
                                 "4",
                                 "PIDs",
                                 "au",
                                 "1",
                                 std::to_string(getpid()),
                                 "Slice",
                                 "s",
                                 "system.slice",
                                 "KillSignal",
                                 "i",
                                 "9",
                                 "CollectMode",
                                 "s",
                                 "inactive-or-failed",
                                 "0"});
    return run.ended && run.status == 0;
}

bool MoveToTopGroup() {
    for (const char* path : kTopGroups) {
        const velk::UniqueFd fd(open(path, O_WRONLY | O_CLOEXEC));
        if (fd.get() != -1 && velk::WriteAll(fd.get(), "0")) {
            return true;
        }
    }
    return false;
}

}  // namespace

void LeaveSession(const std::string& id) {
    if (access(kSystemd, F_OK) == 0 && !MoveToScope(id)) {
        (void)MoveToTopGroup();
    }
}

}  // namespace velkctl
