// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_files.h - the files that sets edit: the owners of the lines, and the permitted changes.
#ifndef TESTS_FUZZ_KIT_EDIT_FILES_H_
#define TESTS_FUZZ_KIT_EDIT_FILES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

enum class Change {
    kSwitch,  // lines gain or lose a "#"
    kBlock,   // so do all lines of the interface's block: they are on with DHCP
    kMethod,  // the interface's header lines get another method
    kOption,  // an option is added to a request, or removed
    kServer,  // the server is replaced; one that ends its line takes the line's end with it
    kValue,   // a line with the key and the value is added or removed
    kMoves,   // lines are added and removed
    kWhole    // the whole text is replaced
};

struct EditedFile {
    const char* path;
    std::vector<std::string>
        own;  // a line that holds one of these may change; the first is the key
    Change change;
};

struct Setting {
    uint32_t id;
    std::string interface;
    std::string data;
};

// The servers' slots in a setting's data.
inline constexpr size_t kSlots = 3;
inline constexpr size_t kSlotSize = 16;

// Returns the path of the file's edit copy; empty for a file that is written in place.
std::string CopyOf(const EditedFile& file);

// True if the line has no "#", or only one in column one, which switches it off.
bool IsPlainlySwitched(const std::string& line);

// Checks that only own lines changed, each in its permitted way, and none of another interface.
void CheckEdit(const EditedFile& file, const Setting& setting, std::string_view before,
               std::string_view after);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_EDIT_FILES_H_
