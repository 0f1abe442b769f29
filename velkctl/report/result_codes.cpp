// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// result_codes.cpp - the results of the library: names, meanings and exit statuses.
#include "velkctl/report/result_codes.h"

#include <algorithm>
#include <array>

#include "lib/base/find_row.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr std::array<ResultCode, 6> kResultCodes{{
    {LIB_VELK_SUCCESS, "LIB_VELK_SUCCESS", "done",
     "none needed; success of a set does not prove that the value is held", ExitStatus::kDone},
    {LIB_VELK_FAILURE, "LIB_VELK_FAILURE", "file, socket, time-out or unreadable value",
     "run 'velkctl doctor' to look for the cause", ExitStatus::kFailed},
    {LIB_VELK_LOCKED, "LIB_VELK_LOCKED", "another program is changing settings", kLockedRemedy,
     ExitStatus::kLocked},
    {LIB_VELK_INVALID_PARAMETER, "LIB_VELK_INVALID_PARAMETER",
     "the library does not take this command, interface or value",
     "run 'velkctl describe NAME' for the values it takes", ExitStatus::kInvalid},
    {LIB_VELK_NO_ADAPTER, "LIB_VELK_NO_ADAPTER", "no supported wireless adapter is attached",
     kNoAdapterRemedy, ExitStatus::kNoAdapter},
    {LIB_VELK_WIRED_LINKED, "LIB_VELK_WIRED_LINKED", "refused while the cable is in the wired port",
     kWiredLinkedRemedy, ExitStatus::kWiredLinked},
}};

constexpr std::string_view kUnknownName = "unknown result";
constexpr std::string_view kUnknownDescription = "a result that velkctl does not know";
constexpr std::string_view kUnknownRemedy = "install the velkctl that belongs to this library";

}  // namespace

std::span<const ResultCode> ResultCodes() {
    return kResultCodes;
}

ResultCode FindResultCode(int code) {
    const ResultCode* row = velk::FindRow(kResultCodes, code, &ResultCode::code);
    if (row == nullptr) {
        return {code, kUnknownName, kUnknownDescription, kUnknownRemedy, ExitStatus::kFailed};
    }
    return *row;
}

std::string ResultName(int code) {
    return std::string(FindResultCode(code).name) + " (" + std::to_string(code) + ")";
}

std::string DescribeResult(int code) {
    return ResultName(code).append(": ").append(FindResultCode(code).description);
}

nlohmann::ordered_json ResultInJson(int code) {
    const ResultCode row = FindResultCode(code);
    nlohmann::ordered_json result;
    result["code"] = code;
    result["name"] = row.name;
    result["description"] = row.description;
    return result;
}

}  // namespace velkctl
