// result_codes.h - the library's results: their names, what they mean, how velkctl ends on them.
#ifndef VELKCTL_RESULT_CODES_H_
#define VELKCTL_RESULT_CODES_H_

#include <array>
#include <string>
#include <string_view>

#include "velk.h"
#include "velkctl/exit_status.h"

namespace velkctl {

struct ResultCode {
    int code;
    std::string_view name;
    std::string_view words;
    ExitStatus status;
};

inline constexpr std::array<ResultCode, 6> kResultCodes{{
    {LIB_VELK_SUCCESS, "LIB_VELK_SUCCESS", "done", ExitStatus::kDone},
    {LIB_VELK_FAILURE, "LIB_VELK_FAILURE", "file, socket, time-out or unreadable value",
     ExitStatus::kFailed},
    {LIB_VELK_LOCKED, "LIB_VELK_LOCKED", "another program is changing settings now, try again",
     ExitStatus::kLocked},
    {LIB_VELK_INVALID_PARAMETER, "LIB_VELK_INVALID_PARAMETER",
     "the library does not take this command, interface or value", ExitStatus::kInvalid},
    {LIB_VELK_NO_ADAPTER, "LIB_VELK_NO_ADAPTER", "no supported wireless adapter is attached",
     ExitStatus::kNoAdapter},
    {LIB_VELK_WIRED_LINKED, "LIB_VELK_WIRED_LINKED", "refused while the cable is in the wired port",
     ExitStatus::kWiredLinked},
}};

// The row of a result. A number without one, as a newer library may give, is a failure without a
// name of its own.
ResultCode FindResultCode(int code);

// One line for a person: "LIB_VELK_LOCKED (-3): another program is changing settings now, ...".
std::string DescribeResult(int code);

// Why something was not done: "eth0.dns: could not be read (LIB_VELK_FAILURE, -1)". `what` is the
// part before the reason.
std::string DescribeFailure(std::string_view what, int code);

}  // namespace velkctl

#endif  // VELKCTL_RESULT_CODES_H_
