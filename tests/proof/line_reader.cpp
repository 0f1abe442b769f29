// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// line_reader.cpp - proofs about lib/base/line_reader.h, with a read(2) that returns any part of
// the rest or fails.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "lib/base/unique_fd.h"
#include "tests/proof/proof.h"

// The proofs begin with any state of the reader.
#define private public
#include "lib/base/line_reader.h"
#undef private

#include "lib/base/line_reader.cpp"

// Smaller blocks, so that a file of a few bytes fills, moves and replaces them.
SMALLER("lib/base/line_reader.cpp", "kFirstSize = 4 * 1024;", "kFirstSize = 1;")
SMALLER("lib/base/line_reader.cpp", "kBlockSize = 64 * 1024;", "kBlockSize = 2;")
RUNTIME("BLOCK=8")
RUNTIME("POOL=4")

namespace {

constexpr size_t kMost = 3;

std::string_view file;
size_t file_position;
bool may_fail;
bool has_failed;

}  // namespace

namespace velk {

ssize_t ReadSome(int /*fd*/, char* buffer, size_t size) {
    proof_claim(size > 0, "a read asks for a byte at least");
    if (may_fail && proof_number(1) == 1) {
        has_failed = true;
        errno = EIO;
        return -1;
    }
    const size_t rest = file.size() - file_position;
    if (rest == 0) {
        return 0;
    }
    const size_t count = 1 + proof_number(rest < size ? rest - 1 : size - 1);
    for (size_t i = 0; i < count; ++i) {
        buffer[i] = file[file_position + i];
    }
    file_position += count;
    return static_cast<ssize_t>(count);
}

}  // namespace velk

using namespace velk;

extern "C" int close(int /*fd*/) {
    return 0;
}

namespace {

// Brings the reader into any state between two calls. Returns the position in the file of its first
// unread byte.
//
// The unread bytes of the block are those of the file before the position of the next read. A
// reader at the end has room for the newline of a last line. Each proof shows that a call leaves
// such a state, so they hold for any number of calls.
size_t TakeAnyState(LineReader& reader) {
    file = AnyText<kMost>();
    may_fail = proof_number(1) == 1;
    reader.error_ = 0;
    reader.size_ = size_t{1} << proof_number(2);
    reader.block_.reset(new char[reader.size_]);
    reader.end_ = proof_number(reader.size_);
    reader.begin_ = proof_number(reader.end_);
    const size_t held = reader.end_ - reader.begin_;
    proof_assume(held <= file.size());
    file_position = held + proof_number(file.size() - held);
    for (size_t i = 0; i < held; ++i) {
        reader.block_[reader.begin_ + i] = file[file_position - held + i];
    }
    reader.at_end_ = proof_number(1) == 1;
    has_failed = reader.at_end_ && file_position < file.size();
    proof_assume(!has_failed || may_fail);
    proof_assume(!reader.at_end_ || held == 0 || reader.end_ < reader.size_);
    return file_position - held;
}

void ClaimState(const LineReader& reader, size_t position) {
    proof_claim(reader.begin_ <= reader.end_ && reader.end_ <= reader.size_,
                "the unread bytes are in the block");
    const size_t held = reader.end_ - reader.begin_;
    proof_claim(position + held == file_position, "they are all that was read and not taken");
    const size_t any = proof_number(kMost);
    proof_claim(any >= held || reader.block_[reader.begin_ + any] == file[position + any],
                "they are the bytes of the file");
    proof_claim(!reader.at_end_ || file_position == file.size() || has_failed,
                "the end is the file's, or a failure");
    proof_claim(!reader.at_end_ || held == 0 || reader.end_ < reader.size_,
                "at the end there is room for a newline");
}

}  // namespace

PROOF(first_read, 6, "a file of up to 3 bytes, a read of any length or none; a block of 1") {
    file = AnyText<kMost>();
    may_fail = true;
    LineReader reader(UniqueFd(3), SIZE_MAX);
    proof_claim(reader.is_open() == !has_failed,
                "a failure of the first read counts as not opened");
    proof_claim(reader.error() == (has_failed ? EIO : 0), "the error is that of the read");
    proof_claim(reader.is_empty() == (file.empty() && !has_failed),
                "a file without bytes is empty");
    ClaimState(reader, 0);
    proof_reached(reader.is_empty(), "an empty file");
    proof_reached(file_position == 1, "a byte");
    proof_reached(has_failed, "a failure");
}

PROOF(full_line, 6,
      "a state with a file of up to 3 bytes and a block of 1, 2 or 4; each read may fail") {
    LineReader reader(UniqueFd(-1), SIZE_MAX);
    const size_t position = TakeAnyState(reader);
    const bool was_limited = proof_number(1) == 1;
    reader.longest_line_ = was_limited ? 2 : SIZE_MAX;
    std::string_view line;
    if (!reader.ReadFullLine(line)) {
        proof_claim(reader.begin_ == reader.end_ && reader.at_end_,
                    "without a line the reader is at its end");
        proof_claim(was_limited || position == file_position, "all bytes were taken");
        proof_claim(has_failed || was_limited || file_position == file.size(),
                    "the whole file was read");
        proof_reached(was_limited && file_position == position + 2, "a line that is too long");
        return;
    }
    proof_claim(!line.empty() && line.back() == '\n', "a line ends in a newline");
    const size_t any = proof_number(kMost);
    proof_claim(any + 1 >= line.size() || line[any] != '\n', "a line contains no other newline");
    proof_claim(any + 1 >= line.size() || line[any] == file[position + any],
                "a line is the next bytes of the file");
    const size_t end = position + line.size();
    const bool is_given_newline = end > file_position;
    proof_claim(is_given_newline || file[end - 1] == '\n', "only a last line gets a newline");
    proof_claim(!is_given_newline || (reader.at_end_ && end == file_position + 1),
                "it gets one at the end");
    ClaimState(reader, is_given_newline ? end - 1 : end);
    proof_reached(is_given_newline && line.size() == kMost + 1, "a last line without its newline");
    proof_reached(reader.begin_ < reader.end_, "a line before another");
}

PROOF(buffered_lines, 6,
      "a state with a file of up to 3 bytes and a block of 1, 2 or 4; a start of up to 2") {
    LineReader reader(UniqueFd(-1), SIZE_MAX);
    const size_t position = TakeAnyState(reader);
    const size_t read = file_position;
    const std::string_view start = AnyText<2>();
    const std::string_view lines = reader.TakeBufferedLinesBefore(start);
    proof_claim(file_position == read, "the file is not read");
    proof_claim(lines.empty() || lines.back() == '\n', "the lines are complete");
    const size_t any = proof_number(kMost);
    if (any < lines.size()) {
        proof_claim(lines[any] == file[position + any], "they are the next bytes of the file");
        proof_claim((any > 0 && lines[any - 1] != '\n') || lines.substr(any, start.size()) != start,
                    "no line begins with the start");
    }
    ClaimState(reader, position + lines.size());
    proof_reached(lines.size() == 2 && reader.begin_ < reader.end_, "a line before the start");
}
