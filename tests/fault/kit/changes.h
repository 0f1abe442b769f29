// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changes.h - changes made with velkctl on a device of real tools, and the states they leave.
#ifndef TESTS_FAULT_KIT_CHANGES_H_
#define TESTS_FAULT_KIT_CHANGES_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fault/kit/scene.h"
#include "velk.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"

namespace fault {

using Changes = std::vector<velkctl::SettingChange>;

// Returns the change that a request makes; nothing for other requests and values that velkctl
// refuses.
std::optional<velkctl::SettingChange> ChangeOf(const _velk_request& request);
// Takes values as people write them.
velkctl::SettingChange ChangeTo(const char* name, std::string_view value);

// All that a change can change.
struct DeviceState {
    Files files{};           // without the note of the last address: it is in /tmp
    std::string wireless{};  // the daemon's stored configuration, byte by byte
    std::string port{};      // the options of the last "ethtool -s"
    bool operator==(const DeviceState&) const = default;
};

// Names each part that differs, with its contents.
std::string Differences(const DeviceState& state, const DeviceState& before);

// A run of velkctl in a child process. Returns its exit status.
using Work = std::function<int()>;

// A device with a wireless daemon in a thread of the test, and tools that edit files or a port of
// their own: its sudo(8) runs nothing else.
class ChangeDevice {
  public:
    explicit ChangeDevice(const Scene& scene = {});

    // Restarts the daemon when it has served all requests.
    DeviceState State();
    // Restarts the daemon, too, and gives the device another boot id.
    void Reboot();
    static void StartNextBoot();  // only the boot id

    // The set as the verb makes it, without its checks.
    static Work Set(Changes changes);
    // Several settings as one change, and restarts of interfaces. During it, eth0 is up with this
    // address.
    static Work Apply(Changes changes, std::vector<std::string> restarts = {},
                      std::string address = "");
    // The same without restarts, but `carry_out` makes the planned change.
    using CarryOut =
        std::function<velkctl::ExitStatus(const velkctl::ApplyPlan&, velkctl::Report&)>;
    static Work ApplyWith(Changes changes, CarryOut carry_out);
    static Work Undo();
    // Prints to this file.
    static Work Recover(bool at_boot = false, std::string output = "/dev/null");

  private:
    Device device_;
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_CHANGES_H_
