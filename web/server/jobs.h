// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// jobs.h - changes that run on when the browser's connection is lost.
#ifndef WEB_SERVER_JOBS_H_
#define WEB_SERVER_JOBS_H_

#include <optional>
#include <string>

#include "web/server/answer.h"
#include "web/server/velkctl_run.h"

namespace velkweb {

inline constexpr int kKeptSeconds = 10 * 60;  // an ended job is kept so long
inline constexpr size_t kMostJobs = 32;       // kept ones; a new job removes the oldest
inline constexpr size_t kMostRunningJobs = 4;

// Starts the run for the user in a process that nothing ends but its own end. Answers with the id
// of the job, or with a refusal.
Answer BeginJob(const std::string& user, const VelkctlRun& run);

// Answers with the state of a job of the user.
Answer JobAnswer(const std::string& user, const std::string& id);

}  // namespace velkweb

#endif  // WEB_SERVER_JOBS_H_
