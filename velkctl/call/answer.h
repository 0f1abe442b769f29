// answer.h - what came of a command.
#ifndef VELKCTL_CALL_ANSWER_H_
#define VELKCTL_CALL_ANSWER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/exit_status.h"
#include "velkctl/text/data.h"

namespace velkctl {

struct Answer {
    int result;
    Data data{};
    bool timed_out = false;           // nothing came in time; the result says nothing
    std::string remark{};             // what more there is to say about a failure
    std::vector<std::string> said{};  // by the tools that the library ran

    bool ok() const { return !timed_out && result == LIB_VELK_SUCCESS; }
    std::optional<int> known_result() const {
        return timed_out ? std::nullopt : std::optional(result);
    }
};

// How velkctl ends on an answer.
ExitStatus StatusOf(const Answer& answer);

// Why there is no value: "refused while the cable is in the wired port".
std::string WhyNot(const Answer& answer);

// Why something was not done: "eth0.dns: could not be read (LIB_VELK_FAILURE, -1)". `what` is the
// part before the reason.
std::string DescribeFailure(std::string_view what, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_CALL_ANSWER_H_
