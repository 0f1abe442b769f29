// device_layout.h - what a device consists of.
#ifndef SANDBOX_DEVICE_DEVICE_LAYOUT_H_
#define SANDBOX_DEVICE_DEVICE_LAYOUT_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

#include "sandbox/device/device_tree.h"
#include "sandbox/device/sample_files.h"

namespace sandbox {

using Modes = std::map<std::filesystem::path, mode_t>;

// All paths are resolved, which takes the machine's own links: plan before anything is mounted.
struct Plan {
    Modes places;   // empty at the start, whatever the machine has there
    Modes folders;  // the device's; of the machine's folders of the same names nothing shows
    std::vector<std::filesystem::path>
        files;  // the same for files, whether there is a sample or not
    std::vector<SampleFile> samples;
};

// Plans a device with the files under `rootfs`, if that is not empty, and `more_files`.
Plan MakePlan(const std::string& rootfs, const std::vector<SampleFile>& more_files);

// True when one of the private places hides `path`. The place itself is not hidden: it is private.
bool IsHidden(const std::filesystem::path& path, const Plan& plan);

// Removes what a copy of the machine has at the paths of the device's folders and files. Nothing of
// the machine itself may be mounted within the copy yet.
void RemoveMachineContents(const Plan& plan);

// Puts the private places over the machine's.
void CoverPlaces(const Plan& plan, DeviceTree& tree);

// Makes the device's folders and files.
void MakeContents(const Plan& plan, DeviceTree& tree);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_LAYOUT_H_
