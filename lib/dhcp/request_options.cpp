// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request_options.cpp - the options that the DHCP client requests for an interface.
#include <cstring>
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/file_edit.h"
#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velk/dhcp.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr char kStatementEnd[] = ";";

// Returns the line without the option at `position`. If a comma follows the option anywhere on the
// line, the character after its first place is removed too. Otherwise all characters before the
// option that are no letters are removed too, but never the line's first character.
std::string WithoutOption(std::string_view line, const std::string& option, size_t position) {
    if (Contains(line, option + ",")) {
        return std::string(line).erase(position, option.size() + 1);
    }
    const size_t behind = position + option.size();
    while (position > 1 && !IsLetter(line[position - 1])) {
        --position;
    }
    return std::string(line.substr(0, position)).append(line.substr(behind));
}

// Returns the line with the option as the last one of the statement that ends at `end`.
std::string WithOption(std::string_view line, const std::string& option, size_t end) {
    return std::string(line).insert(end, "," + option);
}

// Finds the lines of the "request" statements that concern an interface. A statement may run over
// several lines.
class RequestLines {
  public:
    RequestLines(std::string_view nic, bool comment_aware)
        : blocks_(nic, comment_aware), comment_aware_(comment_aware) {}

    // Takes the next line, with its newline. Returns true if it belongs to a statement. A line
    // outside the interface's block does not count if it holds a "#" anywhere.
    bool Holds(std::string_view line) {
        const bool is_in_scope = blocks_.IsInScope(line);
        if (!is_in_scope ||
            (!blocks_.in_block() && memchr(line.data(), '#', line.size()) != nullptr)) {
            return false;
        }
        in_request_ = in_request_ || HasWord(line, "request", comment_aware_);
        return in_request_;
    }

    // Returns the last line with the option added or removed. A statement counts as ended only
    // by a line that ends it without naming the option.
    std::string Edit(std::string_view line, const std::string& option, bool add);

  private:
    ConfigBlocks blocks_;
    const bool comment_aware_;
    bool in_request_ = false;
};

std::string RequestLines::Edit(std::string_view line, const std::string& option, bool add) {
    size_t position = 0;
    if (FindWord(line, option, comment_aware_, position)) {
        return add ? std::string(line) : WithoutOption(line, option, position);
    }
    const size_t end = line.find(kStatementEnd);
    if (end == std::string_view::npos) {
        return std::string(line);
    }
    in_request_ = false;
    return add ? WithOption(line, option, end) : std::string(line);
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetDhcpServer(const std::string& nic, const std::string& option, bool& requested,
                  bool comment_aware) {
    LineReader config = LineReader::OfFileNeverEmpty(kDhcpConfigFile);
    if (!config.is_open()) {
        return LIB_VELK_FAILURE;
    }
    requested = false;
    RequestLines requests(nic, comment_aware);
    for (std::string_view line; config.ReadFullLine(line);) {
        if (!requests.Holds(line)) {
            continue;
        }
        requested = Contains(line, option);
        if (requested || Contains(line, kStatementEnd)) {
            break;
        }
    }
    return LIB_VELK_SUCCESS;
}

int SetDhcpServer(const std::string& nic, const std::string& option, bool add, bool comment_aware) {
    FileEdit edit(kDhcpConfigFile);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    RequestLines requests(nic, comment_aware);
    for (std::string_view line; edit.ReadLine(line);) {
        if (requests.Holds(line)) {
            edit.Write(requests.Edit(line, option, add));
        } else {
            edit.Keep(line);
        }
    }
    return edit.Finish();
}

int SetDhcpRequest(const std::string& nic, bool enable) {
    FileEdit edit(kDhcpConfigFile);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    ConfigBlocks blocks(nic, /*comment_aware=*/false);  // a switched-off block is one too
    for (std::string_view line; edit.ReadLine(line);) {
        const bool is_in_scope = blocks.IsInScope(line);
        // A line with "}" is switched together with its block, although it is not part of it. So
        // is a "}" that ends no block.
        if (is_in_scope && (blocks.in_block() || Contains(line, kBlockEnd))) {
            edit.Write(SwitchLine(line, std::string_view::npos, enable));
        } else {
            edit.Keep(line);
        }
    }
    return edit.Finish();
}
