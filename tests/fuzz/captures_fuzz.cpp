// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// captures_fuzz.cpp - the archives of capture: the simulated device takes from an archive only the
// members that it names, and none that leads out of the device; velkctl writes no secret.
//
// An input is an archive. One that begins with "text" and a line end has instead the secrets, a
// line each, an empty line, and the text of a captured file.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/archive_members.h"
#include "fuzz/kit/check.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/tool_device.h"
#include "sandbox/device/device_image.h"
#include "sandbox/device/tar_reader.h"
#include "sandbox/process/failure.h"
#include "support/device_test.h"
#include "velkctl/capture/archive.h"
#include "velkctl/capture/blanked_text.h"

namespace fuzz {
namespace {

namespace fs = std::filesystem;
using sandbox::DeviceImage;
using sandbox::FileKind;
using sandbox::SampleFile;

constexpr char kFile[] = "/tmp/capture.tar";
constexpr size_t kMostFiles = 1000;
constexpr size_t kLargestFile = 1024 * 1024;
constexpr mode_t kPermissions = 07777;

std::optional<DeviceImage> ReadImage(std::string_view bytes) {
    testkit::WriteFile(kFile, bytes);
    try {
        return sandbox::ReadDeviceImage(kFile);
    } catch (const sandbox::Failure& failure) {
        Check(std::string_view(failure.what()).size() > 1, "a refusal has a reason");
        return std::nullopt;
    }
}

// True for the folders and files of the device alone: no other is made on this machine.
bool IsOfDevice(const std::string& path) {
    for (const char* folder :
         {"/dev/shm", "/etc/network", "/proc/bus", "/tmp", "/usr/local/share/apps/wlan",
          "/usr/local/share/etc/snmp", "/var/cron/tabs", "/var/lib/dhcp", "/var/libvelk",
          "/var/log/syslog", "/var/tmp"}) {
        if (path == folder || path.starts_with(std::string(folder) + "/")) {
            return true;
        }
    }
    for (const char* file :
         {"/etc/dhclient.conf", "/etc/dhclient-exit-hooks", "/sbin/dhclient-script",
          "/etc/resolv.dnsmasq.conf", "/etc/init.d/snmpd"}) {
        if (path == file) {
            return true;
        }
    }
    return false;
}

bool HasPart(const fs::path& path, std::string_view name) {
    return std::ranges::any_of(path, [name](const fs::path& part) { return part == name; });
}

void CheckPath(const fs::path& path) {
    Check(path.is_absolute() && path == path.lexically_normal() && !HasPart(path, ".."),
          "a path of the device has no way back");
    Check(IsOfDevice(path), "a file is one of the device: " + path.string());
}

// The library follows the link. Its end is on the device, or nowhere.
void CheckLink(const SampleFile& link) {
    const fs::path end = (link.path.parent_path() / link.text).lexically_normal();
    std::error_code missing;
    Check(IsOfDevice(end) || !fs::exists(fs::symlink_status(end, missing)),
          "a link leads to no file of the machine: " + link.text);
}

void CheckFolders(const SampleFile& file, const std::map<fs::path, FileKind>& kinds) {
    for (fs::path folder = file.path.parent_path(); folder.has_relative_path();
         folder = folder.parent_path()) {
        const auto found = kinds.find(folder);
        Check(found == kinds.end() || found->second == FileKind::kFolder,
              "a file is below folders alone");
    }
}

void CheckFiles(const DeviceImage& image) {
    Check(!image.files.empty() && image.files.size() <= kMostFiles, "a device has some files");
    std::map<fs::path, FileKind> kinds;
    for (const SampleFile& file : image.files) {
        Check(kinds.emplace(file.path, file.kind).second, "a file comes once");
    }
    for (const SampleFile& file : image.files) {
        CheckPath(file.path);
        CheckFolders(file, kinds);
        Check((file.mode & ~kPermissions) == 0, "a mode is one of permissions");
        Check(file.text.size() <= kLargestFile, "a file is not too large");
        if (file.kind == FileKind::kLink) {
            CheckLink(file);
        }
    }
}

FileKind KindOf(char type) {
    switch (type) {
        case '2':
            return FileKind::kLink;
        case '5':
            return FileKind::kFolder;
        case '6':
            return FileKind::kFifo;
        default:
            return FileKind::kFile;
    }
}

// The archive's own names, as another reader finds them.
void CheckNames(const DeviceImage& image, std::string_view bytes) {
    const std::optional<ArchiveMembers> members = ReadMembers(bytes);
    if (!members) {
        return;
    }
    for (const SampleFile& file : image.files) {
        const auto member = members->find(file.path.string());
        Check(member != members->end(), "a file is one that the archive names");
        Check(file.kind == KindOf(member->second.type), "a file has the kind of its member");
        if (file.kind == FileKind::kFile) {
            Check(file.text == member->second.text, "a file has the bytes of its member");
        }
    }
}

void Add(const SampleFile& file, velkctl::Archive& archive) {
    const std::string name = file.path.string().substr(1);
    const velkctl::MemberFacts facts{.mode = file.mode, .time = file.ownership->time};
    switch (file.kind) {
        case FileKind::kLink:
            archive.AddLink(name, facts, file.text);
            return;
        case FileKind::kFolder:
            archive.AddFolder(name, facts);
            return;
        case FileKind::kFifo:
            archive.AddFifo(name, facts);
            return;
        default:
            archive.AddFile(name, facts, file.text);
    }
}

bool FitsArchive(const SampleFile& file) {
    return file.path.string().size() <= velkctl::kLongestMemberName &&
           (file.kind != FileKind::kLink || file.text.size() <= velkctl::kLongestMemberName);
}

// An archive that velkctl writes of the same files is read the same.
void CheckRoundTrip(const DeviceImage& image) {
    if (!std::ranges::all_of(image.files, FitsArchive)) {
        return;
    }
    velkctl::Archive archive;
    for (const SampleFile& file : image.files) {
        Add(file, archive);
    }
    const std::optional<DeviceImage> again = ReadImage(archive.Bytes());
    Check(again && std::ranges::equal(image.files, again->files,
                                      [](const SampleFile& a, const SampleFile& b) {
                                          return a.path == b.path && a.mode == b.mode &&
                                                 a.kind == b.kind && a.text == b.text;
                                      }),
          "files are written to an archive and read again the same");
}

void RunReader(std::string_view bytes) {
    if (const std::optional<DeviceImage> image = ReadImage(bytes)) {
        CheckFiles(*image);
        CheckNames(*image, bytes);
        CheckRoundTrip(*image);
    }
}

// The blanks are zeros, which could be a secret by themselves.
bool IsTellingSecret(const std::string& secret) {
    constexpr size_t kTellingLength = 8;
    return secret.size() >= kTellingLength && secret.find('0') == std::string::npos;
}

void CheckBlanks(const std::string& text, const std::string& blanked, const Texts& secrets) {
    Check(blanked.size() == text.size(), "blanks take the place of bytes");
    for (size_t i = 0; i < text.size(); ++i) {
        Check(blanked[i] == text[i] || blanked[i] == '0', "a byte is kept or blanked");
        Check(text[i] != '\n' || blanked[i] == '\n', "lines stay");
    }
    for (const std::string& secret : secrets) {
        Check(!IsTellingSecret(secret) || blanked.find(secret) == std::string::npos,
              "no secret stays");
    }
}

void RunWriter(std::string_view input) {
    Texts secrets;
    for (std::string line = TakeLine(input); !line.empty(); line = TakeLine(input)) {
        secrets.push_back(line);
    }
    const std::string text(input);
    const std::string blanked = velkctl::BlankedText(text, secrets);
    CheckBlanks(text, blanked, secrets);
    velkctl::Archive archive;
    archive.AddFile("root/etc/dhclient.conf", {.mode = 0640}, blanked);
    testkit::WriteFile(kFile, archive.Bytes());
    sandbox::TarReader reader(kFile);
    const auto member = reader.Next();
    Check(member && reader.Contents(*member) == blanked, "a member is read as it was written");
    Check(!reader.Next(), "an archive has no more than its members");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const fuzz::ToolTurn turn;
    if (input.starts_with("text\n")) {
        (void)fuzz::TakeLine(input);
        fuzz::RunWriter(input);
    } else {
        fuzz::RunReader(input);
    }
    return 0;
}
