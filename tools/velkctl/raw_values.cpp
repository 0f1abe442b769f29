// raw_values.cpp - values that are bytes and numbers as the device reports them.
#include "velkctl/raw_values.h"

#include <cstdint>
#include <cstring>

namespace velkctl {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

uint16_t NumberAt(const Data& data, size_t offset) {
    uint16_t number = 0;
    memcpy(&number, &data[offset], sizeof(number));
    return number;
}

}  // namespace

std::string HexBytesKind::Print(const Data& data) const {
    std::string digits;
    for (size_t i = 0; i < count_; ++i) {
        const auto value = static_cast<unsigned char>(data[i]);
        digits.push_back(kHexDigits[value >> 4U]);
        digits.push_back(kHexDigits[value & 0xfU]);
    }
    return digits;
}

std::string NumberPairKind::Print(const Data& data) const {
    return std::to_string(NumberAt(data, 0)) + " " + std::to_string(NumberAt(data, 2));
}

}  // namespace velkctl
