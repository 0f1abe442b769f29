// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_record.h - the wireless daemon's answers, put together from the values of settings.
#ifndef VELKCTL_CAPTURE_WIRELESS_RECORD_H_
#define VELKCTL_CAPTURE_WIRELESS_RECORD_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "velkctl/text/data_bytes.h"

namespace velkctl {

// The values of eth1, by the ids of their commands.
using WirelessValues = std::map<uint32_t, Data>;

// Returns the keys among the values.
std::vector<std::string> KeysOf(const WirelessValues& values);

// Returns the bytes of an SMsgConf, with its keys blanked, and after them those of an SMsgState if
// any value of it is known. Empty if no value of the configuration is known.
std::string WirelessRecord(const WirelessValues& values);

}  // namespace velkctl

#endif  // VELKCTL_CAPTURE_WIRELESS_RECORD_H_
