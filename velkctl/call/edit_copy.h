// edit_copy.h - the copies in which the library edits files, and how far an edit came.
#ifndef VELKCTL_CALL_EDIT_COPY_H_
#define VELKCTL_CALL_EDIT_COPY_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "velkctl/call/command.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {

// How far the edit came, by what its copy and the file hold.
enum class EditState {
    kForeign,     // not one that the library made: its contents do not count
    kUnproven,    // the library may have made it in a host with two users; the file has nothing, or
                  // the front of it alone
    kCut,         // the file has nothing, or the front of the copy alone: it seems cut while copied
    kPart,        // the copy may be a part of what was to be written
    kInPlace,     // the file holds the same
    kDiffers,     // the copy seems whole, and was not copied
    kUncompared,  // one of them cannot be read, or is too large to be
};

// What lies in an edit copy's place.
struct EditCopy {
    const DeviceFile* file;  // that is edited in it
    std::string path;
    struct stat facts;  // as lstat(2) tells them
    EditState state;
    // Its last line ends, as that of every whole copy does; nothing when it cannot be read.
    std::optional<bool> has_end{};
    std::optional<Lines> new_lines{};  // in the copy and not in the file, blank ones left out;
                                       // nothing if not compared
};

// Those that are there. Unless the lock is held, an edit may be under way in them.
std::vector<EditCopy> FindEditCopies();
// Those of them that the command replaces.
std::vector<EditCopy> FindEditCopies(const Command& command);

// "; the copy would add 'timeout 10;' and 3 more lines", with a few of those the file lacks. Empty
// if they were not compared.
std::string AdditionsOf(const EditCopy& copy);

// How to finish the edit, in words. No line to paste: anybody may have had the file put there, and
// nothing but its lines tells whether it is right.
std::string FinishingOf(const EditCopy& copy);

// A shell line that removes the copy. It takes the lock, and waits for it.
std::string DiscardingOf(const EditCopy& copy);

}  // namespace velkctl

#endif  // VELKCTL_CALL_EDIT_COPY_H_
