// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// protocol.h - messages and sockets between programs and the wireless daemon.
#ifndef SANDBOX_WLAND_PROTOCOL_H_
#define SANDBOX_WLAND_PROTOCOL_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include <sys/socket.h>
#include <sys/un.h>

#include "lib/base/unique_fd.h"
#include "velk/wlan.h"

namespace wland {

struct Message {
    int16_t type;  // velk_wlan_message
    char zero[2];
    UMsgData body;
};
static_assert(offsetof(Message, type) == 0);
static_assert(offsetof(Message, body) == 4);
static_assert(sizeof(Message) == 240);

// The abstract name of the socket for orders of "wland --tell". The paths of the other sockets and
// of the semaphore are in lib/base/paths.h.
inline constexpr std::string_view kControlSocket("\0wland", 6);

// The address of a path, or of an abstract name, which starts with a NUL. Its length includes
// neither the NUL after a path nor the rest of the structure, as in the addresses that programs
// use.
class Address {
  public:
    explicit Address(std::string_view name);
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    socklen_t length() const { return length_; }

  private:
    sockaddr_un address_{};
    socklen_t length_;
};

// Opens a datagram socket. Throws sandbox::Failure.
velk::UniqueFd OpenSocket();

// Sends a datagram without waiting. Returns 0, or an errno.
int SendTo(const Address& address, std::string_view bytes);

// The socket that programs send their requests to. The destructor removes its path.
class RequestSocket {
  public:
    // Replaces a socket without a listener. Throws sandbox::Failure.
    RequestSocket();
    ~RequestSocket();
    RequestSocket(const RequestSocket&) = delete;
    RequestSocket& operator=(const RequestSocket&) = delete;

    int fd() const { return fd_.get(); }

    // Returns the next message, or nothing. A datagram of another size is logged and ignored.
    std::optional<Message> Receive() const;

  private:
    velk::UniqueFd fd_;
};

// Sends a reply to the reply socket. Returns 0, or an errno.
int SendReply(std::string_view bytes);

}  // namespace wland

#endif  // SANDBOX_WLAND_PROTOCOL_H_
