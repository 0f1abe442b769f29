// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_image.cpp - the whole contents of a file, with its mode and owner, to compare and to
// restore.
#include "velkctl/files/file_image.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr mode_t kPermissions = 07777;
constexpr size_t kBlockUnit = 512;  // st_blocks counts such units

// Others have the file open for this time at most, as a rule.
constexpr int kLeaseTries = 50;
constexpr std::chrono::milliseconds kLeasePause{2};

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

int ErrorOf(const TextFile& file) {
    if (file.state == FileState::kText) {
        return 0;
    }
    if (file.state == FileState::kTooLarge) {
        return EFBIG;
    }
    return file.state == FileState::kNotRegular ? EINVAL : file.error;
}

// The bytes in the blocks of the file, which are free while it is written.
size_t BytesInBlocks(const std::string& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 ? static_cast<size_t>(facts.st_blocks) * kBlockUnit : 0;
}

// Fails if the disk has no room for the image beside the blocks of the present file. Not every file
// system can answer.
int CheckRoom(const FileImage& image) {
    const size_t size =
        image.bytes.size() - std::min(image.bytes.size(), BytesInBlocks(image.path));
    const std::string folder = FolderOf(image.path);
    const velk::UniqueFd fd(open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600));
    if (fd.get() == -1 || size == 0) {
        return 0;
    }
    const int error = posix_fallocate(fd.get(), 0, static_cast<off_t>(size));
    return error == ENOSPC || error == EDQUOT ? error : 0;
}

// A new file gets its owner before its bytes, which may be secret.
int AdoptOwner(int fd, const FileImage& image) {
    const bool is_owned = fchown(fd, image.owner, image.group) == 0 || geteuid() != 0;
    return is_owned && fchmod(fd, image.mode) == 0 ? 0 : errno;
}

// Between the two steps the file is empty, then a beginning of the image: a reader of the journal
// recognises both as cut.
int WriteBytes(const velk::UniqueFd& fd, const std::string& bytes) {
    const bool is_written = ftruncate(fd.get(), 0) == 0 && velk::WriteAll(fd.get(), bytes);
    return is_written ? 0 : errno;
}

// While the descriptor is open, the kernel lets a program wait that opens the file. Then it sends a
// signal; the usual one would end this process. Fails while another program has the file open.
void TakeLease(int fd) {
    (void)fcntl(fd, F_SETSIG, SIGURG);
    for (int i = 0; i < kLeaseTries && fcntl(fd, F_SETLEASE, F_WRLCK) == -1; ++i) {
        if (errno != EAGAIN) {
            return;  // not every file system has leases
        }
        std::this_thread::sleep_for(kLeasePause);
    }
}

bool HasBytes(int fd, const std::string& bytes) {
    std::string found(bytes.size() + 1, '\0');
    size_t size = 0;
    ssize_t part = 0;
    do {
        part = velk::ReadSome(fd, found.data() + size, found.size() - size);
        size += part > 0 ? static_cast<size_t>(part) : 0;
    } while (part > 0 && size < found.size());
    return part != -1 && size == bytes.size() && found.starts_with(bytes);
}

// False if an editor has put another file in its place.
bool IsStillAt(int fd, const std::string& path) {
    struct stat open_file {};
    struct stat named {};
    return fstat(fd, &open_file) == 0 && stat(path.c_str(), &named) == 0 &&
           open_file.st_dev == named.st_dev && open_file.st_ino == named.st_ino;
}

bool HasContents(int fd, const FileImage& now) {
    return now.exists && now.error == 0 && HasBytes(fd, now.bytes) && IsStillAt(fd, now.path);
}

int Create(const FileImage& image) {
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const velk::UniqueFd fd(open(image.path.c_str(), flags, 0600));
    if (fd.get() == -1) {
        return errno == EEXIST ? ESTALE : errno;
    }
    const int error = AdoptOwner(fd.get(), image);
    return error != 0 ? error : WriteBytes(fd, image.bytes);
}

int Replace(const FileImage& image, const FileImage& now) {
    const velk::UniqueFd fd(open(image.path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() == -1) {
        return errno == ENOENT ? ESTALE : errno;
    }
    TakeLease(fd.get());
    if (!HasContents(fd.get(), now)) {
        return ESTALE;
    }
    (void)lseek(fd.get(), 0, SEEK_SET);
    const int error = WriteBytes(fd, image.bytes);
    return error != 0 || IsStillAt(fd.get(), image.path) ? error : ESTALE;
}

int Remove(const FileImage& now) {
    const velk::UniqueFd fd(open(now.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() == -1) {
        return errno == ENOENT ? 0 : errno;
    }
    TakeLease(fd.get());
    if (!HasContents(fd.get(), now)) {
        return ESTALE;
    }
    return unlink(now.path.c_str()) == 0 ? 0 : errno;
}

int Flush(const std::string& path, int flags) {
    const velk::UniqueFd fd(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | flags));
    if (fd.get() == -1) {
        return errno == ENOENT ? 0 : errno;
    }
    return fsync(fd.get()) == 0 || errno == EINVAL ? 0 : errno;
}

}  // namespace

FileImage ReadFileImage(const std::string& path) {
    TextFile file = ReadTextFile(path);
    FileImage image{path};
    if (file.state == FileState::kMissing) {
        return image;
    }
    struct stat facts {};
    const int fact_error = stat(path.c_str(), &facts) == 0 ? 0 : errno;
    image.exists = true;
    image.error = fact_error == 0 ? ErrorOf(file) : fact_error;
    image.bytes = std::move(file.bytes);
    image.mode = facts.st_mode & kPermissions;
    image.owner = facts.st_uid;
    image.group = facts.st_gid;
    return image;
}

bool MayWrite(const FileImage& now) {
    return !now.exists || faccessat(AT_FDCWD, now.path.c_str(), W_OK, AT_EACCESS) == 0;
}

int WriteFileImage(const FileImage& image, const FileImage& now) {
    if (!image.exists) {
        return Remove(now);
    }
    if (const int error = CheckRoom(image); error != 0) {
        return error;
    }
    return now.exists ? Replace(image, now) : Create(image);
}

int RestoreOwner(const FileImage& image) {
    const velk::UniqueFd fd(open(image.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return fd.get() == -1 ? errno : AdoptOwner(fd.get(), image);
}

int FlushFile(const std::string& path) {
    const int error = Flush(path, 0);
    return error != 0 ? error : Flush(FolderOf(path), O_DIRECTORY);
}

}  // namespace velkctl
