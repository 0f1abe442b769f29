// readers_turn.h - keeps two readers of the result file apart, so that neither reads the other's
// output.
#ifndef VELK_BASE_READERS_TURN_H_
#define VELK_BASE_READERS_TURN_H_

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace velk {

// Holds the turn of one reader. Gets run without the set/restart lock, so this is a lock of their
// own: an advisory flock(2) on the folder /var/tmp itself, which leaves no file behind and ends
// with the process that holds it. Readers are served in the order in which they came. Where the
// folder cannot be locked, a reader goes on without its turn.
class ReadersTurn {
  public:
    enum class WaitMode { kInQueue, kNoWait };

    // Waits for the turn. A reader that sees no change of the result file for 3 seconds, or has
    // waited for 15, goes on without it: a stale answer is better than a device that no longer
    // answers. Without wait_mode it does so at once.
    explicit ReadersTurn(WaitMode wait_mode = WaitMode::kInQueue);
    // Unlocks explicitly: a child process of the host that was forked meanwhile has the descriptor,
    // too, and would keep the lock.
    ~ReadersTurn();
    ReadersTurn(const ReadersTurn&) = delete;
    ReadersTurn& operator=(const ReadersTurn&) = delete;

    // The wait_mode for the next turn of a reader that has several: none if it has lost it.
    WaitMode next_wait_mode() const { return next_wait_mode_; }

  private:
    bool IsAnybodyAhead(off_t place) const;
    bool Takes(off_t place) const;
    bool Waits(off_t place) const;
    void Queue();
    void MarkPlace(off_t place, short type) const;

    const UniqueFd folder_;
    WaitMode next_wait_mode_;
};

}  // namespace velk

#endif  // VELK_BASE_READERS_TURN_H_
