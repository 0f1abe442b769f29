// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// document_settings.cpp - the settings of a document that a verb works with.
#include "velkctl/verbs/document_settings.h"

#include <algorithm>

#include "velkctl/documents/document_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_patterns.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

AffectedSettings Selected(const std::string& word) {
    if (IsPattern(word)) {
        return SettingsMatching(word);
    }
    const std::optional<Setting> setting = FindSetting(word);
    return setting ? AffectedSettings{*setting} : AffectedSettings();
}

// Returns the selected settings; nothing after a word that selects none.
std::optional<AffectedSettings> SelectedBy(std::string_view verb, const std::string& only,
                                           Report& report) {
    AffectedSettings selected;
    bool is_valid = true;
    for (const std::string& word : SplitAtCommas(only)) {
        const AffectedSettings more = Selected(word);
        if (more.empty()) {
            report.Complain(std::string(verb) + ": --only: " +
                            (IsPattern(word) ? Quoted(word) + " matches no setting; "
                                                              "'velkctl list' names them all"
                                             : UnknownSetting(word)));
            is_valid = false;
        }
        selected = UnionOf(std::move(selected), more);
    }
    return is_valid ? std::optional(selected) : std::nullopt;
}

}  // namespace

std::vector<std::string> SplitAtCommas(std::string_view text) {
    std::vector<std::string> parts;
    for (size_t comma = 0; (comma = text.find(',')) != std::string_view::npos;) {
        parts.emplace_back(text.substr(0, comma));
        text.remove_prefix(comma + 1);
    }
    parts.emplace_back(text);
    return parts;
}

std::optional<SettingsDocument> OpenDocument(std::string_view verb, const std::string& word,
                                             const std::optional<std::string>& only,
                                             Report& report) {
    std::optional<AffectedSettings> selected;
    if (only) {
        selected = SelectedBy(verb, *only, report);
        if (!selected) {
            return std::nullopt;
        }
    }
    SettingsDocument document = ReadDocumentFile(word);
    if (selected) {
        std::erase_if(document.settings, [&selected](const DocumentSetting& row) {
            return !Includes(*selected, row.setting);
        });
    }
    return document;
}

}  // namespace velkctl
