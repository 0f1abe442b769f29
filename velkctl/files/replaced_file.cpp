// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// replaced_file.cpp - writes a file that takes the place of an older one.
#include "velkctl/files/replaced_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"

namespace velkctl {

bool IsReplaceable(const std::string& path) {
    struct stat facts {};
    return lstat(path.c_str(), &facts) == -1 || S_ISREG(facts.st_mode);
}

int ReplaceFile(const std::string& path, std::string_view bytes, mode_t mode) {
    std::string copy = path + ".XXXXXX";
    const velk::UniqueFd fd(mkostemp(copy.data(), O_CLOEXEC));
    if (fd.get() == -1) {
        return errno;
    }
    const bool is_written = velk::WriteAll(fd.get(), bytes) && fchmod(fd.get(), mode) == 0 &&
                            fsync(fd.get()) == 0 && rename(copy.c_str(), path.c_str()) == 0;
    const int error = is_written ? 0 : errno;
    if (!is_written) {
        (void)unlink(copy.c_str());
    }
    return error;
}

}  // namespace velkctl
