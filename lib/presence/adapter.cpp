// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// adapter.cpp - detects a supported wireless adapter among the attached USB devices.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/wlan.h"

namespace velk {
namespace {

constexpr char kBuiltInModel[] = "QT4408RKM";
constexpr size_t kKeyLength = 4;  // the length of "VID=" and "PID="

// Returns the hexadecimal number after a key at the start of the line. Unlike ParseLeadingNumber(),
// strtoul(3) allows blanks, a sign and "0x" before it, and a number that is too large is the
// largest one.
unsigned NumberAfterKey(std::string_view line) {
    const std::string text(line.substr(kKeyLength));
    const unsigned long number = strtoul(text.c_str(), nullptr, 16);
    return static_cast<unsigned>(std::min<unsigned long>(number, UINT_MAX));
}

// Returns the ids in the kernel's form.
std::string DeviceText(unsigned vendor, unsigned product) {
    char text[sizeof("Vendor=01234567 ProdID=01234567")];
    (void)snprintf(text, sizeof(text), "Vendor=%04x ProdID=%04x", vendor, product);
    return text;
}

// Returns the texts that identify supported adapters. A vendor applies to all products after it.
std::vector<std::string> SupportedAdapters() {
    std::vector<std::string> adapters;
    adapters.push_back(kBuiltInModel);
    LineReader list(kSupportList);
    unsigned vendor = 0;
    for (std::string_view line; list.ReadLine(line);) {
        if (Contains(line, "VID=")) {
            vendor = NumberAfterKey(line);
        }
        if (Contains(line, "PID=")) {
            adapters.push_back(DeviceText(vendor, NumberAfterKey(line)));
        }
    }
    return adapters;
}

}  // namespace
}  // namespace velk

using namespace velk;

int IsWlanAttached() {
    const std::vector<std::string> adapters = SupportedAdapters();
    LineReader devices(kUsbDevices);
    for (std::string_view line; devices.ReadLine(line);) {
        const auto is_on_line = [&](const std::string& text) { return Contains(line, text); };
        if (std::any_of(adapters.begin(), adapters.end(), is_on_line)) {
            return 1;
        }
    }
    return 0;
}
