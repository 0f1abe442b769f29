// line_reader.cpp - reads a text file line by line.
#include "frame/line_reader.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>

#include "frame/file_io.h"

namespace velk {
namespace {

constexpr size_t kBlockSize = 64 * 1024;

}  // namespace

LineReader::LineReader(const char* path) : fd_(open(path, O_RDONLY | O_CLOEXEC)) {
    if (fd_.get() == -1) {
        error_ = errno;
        at_end_ = true;
        return;
    }
    // Not value-initialised: a get must not pay for clearing memory that read(2) fills.
    block_.reset(new char[kBlockSize]);
    size_ = kBlockSize;
    if (!Fill()) {
        error_ = errno;
        is_empty_ = error_ == 0;
    }
}

bool LineReader::Next(std::string_view& line) {
    if (!NextWithNewline(line)) {
        return false;
    }
    line.remove_suffix(1);
    return true;
}

bool LineReader::NextHeld(std::string_view& line) {
    return begin_ < end_ && TakeLine(begin_, line);
}

// Hands out the next line when its "\n" stands at `searched` or behind it.
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

bool LineReader::NextFromFile(std::string_view& line) {
    for (;;) {
        const size_t held = end_ - begin_;
        if (at_end_ || !Fill()) {
            return TakeRest(line);
        }
        if (TakeLine(begin_ + held, line)) {
            return true;
        }
    }
}

// Hands out what no "\n" ends. There is room for one: the read that found the end of the file was
// offered at least a byte.
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

// Reads one more block behind what is held. False, with errno saying why (0: end of file), when
// nothing came.
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

// Moves what is held to the front of the block; a line that fills the whole block gets a larger
// one.
void LineReader::MakeRoom() {
    const size_t held = end_ - begin_;
    if (held < size_) {
        memmove(block_.get(), block_.get() + begin_, held);
    } else {
        std::unique_ptr<char[]> larger(new char[size_ * 2]);
        memcpy(larger.get(), block_.get() + begin_, held);
        block_ = std::move(larger);
        size_ *= 2;
    }
    begin_ = 0;
    end_ = held;
}

}  // namespace velk
