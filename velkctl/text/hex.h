// hex.h - data bytes written as hex digits, and shown as a hex and text dump.
#ifndef VELKCTL_TEXT_HEX_H_
#define VELKCTL_TEXT_HEX_H_

#include <string>
#include <string_view>

#include "velkctl/text/data.h"

namespace velkctl {

// Reads two hex digits for each byte; blanks and colons may stand between the bytes.
Parsed ParseHex(std::string_view text);

// Two hex digits for each byte.
std::string ToHex(std::string_view bytes);

// The bytes up to the last one that is not zero.
std::string_view UsedBytes(const Data& data);

// Sixteen bytes a line, as hexdump -C shows them, up to the last byte that is not zero, and the
// number of bytes as the last line. Empty when all are zero.
std::string Dump(const Data& data);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_HEX_H_
