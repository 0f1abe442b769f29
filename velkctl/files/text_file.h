// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_file.h - a file of the device, read without trusting it.
#ifndef VELKCTL_FILES_TEXT_FILE_H_
#define VELKCTL_FILES_TEXT_FILE_H_

#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

using Lines = std::vector<std::string>;

enum class FileState {
    kText,  // read; its bytes may be anything
    kMissing,
    kNotRegular,  // a folder, a FIFO, a device
    kUnreadable,
    kTooLarge,
};

// ReadTextFile() never waits, as opening a FIFO would, and never reads more than a mebibyte.
struct TextFile {
    FileState state = FileState::kMissing;
    int error = 0;        // errno of a missing or unreadable one
    std::string bytes{};  // the text, if the file is one
    Lines lines{};        // each ends with a newline, as the library reads them
};

TextFile ReadTextFile(const std::string& path);

// Returns the words of a line, separated by white space.
std::vector<std::string> WordsOf(std::string_view line);

// Returns a line in quotes for a message, without white space around it and cut if long:
// 'gateway 10.0.0.1'.
std::string Excerpt(std::string_view line);

// Returns a line without white space around it.
std::string_view Trimmed(std::string_view line);

// Returns a line without its newline, or carriage return and newline.
std::string_view WithoutLineEnd(std::string_view line);

// Returns the indexes of the lines for which the condition is true. Asks about each, in order.
template <typename Condition>
std::vector<size_t> IndexesOf(const Lines& lines, Condition condition) {
    std::vector<size_t> indexes;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (condition(lines[i])) {
            indexes.push_back(i);
        }
    }
    return indexes;
}

// Returns the indexes of the lines with this text.
std::vector<size_t> LinesWith(const Lines& lines, std::string_view text);

// Returns the number of lines that end with carriage return and newline.
size_t CountCarriageReturns(const Lines& lines);

// True for a text that can be examined line by line. With a carriage return at its end the library
// misreads a word, and a check would, too.
bool HasPlainLines(const TextFile& file);

// True if the first character of a line, after white space, is a "#".
bool IsComment(std::string_view line);

}  // namespace velkctl

#endif  // VELKCTL_FILES_TEXT_FILE_H_
