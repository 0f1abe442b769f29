// door.cpp - how the machine's other processes reach a running device.
#include "sandbox/door.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <set>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "sandbox/failure.h"

namespace sandbox {
namespace {

constexpr size_t kLongestName = 32;
constexpr int kWaitingOrders = 8;
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

void RefuseName(const std::string& name) {
    if (name.size() > kLongestName || name.find_first_not_of(kNameCharacters) != name.npos) {
        throw Failure("'" + name + "' cannot be a name; give at most " +
                      std::to_string(kLongestName) + " letters, digits, '.', '_' or '-'");
    }
}

velk::UniqueFd MakeSocket() {
    velk::UniqueFd made(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (made.get() == -1) {
        Fail("cannot make a socket", errno);
    }
    return made;
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

std::string OnlyDevice() {
    const std::vector<std::string> names = RunningDevices();
    if (names.empty()) {
        throw Failure("no device is running here");
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
        throw Failure("a device named " + name + " is running already");
    }
    if (listen(door.get(), kWaitingOrders) == -1) {
        Fail("cannot listen at the device's door", errno);
    }
    return door;
}

velk::UniqueFd KnockAtDoor(const std::string& name) {
    RefuseName(name);
    const std::string chosen = name.empty() ? OnlyDevice() : name;
    const Address address = AddressOf(chosen);
    velk::UniqueFd visitor = MakeSocket();
    if (connect(visitor.get(), address.get(), address.size) == -1) {
        throw Failure("no device named " + chosen + " is running");
    }
    return visitor;
}

std::vector<std::string> RunningDevices() {
    const std::string mark = std::string("@").append(Prefix());
    std::set<std::string> names;  // a door that is in use is listed more than once
    std::ifstream sockets("/proc/net/unix");
    for (std::string line; std::getline(sockets, line);) {
        if (const size_t found = line.find(mark); found != line.npos) {
            names.insert(line.substr(found + mark.size()));
        }
    }
    return {names.begin(), names.end()};
}

}  // namespace sandbox
