// result_file.h - the file that every command line with output is redirected into.
#ifndef VELK_BASE_RESULT_FILE_H_
#define VELK_BASE_RESULT_FILE_H_

#include <sys/stat.h>

#include "lib/base/unique_fd.h"

namespace velk {

// One name for all readers. Everybody may write the folder, so what lies there may belong to
// somebody else, or be a link, a FIFO or a folder.
constexpr char kResultFileName[] = "get_result";

// True for a regular file of the caller's own with one name.
bool IsOwnResultFile(const struct stat& facts);

// Sees to it that the shell writes into a regular file of the caller's own with this one name.
// A file of this kind stays as it is; where there is none, a new one is made, so that nobody can
// plant another just before the shell opens it. Anything else is removed. Returns false where that
// is not possible: then no command line must be run.
bool PrepareResultFile();

// Opens the result file for reading, without following a link and without waiting for a writer.
// Returns -1 with errno when that fails, when the file is not the caller's own, or when no shell
// has written into the one that PrepareResultFile() made, which is removed.
UniqueFd OpenResultFile();

}  // namespace velk

#endif  // VELK_BASE_RESULT_FILE_H_
