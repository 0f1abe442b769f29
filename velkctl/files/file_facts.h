// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_facts.h - age, kind and removal of a file that should not be there.
#ifndef VELKCTL_FILES_FILE_FACTS_H_
#define VELKCTL_FILES_FILE_FACTS_H_

#include <string>

#include <sys/stat.h>

namespace velkctl {

// Returns the time since the file was changed, as FormatDuration() does.
std::string AgeOf(const struct stat& facts);

// Returns "a symbolic link", "a folder".
std::string KindOf(mode_t mode);

// True if this user may remove it. In a sticky folder only the owner may.
bool MayRemove(const std::string& path, const struct stat& facts);

// True if root alone can change the file or put another one in its place: file and folders are
// root's and not writable by others, and none of them is a symbolic link.
bool OnlyRootCanChange(const std::string& path);

// Returns "rm /var/tmp/interfaces".
std::string RemoveCommand(const std::string& path, const struct stat& facts);

}  // namespace velkctl

#endif  // VELKCTL_FILES_FILE_FACTS_H_
