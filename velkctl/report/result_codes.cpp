// result_codes.cpp - the library's results: their names, what they mean, how velkctl ends on them.
#include "velkctl/report/result_codes.h"

#include <algorithm>

#include "velkctl/text/find_row.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr std::string_view kUnknownName = "unknown result";
constexpr std::string_view kUnknownWords = "velkctl does not know what it means";

}  // namespace

ResultCode FindResultCode(int code) {
    const ResultCode* row = FindRow(kResultCodes, code, &ResultCode::code);
    if (row == nullptr) {
        return {code, kUnknownName, kUnknownWords, "use a velkctl that is as new as the library",
                ExitStatus::kFailed};
    }
    return *row;
}

std::string DescribeResult(int code) {
    const ResultCode row = FindResultCode(code);
    return std::string(row.name)
        .append(" (")
        .append(std::to_string(code))
        .append("): ")
        .append(row.words);
}

nlohmann::ordered_json ResultInJson(int code) {
    const ResultCode row = FindResultCode(code);
    nlohmann::ordered_json result;
    result["code"] = code;
    result["name"] = row.name;
    result["words"] = row.words;
    return result;
}

std::string DescribeFailure(std::string_view what, int code) {
    const ResultCode row = FindResultCode(code);
    std::string text(what);
    // A plain failure has no words that would say more than `what` does.
    if (code != LIB_VELK_FAILURE) {
        text.append(": ").append(row.words);
    }
    text.append(row.hint);
    return text.append(" (").append(row.name).append(", ").append(std::to_string(code)).append(")");
}

}  // namespace velkctl
