// answer.cpp - what came of a command.
#include "velkctl/call/answer.h"

#include "velkctl/report/result_codes.h"

namespace velkctl {
namespace {

constexpr std::string_view kTooLong = "given up, it took too long";

}  // namespace

ExitStatus StatusOf(const Answer& answer) {
    return answer.timed_out ? ExitStatus::kTimedOut : FindResultCode(answer.result).status;
}

std::string WhyNot(const Answer& answer) {
    return std::string(answer.timed_out ? kTooLong : FindResultCode(answer.result).words);
}

std::string DescribeFailure(std::string_view what, const Answer& answer) {
    std::string text = answer.timed_out ? std::string(what).append(": ").append(kTooLong)
                                        : DescribeFailure(what, answer.result);
    if (!answer.remark.empty()) {
        text.append("; ").append(answer.remark);
    }
    return text;
}

}  // namespace velkctl
