// tap_ports.cpp - interfaces whose cable is a descriptor of this process; see the kernel's tuntap.
#include "sandbox/tap_ports.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "sandbox/failure.h"

namespace sandbox {
namespace {

constexpr size_t kFrameSize = 2048;

velk::UniqueFd OpenTap() {
    return velk::UniqueFd(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
}

}  // namespace

bool TapPorts::ToBeHad() {
    unsigned features;
    return ioctl(OpenTap().get(), TUNGETFEATURES, &features) == 0;
}

void TapPorts::Make(const Port& port) {
    velk::UniqueFd tap = OpenTap();
    ifreq request{};
    strncpy(request.ifr_name, port.name, sizeof(request.ifr_name) - 1);
    request.ifr_flags = IFF_TAP | IFF_NO_PI;
    if (tap.get() == -1 || ioctl(tap.get(), TUNSETIFF, &request) == -1) {
        Fail(std::string("cannot make ") + port.name, errno);
    }
    // Left to the end of the device's network, which nobody waits for, its removal takes no time.
    if (ioctl(tap.get(), TUNSETPERSIST, 1) == -1) {
        Fail(std::string("cannot keep ") + port.name, errno);
    }
    control_.SetHardwareAddress(port.name, port.last_byte);
    control_.SetUsualSpeed(port.name);
    control_.BringUp(port.name);
    taps_[port.name] = std::move(tap);
    SetCarrier(port, true);
}

void TapPorts::Remove(const Port& port) {
    if (const auto tap = taps_.find(port.name); tap != taps_.end()) {
        (void)ioctl(tap->second.get(), TUNSETPERSIST, 0);
        taps_.erase(tap);
    }
}

void TapPorts::SetCarrier(const Port& port, bool carrier) {
    int value = carrier ? 1 : 0;
    const auto tap = taps_.find(port.name);
    if (tap == taps_.end()) {
        throw Failure(std::string("there is no ") + port.name);
    }
    if (ioctl(tap->second.get(), TUNSETCARRIER, &value) == -1) {
        Fail(std::string("cannot reach the cable of ") + port.name, errno);
    }
}

std::vector<pollfd> TapPorts::Frames() const {
    std::vector<pollfd> frames;
    for (const auto& [name, tap] : taps_) {
        frames.push_back({tap.get(), POLLIN, 0});
    }
    return frames;
}

void TapPorts::ThrowAway(const pollfd& ready) {
    if ((ready.revents & POLLERR) != 0) {  // somebody on the device has deleted the interface
        std::erase_if(taps_, [&](const auto& tap) { return tap.second.get() == ready.fd; });
        return;
    }
    char frame[kFrameSize];
    (void)!read(ready.fd, frame, sizeof(frame));
}

}  // namespace sandbox
