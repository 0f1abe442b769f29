// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// watch.cpp - prints changes of a device's files.
//
// A copy of each file is kept in memory. diff(1) compares the copy and the new text and writes its
// output, all as memory files, so that nothing is written on the watched device.
#include "sandbox/session/watch.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <limits.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/messages.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/terminal_line.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr const char* kWatchedFiles[] = {
    velk::kInterfacesFile, velk::kDhcpConfigFile, velk::kExitHooks,
    velk::kClientScript,   velk::kResolverFile,   velk::kSnmpFile,
    velk::kCrontab,        velk::kSupportList,    velk::kUsbDevices,
};

struct WatchedFolder {
    fs::path path;
    std::vector<std::string> names;  // empty: every file of the folder
};

std::vector<WatchedFolder> WatchedFolders() {
    std::map<fs::path, std::vector<std::string>> files;
    for (const fs::path file : kWatchedFiles) {
        files[file.parent_path()].push_back(file.filename());
    }
    files[fs::path(velk::kIdentityFile).parent_path()] = {};
    std::vector<WatchedFolder> folders;
    folders.reserve(files.size());
    for (const auto& [path, names] : files) {
        folders.push_back({path, names});
    }
    return folders;
}

constexpr uint32_t kChanges = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ONLYDIR;
constexpr size_t kEventsSize = 16 * (sizeof(inotify_event) + NAME_MAX + 1);
constexpr int kFilesDiffer = 1;  // diff's exit status

// Returns an empty text if the file does not exist.
std::string TextOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string TimeOfDay() {
    const time_t now = time(nullptr);
    tm parts;
    char text[16];
    (void)localtime_r(&now, &parts);
    return {text, strftime(text, sizeof(text), "%T", &parts)};
}

std::string PathOf(const velk::UniqueFd& file) {
    return "/dev/fd/" + std::to_string(file.get());
}

// Makes a file in memory. It is inherited by diff(1), which opens it under /dev/fd.
velk::UniqueFd MemoryFile(const std::string& text) {
    velk::UniqueFd file(memfd_create("velk-sandbox", 0));
    const ssize_t size = static_cast<ssize_t>(text.size());
    if (file.get() == -1 || write(file.get(), text.data(), text.size()) != size) {
        Fail("cannot make a file in memory", errno);
    }
    return file;
}

// The files of the device can contain any bytes, so they are escaped.
void PrintLines(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        (void)puts(TerminalLine(line).c_str());
    }
    (void)fflush(stdout);
}

void ShowDifference(const fs::path& path, const std::string& before, const std::string& after) {
    const velk::UniqueFd old_file = MemoryFile(before);
    const velk::UniqueFd new_file = MemoryFile(after);
    const velk::UniqueFd difference = MemoryFile("");
    const std::string name = TerminalLine(path.native());
    const int result = RunProgram({FindProgram("diff"), "-a", "-u", "--label", name, "--label",
                                   name + "\t" + TimeOfDay(), PathOf(old_file), PathOf(new_file)},
                                  difference.get());
    if (result > kFilesDiffer) {
        throw Failure("diff(1) failed");
    }
    PrintLines(TextOf(PathOf(difference)));
}

class Watch {
  public:
    Watch();
    // Waits for changes and prints them.
    void PrintNextChanges();

  private:
    void WatchFolder(const WatchedFolder& folder);
    void PrintChange(const inotify_event& event);

    velk::UniqueFd events_;
    std::map<int, WatchedFolder> folders_;  // by watch descriptor
    std::map<fs::path, std::string> texts_;
};

bool IsWatched(const WatchedFolder& folder, const std::string& name) {
    return folder.names.empty() || std::ranges::find(folder.names, name) != folder.names.end();
}

Watch::Watch() : events_(inotify_init1(IN_CLOEXEC)) {
    for (const WatchedFolder& folder : WatchedFolders()) {
        WatchFolder(folder);
    }
}

void Watch::WatchFolder(const WatchedFolder& folder) {
    const int watch = inotify_add_watch(events_.get(), folder.path.c_str(), kChanges);
    if (watch == -1) {
        Fail("cannot watch " + folder.path.string(), errno);
    }
    folders_[watch] = folder;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.path)) {
        if (entry.is_regular_file() && IsWatched(folder, entry.path().filename())) {
            texts_[entry.path()] = TextOf(entry.path());
        }
    }
}

void Watch::PrintNextChanges() {
    alignas(inotify_event) char buffer[kEventsSize];
    const ssize_t size = read(events_.get(), buffer, sizeof(buffer));
    if (size == -1 && errno != EINTR) {
        Fail("cannot read file events", errno);
    }
    for (ssize_t at = 0; at < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
        PrintChange(*event);
        at += static_cast<ssize_t>(sizeof(*event) + event->len);
    }
}

void Watch::PrintChange(const inotify_event& event) {
    const auto folder = folders_.find(event.wd);
    if (event.len == 0 || folder == folders_.end() || !IsWatched(folder->second, event.name)) {
        return;
    }
    const fs::path path = folder->second.path / event.name;
    std::string after = TextOf(path);
    std::string& before = texts_[path];
    if (before != after) {
        ShowDifference(path, before, after);
        before = std::move(after);
    }
}

}  // namespace

void WatchFiles() {
    Watch watch;
    PrintMessage("watching the files of the device; stop with Ctrl-C");
    for (;;) {
        watch.PrintNextChanges();
    }
}

}  // namespace sandbox
