// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// result_file.h - the file that every command line with output is redirected into.
#ifndef VELK_BASE_RESULT_FILE_H_
#define VELK_BASE_RESULT_FILE_H_

#include <sys/stat.h>

#include "lib/base/unique_fd.h"

namespace velk {

// All readers use this one name. All users may write to the folder, so the file may belong to
// another user, or be a link, a FIFO or a folder.
constexpr char kResultFileName[] = "get_result";

// Returns true for a regular file of the caller's own with one name.
bool IsOwnResultFile(const struct stat& facts);

// Ensures that the shell writes into a regular file of the caller's own with this one name. Such a
// file stays as it is. If there is none, a new one is created, so that no user can plant another
// before the shell opens it. Anything else is removed. Returns false if that is not possible: then
// no command line may be run.
bool PrepareResultFile();

// Opens the result file for reading, without following a link and without waiting for a writer.
// Returns -1 with errno on failure, or if the file is not the caller's own. Returns -1 too if no
// shell has written into the file that PrepareResultFile() created, and removes that file.
UniqueFd OpenResultFile();

}  // namespace velk

#endif  // VELK_BASE_RESULT_FILE_H_
