// result_codes.cpp - the results of the library: names, meanings and exit statuses.
#include "velkctl/report/result_codes.h"

#include <algorithm>

#include "velkctl/text/find_row.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr std::string_view kUnknownName = "unknown result";
constexpr std::string_view kUnknownDescription = "a result that velkctl does not know";
constexpr std::string_view kUnknownRemedy = "use a velkctl as new as the library";

}  // namespace

ResultCode FindResultCode(int code) {
    const ResultCode* row = FindRow(kResultCodes, code, &ResultCode::code);
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
