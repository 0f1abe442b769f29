// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// proc_fields.h - reads the labelled lines of files in /proc.
#ifndef SANDBOX_PROCESS_PROC_FIELDS_H_
#define SANDBOX_PROCESS_PROC_FIELDS_H_

#include <string>

namespace sandbox {

// Returns the text after "LABEL:" and blanks, or an empty text if the file has no such line.
std::string ProcField(const std::string& path, const std::string& label);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_PROC_FIELDS_H_
