// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// event_log.cpp - the steps of library calls, written down by one process for another.
#include "velkctl/preview/event_log.h"

#include <array>
#include <cstring>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"

namespace velkctl {
namespace {

using Head = std::array<uint32_t, 2>;  // the kind, and the size of the text

std::string ReadAll(int fd) {
    struct stat facts {};
    (void)fstat(fd, &facts);
    std::string bytes(static_cast<size_t>(facts.st_size), '\0');
    const ssize_t count = pread(fd, bytes.data(), bytes.size(), 0);
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
}

}  // namespace

EventLog::EventLog() : fd_(memfd_create("velkctl", MFD_CLOEXEC)) {
}

// One write for each event: those of several processes do not mix.
void EventLog::Add(EventKind kind, std::string_view text) const {
    const Head head{static_cast<uint32_t>(kind), static_cast<uint32_t>(text.size())};
    std::string record(sizeof(head), '\0');
    memcpy(record.data(), head.data(), sizeof(head));
    record.append(text);
    (void)velk::WriteAll(fd_.get(), record);
}

std::vector<Event> EventLog::Read() const {
    const std::string bytes = ReadAll(fd_.get());
    std::string_view rest = bytes;
    std::vector<Event> events;
    for (Head head{}; rest.size() >= sizeof(head);) {
        memcpy(head.data(), rest.data(), sizeof(head));
        rest.remove_prefix(sizeof(head));
        if (rest.size() < head[1]) {
            break;
        }
        events.push_back({static_cast<EventKind>(head[0]), std::string(rest.substr(0, head[1]))});
        rest.remove_prefix(head[1]);
    }
    return events;
}

}  // namespace velkctl
