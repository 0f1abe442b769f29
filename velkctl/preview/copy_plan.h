// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// copy_plan.h - the files and folders of a private copy, before it is made.
#ifndef VELKCTL_PREVIEW_COPY_PLAN_H_
#define VELKCTL_PREVIEW_COPY_PLAN_H_

#include <string>
#include <vector>

#include <sys/stat.h>

#include "velkctl/files/file_image.h"

namespace velkctl {

// A file that a command may change.
struct PlannedFile {
    FileImage image;     // its contents in the copy
    std::string path;    // without symbolic links
    std::string folder;  // the nearest one that exists
    bool is_writable;    // commands may write to it
};

// A folder in which commands may make or remove files.
struct PlannedFolder {
    std::string path;
    struct stat facts;
    bool is_writable;  // this user may make files in it
};

// Read as this user, before any right is gained by a namespace.
struct CopyPlan {
    std::vector<PlannedFile> files;
    std::vector<PlannedFolder> folders;  // sorted by path
    std::string edit_folder;             // without symbolic links; empty if missing

    const PlannedFile* FindFile(const std::string& path) const;
};

// Returns the paths of the files that commands of the library may change, but for those in the
// folder of edit copies.
std::vector<std::string> ChangeableFiles();

// Returns the path without symbolic links; empty if it does not exist.
std::string RealPath(const std::string& path);

// Plans a copy of the files with these contents.
CopyPlan PlanCopy(const std::vector<FileImage>& images);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_COPY_PLAN_H_
