// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// explain_verb.cpp - the verb that explains results and exit statuses.
#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/find_row.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/report/result_codes.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"
#include "velkctl/text/spelling.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr std::string_view kPrefix = "LIB_VELK_";

// Returns the names of the results, with and without their prefix.
std::vector<std::string> ResultNames() {
    std::vector<std::string> names;
    for (const ResultCode& row : ResultCodes()) {
        names.emplace_back(row.name);
        names.emplace_back(row.name.substr(kPrefix.size()));
    }
    return names;
}

std::optional<int> CodeOfName(std::string_view word) {
    for (const ResultCode& row : ResultCodes()) {
        if (word == row.name || word == row.name.substr(kPrefix.size())) {
            return row.code;
        }
    }
    return std::nullopt;
}

// Returns the message about a word that is neither a number nor the name of a result.
std::string NotExplained(const std::string& word) {
    if (const std::optional<Setting> setting = FindSetting(word)) {
        return Quoted(word) + " is a setting; 'velkctl describe " + setting->name() +
               "' describes it";
    }
    return Quoted(word) + " is neither a result nor an exit status" +
           DidYouMean(word, ResultNames(),
                      "give a number such as -3 or 3, or a name such as LOCKED");
}

// Returns the meaning of an exit status; null if there is no such status.
const ExitMeaning* MeaningOf(int status) {
    return velk::FindRow(kExitMeanings, static_cast<ExitStatus>(status), &ExitMeaning::status);
}

void ExplainResult(int code, Report& report) {
    const ResultCode row = FindResultCode(code);
    report.Text(ResultName(code) + "\n  " + std::string(row.description) +
                "\n  fix: " + std::string(row.remedy) + "\n  exit status of velkctl: " +
                std::to_string(static_cast<int>(row.status)) + "\n");
    Json explained = ResultInJson(code);
    explained["remedy"] = row.remedy;
    explained["exit_status"] = static_cast<int>(row.status);
    report.Member("result", std::move(explained));
}

std::vector<ResultCode> ResultsWithStatus(ExitStatus status) {
    const std::span<const ResultCode> all = ResultCodes();
    std::vector<ResultCode> results(all.begin(), all.end());
    std::erase_if(results, [&](const ResultCode& row) { return row.status != status; });
    return results;
}

void ExplainStatus(const ExitMeaning& meaning, Report& report) {
    const int number = static_cast<int>(meaning.status);
    std::string text = "exit status " + std::to_string(number) + " of velkctl";
    text.append("\n  ").append(meaning.description);
    text.append("\n  fix: ").append(meaning.remedy).append("\n");
    Json results = Json::array();
    for (const ResultCode& row : ResultsWithStatus(meaning.status)) {
        text.append("  result of the library: ").append(ResultName(row.code));
        text.append("\n    ").append(row.description).append("\n");
        results.push_back(ResultInJson(row.code));
    }
    report.Text(text);
    Json explained;
    explained["status"] = number;
    explained["description"] = meaning.description;
    explained["remedy"] = meaning.remedy;
    explained["results"] = std::move(results);
    report.Member("exit_status", std::move(explained));
}

}  // namespace

ExitStatus RunExplain(const Invocation& invocation, Report& report) {
    const std::string& word = invocation.words.front();
    const std::optional<int> number = ParseNumber<int>(word);
    const std::optional<int> code = number ? number : CodeOfName(word);
    if (!code) {
        return report.Refuse("explain: " + NotExplained(word));
    }
    const ExitMeaning* meaning = number ? MeaningOf(*number) : nullptr;
    if (*code > 0 && meaning == nullptr) {
        return report.Refuse(
            "explain: " + Quoted(word) +
            " is not an exit status; give 0 to 9, or a result, which is 0 or negative");
    }
    if (*code <= 0) {
        ExplainResult(*code, report);
    }
    if (meaning != nullptr) {
        ExplainStatus(*meaning, report);
    }
    return ExitStatus::kDone;
}

}  // namespace velkctl
