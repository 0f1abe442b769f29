// set_notes.cpp - notes about the effects of a set on other settings and on the device.
#include "velkctl/doctor/set_notes.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <unistd.h>

#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/network_check.h"
#include "velkctl/report/output.h"
#include "velkctl/settings/affected_settings.h"

namespace velkctl {
namespace {

// Returns the settings in the second file that a set of this one changes.
AffectedSettings SettingsBeside(const Setting& setting) {
    const char* file = setting.row->held_in.second_line.file;
    return file == nullptr ? AffectedSettings() : SettingsHeldIn(file);
}

// Returns the settings that a set may switch without being asked to.
AffectedSettings OthersOf(const std::vector<Setting>& settings) {
    AffectedSettings others;
    for (const Setting& setting : settings) {
        others = Together(std::move(others), SettingsBeside(setting));
    }
    std::erase_if(others, [&](const Setting& other) {
        return !other.can_get() || Includes(settings, other);
    });
    return others;
}

// Returns the printed value; empty if it cannot be read.
std::string PresentValue(const Setting& setting, const Device& device) {
    const Answer answer = device.Get(setting);
    return answer.ok() ? setting.row->kind->Print(answer.data) : "";
}

std::vector<PrintedSetting> ValuesOf(const AffectedSettings& settings, const Device& device) {
    std::vector<PrintedSetting> values;
    for (const Setting& setting : settings) {
        values.push_back({setting, PresentValue(setting, device)});
    }
    return values;
}

// Returns the name of the setting that may have switched the other one.
std::string SwitchOf(const Setting& other, const std::vector<Setting>& settings) {
    const auto cause = std::ranges::find_if(
        settings, [&](const Setting& setting) { return Includes(SettingsBeside(setting), other); });
    return cause->name();
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
void NoteIfUndone(const Setting& setting, const Device& device, Report& report) {
    if (setting.row->id != VELK_CMD_DHCP_DNS) {
        return;
    }
    const Setting method = SettingsOf(VELK_CMD_IP_METHOD, setting.interface).front();
    const std::string method_name = method.name();
    if (PresentValue(method, device) != "static" || PresentValue(setting, device) != "off") {
        return;
    }
    report.Note(Problem{.message = setting.name() + ": is off while " + method_name + " is static",
                        .setting = setting.name(),
                        .detail = "dhcp may switch it on again",
                        .remedy = "set it again after 'velkctl set " + method_name + " dhcp'"});
}

}  // namespace

SetNotes::SetNotes(std::vector<Setting> settings, const Device& device, bool reads_others)
    : settings_(std::move(settings)),
      device_(device),
      reads_others_(reads_others),
      others_(reads_others ? ValuesOf(OthersOf(settings_), device) : std::vector<PrintedSetting>()),
      mismatches_(reads_others ? Mismatches(settings_, device) : Findings()) {
}

void SetNotes::Print(Report& report) const {
    if (reads_others_) {
        PrintOthers(report);
    }
    if (report.is_json() || !IsTerminal(STDERR_FILENO)) {
        return;
    }
    for (const Setting& setting : settings_) {
        report.Note(setting.name() + ": takes effect " + EffectTime(setting));
    }
}

void SetNotes::PrintOthers(Report& report) const {
    PrintSwitched(report);
    PrintMismatches(report);
    for (const Setting& setting : settings_) {
        NoteIfUndone(setting, device_, report);
    }
}

void SetNotes::PrintSwitched(Report& report) const {
    for (const PrintedSetting& other : others_) {
        const std::string value = PresentValue(other.setting, device_);
        if (value != other.value) {
            report.Note(other.setting.name() + ": is " + value + " now, switched by " +
                        SwitchOf(other.setting, settings_));
        }
    }
}

void SetNotes::PrintMismatches(Report& report) const {
    for (const Finding& mismatch : Mismatches(settings_, device_)) {
        const bool is_old = std::ranges::any_of(
            mismatches_, [&](const Finding& old) { return IsSame(old, mismatch); });
        if (!is_old) {
            report.Note(NoteOfMismatch(mismatch));
        }
    }
}

}  // namespace velkctl
