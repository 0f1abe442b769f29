// reply.h - the ways to reply, good and bad.
#ifndef SANDBOX_WLAND_REPLY_H_
#define SANDBOX_WLAND_REPLY_H_

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/wland/protocol.h"

namespace wland {

enum class ReplyMode {
    kNormal,
    kSilent,   // none
    kShort,    // the first 40 bytes
    kEmpty,    // a datagram without a byte
    kLate,     // a good one after a delay
    kGarbage,  // every byte is 0xa5
};

struct Behaviour {
    ReplyMode mode = ReplyMode::kNormal;
    std::chrono::milliseconds delay{61 * 1000};  // of late replies: when no program waits any more
};

// In the order of the modes.
const std::vector<std::string>& ReplyModeNames();
std::optional<ReplyMode> FindReplyMode(std::string_view name);

// The bytes to send instead of a good reply, or those of the good one.
std::string ReplyBytes(ReplyMode mode, const Message& good);

}  // namespace wland

#endif  // SANDBOX_WLAND_REPLY_H_
