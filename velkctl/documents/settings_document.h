// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// settings_document.h - settings with their values as one JSON document.
#ifndef VELKCTL_DOCUMENTS_SETTINGS_DOCUMENT_H_
#define VELKCTL_DOCUMENTS_SETTINGS_DOCUMENT_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// A setting of a document. The value of ValueKind::ToJson() may be one that no set accepts: an
// export has all values of its device.
struct DocumentSetting {
    Setting setting;
    Json value;
    Parsed parsed;        // the data bytes of the value, or its problem
    std::string pointer;  // its place in the document
};

struct SettingsDocument {
    std::string name;                         // the file, or "standard input"
    std::vector<DocumentSetting> settings{};  // in the order of the document
    std::vector<Problem> problems{};          // with its form, each with its place
};

// Reads a document:
//
//   {"schema": 1, "settings": {"eth0.address": "192.168.0.10", ...}, "facts": {...}}
//
// Facts are values that a set cannot change. Their names are checked, their values are not read.
SettingsDocument ReadDocument(std::string_view text, const std::string& name);

// Returns the problem with the value of a setting. Only for a setting that has one.
Problem ValueProblem(const DocumentSetting& setting, const std::string& name);

// Returns a document with these members of "settings" and "facts".
Json MakeDocument(Json settings, Json facts);

// Returns the text of a document, with a newline at its end. It has ASCII characters only.
std::string DocumentText(const Json& document);

}  // namespace velkctl

#endif  // VELKCTL_DOCUMENTS_SETTINGS_DOCUMENT_H_
