// target_guard.cpp - mends a file that was cut while its edit copy was copied over it.
#include "frame/target_guard.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include "frame/file_io.h"
#include "frame/unique_fd.h"

namespace velk {
namespace {

constexpr size_t kPieceSize = 4 * 1024;

bool LookAt(const std::string& path, struct stat& facts) {
    return fstatat(AT_FDCWD, path.c_str(), &facts, 0) == 0;
}

bool IsSameTime(const timespec& one, const timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// The next piece of a file, empty at its end or when it cannot be read.
std::string_view PieceAt(int fd, off_t offset, char (&buffer)[kPieceSize]) {
    const ssize_t count = pread(fd, buffer, sizeof(buffer), offset);
    return {buffer, static_cast<size_t>(std::max<ssize_t>(count, 0))};
}

}  // namespace

TargetGuard::TargetGuard(const std::string& target, int copy) : target_(target), copy_(copy) {
    (void)LookAt(target_, before_);
}

int TargetGuard::Mend() {
    struct stat now {};
    struct stat copy {};
    if (!LookAt(target_, now) || fstat(copy_, &copy) == -1) {
        return 0;  // nothing was put in its place
    }
    const bool is_shorter = now.st_size < copy.st_size;
    if (!is_shorter || IsAsItWas(now) || !IsPieceOfCopy(now.st_size)) {
        return 0;
    }
    const int error = WriteCopyOver();
    has_mended_ = error == 0;
    return error;
}

// The shell's opening alone changes the time.
bool TargetGuard::IsAsItWas(const struct stat& facts) const {
    return facts.st_size == before_.st_size && IsSameTime(facts.st_ctim, before_.st_ctim);
}

bool TargetGuard::IsPieceOfCopy(off_t size) const {
    const UniqueFd file(open(target_.c_str(), O_RDONLY | O_CLOEXEC));
    char file_buffer[kPieceSize];
    char copy_buffer[kPieceSize];
    for (off_t offset = 0; offset < size;) {
        const std::string_view piece = PieceAt(file.get(), offset, file_buffer);
        if (piece.empty() || !PieceAt(copy_, offset, copy_buffer).starts_with(piece)) {
            return false;
        }
        offset += static_cast<off_t>(piece.size());
    }
    return true;
}

// From the front and without emptying the file: a tool that still copies writes the same bytes.
int TargetGuard::WriteCopyOver() const {
    UniqueFd file(open(target_.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.get() == -1) {
        return errno;
    }
    char buffer[kPieceSize];
    off_t offset = 0;
    for (std::string_view piece = PieceAt(copy_, offset, buffer); !piece.empty();
         piece = PieceAt(copy_, offset, buffer)) {
        if (!WriteAll(file.get(), piece)) {
            return errno;
        }
        offset += static_cast<off_t>(piece.size());
    }
    return fsync(file.get()) == 0 && file.Reset() == 0 ? 0 : errno;
}

}  // namespace velk
