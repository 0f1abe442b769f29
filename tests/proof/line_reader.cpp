// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// line_reader.cpp - proofs about lib/base/line_reader.h, with a read(2) that returns any part of
// the rest or fails.
//
// The sizes of the blocks are made smaller, so that a file of a few bytes fills, moves and replaces
// them: smaller: lib/base/line_reader.cpp: kFirstSize = 4 * 1024 -> kFirstSize = 2 smaller:
// lib/base/line_reader.cpp: kBlockSize = 64 * 1024 -> kBlockSize = 4 define: BLOCK=16
#include "lib/base/line_reader.cpp"

#include "tests/proof/proof.h"

namespace {

constexpr size_t kMost = 5;

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

// Reads all lines. Returns the count of bytes of the file that they are.
size_t ProveLines(LineReader& reader) {
    size_t taken = 0;
    for (size_t i = 0; i <= kMost; ++i) {
        std::string_view line;
        if (!reader.ReadFullLine(line)) {
            return taken;
        }
        proof_claim(!line.empty() && line.back() == '\n', "a line ends in a newline");
        for (size_t at = 0; at + 1 < line.size(); ++at) {
            proof_claim(line[at] != '\n', "a line contains no other newline");
            proof_claim(taken + at < file_position && line[at] == file[taken + at],
                        "a line is the next bytes of the file");
        }
        taken += line.size();
        proof_claim(taken <= file_position + 1, "no line is invented");
        proof_claim(taken > file_position || file[taken - 1] == '\n',
                    "only a last line gets its newline");
        proof_reached(i == 2, "three lines");
        proof_reached(line.size() == kMost + 1, "a line of the whole file, without its newline");
    }
    proof_claim(false, "the reader ends");
    return taken;
}

}  // namespace

PROOF(all_lines, 8, "a file of up to 5 bytes, each read of any length; blocks of 2, 4 and 8") {
    file = AnyText<kMost>();
    LineReader reader(UniqueFd(3), SIZE_MAX);
    proof_claim(reader.is_open() && reader.is_empty() == file.empty(),
                "a file without bytes is empty");
    const size_t taken = ProveLines(reader);
    const bool lacks_newline = !file.empty() && file.back() != '\n';
    proof_claim(taken == file.size() + (lacks_newline ? 1 : 0), "all bytes of the file are read");
    std::string_view line;
    proof_claim(!reader.ReadFullLine(line), "the end stays the end");
    proof_reached(file.size() == kMost && !lacks_newline, "a whole file");
}

PROOF(lines_of_failing_file, 8,
      "a file of up to 5 bytes, each read may fail; blocks of 2, 4 and 8") {
    file = AnyText<kMost>();
    may_fail = true;
    LineReader reader(UniqueFd(3), SIZE_MAX);
    const bool is_first = file_position == 0 && has_failed;
    proof_claim(reader.is_open() == !is_first, "a failure of the first read counts as not opened");
    proof_claim(reader.error() == (is_first ? EIO : 0), "the error is that of the read");
    const size_t taken = ProveLines(reader);
    proof_claim(
        taken == file_position + (file_position > 0 && file[file_position - 1] != '\n' ? 1 : 0),
        "all bytes that were read are lines");
    proof_reached(has_failed && taken > 2, "a failure within the file");
}

PROOF(buffered_lines, 9, "a file of up to 5 bytes, a start of up to 2; blocks of 2, 4 and 8") {
    file = AnyText<kMost>();
    LineReader reader(UniqueFd(3), SIZE_MAX);
    std::string_view line;
    const bool has_line = reader.ReadFullLine(line);
    const size_t taken = has_line ? line.size() : 0;
    proof_assume(taken <= file_position);
    const size_t read = file_position;
    const std::string_view start = AnyText<2>();
    const std::string_view lines = reader.TakeBufferedLinesBefore(start);
    proof_claim(file_position == read, "the file is not read");
    proof_claim(lines.empty() || lines.back() == '\n', "the lines are complete");
    proof_claim(taken + lines.size() <= read, "the lines are in the block");
    for (size_t i = 0; i < lines.size(); ++i) {
        proof_claim(lines[i] == file[taken + i], "they are the next bytes of the file");
        proof_claim(!((i == 0 || lines[i - 1] == '\n') && lines.substr(i, start.size()) == start),
                    "no line begins with the start");
    }
    proof_reached(lines.size() == 2 && has_line, "a second line in the block");
}
