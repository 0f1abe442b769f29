// client_script.cpp - switches whether the DHCP client's script installs a lease's name servers.
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/file_edit.h"
#include "lib/base/paths.h"
#include "lib/base/shell_blocks.h"
#include "lib/base/words.h"
#include "velk.h"

namespace velk {
namespace {

constexpr char kInterfaceVariable[] = "interface";  // with or without braces around it

// The shell function that rewrites the resolver's configuration. As a word it is a call of it: the
// line that defines it has "(" right behind the name.
constexpr char kResolverUpdate[] = "make_resolv_conf";

}  // namespace
}  // namespace velk

int SetDnsDhcpScript(const std::string& nic, bool enable) {
    velk::FileEdit edit(velk::kClientScript);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    velk::ShellBlocks blocks(velk::kInterfaceVariable, nic);
    for (std::string_view line; edit.Next(line);) {
        size_t position = 0;
        if (blocks.RunsNext(line) &&
            velk::FindWord(line, velk::kResolverUpdate, /*comment_aware=*/false, position)) {
            edit.Write(velk::SwitchLine(line, position, enable));
        } else {
            edit.Keep(line);
        }
    }
    return edit.Finish();
}
