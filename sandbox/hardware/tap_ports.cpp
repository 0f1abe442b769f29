// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tap_ports.cpp - tap interfaces: a descriptor of this process is the other end of the cable.
#include "sandbox/hardware/tap_ports.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr size_t kFrameSize = 2048;

velk::UniqueFd OpenTap() {
    return velk::UniqueFd(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
}

}  // namespace

bool TapPorts::IsAvailable() {
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
    // A persistent tap is removed with the network namespace. Removing it here would take time.
    if (ioctl(tap.get(), TUNSETPERSIST, 1) == -1) {
        Fail(std::string("cannot make a persistent ") + port.name, errno);
    }
    control_.SetHardwareAddress(port.name, port.address);
    control_.SetLinkMode(port.name, LinkMode{});
    control_.BringUp(port.name);
    taps_.erase(port.name);
    taps_[port.name].fd = std::move(tap);
    SetCarrier(port, true);
}

void TapPorts::Remove(const Port& port) {
    if (const auto tap = taps_.find(port.name); tap != taps_.end()) {
        (void)ioctl(tap->second.fd.get(), TUNSETPERSIST, 0);
        taps_.erase(tap);
    }
}

void TapPorts::SetCarrier(const Port& port, bool carrier) {
    int value = carrier ? 1 : 0;
    const auto tap = taps_.find(port.name);
    if (tap == taps_.end()) {
        throw Failure(std::string("the device has no ") + port.name);
    }
    if (ioctl(tap->second.fd.get(), TUNSETCARRIER, &value) == -1) {
        Fail(std::string("cannot set the carrier of ") + port.name, errno);
    }
    tap->second.carrier = carrier;
}

std::vector<pollfd> TapPorts::PollFds() const {
    std::vector<pollfd> poll_fds;
    for (const auto& [name, tap] : taps_) {
        poll_fds.push_back({tap.fd.get(), POLLIN, 0});
    }
    return poll_fds;
}

void TapPorts::ForwardFrame(const pollfd& ready) {
    const auto tap = std::ranges::find_if(
        taps_, [&ready](const auto& each) { return each.second.fd.get() == ready.fd; });
    if (tap == taps_.end()) {
        return;
    }
    if ((ready.revents & POLLERR) != 0) {  // a process of the device deleted the interface
        taps_.erase(tap);
        return;
    }
    char frame[kFrameSize];
    const ssize_t size = read(ready.fd, frame, sizeof(frame));
    const Tap& near_end = tap->second;
    if (size > 0 && near_end.far_end != nullptr && near_end.carrier && near_end.far_end->carrier) {
        (void)!write(near_end.far_end->fd.get(), frame, static_cast<size_t>(size));
    }
}

void TapPorts::Connect(const Port& port, TapPorts& others, const Port& other) {
    const auto near_end = taps_.find(port.name);
    const auto far_end = others.taps_.find(other.name);
    if (near_end == taps_.end() || far_end == others.taps_.end()) {
        return;
    }
    near_end->second.Disconnect();
    far_end->second.Disconnect();
    near_end->second.far_end = &far_end->second;
    far_end->second.far_end = &near_end->second;
}

void TapPorts::Tap::Disconnect() {
    if (far_end != nullptr) {
        far_end->far_end = nullptr;
        far_end = nullptr;
    }
}

}  // namespace sandbox
