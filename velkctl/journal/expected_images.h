// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// expected_images.h - the files that a change will make, or that an interrupted one would have
// made.
#ifndef VELKCTL_JOURNAL_EXPECTED_IMAGES_H_
#define VELKCTL_JOURNAL_EXPECTED_IMAGES_H_

#include <optional>

#include "velkctl/call/time_limits.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Runs the steps of a change that is to begin in a private copy, and records the files that they
// will leave. Returns the problem if no trial is possible.
std::optional<Problem> ExpectChange(OpenChange& change, const TimeLimits& limits);

// Runs the steps of an interrupted change in a private copy that begins with the files from before,
// and has the change know the files after each step, instead of the recorded ones. So a file that
// was cut in a step, or written in full before its image was recorded, is recognised as the
// change's own. A recorded image may have a line of another program that wrote at the same time;
// such a file is not recognised. Does nothing if every file is as before. Returns the problem if no
// trial is possible and a file is unknown; it is then treated like that of another program.
std::optional<Problem> ExpectSteps(OpenChange& change);

// Returns a finished change with the files that its steps make from those before it, instead of the
// recorded ones, for the same reason. With the recorded ones if no trial is possible. An undo has
// its own images already.
JournalEntry WithOwnImages(const JournalEntry& entry);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_EXPECTED_IMAGES_H_
