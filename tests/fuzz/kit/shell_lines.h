// shell_lines.h - every shell line that a request makes the library run.
#ifndef TESTS_FUZZ_KIT_SHELL_LINES_H_
#define TESTS_FUZZ_KIT_SHELL_LINES_H_

#include <string>
#include <vector>

namespace fuzz {

// True for a line that is one of the library's own, letter by letter, and for the one kind of line
// that a request's text goes into: there the text, one of `texts`, must come to stand in the file
// as it is.
bool IsKnownLine(const std::string& line, const std::vector<std::string>& texts);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_SHELL_LINES_H_
