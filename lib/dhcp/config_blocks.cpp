// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// config_blocks.cpp - finds the lines of the DHCP client's configuration that concern an interface.
#include "lib/dhcp/config_blocks.h"

#include "lib/base/words.h"
#include "velk/dhcp.h"

namespace velk {
namespace {

// Returns false for the opening line of another interface's block.
[[gnu::always_inline]] inline bool Classify(std::string_view line, std::string_view nic,
                                            bool& in_block, bool& other_block, bool comment_aware) {
    if (in_block) {
        in_block = !HasWord(line, kBlockEnd, comment_aware);
        return true;
    }
    if (!HasWord(line, "interface", comment_aware)) {
        return true;
    }
    if (Contains(line, nic)) {
        in_block = true;
        return true;
    }
    other_block = !Contains(line, kBlockEnd);  // unless the block ends on its first line
    return false;
}

}  // namespace

bool ConfigBlocks::IsInScope(std::string_view line) {
    if (other_block_) {
        other_block_ = !HasWord(line, kBlockEnd, comment_aware_);
        return false;
    }
    return Classify(line, nic_, in_block_, other_block_, comment_aware_);
}

}  // namespace velk

using namespace velk;

// Only callers of the library use it, so its copy of Classify() is small instead of fast.
[[gnu::cold]] bool IsNicName(const std::string& line, const std::string& nic, bool& in_block,
                             bool& other_block, bool comment_aware) {
    return Classify(line, nic, in_block, other_block, comment_aware);
}
