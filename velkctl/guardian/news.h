// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// news.h - informs people that a change was taken back.
#ifndef VELKCTL_GUARDIAN_NEWS_H_
#define VELKCTL_GUARDIAN_NEWS_H_

#include <string>
#include <vector>

#include "velkctl/journal/journal_entry.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Returns "change k7f2 of 14:02 was not confirmed and has been put back".
std::string NewsOf(const JournalEntry& entry);

// Writes a line to the system log as a warning. A log that nobody reads holds it up for a few
// seconds only.
void LogWarning(const std::string& line);

// Writes the news to the system log, with each item that is left, and to the terminal of the run
// that made the change if that is still the same one.
void Announce(const JournalEntry& entry, const std::vector<Problem>& left);

}  // namespace velkctl

#endif  // VELKCTL_GUARDIAN_NEWS_H_
