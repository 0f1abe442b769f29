// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// documents_fuzz.cpp - the document of apply: one that is accepted is printed and read again the
// same, as JSON and as words; a check of it changes nothing and shows no key.
//
// An input is the text of a document.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/kit/check.h"
#include "fuzz/kit/tool_device.h"
#include "fuzz/kit/tool_run.h"
#include "support/device_test.h"
#include "velkctl/documents/json_text.h"
#include "velkctl/documents/settings_document.h"

namespace fuzz {
namespace {

using velkctl::DocumentSetting;
using velkctl::Json;
using velkctl::Parsed;
using velkctl::SettingsDocument;

constexpr char kFile[] = "/tmp/network.json";

size_t LinesIn(std::string_view text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

// A problem names its document, and a line of it or a value.
void CheckProblems(const SettingsDocument& document, std::string_view text) {
    for (const velkctl::Problem& problem : document.problems) {
        Check(problem.file == kFile, "a problem names the document");
        Check(problem.line <= LinesIn(text), "a problem is at a line of the text");
        Check(!problem.message.empty(), "a problem has a message");
        Check(IsPlainText(OneLine(problem)) && OneLine(problem).find('\n') == std::string::npos,
              "a problem is one line");
    }
}

// A document with an accepted value has the same value, as JSON and as the words of a set.
void CheckValue(const DocumentSetting& row) {
    const velkctl::ValueKind& kind = *row.setting.row->kind;
    const velkctl::Data& data = row.parsed.data;
    const Parsed again = kind.FromJson(kind.ToJson(data));
    Check(again.ok() && IsSameValue(row.setting, again.data, data),
          "a value is printed and read again the same");
    const std::string word = kind.Print(data);
    Check(IsPlainText(word) && word.find('\n') == std::string::npos, "a value is one line");
    const Parsed typed = kind.Parse(std::vector<std::string>{word});
    Check(!typed.ok() || IsSameValue(row.setting, typed.data, data),
          "a printed value is not another value");
}

Json ValuesOf(const SettingsDocument& document) {
    Json values = Json::object();
    for (const DocumentSetting& row : document.settings) {
        if (row.parsed.ok()) {
            values[row.setting.name()] = row.setting.row->kind->ToJson(row.parsed.data);
        }
    }
    return values;
}

void CheckDocument(const SettingsDocument& document) {
    const std::string text =
        velkctl::DocumentText(velkctl::MakeDocument(ValuesOf(document), Json::object()));
    const SettingsDocument again = velkctl::ReadDocument(text, kFile);
    Check(again.problems.empty(), "a printed document has no problem");
    Check(ValuesOf(again) == ValuesOf(document), "a printed document has the same values");
    Check(velkctl::DocumentText(velkctl::MakeDocument(ValuesOf(again), Json::object())) == text,
          "a second print is the same");
}

bool IsInvalid(const SettingsDocument& document) {
    return !document.problems.empty() ||
           std::ranges::any_of(document.settings,
                               [](const DocumentSetting& row) { return !row.parsed.ok(); });
}

void CheckKeysAreHidden(const SettingsDocument& document, const std::string& printed) {
    for (const DocumentSetting& row : document.settings) {
        if (row.setting.row->secret && row.value.is_string() &&
            IsTelling(row.value.get<std::string>())) {
            Check(printed.find(row.value.get<std::string>()) == std::string::npos,
                  "a key is not printed");
        }
    }
}

void CheckApply(const SettingsDocument& document, std::string_view text) {
    PlaceDevice();
    testkit::WriteFile(kFile, text);
    const DeviceFiles before = ReadDeviceFiles();
    const ToolTurn turn;
    const std::vector<std::string> words = {"apply", kFile, "--check"};
    const ToolResult shown = RunTool(words);
    Check(ReadDeviceFiles() == before, "a check changes nothing");
    Check(!IsInvalid(document) || shown.status == 2, "an invalid document is refused");
    CheckKeysAreHidden(document, shown.All());
    const ToolResult machine = RunTool({"apply", kFile, "--check", "--json"});
    Check(machine.status == shown.status, "text and document have one status");
    CheckKeysAreHidden(document, machine.All());
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const fuzz::SettingsDocument document = velkctl::ReadDocument(text, fuzz::kFile);
    fuzz::CheckProblems(document, text);
    for (const fuzz::DocumentSetting& row : document.settings) {
        if (row.parsed.ok()) {
            fuzz::CheckValue(row);
        }
    }
    fuzz::CheckDocument(document);
    fuzz::CheckApply(document, text);
    return 0;
}
