// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// reply_modes.h - the modes of the daemon's replies, correct and faulty.
#ifndef SANDBOX_WLAND_REPLY_MODES_H_
#define SANDBOX_WLAND_REPLY_MODES_H_

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/wland/protocol.h"

namespace wland {

enum class ReplyMode {
    kNormal,
    kSilent,   // no reply
    kShort,    // the first 40 bytes
    kEmpty,    // a datagram of 0 bytes
    kLate,     // a correct reply after a delay
    kGarbage,  // every byte is 0xa5
};

struct Behaviour {
    ReplyMode mode = ReplyMode::kNormal;
    std::chrono::milliseconds delay{
        61 * 1000};  // the delay of late replies, longer than any program waits
};

// Returns the names in the order of the modes.
const std::vector<std::string>& ReplyModeNames();
std::optional<ReplyMode> FindReplyMode(std::string_view name);

// Returns the bytes to send: those of the correct reply `good`, or faulty ones.
std::string ReplyBytes(ReplyMode mode, const Message& good);

}  // namespace wland

#endif  // SANDBOX_WLAND_REPLY_MODES_H_
