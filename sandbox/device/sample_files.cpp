// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sample_files.cpp - reads and writes the sample files of a device.
#include "sandbox/device/sample_files.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kModeBits = 07777;

// Removes the access of group and others from crontabs. The sample itself is readable by all, as
// any user may start a sandbox.
mode_t ModeOnDevice(const fs::path& path, fs::perms found) {
    const mode_t mode = static_cast<mode_t>(found) & kModeBits;
    return path.parent_path() == fs::path(velk::kCrontab).parent_path() ? mode & kOwnerOnly : mode;
}

SampleFile ReadSample(const fs::directory_entry& entry, const fs::path& rootfs) {
    SampleFile file;
    file.path = "/" / entry.path().lexically_relative(rootfs);
    if (entry.is_symlink()) {
        file.kind = FileKind::kLink;
        file.text = fs::read_symlink(entry.path());
    } else {
        file.text = ReadText(entry.path());
        file.mode = ModeOnDevice(file.path, entry.status().permissions());
    }
    return file;
}

}  // namespace

std::string ReadText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        Fail("cannot read " + path.string(), errno);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<SampleFile> ReadSamples(const std::string& rootfs) {
    std::vector<SampleFile> files;
    if (rootfs.empty()) {
        return files;
    }
    std::error_code error;
    for (fs::recursive_directory_iterator entry(rootfs, error), end; entry != end;
         entry.increment(error)) {
        if (!entry->is_directory() || entry->is_symlink()) {
            files.push_back(ReadSample(*entry, rootfs));
        }
    }
    if (error) {
        Fail("cannot read " + rootfs, error.value());
    }
    std::ranges::sort(files, {}, &SampleFile::path);
    return files;
}

SampleFile MakeSample(const fs::path& path, const std::string& text) {
    constexpr mode_t kMode = 0644;
    return {path, kMode, FileKind::kFile, text};
}

namespace {

void WriteText(const SampleFile& file) {
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    const velk::UniqueFd target(open(file.path.c_str(), flags, file.mode));
    const ssize_t size = static_cast<ssize_t>(file.text.size());
    if (target.get() == -1 || write(target.get(), file.text.data(), file.text.size()) != size ||
        fchmod(target.get(), file.mode) == -1) {
        Fail("cannot make " + file.path.string(), errno);
    }
}

// A FIFO or a socket that no process listens at, or a folder.
void MakeNode(const SampleFile& file) {
    const char* path = file.path.c_str();
    const bool is_folder = file.kind == FileKind::kFolder;
    const mode_t type = file.kind == FileKind::kFifo ? S_IFIFO : S_IFSOCK;
    const int result = is_folder ? mkdir(path, file.mode) : mknod(path, type | file.mode, 0);
    const bool exists = result == -1 && errno == EEXIST && is_folder;
    if ((result == -1 && !exists) || chmod(path, file.mode) == -1) {
        Fail("cannot make " + file.path.string(), errno);
    }
}

// The user namespace may not know the owner.
void SetOwnership(const SampleFile& file) {
    const timespec time{file.ownership->time, 0};
    const timespec times[] = {time, time};
    const char* path = file.path.c_str();
    (void)!lchown(path, file.ownership->owner, file.ownership->group);
    (void)utimensat(AT_FDCWD, path, times, AT_SYMLINK_NOFOLLOW);
}

}  // namespace

void WriteSample(const SampleFile& file) {
    switch (file.kind) {
        case FileKind::kFile:
            WriteText(file);
            break;
        case FileKind::kLink:
            fs::create_symlink(file.text, file.path);
            break;
        default:
            MakeNode(file);
            break;
    }
    if (file.ownership) {
        SetOwnership(file);
    }
}

}  // namespace sandbox
