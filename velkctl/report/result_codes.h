// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// result_codes.h - the results of the library: names, meanings and exit statuses.
#ifndef VELKCTL_REPORT_RESULT_CODES_H_
#define VELKCTL_REPORT_RESULT_CODES_H_

#include <span>
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

// Returns the rows of all results of the library.
std::span<const ResultCode> ResultCodes();

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
