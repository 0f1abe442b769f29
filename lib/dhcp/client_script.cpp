// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// client_script.cpp - switches whether the DHCP client's script installs a lease's name servers.
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/file_edit.h"
#include "lib/base/paths.h"
#include "lib/base/shell_blocks.h"
#include "lib/base/words.h"
#include "velk/dhcp.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr char kInterfaceVariable[] = "interface";  // with or without braces around it

// The shell function that rewrites the resolver's configuration. As a word it is a call: in its
// definition "(" follows the name directly.
constexpr char kResolverUpdate[] = "make_resolv_conf";

}  // namespace
}  // namespace velk

using namespace velk;

int SetDnsDhcpScript(const std::string& nic, bool enable) {
    FileEdit edit(kClientScript);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    ShellBlocks blocks(kInterfaceVariable, nic);
    for (std::string_view line; edit.ReadLine(line);) {
        size_t position = 0;
        if (blocks.RunsNext(line) &&
            FindWord(line, kResolverUpdate, /*comment_aware=*/false, position)) {
            edit.Write(SwitchLine(line, position, enable));
        } else {
            edit.Keep(line);
        }
    }
    return edit.Finish();
}
