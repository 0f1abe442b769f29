// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// frames.cpp - the framed records of a journal file.
#include "velkctl/journal/frames.h"

#include <array>
#include <optional>

namespace velkctl {
namespace {

constexpr size_t kNumberSize = 4;
constexpr size_t kStartSize = 3 * kNumberSize;
constexpr uint32_t kPolynomial = 0xEDB88320;
constexpr unsigned kByteBits = 8;

constexpr std::array<uint32_t, 256> MakeTable() {
    std::array<uint32_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        uint32_t value = i;
        for (unsigned bit = 0; bit < kByteBits; ++bit) {
            value = (value & 1U) != 0 ? kPolynomial ^ (value >> 1U) : value >> 1U;
        }
        table[i] = value;
    }
    return table;
}

constexpr std::array<uint32_t, 256> kTable = MakeTable();

std::string EncodeNumber(uint32_t number) {
    std::string bytes;
    for (unsigned i = 0; i < kNumberSize; ++i) {
        bytes.push_back(static_cast<char>(number >> (i * kByteBits)));
    }
    return bytes;
}

uint32_t DecodeNumber(std::string_view bytes) {
    uint32_t number = 0;
    for (unsigned i = 0; i < kNumberSize; ++i) {
        number |= uint32_t{static_cast<uint8_t>(bytes[i])} << (i * kByteBits);
    }
    return number;
}

// Returns the first frame; nothing if it is torn.
std::optional<Frame> FirstFrame(std::string_view bytes) {
    if (bytes.size() < kStartSize) {
        return std::nullopt;
    }
    const size_t length = DecodeNumber(bytes);
    if (length > bytes.size() - kStartSize) {
        return std::nullopt;
    }
    const std::string_view checked = bytes.substr(2 * kNumberSize, kNumberSize + length);
    if (Crc32(checked) != DecodeNumber(bytes.substr(kNumberSize))) {
        return std::nullopt;
    }
    const auto kind = static_cast<FrameKind>(DecodeNumber(checked));
    return Frame{kind, std::string(checked.substr(kNumberSize))};
}

}  // namespace

uint32_t Crc32(std::string_view bytes) {
    uint32_t crc = ~uint32_t{0};
    for (const char byte : bytes) {
        crc = kTable[(crc ^ static_cast<uint8_t>(byte)) & 0xFFU] ^ (crc >> kByteBits);
    }
    return ~crc;
}

std::string EncodeFrame(FrameKind kind, std::string_view payload) {
    const std::string checked = EncodeNumber(static_cast<uint32_t>(kind)).append(payload);
    std::string frame = EncodeNumber(static_cast<uint32_t>(payload.size()));
    return frame.append(EncodeNumber(Crc32(checked))).append(checked);
}

FrameList DecodeFrames(std::string_view bytes) {
    FrameList list;
    while (std::optional<Frame> frame = FirstFrame(bytes.substr(list.valid_length))) {
        list.valid_length += kStartSize + frame->payload.size();
        list.frames.push_back(std::move(*frame));
    }
    return list;
}

}  // namespace velkctl
