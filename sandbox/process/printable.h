// printable.h - text of others, safe to show on a terminal.
#ifndef SANDBOX_PROCESS_PRINTABLE_H_
#define SANDBOX_PROCESS_PRINTABLE_H_

#include <string>
#include <string_view>

namespace sandbox {

// The text as one line. Tabs and the characters that the user's locale can show stay; each byte of
// anything else, such as an escape sequence or a line end, becomes \x1b. main() sets the locale.
std::string Printable(std::string_view text);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_PRINTABLE_H_
