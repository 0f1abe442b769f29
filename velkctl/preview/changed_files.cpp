// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changed_files.cpp - the differences of files before and after a call, as text or JSON.
#include "velkctl/preview/changed_files.h"

#include <algorithm>

#include "velkctl/preview/masked_line.h"
#include "velkctl/text/unified_diff.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr const char* kNoFile = "/dev/null";

DiffSide SideOf(const FileImage& image) {
    return {image.exists ? image.path : kNoFile, image.bytes};
}

std::string ChangeOf(const FileImage& before, const FileImage& after) {
    if (!before.exists) {
        return "made";
    }
    return after.exists ? "changed" : "removed";
}

ChangedFile ChangedFileOf(const FileImage& before, const FileImage& after) {
    ChangedFile file{before.path, ChangeOf(before, after),
                     UnifiedDiff(SideOf(before), SideOf(after))};
    // The character before each line shows where the line belongs.
    std::ranges::transform(file.diff, file.diff.begin(),
                           [](const std::string& line) { return MaskedLine(line, 1); });
    return file;
}

}  // namespace

std::vector<ChangedFile> ChangedFiles(const std::vector<FileImage>& before,
                                      const std::vector<FileImage>& after) {
    std::vector<ChangedFile> files;
    for (size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        const bool is_read = before[i].error == 0 && after[i].error == 0;
        if (is_read && !before[i].HasContentsOf(after[i])) {
            files.push_back(ChangedFileOf(before[i], after[i]));
        }
    }
    return files;
}

std::string TextOf(const std::vector<ChangedFile>& files) {
    std::string text;
    for (const ChangedFile& file : files) {
        if (file.diff.empty()) {  // an empty file
            text.append(file.path).append(": ").append(file.change).append("\n");
        }
        for (const std::string& line : file.diff) {
            text.append(line).append("\n");
        }
    }
    return text;
}

Json InJson(const std::vector<ChangedFile>& files) {
    Json list = Json::array();
    for (const ChangedFile& file : files) {
        list.push_back({{"path", file.path}, {"change", file.change}, {"diff", file.diff}});
    }
    return list;
}

}  // namespace velkctl
