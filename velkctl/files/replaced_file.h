// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// replaced_file.h - writes a file that takes the place of an older one.
#ifndef VELKCTL_FILES_REPLACED_FILE_H_
#define VELKCTL_FILES_REPLACED_FILE_H_

#include <string>
#include <string_view>

#include <sys/types.h>

namespace velkctl {

// False for a device such as /dev/null or a link: a rename would replace it.
bool IsReplaceable(const std::string& path);

// Writes the bytes to a new file with this mode, which takes the place of an older one: a reader
// finds the whole old file or the whole new one. Returns 0 or errno.
int ReplaceFile(const std::string& path, std::string_view bytes, mode_t mode);

}  // namespace velkctl

#endif  // VELKCTL_FILES_REPLACED_FILE_H_
