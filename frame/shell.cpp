// shell.cpp - shell lines, and putting an edited copy in place with them.
#include "frame/shell.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "frame/log.h"
#include "velk.h"

namespace velk {

CommandLine::CommandLine(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    length_ = vsnprintf(text_, sizeof(text_), format, arguments);
    va_end(arguments);
}

int CommandLine::Run() const {
    if (!fits()) {
        // The line itself stays out of the log: it may carry a secret.
        Log("command line of %d bytes does not fit", length_);
        return LIB_VELK_INVALID_PARAMETER;
    }
    return SystemCommand(text_);
}

namespace {

// In a host program that ignores SIGCHLD nobody keeps the exit status of a shell that has run:
// system(3) waits for its end as ever and then fails with ECHILD.
bool IsStatusAloneLost(int error) {
    struct sigaction action {};
    return error == ECHILD && sigaction(SIGCHLD, nullptr, &action) == 0 &&
           (action.sa_handler == SIG_IGN || (action.sa_flags & SA_NOCLDWAIT) != 0);
}

}  // namespace
}  // namespace velk

int SystemCommand(const char* command) {
    if (system(command) != -1) {
        return LIB_VELK_SUCCESS;
    }
    const int error = errno;
    if (velk::IsStatusAloneLost(error)) {
        return LIB_VELK_SUCCESS;
    }
    velk::LogErrno("system errno=%d:%s", error);
    return LIB_VELK_FAILURE;
}

int FileCopyAndDelete(const std::string& source, const std::string& target) {
    const velk::CommandLine copy("cat %s > %s", source.c_str(), target.c_str());
    const int copied = copy.Run();
    if (!copy.fits()) {
        return copied;  // never remove an edit that could not even be tried
    }
    return velk::CommandLine("rm %s", source.c_str()).Run();
}
