// orders.cpp - how orders reach the hardware process.
#include "sandbox/control/orders.h"

#include <cerrno>
#include <cstring>
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
constexpr char kObeyed[] = "obeyed";
constexpr char kFirstProcess[] = "first process";  // the order to tell it
constexpr size_t kMessageSize = 512;
constexpr int kWaitingOrders = 8;
constexpr timeval kPatience = {5, 0};  // with somebody who connects and says nothing yet

// A message, with a descriptor if there is one to go with it.
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

const sockaddr_un kAddress = [] {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, kHardwareSocket, sizeof(kHardwareSocket));
    return address;
}();

const sockaddr* Address() {
    return reinterpret_cast<const sockaddr*>(&kAddress);
}

velk::UniqueFd MakeSocket() {
    velk::UniqueFd made(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (made.get() == -1) {
        Fail("cannot make a socket", errno);
    }
    return made;
}

// An empty text when there is no message.
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
        Fail("cannot take hold of the device's first process", errno);
    }
    Envelope envelope(sizeof(kObeyed) - 1);
    memcpy(envelope.text.data(), kObeyed, envelope.text.size());
    cmsghdr* const descriptor = CMSG_FIRSTHDR(&envelope.header);
    const int number = process.get();
    descriptor->cmsg_level = SOL_SOCKET;
    descriptor->cmsg_type = SCM_RIGHTS;
    descriptor->cmsg_len = CMSG_LEN(sizeof(number));
    memcpy(CMSG_DATA(descriptor), &number, sizeof(number));
    (void)sendmsg(to.get(), &envelope.header, MSG_NOSIGNAL);
}

// No descriptor when there is none in the message.
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

velk::UniqueFd Connect(const std::string& name) {
    if (!name.empty() || !IsOnDevice()) {
        return KnockAtDoor(name);
    }
    velk::UniqueFd hardware = MakeSocket();
    if (connect(hardware.get(), Address(), sizeof(kAddress)) == -1) {
        Fail("cannot reach the device's hardware", errno);
    }
    if (!IsOwnPeer(hardware)) {
        throw Failure("this device belongs to " + DescribeUser(PeerUser(hardware)) +
                      ", not to you; nothing was sent to it");
    }
    return hardware;
}

}  // namespace

HardwareChannel::HardwareChannel(velk::UniqueFd door)
    : inside_(MakeSocket()), door_(std::move(door)) {
    (void)mkdir(kRunFolder, kFolderMode);
    if (bind(inside_.get(), Address(), sizeof(kAddress)) == -1 ||
        listen(inside_.get(), kWaitingOrders) == -1) {
        Fail(std::string("cannot listen at ") + kHardwareSocket, errno);
    }
}

void HardwareChannel::Answer(int listener,
                             const std::function<void(const std::string&)>& obey) const {
    const velk::UniqueFd customer(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
    // Anybody can knock at the door.
    if (customer.get() == -1 || !IsOwnPeer(customer)) {
        return;
    }
    (void)setsockopt(customer.get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
    const std::string order = Receive(customer);
    if (order.empty()) {
        return;
    }
    try {
        if (order == kFirstProcess) {
            SendFirstProcess(customer);
            return;
        }
        obey(order);
        (void)Send(customer, kObeyed);
    } catch (const Failure& failure) {
        (void)Send(customer, failure.what());
    }
}

bool IsOnDevice() {
    struct stat status;
    return stat(kRunFolder, &status) == 0;
}

void GiveOrder(const std::string& order, const std::string& name) {
    const velk::UniqueFd hardware = Connect(name);
    const std::string answer = Send(hardware, order) ? Receive(hardware) : "";
    if (answer != kObeyed) {
        throw Failure(answer.empty() ? "the device's hardware gave no answer" : answer);
    }
}

velk::UniqueFd AskForFirstProcess(const std::string& name) {
    const velk::UniqueFd hardware = KnockAtDoor(name);
    velk::UniqueFd process =
        Send(hardware, kFirstProcess) ? ReceiveDescriptor(hardware) : velk::UniqueFd();
    if (process.get() == -1) {
        throw Failure("the device lets nobody in");
    }
    RefuseForeignProcess(process);
    return process;
}

}  // namespace sandbox
