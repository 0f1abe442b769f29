// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_copy.h - the copies in which the library edits files, and the state of each edit.
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

// The state of an edit, by the contents of its copy and its file.
enum class EditState {
    kForeign,     // another program made the copy: its contents do not count
    kUnproven,    // a host with two users may have made the copy; the file is empty or holds only
                  // the beginning of the copy
    kCut,         // the file is empty or holds only the beginning of the copy: the copying was cut
    kPart,        // the copy may be incomplete
    kInPlace,     // copy and file are equal
    kDiffers,     // the copy seems complete, and was not copied into place
    kUncompared,  // copy or file cannot be read, or is too large
};

// The file at the path of an edit copy.
struct EditCopy {
    const DeviceFile* file;  // the file that is edited in the copy
    std::string path;
    struct stat facts;  // from lstat(2)
    EditState state;
    // True if the last line has a newline, as in every complete copy; nothing if not readable.
    std::optional<bool> has_end{};
    // The lines of the copy that the file lacks, without blank lines; nothing if not compared.
    std::optional<Lines> new_lines{};
};

// Returns the existing edit copies. Without the lock, an edit may be under way in them.
std::vector<EditCopy> FindEditCopies();
// The same for the copies that the command replaces.
std::vector<EditCopy> FindEditCopies(const Command& command);

// "; the copy would add 'timeout 10;' and 3 more lines": some of the lines that the file lacks.
// Empty if they were not compared.
std::string DescribeNewLines(const EditCopy& copy);

// Returns the advice to finish the edit. It is no line to paste: any user may have made the copy,
// so a person must read it first.
std::string AdviceToFinish(const EditCopy& copy);

// Returns a shell line that removes the copy. It waits for the lock and takes it.
std::string DiscardCommand(const EditCopy& copy);

}  // namespace velkctl

#endif  // VELKCTL_CALL_EDIT_COPY_H_
