// control_socket.cpp - how the machine's other processes reach a running device.
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
// Whoever lists the devices takes a place in this queue, too, until the device looks into it.
constexpr int kWaitingOrders = 128;
// The longest wait for a place in the queue of a listener, or in those of all listeners together.
// They may be anybody's.
constexpr std::chrono::seconds kLongestWait(2);
constexpr std::chrono::milliseconds kPause(10);
constexpr char kNameCharacters[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";

struct Address {
    sockaddr_un full = {};
    socklen_t size = 0;

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&full); }
};

// Every user has devices of their own, whatever others call theirs.
std::string Prefix() {
    return std::string("velk-sandbox/").append(std::to_string(geteuid())).append("/");
}

// A path that begins with a NUL is a name in the network.
Address AddressOf(const std::string& name) {
    Address address;
    const std::string path = Prefix() + name;
    address.full.sun_family = AF_UNIX;
    std::ranges::copy(path, address.full.sun_path + 1);
    address.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + path.size());
    return address;
}

bool CanBeName(const std::string& name) {
    return name.size() <= kLongestName && name.find_first_not_of(kNameCharacters) == name.npos;
}

void RefuseName(const std::string& name) {
    if (!CanBeName(name)) {
        throw Failure("'" + name + "' cannot be a name; give at most " +
                      std::to_string(kLongestName) + " letters, digits, '.', '_' or '-'");
    }
}

velk::UniqueFd MakeSocket(int flags = 0) {
    velk::UniqueFd made(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
    if (made.get() == -1) {
        Fail("cannot make a socket", errno);
    }
    return made;
}

// No descriptor, with errno, if nobody listens there. With SOCK_NONBLOCK, it does not wait for a
// place in the queue.
velk::UniqueFd TryConnect(const std::string& name, int flags = 0) {
    const Address address = AddressOf(name);
    velk::UniqueFd visitor = MakeSocket(flags);
    constexpr timeval kWait = {kLongestWait.count(), 0};
    (void)setsockopt(visitor.get(), SOL_SOCKET, SO_SNDTIMEO, &kWait, sizeof(kWait));
    if (connect(visitor.get(), address.get(), address.size) == -1) {
        (void)visitor.Reset();
    }
    return visitor;
}

[[noreturn]] void RefuseForeignDevice(const std::string& name, uid_t owner) {
    throw Failure("device " + name + " belongs to " + DescribeUser(owner) +
                  ", not to you; nothing was sent to it");
}

[[noreturn]] void RefuseTakenName(const std::string& name) {
    const velk::UniqueFd visitor = TryConnect(name);
    if (visitor.get() == -1) {
        throw Failure("the name " + name + " is taken; choose another one with --name");
    }
    if (!IsOwnPeer(visitor)) {
        throw Failure("the name " + name + " is taken by " + DescribeUser(PeerUser(visitor)) +
                      "; choose another one with --name");
    }
    throw Failure("a device named " + name + " is running already");
}

bool TryBind(const velk::UniqueFd& door, const std::string& name) {
    const Address address = AddressOf(name);
    if (bind(door.get(), address.get(), address.size) == 0) {
        return true;
    }
    if (errno != EADDRINUSE) {
        Fail("cannot name the device", errno);
    }
    return false;
}

void BindToFreeNumber(const velk::UniqueFd& door, std::string& name) {
    for (int number = 1;; ++number) {
        name = std::to_string(number);
        if (TryBind(door, name)) {
            return;
        }
    }
}

// The names that a device of this user could have, as far as the kernel lists them. Its list is
// text that others can write lines into.
std::set<std::string> ListedNames() {
    const std::string mark = std::string("@").append(Prefix());
    std::set<std::string> names;
    std::ifstream sockets("/proc/net/unix");
    for (std::string line; std::getline(sockets, line);) {
        const size_t found = line.find(mark);
        const std::string name = found == line.npos ? "" : line.substr(found + mark.size());
        if (!name.empty() && CanBeName(name)) {
            names.insert(name);
        }
    }
    return names;
}

// The listed names, in order, with the user who listens there: only a connection proves a name. A
// name is left out if its queue stays full. Listeners of other users must not add up their waits.
std::map<std::string, uid_t> Listeners() {
    std::set<std::string> waiting = ListedNames();
    std::map<std::string, uid_t> listeners;
    const auto is_settled = [&listeners](const std::string& name) {
        const velk::UniqueFd visitor = TryConnect(name, SOCK_NONBLOCK);
        if (visitor.get() == -1) {
            return errno != EAGAIN;
        }
        listeners.emplace(name, PeerUser(visitor));
        return true;
    };
    const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
    for (;;) {
        std::erase_if(waiting, is_settled);
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
        throw Failure("no device is running here");
    }
    if (names.empty()) {
        RefuseForeignDevice(listeners.begin()->first, listeners.begin()->second);
    }
    if (names.size() > 1) {
        std::string list;
        for (const std::string& name : names) {
            list.append(list.empty() ? "" : ", ").append(name);
        }
        throw Failure("several devices are running: " + list + "; choose one with --name");
    }
    return names.front();
}

}  // namespace

velk::UniqueFd OpenDoor(std::string& name) {
    RefuseName(name);
    velk::UniqueFd door = MakeSocket();
    if (name.empty()) {
        BindToFreeNumber(door, name);
    } else if (!TryBind(door, name)) {
        RefuseTakenName(name);
    }
    if (listen(door.get(), kWaitingOrders) == -1) {
        Fail("cannot listen at the device's door", errno);
    }
    return door;
}

velk::UniqueFd KnockAtDoor(const std::string& name) {
    RefuseName(name);
    const std::string chosen = name.empty() ? OnlyDevice() : name;
    velk::UniqueFd visitor = TryConnect(chosen);
    if (visitor.get() == -1) {
        throw Failure(errno == EAGAIN
                          ? "device " + chosen +
                                " is too busy to answer, and may be another user's; try again"
                          : "no device named " + chosen + " is running");
    }
    if (!IsOwnPeer(visitor)) {
        RefuseForeignDevice(chosen, PeerUser(visitor));
    }
    return visitor;
}

std::vector<std::string> RunningDevices() {
    return OwnNames(Listeners());
}

}  // namespace sandbox
