// comment_switch.h - switches a line of a script or configuration file off and on by a "#".
#ifndef VELK_BASE_COMMENT_SWITCH_H_
#define VELK_BASE_COMMENT_SWITCH_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace velk {

// True when a "#" stands in front of `position` or there. With npos any "#" counts.
bool IsCommentedOut(std::string_view line, size_t position);

// The line with what is at `position` switched on or off: on deletes the first "#", off puts one
// into column one, before the indentation. A line that is switched so already stays as it is.
std::string SwitchLine(std::string_view line, size_t position, bool on);

}  // namespace velk

#endif  // VELK_BASE_COMMENT_SWITCH_H_
