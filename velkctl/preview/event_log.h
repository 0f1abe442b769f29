// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// event_log.h - the steps of library calls, written down by one process for another.
#ifndef VELKCTL_PREVIEW_EVENT_LOG_H_
#define VELKCTL_PREVIEW_EVENT_LOG_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/unique_fd.h"

namespace velkctl {

enum class EventKind : uint32_t {
    kCommand,          // a command begins; the text is its type: "get", "set", "restart"
    kShellLine,        // a shell line was run
    kShellLineNotRun,  // the library wanted to run it
    kLogLine,
    kWait,            // the text is the number of seconds
    kMessage,         // a message to the wireless daemon was sent; its bytes
    kMessageNotSent,  // the same for one that was kept
    kAnswer,          // the answer of a command
    kFile,            // a file after all commands
    kEnd,             // all commands are done
    kFailure,         // the commands could not be run
};

struct Event {
    EventKind kind;
    std::string text;

    bool operator==(const Event&) const = default;
};

// A file in memory. Processes that are forked meanwhile add to the same one.
class EventLog {
  public:
    EventLog();

    // False if the kernel has no memory for it.
    bool is_open() const { return fd_.get() != -1; }

    void Add(EventKind kind, std::string_view text) const;
    // Returns the events so far. One that was cut, as by the end of its process, is left out.
    std::vector<Event> Read() const;

  private:
    velk::UniqueFd fd_;
};

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_EVENT_LOG_H_
