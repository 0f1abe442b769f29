// set_verb.cpp - the verb that changes a setting.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/call/files_before.h"
#include "velkctl/call/text_conflicts.h"
#include "velkctl/call/time_limits.h"
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

using Words = std::span<const std::string>;

Parsed ParseWords(const Setting& setting, Words words, bool force) {
    const ValueKind& kind = *setting.row->kind;
    const Parsed parsed = kind.Parse(words);
    return parsed.ok() || !force ? parsed : kind.Force(words);
}

// The data bytes of the words; those of a secret may say where it is to be found, and without any
// it is asked for.
Parsed ParseValue(const Setting& setting, Words words, bool force) {
    if (!setting.row->secret || words.size() > 1 || (words.empty() && !CanAskForSecret())) {
        return ParseWords(setting, words, force);
    }
    const Secret secret = words.empty() ? AskForSecret(setting.name()) : ReadSecret(words.front());
    return secret.problem.empty() ? ParseWords(setting, {&secret.text, 1}, force)
                                  : Unparsable(secret.problem);
}

// Says whether the name of a secret stands where its value should: the first word is the secret.
bool IsSwapped(Words words) {
    return std::any_of(words.begin() + 1, words.end(),
                       [](const std::string& word) { return NamesSecret(word); });
}

// A setting that may be changed; complains when there is none.
std::optional<Setting> FindChangeable(Words words, Report& report) {
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

// The data bytes to send; nothing, after refusing them, when they are nonsense.
std::optional<Data> ValueToSend(const Setting& setting, const Invocation& invocation,
                                const Device& device, Report& report) {
    const Words words = Words(invocation.words).subspan(1);
    Parsed value = ParseValue(setting, words, invocation.force);
    if (value.ok() && !invocation.force) {
        value.problem = NetworkProblem(setting, value.data, device);
    }
    if (value.ok() && !invocation.force) {
        value.problem = TextConflict(setting, value.data, device);
    }
    if (!value.ok()) {
        report.Refuse(Problem{setting.name() + ": " + value.problem, setting.name()});
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
    const std::optional<Patience> patience = PatienceOf(invocation, report);
    if (!patience) {
        return ExitStatus::kInvalid;
    }
    const std::optional<Setting> setting = FindChangeable(invocation.words, report);
    if (!setting) {
        return ExitStatus::kInvalid;
    }
    const Device device(*patience, report);
    const std::optional<Data> value = ValueToSend(*setting, invocation, device, report);
    if (!value) {
        return ExitStatus::kInvalid;
    }
    const std::string name = setting->name();
    const FilesBefore before(*setting);
    const Answer answer = device.Set(*setting, *value);
    if (!answer.ok()) {
        const std::string losses = answer.timed_out ? "" : before.Losses();
        const std::string failure =
            DescribeFailureAndCause(name + ": could not be set", *setting, answer);
        report.Complain(
            Problem{failure + (losses.empty() ? "" : "; ") + losses, name, answer.known_result()});
        return StatusOf(answer);
    }
    const ReadBack read_back = invocation.no_verify
                                   ? ReadBack{std::nullopt, ExitStatus::kDone}
                                   : ReadSettingBack(*setting, *value, before, device, report);
    report.Member("setting", SetInJson(*setting, *value, read_back.held));
    return read_back.status;
}

}  // namespace velkctl
