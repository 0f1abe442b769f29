// get_verb.cpp - the verb that shows the values of settings.
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_patterns.h"
#include "velkctl/verbs/selected_settings.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// Reads one setting and prints its value after the prefix.
ExitStatus Show(const Setting& setting, const std::string& prefix, const Invocation& invocation,
                const Device& device, Json& shown, Report& report) {
    const Answer answer = device.Get(setting);
    if (answer.ok()) {
        const auto value = invocation.bare_value ? BareValue : ValueText;
        report.Text(prefix + value(setting, answer.data, invocation.show_secrets) + "\n");
        const std::optional<Finding> invalid = InvalidValue(setting, answer.data);
        if (invalid) {
            report.Note(NoteOf(*invalid));
        }
        shown.push_back(ReadingInJson(setting,
                                      ValueInJson(setting, answer.data, invocation.show_secrets),
                                      nullptr, !invalid));
    } else {
        const Problem problem = ProblemOfGet(CouldNotBeRead(setting), setting, answer);
        report.Text(invocation.bare_value ? "\n" : "");  // every name has its line
        report.Complain(problem);
        shown.push_back(ReadingInJson(setting, nullptr, ProblemInJson(problem)));
    }
    return StatusWithCause(setting, answer);
}

}  // namespace

ExitStatus RunGet(const Invocation& invocation, Report& report) {
    const std::vector<Setting> settings = SelectReadable("get", invocation, report);
    if (settings.empty()) {
        return ExitStatus::kInvalid;
    }
    const bool is_one_name = invocation.words.size() == 1 && !IsPattern(invocation.words.front());
    const bool bare = is_one_name || invocation.bare_value;
    const size_t width = NameWidth(settings);
    const Device device(invocation.limits, report);
    Json shown = Json::array();
    ExitStatus first_failure = ExitStatus::kDone;
    for (const Setting& setting : settings) {
        const std::string prefix = bare ? "" : NameColumn(setting, width);
        const ExitStatus status = Show(setting, prefix, invocation, device, shown, report);
        if (first_failure == ExitStatus::kDone) {
            first_failure = status;
        }
    }
    report.Member("settings", std::move(shown));
    return first_failure;
}

}  // namespace velkctl
