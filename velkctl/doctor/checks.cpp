// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// checks.cpp - runs the doctor's checks, for the whole device or for one setting.
#include "velkctl/doctor/checks.h"

#include <functional>
#include <vector>

#include "lib/base/paths.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/time_entry.h"

namespace velkctl {
namespace {

struct Check {
    std::function<Findings()> run;
    AffectedSettings affected{};  // the settings that it can find something about
};

// The wireless daemon is queried after all of these, because a query removes remains that some of
// them look for. `setting` is null for the whole device.
std::vector<Check> Checks(const Setting* setting, std::string_view value) {
    const auto check_interfaces = [=] {
        return setting == nullptr ? CheckInterfaces() : CheckInterfacesFor(*setting, value);
    };
    return {
        {CheckFolders,
         UnionOf(EditedSettings(), UnionOf(SettingsReadWith(kLinkTool), WirelessSettings()))},
        {CheckFiles, UnionOf(EditedSettings(), SettingsHeldIn(velk::kResolverFile))},
        {CheckEditCopies, EditedSettings()},
        {check_interfaces, SettingsHeldIn(velk::kInterfacesFile)},
        {CheckExitHooks, SettingsChanging(velk::kExitHooks)},
        {CheckDhcpConfig, SettingsChanging(velk::kDhcpConfigFile)},
        {CheckClientScript, SettingsChanging(velk::kClientScript)},
        {CheckDhcpClients, {}},  // it keeps nothing from being set
        {CheckTimeEntry, UnionOf(SettingsWithKey(kTimeClient), SettingsHeldIn(velk::kNtpLog))},
        {CheckWebUpdate, SettingsOf(VELK_CMD_WEB_UPDATE)},
        {CheckIdentity, SettingsHeldIn(velk::kIdentityFile)},
        {CheckTools},  // ExamineFor() a setting runs CheckToolsFor() instead
        {CheckIfconfig, SettingsReadWith(kInterfaceTool)},
        {CheckLock},
        {CheckJournal, {}},  // it keeps nothing from being set
        {CheckResultFile, SettingsReadWith()},
        {CheckQueryRemains, WirelessSettings()},
        {CheckAdapter, AdapterFacts()},
    };
}

}  // namespace

Findings ExamineDevice(Report& report) {
    Findings findings;
    for (const Check& check : Checks(nullptr, "")) {
        Append(findings, check.run());
    }
    Append(findings, CheckValues(findings, report));
    Append(findings, CheckDaemon(report));
    std::erase_if(findings,
                  [](const Finding& finding) { return finding.severity == Severity::kNote; });
    return findings;
}

Findings ExamineFor(const Setting& setting, std::string_view value) {
    // A missing tool comes before the edit that it left unfinished.
    Findings findings = CheckToolsFor(setting);
    for (const Check& check : Checks(&setting, value)) {
        if (Includes(check.affected, setting)) {
            Append(findings, check.run());
        }
    }
    std::erase_if(findings,
                  [&](const Finding& finding) { return !Includes(finding.affected, setting); });
    return findings;
}

}  // namespace velkctl
