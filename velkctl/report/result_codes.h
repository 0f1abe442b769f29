// result_codes.h - the library's results: their names, what they mean, how velkctl ends on them.
#ifndef VELKCTL_REPORT_RESULT_CODES_H_
#define VELKCTL_REPORT_RESULT_CODES_H_

#include <array>
#include <string>
#include <string_view>

#include "velk.h"
#include "velkctl/report/exit_meanings.h"
#include <nlohmann/json_fwd.hpp>

namespace velkctl {

struct ResultCode {
    int code;
    std::string_view name;
    std::string_view words;
    std::string_view remedy;
    ExitStatus status;
    std::string_view hint{};  // the remedy in a message, behind the words
};

inline constexpr std::array<ResultCode, 6> kResultCodes{{
    {LIB_VELK_SUCCESS, "LIB_VELK_SUCCESS", "done",
     "nothing; that a set succeeded does not prove that the device holds the value",
     ExitStatus::kDone},
    {LIB_VELK_FAILURE, "LIB_VELK_FAILURE", "file, socket, time-out or unreadable value",
     "'velkctl doctor' looks for files, tools and daemons that are not as they should be",
     ExitStatus::kFailed, "; 'velkctl doctor' looks for the cause"},
    {LIB_VELK_LOCKED, "LIB_VELK_LOCKED", "another program is changing settings now, try again",
     kLockedRemedy, ExitStatus::kLocked, ", as --wait=SECONDS does"},
    {LIB_VELK_INVALID_PARAMETER, "LIB_VELK_INVALID_PARAMETER",
     "the library does not take this command, interface or value",
     "'velkctl describe NAME' says which interfaces and values a setting has",
     ExitStatus::kInvalid},
    {LIB_VELK_NO_ADAPTER, "LIB_VELK_NO_ADAPTER", "no supported wireless adapter is attached",
     kNoAdapterRemedy, ExitStatus::kNoAdapter},
    {LIB_VELK_WIRED_LINKED, "LIB_VELK_WIRED_LINKED", "refused while the cable is in the wired port",
     kWiredLinkedRemedy, ExitStatus::kWiredLinked},
}};

// The row of a result. A number without one, as a newer library may give, is a failure without a
// name of its own.
ResultCode FindResultCode(int code);

// One line for a person: "LIB_VELK_LOCKED (-3): another program is changing settings now, ...".
std::string DescribeResult(int code);

// {"code": -3, "name": "LIB_VELK_LOCKED", "words": "another program is ..."}
nlohmann::ordered_json ResultInJson(int code);

// Why something was not done: "eth1.signal: could not be read: refused while the cable is in the
// wired port (LIB_VELK_WIRED_LINKED, -6)". `what` is the part before the reason.
std::string DescribeFailure(std::string_view what, int code);

}  // namespace velkctl

#endif  // VELKCTL_REPORT_RESULT_CODES_H_
