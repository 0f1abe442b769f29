// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// settings_document.cpp - settings with their values as one JSON document.
#include "velkctl/documents/settings_document.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "velkctl/documents/json_text.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

constexpr int kSchema = 1;
constexpr char kSchemaMember[] = "schema";
constexpr char kSettingsMember[] = "settings";
constexpr char kFactsMember[] = "facts";

// Returns the description with its place after the first clause: "'x' is not valid; at
// /settings/ntp in net.json; give on or off".
std::string WithPlace(std::string_view description, const std::string& place) {
    const std::string_view failure = FirstClause(description);
    std::string text(failure);
    return text.append(place.empty() ? "" : "; at ")
        .append(place)
        .append(description.substr(failure.size()));
}

Problem ProblemAt(const std::string& document, const std::string& pointer,
                  std::string_view description) {
    Problem problem{Printable(document) + ": " + WithPlace(description, Printable(pointer))};
    problem.file = document;
    problem.pointer = pointer;
    return problem;
}

Problem SyntaxProblem(const std::string& document, const TextPlace& place) {
    const std::string column = std::to_string(place.column);
    Problem problem{Printable(document) + ": not JSON at line " + std::to_string(place.line) +
                    ", column " + column};
    problem.file = document;
    problem.line = place.line;
    problem.remedy = "correct the text there; 'velkctl export' prints a document";
    return problem;
}

// True if a text in the value has a NUL, at which the data bytes would end.
bool HasNul(const Json& value) {
    if (value.is_string()) {
        return value.get_ref<const std::string&>().find('\0') != std::string::npos;
    }
    return value.is_array() && std::ranges::any_of(value, [](const Json& element) {
               return element.is_string() && HasNul(element);
           });
}

Parsed ParseValue(const Setting& setting, const Json& value) {
    return HasNul(value) ? Unparsable("a NUL character is not taken; leave it out")
                         : setting.row->kind->FromJson(value);
}

class DocumentReader {
  public:
    explicit DocumentReader(const std::string& name) : document_{.name = name} {}

    void Read(const JsonText& text) {
        if (text.error) {
            document_.problems.push_back(SyntaxProblem(document_.name, *text.error));
            return;
        }
        for (const std::string& pointer : text.doubled) {
            Refuse(pointer, "given twice; give it once");
        }
        if (text.value && text.value->is_object()) {
            ReadMembers(*text.value);
        } else {
            Refuse("", "a document is an object; give {\"schema\": 1, \"settings\": {...}}");
        }
    }

    SettingsDocument TakeDocument() { return std::move(document_); }

  private:
    void Refuse(const std::string& pointer, std::string_view description) {
        document_.problems.push_back(ProblemAt(document_.name, pointer, description));
    }

    void ReadMembers(const Json& document) {
        const std::vector<std::string> known{kSchemaMember, kSettingsMember, kFactsMember};
        for (const auto& [name, value] : document.items()) {
            if (std::ranges::find(known, name) == known.end()) {
                Refuse(
                    MemberPointer("", name),
                    "unknown member" + DidYouMean(name, known, "give schema, settings or facts"));
            }
        }
        CheckSchema(document);
        ReadObject(document, kSettingsMember, &DocumentReader::ReadSetting);
        ReadObject(document, kFactsMember, &DocumentReader::CheckFact);
    }

    void CheckSchema(const Json& document) {
        const std::string pointer = MemberPointer("", kSchemaMember);
        if (!document.contains(kSchemaMember)) {
            Refuse(pointer, "schema is missing; give 1");
        } else if (document[kSchemaMember] != kSchema) {
            Refuse(pointer, "this velkctl knows only schema 1; give a document of its own export");
        }
    }

    void ReadObject(const Json& document, const char* member,
                    void (DocumentReader::*read)(const std::string& name, const Json& value)) {
        const std::string pointer = MemberPointer("", member);
        if (!document.contains(member)) {
            if (member == kSettingsMember) {
                Refuse(pointer, "settings is missing; give an object with names and values");
            }
            return;
        }
        if (!document[member].is_object()) {
            Refuse(pointer, "not an object; give an object with names and values");
            return;
        }
        for (const auto& [name, value] : document[member].items()) {
            (this->*read)(name, value);
        }
    }

    void ReadSetting(const std::string& name, const Json& value) {
        std::string pointer = MemberPointer(MemberPointer("", kSettingsMember), name);
        const std::optional<Setting> setting = FindSetting(name);
        if (!setting) {
            Refuse(pointer, UnknownSetting(name));
        } else if (!setting->can_set()) {
            Refuse(pointer, "cannot be set, only read; leave it out or move it to facts");
        } else if (Has(*setting)) {
            Refuse(pointer, "given twice, with its short name and its full name; give it once");
        } else {
            document_.settings.push_back(
                {*setting, value, ParseValue(*setting, value), std::move(pointer)});
        }
    }

    void CheckFact(const std::string& name, const Json& /*value*/) {
        if (!FindSetting(name)) {
            Refuse(MemberPointer(MemberPointer("", kFactsMember), name), UnknownSetting(name));
        }
    }

    bool Has(const Setting& setting) const {
        return std::ranges::any_of(document_.settings, [&setting](const DocumentSetting& other) {
            return IsSameSetting(other.setting, setting);
        });
    }

    SettingsDocument document_;
};

}  // namespace

SettingsDocument ReadDocument(std::string_view text, const std::string& name) {
    DocumentReader reader(name);
    reader.Read(ReadJsonText(text));
    return reader.TakeDocument();
}

Problem ValueProblem(const DocumentSetting& setting, const std::string& name) {
    const std::string place = Printable(setting.pointer) + " in " + Printable(name);
    const std::string own = setting.setting.name();
    Problem problem{own + ": " + WithPlace(setting.parsed.problem, place), own};
    problem.file = name;
    problem.pointer = setting.pointer;
    return problem;
}

Json MakeDocument(Json settings, Json facts) {
    Json document;
    document[kSchemaMember] = kSchema;
    document[kSettingsMember] = std::move(settings);
    document[kFactsMember] = std::move(facts);
    return document;
}

std::string DocumentText(const Json& document) {
    return document.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}

}  // namespace velkctl
