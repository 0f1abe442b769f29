// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// bytes.h - the bytes of a wireless configuration, for comparisons.
#ifndef TESTS_UNIT_LIB_WLAN_BYTES_H_
#define TESTS_UNIT_LIB_WLAN_BYTES_H_

#include <string>

#include "velk.h"

namespace testkit {

inline std::string Bytes(const SMsgConf& conf) {
    return {reinterpret_cast<const char*>(&conf), sizeof(conf)};
}

}  // namespace testkit

#endif  // TESTS_UNIT_LIB_WLAN_BYTES_H_
