// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// disk_log.cpp - the changes that a program and its tools make to the disk.
#include "fault/kit/disk_log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "fault/kit/tracer.h"

namespace fault {
namespace {

using Kind = DiskEvent::Kind;

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

FileNumber FileAt(const std::string& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 ? FileNumber(facts.st_dev, facts.st_ino) : FileNumber();
}

// A trial run of velkctl has private copies of the files, which are not on the disk.
bool IsInPrivateCopy(pid_t process) {
    return FileAt("/proc/" + std::to_string(process) + "/ns/mnt") != FileAt("/proc/self/ns/mnt");
}

bool HasSameFacts(const DiskFile& one, const DiskFile& other) {
    return one.mode == other.mode && one.owner == other.owner && one.group == other.group;
}

class Logger {
  public:
    Logger() : disk_(ReadDisk()), in_memory_(ReadVolatile()) {
        log_.before = disk_;
        log_.in_memory.push_back(in_memory_);
    }

    // A sync covers the changes before it. A change that shows after it may be another
    // process's, made since.
    void Watch(const ReturnedCall& call) {
        if (IsInPrivateCopy(call.process)) {
            return;
        }
        if (!call.has_failed) {
            NoteSync(call);
        }
        NoteChanges();
    }

    DiskLog Finish(const TracedRun& run) {
        log_.result = run.result;
        log_.after = disk_;
        return std::move(log_);
    }

  private:
    void NoteSync(const ReturnedCall& call) {
        if (call.number == SYS_sync || call.number == SYS_syncfs) {
            Add({.kind = Kind::kSyncAll});
        }
        if (call.number == SYS_fsync || call.number == SYS_fdatasync) {
            const std::string path = "/proc/" + std::to_string(call.process) + "/fd/" +
                                     std::to_string(static_cast<int>(call.first_argument));
            Add({.kind = Kind::kSync, .file = FileAt(path)});
        }
    }

    void NoteChanges() {
        Disk now = ReadDisk();
        NoteNames(now);
        for (const auto& [number, file] : now.files) {
            NoteFile(number, disk_.files.at(number), file);
        }
        // A file without a name keeps its last bytes: a lost removal shows it again.
        now.files.merge(disk_.files);
        disk_ = std::move(now);
        if (Tree in_memory = ReadVolatile(); in_memory != in_memory_) {
            in_memory_ = std::move(in_memory);
            Add({.kind = Kind::kInMemory});
        }
    }

    void NoteNames(const Disk& now) {
        std::map<std::string, std::map<std::string, std::optional<FileNumber>>> by_folder;
        for (const auto& [path, file] : now.names) {
            const auto old = disk_.names.find(path);
            if (old == disk_.names.end() || old->second != file) {
                by_folder[FolderOf(path)][path] = file;
                NoteNewFile(file, now.files.at(file));
            }
        }
        for (const auto& [path, file] : disk_.names) {
            if (!now.names.contains(path)) {
                by_folder[FolderOf(path)][path] = std::nullopt;
            }
        }
        for (const auto& [folder, names] : by_folder) {
            Add({.kind = Kind::kNames, .file = FileAt(folder), .names = names});
        }
    }

    void NoteNewFile(FileNumber number, DiskFile file) {
        if (!disk_.files.contains(number)) {
            file.bytes.clear();
            disk_.files[number] = file;
            log_.new_files[number] = file;
        }
    }

    void NoteFile(FileNumber number, const DiskFile& old, const DiskFile& now) {
        if (!HasSameFacts(old, now)) {
            Add({.kind = Kind::kMode, .file = number, .facts = now});
        }
        if (old.bytes == now.bytes) {
            return;
        }
        const auto [end, ignored] = std::ranges::mismatch(old.bytes, now.bytes);
        const auto same = static_cast<size_t>(end - old.bytes.begin());
        if (now.bytes.size() < old.bytes.size()) {
            Add({.kind = Kind::kResize, .file = number, .place = now.bytes.size()});
        }
        if (same < now.bytes.size()) {
            Add({.kind = Kind::kWrite,
                 .file = number,
                 .place = same,
                 .bytes = now.bytes.substr(same)});
        }
    }

    void Add(DiskEvent event) {
        log_.events.push_back(std::move(event));
        log_.in_memory.push_back(in_memory_);
    }

    DiskLog log_;
    Disk disk_;
    Tree in_memory_;
};

// Leases fail in this process and all that it starts. The kernel would let the logger wait for the
// process with the lease, and that one is stopped while the logger reads the files.
bool RefuseLeases() {
    constexpr uint32_t kCall = offsetof(seccomp_data, nr);
    constexpr uint32_t kCommand = offsetof(seccomp_data, args) + sizeof(seccomp_data::args[0]);
    std::array<sock_filter, 6> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kCall),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fcntl, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kCommand),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, F_SETLEASE, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{filter.size(), filter.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace

DiskLog LogChanges(const std::function<int()>& work) {
    constexpr int kNoFilter = -1;
    Logger logger;
    const auto run_work = [&] { return RefuseLeases() ? work() : kNoFilter; };
    const TracedRun run =
        RunWatched(run_work, [&](const ReturnedCall& call) { logger.Watch(call); });
    return logger.Finish(run);
}

}  // namespace fault
