// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// augeas_tree.cpp - the interfaces file in Augeas.
#include "bench/augeas_tree.h"

#include <string>

#include "bench/floor.h"
#include "lib/base/join_text.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr auto kAddressPath =
    velk::JoinText("/files", velk::kInterfacesFile, "/iface[. = 'eth0']/address");

}  // namespace

void Require(bool done, const char* step) {
    if (!done) {
        GiveUp(std::string("augeas: ") + step);
    }
}

augeas* LoadTree() {
    augeas* tree = aug_init(nullptr, nullptr, AUG_NO_MODL_AUTOLOAD | AUG_NO_LOAD);
    Require(tree != nullptr, "init");
    Require(aug_set(tree, "/augeas/load/Interfaces/lens", "Interfaces.lns") == 0 &&
                aug_set(tree, "/augeas/load/Interfaces/incl", velk::kInterfacesFile) == 0,
            "set up");
    Require(aug_load(tree) == 0, "load");
    return tree;
}

const char* AddressIn(augeas* tree) {
    const char* value = nullptr;
    Require(aug_get(tree, kAddressPath.c_str(), &value) == 1 && value != nullptr, "get");
    return value;
}

}  // namespace bench
