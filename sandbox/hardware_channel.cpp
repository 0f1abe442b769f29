// hardware_channel.cpp - how orders reach the hardware process.
#include "sandbox/hardware_channel.h"

#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>

#include "sandbox/failure.h"

namespace sandbox {
namespace {

constexpr char kFolder[] = "/run/velk-sandbox";
constexpr mode_t kFolderMode = 0755;
constexpr sockaddr_un kAddress = {AF_UNIX, "/run/velk-sandbox/hardware"};
constexpr char kObeyed[] = "obeyed";
constexpr size_t kMessageSize = 512;
constexpr int kWaitingOrders = 8;
constexpr timeval kPatience = {1, 0};  // with somebody who connects and then says nothing

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

[[noreturn]] void FailToReachHardware() {
    const int error = errno;
    struct stat status;
    if (stat(kFolder, &status) == -1) {
        throw Failure("this is not a device; cable and adapter are moved inside one");
    }
    Fail("cannot reach the device's cable and adapter", error);
}

}  // namespace

HardwareChannel::HardwareChannel() : listener_(MakeSocket()) {
    (void)mkdir(kFolder, kFolderMode);
    if (bind(listener_.get(), Address(), sizeof(kAddress)) == -1 ||
        listen(listener_.get(), kWaitingOrders) == -1) {
        Fail(std::string("cannot listen at ") + kAddress.sun_path, errno);
    }
}

void HardwareChannel::Answer(const std::function<void(const std::string&)>& obey) const {
    const velk::UniqueFd customer(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    (void)setsockopt(customer.get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
    const std::string order = Receive(customer);
    if (order.empty()) {
        return;
    }
    std::string answer = kObeyed;
    try {
        obey(order);
    } catch (const Failure& failure) {
        answer = failure.what();
    }
    (void)Send(customer, answer);
}

void GiveOrder(const std::string& order) {
    const velk::UniqueFd hardware = MakeSocket();
    if (connect(hardware.get(), Address(), sizeof(kAddress)) == -1 || !Send(hardware, order)) {
        FailToReachHardware();
    }
    const std::string answer = Receive(hardware);
    if (answer != kObeyed) {
        throw Failure(answer.empty() ? "the device's hardware gave no answer" : answer);
    }
}

}  // namespace sandbox
