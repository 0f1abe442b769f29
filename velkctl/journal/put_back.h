// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// put_back.h - puts the files and values of a change back.
#ifndef VELKCTL_JOURNAL_PUT_BACK_H_
#define VELKCTL_JOURNAL_PUT_BACK_H_

#include <functional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/files/file_image.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The state of one file of an entry.
enum class FileCase {
    kOld,    // as before the change
    kNew,    // as the change has left it, or an interrupted one between two edits
    kCut,    // empty, or a part of one of the two, perhaps with NULs for the rest; missing, if
             // the change was interrupted
    kOther,  // another program has written it since, or it cannot be read or written
};

// Compares a file with all images that the entry has of it.
FileCase CompareFile(const FileImage& now, const JournalEntry& entry);

struct PutBackOptions {
    bool force = false;              // also replaces values that somebody has set since
    bool at_boot = false;            // neither the wireless daemon nor the SNMP agent runs yet
    int lock_seconds = kSetSeconds;  // the longest time to wait for another program
    std::function<void()> first{};   // runs before the files are compared, under the library's lock
    // The files as the entry of an undo has them. One that differs is that of another program.
    const std::vector<FileImage>* begun_with = nullptr;
    // The finished changes that were made after this one, the last one at the end.
    std::vector<const JournalEntry*> later{};
    // The fix for a value that was set since, and for any other item that is left.
    std::string fix_if_set_since{
        "'velkctl recover --force' replaces it; 'velkctl recover --keep' keeps it"};
    std::string fix{"'velkctl recover' tries again; 'velkctl recover --keep' keeps it"};
};

struct PutBackResult {
    bool is_locked = false;         // another program is changing settings; nothing was done
    bool has_changed = false;       // a file or value was put back, or a file was cut
    bool has_disk_failed = false;   // a file could not be written, or not be written to disk
    bool waits_for_daemon = false;  // the daemon's values are still to be put back
    std::vector<Problem> left{};    // each item that could not be put back, with its reason
    size_t set_since = 0;           // those that were left because somebody has set them since
    std::vector<std::string> put_back{};  // the other files and settings, by path and name
    std::vector<std::string> kept{};      // settings that a later change has set

    bool is_whole() const { return !is_locked && !waits_for_daemon && left.empty(); }
    // True if only a person can decide about the rest.
    bool needs_decision() const { return !left.empty() && left.size() == set_since; }
};

// Gives each file its bytes from before the change if the change has written it last. Otherwise
// gives the settings in it their old values through the library; a setting that somebody has set
// since keeps its value and is named. A setting of a later change keeps its value, too. Nothing
// that the entry calls put back is touched. Then puts back the values of the wireless daemon and
// the link speed, and writes the files to disk. Restarts nothing but the SNMP agent. Can be
// repeated.
// The caller holds signals back.
PutBackResult PutBack(const JournalEntry& entry, PutBackOptions options, const Device& device);

// The first part of taking an unfinished change back: state reverting, then PutBack(). Does nothing
// for a change that has changed nothing. Reports the items that are left, and another program that
// keeps the lock. The interfaces of the change are restarted between the two parts.
PutBackResult PutBackOpen(OpenChange& change, PutBackOptions options, const Device& device,
                          Report& report);
// The second part: state reverted, or stuck if something is left. Records the items that were put
// back, unless all were. Removes the entry if all is back and the state cannot be written.
void CloseTakenBack(OpenChange& change, const PutBackResult& result, Report& report);

// The second part if an interface has not come up: a later try restarts it again.
void LeaveStuck(OpenChange& change, const PutBackResult& result);

// Returns a file of the entry that was cut; empty if none.
std::string FindCutFile(const JournalEntry& entry);

// Returns each setting that PutBack() would leave as it is, without --force, and the reason.
std::vector<Problem> FindObstacles(const JournalEntry& entry, const PutBackOptions& options,
                                   const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_PUT_BACK_H_
