// edit_copy.h - the copies in which the library edits files, and how far an edit came.
#ifndef VELKCTL_EDIT_COPY_H_
#define VELKCTL_EDIT_COPY_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "velkctl/command.h"
#include "velkctl/device_files.h"

namespace velkctl {

// How far the edit came, by what its copy and the file hold.
enum class EditState {
    kForeign,     // no copy of this user's or of the file's owner: whatever it holds does not count
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
    std::optional<bool> has_end;
};

// Those that are there. Unless the lock is held, an edit may be under way in them.
std::vector<EditCopy> FindEditCopies();
// Those of them that the command replaces.
std::vector<EditCopy> FindEditCopies(const Command& command);

// Shell lines that do what the library would have done next, and that give the edit up. They take
// the lock, and wait for it.
std::string FinishingOf(const EditCopy& copy);
std::string DiscardingOf(const EditCopy& copy);

}  // namespace velkctl

#endif  // VELKCTL_EDIT_COPY_H_
