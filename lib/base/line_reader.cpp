// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// line_reader.cpp - reads a text file line by line.
#include "lib/base/line_reader.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

#include <fcntl.h>

#include "lib/base/file_io.h"

namespace velk {
namespace {

// The first block holds a configuration file of usual size. It is so small that the heap of a small
// program neither grows nor shrinks for it.
constexpr size_t kFirstSize = 4 * 1024;
constexpr size_t kBlockSize = 64 * 1024;  // for files that are larger

// The shell empties a file before it starts cat(1), which writes the new text: about a millisecond.
constexpr std::chrono::milliseconds kPauseForText{1};
constexpr int kPausesForText = 50;

}  // namespace

LineReader::LineReader(const char* path)
    : LineReader(UniqueFd(open(path, O_RDONLY | O_CLOEXEC)), SIZE_MAX) {
}

LineReader::LineReader(UniqueFd fd, size_t longest_line)
    : fd_(std::move(fd)), longest_line_(longest_line) {
    if (fd_.get() == -1) {
        error_ = errno;
        at_end_ = true;
        return;
    }
    // The block is not cleared: a get must not pay for that, and read(2) fills it.
    block_.reset(new char[kFirstSize]);
    size_ = kFirstSize;
    ReadFirstBlock();
}

LineReader LineReader::OfFileNeverEmpty(const char* path) {
    LineReader reader(path);
    for (int pause = 0; reader.is_empty() && pause < kPausesForText; ++pause) {
        std::this_thread::sleep_for(kPauseForText);
        reader.ReadFirstBlock();
    }
    return reader;
}

void LineReader::ReadFirstBlock() {
    at_end_ = false;
    if (!Fill()) {
        error_ = errno;
    }
    is_empty_ = at_end_ && error_ == 0;
}

bool LineReader::ReadLine(std::string_view& line) {
    if (!ReadFullLine(line)) {
        return false;
    }
    line.remove_suffix(1);
    return true;
}

bool LineReader::TakeBufferedLine(std::string_view& line) {
    return begin_ < end_ && TakeLine(begin_, line);
}

// Sets `line` to the next line if its "\n" is at `searched` or later.
bool LineReader::TakeLine(size_t searched, std::string_view& line) {
    const void* newline = memchr(&block_[searched], '\n', end_ - searched);
    if (newline == nullptr) {
        return false;
    }
    const char* start = &block_[begin_];
    line = {start, static_cast<size_t>(static_cast<const char*>(newline) + 1 - start)};
    begin_ += line.size();
    return true;
}

std::string_view LineReader::TakeBufferedLinesBefore(std::string_view start) {
    const std::string_view held(block_.get() + begin_, end_ - begin_);
    if (held.empty() || held.starts_with(start)) {
        return {};
    }
    const std::string after_newline = std::string("\n").append(start);
    const void* found =
        memmem(held.data(), held.size(), after_newline.data(), after_newline.size());
    const size_t last = found == nullptr
                            ? held.rfind('\n')
                            : static_cast<size_t>(static_cast<const char*>(found) - held.data());
    const std::string_view lines = held.substr(0, last + 1);  // empty if there is no newline
    begin_ += lines.size();
    return lines;
}

bool LineReader::LoadLine(std::string_view& line) {
    for (;;) {
        const size_t held = end_ - begin_;
        if (held >= longest_line_) {
            at_end_ = true;
            begin_ = end_;
            return false;
        }
        if (at_end_ || !Fill()) {
            return TakeRest(line);
        }
        if (TakeLine(begin_ + held, line)) {  // the bytes before have no "\n"
            return true;
        }
    }
}

// Sets `line` to the rest of the file, which has no "\n". There is room for one: the read that
// found the end of the file asked for at least a byte.
bool LineReader::TakeRest(std::string_view& line) {
    const size_t held = end_ - begin_;
    if (held == 0) {
        return false;
    }
    block_[end_] = '\n';
    line = std::string_view(&block_[begin_], held + 1);
    begin_ = end_;
    return true;
}

// Reads more bytes into the block. Returns false with errno (0: end of file) if there are none.
bool LineReader::Fill() {
    MakeRoom();
    const ssize_t count = ReadSome(fd_.get(), &block_[end_], size_ - end_);
    if (count > 0) {
        end_ += static_cast<size_t>(count);
        return true;
    }
    if (count == 0) {
        errno = 0;
    }
    at_end_ = true;
    return false;
}

// Moves the unread bytes to the front of the block. A larger block replaces the first block once
// the file has filled it, and any block that a line fills.
void LineReader::MakeRoom() {
    const size_t held = end_ - begin_;
    const bool is_first_filled = size_ < kBlockSize && end_ == size_;
    if (held < size_ && !is_first_filled) {
        memmove(block_.get(), block_.get() + begin_, held);
    } else {
        const size_t larger_size = std::max(size_ * 2, kBlockSize);
        std::unique_ptr<char[]> larger(new char[larger_size]);
        memcpy(larger.get(), block_.get() + begin_, held);
        block_ = std::move(larger);
        size_ = larger_size;
    }
    begin_ = 0;
    end_ = held;
}

}  // namespace velk
