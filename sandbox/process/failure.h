// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// failure.h - the exception of the sandbox: one line of text, and advice if there is any.
#ifndef SANDBOX_PROCESS_FAILURE_H_
#define SANDBOX_PROCESS_FAILURE_H_

#include <stdexcept>
#include <string>
#include <utility>

namespace sandbox {

class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& message, std::string fix = {})
        : std::runtime_error(message), fix_(std::move(fix)) {}

    // Returns the user's remedy, or an empty text.
    const std::string& fix() const { return fix_; }

  private:
    std::string fix_;
};

// Throws a Failure "ACTION: REASON". The reason is the text of `error`, an errno.
[[noreturn]] void Fail(const std::string& action, int error, const std::string& fix = {});

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_FAILURE_H_
