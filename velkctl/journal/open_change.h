// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// open_change.h - the journal entry of a change that is under way.
#ifndef VELKCTL_JOURNAL_OPEN_CHANGE_H_
#define VELKCTL_JOURNAL_OPEN_CHANGE_H_

#include <memory>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// A change as it is planned.
struct ChangePlan {
    EntryKind kind = EntryKind::kPlainSet;
    std::vector<Step> steps{};            // Begin() reads their old values
    std::vector<std::string> restarts{};  // interfaces, for an apply
    std::string undoes{};                 // the id of the entry that an undo takes back
};

std::vector<Step> JournalSteps(const std::vector<SettingChange>& changes);

// The caller holds the JournalLock. Every function returns 0 or errno; after a failure the entry on
// disk is the one before.
class OpenChange {
  public:
    OpenChange() = default;
    // Continues an entry of the folder, to take it back.
    explicit OpenChange(const StoredEntry& stored);

    // Reads the old values of the settings, then the files that the change touches, under the
    // library's lock, and writes the entry in state prepared. EWOULDBLOCK: another program is
    // changing settings; nothing is written, and the call can be repeated. EBUSY: the library's
    // lock cannot be used by this user.
    int Begin(const ChangePlan& plan, const Device& device);
    bool is_begun() const { return file_ != nullptr; }
    // Returns the id of the change before this one if Begin() has found it interrupted; else
    // nothing.
    const std::string& interrupted() const { return interrupted_; }

    // Writes a state, and returns when it is on disk.
    int Advance(EntryState state);
    // Records the files as they will be, as a trial run has found them.
    int Expect(const std::vector<FileImage>& images);
    // Records the files as they are after the steps so far. Not on disk before the next Advance().
    int RecordFiles();
    // Records that only the first steps of the entry were made. Not on disk before the next
    // Advance().
    void RecordSteps(size_t made);
    // Records the time to confirm the change. Not on disk before the next Advance() or Sync().
    void RecordWindow(const ConfirmWindow& window);
    void RecordGuardian(const GuardianFacts& guardian);
    // Records the reason why the change is taken back, and whether it has to be reported.
    void RecordTakingBack(const std::string& cause, bool is_untold);
    // Records that only the values of the wireless daemon are left to be put back.
    void RecordFilesBack();
    // Writes the records to disk.
    int Sync();
    // Writes the touched files and their folders to disk. Returns the first failure.
    int FlushFiles() const;
    // True if the recorded files are as before the change.
    bool HasChangedNoFile() const;
    // Removes the entry, for a change that has changed nothing.
    void Discard();

    const JournalEntry& entry() const { return entry_; }

  private:
    JournalEntry entry_;
    std::unique_ptr<EntryFile> file_;
    std::string interrupted_;
};

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_OPEN_CHANGE_H_
