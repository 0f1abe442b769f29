// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// output.cpp - writes to standard output and standard error.
#include "velkctl/report/output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/ioctl.h>
#include <unistd.h>

#include "velkctl/text/columns.h"

namespace velkctl {
namespace {

constexpr std::string_view kPlain = "\x1b[0m";

std::string_view CodeOf(Colour colour) {
    switch (colour) {
        case Colour::kBold:
            return "\x1b[1m";
        case Colour::kRed:
            return "\x1b[31m";
        case Colour::kYellow:
            break;
    }
    return "\x1b[33m";
}

std::string_view Variable(const char* name) {
    const char* value = getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

void Print(std::string_view text) {
    (void)fwrite(text.data(), 1, text.size(), stdout);  // FinishPrinting() reports failures
}

void PrintError(std::string_view message, Tone tone) {
    constexpr std::string_view kName = "velkctl:";
    std::string whole =
        tone == Tone::kNote ? std::string(kName) : Coloured(kName, Colour::kRed, STDERR_FILENO);
    whole.append(" ").append(message).append("\n");
    (void)fwrite(whole.data(), 1, whole.size(), stderr);
}

bool IsTerminal(int fd) {
    const std::string_view type = Variable("TERM");
    return !type.empty() && type != "dumb" && isatty(fd) == 1;
}

std::optional<TerminalSize> TerminalSizeOf(int fd) {
    winsize size{};
    const bool is_known = ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_known ? std::optional(TerminalSize{size.ws_col, size.ws_row}) : std::nullopt;
}

std::string FittedToTerminal(std::string_view text) {
    const std::optional<TerminalSize> size = TerminalSizeOf(STDOUT_FILENO);
    return size ? Wrapped(text, size->columns) : std::string(text);
}

std::string Coloured(std::string_view text, Colour colour, int fd) {
    if (!IsTerminal(fd) || !Variable("NO_COLOR").empty()) {
        return std::string(text);
    }
    return std::string(CodeOf(colour)).append(text).append(kPlain);
}

bool FinishPrinting() {
    errno = 0;
    const bool flushed = fflush(stdout) == 0;
    const int error = errno;
    if (flushed && ferror(stdout) == 0) {
        return true;
    }
    PrintError(std::string("cannot write to standard output: ") +
               (error != 0 ? strerror(error) : "a part was lost"));
    return false;
}

}  // namespace velkctl
