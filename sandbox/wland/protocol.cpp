// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// protocol.cpp - messages and sockets between programs and the wireless daemon.
#include "sandbox/wland/protocol.h"

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "sandbox/process/failure.h"
#include "sandbox/wland/log.h"

namespace wland {
namespace {

constexpr mode_t kEverybody = 0666;

// True if any daemon listens at the address, also one that is not wland. Its socket must be kept.
bool IsServed(const Address& address) {
    const velk::UniqueFd probe = OpenSocket();
    return connect(probe.get(), address.get(), address.length()) == 0;
}

}  // namespace

Address::Address(std::string_view name) {
    address_.sun_family = AF_UNIX;
    const size_t copied = name.copy(address_.sun_path, sizeof(address_.sun_path));
    length_ = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + copied);
}

velk::UniqueFd OpenSocket() {
    velk::UniqueFd fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (fd.get() == -1) {
        sandbox::Fail("cannot make a socket", errno);
    }
    return fd;
}

int SendTo(const Address& address, std::string_view bytes) {
    const velk::UniqueFd fd = OpenSocket();
    const ssize_t sent = sendto(fd.get(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                                address.get(), address.length());
    return sent == -1 ? errno : 0;
}

RequestSocket::RequestSocket() : fd_(OpenSocket()) {
    const Address address(velk::kRequestSocket);
    if (IsServed(address)) {
        throw sandbox::Failure("the daemon is already running");
    }
    (void)unlink(velk::kRequestSocket);
    if (bind(fd_.get(), address.get(), address.length()) == -1) {
        sandbox::Fail(std::string("cannot make ") + velk::kRequestSocket, errno);
    }
    // bind(2) alone would apply the caller's umask.
    if (chmod(velk::kRequestSocket, kEverybody) == -1) {
        const int error = errno;
        (void)unlink(velk::kRequestSocket);
        sandbox::Fail(std::string("cannot change the mode of ") + velk::kRequestSocket, error);
    }
}

RequestSocket::~RequestSocket() {
    (void)unlink(velk::kRequestSocket);
}

std::optional<Message> RequestSocket::Receive() const {
    Message message{};
    const ssize_t size = recv(fd_.get(), &message, sizeof(message), MSG_DONTWAIT | MSG_TRUNC);
    if (size == static_cast<ssize_t>(sizeof(message))) {
        return message;
    }
    if (size != -1) {
        Log("ignored a datagram of " + std::to_string(size) + " bytes");
    } else if (errno != EAGAIN && errno != EINTR) {
        sandbox::Fail("cannot receive requests", errno);
    }
    return std::nullopt;
}

int SendReply(std::string_view bytes) {
    return SendTo(Address(velk::kReplySocket), bytes);
}

}  // namespace wland
