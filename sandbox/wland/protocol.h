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

// The address of a path, or of an abstract name, which starts with a NUL. Its length counts neither
// the NUL behind a path nor the rest of the structure: programs name their sockets so.
class Address {
  public:
    explicit Address(std::string_view name);
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    socklen_t length() const { return length_; }

  private:
    sockaddr_un address_{};
    socklen_t length_;
};

// A datagram socket. Throws sandbox::Failure when there is none to be had.
velk::UniqueFd OpenSocket();

// Sends a datagram without waiting. Returns 0, or the errno that says why it did not arrive.
int SendTo(const Address& address, std::string_view bytes);

// The socket that programs send their requests to. Its path ends with it.
class RequestSocket {
  public:
    // Takes the place of a socket that nobody serves any more. Throws sandbox::Failure.
    RequestSocket();
    ~RequestSocket();
    RequestSocket(const RequestSocket&) = delete;
    RequestSocket& operator=(const RequestSocket&) = delete;

    int fd() const { return fd_.get(); }

    // The message that waits; nothing when none does, or a datagram of another size, which is
    // logged.
    std::optional<Message> Receive() const;

  private:
    velk::UniqueFd fd_;
};

// Sends a reply to the program that waits for one. Returns as SendTo() does.
int SendReply(std::string_view bytes);

}  // namespace wland

#endif  // SANDBOX_WLAND_PROTOCOL_H_
