// control.cpp - changes how a running daemon replies.
//
// An order is a text: the name of the mode, then, if it changes, the delay in milliseconds.
#include "sandbox/wland/control.h"

#include <cerrno>
#include <sstream>
#include <string_view>

#include "sandbox/process/failure.h"
#include "sandbox/wland/log.h"

namespace wland {
namespace {

constexpr std::string_view kName("\0wland", 6);

bool Follow(const std::string& order, Behaviour& behaviour) {
    std::istringstream words(order);
    std::string name;
    words >> name;
    const std::optional<ReplyMode> mode = FindReplyMode(name);
    if (!mode) {
        Log("ignored an order that names no reply mode");
        return false;
    }
    behaviour.mode = *mode;
    if (unsigned delay = 0; words >> delay) {
        behaviour.delay = std::chrono::milliseconds(delay);
    }
    Log("replies are " + name);
    return true;
}

}  // namespace

ControlSocket::ControlSocket() : fd_(OpenSocket()) {
    const Address address(kName);
    if (bind(fd_.get(), address.get(), address.length()) == -1) {
        if (errno == EADDRINUSE) {
            throw sandbox::Failure("another one is running");
        }
        sandbox::Fail("cannot make the control socket", errno);
    }
}

bool ControlSocket::Take(Behaviour& behaviour) const {
    bool is_changed = false;
    char order[64];
    for (;;) {
        const ssize_t size = recv(fd_.get(), order, sizeof(order), MSG_DONTWAIT);
        if (size == -1) {
            return is_changed;
        }
        is_changed |= Follow(std::string(order, static_cast<size_t>(size)), behaviour);
    }
}

void Tell(const std::string& mode, std::optional<std::chrono::milliseconds> delay) {
    std::string order = mode;
    if (delay) {
        order.append(" ").append(std::to_string(delay->count()));
    }
    const int error = SendTo(Address(kName), order);
    if (error == ECONNREFUSED) {
        throw sandbox::Failure("none is running");
    }
    if (error != 0) {
        sandbox::Fail("cannot tell the running one", error);
    }
}

}  // namespace wland
