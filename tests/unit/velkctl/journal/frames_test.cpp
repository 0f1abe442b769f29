// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The framed records of a journal file.
#include "velkctl/journal/frames.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using velkctl::Crc32;
using velkctl::DecodeFrames;
using velkctl::EncodeFrame;
using velkctl::FrameKind;
using velkctl::FrameList;

using namespace std::string_literals;

TEST(Frames, HaveTheChecksumOfZlib) {
    EXPECT_EQ(Crc32(""), 0U);
    EXPECT_EQ(Crc32("123456789"), 0xCBF43926U);
}

TEST(Frames, AreLengthChecksumKindAndPayload) {
    EXPECT_EQ(EncodeFrame(FrameKind::kState, "abc"),
              "\x03\0\0\0\x33\x5D\xE1\x66\x03\0\0\0"s
              "abc"s);
}

TEST(Frames, AreReadInTheirOrder) {
    const std::string bytes = EncodeFrame(FrameKind::kHeader, "one") +
                              EncodeFrame(FrameKind::kImageBefore, "") +
                              EncodeFrame(FrameKind::kState, "a\0b"s);
    const FrameList list = DecodeFrames(bytes);
    ASSERT_EQ(list.frames.size(), 3U);
    EXPECT_EQ(list.frames[0].kind, FrameKind::kHeader);
    EXPECT_EQ(list.frames[0].payload, "one");
    EXPECT_EQ(list.frames[1].payload, "");
    EXPECT_EQ(list.frames[2].kind, FrameKind::kState);
    EXPECT_EQ(list.frames[2].payload, "a\0b"s);
    EXPECT_EQ(list.valid_length, bytes.size());
}

TEST(Frames, EndBeforeOneThatIsTornAtAnyPlace) {
    const std::string first = EncodeFrame(FrameKind::kHeader, "header");
    const std::string second = EncodeFrame(FrameKind::kState, "state");
    for (size_t length = 0; length < second.size(); ++length) {
        const FrameList list = DecodeFrames(first + second.substr(0, length));
        EXPECT_EQ(list.frames.size(), 1U) << length;
        EXPECT_EQ(list.valid_length, first.size()) << length;
    }
}

TEST(Frames, EndBeforeOneThatIsDamagedAtAnyPlace) {
    const std::string first = EncodeFrame(FrameKind::kHeader, "header");
    const std::string second = EncodeFrame(FrameKind::kState, "state");
    for (size_t at = 0; at < second.size(); ++at) {
        std::string damaged = second;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        const FrameList list = DecodeFrames(first + damaged + second);
        EXPECT_EQ(list.frames.size(), 1U) << at;
        EXPECT_EQ(list.valid_length, first.size()) << at;
    }
}

TEST(Frames, EndBeforeBlocksThatReadAsNuls) {
    const std::string first = EncodeFrame(FrameKind::kHeader, "header");
    EXPECT_EQ(DecodeFrames(first + std::string(4096, '\0')).valid_length, first.size());
}

}  // namespace
