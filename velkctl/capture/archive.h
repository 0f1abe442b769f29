// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// archive.h - writes a tar archive in memory, in the format ustar.
#ifndef VELKCTL_CAPTURE_ARCHIVE_H_
#define VELKCTL_CAPTURE_ARCHIVE_H_

#include <ctime>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace velkctl {

struct MemberFacts {
    mode_t mode = 0644;  // the permission bits
    uid_t owner = 0;
    gid_t group = 0;
    time_t time = 0;
};

// The longest name of a member, and the longest target of a link.
inline constexpr size_t kLongestMemberName = 99;

// Each function adds one member. The names are relative, and no longer than kLongestMemberName.
class Archive {
  public:
    void AddFile(const std::string& name, const MemberFacts& facts, std::string_view bytes);
    void AddFolder(const std::string& name, const MemberFacts& facts);
    void AddFifo(const std::string& name, const MemberFacts& facts);
    void AddLink(const std::string& name, const MemberFacts& facts, std::string_view target);

    // Returns the whole archive.
    std::string Bytes() const;

  private:
    std::string members_;
};

}  // namespace velkctl

#endif  // VELKCTL_CAPTURE_ARCHIVE_H_
