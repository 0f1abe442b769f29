// get_verb.cpp - the verb that shows the values of settings.
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// Returns the setting of this name. Reports a name that is unknown or cannot be read.
std::optional<Setting> FindReadable(const std::string& name, bool may_be_key, Report& report) {
    const std::optional<Setting> setting = FindSetting(name);
    if (!setting) {
        report.Complain("get: " + UnknownSetting(name, may_be_key));
        return std::nullopt;
    }
    if (!setting->can_get()) {
        report.Complain(Problem{name + ": cannot be read, only set", name});
        return std::nullopt;
    }
    return setting;
}

// Reads one setting and prints its value after the prefix.
ExitStatus Show(const Setting& setting, const std::string& prefix, const Invocation& invocation,
                const Device& device, Json& shown, Report& report) {
    const Answer answer = device.Get(setting);
    if (answer.ok()) {
        const auto value = invocation.bare_value ? BareValue : ValueText;
        report.Text(prefix + value(setting, answer.data, invocation.show_secrets) + "\n");
        shown.push_back(ReadingInJson(
            setting, ValueInJson(setting, answer.data, invocation.show_secrets), nullptr));
    } else {
        const Problem problem = ProblemWithCause(CouldNotBeRead(setting), setting, answer);
        report.Text(invocation.bare_value ? "\n" : "");  // every name has its line
        report.Complain(problem);
        shown.push_back(ReadingInJson(setting, nullptr, OneLine(problem)));
    }
    return StatusOf(answer);
}

}  // namespace

ExitStatus RunGet(const Invocation& invocation, Report& report) {
    std::vector<Setting> settings;
    for (const std::string& name : invocation.words) {
        const std::optional<Setting> setting = FindReadable(name, invocation.beside_secret, report);
        if (!setting) {
            return ExitStatus::kInvalid;
        }
        settings.push_back(*setting);
    }
    const bool bare = settings.size() == 1 || invocation.bare_value;
    const Device device(invocation.limits, report);
    Json shown = Json::array();
    ExitStatus first_failure = ExitStatus::kDone;
    for (const Setting& setting : settings) {
        const std::string prefix = bare ? "" : setting.name() + " = ";
        const ExitStatus status = Show(setting, prefix, invocation, device, shown, report);
        if (first_failure == ExitStatus::kDone) {
            first_failure = status;
        }
    }
    report.Member("settings", std::move(shown));
    return first_failure;
}

}  // namespace velkctl
