// device_files.h - the files that the library works with, and how it changes them.
#ifndef VELKCTL_FILES_DEVICE_FILES_H_
#define VELKCTL_FILES_DEVICE_FILES_H_

#include <cstdint>
#include <span>
#include <string_view>

namespace velkctl {

enum class Change {
    kNever,
    kByEdit,  // as the calling user, through an edit copy
    kWhole,   // as the calling user; it is made when missing
    kBySudo,
};

struct DeviceFile {
    const char* path;
    Change change;
    std::string_view subject;              // the settings that change it, as people are told
    std::span<const uint32_t> holds;       // those that are held in it alone
    std::span<const uint32_t> changed_by;  // those whose set changes it
};

std::span<const DeviceFile> DeviceFiles();

}  // namespace velkctl

#endif  // VELKCTL_FILES_DEVICE_FILES_H_
