// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// line_reader.h - reads a text file line by line.
#ifndef VELK_BASE_LINE_READER_H_
#define VELK_BASE_LINE_READER_H_

#include <cstddef>
#include <memory>
#include <string_view>

#include "lib/base/unique_fd.h"

namespace velk {

// Reads the lines of a file as views into one block. A small file costs one heap request, a
// larger one two, and the memory does not depend on the file's size. Only a line longer than the
// block makes the block grow.
//
// A line is the text before a "\n"; a last line without one is a line too. All other bytes, "\r"
// and NUL included, belong to the line. A read error after the first block ends the file.
class LineReader {
  public:
    // Opens the file close-on-exec and reads its first block. A file that opens but cannot be read
    // (a directory) counts as not opened.
    explicit LineReader(const char* path);
    // Reads from an open file. The file ends before a line of more than `longest_line` bytes with
    // its newline. `longest_line` is at least the size of a block, 64 KB.
    LineReader(UniqueFd fd, size_t longest_line);

    // Opens a file that is only empty for the moment in which a set replaces its text: an empty one
    // is read again for up to 50 ms.
    static LineReader OfFileNeverEmpty(const char* path);

    bool is_open() const { return error_ == 0; }
    // Returns the errno of the failed open or first read; 0 if the file is open.
    int error() const { return error_; }

    // Returns true if the open file has no bytes at all.
    bool is_empty() const { return is_empty_; }

    // Sets `line` to the next line without its "\n", valid until the next call. Returns false at
    // the end of the file.
    bool ReadLine(std::string_view& line);
    // Like ReadLine(), but with the "\n". A last line without one gets one.
    bool ReadFullLine(std::string_view& line) { return TakeBufferedLine(line) || LoadLine(line); }
    // Like ReadFullLine(), but never reads the file: returns false if the block has no complete
    // line. Earlier views stay valid.
    bool TakeBufferedLine(std::string_view& line);

    // Returns the complete lines in the block, with their newlines, before the first one that
    // begins with `start`. Never reads the file. It is faster than line by line.
    std::string_view TakeBufferedLinesBefore(std::string_view start);

    // Closes the file early. No more lines may be read after it.
    void Close() { fd_.Reset(); }

  private:
    void ReadFirstBlock();
    bool LoadLine(std::string_view& line);
    bool TakeLine(size_t searched, std::string_view& line);
    bool TakeRest(std::string_view& line);
    bool Fill();
    void MakeRoom();

    UniqueFd fd_;
    size_t longest_line_;
    int error_ = 0;
    bool is_empty_ = false;
    bool at_end_ = false;
    std::unique_ptr<char[]> block_;
    size_t size_ = 0;   // the size of the block
    size_t begin_ = 0;  // the start of the unread bytes in the block
    size_t end_ = 0;    // the end of the bytes in the block
};

}  // namespace velk

#endif  // VELK_BASE_LINE_READER_H_
