// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// control_group.h - takes the guardian out of the login session that systemd may end.
#ifndef VELKCTL_GUARDIAN_CONTROL_GROUP_H_
#define VELKCTL_GUARDIAN_CONTROL_GROUP_H_

#include <string>

namespace velkctl {

// With systemd, moves this process out of the control group of the login session: systemd may kill
// all processes of a session when its user logs out. Does nothing without systemd.
void LeaveSession(const std::string& id);

}  // namespace velkctl

#endif  // VELKCTL_GUARDIAN_CONTROL_GROUP_H_
