// tool_locale.h - the locale in which the tools of a shell line read their texts.
#ifndef VELK_IDENTITY_TOOL_LOCALE_H_
#define VELK_IDENTITY_TOOL_LOCALE_H_

#include <string_view>

namespace velk {

// The name of that locale by the environment of the host program, see locale(7): "C" if it sets
// none.
std::string_view ToolLocale();

// True if tools take every byte of an escaped text as it is meant. In encodings such as Shift_JIS,
// GBK and Big5 a byte above 0x7f and the backslash behind it are one character: what the backslash
// was to escape would then end the command of sed(1). C, POSIX and UTF-8 know no such characters.
bool KeepsEscapes(std::string_view locale, std::string_view text);

}  // namespace velk

#endif  // VELK_IDENTITY_TOOL_LOCALE_H_
