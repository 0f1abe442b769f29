// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless.cpp - compares queries to the wireless daemon, and changes of its configuration, with
// plain exchanges of datagrams.
#include <cstddef>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "bench/request.h"
#include "lib/base/paths.h"
#include "velk/wlan.h"

namespace bench {
namespace {

constexpr size_t kDatagramSize = 240;

struct Names {
    const char* request;
    const char* reply;
    const char* semaphore;  // posted once the reply socket exists; null: it always exists
};
constexpr Names kLibrary = {velk::kRequestSocket, velk::kReplySocket, velk::kSemaphoreName};
constexpr Names kByHand = {"/tmp/to", "/tmp/from", nullptr};
constexpr Names kByHandWithSemaphore = {"/tmp/to-ready", "/tmp/from-ready", "/Ready"};

// Its length excludes the NUL, as in the library.
struct Address {
    explicit Address(const char* path) {
        address.sun_family = AF_UNIX;
        strcpy(address.sun_path, path);
        length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + strlen(path));
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }

    sockaddr_un address{};
    socklen_t length;
};

int BoundSocket(const char* path) {
    const Address address(path);
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    unlink(path);
    if (fd == -1 || bind(fd, address.get(), address.length) == -1) {
        GiveUp(path);
    }
    return fd;
}

void Send(int fd, const char* path, short type) {
    const Address address(path);
    char datagram[kDatagramSize] = {};
    memcpy(datagram, &type, sizeof(type));
    (void)sendto(fd, datagram, sizeof(datagram), 0, address.get(), address.length);
}

// Returns the type of the message.
short Receive(int fd) {
    char datagram[kDatagramSize];
    if (recv(fd, datagram, sizeof(datagram), 0) != static_cast<ssize_t>(sizeof(datagram))) {
        GiveUp("no datagram");
    }
    short type = 0;
    memcpy(&type, datagram, sizeof(type));
    return type;
}

void WaitUntilReady(const char* name) {
    sem_t* ready = sem_open(name, 0);
    if (ready == SEM_FAILED) {
        GiveUp(name);
    }
    sem_wait(ready);
    sem_close(ready);
}

// A minimal daemon: it answers every query with zeros, and drops a configuration to store.
void Serve(int fd, const Names& names) {
    for (;;) {
        if (Receive(fd) == VELK_WLAN_STORE) {
            continue;
        }
        if (names.semaphore != nullptr) {
            WaitUntilReady(names.semaphore);
        }
        Send(fd, names.reply, 0);
    }
}

void StartDaemon(const Names& names) {
    const int fd = BoundSocket(names.request);  // before the first query
    std::thread(Serve, fd, names).detach();
}

void QueryByHand(const Names& names, sem_t* ready = nullptr) {
    const int fd = BoundSocket(names.reply);
    Send(fd, names.request, VELK_WLAN_REPORT);
    if (ready != nullptr) {
        sem_post(ready);
    }
    (void)Receive(fd);
    close(fd);
    unlink(names.reply);
}

void QueryWithSemaphoreByHand() {
    sem_t* ready = sem_open(kByHandWithSemaphore.semaphore, O_CREAT, 0666, 0);
    if (ready == SEM_FAILED) {
        GiveUp(kByHandWithSemaphore.semaphore);
    }
    QueryByHand(kByHandWithSemaphore, ready);
    sem_close(ready);
    sem_unlink(kByHandWithSemaphore.semaphore);
}

// The daemon's whole configuration is queried and sent back with one field changed.
void SetByHand() {
    LockByHand(velk::kLockFile);
    syslog(LOG_NOTICE, "VkLibLock indelible");
    QueryWithSemaphoreByHand();
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    Send(fd, kByHandWithSemaphore.request, VELK_WLAN_STORE);
    close(fd);
}

void StartDaemons() {
    static const bool started = [] {
        StartDaemon(kLibrary);
        StartDaemon(kByHand);
        StartDaemon(kByHandWithSemaphore);
        return true;
    }();
    (void)started;
}

}  // namespace

void AddWireless() {
    const Measured get = Timed(Get(VELK_CMD_SSID, "eth1"), 10);
    Compare({.name = "wireless/round_trip",
             .ours = get,
             .other = Timed([] { QueryByHand(kByHand); }, 10),
             .prepare = StartDaemons});
    Compare({.name = "wireless/round_trip_and_semaphore",
             .ours = get,
             .other = Timed(QueryWithSemaphoreByHand, 10),
             .prepare = StartDaemons});
    Compare({.name = "wireless/set",
             .ours = Timed(Set(VELK_CMD_SSID, "eth1", "bench"), 10),
             .other = Timed(SetByHand, 10),
             .prepare = StartDaemons});
}

}  // namespace bench
