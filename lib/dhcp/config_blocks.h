// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// config_blocks.h - finds the lines of the DHCP client's configuration that apply to an interface.
#ifndef VELK_DHCP_CONFIG_BLOCKS_H_
#define VELK_DHCP_CONFIG_BLOCKS_H_

#include <string>
#include <string_view>

namespace velk {

constexpr char kBlockEnd[] = "}";

// Follows the blocks of dhclient.conf(5). The statements of an interface are between a line with
// "interface" and its name and a line with "}". Statements outside blocks are for all interfaces.
// With an empty name every block counts as the interface's, and the file begins inside one.
class ConfigBlocks {
  public:
    // With `comment_aware`, words after a "#" do not count.
    ConfigBlocks(std::string_view nic, bool comment_aware)
        : nic_(nic), comment_aware_(comment_aware), in_block_(nic.empty()) {}

    // Takes the next line, with its newline. Returns false in other interfaces' blocks.
    bool IsInScope(std::string_view line);

    // Returns true if the last line is in the interface's block; false at its closing line.
    bool in_block() const { return in_block_; }

  private:
    const std::string nic_;
    const bool comment_aware_;
    bool in_block_;
    bool other_block_ = false;
};

}  // namespace velk

#endif  // VELK_DHCP_CONFIG_BLOCKS_H_
