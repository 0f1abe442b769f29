// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_run.cpp - one run of velkctl in this process, with the rules that hold for every run.
#include "fuzz/kit/tool_run.h"

#include <exception>

#include "fuzz/kit/lines.h"
#include "fuzz/kit/tool_device.h"
#include "velkctl/cli/command_line.h"
#include "velkctl/report/output.h"
#include <nlohmann/json.hpp>

namespace fuzz {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFailed = 1;
constexpr int kLastStatus = 9;

int StatusOf(const std::vector<std::string>& arguments, velkctl::Report& report) {
    try {
        return static_cast<int>(velkctl::RunCommandLine(arguments, report));
    } catch (const std::exception& error) {
        Check(false, std::string("no failure inside: ") + error.what());
        return kFailed;
    }
}

void CheckDocument(const ToolResult& result) {
    const Json document = Json::parse(result.output, nullptr, false);
    Check(document.is_object(), "the output is one JSON document");
    Check(document.value("schema", 0) == 3, "the document has its schema");
    Check(document.value("status", -1) == result.status, "the document has the status");
    Check(document["errors"].is_array() && document["notes"].is_array(),
          "the document has its lists");
    Check(result.status == 0 || result.status == kFailed || result.status == 6 ||
              !document["errors"].empty(),
          "a failure has a reason");
    Check(result.error.empty(), "a document is alone");
}

// A message begins with the name of the tool. Its further lines are indented.
void CheckMessages(const std::string& error) {
    bool is_first = true;
    for (const std::string& line : Lines(error)) {
        Check(line.starts_with("velkctl: ") || (!is_first && line.starts_with(' ')) ||
                  !line.starts_with("velkctl"),
              "a message begins with the name of the tool");
        is_first = false;
    }
    Check(error.empty() || error.back() == '\n', "a message ends with its line");
    Check(IsPlainText(error), "messages are plain text: " + error);
}

}  // namespace

ToolResult RunTool(const std::vector<std::string>& arguments) {
    ToolResult result{};
    PrintedTexts printed;
    const auto form = velkctl::RequestedForm(arguments);
    {
        velkctl::Report report(form);
        result.status = StatusOf(arguments, report);
        report.Finish(result.status);
        (void)velkctl::FinishPrinting();
    }
    result.output = printed.output();
    result.error = printed.error();
    Check(result.status >= 0 && result.status <= kLastStatus, "the status is a documented one");
    if (form == velkctl::Report::Form::kJson) {
        CheckDocument(result);
    } else {
        CheckMessages(result.error);
    }
    return result;
}

bool IsTelling(const std::string& text) {
    constexpr size_t kTellingLength = 8;
    return text.size() >= kTellingLength && text[0] != '*' &&
           text.find_first_not_of(text[0]) == std::string::npos;
}

}  // namespace fuzz
