// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// disk_log.h - the changes that a program and its tools make to the disk, one system call at a
// time.
#ifndef TESTS_FAULT_KIT_DISK_LOG_H_
#define TESTS_FAULT_KIT_DISK_LOG_H_

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fault/kit/disk.h"

namespace fault {

struct DiskEvent {
    enum class Kind {
        kNames,     // names made, removed or exchanged in one folder, by one call
        kResize,    // a file shortened
        kWrite,     // bytes written into a file
        kMode,      // another mode or owner of a file
        kSync,      // a file or folder written to disk
        kSyncAll,   // everything written to disk
        kInMemory,  // a change of files that a reboot may remove
    };

    Kind kind;
    FileNumber file{};  // the folder, for names
    std::map<std::string, std::optional<FileNumber>> names{};
    size_t place = 0;  // the offset of a write, or the new size
    std::string bytes{};
    DiskFile facts{};  // the new mode and owner
};

struct DiskLog {
    std::optional<int> result{};  // the value that the work returned
    Disk before{};
    Disk after{};
    std::vector<DiskEvent> events{};
    std::vector<Tree> in_memory{};               // before the first event, then after each
    std::map<FileNumber, DiskFile> new_files{};  // files and folders as they were made, empty
};

// Runs the work in a child. Compares the files after each system call of the child and of all that
// it starts, so that the kind of call does not matter. Throws std::system_error if processes cannot
// be traced.
DiskLog LogChanges(const std::function<int()>& work);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_DISK_LOG_H_
