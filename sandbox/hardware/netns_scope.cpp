// netns_scope.cpp - a stay in another network namespace.
#include "sandbox/hardware/netns_scope.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

velk::UniqueFd CurrentNetwork() {
    velk::UniqueFd network(open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC));
    if (network.get() == -1) {
        Fail("cannot take hold of a network", errno);
    }
    return network;
}

void Enter(const velk::UniqueFd& network) {
    if (setns(network.get(), CLONE_NEWNET) == -1) {
        Fail("cannot enter a network", errno);
    }
}

}  // namespace

velk::UniqueFd MakeNetwork() {
    const velk::UniqueFd home = CurrentNetwork();
    if (unshare(CLONE_NEWNET) == -1) {
        Fail("cannot make a network", errno);
    }
    velk::UniqueFd made = CurrentNetwork();
    Enter(home);
    return made;
}

NetworkVisit::NetworkVisit(const velk::UniqueFd& network) : home_(CurrentNetwork()) {
    Enter(network);
}

NetworkVisit::~NetworkVisit() {
    // A process that cannot come home must not go on in the wrong network.
    if (setns(home_.get(), CLONE_NEWNET) == -1) {
        _exit(EXIT_FAILURE);
    }
}

}  // namespace sandbox
