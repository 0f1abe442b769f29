// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recorded_state.h - the state of a captured device: links, addresses, processes, tools.
#ifndef SANDBOX_DEVICE_RECORDED_STATE_H_
#define SANDBOX_DEVICE_RECORDED_STATE_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "sandbox/device/network_control.h"

namespace sandbox {

enum class Link { kMissing, kDown, kNoLink, kLink };

struct RecordedInterface {
    std::string name;
    Link link = Link::kMissing;
    std::optional<HardwareAddress> hardware_address{};
    std::optional<in_addr> gateway{};
};

struct RecordedAddress {
    std::string label;  // "eth0", or "eth0:avahi" of an alias
    StaticAddress address{};
};

struct RecordedSocket {
    std::string path;
    mode_t mode = 0;
};

struct RecordedClient {
    std::string interface;
    std::string lease_file;
};

struct RecordedTool {
    std::string name;  // or its path
    std::string path;  // empty: missing
};

enum class RecordedDaemon { kMissing, kSilent, kAnswers };

struct RecordedState {
    std::vector<RecordedInterface> interfaces;
    std::vector<RecordedAddress> addresses;
    std::optional<LinkMode> link_mode;  // mode of eth0
    std::vector<RecordedSocket> sockets;
    std::vector<RecordedClient> clients;
    std::vector<RecordedTool> tools;
    std::vector<std::string> missing_folders;
    RecordedDaemon daemon = RecordedDaemon::kMissing;

    // Returns null if nothing is recorded about the interface.
    const RecordedInterface* Find(const std::string& interface) const;
};

// Parses the lines of a capture's "recordings/device.txt", which docs/sandbox.md describes. Ignores
// lines with another first word. Throws Failure for one that is not valid.
RecordedState ParseState(const std::string& text);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_RECORDED_STATE_H_
