// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// target_guard.h - repairs a file that was truncated while its edit copy was copied over it.
#ifndef VELK_BASE_TARGET_GUARD_H_
#define VELK_BASE_TARGET_GUARD_H_

#include <string>

#include <sys/stat.h>

namespace velk {

// The shell empties the file before cat(1) runs. If cat is killed or cannot be started, the file
// stays empty or short. The guard compares the file with its state before the copying.
class TargetGuard {
  public:
    // `copy` is a readable descriptor of the complete edit copy.
    TargetGuard(const std::string& target, int copy);

    // Must be called after the copying. If the file is a shorter piece of the edit copy, writes the
    // edit copy over it in place and flushes it. A file that is unchanged or has its new text is
    // not written. Returns 0, or the errno of a repair that failed.
    int Repair();
    // Returns true if the file was truncated and is complete again.
    bool has_repaired() const { return has_repaired_; }

  private:
    bool IsAsItWas(const struct stat& facts) const;
    int ComparePiece(off_t size, bool& is_piece) const;
    int WriteCopyOver() const;

    const std::string& target_;
    const int copy_;
    struct stat before_ {};
    bool has_repaired_ = false;
};

}  // namespace velk

#endif  // VELK_BASE_TARGET_GUARD_H_
