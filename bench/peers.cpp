// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// peers.cpp - compares the library with Augeas.
#include "bench/augeas_tree.h"
#include "bench/comparison.h"
#include "bench/groups.h"
#include "bench/request.h"
#include "lib/base/join_text.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr auto kGatewayPath =
    velk::JoinText("/files", velk::kInterfacesFile, "/iface[. = 'eth0']/gateway");

augeas* OpenTree() {
    static augeas* const tree = LoadTree();
    return tree;
}

// Sets another value each time, as Augeas does not write an unchanged file.
void SetIn(augeas* tree) {
    static bool odd = false;
    odd = !odd;
    Require(aug_set(tree, kGatewayPath.c_str(), odd ? "192.168.0.1" : "192.168.0.2") == 0, "set");
    Require(aug_save(tree) == 0, "save");
}

void ColdGet() {
    augeas* tree = LoadTree();
    (void)AddressIn(tree);
    aug_close(tree);
}

void ColdSet() {
    augeas* tree = LoadTree();
    SetIn(tree);
    aug_close(tree);
}

}  // namespace

void AddPeers() {
    const Measured get = Timed(Get(VELK_CMD_IP_ADDRESS, "eth0"), 50);
    Compare({.name = "peer/get/loaded_tree",
             .ours = get,
             .other = Timed([] { (void)AddressIn(OpenTree()); }, 50)});
    Compare({.name = "peer/get/cold", .ours = get, .other = Timed(ColdGet), .samples = 30});

    const Measured set = Timed(Set(VELK_CMD_GATEWAY, "eth0", "192.168.0.1"));
    Compare({.name = "peer/set/cold", .ours = set, .other = Timed(ColdSet), .samples = 30});
    // The library changes the file between the samples of Augeas, which reads a changed file again.
    Compare({.name = "peer/set/open_handle",
             .ours = set,
             .other = Timed([] { SetIn(OpenTree()); }),
             .samples = 50});
}

}  // namespace bench
