// target_guard.h - mends a file that was cut while its edit copy was copied over it.
#ifndef VELK_BASE_TARGET_GUARD_H_
#define VELK_BASE_TARGET_GUARD_H_

#include <string>

#include <sys/stat.h>

namespace velk {

// The shell empties the file before cat(1) runs. A cat that is killed, or for which there is no
// process, no memory or no program, leaves the file empty or short. The guard holds what the file
// was like before, and compares.
class TargetGuard {
  public:
    // `copy` is a descriptor of the whole edit copy, readable.
    TargetGuard(const std::string& target, int copy);

    // After the copying: writes the edit copy over a file that is a shorter piece of it, in place,
    // and flushes it. A file that is as it was, or that has its new text, stays so. Returns 0,
    // or the errno that kept a cut file from being mended.
    int Repair();
    // The file was cut, and is whole again.
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
