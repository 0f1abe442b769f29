// link_detection.cpp - tells whether a cable is plugged into the wired port.
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "lib/base/command_output.h"
#include "lib/base/data_area.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "lib/base/wait.h"
#include "lib/base/words.h"
#include "velk.h"

namespace velk {
namespace {

// ethtool(8) may have no answer while the driver starts, so it is asked once a second for a minute.
constexpr int kEthtoolRetry = 60;

// The link state as one run of ethtool shows it; nothing when it shows none. A turn that somebody
// keeps for ever costs its 3 seconds in the first of the runs alone.
std::optional<int> LinkFromEthtool(ReadersTurn::Patience& patience) {
    CommandOutput output(
        CommandLine("sudo /usr/sbin/ethtool %s > %s", VELK_WIRED_INTERFACE, kResultFile), patience);
    patience = output.patience_left();
    if (output.run_result() != LIB_VELK_SUCCESS) {
        return std::nullopt;
    }
    if (!output.is_open() || output.is_empty()) {
        Log("IsWiredLinked ifstream");
        return std::nullopt;
    }
    std::optional<int> linked;
    for (std::string_view line; !linked.has_value() && output.Next(line);) {
        if (Contains(line, "Link detected: yes")) {
            linked = 1;
        } else if (Contains(line, "Link detected: no")) {
            linked = 0;
        }
    }
    output.Remove();
    return linked;
}

// The last link message of the kernel in one rotated log file; nothing when it holds none.
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
    for (std::string_view line; output.Next(line);) {
        if (Contains(line, "link up")) {
            linked = 1;
        } else if (Contains(line, "link down")) {
            linked = 0;
        }
    }
    output.Remove();
    return linked;
}

// False where /var/tmp is read-only or missing, or somebody's file lies at the name of the results
// and cannot be removed: no tool can tell anything there.
bool CanToolsLeaveResults() {
    if (faccessat(AT_FDCWD, kEditFolder, W_OK, AT_EACCESS) == -1) {
        return false;
    }
    const bool can_leave = PrepareResultFile();
    (void)OpenResultFile();  // removes a new one again
    return can_leave;
}

// The kernel's own flag, see netdevice(7). The wireless interface must stay unused while the cable
// is in, also where tools cannot tell of it.
int LinkFromKernel() {
    const UniqueFd fd(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq ifr{};
    PutFieldText(ifr.ifr_name, VELK_WIRED_INTERFACE);
    const bool is_known = fd.get() != -1 && ioctl(fd.get(), SIOCGIFFLAGS, &ifr) == 0;
    return is_known && (ifr.ifr_flags & IFF_RUNNING) != 0 ? 1 : 0;
}

}  // namespace
}  // namespace velk

int IsWiredLinked() {
    auto patience = velk::ReadersTurn::Patience::kThreeSeconds;
    for (int attempt = 0; attempt < velk::kEthtoolRetry; ++attempt) {
        const std::optional<int> linked = velk::LinkFromEthtool(patience);
        if (linked.has_value()) {
            return *linked;
        }
        velk::WaitSeconds(1);
    }
    velk::Log("(ETHTOOL_RETRY - 1) == i)");
    const int linked = IsWiredLinkedFromSyslog();
    return velk::CanToolsLeaveResults() ? linked : velk::LinkFromKernel();
}

int IsWiredLinkedFromSyslog() {
    if (const std::optional<int> linked = velk::LinkFromLogFile(0); linked.has_value()) {
        return *linked;
    }
    return velk::LinkFromLogFile(1).value_or(0);
}
