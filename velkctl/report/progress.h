// progress.h - the line that tells a person at a terminal what is waited for.
#ifndef VELKCTL_REPORT_PROGRESS_H_
#define VELKCTL_REPORT_PROGRESS_H_

#include <string>
#include <string_view>

namespace velkctl {

// "eth1.signal: 12 s of at most 122 s, waiting for the wireless daemon to answer"; `longest` is 0
// when there is no telling.
std::string ProgressLine(std::string_view what, std::string_view awaited, long seconds,
                         long longest);

// One line of standard error that is written again and again, and is gone in the end.
class ProgressDisplay {
  public:
    explicit ProgressDisplay(bool is_shown) : is_shown_(is_shown) {}
    ~ProgressDisplay() { Clear(); }
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    bool is_shown() const { return is_shown_; }
    // Shows the line in the place of the one before; one that does not fit is cut.
    void Show(std::string_view line);
    void Clear();

  private:
    const bool is_shown_;
    size_t width_ = 0;  // of what stands there
};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_PROGRESS_H_
