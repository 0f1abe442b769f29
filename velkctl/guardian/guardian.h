// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// guardian.h - the process that takes a change back if it is not confirmed in time.
#ifndef VELKCTL_GUARDIAN_GUARDIAN_H_
#define VELKCTL_GUARDIAN_GUARDIAN_H_

#include <string>
#include <vector>

namespace velkctl {

// True if this command line is that of a guardian.
bool IsGuardianCommand(const char* name);

// Runs the guardian of a change, with the words after its name: the id of the change and the number
// of the process that makes it. Returns its exit status.
//
// Two processes: this one starts the other one again if it is killed. The other one sleeps until
// the run that makes the change ends, the entry of the change is written, or its time is over.
// SIGHUP, SIGINT and SIGTERM are ignored: at a shutdown, 'velkctl recover --boot' does the work
// later.
int RunGuardian(const std::vector<std::string>& words);

}  // namespace velkctl

#endif  // VELKCTL_GUARDIAN_GUARDIAN_H_
