// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// proc_fields.cpp - reads the labelled lines of files in /proc.
#include "sandbox/process/proc_fields.h"

#include <algorithm>
#include <fstream>

namespace sandbox {

std::string ProcField(const std::string& path, const std::string& label) {
    const std::string start = label + ":";
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(start)) {
            const size_t value = line.find_first_not_of(" \t", start.size());
            return line.substr(std::min(value, line.size()));
        }
    }
    return {};
}

}  // namespace sandbox
