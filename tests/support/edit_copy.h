// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_copy.h - the copies in which the library edits files.
#ifndef TESTS_SUPPORT_EDIT_COPY_H_
#define TESTS_SUPPORT_EDIT_COPY_H_

#include <string>

#include "support/paths.h"

namespace testkit {

inline constexpr char kInterfacesCopy[] = "/var/tmp/interfaces";
inline constexpr char kDhcpConfigCopy[] = "/var/tmp/dhclient.conf";
inline constexpr char kExitHooksCopy[] = "/var/tmp/dhclient-exit-hooks";
inline constexpr char kClientScriptCopy[] = "/var/tmp/dhclient-script";
inline constexpr char kIdentityCopy[] = "/var/tmp/libvelk";
inline constexpr char kCrontabCopy[] = "/var/tmp/root";

inline std::string CopyOf(const std::string& path) {
    return kEditFolder + path.substr(path.rfind('/'));
}

}  // namespace testkit

#endif  // TESTS_SUPPORT_EDIT_COPY_H_
