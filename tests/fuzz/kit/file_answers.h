// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_answers.h - the expected answers of gets that read files.
#ifndef TESTS_FUZZ_KIT_FILE_ANSWERS_H_
#define TESTS_FUZZ_KIT_FILE_ANSWERS_H_

#include <optional>
#include <string>

#include "fuzz/kit/answer.h"
#include "fuzz/kit/lines.h"

namespace fuzz {

// Each takes the interface's name and the texts that are read. Returns nothing for a text in an
// unusual form: there the library's own reading decides.
std::optional<Answer> AdministratorFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> LocationFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> NtpMethodFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> NtpServerFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> NtpResultFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> ScheduleFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> DhcpNtpFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> DhcpDnsFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> ApipaFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> DnsFrom(const std::string& interface, const Texts& texts);
std::optional<Answer> IpMethodFrom(const std::string& interface, const Texts& texts);

// Returns the value of the interface's first stanza; empty without one.
std::string StaticValue(const std::string& interface, const std::string& text,
                        std::string_view key);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_FILE_ANSWERS_H_
