// tool_answers.h - what gets are to make of what tools and the kernel tell.
#ifndef TESTS_FUZZ_KIT_TOOL_ANSWERS_H_
#define TESTS_FUZZ_KIT_TOOL_ANSWERS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/answer.h"
#include "fuzz/kit/lines.h"

namespace fuzz {

// Each takes the interface's name and the texts that are read, and gives nothing where a text is in
// a form that tools and kernel do not have. The first two read the interfaces file, then what
// ifconfig prints.
std::optional<Answer> IpAddressFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> NetmaskFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> LinkSpeedFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> GatewayFrom(const std::string& interface, const Texts& routes);

// What the text tells, line by line: 1 for `yes`, 0 for `no`.
std::vector<int> TellingsIn(const std::string& text, std::string_view yes, std::string_view no);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_TOOL_ANSWERS_H_
