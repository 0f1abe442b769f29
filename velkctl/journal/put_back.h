// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// put_back.h - puts the files and values of a change back.
#ifndef VELKCTL_JOURNAL_PUT_BACK_H_
#define VELKCTL_JOURNAL_PUT_BACK_H_

#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The state of one file of an entry.
enum class FileCase {
    kOld,    // as before the change
    kNew,    // as the change has left it, or an interrupted one between two edits
    kCut,    // empty, or the beginning of one of the two, perhaps with NULs after it; missing, if
             // the change was interrupted
    kOther,  // another program has written it since, or it cannot be read or written
};

// Compares a file with all images that the entry has of it.
FileCase CompareFile(const FileImage& now, const JournalEntry& entry);

struct PutBackOptions {
    bool force = false;        // also replaces values that somebody has set since
    bool skip_daemon = false;  // at a start, the wireless daemon does not run yet
};

struct PutBackResult {
    bool is_locked = false;         // another program is changing settings; nothing was done
    bool has_changed = false;       // a file or value was put back
    bool waits_for_daemon = false;  // the daemon's values are still to be put back
    std::vector<Problem> left{};    // each item that could not be put back, with its reason

    bool is_whole() const { return !is_locked && !waits_for_daemon && left.empty(); }
};

// Gives each file its bytes from before the change if the change has written it last. Otherwise
// gives the settings in it their old values through the library; a setting that somebody has set
// since keeps its value and is named. Then puts back the values of the wireless daemon and the link
// speed, and writes the files to disk. Restarts nothing but the SNMP agent. Can be repeated.
PutBackResult PutBack(const JournalEntry& entry, PutBackOptions options, const Device& device);

// Takes back an unfinished change: state reverting, PutBack(), then state reverted, or stuck if
// something is left. Reports the items that are left.
PutBackResult TakeBack(OpenChange& change, PutBackOptions options, const Device& device,
                       Report& report);

// The first part of it: state reverting, and PutBack(). A restart may come before the second one.
PutBackResult PutBackOpen(OpenChange& change, PutBackOptions options, const Device& device,
                          Report& report);
// The second part: the state that the result leads to.
void CloseTakenBack(OpenChange& change, const PutBackResult& result);

// Restarts the interfaces that the change has restarted, so that they take the old settings.
// Reports failures. Returns the status of the last one.
ExitStatus RestartAfter(const JournalEntry& entry, const Device& device, Report& report);

// Returns each setting that PutBack() would leave as it is, without --force, and the reason.
std::vector<Problem> FindObstacles(const JournalEntry& entry, const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_PUT_BACK_H_
