// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell.cpp - formatted shell lines, and those that put an edit copy in place.
#include "lib/base/shell.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "lib/base/log.h"
#include "velk/frame.h"
#include "velk/request.h"

namespace velk {

CommandLine::CommandLine(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    length_ = vsnprintf(text_, sizeof(text_), format, arguments);
    va_end(arguments);
}

int CommandLine::Run() const {
    if (!fits()) {
        // The line itself is not logged, because it may contain a secret.
        Log("command line of %d bytes does not fit", length_);
        return LIB_VELK_INVALID_PARAMETER;
    }
    return SystemCommand(text_);
}

CommandLine CopyingLine(const std::string& source, const std::string& target) {
    return CommandLine("cat %s > %s", source.c_str(), target.c_str());
}

CommandLine RemovingLine(const std::string& source) {
    return CommandLine("rm %s", source.c_str());
}

}  // namespace velk

using namespace velk;

int SystemCommand(const char* command) {
    if (system(command) == -1) {  // NOLINT(concurrency-mt-unsafe): with threads too, in glibc
        LogErrno("system errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    return LIB_VELK_SUCCESS;
}
