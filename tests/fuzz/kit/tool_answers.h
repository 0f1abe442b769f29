// tool_answers.h - what gets are to make of what tools and the kernel tell.
#ifndef TESTS_FUZZ_KIT_TOOL_ANSWERS_H_
#define TESTS_FUZZ_KIT_TOOL_ANSWERS_H_

#include <optional>
#include <string>

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

// The wired port's link, 1 or 0: the tool's first word counts, without one the last of the first
// log that has one.
int LinkIn(const std::string& tool, const Texts& logs);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_TOOL_ANSWERS_H_
