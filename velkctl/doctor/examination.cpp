// examination.cpp - the doctor's list of checks, for the whole device or for one setting.
#include "velkctl/doctor/examination.h"

#include <vector>

#include "velk.h"
#include "velkctl/doctor/checks.h"

namespace velkctl {
namespace {

struct Check {
    Findings (*look)();
    Concerns concerns;  // settings that it may find something about
};

Concerns Together(Concerns all, const Concerns& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

// In the order in which they are shown. The wireless daemon is asked after all of them: doing so
// clears away what some of them look for.
std::vector<Check> Checks() {
    return {
        {CheckFolders, Together(EditedSettings(), WirelessSettings())},
        {CheckFiles, Together(EditedSettings(), {{VELK_CMD_DNS}})},
        {CheckEditCopies, EditedSettings()},
        {CheckInterfaces,
         {{VELK_CMD_IP_METHOD}, {VELK_CMD_IP_ADDRESS}, {VELK_CMD_NETMASK}, {VELK_CMD_GATEWAY}}},
        {CheckExitHooks, {{VELK_CMD_APIPA}, {VELK_CMD_DHCP_NOTICE}, {VELK_CMD_DHCP_NTP}}},
        {CheckDhcpConfig, {{VELK_CMD_IP_METHOD}, {VELK_CMD_DHCP_DNS}, {VELK_CMD_DHCP_NTP}}},
        {CheckClientScript, {{VELK_CMD_DHCP_DNS}}},
        {CheckTimeEntry, {{VELK_CMD_NTP}, {VELK_CMD_NTP_SERVER}, {VELK_CMD_NTP_RESULT}}},
        {CheckWebUpdate, {{VELK_CMD_WEB_UPDATE}}},
        {CheckIdentity, {{VELK_CMD_ADMINISTRATOR}, {VELK_CMD_LOCATION}}},
        {CheckTools, {}},  // CheckToolsFor() a setting
        {CheckIfconfig, {{VELK_CMD_IP_ADDRESS}, {VELK_CMD_NETMASK}}},
        {CheckLock, {}},
        {CheckResultFile, {{VELK_CMD_LINK_SPEED}, {VELK_CMD_IP_ADDRESS}, {VELK_CMD_NETMASK}}},
        {CheckQueryRemains, WirelessSettings()},
        {CheckAdapter, AdapterFacts()},
    };
}

}  // namespace

Findings ExamineDevice(Report& report) {
    Findings findings;
    for (const Check& check : Checks()) {
        Append(findings, check.look());
    }
    Append(findings, CheckDaemon(report));
    return findings;
}

Findings ExamineFor(const Setting& setting) {
    // A tool that is missing comes before the edit that it left unfinished.
    Findings findings = CheckToolsFor(setting);
    for (const Check& check : Checks()) {
        if (Includes(check.concerns, setting)) {
            Append(findings, check.look());
        }
    }
    std::erase_if(findings,
                  [&](const Finding& finding) { return !Includes(finding.concerns, setting); });
    return findings;
}

}  // namespace velkctl
