// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_io.h - read(2) and write(2) without their interruptions.
#ifndef VELK_BASE_FILE_IO_H_
#define VELK_BASE_FILE_IO_H_

#include <cstddef>
#include <string_view>

#include <sys/types.h>

namespace velk {

// Reads at most `size` bytes like read(2), but is never interrupted by a signal.
ssize_t ReadSome(int fd, char* buffer, size_t size);

// Writes the whole text. Returns false with errno on failure.
bool WriteAll(int fd, std::string_view text);

}  // namespace velk

#endif  // VELK_BASE_FILE_IO_H_
