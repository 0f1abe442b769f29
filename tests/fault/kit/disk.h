// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// disk.h - the device's files and folders as they are on its disk, to compare and to make.
#ifndef TESTS_FAULT_KIT_DISK_H_
#define TESTS_FAULT_KIT_DISK_H_

#include <map>
#include <string>
#include <utility>

#include <sys/types.h>

namespace fault {

struct DiskFile {
    std::string bytes{};  // empty for a folder
    mode_t mode = 0;      // with its type
    uid_t owner = 0;
    gid_t group = 0;

    bool operator==(const DiskFile&) const = default;
};

// The file system and the inode.
using FileNumber = std::pair<dev_t, ino_t>;

// Each path with its file, as a program sees them.
using Tree = std::map<std::string, DiskFile>;

// The names and the files apart, because a disk stores them apart.
struct Disk {
    std::map<std::string, FileNumber> names{};
    std::map<FileNumber, DiskFile> files{};
};

// The files that hold settings, all that is beside them in folders of their own, and the journal.
Disk ReadDisk();
Tree TreeOf(const Disk& disk);

// The files that a reboot may remove: the edit copies and the note of the last address.
Tree ReadVolatile();

// Replaces all these files.
void WriteDisk(const Tree& disk, const Tree& in_memory);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_DISK_H_
