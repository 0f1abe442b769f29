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

int MakeFolder() {
    if (mkdir(velk::kJournalFolder, kFolderMode) == 0) {
        return SyncFolder(velk::kLibraryFolder);
    }
    return errno == EEXIST ? 0 : errno;
}

int OpenLock(velk::UniqueFd& fd) {
    if (const int error = MakeFolder(); error != 0) {
        return error;
    }
    fd.Reset(open(velk::kJournalLock, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    return fd.get() == -1 ? errno : 0;
}

// Returns the names of the entries, the oldest first.
std::vector<EntryName> ReadNames(int& error) {
    std::vector<EntryName> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(velk::kJournalFolder), closedir);
    if (folder == nullptr) {
        error = errno == ENOENT ? 0 : errno;
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
        id.push_back(kIdLetters[rest % kIdLetters.size()]);
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
    const velk::UniqueFd fd(open(stored.path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
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

}  // namespace

JournalLock::JournalLock(Use use, int wait_seconds) : error_(OpenLock(fd_)) {
    if (error_ != 0) {
        return;
    }
    const int operation = (use == Use::kShared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(wait_seconds);
    while (flock(fd_.get(), operation) == -1) {
        if (std::chrono::steady_clock::now() >= end) {
            error_ = EWOULDBLOCK;
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
    Append(EncodeEntry(entry));
    if (error_ != 0) {
        Remove();
    }
}

EntryFile::EntryFile(const std::string& path, size_t valid_length) {
    Take(path, 0);
    const auto end = static_cast<off_t>(valid_length);
    if (error_ == 0 && (ftruncate(fd_.get(), end) == -1 || lseek(fd_.get(), end, SEEK_SET) == -1)) {
        error_ = errno;
    }
}

// Readers hold the lock for a moment only.
void EntryFile::Take(const std::string& path, int flags) {
    path_ = path;
    fd_.Reset(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | flags, kFileMode));
    error_ = fd_.get() == -1 || flock(fd_.get(), LOCK_EX) == -1 ? errno : 0;
}

// A part of a frame is a torn tail, which readers ignore.
void EntryFile::Append(const std::string& frames) {
    if (error_ == 0 && !velk::WriteAll(fd_.get(), frames)) {
        error_ = errno;
    }
}

void EntryFile::Sync() {
    if (error_ == 0 && fsync(fd_.get()) == -1) {
        error_ = errno;
    }
    if (error_ == 0 && !is_folder_synced_) {
        error_ = SyncFolder(velk::kJournalFolder);
        is_folder_synced_ = true;
    }
}

void EntryFile::Remove() {
    if (fd_.get() != -1) {
        (void)unlink(path_.c_str());
    }
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

std::optional<StoredEntry> ReadLastEntry() {
    int error = 0;
    const std::vector<EntryName> names = ReadNames(error);
    return names.empty() ? std::nullopt : std::optional(ReadEntry(names.back()));
}

StoredEntry ReadAgain(const StoredEntry& stored) {
    return ReadEntry(stored.path, stored.decoded.entry.id);
}

// Reads only the entries that may have to go: a set must not wait for the others.
void PruneJournal(size_t room) {
    int error = 0;
    const std::vector<EntryName> names = ReadNames(error);
    size_t count = names.size() + 1;
    size_t bytes = room;
    for (const EntryName& name : names) {
        bytes += SizeOf(name);
    }
    for (const EntryName& name : names) {
        if (count <= kMostEntries && bytes <= kMostBytes) {
            return;
        }
        const StoredEntry stored = ReadEntry(name);
        if (MayBeRemoved(stored) && unlink(stored.path.c_str()) == 0) {
            --count;
            bytes -= stored.size;
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
