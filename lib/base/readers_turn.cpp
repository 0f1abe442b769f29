// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// readers_turn.cpp - keeps two readers of the result file apart.
//
// The queue is made of read locks on bytes of the folder, see F_OFD_SETLK in fcntl(2): a reader
// that waits locks the byte that is numbered by its time of arrival. Nobody else reads or writes
// these locks, they need no file, and the kernel drops them when their reader ends.
#include "lib/base/readers_turn.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "lib/base/paths.h"
#include "lib/base/result_file.h"

namespace velk {
namespace {

// flock(2) has no time-out, so the lock is tried again after each pause. 1,500 pauses without any
// change are 3 seconds. 7,500 are 15 seconds, the longest wait: a reader that goes on without its
// turn also makes changes and must not keep all others waiting.
constexpr std::chrono::milliseconds kPause{2};
constexpr int kPausesOfStandstill = 1500;
constexpr int kPausesOfAll = 7500;

constexpr off_t kWholeQueue = 0;  // the length that fcntl(2) takes for "up to the end"

// Returns the time of arrival in milliseconds, never 0. It fits an off_t of 32 bits and restarts
// after 24 days. A reader that waits at that moment loses its place in the queue and nothing else.
off_t PlaceOfArrival() {
    constexpr long long kPlaces = 0x7FFFFFFE;
    timespec now{};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<off_t>((now.tv_sec * 1000LL + now.tv_nsec / 1000000) % kPlaces + 1);
}

// Counts all pauses, and those since the result file was last replaced, written or removed. Files
// of other users do not count: a user who keeps the lock could create and remove them endlessly.
class WaitingTime {
  public:
    explicit WaitingTime(int folder) : folder_(folder), seen_(Look()) {}

    // Returns true if the reader goes on without its turn. Must be called once before each pause.
    bool IsOver() {
        const Facts now = Look();
        if (now != seen_) {
            seen_ = now;
            pauses_ = 0;
        }
        return pauses_++ == kPausesOfStandstill || all_pauses_++ == kPausesOfAll;
    }

  private:
    struct Facts {
        ino_t inode = 0;
        off_t size = 0;
        long long changed = 0;  // in nanoseconds
        bool operator==(const Facts&) const = default;
    };

    Facts Look() const {
        struct stat facts {};
        if (fstatat(folder_, kResultFileName, &facts, AT_SYMLINK_NOFOLLOW) == -1 ||
            !IsOwnResultFile(facts)) {
            return {};
        }
        return {facts.st_ino, facts.st_size,
                facts.st_ctim.tv_sec * 1000000000LL + facts.st_ctim.tv_nsec};
    }

    const int folder_;
    Facts seen_;
    int pauses_ = 0;
    int all_pauses_ = 0;
};

}  // namespace

ReadersTurn::ReadersTurn(WaitMode wait_mode)
    : folder_(open(kEditFolder, O_RDONLY | O_DIRECTORY | O_CLOEXEC)), next_wait_mode_(wait_mode) {
    if (folder_.get() == -1 || TryTake(kWholeQueue)) {
        return;
    }
    if (wait_mode == WaitMode::kInQueue) {
        Queue();
    }
}

ReadersTurn::~ReadersTurn() {
    if (folder_.get() != -1) {
        (void)flock(folder_.get(), LOCK_UN);
    }
}

// Readers ahead of a place have locked a byte before it.
bool ReadersTurn::IsAnybodyAhead(off_t place) const {
    struct flock ahead {};
    ahead.l_type = F_WRLCK;
    ahead.l_len = place;
    return fcntl(folder_.get(), F_OFD_GETLK, &ahead) == 0 && ahead.l_type != F_UNLCK;
}

// Returns true if the wait is over: the lock is held, or the folder cannot be locked.
bool ReadersTurn::TryTake(off_t place) const {
    if (IsAnybodyAhead(place)) {
        return false;
    }
    return flock(folder_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

// Returns false if nothing changed for 3 seconds, or after 15 seconds.
bool ReadersTurn::WaitForTurn(off_t place) const {
    WaitingTime time(folder_.get());
    while (!TryTake(place)) {
        if (time.IsOver()) {
            return false;
        }
        std::this_thread::sleep_for(kPause);  // for the full pause, also when signals arrive
    }
    return true;
}

void ReadersTurn::Queue() {
    const off_t place = PlaceOfArrival();
    MarkPlace(place, F_RDLCK);
    if (!WaitForTurn(place)) {
        next_wait_mode_ = WaitMode::kNoWait;
    }
    MarkPlace(place, F_UNLCK);
}

void ReadersTurn::MarkPlace(off_t place, short type) const {
    struct flock mark {};
    mark.l_type = type;
    mark.l_start = place;
    mark.l_len = 1;
    (void)fcntl(folder_.get(), F_OFD_SETLK, &mark);
}

}  // namespace velk
