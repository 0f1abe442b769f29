// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_files.h - entries of the journal on the device.
#ifndef TESTS_FUZZ_KIT_JOURNAL_FILES_H_
#define TESTS_FUZZ_KIT_JOURNAL_FILES_H_

#include <string>
#include <string_view>

namespace fuzz {

// True for a file that a set or the library changes: the journal keeps no other.
bool IsJournalled(std::string_view path);

// Makes the file of the entry with this number. Its folder belongs to the caller.
void PlaceEntry(int number, std::string_view bytes);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_JOURNAL_FILES_H_
