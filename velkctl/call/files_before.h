// files_before.h - what the files that a set changes held before it.
#ifndef VELKCTL_CALL_FILES_BEFORE_H_
#define VELKCTL_CALL_FILES_BEFORE_H_

#include <string>
#include <vector>

#include "velkctl/files/text_file.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {

// Reads the files of a setting, so that a set that loses their contents can be told from one that
// changes nothing. The library cannot always tell: the tool that copies an edit in place may fail
// after the shell has emptied the file.
class FilesBefore {
  public:
    explicit FilesBefore(const Setting& setting);

    // "/etc/network/interfaces is empty since this set, and ...", of each file that has lost its
    // text; empty if none has.
    std::string Losses() const;

  private:
    struct FileBefore {
        const DeviceFile* file;
        TextFile text;
    };
    std::vector<FileBefore> files_;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_FILES_BEFORE_H_
