// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// channel.cpp - messages to and from the wireless daemon.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <semaphore.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "lib/base/wait.h"
#include "lib/wlan/reply_path.h"
#include "velk/request.h"
#include "velk/wlan.h"

namespace velk {
namespace {

constexpr time_t kReplySeconds = 60;
constexpr mode_t kReplyMode = 0600;  // no other user can send a false reply
constexpr int kBindTries = 100;
constexpr unsigned kGraceSeconds = 1;

struct Message {
    int16_t type;
    char zero[2];
    UMsgData body;
};
static_assert(offsetof(Message, type) == 0);
static_assert(offsetof(Message, body) == 4);
static_assert(sizeof(Message) == 240);

// The length counts the address family and the path without its NUL.
struct Address {
    template <size_t kSize>
    explicit Address(const char (&path)[kSize])
        : length(offsetof(sockaddr_un, sun_path) + kSize - 1) {
        unix_address.sun_family = AF_UNIX;
        memcpy(unix_address.sun_path, path, kSize);
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&unix_address); }

    sockaddr_un unix_address{};
    const socklen_t length;
};

UniqueFd OpenSocket() {
    return UniqueFd(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
}

// Returns 0 or the errno of the last bind(2). If another user takes the path after its removal,
// both steps are repeated.
int BindReplySocket(int fd) {
    const Address self(kReplySocket);
    int error = 0;
    for (int tries = 0; tries < kBindTries; ++tries) {
        if (bind(fd, self.get(), self.length) == 0) {
            return 0;
        }
        error = errno;
        if (OwnerOfReplyPath() != ReplyPathOwner::kOther || remove(kReplySocket) == -1) {
            break;
        }
    }
    return error;
}

// Signals the daemon that the reply socket exists. The caller waits for the reply even if this
// fails.
void PostReady(const sem_t* ready) {
    int error = EINVAL;
    if (ready != nullptr) {
        error = sem_post(const_cast<sem_t*>(ready)) == -1 ? errno : 0;
    }
    if (error != 0) {
        LogErrno("RecvWlanResponseMessage sem_post errno=%d:%s", error);
    }
}

// The daemon has received a request, but nobody will read its reply. It must find this unposted
// semaphore before the semaphore is removed: another user who has taken the path could create a
// posted one. If another query of the caller has the path, no wait is needed.
void WaitForDaemon() {
    if (OwnerOfReplyPath() != ReplyPathOwner::kCaller) {
        WaitSeconds(kGraceSeconds);
    }
}

// Returns the result of select(2) on one descriptor; EINVAL for one too large for an fd_set.
int WaitReadable(int fd) {
    if (fd >= FD_SETSIZE) {
        errno = EINVAL;
        return -1;
    }
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(fd, &readable);
    timeval time_left{kReplySeconds, 0};
    return select(fd + 1, &readable, nullptr, nullptr, &time_left);
}

int ReceiveReply(int fd, UMsgData& out) {
    const int ready = WaitReadable(fd);
    if (ready == -1) {
        LogErrno("RecvWlanResponseMessage select errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    if (ready == 0) {
        Log("RecvWlanResponseMessage select timeout");
        return LIB_VELK_FAILURE;
    }
    Message reply{};  // a short reply leaves the rest zero
    if (recvfrom(fd, &reply, sizeof(reply), MSG_DONTWAIT, nullptr, nullptr) == -1) {
        Log("RecvWlanResponseMessage recvfrom size=0");
        return LIB_VELK_FAILURE;
    }
    out = reply.body;
    return LIB_VELK_SUCCESS;
}

}  // namespace
}  // namespace velk

using namespace velk;

int SendWlanRequestMessage(short type, const UMsgData* body) {
    const UniqueFd fd = OpenSocket();
    if (fd.get() == -1) {
        LogErrno("SendWlanRequestMessage socket:errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    Message message{};
    message.type = type;
    if (body != nullptr) {
        message.body = *body;
    }
    const Address daemon(kRequestSocket);
    if (connect(fd.get(), daemon.get(), daemon.length) == -1) {
        LogErrno("SendWlanRequestMessage connect:errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    if (sendto(fd.get(), &message, sizeof(message), MSG_DONTWAIT, nullptr, 0) == -1) {
        LogErrno("SendWlanRequestMessage sendto:errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    return LIB_VELK_SUCCESS;
}

int RecvWlanResponseMessage(UMsgData& out, const sem_t* ready) {
    unlink(kReplySocket);  // a program that crashed may have left it
    UniqueFd fd = OpenSocket();
    if (fd.get() == -1) {
        LogErrno("RecvWlanResponseMessage socket:errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    if (fchmod(fd.get(), kReplyMode) == -1) {  // bind(2) makes the file with this mode
        LogErrno("RecvWlanResponseMessage fchmod errno=%d:%s", errno);
        return LIB_VELK_FAILURE;
    }
    if (const int error = BindReplySocket(fd.get()); error != 0) {
        LogErrno("RecvWlanResponseMessage bind errno=%d:%s", error);
        WaitForDaemon();
        return LIB_VELK_FAILURE;
    }
    PostReady(ready);
    const int result = ReceiveReply(fd.get(), out);
    fd.Reset();
    unlink(kReplySocket);
    return result;
}
