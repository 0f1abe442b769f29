// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// orders.cpp - orders to the hardware process of a device.
#include "sandbox/control/orders.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "sandbox/control/control_socket.h"
#include "sandbox/control/ownership.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

constexpr mode_t kFolderMode = 0755;
constexpr char kDone[] = "done";
constexpr char kFirstProcess[] = "first process";  // the order that requests it
constexpr size_t kMessageSize = 512;
constexpr int kQueueLength = 8;
constexpr timeval kReceiveLimit = {5, 0};  // for a client that connects and sends nothing

// A message with an optional descriptor.
struct Envelope {
    explicit Envelope(size_t text_size) : text(text_size, '\0') {
        part = {text.data(), text.size()};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control;
        header.msg_controllen = sizeof(control);
    }

    std::string text;
    iovec part = {};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr header = {};
};

// The address of the socket for processes on the device.
struct InsideAddress {
    InsideAddress() { memcpy(full.sun_path, kHardwareSocket, sizeof(kHardwareSocket)); }

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&full); }

    sockaddr_un full = {AF_UNIX, {}};
};

velk::UniqueFd MakeSocket() {
    velk::UniqueFd made(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (made.get() == -1) {
        Fail("cannot make a socket", errno);
    }
    return made;
}

// Returns an empty text if no message arrives.
std::string Receive(const velk::UniqueFd& from) {
    char message[kMessageSize];
    const ssize_t size = recv(from.get(), message, sizeof(message), 0);
    return size > 0 ? std::string(message, static_cast<size_t>(size)) : std::string();
}

bool Send(const velk::UniqueFd& to, const std::string& message) {
    return send(to.get(), message.data(), message.size(), MSG_NOSIGNAL) != -1;
}

void SendFirstProcess(const velk::UniqueFd& to) {
    const velk::UniqueFd process(static_cast<int>(syscall(SYS_pidfd_open, 1, 0)));
    if (process.get() == -1) {
        Fail("cannot open the device's first process", errno);
    }
    Envelope envelope(sizeof(kDone) - 1);
    memcpy(envelope.text.data(), kDone, envelope.text.size());
    cmsghdr* const descriptor = CMSG_FIRSTHDR(&envelope.header);
    const int number = process.get();
    descriptor->cmsg_level = SOL_SOCKET;
    descriptor->cmsg_type = SCM_RIGHTS;
    descriptor->cmsg_len = CMSG_LEN(sizeof(number));
    memcpy(CMSG_DATA(descriptor), &number, sizeof(number));
    (void)sendmsg(to.get(), &envelope.header, MSG_NOSIGNAL);
}

// Returns no descriptor if the message has none.
velk::UniqueFd ReceiveDescriptor(const velk::UniqueFd& from) {
    Envelope envelope(kMessageSize);
    int number = -1;
    if (recvmsg(from.get(), &envelope.header, MSG_CMSG_CLOEXEC) > 0) {
        if (const cmsghdr* found = CMSG_FIRSTHDR(&envelope.header); found != nullptr) {
            memcpy(&number, CMSG_DATA(found), sizeof(number));
        }
    }
    return velk::UniqueFd(number);
}

// A failure is sent as one or two lines: its message, and its advice if there is any.
std::string Encode(const Failure& failure) {
    const std::string message = failure.what();
    return failure.fix().empty() ? message : message + "\n" + failure.fix();
}

Failure Decode(const std::string& answer) {
    const size_t end = answer.find('\n');
    return end == std::string::npos ? Failure(answer)
                                    : Failure(answer.substr(0, end), answer.substr(end + 1));
}

velk::UniqueFd Connect(const std::string& name) {
    if (!name.empty() || !IsOnDevice()) {
        return ConnectToDevice(name);
    }
    velk::UniqueFd hardware = MakeSocket();
    if (connect(hardware.get(), InsideAddress().get(), sizeof(sockaddr_un)) == -1) {
        Fail("cannot connect to the hardware process", errno);
    }
    if (!IsOwnPeer(hardware)) {
        throw Failure("this device belongs to " + DescribeUser(PeerUser(hardware)) +
                      ", not to you; nothing was sent to it");
    }
    return hardware;
}

}  // namespace

OrderSocket::OrderSocket(velk::UniqueFd control_socket)
    : inside_(MakeSocket()), control_socket_(std::move(control_socket)) {
    const InsideAddress address;
    (void)mkdir(kRunFolder, kFolderMode);
    if (bind(inside_.get(), address.get(), sizeof(address.full)) == -1 ||
        listen(inside_.get(), kQueueLength) == -1) {
        Fail(std::string("cannot listen at ") + kHardwareSocket, errno);
    }
}

void OrderSocket::Answer(int listener,
                         const std::function<void(const std::string&)>& execute) const {
    const velk::UniqueFd client(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
    // Any user can connect to the control socket.
    if (client.get() == -1 || !IsOwnPeer(client)) {
        return;
    }
    (void)setsockopt(client.get(), SOL_SOCKET, SO_RCVTIMEO, &kReceiveLimit, sizeof(kReceiveLimit));
    const std::string order = Receive(client);
    if (order.empty()) {
        return;
    }
    try {
        if (order == kFirstProcess) {
            SendFirstProcess(client);
            return;
        }
        execute(order);
        (void)Send(client, kDone);
    } catch (const Failure& failure) {
        (void)Send(client, Encode(failure));
    }
}

bool IsOnDevice() {
    struct stat status;
    return stat(kRunFolder, &status) == 0;
}

std::string ThisDevice() {
    std::string name;
    std::ifstream(kNameFile) >> name;
    return name;
}

void SendOrder(const std::string& order, const std::string& name) {
    const velk::UniqueFd hardware = Connect(name);
    const std::string answer = Send(hardware, order) ? Receive(hardware) : "";
    if (answer != kDone) {
        throw Decode(answer.empty() ? "the hardware process did not answer" : answer);
    }
}

velk::UniqueFd RequestFirstProcess(const std::string& name) {
    const velk::UniqueFd hardware = ConnectToDevice(name);
    velk::UniqueFd process =
        Send(hardware, kFirstProcess) ? ReceiveDescriptor(hardware) : velk::UniqueFd();
    if (process.get() == -1) {
        throw Failure("the device did not send its first process");
    }
    RefuseForeignProcess(process);
    return process;
}

}  // namespace sandbox
