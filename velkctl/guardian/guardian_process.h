// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// guardian_process.h - starts the guardian of a change, from the run that makes the change.
#ifndef VELKCTL_GUARDIAN_GUARDIAN_PROCESS_H_
#define VELKCTL_GUARDIAN_GUARDIAN_PROCESS_H_

#include <optional>
#include <string>
#include <utility>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "velkctl/changes/change_guard.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The guardian takes the change back at once if this object ends before the change waits: it also
// ends when the run is killed.
class GuardianProcess final : public ChangeGuard {
  public:
    // `program` is velkctl. A test may give another one.
    explicit GuardianProcess(std::string program = "/proc/self/exe")
        : program_(std::move(program)) {}

    std::optional<Problem> Start(const std::string& id, GuardianFacts& facts) override;

  private:
    const std::string program_;
    velk::UniqueFd lifeline_;
};

// The descriptors of the guardian: the first one closes with the run, the second one takes the
// number of the process when it is ready.
inline constexpr int kLifelineFd = 3;
inline constexpr int kReadyFd = 4;

}  // namespace velkctl

#endif  // VELKCTL_GUARDIAN_GUARDIAN_PROCESS_H_
