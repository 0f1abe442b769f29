// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_observer.h - sees the steps of the library outside its own memory, and may replace them.
#ifndef VELKCTL_CALL_LIBRARY_OBSERVER_H_
#define VELKCTL_CALL_LIBRARY_OBSERVER_H_

#include <cstddef>
#include <string_view>

#include <sys/types.h>

#include "velkctl/call/command.h"

namespace velkctl {

// The functions of libc that the library calls. velkctl defines functions of the same names, and
// the dynamic linker prefers them; see observed_functions.cpp.
using SystemFunction = int (*)(const char* line);
using SleepFunction = unsigned (*)(unsigned seconds);

class LibraryObserver {
  public:
    LibraryObserver() = default;
    LibraryObserver(const LibraryObserver&) = delete;
    LibraryObserver& operator=(const LibraryObserver&) = delete;
    virtual ~LibraryObserver() = default;

    // A command is about to run.
    virtual void Begin(const Command& command) = 0;
    // Return the result of the function.
    virtual int RunShellLine(const char* line, SystemFunction run) = 0;
    virtual unsigned Wait(unsigned seconds, SleepFunction sleep) = 0;
    // Returns true if the line also goes to the system log.
    virtual bool TakeLogLine(std::string_view line) = 0;
    // Returns true if the message is not to be sent.
    virtual bool KeepsMessage(std::string_view message) = 0;
    // Sees a reply, and may change it.
    virtual void ReadReply(void* bytes, size_t size) = 0;
};

// The observer of this process and its children; null by default.
LibraryObserver* CurrentObserver();
void SetObserver(LibraryObserver* observer);

}  // namespace velkctl

#endif  // VELKCTL_CALL_LIBRARY_OBSERVER_H_
