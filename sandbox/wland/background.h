// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// background.h - moves the daemon to the background.
#ifndef SANDBOX_WLAND_BACKGROUND_H_
#define SANDBOX_WLAND_BACKGROUND_H_

#include <filesystem>
#include <string>

#include "lib/base/unique_fd.h"

namespace wland {

// Forks and continues in the child. The parent ends when the child calls FinishDetaching() with the
// returned descriptor, or fails if the child ends before. Throws sandbox::Failure.
velk::UniqueFd Detach();
void FinishDetaching(velk::UniqueFd caller);

// A file with the process ID of this process. The destructor removes it.
class PidFile {
  public:
    // An empty path makes no file. Throws sandbox::Failure.
    explicit PidFile(const std::string& path);
    ~PidFile();
    PidFile(const PidFile&) = delete;
    PidFile& operator=(const PidFile&) = delete;

  private:
    std::filesystem::path path_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_BACKGROUND_H_
