// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shared_call.cpp - the system calls by which callers meet.
#include "schedules/kit/shared_call.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string_view>

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/un.h>

namespace schedules {
namespace {

// ---- Paths -------------------------------------------------------------------------------------

// The places that the library, velkctl, their tools and the wireless daemon share.
constexpr std::array<std::string_view, 11> kSharedPlaces{
    "/etc/network/",
    "/etc/dhclient",
    "/etc/resolv.dnsmasq.conf",
    "/sbin/dhclient-script",
    "/var/libvelk",
    "/usr/local/share/etc/snmp/",
    "/var/cron/",
    "/var/tmp",
    "/tmp/WlanApl",
    "/tmp/oldIPAddress",
    "/dev/shm/sem.Wlan",  // not the names, made by chance, that it has before
};

bool IsShared(const std::string& path) {
    return std::ranges::any_of(kSharedPlaces,
                               [&](std::string_view place) { return path.starts_with(place); });
}

size_t ReadMemory(pid_t process, uint64_t address, char* out, size_t size) {
    iovec local{out, size};
    iovec remote{reinterpret_cast<void*>(address), size};
    const ssize_t count = process_vm_readv(process, &local, 1, &remote, 1, 0);
    return count == -1 ? 0 : static_cast<size_t>(count);
}

// Reads page by page: the next one may not exist.
std::string ReadText(pid_t process, uint64_t address) {
    constexpr size_t kPage = 4096;
    std::string text;
    for (;;) {
        char piece[kPage];
        const size_t size = ReadMemory(process, address, piece, kPage - address % kPage);
        const char* const end = std::find(piece, piece + size, '\0');
        text.append(static_cast<const char*>(piece), end);
        if (size == 0 || end != piece + size) {
            return text;
        }
        address += size;
    }
}

std::string LinkOf(pid_t process, const std::string& name) {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/" + name, ignored);
}

// Returns an empty text for a file without a name: the kernel calls it by a number, which differs
// from run to run.
std::string PathOf(pid_t process, uint64_t descriptor) {
    std::string path = LinkOf(process, "fd/" + std::to_string(static_cast<int>(descriptor)));
    return path.find("/#") == std::string::npos ? path : "";
}

std::string PathAt(pid_t process, uint64_t folder, uint64_t address) {
    std::string path = ReadText(process, address);
    if (path.empty() && static_cast<int>(folder) != AT_FDCWD) {
        return PathOf(process, folder);
    }
    if (path.starts_with('/')) {
        return path;
    }
    const std::string base =
        static_cast<int>(folder) == AT_FDCWD ? LinkOf(process, "cwd") : PathOf(process, folder);
    return base + "/" + path;
}

// velkctl tries changes on a private copy of the device.
bool IsInOwnNamespace(pid_t process) {
    static const std::string ours = std::filesystem::read_symlink("/proc/self/ns/mnt");
    return LinkOf(process, "ns/mnt") != ours;
}

// ---- Calls -------------------------------------------------------------------------------------

enum class Access { kReads, kWrites, kChangesName };

// The arguments with the subject of a call: a descriptor, a path, or a path below a folder.
struct Row {
    long number;
    const char* name;
    Access access;
    int descriptor = -1;
    int path = -1;
    int folder = -1;
};

constexpr Row OfDescriptor(long number, const char* name, Access access, int argument = 0) {
    return {number, name, access, argument};
}

constexpr Row OfPath(long number, const char* name, Access access, int argument) {
    return {number, name, access, -1, argument};
}

constexpr Row OfPathAt(long number, const char* name, Access access, int argument) {
    return {number, name, access, -1, argument, argument - 1};
}

constexpr std::array kRows{
    OfDescriptor(SYS_read, "read", Access::kReads),
    OfDescriptor(SYS_pread64, "read", Access::kReads),
    OfDescriptor(SYS_readv, "read", Access::kReads),
    OfDescriptor(SYS_getdents64, "list", Access::kReads),
    OfDescriptor(SYS_fstat, "stat", Access::kReads),
    OfPathAt(SYS_newfstatat, "stat", Access::kReads, 1),
    OfPathAt(SYS_statx, "stat", Access::kReads, 1),
    OfPathAt(SYS_faccessat, "access", Access::kReads, 1),
    OfPathAt(SYS_faccessat2, "access", Access::kReads, 1),
    OfPathAt(SYS_readlinkat, "readlink", Access::kReads, 1),
    OfDescriptor(SYS_write, "write", Access::kWrites),
    OfDescriptor(SYS_pwrite64, "write", Access::kWrites),
    OfDescriptor(SYS_writev, "write", Access::kWrites),
    OfDescriptor(SYS_sendfile, "write", Access::kWrites),
    OfDescriptor(SYS_splice, "write", Access::kWrites, 2),
    OfDescriptor(SYS_copy_file_range, "write", Access::kWrites, 2),
    OfDescriptor(SYS_fallocate, "fallocate", Access::kWrites),
    OfDescriptor(SYS_ftruncate, "truncate", Access::kWrites),
    OfDescriptor(SYS_fchmod, "chmod", Access::kWrites),
    OfDescriptor(SYS_fchown, "chown", Access::kWrites),
    OfPathAt(SYS_fchmodat, "chmod", Access::kWrites, 1),
    OfPathAt(SYS_mkdirat, "mkdir", Access::kChangesName, 1),
    OfPathAt(SYS_unlinkat, "unlink", Access::kChangesName, 1),
    OfPathAt(SYS_renameat, "rename", Access::kChangesName, 3),
    OfPathAt(SYS_renameat2, "rename", Access::kChangesName, 3),
    OfPathAt(SYS_symlinkat, "symlink", Access::kChangesName, 2),
    OfPathAt(SYS_linkat, "link", Access::kChangesName, 3),
#ifdef SYS_arch_prctl
    OfPath(SYS_stat, "stat", Access::kReads, 0),
    OfPath(SYS_lstat, "stat", Access::kReads, 0),
    OfPath(SYS_access, "access", Access::kReads, 0),
    OfPath(SYS_readlink, "readlink", Access::kReads, 0),
    OfPath(SYS_chmod, "chmod", Access::kWrites, 0),
    OfPath(SYS_mkdir, "mkdir", Access::kChangesName, 0),
    OfPath(SYS_rmdir, "rmdir", Access::kChangesName, 0),
    OfPath(SYS_unlink, "unlink", Access::kChangesName, 0),
    OfPath(SYS_rename, "rename", Access::kChangesName, 1),
    OfPath(SYS_symlink, "symlink", Access::kChangesName, 1),
    OfPath(SYS_link, "link", Access::kChangesName, 1),
#endif
};

// Calls with rules of their own.
constexpr std::array kOtherCalls{
    SYS_openat, SYS_flock,    SYS_fcntl,     SYS_close,           SYS_futex,
    SYS_bind,   SYS_connect,  SYS_sendto,    SYS_recvfrom,        SYS_wait4,
    SYS_ppoll,  SYS_pselect6, SYS_nanosleep, SYS_clock_nanosleep, SYS_setsid,
    SYS_kill,
#ifdef SYS_arch_prctl
    SYS_open,   SYS_poll,     SYS_select,
#endif
};

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

SharedCall OpenOf(const std::string& path, uint64_t flags) {
    if (!IsShared(path)) {
        return {};
    }
    const bool creates = (flags & O_CREAT) != 0;
    SharedCall call{"open " + path, {{path, creates || (flags & O_TRUNC) != 0}}};
    if (creates) {
        call.touches.push_back({FolderOf(path), true});
    }
    return call;
}

SharedCall LockOf(const char* name, const std::string& path) {
    if (!IsShared(path)) {
        return {};
    }
    return {std::string(name) + " " + path, {{path + " (lock)", true}}};
}

SharedCall FcntlOf(pid_t process, const Entry& entry) {
    const auto command = static_cast<int>(entry.arguments[1]);
    const bool locks = command == F_OFD_SETLK || command == F_OFD_GETLK || command == F_OFD_SETLKW;
    return locks ? LockOf("fcntl", PathOf(process, entry.arguments[0])) : SharedCall{};
}

SharedCall FutexOf(const Entry& entry) {
    if ((entry.arguments[1] & FUTEX_PRIVATE_FLAG) != 0) {
        return {};
    }
    return {"futex", {{"semaphore", true}}};
}

// The socket at a path, also of the system's log, which is no object of the device.
SharedCall SocketAt(const char* name, pid_t process, uint64_t address, uint64_t length) {
    sockaddr_un found{};
    if (length < sizeof(sa_family_t) || length > sizeof(found) ||
        ReadMemory(process, address, reinterpret_cast<char*>(&found), length) != length ||
        found.sun_family != AF_UNIX || !IsShared(found.sun_path)) {
        return {};
    }
    const std::string path = found.sun_path;
    return {std::string(name) + " " + path, {{path, true}}};
}

// The queues of the daemon and of its callers count as one object.
SharedCall DatagramOf(const char* name, pid_t process, const Entry& entry) {
    const bool is_socket = PathOf(process, entry.arguments[0]).starts_with("socket:");
    return is_socket ? SharedCall{name, {{"datagrams", true}}} : SharedCall{};
}

SharedCall CallOf(const Row& row, pid_t process, const Entry& entry) {
    std::string path;
    if (row.descriptor != -1) {
        path = PathOf(process, entry.arguments[row.descriptor]);
    } else {
        const uint64_t folder =
            row.folder == -1 ? static_cast<uint64_t>(AT_FDCWD) : entry.arguments[row.folder];
        path = PathAt(process, folder, entry.arguments[row.path]);
    }
    if (!IsShared(path)) {
        return {};
    }
    SharedCall call{std::string(row.name) + " " + path, {{path, row.access != Access::kReads}}};
    if (row.access == Access::kChangesName) {
        call.touches.push_back({FolderOf(path), true});
    }
    return call;
}

SharedCall CallAt(pid_t process, const Entry& entry) {
    const uint64_t* const arguments = entry.arguments;
    switch (entry.number) {
        case SYS_openat:
            return OpenOf(PathAt(process, arguments[0], arguments[1]), arguments[2]);
#ifdef SYS_arch_prctl
        case SYS_open:
            return OpenOf(PathAt(process, static_cast<uint64_t>(AT_FDCWD), arguments[0]),
                          arguments[1]);
#endif
        case SYS_flock:
            return LockOf("flock", PathOf(process, arguments[0]));
        case SYS_close:
            return LockOf("close", PathOf(process, arguments[0]));
        case SYS_fcntl:
            return FcntlOf(process, entry);
        case SYS_futex:
            return FutexOf(entry);
        case SYS_bind:
        case SYS_connect:
            return SocketAt(entry.number == SYS_bind ? "bind" : "connect", process, arguments[1],
                            arguments[2]);
        case SYS_sendto:
            return DatagramOf("send", process, entry);
        case SYS_recvfrom:
            return DatagramOf("receive", process, entry);
        default: {
            const auto row = std::ranges::find(kRows, entry.number, &Row::number);
            return row == kRows.end() ? SharedCall{} : CallOf(*row, process, entry);
        }
    }
}

}  // namespace

SharedCall ReadSharedCall(pid_t process, const Entry& entry) {
    SharedCall call = CallAt(process, entry);
    if (!call.touches.empty() && IsInOwnNamespace(process)) {
        return {};
    }
    return call;
}

const std::vector<long>& WatchedCalls() {
    static const std::vector<long> calls = [] {
        std::vector<long> found(kOtherCalls.begin(), kOtherCalls.end());
        for (const Row& row : kRows) {
            found.push_back(row.number);
        }
        return found;
    }();
    return calls;
}

bool IsSleep(long call) {
    return call == SYS_nanosleep || call == SYS_clock_nanosleep;
}

bool MayWake(const Entry& entry) {
    if (entry.number == SYS_openat) {
        return (entry.arguments[2] & (O_CREAT | O_TRUNC)) != 0;
    }
    const auto row = std::ranges::find(kRows, entry.number, &Row::number);
    return row == kRows.end() || row->access != Access::kReads;
}

bool ConcernsNobody(pid_t process, const Entry& entry) {
    if (entry.number == SYS_close) {
        return PathOf(process, entry.arguments[0]).starts_with('/');
    }
    return !MayWake(entry) && !MayWait(process, entry);
}

bool MayWait(pid_t process, const Entry& entry) {
    switch (entry.number) {
        case SYS_read:
            return !PathOf(process, entry.arguments[0]).starts_with('/');
        case SYS_flock:
        case SYS_fcntl:
        case SYS_futex:
        case SYS_recvfrom:
        case SYS_wait4:
        case SYS_ppoll:
        case SYS_pselect6:
#ifdef SYS_arch_prctl
        case SYS_poll:
        case SYS_select:
#endif
            return true;
        default:
            return false;
    }
}

long ResultOfTimeout(const Entry& entry) {
    switch (entry.number) {
        case SYS_futex:
            return entry.arguments[3] == 0 ? 1 : -ETIMEDOUT;
        case SYS_ppoll:
            return entry.arguments[2] == 0 ? 1 : 0;
        case SYS_pselect6:
            return entry.arguments[4] == 0 ? 1 : 0;
#ifdef SYS_arch_prctl
        case SYS_poll:
            return static_cast<int>(entry.arguments[2]) < 0 ? 1 : 0;
        case SYS_select:
            return entry.arguments[4] == 0 ? 1 : 0;
#endif
        default:
            return 1;
    }
}

}  // namespace schedules
