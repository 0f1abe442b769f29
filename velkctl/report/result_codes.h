// result_codes.h - the results of the library: names, meanings and exit statuses.
#ifndef VELKCTL_REPORT_RESULT_CODES_H_
#define VELKCTL_REPORT_RESULT_CODES_H_

#include <array>
#include <string>
#include <string_view>

#include "velk/request.h"
#include "velkctl/report/exit_status.h"
#include <nlohmann/json_fwd.hpp>

namespace velkctl {

struct ResultCode {
    int code;
    std::string_view name;
    std::string_view description;
    std::string_view remedy;
    ExitStatus status;
};

inline constexpr std::array<ResultCode, 6> kResultCodes{{
    {LIB_VELK_SUCCESS, "LIB_VELK_SUCCESS", "done",
     "none needed; a successful set does not prove that the device holds the value",
     ExitStatus::kDone},
    {LIB_VELK_FAILURE, "LIB_VELK_FAILURE", "file, socket, time-out or unreadable value",
     "run 'velkctl doctor' to look for the cause", ExitStatus::kFailed},
    {LIB_VELK_LOCKED, "LIB_VELK_LOCKED", "another program is changing settings", kLockedRemedy,
     ExitStatus::kLocked},
    {LIB_VELK_INVALID_PARAMETER, "LIB_VELK_INVALID_PARAMETER",
     "the library does not take this command, interface or value",
     "run 'velkctl describe NAME' for the interfaces and values of a setting",
     ExitStatus::kInvalid},
    {LIB_VELK_NO_ADAPTER, "LIB_VELK_NO_ADAPTER", "no supported wireless adapter is attached",
     kNoAdapterRemedy, ExitStatus::kNoAdapter},
    {LIB_VELK_WIRED_LINKED, "LIB_VELK_WIRED_LINKED", "refused while the cable is in the wired port",
     kWiredLinkedRemedy, ExitStatus::kWiredLinked},
}};

// Returns the row of a result. A newer library may return other numbers: they are failures without
// a name.
ResultCode FindResultCode(int code);

// "LIB_VELK_LOCKED (-3)"
std::string ResultName(int code);

// "LIB_VELK_LOCKED (-3): another program is changing settings"
std::string DescribeResult(int code);

// {"code": -3, "name": "LIB_VELK_LOCKED", "description": "another program is ..."}
nlohmann::ordered_json ResultInJson(int code);

}  // namespace velkctl

#endif  // VELKCTL_REPORT_RESULT_CODES_H_
