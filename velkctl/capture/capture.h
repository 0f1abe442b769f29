// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// capture.h - collects the members of a capture, without secrets.
#ifndef VELKCTL_CAPTURE_CAPTURE_H_
#define VELKCTL_CAPTURE_CAPTURE_H_

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "velkctl/capture/archive.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// A path or an output that belongs to a capture.
struct CaptureItem {
    std::string name;      // the path, or the command
    std::string member{};  // its name in the archive; empty: none
    bool is_missing = false;
    std::string problem{};  // the reason if it could not be read
};

class Capture {
  public:
    explicit Capture(time_t now) : now_(now) {}

    // Adds the file, link, folder or FIFO at a path of the device, without a folder's contents. A
    // link to a file becomes the file, unless `keeps_links`. A file that cannot be read becomes an
    // empty one.
    void AddPath(const std::string& path, bool keeps_links = false);
    // Adds a file that has this text in place of its own.
    void AddPart(const std::string& path, std::string text);

    // Adds a text to the recordings. It comes from this command or path.
    void AddRecording(const std::string& name, std::string text, std::string source);
    // Adds a text to the recordings that has no secrets.
    void AddBlanked(const std::string& name, std::string text);
    void AddItem(CaptureItem item) { items_.push_back(std::move(item)); }

    const std::vector<CaptureItem>& items() const { return items_; }

    // Returns the archive of all members and a manifest with this version. Blanks `secrets` in
    // every text of the device, and all that looks like a secret.
    std::string Finish(const std::string& version, const std::vector<std::string>& secrets) const;

  private:
    struct Member {
        mode_t type;  // S_IFREG, S_IFDIR, S_IFIFO or S_IFLNK
        std::string name;
        MemberFacts facts;
        std::string text;  // the target of a link
        bool is_blanked = false;
    };

    void AddFound(const std::string& path, const struct stat& facts, bool keeps_links);
    void AddFile(const std::string& path, const MemberFacts& facts);
    void AddMember(mode_t type, const std::string& path, const MemberFacts& facts,
                   std::string text = {});
    MemberFacts OwnFacts() const;
    Json Manifest(const std::string& version) const;

    const time_t now_;
    std::vector<Member> members_;
    std::vector<CaptureItem> items_;
};

// {"name": ..., "member": ..., "state": ..., "problem": ...}
Json ItemInJson(const CaptureItem& item);

}  // namespace velkctl

#endif  // VELKCTL_CAPTURE_CAPTURE_H_
