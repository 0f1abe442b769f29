// line_reader.h - reads a text file line by line.
#ifndef VELK_BASE_LINE_READER_H_
#define VELK_BASE_LINE_READER_H_

#include <cstddef>
#include <memory>
#include <string_view>

#include "lib/base/unique_fd.h"

namespace velk {

// Hands out the lines of a file as views into one block, so that a reader of a small file costs one
// heap request, of any other two, and a file of any size the same little memory. Only a line longer
// than the block makes it grow beyond that.
//
// A line is what stands before a "\n"; a last line without one is a line too. Everything else,
// "\r" and NUL included, belongs to the line. A read error after the first block ends the file.
class LineReader {
  public:
    // Opens the file close-on-exec and reads its first block. A file that opens but cannot be read
    // (a directory) counts as not opened.
    explicit LineReader(const char* path);
    // Reads from an open file. A line that has more than `longest_line` bytes,
    // its newline among them, ends the file before it. At least the size of a block, 64 KB.
    LineReader(UniqueFd fd, size_t longest_line);

    // Opens a file that is never empty but for the moment in which a set replaces its text: an
    // empty one is read again for up to 50 ms.
    static LineReader OfFileNeverEmpty(const char* path);

    bool is_open() const { return error_ == 0; }
    // The errno of the failed open or first read; 0 when the file is open.
    int error() const { return error_; }

    // True when the open file has no bytes at all.
    bool is_empty() const { return is_empty_; }

    // Sets `line` to the next line, valid until the next call; false at the end of the file.
    bool ReadLine(std::string_view& line);
    // The same with a "\n" behind every line, also behind a last one that has none in the file.
    bool ReadFullLine(std::string_view& line) { return TakeBufferedLine(line) || LoadLine(line); }
    // Like ReadFullLine(), but only a line that is in the block already: earlier lines stay
    // valid. False when the file must be read for the next one.
    bool TakeBufferedLine(std::string_view& line);

    // Takes the lines that are in the block already, with their newlines, up to the first one that
    // begins with `start`. Faster than line by line; empty when the next line is no such line.
    std::string_view TakeBufferedLinesBefore(std::string_view start);

    // Gives the descriptor back early; to be called when no more lines are wanted.
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
    size_t size_ = 0;   // of the block
    size_t begin_ = 0;  // of what has not been handed out yet
    size_t end_ = 0;    // of what has been read
};

}  // namespace velk

#endif  // VELK_BASE_LINE_READER_H_
