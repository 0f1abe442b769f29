// sample_files.h - the device's files, as a folder of the machine holds them.
#ifndef SANDBOX_DEVICE_SAMPLE_FILES_H_
#define SANDBOX_DEVICE_SAMPLE_FILES_H_

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

namespace sandbox {

struct SampleFile {
    std::filesystem::path path;  // on the device
    mode_t mode = 0;
    bool is_link = false;
    std::string text;  // of a link: its target
};

// Reads all files under `rootfs` into memory, for the folder itself may be out of sight later.
// Sorted by path. An empty name stands for no files.
std::vector<SampleFile> ReadSamples(const std::string& rootfs);

// What a file holds. Throws Failure.
std::string ReadText(const std::filesystem::path& path);

void WriteSample(const SampleFile& file);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_SAMPLE_FILES_H_
