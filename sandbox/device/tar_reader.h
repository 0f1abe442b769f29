// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tar_reader.h - reads the members of a tar archive, in the format ustar.
#ifndef SANDBOX_DEVICE_TAR_READER_H_
#define SANDBOX_DEVICE_TAR_READER_H_

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct TarMember {
    std::string path;  // without "./" before it and "/" after it; empty for the root folder
    char type = '0';   // '0' file, '1' hard link, '2' link, '5' folder, '6' FIFO; others exist
    mode_t mode = 0;
    uid_t owner = 0;
    gid_t group = 0;
    time_t time = 0;
    std::string target{};  // if it is a link
    off_t begin = 0;       // place of the contents
    off_t size = 0;
};

// All functions throw Failure.
class TarReader {
  public:
    explicit TarReader(const std::string& file);

    // Returns the next member; nothing after the last one. A path that is absolute or has ".." is a
    // failure, and so are more members than any device has files.
    std::optional<TarMember> Next();

    // Returns the contents of a member. It must not be larger than any file that the library reads.
    std::string Contents(const TarMember& member) const;

  private:
    bool ReadHeader(char* header);
    [[noreturn]] void FailAtStart() const;
    [[noreturn]] void FailAt(const std::string& path, const std::string& problem) const;

    const std::string name_;
    velk::UniqueFd fd_;
    off_t at_ = 0;
    size_t count_ = 0;
};

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_TAR_READER_H_
