// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_entry.h - one change of settings as the journal keeps it.
#ifndef VELKCTL_JOURNAL_JOURNAL_ENTRY_H_
#define VELKCTL_JOURNAL_JOURNAL_ENTRY_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "velkctl/files/file_image.h"
#include "velkctl/journal/frames.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A change: prepared, applying, done. With a confirmation: waiting, unless a command decides, and
// confirmed instead of done. A change that is taken back: reverting, then reverted, or stuck if a
// part could not be put back. A user may close an unfinished change as it is: kept.
enum class EntryState {
    kPrepared,
    kApplying,
    kWaiting,
    kConfirmed,
    kDone,
    kReverting,
    kReverted,
    kStuck,
    kKept,
};

enum class EntryKind { kPlainSet, kApply, kUndo };

std::string_view NameOf(EntryState state);
std::string_view NameOf(EntryKind kind);

// One setting of a change.
struct Step {
    Setting setting;
    std::optional<Data> new_value{};  // nothing in an undo of an unknown value
    std::optional<Data> old_value{};  // nothing if it could not be read
};

// Seconds to confirm a change.
inline constexpr int kShortestWindow = 10;
inline constexpr int kUsualWindow = 300;
inline constexpr int kLongestWindow = 24 * 60 * 60;

// The time to confirm a change.
struct ConfirmWindow {
    int seconds = 0;  // 0: the change needs no confirmation
    // Milliseconds since boot. Until the change waits, the latest end of its steps and the window.
    int64_t deadline = 0;
};

// The processes that take a change back if it is not confirmed, and the terminal to inform.
struct GuardianFacts {
    pid_t keeper = 0;  // starts a guardian that was killed again
    pid_t guardian = 0;
    std::string terminal{};  // the one of the run; empty: none
    // While this session leader runs, it is still the same terminal.
    pid_t session = 0;
    int64_t session_start = 0;  // as in /proc/PID/stat
};

struct JournalEntry {
    std::string id{};  // four letters and digits: "k7f2"
    EntryKind kind = EntryKind::kPlainSet;
    std::string undoes{};   // the id of the entry that an undo takes back
    int64_t time = 0;       // seconds of the wall clock, for people only
    std::string boot_id{};  // identifies the running system
    int64_t boot_time = 0;  // milliseconds since its boot
    uid_t user = 0;
    std::vector<Step> steps{};
    std::vector<std::string> restarts{};  // the interfaces that the change restarts
    std::vector<FileImage> before{};      // the files that the change touches
    std::vector<FileImage> after{};       // the same files after the steps so far; empty: unknown
    std::vector<FileImage> between{};     // the same files after earlier steps
    // The files and settings that were put back, by path and name. Nothing touches them again:
    // their values since then are those of somebody else.
    std::vector<std::string> put_back{};
    EntryState state = EntryState::kPrepared;
    ConfirmWindow window{};
    GuardianFacts guardian{};
    std::string cause{};       // the reason why it is taken back; empty: unknown
    bool is_untold = false;    // the next run reports that it is taken back
    std::string files_back{};  // the id of the boot at which only the daemon's values were left

    // True if its change was made.
    bool is_finished() const {
        return state == EntryState::kDone || state == EntryState::kConfirmed;
    }
    bool needs_confirmation() const { return window.seconds > 0; }
    // True if nothing is left to do for it.
    bool is_closed() const {
        return is_finished() || state == EntryState::kReverted || state == EntryState::kKept;
    }
};

// The frames of a new entry: header, images, state.
std::string EncodeEntry(const JournalEntry& entry);
std::string EncodeState(EntryState state);
std::string EncodeAfter(const std::vector<FileImage>& images);
// The number of steps that were made, if not all.
std::string EncodeSteps(size_t made);
// The same if the steps that were made are not the first ones.
std::string EncodeMade(const std::vector<std::string>& names);
std::string EncodePutBack(const std::vector<std::string>& items);

// Leaves only the steps with these names.
void KeepSteps(JournalEntry& entry, const std::vector<std::string>& names);

// Returns the number of bytes of the files.
size_t SizeOf(const std::vector<FileImage>& images);

std::string EncodeWindow(const ConfirmWindow& window);
std::string EncodeGuardian(const GuardianFacts& guardian);
std::string EncodeTakingBack(const std::string& cause, bool is_untold);
std::string EncodeFilesBack(const std::string& boot_id);

// Makes the image the latest one of its file after the change.
void AddAfter(JournalEntry& entry, FileImage image);

enum class EntryHealth {
    kWhole,
    kTorn,     // its beginning was not written in full: nothing was begun
    kLater,    // a later velkctl has made it
    kDamaged,  // its frames make no sense, or one is damaged in front of others
};

struct DecodedEntry {
    EntryHealth health = EntryHealth::kTorn;
    JournalEntry entry{};  // for kLater only the id, time and user
    size_t valid_length = 0;
};

DecodedEntry DecodeEntry(std::string_view bytes);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_JOURNAL_ENTRY_H_
