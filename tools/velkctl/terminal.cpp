// terminal.cpp - what velkctl writes, safe to show on a terminal.
#include "velkctl/terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace velkctl {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

void AppendEscape(std::string& text, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    text.append("\\x");
    text.push_back(kHexDigits[value >> 4U]);
    text.push_back(kHexDigits[value & 0xfU]);
}

}  // namespace

std::string Printable(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        if (byte == '\\') {
            text.append("\\\\");
        } else if (byte >= ' ' && byte <= '~') {
            text.push_back(byte);
        } else {
            AppendEscape(text, byte);
        }
    }
    return text;
}

std::string Quoted(std::string_view word) {
    return std::string("'").append(Printable(word)).append("'");
}

void Print(std::string_view text) {
    (void)fwrite(text.data(), 1, text.size(), stdout);  // FinishPrinting() tells of failures
}

void Complain(std::string_view problem) {
    const std::string line = std::string("velkctl: ").append(problem).append("\n");
    (void)fwrite(line.data(), 1, line.size(), stderr);
}

ExitStatus Refuse(std::string_view problem) {
    Complain(problem);
    return ExitStatus::kInvalid;
}

bool FinishPrinting() {
    errno = 0;
    const bool flushed = fflush(stdout) == 0;
    const int error = errno;
    if (flushed && ferror(stdout) == 0) {
        return true;
    }
    Complain(std::string("cannot write to standard output: ") +
             (error != 0 ? strerror(error) : "part of it was lost"));
    return false;
}

}  // namespace velkctl
