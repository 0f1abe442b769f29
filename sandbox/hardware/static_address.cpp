// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// static_address.cpp - reads static addresses from /etc/network/interfaces.
#include "sandbox/hardware/static_address.h"

#include <fstream>
#include <sstream>

#include <arpa/inet.h>

#include "lib/base/paths.h"

namespace sandbox {
namespace {

struct Reading {
    bool in_stanza = false;
    bool has_address = false;
    bool has_mask = false;
    StaticAddress found;
};

void ReadLine(const std::string& line, const std::string& interface, Reading& reading) {
    std::istringstream words(line);
    std::string key, value, family, method;
    words >> key >> value >> family >> method;
    if (key == "iface") {
        reading.in_stanza = value == interface && family == "inet" && method == "static";
    } else if (reading.in_stanza && key == "address") {
        reading.has_address = inet_pton(AF_INET, value.c_str(), &reading.found.address) == 1;
    } else if (reading.in_stanza && key == "netmask") {
        reading.has_mask = inet_pton(AF_INET, value.c_str(), &reading.found.mask) == 1;
    } else if (reading.in_stanza && key == "gateway") {
        (void)inet_pton(AF_INET, value.c_str(), &reading.found.gateway);
    }
}

}  // namespace

std::optional<StaticAddress> ReadStaticAddress(const std::string& interface) {
    std::ifstream file(velk::kInterfacesFile);
    Reading reading;
    for (std::string line; std::getline(file, line);) {
        ReadLine(line, interface, reading);
    }
    if (!reading.has_address || !reading.has_mask) {
        return std::nullopt;
    }
    return reading.found;
}

}  // namespace sandbox
