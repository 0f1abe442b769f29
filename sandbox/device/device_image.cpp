// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_image.cpp - a device in a file: a capture, or a tar archive of a root folder.
#include "sandbox/device/device_image.h"

#include <filesystem>
#include <map>
#include <string_view>
#include <utility>

#include <sys/stat.h>

#include "sandbox/device/device_layout.h"
#include "sandbox/device/tar_reader.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kManifest = "capture.json";
constexpr std::string_view kRoot = "root/";
constexpr std::string_view kState = "recordings/device.txt";
constexpr std::string_view kWirelessAnswers = "recordings/wireless.bin";
constexpr size_t kMostFiles = 1000;

bool Exists(const fs::path& path) {
    struct stat facts {};
    return lstat(path.c_str(), &facts) == 0;
}

// A ".." after a name leads to another folder if the name is a link.
bool GoesBack(const fs::path& target) {
    bool has_name = false;
    for (const fs::path& part : target) {
        if (part == ".." && has_name) {
            return true;
        }
        has_name = has_name || part != "..";
    }
    return false;
}

// True for a link to a file that other programs of this machine use.
bool LeavesDevice(const fs::path& path, const fs::path& target) {
    const fs::path end = (path.parent_path() / target).lexically_normal();
    return GoesBack(target) || (!IsDevicePath(end) && Exists(end));
}

class ImageReader {
  public:
    explicit ImageReader(const std::string& file) : name_(file), tar_(file) {}

    DeviceImage Read() {
        while (const std::optional<TarMember> member = tar_.Next()) {
            Take(*member);
        }
        if (files_.empty()) {
            throw Failure(name_ + " has no file of the device",
                          "give a capture, or pack a root folder with: tar -C FOLDER -cf FILE .");
        }
        for (auto& [path, file] : files_) {
            CheckFolders(path);
            image_.files.push_back(std::move(file));
        }
        return std::move(image_);
    }

  private:
    [[noreturn]] void Refuse(const fs::path& path, const std::string& problem) const {
        throw Failure(name_ + ": " + path.string() + " " + problem);
    }

    void Take(const TarMember& member) {
        is_capture_ = is_capture_ || member.path == kManifest;
        if (is_capture_ && member.path == kState) {
            image_.state = ParseState(tar_.Contents(member));
        } else if (is_capture_ && member.path == kWirelessAnswers) {
            image_.wireless_record = tar_.Contents(member);
        } else if (!is_capture_) {
            TakeFile("/" + member.path, member);
        } else if (member.path.starts_with(kRoot)) {
            TakeFile("/" + member.path.substr(kRoot.size()), member);
        }
    }

    void TakeFile(const fs::path& given, const TarMember& member) {
        const fs::path path = given.lexically_normal();
        if (!IsDevicePath(path)) {
            return;
        }
        SampleFile file = FileOf(path, member);
        if (file.kind == FileKind::kLink && LeavesDevice(path, file.text)) {
            Refuse(path, "is a link to a file of this machine");
        }
        files_[path] = std::move(file);
        if (files_.size() > kMostFiles) {
            throw Failure(name_ + " has more than " + std::to_string(kMostFiles) +
                          " files of the device");
        }
    }

    SampleFile FileOf(const fs::path& path, const TarMember& member) const {
        SampleFile file;
        file.path = path;
        file.mode = member.mode;
        file.ownership = Ownership{member.owner, member.group, member.time};
        switch (member.type) {
            case '0':
                file.text = tar_.Contents(member);
                break;
            case '2':
                file.kind = FileKind::kLink;
                file.text = member.target;
                break;
            case '5':
                file.kind = FileKind::kFolder;
                break;
            case '6':
                file.kind = FileKind::kFifo;
                break;
            default:
                Refuse(path, "is no file, folder, link or FIFO");
        }
        return file;
    }

    // The files below a link would be written to its target.
    void CheckFolders(const fs::path& path) const {
        for (fs::path folder = path.parent_path(); folder.has_relative_path();
             folder = folder.parent_path()) {
            const auto found = files_.find(folder);
            if (found != files_.end() && found->second.kind != FileKind::kFolder) {
                Refuse(path, "is below a member that is no folder");
            }
        }
    }

    const std::string name_;
    TarReader tar_;
    bool is_capture_ = false;
    std::map<fs::path, SampleFile> files_;
    DeviceImage image_;
};

}  // namespace

DeviceImage ReadDeviceImage(const std::string& file) {
    return ImageReader(file).Read();
}

}  // namespace sandbox
