// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// archive_members.h - the members of a tar archive, read without the simulated device's reader.
#ifndef TESTS_FUZZ_KIT_ARCHIVE_MEMBERS_H_
#define TESTS_FUZZ_KIT_ARCHIVE_MEMBERS_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fuzz {

struct ArchiveMember {
    char type;
    std::string text;
};

// By the absolute path on the device. Of members with one path, the last one.
using ArchiveMembers = std::map<std::string, ArchiveMember>;

// Returns the members of the device: in a capture, those below "root/". Nothing for an archive with
// a number in a form that no program writes.
std::optional<ArchiveMembers> ReadMembers(std::string_view bytes);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_ARCHIVE_MEMBERS_H_
