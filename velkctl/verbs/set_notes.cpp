// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_notes.cpp - notes about the effects of a set on other settings and on the device.
#include "velkctl/verbs/set_notes.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <unistd.h>

#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/report/output.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

// Returns the settings that sets of these may switch.
AffectedSettings SettingsBeside(const std::vector<Setting>& settings) {
    AffectedSettings beside;
    for (const Setting& setting : settings) {
        beside = UnionOf(std::move(beside), SettingsBeside(setting));
    }
    std::erase_if(beside, [](const Setting& other) { return !other.can_get(); });
    return beside;
}

std::vector<PrintedSetting> ValuesOf(const AffectedSettings& settings, const Device& device) {
    std::vector<PrintedSetting> values;
    for (const Setting& setting : settings) {
        values.push_back({setting, device.PrintedValue(setting)});
    }
    return values;
}

// Returns the name of the setting that may have switched the other one; empty if none of them may.
std::string SwitchOf(const Setting& other, const std::vector<Setting>& settings) {
    const auto cause = std::ranges::find_if(
        settings, [&](const Setting& setting) { return Includes(SettingsBeside(setting), other); });
    return cause == settings.end() ? "" : cause->name();
}

// True if the value is compared with those of other settings.
bool IsCompared(const Setting& setting) {
    const uint32_t id = setting.row->id;
    return IsAddressCommand(id) || id == VELK_CMD_IP_METHOD || id == VELK_CMD_DNS;
}

Findings Mismatches(const std::vector<Setting>& settings, const Device& device) {
    return std::ranges::any_of(settings, IsCompared) ? NetworkMismatches(PlannedValues(device, {}))
                                                     : Findings();
}

bool IsSame(const Finding& one, const Finding& other) {
    return one.subject == other.subject && one.description == other.description;
}

Problem NoteOfMismatch(const Finding& mismatch) {
    return {.message = mismatch.subject + " " + mismatch.effect,
            .setting = mismatch.subject,
            .detail = mismatch.description,
            .remedy = mismatch.remedy};
}

// While the method is static, the client's block of the interface is switched off as a whole. The
// set has found no statement to change there.
void NoteIfMethodMaySwitchIt(const Setting& setting, const Device& device, Report& report) {
    if (setting.row->id != VELK_CMD_DHCP_DNS) {
        return;
    }
    const std::string method_name = SettingOf(VELK_CMD_IP_METHOD, setting.interface).name();
    if (!device.HasStaticMethod(setting.interface) || device.PrintedValue(setting) != "off") {
        return;
    }
    report.Note(Problem{.message = setting.name() + " is off while " + method_name + " is static",
                        .setting = setting.name(),
                        .detail = "dhcp may switch it on again",
                        .remedy = "set it again after 'velkctl set " + method_name + " dhcp'"});
}

// "eth0.address takes effect at once", with the names of all settings that do so at the same time.
std::string EffectOf(const std::vector<Setting>& settings, const Setting& one) {
    std::vector<std::string> names;
    for (const Setting& setting : settings) {
        if (EffectTime(setting) == EffectTime(one)) {
            names.push_back(setting.name());
        }
    }
    return AllOf(names) + (names.size() == 1 ? " takes" : " take") + " effect " + EffectMoment(one);
}

// Returns the condition of the effect; empty if it is known to be met.
std::string OpenCondition(const Setting& setting, const Device& device) {
    const bool is_wired_address =
        IsAddressCommand(setting.row->id) && setting.interface == VELK_WIRED_INTERFACE;
    const bool is_met = is_wired_address ? device.HasStaticMethod(setting.interface)
                                         : setting.row->id == VELK_CMD_NTP_SERVER &&
                                               device.PrintedValue(SettingOf(VELK_CMD_NTP)) == "on";
    return is_met ? "" : EffectCondition(setting);
}

// One note for each time and its condition.
void NoteEffects(const std::vector<Setting>& settings, const Device& device, Report& report) {
    std::vector<std::string> noted;
    for (const Setting& setting : settings) {
        const std::string time = EffectTime(setting);
        if (std::ranges::find(noted, time) == noted.end()) {
            report.Note(Problem{.message = EffectOf(settings, setting),
                                .detail = OpenCondition(setting, device)});
            noted.push_back(time);
        }
    }
}

}  // namespace

SetNotes::SetNotes(const std::vector<Setting>& settings, const Device& device, bool compares)
    : device_(device),
      compares_(compares),
      beside_(ValuesOf(SettingsBeside(settings), device)),
      mismatches_(compares ? Mismatches(settings, device) : Findings()) {
}

void SetNotes::PrintResults(const std::vector<Setting>& done, Report& report) const {
    PrintSwitched(done, report);
    if (compares_) {
        PrintMismatches(done, report);
    }
}

void SetNotes::Print(const std::vector<Setting>& done, Report& report) const {
    PrintResults(done, report);
    if (!report.is_json() && IsTerminal(STDERR_FILENO)) {
        NoteEffects(done, device_, report);
    }
}

void SetNotes::PrintSwitched(const std::vector<Setting>& done, Report& report) const {
    for (const PrintedSetting& other : beside_) {
        const std::string cause = SwitchOf(other.setting, done);
        if (cause.empty() || Includes(done, other.setting)) {
            continue;
        }
        const std::string value = device_.PrintedValue(other.setting);
        if (!value.empty() && value != other.value) {
            std::string text = other.setting.name();
            text.append(" is ").append(value).append(" now, switched by ").append(cause);
            report.Note(text);
        }
    }
}

void SetNotes::PrintMismatches(const std::vector<Setting>& done, Report& report) const {
    for (const Finding& mismatch : Mismatches(done, device_)) {
        const bool is_old = std::ranges::any_of(
            mismatches_, [&](const Finding& old) { return IsSame(old, mismatch); });
        if (!is_old) {
            report.Note(NoteOfMismatch(mismatch));
        }
    }
    for (const Setting& setting : done) {
        NoteIfMethodMaySwitchIt(setting, device_, report);
    }
}

}  // namespace velkctl
