// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// frames.h - the framed records of a journal file.
#ifndef VELKCTL_JOURNAL_FRAMES_H_
#define VELKCTL_JOURNAL_FRAMES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// Each frame is {length of the payload, CRC-32 of kind and payload, kind}, each of four bytes with
// the low one first, then the payload.
enum class FrameKind : uint32_t {
    kHeader = 1,
    kImageBefore = 2,
    kState = 3,
    kImageAfter = 4,
    kSteps = 5,
    kWindow = 6,
    kGuardian = 7,
    kTakingBack = 8,
    kFilesBack = 9,
    kPutBack = 10,
    kMade = 11,
};

struct Frame {
    FrameKind kind;
    std::string payload;
};

// The CRC-32 of zlib and Ethernet.
uint32_t Crc32(std::string_view bytes);

std::string EncodeFrame(FrameKind kind, std::string_view payload);

struct FrameList {
    std::vector<Frame> frames{};
    size_t valid_length = 0;  // the bytes after it are torn
};

// Reads frames up to the first one that is cut or has a wrong checksum.
FrameList DecodeFrames(std::string_view bytes);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_FRAMES_H_
