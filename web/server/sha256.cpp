// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sha256.cpp - the hash function of FIPS 180-4.
#include "web/server/sha256.h"

#include <array>
#include <bit>
#include <cstdint>

namespace velkweb {
namespace {

constexpr size_t kBlockBytes = 64;
constexpr size_t kLengthBytes = 8;
constexpr unsigned char kEndMark = 0x80;

using State = std::array<uint32_t, 8>;
using Schedule = std::array<uint32_t, 64>;

constexpr State kInitial{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

constexpr std::array<uint32_t, 64> kConstants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

// Returns the bytes with the end mark and their length in bits, a multiple of a block long.
std::string Padded(std::string_view bytes) {
    std::string text(bytes);
    text.push_back(static_cast<char>(kEndMark));
    while (text.size() % kBlockBytes != kBlockBytes - kLengthBytes) {
        text.push_back('\0');
    }
    const uint64_t bits = uint64_t{bytes.size()} * 8;
    for (int shift = 56; shift >= 0; shift -= 8) {
        text.push_back(static_cast<char>((bits >> shift) & 0xFFU));
    }
    return text;
}

uint32_t WordAt(std::string_view block, size_t index) {
    uint32_t word = 0;
    for (const char byte : block.substr(index * 4, 4)) {
        word = (word << 8U) | static_cast<unsigned char>(byte);
    }
    return word;
}

Schedule ScheduleOf(std::string_view block) {
    Schedule words{};
    for (size_t i = 0; i < 16; ++i) {
        words[i] = WordAt(block, i);
    }
    for (size_t i = 16; i < words.size(); ++i) {
        const uint32_t early = words[i - 15];
        const uint32_t late = words[i - 2];
        words[i] = words[i - 16] + words[i - 7] +
                   (std::rotr(early, 7) ^ std::rotr(early, 18) ^ (early >> 3U)) +
                   (std::rotr(late, 17) ^ std::rotr(late, 19) ^ (late >> 10U));
    }
    return words;
}

void AddBlock(State& state, std::string_view block) {
    const Schedule words = ScheduleOf(block);
    auto [a, b, c, d, e, f, g, h] = state;
    for (size_t i = 0; i < words.size(); ++i) {
        const uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                               ((e & f) ^ (~e & g)) + kConstants[i] + words[i];
        const uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const State added{a, b, c, d, e, f, g, h};
    for (size_t i = 0; i < state.size(); ++i) {
        state[i] += added[i];
    }
}

std::string InHex(const State& state) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const uint32_t word : state) {
        for (int shift = 28; shift >= 0; shift -= 4) {
            text.push_back(kDigits[(word >> shift) & 0xFU]);
        }
    }
    return text;
}

}  // namespace

std::string Sha256(std::string_view bytes) {
    const std::string text = Padded(bytes);
    State state = kInitial;
    for (size_t at = 0; at < text.size(); at += kBlockBytes) {
        AddBlock(state, std::string_view(text).substr(at, kBlockBytes));
    }
    return InHex(state);
}

}  // namespace velkweb
