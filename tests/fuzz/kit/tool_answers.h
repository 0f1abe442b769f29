// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_answers.h - the expected answers of gets that ask tools and the kernel.
#ifndef TESTS_FUZZ_KIT_TOOL_ANSWERS_H_
#define TESTS_FUZZ_KIT_TOOL_ANSWERS_H_

#include <optional>
#include <string>

#include "fuzz/kit/answer.h"
#include "fuzz/kit/lines.h"

namespace fuzz {

// Each takes the interface's name and the texts that are read. It returns nothing for a text in a
// form that tools and kernel do not print. The first two take the interfaces file, then the output
// of ifconfig.
std::optional<Answer> IpAddressFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> NetmaskFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> LinkSpeedFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> GatewayFrom(const std::string& interface, const Texts& routes);

// The wired port's link, 1 or 0: the first state in the tool's output; if it has none, the last
// state in the first log that has one. It is 0 if no log has one.
int LinkIn(const std::string& tool, const Texts& logs);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_TOOL_ANSWERS_H_
