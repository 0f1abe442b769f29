// escaping.h - what velkctl writes, safe to show on a terminal.
#ifndef VELKCTL_TEXT_ESCAPING_H_
#define VELKCTL_TEXT_ESCAPING_H_

#include <string>
#include <string_view>

namespace velkctl {

// From now on shows characters beyond ASCII as they are, or byte by byte. On a terminal of another
// character set their bytes could control it.
void ShowUtf8(bool is_shown);

// The bytes as one line of text in UTF-8. Of a character that controls the terminal, is not seen,
// or turns the direction of others, every byte is written \x1b, as is a byte that belongs to no
// character. A backslash is written twice.
std::string Printable(std::string_view bytes);

// The same for a value, which set takes again as it was shown: a backslash is written once, and
// \x5c where it would begin what looks like a byte.
std::string PrintableValue(std::string_view bytes);

// The bytes of a value that was written so.
std::string UnprintedValue(std::string_view text);

// Says whether a character of the text would control the terminal, as the end of a line does.
bool HasControls(std::string_view text);

// What is shown in the place of a secret.
inline constexpr std::string_view kMask = "********";

// A word from the command line, to be named in a message: 'word'. What is longer than any value is
// cut.
std::string Quoted(std::string_view word);

// Writes to standard output, as it stands.
void Print(std::string_view text);

// Writes one line to standard error, with the tool's name in front.
void PrintError(std::string_view line);

// Says whether people read standard output or standard error, and can be shown colours and lines
// that are written again, which a terminal that calls itself dumb cannot.
bool IsTerminal(int fd);

// Hands over what was printed; complains and is false when it got lost, as on a full disk.
bool FinishPrinting();

}  // namespace velkctl

#endif  // VELKCTL_TEXT_ESCAPING_H_
