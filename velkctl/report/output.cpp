// output.cpp - writes to standard output and standard error.
#include "velkctl/report/output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

namespace velkctl {

void Print(std::string_view text) {
    (void)fwrite(text.data(), 1, text.size(), stdout);  // FinishPrinting() reports failures
}

void PrintError(std::string_view message) {
    const std::string whole = std::string("velkctl: ").append(message).append("\n");
    (void)fwrite(whole.data(), 1, whole.size(), stderr);
}

bool IsTerminal(int fd) {
    const char* terminal = getenv("TERM");
    const bool is_dumb = terminal != nullptr && strcmp(terminal, "dumb") == 0;
    return !is_dumb && isatty(fd) == 1;
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
