// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// diff_verb.cpp - the verb that compares a document with the device or with another document.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/documents/settings_document.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/masking.h"
#include "velkctl/verbs/document_settings.h"
#include "velkctl/verbs/setting_reader.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// A setting on one of two sides; nothing on a side that does not have it.
struct Difference {
    Setting setting;
    std::optional<Json> first{};
    std::optional<Json> second{};
};

// Two ways to write a value are the same value. One that no set accepts is compared as it is
// written.
Json Canonical(const DocumentSetting& row) {
    return row.parsed.ok() ? row.setting.row->kind->ToJson(row.parsed.data) : row.value;
}

const DocumentSetting* Find(const SettingsDocument& document, const Setting& setting) {
    const auto row = std::ranges::find_if(document.settings, [&](const DocumentSetting& other) {
        return IsSameSetting(other.setting, setting);
    });
    return row == document.settings.end() ? nullptr : &*row;
}

// ---- Output ------------------------------------------------------------------------------------

Json Masked(const Setting& setting, const Json& value) {
    return setting.row->secret && !value.is_null() ? Json(kMask) : value;
}

Json SideInJson(const Setting& setting, const std::optional<Json>& value) {
    return value ? Masked(setting, *value) : Json(nullptr);
}

std::string SideText(const Setting& setting, const std::optional<Json>& value) {
    if (!value) {
        return "(not in it)";
    }
    return Masked(setting, *value).dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json InJson(const Difference& difference) {
    const Setting& setting = difference.setting;
    Json object;
    object["name"] = setting.name();
    object["first"] = SideInJson(setting, difference.first);
    object["second"] = SideInJson(setting, difference.second);
    object["only_in"] = nullptr;
    if (!difference.first || !difference.second) {
        object["only_in"] = difference.first ? "first" : "second";
    }
    return object;
}

ExitStatus Show(const std::vector<Difference>& differences, Report& report) {
    Json list = Json::array();
    for (const Difference& difference : differences) {
        const Setting& setting = difference.setting;
        std::string line = setting.name() + ": " + SideText(setting, difference.first);
        report.Text(line.append(" -> ").append(SideText(setting, difference.second)).append("\n"));
        list.push_back(InJson(difference));
    }
    report.Member("differences", std::move(list));
    return differences.empty() ? ExitStatus::kDone : ExitStatus::kNotHeld;
}

// ---- Comparison --------------------------------------------------------------------------------

std::vector<Difference> Compare(const SettingsDocument& first, const SettingsDocument& second) {
    std::vector<Difference> differences;
    for (const Setting& setting : Settings()) {
        const DocumentSetting* one = Find(first, setting);
        const DocumentSetting* other = Find(second, setting);
        Difference difference{setting};
        difference.first = one == nullptr ? std::nullopt : std::optional(Canonical(*one));
        difference.second = other == nullptr ? std::nullopt : std::optional(Canonical(*other));
        if (difference.first != difference.second) {
            differences.push_back(std::move(difference));
        }
    }
    return differences;
}

// Compares the settings of a document with the device. The first failure to read one decides the
// exit status, if no setting differs.
class DeviceComparison {
  public:
    DeviceComparison(const Device& device, Report& report)
        : device_(device), reader_(device), report_(report) {}

    void Compare(const DocumentSetting& row) {
        if (!row.setting.can_get()) {
            report_.Note(row.setting.name() + ": not compared, as it cannot be read");
        } else if (IsOfLease(row.setting)) {
            report_.Note(row.setting.name() + ": not compared, as its value comes from DHCP");
        } else {
            CompareAnswer(row, reader_.Read(row.setting));
        }
    }

    ExitStatus Finish() {
        const ExitStatus found = Show(differences_, report_);
        return found == ExitStatus::kDone ? status_ : found;
    }

  private:
    bool IsOfLease(const Setting& setting) const {
        return IsAddressCommand(setting.row->id) && !device_.HasStaticMethod(setting.interface);
    }

    void CompareAnswer(const DocumentSetting& row, const std::optional<Answer>& answer) {
        if (!answer || !answer->ok()) {
            report_.Complain(ReadingProblem(row.setting, answer));
            const bool is_first = answer && status_ == ExitStatus::kDone;
            status_ = is_first ? StatusWithCause(row.setting, *answer) : status_;
            return;
        }
        const Json present = row.setting.row->kind->ToJson(answer->data);
        if (const Json wanted = Canonical(row); wanted != present) {
            differences_.push_back({row.setting, wanted, present});
        }
    }

    const Device& device_;
    SettingReader reader_;
    Report& report_;
    std::vector<Difference> differences_;
    ExitStatus status_ = ExitStatus::kDone;
};

ExitStatus CompareWithDevice(const SettingsDocument& document, const TimeLimits& limits,
                             Report& report) {
    const Device device(limits, report);
    DeviceComparison comparison(device, report);
    for (const DocumentSetting& row : document.settings) {
        comparison.Compare(row);
    }
    return comparison.Finish();
}

}  // namespace

ExitStatus RunDiff(const Invocation& invocation, Report& report) {
    std::vector<SettingsDocument> documents;
    bool is_valid = true;
    for (const std::string& word : invocation.words) {
        std::optional<SettingsDocument> document =
            OpenDocument("diff", word, invocation.only, report);
        if (!document) {
            return ExitStatus::kInvalid;
        }
        for (const Problem& problem : document->problems) {
            report.Complain(problem);
        }
        is_valid = is_valid && document->problems.empty();
        documents.push_back(std::move(*document));
    }
    if (!is_valid) {
        return ExitStatus::kInvalid;
    }
    return documents.size() == 2 ? Show(Compare(documents[0], documents[1]), report)
                                 : CompareWithDevice(documents[0], invocation.limits, report);
}

}  // namespace velkctl
