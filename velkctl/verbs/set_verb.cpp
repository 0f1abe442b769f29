// set_verb.cpp - the verb that changes a setting.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/call/files_before.h"
#include "velkctl/call/text_conflicts.h"
#include "velkctl/cli/secret_source.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/read_back.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/verbs/network_check.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

using WordSpan = std::span<const std::string>;

Parsed ParseWords(const Setting& setting, WordSpan words, bool force) {
    const ValueKind& kind = *setting.row->kind;
    const Parsed parsed = kind.Parse(words);
    return parsed.ok() || !force ? parsed : kind.Force(words);
}

// Returns the data bytes of the words. The word of a secret may name its source; without a word,
// the user is asked for it.
Parsed ParseValue(const Setting& setting, WordSpan words, bool force) {
    if (!setting.row->secret || words.size() > 1 || (words.empty() && !CanAskForSecret())) {
        return ParseWords(setting, words, force);
    }
    const Secret secret = words.empty() ? AskForSecret(setting.name()) : ReadSecret(words.front());
    return secret.problem.empty() ? ParseWords(setting, {&secret.text, 1}, force)
                                  : Unparsable(secret.problem);
}

// True if a later word is the name of a secret: then the first word is probably the secret.
bool IsSwapped(WordSpan words) {
    return std::any_of(words.begin() + 1, words.end(),
                       [](const std::string& word) { return NamesSecret(word); });
}

// Returns the setting of this name. Reports a name that is unknown or cannot be set.
std::optional<Setting> FindChangeable(WordSpan words, Report& report) {
    const std::string& name = words.front();
    const std::optional<Setting> setting = FindSetting(name);
    if (!setting) {
        report.Complain("set: " + (IsSwapped(words)
                                       ? "the name of the setting comes first, then its value"
                                       : UnknownSetting(name)));
        return std::nullopt;
    }
    if (!setting->can_set()) {
        report.Complain(Problem{name + ": cannot be set, only read", name});
        return std::nullopt;
    }
    return setting;
}

// Returns the conflict of a valid value with other settings or with the files; nothing if none.
std::optional<Problem> FindConflict(const Setting& setting, const Data& value,
                                    const Device& device) {
    std::optional<Problem> problem = NetworkProblem(setting, value, device);
    return problem ? problem : TextConflict(setting, value, device);
}

// Returns the data bytes to send. Refuses a value that is not valid and returns nothing.
std::optional<Data> ValueToSend(const Setting& setting, const Invocation& invocation,
                                const Device& device, Report& report) {
    const WordSpan words = WordSpan(invocation.words).subspan(1);
    const Parsed value = ParseValue(setting, words, invocation.force);
    if (!value.ok()) {
        report.Refuse(Problem{setting.name() + ": " + value.problem, setting.name()});
        return std::nullopt;
    }
    if (invocation.force) {
        return value.data;
    }
    if (const std::optional<Problem> conflict = FindConflict(setting, value.data, device)) {
        report.Refuse(*conflict);
        return std::nullopt;
    }
    return value.data;
}

Json SetInJson(const Setting& setting, const Data& data, std::optional<bool> held) {
    Json object;
    object["name"] = setting.name();
    object["value"] = ValueInJson(setting, data, false);
    object["held"] = held ? Json(*held) : Json(nullptr);
    return object;
}

}  // namespace

ExitStatus RunSet(const Invocation& invocation, Report& report) {
    const std::optional<Setting> setting = FindChangeable(invocation.words, report);
    if (!setting) {
        return ExitStatus::kInvalid;
    }
    const Device device(invocation.limits, report);
    const std::optional<Data> value = ValueToSend(*setting, invocation, device, report);
    if (!value) {
        return ExitStatus::kInvalid;
    }
    const std::string name = setting->name();
    const FilesBefore before(*setting);
    const Answer answer = device.Set(*setting, *value);
    if (!answer.ok()) {
        Problem problem = ProblemWithCause(name + ": could not be set", *setting, answer);
        const std::string losses = answer.timed_out ? "" : before.Losses();
        problem.detail.append(losses.empty() || problem.detail.empty() ? "" : "; ").append(losses);
        report.Complain(problem);
        return StatusOf(answer);
    }
    const ReadBack read_back = invocation.no_verify
                                   ? ReadBack{std::nullopt, ExitStatus::kDone}
                                   : ReadSettingBack(*setting, *value, before, device, report);
    report.Member("setting", SetInJson(*setting, *value, read_back.held));
    return read_back.status;
}

}  // namespace velkctl
