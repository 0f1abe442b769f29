// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// record_mutator.cpp - changes an input of fixed fields: mostly one field, to a value that counts.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/dice.h"
#include "velk.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {
namespace {

using testkit::Dice;

const std::vector<std::string> kInterfaces = {"",      "eth0", "eth1",
                                              "eth01", "lo",   "eth0123456789012"};
const std::vector<std::string> kTexts = {"",
                                         "\x01",
                                         "\x02",
                                         "\x63",
                                         "192.168.0.10",
                                         "a'b\\c/d&e\"",
                                         "secret-phrase",
                                         "\x04\x1f"
                                         "03:30",
                                         "ntp.example.com",
                                         "$(reboot)",
                                         "\n",
                                         "\xff\xfe"};

void PutText(Dice& dice, const std::vector<std::string>& texts, char* field, size_t size) {
    const std::string& text = dice.OneOf(texts);
    memset(field, 0, size);
    text.copy(field, size);
}

uint32_t SomeId(Dice& dice) {
    if (dice.OneIn(8)) {
        return VELK_CMD_LINK_SPEED;
    }
    const size_t number = dice.Below(40);
    if (number < 12) {
        return static_cast<uint32_t>(number);
    }
    return static_cast<uint32_t>(number < 21 ? 101 + number - 12 : 300 + number - 21);
}

void ChangeField(_velk_request& request, Dice& dice) {
    switch (dice.Below(4)) {
        case 0:
            PutText(dice, kInterfaces, request.interface, sizeof(request.interface));
            return;
        case 1:
            request.command_type = static_cast<uint32_t>(dice.Below(5));
            return;
        case 2:
            request.command_id = SomeId(dice);
            return;
        default:
            PutText(dice, kTexts, request.data, sizeof(request.data));
            return;
    }
}

}  // namespace
}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
    testkit::Dice dice(seed);
    if (max_size < sizeof(_velk_request) || dice.OneIn(3)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    _velk_request request{};
    memcpy(&request, data, std::min(size, sizeof(request)));
    fuzz::ChangeField(request, dice);
    memcpy(data, &request, sizeof(request));
    return sizeof(request);
}
