// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// run_paths.h - the sandbox's own files on a device.
#ifndef SANDBOX_PROCESS_RUN_PATHS_H_
#define SANDBOX_PROCESS_RUN_PATHS_H_

namespace sandbox {

inline constexpr char kRunFolder[] = "/run/velk-sandbox";
inline constexpr char kHardwareSocket[] = "/run/velk-sandbox/hardware";
inline constexpr char kDaemonPidFile[] = "/run/velk-sandbox/wland.pid";
inline constexpr char kRouterPidFile[] = "/run/velk-sandbox/router.pid";  // DHCP and DNS server
inline constexpr char kNameFile[] = "/run/velk-sandbox/name";             // the device's name
inline constexpr char kShellStartFile[] = "/run/velk-sandbox/bashrc";
inline constexpr char kCompletionFolder[] = "/run/velk-sandbox/completion";
inline constexpr char kWirelessRecord[] = "/run/velk-sandbox/wireless.bin";
inline constexpr char kStandInFolder[] = "/run/velk-sandbox/bin";  // first in the search path

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_RUN_PATHS_H_
