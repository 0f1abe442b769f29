// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// daemon_mutator.cpp - changes an input of the daemon's target: mostly the field of the input's
// command, to a value with an effect.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/kit/daemon_record.h"
#include "support/dice.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {
namespace {

using testkit::Dice;

constexpr size_t kRecord = kHead + kHeader;
constexpr size_t kSeed = kHead + kMessage;  // an input without a value

char Byte(size_t number) {
    return static_cast<char>(number & 0xFF);
}

void PutNumber(std::string& input, size_t offset, size_t number) {
    input[offset] = Byte(number);
    input[offset + 1] = Byte(number / 256);
}

size_t OneOf(Dice& dice, const std::vector<size_t>& numbers) {
    return numbers[dice.Below(numbers.size())];
}

// Changes the field of the command.
void ChangeField(std::string& input, const RecordRow& row, Dice& dice) {
    const size_t offset = kRecord + row.offset;
    if (row.field == Field::kCode || row.field == Field::kNumber) {
        PutNumber(input, offset, OneOf(dice, {0, 1, 2, 3, 4, 5, 0xFF, 0x100, 0xFFFF}));
    } else if (row.field == Field::kText && dice.OneIn(2)) {
        const size_t size = row.size - kLengthSize;
        PutNumber(input, offset, OneOf(dice, {0, size - 1, size, size + 1, 0xFFFF}));
    } else {
        const size_t front = row.field == Field::kText ? kLengthSize : 0;
        input.replace(offset + front, row.size - front, row.size - front, Byte(dice.Below(256)));
    }
}

// Changes the value of a set.
void ChangeValue(std::string& input, const RecordRow& row, Dice& dice) {
    if (row.field == Field::kText) {
        const size_t size = row.size - kLengthSize;
        const size_t length = OneOf(dice, {0, 5, 10, 13, 26, size - 1, size, size + 1, 512});
        input.resize(kSeed);
        input.append(length, Byte(1 + dice.Below(255)));
    } else {
        input.resize(kSeed);
        input += Byte(dice.Below(16));
    }
}

void Change(std::string& input, Dice& dice) {
    const RecordRow& row = kRecordRows[static_cast<unsigned char>(input[0]) % kRecordRows.size()];
    switch (dice.Below(8)) {
        case 0:
            input[0] = Byte(dice.Below(kRecordRows.size()));
            return;
        case 1:
            input[1] = dice.OneIn(2) ? 'g' : 's';
            return;
        case 2:
            input[2] = Byte(OneOf(
                dice, {0, kHeader - 1, kHeader, kRecord, kMessage - 1, kMessage, kMessage + 1}));
            return;
        case 3:
        case 4:
            ChangeValue(input, row, dice);
            return;
        default:
            ChangeField(input, row, dice);
            return;
    }
}

}  // namespace
}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
    testkit::Dice dice(seed);
    if (dice.OneIn(3)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    std::string input(reinterpret_cast<const char*>(data), size);
    input.resize(std::max(size, fuzz::kSeed));
    fuzz::Change(input, dice);
    const size_t length = std::min(input.size(), max_size);
    memcpy(data, input.data(), length);
    return length;
}
