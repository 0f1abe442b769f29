// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// document_settings.h - the settings of a document that a verb works with.
#ifndef VELKCTL_VERBS_DOCUMENT_SETTINGS_H_
#define VELKCTL_VERBS_DOCUMENT_SETTINGS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/documents/settings_document.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Reads a document. Keeps the settings that `only` selects: names, interfaces and patterns with
// commas between them; all without it. Reports each word of it that selects none, and then returns
// nothing. `verb` begins these messages.
std::optional<SettingsDocument> OpenDocument(std::string_view verb, const std::string& word,
                                             const std::optional<std::string>& only,
                                             Report& report);

// Returns the parts of a text between its commas.
std::vector<std::string> SplitAtCommas(std::string_view text);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_DOCUMENT_SETTINGS_H_
