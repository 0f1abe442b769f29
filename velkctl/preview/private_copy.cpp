// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// private_copy.cpp - replaces the device's files by copies, for one process and its children.
#include "velkctl/preview/private_copy.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "velkctl/preview/mount_points.h"

namespace velkctl {
namespace {

constexpr mode_t kModeBits = 07777;
constexpr mode_t kMountPointMode = 0600;
constexpr mode_t kStoreMode = 0700;
constexpr mode_t kEditFolderMode = 01777;
constexpr mode_t kWritableFile = 0644;
constexpr mode_t kReadOnlyFile = 0444;
constexpr mode_t kNewFolderMode = 0755;
constexpr mode_t kReadOnlyFolder = 0555;
constexpr const char* kTmpfsSize = "size=64m";

// The name of an entry and an open folder of it, which stays reachable below a new mount.
struct Entry {
    int folder;
    std::string name;

    std::string Source() const { return "/proc/self/fd/" + std::to_string(folder) + "/" + name; }
};

std::vector<std::string> NamesIn(int folder) {
    std::vector<std::string> names;
    const std::string path = "/proc/self/fd/" + std::to_string(folder);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(path.c_str()), closedir);
    if (listing == nullptr) {
        return names;
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): another thread has no such listing
    while (const dirent* entry = readdir(listing.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

bool IsInFolder(const CopyPlan& plan, const PlannedFile& file) {
    return velk::FindRow(plan.folders, file.folder, &PlannedFolder::path) != nullptr;
}

// True if the copy of the file is bound to its place.
bool IsBound(const CopyPlan& plan, const PlannedFile& file) {
    return file.image.exists && file.image.error == 0 && !IsInFolder(plan, file);
}

class CopyMaker {
  public:
    CopyMaker(const CopyPlan& plan, bool talks) : plan_(plan), talks_(talks) {}

    CopyFailure Make();

  private:
    void Fail(const std::string& step);
    bool has_failed() const { return failure_.error != 0; }

    void Bind(const std::string& source, const std::string& target);
    void MountTmpfs(const std::string& folder, mode_t mode);
    void WriteFile(const PlannedFile& file, const std::string& path);
    void CopyLink(const Entry& entry, const std::string& path);
    void BindEntry(const Entry& entry, const std::string& path);
    void MirrorFolder(const PlannedFolder& folder);
    void MirrorEntry(const Entry& entry, const std::string& path);
    void MountStore();
    void MirrorFolders();
    void BindFiles();
    void OpenEditFolder();
    void MakeLock();
    void FillEditFolder();
    void KeepSocketFolders();
    void ProtectAllElse();

    const CopyPlan& plan_;
    const bool talks_;
    CopyFailure failure_;
    velk::UniqueFd edit_folder_;
    std::set<std::string> writable_;  // the mount points of the copy
};

void CopyMaker::Fail(const std::string& step) {
    if (!has_failed()) {
        failure_ = {step, errno};
    }
}

void CopyMaker::Bind(const std::string& source, const std::string& target) {
    if (mount(source.c_str(), target.c_str(), "none", MS_BIND | MS_REC, nullptr) == -1) {
        Fail("mount " + target);
    }
}

void CopyMaker::MountTmpfs(const std::string& folder, mode_t mode) {
    const unsigned long flags = MS_NOSUID | MS_NODEV;
    if (mount("velkctl", folder.c_str(), "tmpfs", flags, kTmpfsSize) == -1 ||
        chmod(folder.c_str(), mode) == -1) {
        Fail("mount " + folder);
    }
}

// An ordinary user owns all files of the copy, so their modes express the user's rights.
void CopyMaker::WriteFile(const PlannedFile& file, const std::string& path) {
    if (has_failed()) {
        return;
    }
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const velk::UniqueFd fd(open(path.c_str(), flags, kMountPointMode));
    if (fd.get() == -1 || !velk::WriteAll(fd.get(), file.image.bytes)) {
        Fail("write a copy of " + file.path);
        return;
    }
    const bool is_owned = fchown(fd.get(), file.image.owner, file.image.group) == 0;
    const mode_t rights = file.is_writable ? kWritableFile : kReadOnlyFile;
    (void)fchmod(fd.get(), is_owned && geteuid() == 0 ? file.image.mode : rights);
}

void CopyMaker::CopyLink(const Entry& entry, const std::string& path) {
    char target[PATH_MAX];
    const ssize_t size = readlinkat(entry.folder, entry.name.c_str(), target, sizeof(target) - 1);
    if (size > 0) {
        target[size] = '\0';
        (void)!symlink(target, path.c_str());
    }
}

// An entry that this user cannot reach would be of no use in the copy.
void CopyMaker::BindEntry(const Entry& entry, const std::string& path) {
    struct stat facts {};
    if (has_failed() ||
        fstatat(entry.folder, entry.name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == -1) {
        return;
    }
    if (S_ISLNK(facts.st_mode)) {
        CopyLink(entry, path);
        return;
    }
    const int made = S_ISDIR(facts.st_mode) ? mkdir(path.c_str(), kMountPointMode)
                                            : mknod(path.c_str(), S_IFREG | kMountPointMode, 0);
    if (made == -1) {
        Fail("make " + path);
        return;
    }
    Bind(entry.Source(), path);
}

void CopyMaker::MirrorEntry(const Entry& entry, const std::string& path) {
    const PlannedFile* file = plan_.FindFile(path);
    if (file == nullptr || file->image.error != 0) {
        BindEntry(entry, path);
    }
}

// As with files, the mode of a folder that an ordinary user owns here expresses the user's rights.
void SetOwner(const PlannedFolder& folder) {
    const bool is_owned = chown(folder.path.c_str(), folder.facts.st_uid, folder.facts.st_gid) == 0;
    if (!folder.is_writable && !(is_owned && geteuid() == 0)) {
        (void)chmod(folder.path.c_str(), kReadOnlyFolder);
    }
}

// Makes the folders between a folder and a file.
void MakeFoldersBelow(const std::string& folder, const std::string& file) {
    for (size_t slash = file.find('/', folder.size() + 1); slash != std::string::npos;
         slash = file.find('/', slash + 1)) {
        (void)mkdir(file.substr(0, slash).c_str(), kNewFolderMode);
    }
}

void CopyMaker::MirrorFolder(const PlannedFolder& folder) {
    const velk::UniqueFd original(open(folder.path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const std::vector<std::string> names = NamesIn(original.get());
    MountTmpfs(folder.path, folder.facts.st_mode & kModeBits);
    if (has_failed()) {
        return;
    }
    for (const std::string& name : names) {
        std::string path = folder.path;
        path.append("/").append(name);
        MirrorEntry({original.get(), name}, path);
    }
    for (const PlannedFile& file : plan_.files) {
        if (file.folder == folder.path && file.image.exists && file.image.error == 0) {
            MakeFoldersBelow(folder.path, file.path);
            WriteFile(file, file.path);
        }
    }
    SetOwner(folder);
    writable_.insert(folder.path);
}

// The first tmpfs over the folder of edit copies holds the copies. They stay bound to their places
// after the second one hides it.
void CopyMaker::MountStore() {
    MountTmpfs(plan_.edit_folder, kStoreMode);
}

void CopyMaker::MirrorFolders() {
    for (const PlannedFolder& folder : plan_.folders) {
        MirrorFolder(folder);
    }
}

void CopyMaker::BindFiles() {
    size_t number = 0;
    for (const PlannedFile& file : plan_.files) {
        const bool has_place = access(file.path.c_str(), F_OK) == 0;
        if (!has_place || !IsBound(plan_, file)) {
            continue;
        }
        const std::string source = plan_.edit_folder + "/" + std::to_string(++number);
        WriteFile(file, source);
        Bind(source, file.path);
        if (file.is_writable) {
            writable_.insert(file.path);
        }
    }
}

void CopyMaker::OpenEditFolder() {
    edit_folder_.Reset(open(plan_.edit_folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (edit_folder_.get() == -1) {
        Fail(std::string("open ") + velk::kEditFolder);
    }
}

// True if this user may remove the entry of a folder with a sticky bit.
bool MayRemove(int folder, const std::string& name) {
    struct stat entry {};
    struct stat whole {};
    if (fstatat(folder, name.c_str(), &entry, AT_SYMLINK_NOFOLLOW) == -1 ||
        fstatat(folder, "", &whole, AT_EMPTY_PATH) == -1) {
        return true;
    }
    const uid_t user = geteuid();
    const bool is_free =
        (whole.st_mode & S_ISVTX) == 0 || user == 0 || user == entry.st_uid || user == whole.st_uid;
    return is_free && !S_ISDIR(entry.st_mode);
}

// A lock file that this user cannot open stays in the library's way.
void CopyMaker::MakeLock() {
    const std::string name = std::string(velk::kLockFile).substr(sizeof(velk::kEditFolder));
    const Entry entry{edit_folder_.get(), name};
    const std::string path = plan_.edit_folder + "/" + name;
    struct stat facts {};
    if (fstatat(entry.folder, name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == -1) {
        return;
    }
    const int flags = AT_EACCESS | AT_SYMLINK_NOFOLLOW;
    if (!S_ISREG(facts.st_mode) ||
        faccessat(entry.folder, name.c_str(), R_OK | W_OK, flags) == -1) {
        BindEntry(entry, path);
        return;
    }
    if (mknod(path.c_str(), S_IFREG | kMountPointMode, 0) == -1) {
        Fail("make " + path);
    }
}

// An entry that the library could not remove stays in its way. The others it would replace.
void CopyMaker::FillEditFolder() {
    MountTmpfs(plan_.edit_folder, kEditFolderMode);
    if (has_failed()) {
        return;
    }
    MakeLock();
    std::set<std::string> names{"get_result"};
    for (const PlannedFile& file : plan_.files) {
        names.insert(file.image.path.substr(file.image.path.rfind('/') + 1));
    }
    for (const std::string& name : names) {
        const Entry entry{edit_folder_.get(), name};
        if (!MayRemove(entry.folder, name)) {
            BindEntry(entry, plan_.edit_folder + "/" + name);
        }
    }
    writable_.insert(plan_.edit_folder);
}

void CopyMaker::KeepSocketFolders() {
    for (const char* name : {"/tmp", velk::kSemaphoreFolder}) {
        const std::string folder = talks_ ? RealPath(name) : "";
        if (!folder.empty()) {
            Bind(folder, folder);
            writable_.insert(folder);
        }
    }
}

// Even a tool that does more than it should cannot change another file.
void CopyMaker::ProtectAllElse() {
    for (const std::string& point : MountPoints()) {
        if (!writable_.contains(point) && !MakeReadOnly(point)) {
            Fail("protect " + point);
        }
    }
}

CopyFailure CopyMaker::Make() {
    if (mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == -1) {
        Fail("make mounts private");
        return failure_;
    }
    const std::vector<void (CopyMaker::*)()> steps{
        &CopyMaker::OpenEditFolder, &CopyMaker::KeepSocketFolders, &CopyMaker::MountStore,
        &CopyMaker::MirrorFolders,  &CopyMaker::BindFiles,         &CopyMaker::FillEditFolder,
        &CopyMaker::ProtectAllElse};
    for (const auto step : steps) {
        (this->*step)();
        if (has_failed()) {
            break;
        }
    }
    return failure_;
}

}  // namespace

CopyFailure EnterPrivateCopy(const CopyPlan& plan, bool talks) {
    return CopyMaker(plan, talks).Make();
}

CopyFailure CheckPrivateCopy(const CopyPlan& plan) {
    const std::vector<std::string> points = MountPoints();
    for (const PlannedFile& file : plan.files) {
        if (IsBound(plan, file) && std::ranges::find(points, file.path) == points.end()) {
            return {"keep the copy of " + file.path, ESTALE};
        }
    }
    return {};
}

}  // namespace velkctl
