// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// control.cpp - changes how a running daemon replies.
//
// An order is a text: the name of the mode, and the delay in milliseconds if it changes.
#include "sandbox/wland/control.h"

#include <cerrno>
#include <sstream>

#include "sandbox/process/failure.h"
#include "sandbox/wland/log.h"
#include "sandbox/wland/protocol.h"

namespace wland {
namespace {

bool ApplyOrder(const std::string& order, Behaviour& behaviour) {
    std::istringstream words(order);
    std::string name;
    words >> name;
    const std::optional<ReplyMode> mode = FindReplyMode(name);
    if (!mode) {
        Log("ignored an order with an unknown reply mode");
        return false;
    }
    behaviour.mode = *mode;
    if (unsigned delay = 0; words >> delay) {
        behaviour.delay = std::chrono::milliseconds(delay);
    }
    Log("the reply mode is " + name);
    return true;
}

}  // namespace

ReplyModeSocket::ReplyModeSocket() : fd_(OpenSocket()) {
    const Address address(kControlSocket);
    if (bind(fd_.get(), address.get(), address.length()) == -1) {
        if (errno == EADDRINUSE) {
            throw sandbox::Failure("the daemon is already running");
        }
        sandbox::Fail("cannot make the control socket", errno);
    }
}

bool ReplyModeSocket::Take(Behaviour& behaviour) const {
    bool is_changed = false;
    char order[64];
    for (;;) {
        const ssize_t size = recv(fd_.get(), order, sizeof(order), MSG_DONTWAIT);
        if (size == -1) {
            return is_changed;
        }
        is_changed |= ApplyOrder(std::string(order, static_cast<size_t>(size)), behaviour);
    }
}

void SetReplyMode(const std::string& mode, std::optional<std::chrono::milliseconds> delay) {
    std::string order = mode;
    if (delay) {
        order.append(" ").append(std::to_string(delay->count()));
    }
    const int error = SendTo(Address(kControlSocket), order);
    if (error == ECONNREFUSED) {
        throw sandbox::Failure("the daemon is not running");
    }
    if (error != 0) {
        sandbox::Fail("cannot send to the daemon", error);
    }
}

}  // namespace wland
