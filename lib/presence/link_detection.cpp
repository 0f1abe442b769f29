// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// link_detection.cpp - detects a cable in the wired port.
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "lib/base/command_output.h"
#include "lib/base/data_area.h"
#include "lib/base/join_text.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/readers_turn.h"
#include "lib/base/result_file.h"
#include "lib/base/shell.h"
#include "lib/base/unique_fd.h"
#include "lib/base/wait.h"
#include "lib/base/words.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

// ethtool(8) may have no answer while the driver starts, so it is asked once a second for a minute.
constexpr int kEthtoolRetry = 60;

constexpr auto kEthtoolLine = JoinText("sudo ", kEthtool, " %s > %s");

// Returns the link state from one run of ethtool; nothing if it shows none. If another program
// never ends its turn, only the first run waits for it.
std::optional<int> LinkFromEthtool(ReadersTurn::WaitMode& wait_mode) {
    const CommandLine command(kEthtoolLine.c_str(), VELK_WIRED_INTERFACE, kResultFile);
    CommandOutput output(command, wait_mode);
    wait_mode = output.next_wait_mode();
    if (output.run_result() != LIB_VELK_SUCCESS) {
        return std::nullopt;
    }
    if (!output.is_open() || output.is_empty()) {
        Log("IsWiredLinked ifstream");
        return std::nullopt;
    }
    std::optional<int> linked;
    for (std::string_view line; !linked.has_value() && output.ReadLine(line);) {
        if (Contains(line, "Link detected: yes")) {
            linked = 1;
        } else if (Contains(line, "Link detected: no")) {
            linked = 0;
        }
    }
    output.Remove();
    return linked;
}

// Returns the link state of the last link message in one rotated log file, if any.
std::optional<int> LinkFromLogFile(int number) {
    CommandOutput output(CommandLine("grep \"%s: link\" %s%d > %s", VELK_WIRED_INTERFACE,
                                     kSyslogPrefix, number, kResultFile));
    if (output.run_result() != LIB_VELK_SUCCESS) {
        return std::nullopt;
    }
    if (!output.is_open() || output.is_empty()) {
        Log("Error ifs.");
        return std::nullopt;
    }
    std::optional<int> linked;
    for (std::string_view line; output.ReadLine(line);) {
        if (Contains(line, "link up")) {
            linked = 1;
        } else if (Contains(line, "link down")) {
            linked = 0;
        }
    }
    output.Remove();
    return linked;
}

// Returns false if no tool can write a result: /var/tmp is read-only or missing, or another user's
// file has the result's name and cannot be removed.
bool CanToolsLeaveResults() {
    if (faccessat(AT_FDCWD, kEditFolder, W_OK, AT_EACCESS) == -1) {
        return false;
    }
    const bool can_leave = PrepareResultFile();
    (void)OpenResultFile();  // removes a new one again
    return can_leave;
}

// Returns the link state from the kernel's flag, see netdevice(7). The wireless interface must stay
// unused while the cable is in, even where the tools cannot report it.
int LinkFromKernel() {
    const UniqueFd fd(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq ifr{};
    PutFieldText(ifr.ifr_name, VELK_WIRED_INTERFACE);
    const bool is_known = fd.get() != -1 && ioctl(fd.get(), SIOCGIFFLAGS, &ifr) == 0;
    return is_known && (ifr.ifr_flags & IFF_RUNNING) != 0 ? 1 : 0;
}

}  // namespace
}  // namespace velk

using namespace velk;

int IsWiredLinked() {
    auto wait_mode = ReadersTurn::WaitMode::kInQueue;
    for (int attempt = 0; attempt < kEthtoolRetry; ++attempt) {
        const std::optional<int> linked = LinkFromEthtool(wait_mode);
        if (linked.has_value()) {
            return *linked;
        }
        WaitSeconds(1);
    }
    Log("(ETHTOOL_RETRY - 1) == i)");
    const int linked = IsWiredLinkedFromSyslog();
    return CanToolsLeaveResults() ? linked : LinkFromKernel();
}

int IsWiredLinkedFromSyslog() {
    if (const std::optional<int> linked = LinkFromLogFile(0); linked.has_value()) {
        return *linked;
    }
    return LinkFromLogFile(1).value_or(0);
}
