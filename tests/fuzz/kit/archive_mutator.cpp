// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// archive_mutator.cpp - changes the headers and blocks of a tar archive, and gives the headers
// their checksums again.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/dice.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {
namespace {

using testkit::Dice;

constexpr size_t kBlock = 512;
constexpr size_t kChecksum = 148;
constexpr size_t kChecksumSize = 8;
constexpr size_t kMagic = 257;

struct Field {
    size_t begin;
    size_t size;
};

// Name, mode, owner, size, time, type, target, prefix.
constexpr std::array<Field, 8> kFields{
    {{0, 100}, {100, 8}, {108, 8}, {124, 12}, {136, 12}, {156, 1}, {157, 100}, {345, 155}}};

bool IsHeader(const std::string& text, size_t at) {
    return at + kBlock <= text.size() && text.compare(at + kMagic, 5, "ustar") == 0;
}

void PutChecksum(std::string& text, size_t at) {
    text.replace(at + kChecksum, kChecksumSize, kChecksumSize, ' ');
    unsigned sum = 0;
    for (size_t i = at; i < at + kBlock; ++i) {
        sum += static_cast<unsigned char>(text[i]);
    }
    char digits[kChecksumSize];
    (void)snprintf(digits, sizeof(digits), "%06o", sum);
    text.replace(at + kChecksum, kChecksumSize - 1, digits, kChecksumSize - 1);
}

// As the fuzzer changes bytes, with the words of its dictionary. The field keeps its size.
void ChangeField(std::string& text, const Field& field) {
    std::string bytes = text.substr(field.begin, field.size);
    bytes.resize(strnlen(bytes.data(), bytes.size()));
    const size_t size = bytes.size();
    bytes.resize(field.size);
    bytes.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(bytes.data()), size, field.size));
    bytes.resize(field.size);
    text.replace(field.begin, field.size, bytes);
}

// Doubles a block, takes it out, or exchanges it with another one.
void ChangeBlocks(std::string& text, size_t at, Dice& dice) {
    const std::string block = text.substr(at, kBlock);
    switch (dice.Below(3)) {
        case 0:
            text.insert(at, block);
            return;
        case 1:
            text.erase(at, kBlock);
            return;
        default: {
            const size_t other = dice.Below(text.size() / kBlock) * kBlock;
            text.replace(at, kBlock, text.substr(other, kBlock));
            text.replace(other, kBlock, block);
        }
    }
}

void Change(std::string& text, Dice& dice) {
    const size_t at = dice.Below(text.size() / kBlock) * kBlock;
    if (dice.OneIn(6)) {
        ChangeBlocks(text, at, dice);
    } else if (IsHeader(text, at)) {
        const Field& field = kFields[dice.Below(kFields.size())];
        ChangeField(text, {at + field.begin, field.size});
    } else {
        ChangeField(text, {at, kBlock});
    }
}

}  // namespace
}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
    testkit::Dice dice(seed);
    if (size < fuzz::kBlock || dice.OneIn(8)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    std::string text(reinterpret_cast<const char*>(data), size);
    for (size_t changes = 1 + dice.Below(3); changes > 0 && text.size() >= fuzz::kBlock;
         --changes) {
        fuzz::Change(text, dice);
    }
    for (size_t at = 0; at < text.size(); at += fuzz::kBlock) {
        if (fuzz::IsHeader(text, at)) {
            fuzz::PutChecksum(text, at);
        }
    }
    const size_t length = std::min(text.size(), max_size);
    memcpy(data, text.data(), length);
    return length;
}
