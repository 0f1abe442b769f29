// list_verb.cpp - the verb that lists the settings.
#include <string>
#include <vector>

#include "velkctl/cli/verbs.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

std::string Directions(const Setting& setting) {
    return std::string(setting.can_get() ? "get" : "   ") + (setting.can_set() ? " set" : "    ");
}

}  // namespace

ExitStatus RunList(const Invocation& invocation, Report& report) {
    std::vector<Setting> settings = Settings();
    if (!invocation.words.empty()) {
        std::erase_if(settings, [&](const Setting& setting) {
            return setting.interface != invocation.words.front();
        });
    }
    const size_t width = NameWidth(settings);
    Json listed = Json::array();
    for (const Setting& setting : settings) {
        report.Text(Padded(setting.name(), width) + "  " + Directions(setting) + "  " +
                    std::string(setting.row->help) + "\n");
        listed.push_back(SettingInJson(setting));
    }
    report.Member("settings", std::move(listed));
    return ExitStatus::kDone;
}

}  // namespace velkctl
