// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_entries.h - changes of the journal in the output of verbs.
#ifndef VELKCTL_VERBS_JOURNAL_ENTRIES_H_
#define VELKCTL_VERBS_JOURNAL_ENTRIES_H_

#include <string>

#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// Returns "2026-11-22 14:02:11", in the time zone of the device; "unknown" if no calendar
// has this time.
std::string LocalTime(int64_t seconds);

// Returns "  eth0.address  192.168.0.10 -> 192.168.0.77" for each setting, keys masked.
std::string StepLines(const JournalEntry& entry);

// Returns the state of an entry as people read it: "interrupted" for a change that no run is at
// work on.
std::string StateText(const StoredEntry& stored);

// {"id": ..., "change": "set", "undoes": null, "time": ..., "user": 0, "state": "done",
// "settings": [{"name": ..., "old": ..., "new": ...}], "files": [...]}
Json EntryInJson(const StoredEntry& stored);

// The same list of settings alone.
Json StepsInJson(const JournalEntry& entry);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_JOURNAL_ENTRIES_H_
