// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_folder.cpp - the folder of journal entries: its lock, its files and its limits.
#include "velkctl/journal/journal_folder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <memory>
#include <optional>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/paths.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;
constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 50'000'000};
// No vowels, and nothing that looks like another character.
constexpr std::string_view kIdLetters = "bcdfghjkmnpqrstvwxz23456789";
constexpr size_t kIdLength = 4;
constexpr unsigned kIdCount = 27 * 27 * 27 * 27;
constexpr unsigned kIdFactor = 220103;  // has no divisor in common with the count
constexpr size_t kNumberWidth = 6;
constexpr size_t kStatesSize = 1024;  // the frames to come, without the bytes of files
constexpr size_t kBlockSize = size_t{16} * 1024;

// "000017-k7f2"
struct EntryName {
    unsigned number;
    std::string id;
};

std::optional<EntryName> ParseName(std::string_view name) {
    const size_t dash = name.find('-');
    const std::optional<unsigned> number = ParseNumber<unsigned>(name.substr(0, dash));
    const bool has_id = dash != std::string_view::npos && name.size() == dash + 1 + kIdLength;
    return number && has_id ? std::optional(EntryName{*number, std::string(name.substr(dash + 1))})
                            : std::nullopt;
}

std::string PathOf(const EntryName& name) {
    std::string number = std::to_string(name.number);
    number.insert(0, kNumberWidth - std::min(kNumberWidth, number.size()), '0');
    return std::string(velk::kJournalFolder).append("/").append(number).append("-").append(name.id);
}

int SyncFolder(const char* folder) {
    const velk::UniqueFd fd(open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd.get() != -1 && fsync(fd.get()) == 0 ? 0 : errno;
}

// In a folder of another user, or one where others may write, files could only look like changes,
// and root would put their text into the files of the device.
int CheckFolder() {
    struct stat facts {};
    if (lstat(velk::kJournalFolder, &facts) == -1) {
        return errno;
    }
    if (!S_ISDIR(facts.st_mode)) {
        return ENOTDIR;
    }
    const bool is_trusted = facts.st_uid == 0 || facts.st_uid == geteuid();
    return is_trusted && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0 ? 0 : EPERM;
}

// The umask of the caller may leave its owner no right. Then a second chmod(2) gives it.
int MakeFolder() {
    if (mkdir(velk::kJournalFolder, kFolderMode) == -1) {
        return errno == EEXIST ? CheckFolder() : errno;
    }
    const int flags = AT_SYMLINK_NOFOLLOW;
    const bool has_mode = fchmodat(AT_FDCWD, velk::kJournalFolder, kFolderMode, flags) == 0;
    if (!has_mode && errno != EOPNOTSUPP) {
        return errno;
    }
    return SyncFolder(velk::kLibraryFolder);
}

int OpenLock(velk::UniqueFd& fd) {
    if (const int error = MakeFolder(); error != 0) {
        return error;
    }
    fd.Reset(open(velk::kJournalLock, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    if (fd.get() == -1) {
        return errno;
    }
    (void)fchmod(fd.get(), kFileMode);
    return 0;
}

// Returns the names of the entries, the oldest first.
std::vector<EntryName> ReadNames(int& error) {
    std::vector<EntryName> names;
    error = CheckFolder();
    if (error != 0) {
        error = error == ENOENT ? 0 : error;
        return names;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(velk::kJournalFolder), closedir);
    if (folder == nullptr) {
        error = errno;
        return names;
    }
    while (const dirent* item = readdir(folder.get())) {
        if (const std::optional<EntryName> name = ParseName(item->d_name)) {
            names.push_back(*name);
        }
    }
    std::ranges::sort(names, {}, &EntryName::number);
    return names;
}

// Different for each number below the count of all ids. Neighbours do not look similar.
std::string IdOf(unsigned number) {
    uint64_t rest = uint64_t{number} * kIdFactor % kIdCount;
    std::string id;
    while (id.size() < kIdLength) {
        id.push_back(kIdLetters[static_cast<size_t>(rest % kIdLetters.size())]);
        rest /= kIdLetters.size();
    }
    return id;
}

EntryName NameAfter(unsigned number) {
    return {number + 1, IdOf(number + 1)};
}

unsigned LastNumber() {
    int error = 0;
    const std::vector<EntryName> names = ReadNames(error);
    return names.empty() ? 0 : names.back().number;
}

std::string ReadAll(int fd, int& error) {
    std::string bytes;
    std::array<char, kBlockSize> block{};
    ssize_t count = 0;
    while ((count = velk::ReadSome(fd, block.data(), block.size())) > 0) {
        bytes.append(block.data(), static_cast<size_t>(count));
    }
    error = count == -1 ? errno : 0;
    return bytes;
}

bool MayBeConfirmed(const JournalEntry& entry) {
    return entry.state == EntryState::kWaiting && entry.boot_id == RunningBootId() &&
           MillisecondsSinceBoot() < entry.window.deadline;
}

StoredEntry ReadEntry(const std::string& path, const std::string& id) {
    StoredEntry stored{path};
    stored.decoded.entry.id = id;
    const velk::UniqueFd fd(
        open(stored.path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() == -1) {
        stored.error = errno;
        return stored;
    }
    stored.is_in_use = flock(fd.get(), LOCK_SH | LOCK_NB) == -1;
    const std::string bytes = ReadAll(fd.get(), stored.error);
    stored.size = bytes.size();
    stored.decoded = DecodeEntry(bytes);
    stored.decoded.entry.id = id;
    stored.is_waiting = stored.is_whole() && MayBeConfirmed(stored.decoded.entry);
    return stored;
}

StoredEntry ReadEntry(const EntryName& name) {
    return ReadEntry(PathOf(name), name.id);
}

size_t SizeOf(const EntryName& name) {
    struct stat facts {};
    return stat(PathOf(name).c_str(), &facts) == 0 ? static_cast<size_t>(facts.st_size) : 0;
}

bool MayBeRemoved(const StoredEntry& stored) {
    const bool is_closed = stored.is_whole() && stored.decoded.entry.is_closed();
    const bool is_damaged = stored.error == 0 && stored.decoded.health == EntryHealth::kDamaged;
    return !stored.is_in_use && (is_closed || is_damaged);
}

std::vector<StoredEntry> RemovableEntries() {
    std::vector<StoredEntry> entries = ReadJournal().entries;
    std::erase_if(entries, [](const StoredEntry& stored) { return !MayBeRemoved(stored); });
    return entries;
}

struct JournalSize {
    size_t entries = 0;
    size_t bytes = 0;
};

JournalSize CountEntries() {
    int error = 0;
    JournalSize size;
    for (const EntryName& name : ReadNames(error)) {
        ++size.entries;
        size.bytes += SizeOf(name);
    }
    return size;
}

// True if there is room beside these for one more of so many bytes.
bool IsWithinLimits(const JournalSize& size, size_t room) {
    return size.entries < kMostEntries && size.bytes + room <= kMostBytes;
}

}  // namespace

JournalLock::JournalLock(Use use, int wait_seconds) : error_(OpenLock(fd_)) {
    if (error_ != 0) {
        return;
    }
    const int operation = (use == Use::kShared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(wait_seconds);
    while (flock(fd_.get(), operation) == -1) {
        const bool can_be_awaited = errno == EWOULDBLOCK || errno == EINTR;
        if (!can_be_awaited || std::chrono::steady_clock::now() >= end) {
            error_ = can_be_awaited ? EWOULDBLOCK : errno;
            return;
        }
        (void)nanosleep(&kPause, nullptr);
    }
}

EntryFile::EntryFile(JournalEntry& entry) {
    EntryName name = NameAfter(LastNumber());
    Take(PathOf(name), O_CREAT | O_EXCL);
    while (error_ == EEXIST) {  // another set has begun at the same time
        name = NameAfter(name.number);
        Take(PathOf(name), O_CREAT | O_EXCL);
    }
    entry.id = name.id;
    if (error_ == 0) {
        (void)fchmod(fd_.get(), kFileMode);  // the umask of the caller may have left no right
    }
    Append(EncodeEntry(entry));
    Reserve(SizeOf(entry.before) + kStatesSize);
    if (error_ != 0) {
        (void)Remove();
    }
}

EntryFile::EntryFile(const std::string& path, size_t valid_length)
    : last_append_(static_cast<off_t>(valid_length)) {
    Take(path, 0);
    if (error_ == 0 && (ftruncate(fd_.get(), last_append_) == -1 ||
                        lseek(fd_.get(), last_append_, SEEK_SET) == -1)) {
        error_ = errno;
    }
}

// Readers hold the lock for a moment only.
void EntryFile::Take(const std::string& path, int flags) {
    path_ = path;
    fd_.Reset(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | flags, kFileMode));
    error_ = fd_.get() == -1 || flock(fd_.get(), LOCK_EX) == -1 ? errno : 0;
}

void EntryFile::Append(const std::string& frames) {
    if (error_ != 0) {
        return;
    }
    last_append_ = lseek(fd_.get(), 0, SEEK_CUR);
    is_synced_ = false;
    if (!velk::WriteAll(fd_.get(), frames)) {
        error_ = errno;
        TakeBackAppend();
    }
}

// A disk without room must be known before the first set: after it, the entry could not be closed.
// Not every file system can tell.
void EntryFile::Reserve(size_t size) {
    const off_t end = lseek(fd_.get(), 0, SEEK_CUR);
    if (error_ == 0 &&
        fallocate(fd_.get(), FALLOC_FL_KEEP_SIZE, end, static_cast<off_t>(size)) == -1 &&
        (errno == ENOSPC || errno == EDQUOT)) {
        error_ = errno;
    }
}

// A state that may not be on disk must not count: its change is not finished.
void EntryFile::Sync() {
    if (error_ != 0 || is_synced_) {
        return;
    }
    error_ = fsync(fd_.get()) == -1 ? errno : 0;
    is_synced_ = error_ == 0;
    if (error_ == 0 && !is_folder_synced_) {
        error_ = SyncFolder(velk::kJournalFolder);
        is_folder_synced_ = true;
    }
    if (error_ != 0) {
        TakeBackAppend();
    }
}

// Without it, a part of a frame is a torn tail, which readers ignore.
void EntryFile::TakeBackAppend() {
    [[maybe_unused]] const int is_kept = ftruncate(fd_.get(), last_append_);
}

bool EntryFile::Remove() {
    const bool is_removed = fd_.get() != -1 && unlink(path_.c_str()) == 0;
    if (is_removed) {
        (void)SyncFolder(velk::kJournalFolder);
    }
    return is_removed;
}

JournalListing ReadJournal() {
    JournalListing listing;
    for (const EntryName& name : ReadNames(listing.error)) {
        StoredEntry stored = ReadEntry(name);
        if (stored.error != ENOENT) {
            listing.entries.push_back(std::move(stored));
        }
    }
    return listing;
}

// An older change may be open too, below sets that were made since.
std::string FindInterrupted() {
    int error = 0;
    const std::vector<EntryName> names = ReadNames(error);
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (ReadEntry(*name).is_interrupted()) {
            return name->id;
        }
    }
    return "";
}

std::optional<StoredEntry> ReadLastEntry() {
    int error = 0;
    const std::vector<EntryName> names = ReadNames(error);
    return names.empty() ? std::nullopt : std::optional(ReadEntry(names.back()));
}

StoredEntry ReadAgain(const StoredEntry& stored) {
    return ReadEntry(stored.path, stored.decoded.entry.id);
}

std::vector<JournalEntry> ReadLaterChanges(const std::string& id) {
    std::vector<JournalEntry> later;
    bool is_later = false;
    for (StoredEntry& stored : ReadJournal().entries) {
        JournalEntry& entry = stored.decoded.entry;
        if (is_later && (stored.is_finished() || stored.is_waiting)) {
            later.push_back(std::move(entry));
        } else {
            is_later = is_later || entry.id == id;
        }
    }
    return later;
}

// Reads the entries only if one may have to go.
void PruneJournal(size_t room) {
    if (IsWithinLimits(CountEntries(), room)) {
        return;
    }
    const std::vector<StoredEntry> removable = RemovableEntries();
    JournalSize size;
    for (const StoredEntry& stored : removable) {
        ++size.entries;
        size.bytes += stored.size;
    }
    for (const StoredEntry& stored : removable) {
        if (IsWithinLimits(size, room)) {
            return;
        }
        if (unlink(stored.path.c_str()) == 0) {
            --size.entries;
            size.bytes -= stored.size;
        }
    }
}

void RemoveTornEntries(const JournalListing& listing) {
    for (const StoredEntry& stored : listing.entries) {
        if (stored.error == 0 && stored.decoded.health == EntryHealth::kTorn) {
            (void)unlink(stored.path.c_str());
        }
    }
}

}  // namespace velkctl
