// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_image.h - the whole contents of a file, with its mode and owner, to compare and to restore.
#ifndef VELKCTL_FILES_FILE_IMAGE_H_
#define VELKCTL_FILES_FILE_IMAGE_H_

#include <string>

#include <sys/types.h>

namespace velkctl {

struct FileImage {
    std::string path;
    bool exists = false;
    std::string bytes{};
    mode_t mode = 0;  // the permission bits
    uid_t owner = 0;
    gid_t group = 0;
    int error = 0;  // errno if the file exists and cannot be read, or is no regular file

    // True if a file with the same bytes exists, or none exists in both.
    bool HasContentsOf(const FileImage& other) const {
        return error == 0 && other.error == 0 && exists == other.exists && bytes == other.bytes;
    }
};

// Reads a file of at most a mebibyte. Never waits, as opening a FIFO would.
FileImage ReadFileImage(const std::string& path);

// True if this user may write the file, or if there is none.
bool MayWrite(const FileImage& now);

// Gives the file the bytes of the image in place: inode, owner and mode stay. Makes a missing file
// with the image's mode and owner. Removes the file if the image has none. First makes sure that
// the disk has room for the bytes that need more blocks than the present file has. Writes only if
// the file has the contents of `now`: ESTALE means that another program has written it meanwhile.
// Where the file system has leases, other programs that open the file wait until it is written.
// Returns 0 or errno; the file is not on disk until FlushFile().
int WriteFileImage(const FileImage& image, const FileImage& now);

// Gives an existing file the image's mode and, if the caller may, its owner. Returns 0 or errno.
int RestoreOwner(const FileImage& image);

// Writes the file and its folder to disk. A missing file is no failure. Returns 0 or errno.
int FlushFile(const std::string& path);

}  // namespace velkctl

#endif  // VELKCTL_FILES_FILE_IMAGE_H_
