// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// target_guard.cpp - repairs a file that was truncated while its edit copy was copied over it.
#include "lib/base/target_guard.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"

namespace velk {
namespace {

constexpr size_t kPieceSize = 4 * 1024;

// Returns 0 or errno.
int ReadFacts(const std::string& path, struct stat& facts) {
    return fstatat(AT_FDCWD, path.c_str(), &facts, 0) == 0 ? 0 : errno;
}

long long InNanoseconds(const timespec& time) {
    return time.tv_sec * 1000000000LL + time.tv_nsec;
}

// Sets `piece` to the next piece of a file, empty at its end. Returns 0 or errno.
int ReadPiece(int fd, off_t offset, char (&buffer)[kPieceSize], std::string_view& piece) {
    const ssize_t count = pread(fd, buffer, sizeof(buffer), offset);
    piece = {buffer, static_cast<size_t>(std::max<ssize_t>(count, 0))};
    return count == -1 ? errno : 0;
}

// Kernels note the times of files in steps of up to 10 ms.
constexpr std::chrono::milliseconds kTimeStep{20};

}  // namespace

// If the shell empties an empty file, only the file's time changes. The pause ensures that it does.
TargetGuard::TargetGuard(const std::string& target, int copy) : target_(target), copy_(copy) {
    if (ReadFacts(target_, before_) == 0 && before_.st_size == 0) {
        std::this_thread::sleep_for(kTimeStep);
    }
}

int TargetGuard::Repair() {
    struct stat now {};
    struct stat copy {};
    if (const int error = ReadFacts(target_, now); error != 0) {
        return error == ENOENT ? 0 : error;  // another program has removed it
    }
    if (fstat(copy_, &copy) == -1) {
        return errno;
    }
    if (now.st_size >= copy.st_size || IsAsItWas(now)) {
        return 0;
    }
    bool is_piece = false;
    int error = ComparePiece(now.st_size, is_piece);
    if (error == 0 && is_piece) {
        error = WriteCopyOver();
        has_repaired_ = error == 0;
    }
    return error;
}

// Opening by the shell already changes the time.
bool TargetGuard::IsAsItWas(const struct stat& facts) const {
    return facts.st_size == before_.st_size &&
           InNanoseconds(facts.st_ctim) == InNanoseconds(before_.st_ctim);
}

// Sets `is_piece` to true if the file, of this size, begins like the copy. Returns 0 or errno.
int TargetGuard::ComparePiece(off_t size, bool& is_piece) const {
    const UniqueFd file(open(target_.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() == -1) {
        return errno;
    }
    char file_buffer[kPieceSize];
    char copy_buffer[kPieceSize];
    std::string_view piece;
    std::string_view of_copy;
    is_piece = true;
    for (off_t offset = 0; is_piece && offset < size; offset += static_cast<off_t>(piece.size())) {
        int error = ReadPiece(file.get(), offset, file_buffer, piece);
        error = error != 0 ? error : ReadPiece(copy_, offset, copy_buffer, of_copy);
        if (error != 0) {
            return error;
        }
        is_piece = !piece.empty() && of_copy.starts_with(piece);
    }
    return 0;
}

// Does not empty the file first: a tool that still copies writes the same bytes.
int TargetGuard::WriteCopyOver() const {
    UniqueFd file(open(target_.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.get() == -1) {
        return errno;
    }
    char buffer[kPieceSize];
    off_t offset = 0;
    for (std::string_view piece;; offset += static_cast<off_t>(piece.size())) {
        if (const int error = ReadPiece(copy_, offset, buffer, piece); error != 0) {
            return error;
        }
        if (piece.empty()) {
            break;
        }
        if (!WriteAll(file.get(), piece)) {
            return errno;
        }
    }
    return fsync(file.get()) == 0 && file.Reset() == 0 ? 0 : errno;
}

}  // namespace velk
