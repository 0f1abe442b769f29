// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// readers_turn.h - keeps two readers of the result file apart, so that neither reads the other's
// output.
#ifndef VELK_BASE_READERS_TURN_H_
#define VELK_BASE_READERS_TURN_H_

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace velk {

// Holds the turn of one reader. Gets run without the set/restart lock, so this is a lock of their
// own: an advisory flock(2) on the folder /var/tmp itself. It needs no file and ends with the
// process that holds it. Readers are served in order of arrival. If the folder cannot be locked, a
// reader goes on without its turn.
class ReadersTurn {
  public:
    enum class WaitMode { kInQueue, kNoWait };

    // Waits for the turn. A reader that sees no change of the result file for 3 seconds, or has
    // waited for 15, goes on without it: a stale answer is better than a device that no longer
    // answers. With kNoWait it goes on at once.
    explicit ReadersTurn(WaitMode wait_mode = WaitMode::kInQueue);
    // Unlocks explicitly: a child process that the host forked meanwhile also has the descriptor
    // and would keep the lock.
    ~ReadersTurn();
    ReadersTurn(const ReadersTurn&) = delete;
    ReadersTurn& operator=(const ReadersTurn&) = delete;

    // Returns the mode for the reader's next turn: kNoWait after a wait that timed out.
    WaitMode next_wait_mode() const { return next_wait_mode_; }

  private:
    bool IsAnybodyAhead(off_t place) const;
    bool TryTake(off_t place) const;
    bool WaitForTurn(off_t place) const;
    void Queue();
    void MarkPlace(off_t place, short type) const;

    const UniqueFd folder_;
    WaitMode next_wait_mode_;
};

}  // namespace velk

#endif  // VELK_BASE_READERS_TURN_H_
