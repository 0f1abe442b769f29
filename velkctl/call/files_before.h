// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// files_before.h - the contents of a setting's files before a set.
#ifndef VELKCTL_CALL_FILES_BEFORE_H_
#define VELKCTL_CALL_FILES_BEFORE_H_

#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {

// Reads the files of a setting before a set, to find out later if the set lost their text. The
// library cannot always know: the tool that copies an edit into place may fail after the shell has
// emptied the file.
class FilesBefore {
  public:
    explicit FilesBefore(const Setting& setting);
    // Also reads the value of a setting that is held in a file.
    FilesBefore(const Setting& setting, const Device& device);

    // The value before the set, for people; nothing if it was not read.
    const std::optional<std::string>& value() const { return value_; }

    // "/etc/network/interfaces is empty since this set, and ..." for each file that lost its text;
    // empty if none did.
    std::string Losses() const;

  private:
    struct FileBefore {
        const DeviceFile* file;
        TextFile text;
    };
    std::vector<FileBefore> files_;
    std::optional<std::string> value_;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_FILES_BEFORE_H_
