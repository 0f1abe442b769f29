// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer_check.h - compares the answer and the files of a call with a fault with the expected ones.
#ifndef TESTS_FAULT_KIT_ANSWER_CHECK_H_
#define TESTS_FAULT_KIT_ANSWER_CHECK_H_

#include <optional>

#include "fault/kit/expectation.h"

namespace fault {

// Checks one fault; fails expectations of the running test.
class AnswerCheck {
  public:
    AnswerCheck(const Scene& scene, const _velk_request& request, const Reference& reference,
                const Fault& fault);

    void Check(const Outcome& outcome);

  private:
    void CheckAnswer(const Outcome& outcome);
    void CheckReportedFailure(const Outcome& outcome);
    void CheckWithoutCable(const Outcome& outcome);
    void CheckAsInScene(const Scene& scene, const Outcome& outcome);
    void CheckAs(const Outcome& expected, const Outcome& outcome);
    void CheckFiles(const Outcome& outcome);
    void CheckFilesOfSuccess(const Outcome& outcome);
    void CheckWireless(const Outcome& outcome);

    const Scene scene_;
    const _velk_request& request_;
    const Reference& reference_;
    const Fault fault_;
    const Expectation expectation_;
    std::optional<Reference> cut_;  // the call on a file that ends where reading failed
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_ANSWER_CHECK_H_
