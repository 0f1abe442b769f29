// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// progress.h - the progress line at a terminal.
#ifndef VELKCTL_REPORT_PROGRESS_H_
#define VELKCTL_REPORT_PROGRESS_H_

#include <string>
#include <string_view>

namespace velkctl {

// "eth1.signal: 12 s of at most 122 s, waiting for the wireless daemon to answer".
// `longest` is 0 if unknown.
std::string ProgressLine(std::string_view subject, std::string_view awaited, long seconds,
                         long longest);

// A line of standard error that is rewritten, and removed at the end.
class ProgressDisplay {
  public:
    explicit ProgressDisplay(bool is_shown) : is_shown_(is_shown) {}
    ~ProgressDisplay() { Clear(); }
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    bool is_shown() const { return is_shown_; }
    // Replaces the line. A line that does not fit is cut.
    void Show(std::string_view line);
    void Clear();

  private:
    const bool is_shown_;
    size_t width_ = 0;  // the width of the line on the screen
};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_PROGRESS_H_
