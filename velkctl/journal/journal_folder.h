// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_folder.h - the folder of journal entries: its lock, its files and its limits.
#ifndef VELKCTL_JOURNAL_JOURNAL_FOLDER_H_
#define VELKCTL_JOURNAL_JOURNAL_FOLDER_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "velkctl/journal/journal_entry.h"

namespace velkctl {

// The oldest closed entries beyond these limits are removed. The newest entry always stays. Open
// entries stay, too, and do not count.
inline constexpr size_t kMostEntries = 16;
inline constexpr size_t kMostBytes = size_t{256} * 1024;

// The least time to wait for another run, in seconds: a plain set ends soon.
inline constexpr int kLeastJournalWait = 2;

// The lock between runs of velkctl that change settings. A run that keeps an entry holds it alone.
// The lock of the library is another one.
class JournalLock {
  public:
    enum class Use { kShared, kAlone };

    // Makes the folder if it is missing. Waits at most so many seconds for other runs.
    JournalLock(Use use, int wait_seconds);

    bool is_held() const { return error_ == 0; }
    // EWOULDBLOCK: another run holds it. Otherwise errno of the folder or of the lock file.
    int error() const { return error_; }

  private:
    velk::UniqueFd fd_;
    int error_;
};

// The file of an entry that is being written or continued. While it is open, other runs see that
// its change is under way. A process that is killed leaves it free.
class EntryFile {
  public:
    // Makes the file of a new entry and writes the entry. Sets the id of the entry. Fails if the
    // disk has no room for the images after the change. Nothing is on disk before the first Sync().
    explicit EntryFile(JournalEntry& entry);
    // Opens the file of an entry at the end of its valid frames.
    EntryFile(const std::string& path, size_t valid_length);

    // 0, or errno of the first failure. After a write that failed, readers see the entry as before
    // that call. After a failure to write it to disk they may see either.
    int error() const { return error_; }
    const std::string& path() const { return path_; }

    void Append(const std::string& frames);
    // Writes the file to disk, and the folder the first time.
    void Sync();
    // Removes the file, for a change that has changed nothing or cannot be closed, and returns when
    // that is on disk. Returns false if the file stays.
    bool Remove();

  private:
    void Take(const std::string& path, int flags);
    void Reserve(size_t size);
    // Removes the frames of the last Append().
    void TakeBackAppend();

    std::string path_;
    velk::UniqueFd fd_;
    int error_ = 0;
    off_t last_append_ = 0;  // the place of its frames
    bool is_synced_ = false;
    bool is_folder_synced_ = false;
};

// An entry in the folder.
struct StoredEntry {
    std::string path{};
    size_t size = 0;
    int error = 0;  // errno if it cannot be read
    bool is_in_use = false;
    bool is_waiting = false;  // it may still be confirmed
    DecodedEntry decoded{};

    bool is_whole() const { return error == 0 && decoded.health == EntryHealth::kWhole; }
    // True if its change was made, and undo can take it back.
    bool is_finished() const { return is_whole() && decoded.entry.is_finished(); }
    // True if its change was begun and neither finished nor taken back, no run is at work on it,
    // and its time to be confirmed is not running.
    bool is_interrupted() const {
        return is_whole() && !is_in_use && !is_waiting && !decoded.entry.is_closed();
    }
};

struct JournalListing {
    int error = 0;                       // errno if the folder exists and cannot be read
    std::vector<StoredEntry> entries{};  // the oldest first
};

JournalListing ReadJournal();

// Returns the id of the newest change that was interrupted; empty if none.
std::string FindInterrupted();

// Returns the newest entry alone; nothing if there is none.
std::optional<StoredEntry> ReadLastEntry();

// Returns the entry of this file as it is now.
StoredEntry ReadAgain(const StoredEntry& stored);

// Returns the changes after the one with this id that were made, or may still be confirmed. The
// last one is at the end.
std::vector<JournalEntry> ReadLaterChanges(const std::string& id);

// Removes the oldest closed entries beyond the limits, so that there is room for the entry in use
// of so many bytes.
void PruneJournal(size_t room);

// Removes the entries with a torn beginning: nothing was begun for them. The caller holds the lock
// alone.
void RemoveTornEntries(const JournalListing& listing);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_JOURNAL_FOLDER_H_
