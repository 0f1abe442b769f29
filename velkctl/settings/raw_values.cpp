// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// raw_values.cpp - values that are bytes and numbers as the device reports them.
#include "velkctl/settings/raw_values.h"

#include <cstdint>
#include <cstring>

#include "velkctl/text/data_bytes.h"
#include "velkctl/text/hex.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr size_t kMacDigits = 12;

uint16_t NumberAt(const Data& data, size_t offset) {
    uint16_t number = 0;
    memcpy(&number, &data[offset], sizeof(number));
    return number;
}

bool IsMacAddress(std::string_view text) {
    return text.size() == kMacDigits && IsHex(text);
}

}  // namespace

std::string MacAddressKind::Print(const Data& data) const {
    std::string text = PrintText(data, kNone);
    if (!IsMacAddress(text)) {
        return text;
    }
    for (size_t at = kMacDigits - 2; at > 0; at -= 2) {
        text.insert(at, 1, ':');
    }
    return text;
}

std::string HexBytesKind::Print(const Data& data) const {
    return ToHex({data.data(), count_});
}

std::string NumberPairKind::Print(const Data& data) const {
    return std::to_string(NumberAt(data, 0)) + " " + std::to_string(NumberAt(data, 2));
}

nlohmann::ordered_json NumberPairKind::ToJson(const Data& data) const {
    return {NumberAt(data, 0), NumberAt(data, 2)};
}

}  // namespace velkctl
