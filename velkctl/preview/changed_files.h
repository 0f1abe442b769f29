// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changed_files.h - the differences of files before and after a call, as text or JSON.
#ifndef VELKCTL_PREVIEW_CHANGED_FILES_H_
#define VELKCTL_PREVIEW_CHANGED_FILES_H_

#include <string>
#include <vector>

#include "velkctl/files/file_image.h"
#include "velkctl/report/report.h"

namespace velkctl {

struct ChangedFile {
    std::string path;
    std::string change;             // "changed", "made", "removed"
    std::vector<std::string> diff;  // its lines, with masked secrets
};

// Returns the files with different contents. Both lists have the same files in the same order.
std::vector<ChangedFile> ChangedFiles(const std::vector<FileImage>& before,
                                      const std::vector<FileImage>& after);

std::string TextOf(const std::vector<ChangedFile>& files);

// [{"path": ..., "change": ..., "diff": [...]}]
Json InJson(const std::vector<ChangedFile>& files);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_CHANGED_FILES_H_
