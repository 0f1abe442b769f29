// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// open_change.h - the journal entry of a change that is under way.
#ifndef VELKCTL_JOURNAL_OPEN_CHANGE_H_
#define VELKCTL_JOURNAL_OPEN_CHANGE_H_

#include <memory>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/files/file_image.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// A change as it is planned.
struct ChangePlan {
    EntryKind kind = EntryKind::kPlainSet;
    // Begin() reads their old values. It keeps a given one if the present one cannot be read.
    std::vector<Step> steps{};
    std::vector<std::string> restarts{};  // interfaces, for an apply
    std::string undoes{};                 // the id of the entry that an undo takes back
};

std::vector<Step> JournalSteps(const std::vector<SettingChange>& changes);

// True if the file is that of the DNS servers and the change restarts an interface with another
// method: a DHCP client that starts or ends writes the servers of its lease into it.
bool MayGetServersOfLease(const std::string& path, const JournalEntry& entry);

// The caller holds the JournalLock. Functions with int return 0 or errno. After a write that
// failed, the entry on disk is the one before.
class OpenChange {
  public:
    OpenChange() = default;
    // Continues an entry of the folder, to take it back.
    explicit OpenChange(const StoredEntry& stored);

    // Reads the old values of the settings. Then reads the files that the change touches, under the
    // library's lock, and writes the entry in state prepared. The files come last: a set of another
    // program after them would pass for a part of this change. EWOULDBLOCK: another program is
    // changing settings; nothing is written, and the call can be repeated. EBUSY: the library's
    // lock cannot be used by this user.
    int Begin(const ChangePlan& plan, const Device& device);
    // The same, but tries again for so many seconds while another program is changing settings. A
    // signal ends that.
    int BeginWithin(int wait_seconds, const ChangePlan& plan, const Device& device);
    bool is_begun() const { return file_ != nullptr; }
    // True if the continued entry is of a change that has changed nothing. A frame at its end that
    // is cut or damaged may have been the state after the first one.
    bool is_not_begun() const { return entry_.state == EntryState::kPrepared && !has_lost_frame_; }
    // Returns the id of the newest interrupted change that Begin() has found; empty if none.
    const std::string& interrupted() const { return interrupted_; }

    // Writes a state, and returns when it is on disk.
    int Advance(EntryState state);
    // Records the files as they will be, as a trial run has found them.
    int Expect(const std::vector<FileImage>& images);
    // Takes these images of the files after the change. The entry on disk keeps its own.
    void UseImages(JournalEntry entry);
    // Records the files as they are after the steps so far. Not on disk before the next Advance().
    int RecordFiles();
    // Records that only the first steps of the entry were made. Not on disk before the next
    // Advance().
    void RecordSteps(size_t made);
    // The same for steps of these names.
    void RecordMade(const std::vector<std::string>& names);
    // Records files and settings that were put back for good. Not on disk before the next
    // Advance().
    void RecordPutBack(const std::vector<std::string>& items);
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
    // Removes the entry: nothing has changed, or it cannot be closed. Returns false if it stays.
    bool Discard();

    const JournalEntry& entry() const { return entry_; }

  private:
    JournalEntry entry_;
    std::unique_ptr<EntryFile> file_;
    std::string interrupted_;
    bool has_lost_frame_ = false;
};

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_OPEN_CHANGE_H_
