// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// control_socket.cpp - the socket of a running device, for processes outside of it.
#include "sandbox/control/control_socket.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <map>
#include <set>
#include <thread>
#include <utility>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "sandbox/control/ownership.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr size_t kLongestName = 32;
// A listing of the devices takes a place in this queue, too, until the device accepts it.
constexpr int kQueueLength = 128;
// The longest wait for a place in the queue of one listener, or of all listeners together. Other
// users can listen and never accept.
constexpr std::chrono::seconds kLongestWait(2);
constexpr std::chrono::milliseconds kPause(10);
constexpr char kChooseAnotherName[] = "choose another name with --name";
constexpr char kNameCharacters[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";

struct Address {
    sockaddr_un full = {};
    socklen_t size = 0;

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&full); }
};

// The names of different users never collide.
std::string Prefix() {
    return std::string("velk-sandbox/").append(std::to_string(geteuid())).append("/");
}

// A path that begins with a NUL is an abstract name, see unix(7).
Address AddressOf(const std::string& name) {
    Address address;
    const std::string path = Prefix() + name;
    address.full.sun_family = AF_UNIX;
    std::ranges::copy(path, address.full.sun_path + 1);
    address.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + path.size());
    return address;
}

bool IsValidName(const std::string& name) {
    return name.size() <= kLongestName && name.find_first_not_of(kNameCharacters) == name.npos;
}

void CheckName(const std::string& name) {
    if (!IsValidName(name)) {
        throw Failure(
            "'" + name + "' is not a valid name",
            "use at most " + std::to_string(kLongestName) + " letters, digits, '.', '_' or '-'");
    }
}

velk::UniqueFd MakeSocket(int flags = 0) {
    velk::UniqueFd made(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
    if (made.get() == -1) {
        Fail("cannot make a socket", errno);
    }
    return made;
}

// Returns no descriptor, with errno, if the connection fails. With SOCK_NONBLOCK, does not wait for
// a place in the queue.
velk::UniqueFd TryConnect(const std::string& name, int flags = 0) {
    const Address address = AddressOf(name);
    velk::UniqueFd connection = MakeSocket(flags);
    constexpr timeval kWait = {kLongestWait.count(), 0};
    (void)setsockopt(connection.get(), SOL_SOCKET, SO_SNDTIMEO, &kWait, sizeof(kWait));
    if (connect(connection.get(), address.get(), address.size) == -1) {
        (void)connection.Reset();
    }
    return connection;
}

[[noreturn]] void RefuseForeignDevice(const std::string& name, uid_t owner) {
    throw Failure("device " + name + " belongs to " + DescribeUser(owner) +
                  ", not to you; nothing was sent to it");
}

[[noreturn]] void RefuseTakenName(const std::string& name) {
    const velk::UniqueFd connection = TryConnect(name);
    if (connection.get() == -1) {
        throw Failure("the name " + name + " is taken", kChooseAnotherName);
    }
    if (!IsOwnPeer(connection)) {
        throw Failure("the name " + name + " is taken by " + DescribeUser(PeerUser(connection)),
                      kChooseAnotherName);
    }
    throw Failure("a device named " + name + " is already running", kChooseAnotherName);
}

bool TryBind(const velk::UniqueFd& control_socket, const std::string& name) {
    const Address address = AddressOf(name);
    if (bind(control_socket.get(), address.get(), address.size) == 0) {
        return true;
    }
    if (errno != EADDRINUSE) {
        Fail("cannot bind the control socket", errno);
    }
    return false;
}

void BindToFreeNumber(const velk::UniqueFd& control_socket, std::string& name) {
    for (int number = 1;; ++number) {
        name = std::to_string(number);
        if (TryBind(control_socket, name)) {
            return;
        }
    }
}

// Returns the names in the kernel's list that a device of this user could have. Other users can add
// lines to that list: a name in it may contain a line end.
std::set<std::string> ListedNames() {
    const std::string mark = std::string("@").append(Prefix());
    std::set<std::string> names;
    std::ifstream sockets("/proc/net/unix");
    for (std::string line; std::getline(sockets, line);) {
        const size_t found = line.find(mark);
        const std::string name = found == line.npos ? "" : line.substr(found + mark.size());
        if (!name.empty() && IsValidName(name)) {
            names.insert(name);
        }
    }
    return names;
}

// Returns the listed names with the user who listens at each. Only a connection proves a name.
// Names with a full queue are left out. All queues share one deadline, so that many listeners of
// another user do not multiply the wait.
std::map<std::string, uid_t> Listeners() {
    std::set<std::string> waiting = ListedNames();
    std::map<std::string, uid_t> listeners;
    const auto is_decided = [&listeners](const std::string& name) {
        const velk::UniqueFd connection = TryConnect(name, SOCK_NONBLOCK);
        if (connection.get() == -1) {
            return errno != EAGAIN;
        }
        listeners.emplace(name, PeerUser(connection));
        return true;
    };
    const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
    for (;;) {
        std::erase_if(waiting, is_decided);
        if (waiting.empty() || std::chrono::steady_clock::now() >= deadline) {
            return listeners;
        }
        std::this_thread::sleep_for(kPause);
    }
}

std::vector<std::string> OwnNames(const std::map<std::string, uid_t>& listeners) {
    std::vector<std::string> names;
    for (const auto& [name, user] : listeners) {
        if (user == geteuid()) {
            names.push_back(name);
        }
    }
    return names;
}

std::string OnlyDevice() {
    const std::map<std::string, uid_t> listeners = Listeners();
    const std::vector<std::string> names = OwnNames(listeners);
    if (listeners.empty()) {
        throw Failure("no device is running", "start one with velk-sandbox");
    }
    if (names.empty()) {
        RefuseForeignDevice(listeners.begin()->first, listeners.begin()->second);
    }
    if (names.size() > 1) {
        std::string list;
        for (const std::string& name : names) {
            list.append(list.empty() ? "" : ", ").append(name);
        }
        throw Failure("several devices are running: " + list, "choose one with --name");
    }
    return names.front();
}

}  // namespace

velk::UniqueFd OpenControlSocket(std::string& name) {
    CheckName(name);
    velk::UniqueFd control_socket = MakeSocket();
    if (name.empty()) {
        BindToFreeNumber(control_socket, name);
    } else if (!TryBind(control_socket, name)) {
        RefuseTakenName(name);
    }
    if (listen(control_socket.get(), kQueueLength) == -1) {
        Fail("cannot listen on the control socket", errno);
    }
    return control_socket;
}

velk::UniqueFd ConnectToDevice(const std::string& name) {
    CheckName(name);
    const std::string chosen = name.empty() ? OnlyDevice() : name;
    velk::UniqueFd connection = TryConnect(chosen);
    if (connection.get() == -1) {
        if (errno == EAGAIN) {
            throw Failure("device " + chosen + " does not answer; it may be another user's",
                          "try again");
        }
        throw Failure("no device named " + chosen + " is running",
                      "see the names with velk-sandbox list");
    }
    if (!IsOwnPeer(connection)) {
        RefuseForeignDevice(chosen, PeerUser(connection));
    }
    return connection;
}

std::vector<std::string> RunningDevices() {
    return OwnNames(Listeners());
}

}  // namespace sandbox
