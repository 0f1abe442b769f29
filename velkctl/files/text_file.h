// text_file.h - a file of the device, read without trusting it.
#ifndef VELKCTL_FILES_TEXT_FILE_H_
#define VELKCTL_FILES_TEXT_FILE_H_

#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

using Lines = std::vector<std::string>;

enum class FileState {
    kText,  // read, whatever is in it
    kMissing,
    kNotRegular,  // a folder, a FIFO, a device
    kUnreadable,
    kTooLarge,
};

// Never waits, as opening a FIFO would, and never takes more than a mebibyte.
struct TextFile {
    FileState state = FileState::kMissing;
    int error = 0;        // errno of a missing or unreadable one
    std::string bytes{};  // of a text
    Lines lines{};        // with a newline behind each, as the library sees them
};

TextFile ReadTextFile(const std::string& path);

// The words of a line, separated by white space.
std::vector<std::string> WordsOf(std::string_view line);

// A line without white space around it, to be named in a message: 'gateway 10.0.0.1', cut when
// long.
std::string Excerpt(std::string_view line);

// A line without white space in front of it and behind it.
std::string_view Trimmed(std::string_view line);

// A line without the newline behind it, or the carriage return and newline.
std::string_view WithoutLineEnd(std::string_view line);

// How many lines end with a carriage return in front of the newline.
size_t CountCarriageReturns(const Lines& lines);

// A text that can be examined line by line. Behind a carriage return the library takes a word for
// another one, and so would a check.
bool HasPlainLines(const TextFile& file);

// Says whether a "#" is the first thing on a line.
bool IsComment(std::string_view line);

}  // namespace velkctl

#endif  // VELKCTL_FILES_TEXT_FILE_H_
