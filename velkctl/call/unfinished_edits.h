// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unfinished_edits.h - warns of edit copies that a set replaces.
#ifndef VELKCTL_CALL_UNFINISHED_EDITS_H_
#define VELKCTL_CALL_UNFINISHED_EDITS_H_

#include <string>

#include "velkctl/call/command.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Warns before a set overwrites the edit copy of an interrupted edit: that copy may hold the only
// complete text. `subject` is the name of the command in messages.
void NoteUnfinishedEdits(const Command& command, const std::string& subject, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CALL_UNFINISHED_EDITS_H_
