// background.h - leaves the caller's terminal.
#ifndef SANDBOX_WLAND_BACKGROUND_H_
#define SANDBOX_WLAND_BACKGROUND_H_

#include <filesystem>
#include <string>

#include "lib/base/unique_fd.h"

namespace wland {

// Continues in a process of its own. The caller's process ends when that one calls
// FinishDetaching() with what is returned here, or fails with it. Throws sandbox::Failure.
velk::UniqueFd Detach();
void FinishDetaching(velk::UniqueFd caller);

// A file with this process's number. It ends with its owner.
class PidFile {
  public:
    // An empty path makes none. Throws sandbox::Failure.
    explicit PidFile(const std::string& path);
    ~PidFile();
    PidFile(const PidFile&) = delete;
    PidFile& operator=(const PidFile&) = delete;

  private:
    std::filesystem::path path_;
};

}  // namespace wland

#endif  // SANDBOX_WLAND_BACKGROUND_H_
