// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// reply_modes.cpp - the modes of the daemon's replies, correct and faulty.
#include "sandbox/wland/reply_modes.h"

#include <algorithm>

namespace wland {
namespace {

constexpr size_t kShortSize = 40;
constexpr char kGarbageByte = '\xa5';

}  // namespace

const std::vector<std::string>& ReplyModeNames() {
    static const std::vector<std::string> names = {"normal", "silent", "short",
                                                   "empty",  "late",   "garbage"};
    return names;
}

std::optional<ReplyMode> FindReplyMode(std::string_view name) {
    const std::vector<std::string>& names = ReplyModeNames();
    const auto found = std::ranges::find(names, name);
    if (found == names.end()) {
        return std::nullopt;
    }
    return static_cast<ReplyMode>(found - names.begin());
}

std::string ReplyBytes(ReplyMode mode, const Message& good) {
    std::string bytes(reinterpret_cast<const char*>(&good), sizeof(good));
    switch (mode) {
        case ReplyMode::kNormal:
        case ReplyMode::kLate:
            return bytes;
        case ReplyMode::kShort:
            return bytes.substr(0, kShortSize);
        case ReplyMode::kGarbage:
            return std::string(bytes.size(), kGarbageByte);
        case ReplyMode::kEmpty:
        case ReplyMode::kSilent:
            break;
    }
    return {};
}

}  // namespace wland
