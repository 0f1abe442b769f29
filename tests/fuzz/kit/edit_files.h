// edit_files.h - the files that sets edit: whose lines are whose, and how a set may change them.
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
    kBlock,   // so do all lines of the interface's block: they are on when it uses DHCP
    kMethod,  // the interface's header lines get another method
    kOption,  // the option comes into a request, or goes
    kServer,  // the server is replaced; one that ends its line takes the line's end with it
    kValue,   // a line with the key and the value comes or goes
    kMoves,   // lines come and go
    kWhole    // nothing stays of what was there
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

// Where the file is edited, in a copy; empty for one that is written in place.
std::string CopyOf(const EditedFile& file);

// A "#" in column one switches a line off, and there is no other in it.
bool IsPlainlySwitched(const std::string& line);

// Checks that own lines alone changed, each in its way, and none that is another interface's.
void CheckEdit(const EditedFile& file, const Setting& setting, std::string_view before,
               std::string_view after);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_EDIT_FILES_H_
