// server_lines.h - what becomes of the crontab's lines when the time server is replaced.
#ifndef TESTS_FUZZ_KIT_SERVER_LINES_H_
#define TESTS_FUZZ_KIT_SERVER_LINES_H_

#include <string>

#include "fuzz/kit/lines.h"

namespace fuzz {

// Lines as they come to stand: one that ends with its server is followed by the next on the same.
Texts WithJoins(const Texts& lines);

// Checks that the server alone was put in. `old_line` is one of those above; new ones have no
// newline in their middle.
void CheckServerLine(const std::string& old_line, const std::string& new_line,
                     const std::string& server);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_SERVER_LINES_H_
