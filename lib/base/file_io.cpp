// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_io.cpp - read(2) and write(2) without their interruptions.
#include "lib/base/file_io.h"

#include <cerrno>

#include <unistd.h>

namespace velk {

ssize_t ReadSome(int fd, char* buffer, size_t size) {
    ssize_t count;
    do {
        count = read(fd, buffer, size);
    } while (count == -1 && errno == EINTR);
    return count;
}

bool WriteAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(fd, text.data(), text.size());
        if (count == -1 && errno == EINTR) {
            continue;
        }
        if (count == 0) {
            errno = EIO;  // write(2) sets none
        }
        if (count <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

}  // namespace velk
