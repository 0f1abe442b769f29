// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// usual_files.h - recognises files in the device's usual form.
#ifndef TESTS_FUZZ_KIT_USUAL_FILES_H_
#define TESTS_FUZZ_KIT_USUAL_FILES_H_

#include <string>
#include <vector>

#include "fuzz/kit/edit_files.h"

namespace fuzz {

// True if the files are in the usual form: a get then returns the value that was set, and a second
// set changes nothing. Other files are edited in the same way, but a get may read them differently.
bool IsUsual(const Setting& setting, const std::vector<std::string>& files);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_USUAL_FILES_H_
