// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sample_files.h - reads and writes the sample files of a device.
#ifndef SANDBOX_DEVICE_SAMPLE_FILES_H_
#define SANDBOX_DEVICE_SAMPLE_FILES_H_

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace sandbox {

enum class FileKind { kFile, kLink, kFolder, kFifo, kSocket };

struct Ownership {
    uid_t owner;
    gid_t group;
    time_t time;  // time of the last change
};

struct SampleFile {
    std::filesystem::path path;  // on the device
    mode_t mode = 0;
    FileKind kind = FileKind::kFile;
    std::string text;                         // the target if it is a link
    std::optional<Ownership> ownership = {};  // nothing: the user's, now
};

// Reads all files under `rootfs` into memory, as the folder may be hidden later. Returns them
// sorted by path. An empty `rootfs` means no files.
std::vector<SampleFile> ReadSamples(const std::string& rootfs);

// Returns the contents of a file. Throws Failure.
std::string ReadText(const std::filesystem::path& path);

// Returns a file with the mode 0644.
SampleFile MakeSample(const std::filesystem::path& path, const std::string& text);

// Makes the file. A folder may exist. A user who does not exist on the device becomes no owner.
void WriteSample(const SampleFile& file);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_SAMPLE_FILES_H_
