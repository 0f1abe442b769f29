// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_mutator.cpp - changes the frames of a journal file, and gives them their checksums again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "support/dice.h"
#include "velkctl/journal/frames.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {
namespace {

using testkit::Dice;
using velkctl::Frame;
using velkctl::FrameKind;

constexpr size_t kKinds = 12;  // one of them is unknown
constexpr size_t kRoom = 512;  // a payload grows by this at most

const std::vector<std::string> kStates = {"prepared",  "applying", "waiting", "confirmed", "done",
                                          "reverting", "reverted", "stuck",   "kept",      "none"};

// As the fuzzer changes bytes, with the words of its dictionary.
void ChangeBytes(std::string& text) {
    const size_t size = text.size();
    text.resize(size + kRoom);
    text.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(text.data()), size, size + kRoom));
}

Frame StateFrame(Dice& dice) {
    return {FrameKind::kState, "{\"state\":\"" + dice.OneOf(kStates) + "\"}"};
}

// One change to one frame, or to their order.
void ChangeFrames(std::vector<Frame>& frames, Dice& dice) {
    const size_t at = dice.Below(frames.size());
    const auto place = frames.begin() + static_cast<std::ptrdiff_t>(at);
    switch (dice.Below(8)) {
        case 0:
            frames.insert(place, Frame(*place));
            return;
        case 1:
            frames.erase(place);
            return;
        case 2:
            std::swap(*place, frames[dice.Below(frames.size())]);
            return;
        case 3:
            place->kind = static_cast<FrameKind>(dice.Below(kKinds));
            return;
        case 4:
            frames.insert(dice.OneIn(2) ? place : frames.end(), StateFrame(dice));
            return;
        default:
            ChangeBytes(place->payload);
            return;
    }
}

// An input of the recover target has its options on a line before the frames.
std::string_view TakeHead(std::string_view& bytes) {
    const size_t end = bytes.starts_with("options ") ? bytes.find('\n') + 1 : 0;
    const std::string_view head = bytes.substr(0, end);
    bytes.remove_prefix(end);
    return head;
}

std::string ChangedHead(std::string_view head, Dice& dice) {
    const std::vector<std::string> options = {"new",  "cut",  "old",    "force",  "keep",
                                              "boot", "json", "fault1", "fault2", "fault3"};
    if (head.empty() || !dice.OneIn(4)) {
        return std::string(head);
    }
    std::string text = "options";
    for (size_t count = dice.Below(4); count > 0; --count) {
        text.append(" ").append(dice.OneOf(options));
    }
    return text.append(" \n");
}

std::string Changed(std::string_view bytes, Dice& dice) {
    std::string text = ChangedHead(TakeHead(bytes), dice);
    velkctl::FrameList list = velkctl::DecodeFrames(bytes);
    for (size_t changes = 1 + dice.Below(3); changes > 0 && !list.frames.empty(); --changes) {
        ChangeFrames(list.frames, dice);
    }
    for (const Frame& frame : list.frames) {
        text.append(EncodeFrame(frame.kind, frame.payload));
    }
    return text.append(bytes.substr(list.valid_length));
}

}  // namespace
}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
    testkit::Dice dice(seed);
    if (dice.OneIn(5)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    const std::string text = fuzz::Changed({reinterpret_cast<const char*>(data), size}, dice);
    const size_t length = std::min(text.size(), max_size);
    memcpy(data, text.data(), length);
    return length;
}
