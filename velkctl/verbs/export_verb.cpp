// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// export_verb.cpp - the verb that prints all settings as one document.
#include <string>
#include <utility>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/documents/settings_document.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/spelling.h"
#include "velkctl/verbs/read_failure.h"
#include "velkctl/verbs/setting_reader.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// True for a value that the library reads and a set would not change: also for an address of a
// lease.
bool IsFact(const Setting& setting, const Device& device) {
    return !setting.can_set() ||
           (IsAddressCommand(setting.row->id) && !device.HasStaticMethod(setting.interface));
}

class Exporter {
  public:
    Exporter(const Invocation& invocation, const Device& device, Report& report)
        : invocation_(invocation), device_(device), reader_(device), report_(report) {}

    void Add(const Setting& setting) {
        if (setting.row->secret && !invocation_.include_secrets) {
            return;
        }
        const std::optional<Answer> answer = reader_.Read(setting);
        if (answer && answer->ok()) {
            Json& members = IsFact(setting, device_) ? facts_ : settings_;
            members[setting.name()] = setting.row->kind->ToJson(answer->data);
        } else {
            AddUnread(setting, answer);
        }
    }

    ExitStatus Finish() {
        const Json document = MakeDocument(std::move(settings_), std::move(facts_));
        report_.Text(DocumentText(document));
        report_.Member("document", document);
        report_.Member("unread", NamesOf(unread_));
        if (!unusable_.empty()) {
            report_.Note(Problem{
                .message = std::to_string(unusable_.size()) + " settings of eth1 are left out",
                .detail = reason_});
        }
        for (const Problem& problem : problems_) {
            report_.Complain(problem);
        }
        return problems_.empty() ? ExitStatus::kDone : ExitStatus::kFailed;
    }

  private:
    // A wired device has no adapter, or its cable is in: its settings of eth1 are not expected. A
    // fact is not needed to give the device its settings again.
    void AddUnread(const Setting& setting, const std::optional<Answer>& answer) {
        unread_.push_back(setting);
        if (IsFact(setting, device_)) {
            return;
        }
        const ExitStatus status = answer ? StatusWithCause(setting, *answer) : ExitStatus::kFailed;
        if (status == ExitStatus::kNoAdapter || status == ExitStatus::kWiredLinked) {
            unusable_.push_back(setting);
            reason_ = "they " + ReadFailureOf(setting, *answer).of_several;
        } else {
            problems_.push_back(ReadingProblem(setting, answer));
        }
    }

    const Invocation& invocation_;
    const Device& device_;
    SettingReader reader_;
    Report& report_;
    Json settings_ = Json::object();
    Json facts_ = Json::object();
    AffectedSettings unread_;
    AffectedSettings unusable_;
    std::string reason_;
    std::vector<Problem> problems_;
};

}  // namespace

ExitStatus RunExport(const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report);
    Exporter exporter(invocation, device, report);
    for (const Setting& setting : Settings()) {
        if (setting.can_get()) {
            exporter.Add(setting);
        }
    }
    return exporter.Finish();
}

}  // namespace velkctl
