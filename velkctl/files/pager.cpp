// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pager.cpp - shows a long text a screen at a time.
#include "velkctl/files/pager.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include <unistd.h>

#include "velkctl/files/tool_run.h"
#include "velkctl/report/output.h"
#include "velkctl/text/columns.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr char kUsualPager[] = "less -FRX";

// Ignores the signals of Ctrl-C and of a pager that is left early, so that velkctl does not return
// to the shell before the pager.
class IgnoredSignals {
  public:
    IgnoredSignals() {
        for (size_t i = 0; i < kSignals.size(); ++i) {
            before_[i] = signal(kSignals[i], SIG_IGN);
        }
    }
    ~IgnoredSignals() {
        for (size_t i = 0; i < kSignals.size(); ++i) {
            (void)signal(kSignals[i], before_[i]);
        }
    }
    IgnoredSignals(const IgnoredSignals&) = delete;
    IgnoredSignals& operator=(const IgnoredSignals&) = delete;

  private:
    static constexpr std::array kSignals{SIGINT, SIGQUIT, SIGPIPE};
    std::array<void (*)(int), kSignals.size()> before_{};
};

// Returns the pager's command line for a shell; empty for none.
std::string PagerCommand() {
    if (const char* own = getenv("PAGER")) {
        return std::string_view(own) == "cat" ? "" : own;
    }
    return FindTool("less") ? kUsualPager : "";
}

bool IsTooLong(std::string_view text) {
    const std::optional<TerminalSize> size =
        IsTerminal(STDOUT_FILENO) ? TerminalSizeOf(STDOUT_FILENO) : std::nullopt;
    // The prompt of the shell takes a row.
    return size && size->rows > 0 && LinesOnScreen(text, size->columns) >= size->rows;
}

// Returns the status of the program at the other end. It may end before it has read everything.
int WriteAndClose(std::string_view text, FILE* pipe) {
    (void)fwrite(text.data(), 1, text.size(), pipe);
    return pclose(pipe);
}

bool PrintThrough(const std::string& pager, std::string_view text) {
    // less then starts no shell and no editor: velkctl may run with more rights than its user.
    (void)setenv("LESSSECURE", "1", 1);
    if (ShowsUtf8()) {
        (void)setenv("LESSCHARSET", "utf-8", 1);  // the locale is C
    }
    (void)fflush(stdout);
    FILE* pipe = popen(pager.c_str(), "we");
    const IgnoredSignals ignored;
    return pipe != nullptr && WriteAndClose(text, pipe) == 0;
}

}  // namespace

bool HasPager() {
    return IsTerminal(STDOUT_FILENO) && !PagerCommand().empty();
}

void PrintPaged(std::string_view text) {
    const std::string pager = IsTooLong(text) ? PagerCommand() : "";
    if (pager.empty() || !PrintThrough(pager, text)) {
        Print(text);
    }
}

}  // namespace velkctl
