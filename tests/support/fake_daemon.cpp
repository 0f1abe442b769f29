// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fake_daemon.cpp - a wireless daemon within the test.
#include "support/fake_daemon.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "support/libc_recorder.h"
#include "support/paths.h"

namespace testkit {
namespace {

constexpr int kReadyLimit = 3;  // in seconds, until the library signals its reply socket

// A daemon's thread holds this lock while it works, but not while it waits. A fork holds it too:
// otherwise the child could inherit locks of the allocator that nobody releases.
std::mutex work_or_fork;
[[maybe_unused]] const int kForksWait = pthread_atfork(
    [] { work_or_fork.lock(); }, [] { work_or_fork.unlock(); }, [] { work_or_fork.unlock(); });

sockaddr_un AddressOf(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, path);
    return address;
}

// Waits until the library signals that its reply socket exists. Returns false after the limit.
bool WaitUntilReady(int seconds, std::unique_lock<std::mutex>& work) {
    sem_t* sem = sem_open(kSemaphoreName, 0, 0U, 0U);
    if (sem == SEM_FAILED) {
        return false;
    }
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += seconds;
    work.unlock();
    const bool posted = sem_timedwait(sem, &deadline) == 0;
    work.lock();
    sem_close(sem);
    return posted;
}

}  // namespace

FakeDaemon::FakeDaemon(Turn turn) : turn_(turn) {
    const Unrecorded unrecorded;
    unlink(kRequestSocket);
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressOf(kRequestSocket);
    // The length excludes the NUL, as in the library, so that the kernel keeps the same name.
    const auto length =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + strlen(kRequestSocket));
    (void)bind(socket_, reinterpret_cast<const sockaddr*>(&address), length);
    if (turn_ == Turn::kInSelect) {
        LibcRecorder::Get().OnCall(Call::kSelect, [this](const Event&) { ServePending(); });
        return;
    }
    thread_ = std::thread([this] { Serve(); });
    serving_.wait(false);  // starting a thread takes locks, too
}

void FakeDaemon::ServePending() {
    const Unrecorded unrecorded;
    while (ServeOne(0)) {
    }
}

void FakeDaemon::Stop() {
    if (socket_ == -1) {
        return;
    }
    const Unrecorded unrecorded;
    if (turn_ == Turn::kInSelect) {
        LibcRecorder::Get().OnCall(Call::kSelect, nullptr);
    } else {
        stopping_ = true;
        thread_.join();
    }
    close(std::exchange(socket_, -1));
    unlink(kRequestSocket);
}

void FakeDaemon::SetConf(const SMsgConf& conf) {
    const std::lock_guard guard(mutex_);
    conf_.conf = conf;
}

void FakeDaemon::SetState(const SMsgState& state) {
    const std::lock_guard guard(mutex_);
    state_.state = state;
}

void FakeDaemon::ReplyWith(const std::string& bytes) {
    const std::lock_guard guard(mutex_);
    raw_reply_ = bytes;
}

void FakeDaemon::StaySilent() {
    const std::lock_guard guard(mutex_);
    is_silent_ = true;
}

SMsgConf FakeDaemon::conf() const {
    const std::lock_guard guard(mutex_);
    return conf_.conf;
}

std::vector<std::string> FakeDaemon::requests() const {
    const std::lock_guard guard(mutex_);
    return requests_;
}

std::vector<int> FakeDaemon::types() const {
    std::vector<int> types;
    for (const std::string& datagram : requests()) {
        int16_t type = 0;
        memcpy(&type, datagram.data(), std::min(datagram.size(), sizeof(type)));
        types.push_back(type);
    }
    return types;
}

// Runs until it is stopped and no request is waiting, so that none is lost.
void FakeDaemon::Serve() {
    const Unrecorded unrecorded;
    serving_ = true;
    serving_.notify_one();
    for (bool is_last = false; !is_last;) {
        is_last = stopping_;  // datagrams sent earlier are still served
        while (ServeOne(5)) {
        }
    }
}

// Takes the next request. Returns false if none comes in time.
bool FakeDaemon::ServeOne(int timeout_ms) {
    pollfd waiting{socket_, POLLIN, 0};
    if (poll(&waiting, 1, timeout_ms) != 1) {
        return false;
    }
    std::unique_lock work(work_or_fork);
    char buffer[1024];
    const ssize_t size = recv(socket_, buffer, sizeof(buffer), 0);
    Handle(std::string(buffer, size > 0 ? static_cast<size_t>(size) : 0), work);
    return true;
}

void FakeDaemon::Handle(const std::string& datagram, std::unique_lock<std::mutex>& work) {
    std::string reply;
    {
        const std::lock_guard guard(mutex_);
        requests_.push_back(datagram);
        if (datagram.size() != 240) {
            return;
        }
        int16_t type = 0;
        memcpy(&type, datagram.data(), sizeof(type));
        if (type == VELK_WLAN_STORE) {
            memcpy(&conf_, datagram.data() + 4, sizeof(conf_));
        }
        if ((type != VELK_WLAN_REPORT && type != VELK_WLAN_STATE) || is_silent_) {
            return;
        }
        reply = raw_reply_.value_or(ReplyTo(type));
    }
    if (WaitUntilReady(turn_ == Turn::kInSelect ? 0 : kReadyLimit, work)) {
        Reply(reply);
    }
}

std::string FakeDaemon::ReplyTo(int type) const {
    const UMsgData& body = type == VELK_WLAN_REPORT ? conf_ : state_;
    std::string bytes(4, '\x7f');  // the library ignores the type of a reply
    bytes.append(reinterpret_cast<const char*>(&body), sizeof(body));
    return bytes;
}

void FakeDaemon::Reply(const std::string& bytes) {
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressOf(kReplySocket);
    sendto(fd, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&address),
           sizeof(address));
    close(fd);
}

}  // namespace testkit
