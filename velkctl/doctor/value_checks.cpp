// value_checks.cpp - checks the values that the device has with the checks of a set.
#include "velkctl/doctor/value_checks.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/words.h"
#include "velkctl/call/device.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/network_check.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/kinds_of_settings.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

// A get that fails may wait for the system log.
constexpr int kSeconds = 5;

// Returns the printed value as the words of a set.
std::vector<std::string> AsWords(const Setting& setting, const std::string& printed) {
    const bool is_list = setting.row->id == VELK_CMD_DNS;
    return is_list ? WordsOf(printed) : std::vector<std::string>{printed};
}

// Returns the first word that is refused; the first of all if the words are refused together.
std::string RefusedWord(const ValueKind& kind, const std::vector<std::string>& words) {
    const auto word = std::ranges::find_if(words, [&](const std::string& one) {
        return !kind.Parse({&one, 1}).ok();
    });
    return word == words.end() ? words.front() : *word;
}

// Returns the number of the first line with this text; 0 if none.
size_t FindText(const std::string& file, std::string_view text) {
    const Lines lines = ReadTextFile(file).lines;
    const auto line = std::ranges::find_if(
        lines, [&](std::string_view one) { return velk::Contains(one, text); });
    return line == lines.end() ? 0 : static_cast<size_t>(line - lines.begin()) + 1;
}

// Returns the number of the line that the value is read from; 0 if unknown.
size_t LineOf(const Setting& setting, const std::string& refused) {
    const HeldIn& held_in = setting.row->held_in;
    if (held_in.is_of_lease) {
        const Findings line = ValueLineOf(setting);
        const bool has_value = !line.empty() && velk::Contains(line.front().description, refused);
        return has_value ? line.front().line : 0;  // 0 if it is of a lease
    }
    const bool has_key = !held_in.line.key.empty();
    return FindText(held_in.line.file, has_key ? held_in.line.key : refused);
}

// A set takes such servers with --force: a resolver may run on the device.
bool AreAddresses(const Setting& setting, const std::vector<std::string>& words) {
    return setting.row->id == VELK_CMD_DNS &&
           std::ranges::all_of(words,
                               [](const std::string& word) { return ParseIpv4(word).has_value(); });
}

// Cron takes times that a set does not write, such as 8:5.
Severity SeverityOf(const Setting& setting) {
    return setting.row->id == VELK_CMD_WEB_UPDATE ? Severity::kWarning : Severity::kProblem;
}

// True if both words mean the same: 8:30 is 08:30.
bool IsSameTime(const Setting& setting, const Parsed& parsed) {
    return parsed.ok() && setting.row->id == VELK_CMD_WEB_UPDATE;
}

// True for a value that is read from a file, and not from a lease.
bool IsInFile(const Setting& setting, const Device& device) {
    const HeldIn& held_in = setting.row->held_in;
    if (held_in.holder != Holder::kFile || !setting.can_get() || !setting.can_set()) {
        return false;
    }
    if (!held_in.is_of_lease) {
        return true;
    }
    const Answer method = device.Get(SettingsOf(VELK_CMD_IP_METHOD, setting.interface).front());
    return method.ok() && method.data[0] == VELK_METHOD_STATIC;
}

// A text may have any bytes.
bool IsText(const Setting& setting) {
    const ValueKind* kind = setting.row->kind;
    return kind == &kFreeText || kind == &kSsid || setting.row->secret;
}

bool IsReadWrongly(const Findings& known, const Setting& setting) {
    return std::ranges::any_of(known, [&](const Finding& finding) {
        return finding.impact == Impact::kReading && Includes(finding.affected, setting);
    });
}

// eth0 and eth1 have one list of servers.
bool IsSecondView(const Setting& setting) {
    return setting.row->id == VELK_CMD_DNS && setting.interface == VELK_WIRELESS_INTERFACE;
}

Findings CheckValue(const Setting& setting, const Device& device) {
    if (IsSecondView(setting) || !IsInFile(setting, device)) {
        return {};
    }
    const Answer answer = device.Get(setting);
    const std::optional<Finding> invalid =
        answer.ok() ? InvalidValue(setting, answer.data) : std::nullopt;
    return invalid ? Findings{*invalid} : Findings{};
}

}  // namespace

Finding AboutValue(const Setting& setting, const std::string& text) {
    const char* file = setting.row->held_in.line.file;
    Finding about = About(setting, "", Impact::kNothing);
    about.line = file == nullptr ? 0 : LineOf(setting, text);
    about.file = about.line == 0 ? "" : file;
    return about;
}

std::optional<Finding> InvalidValue(const Setting& setting, const Data& value) {
    const ValueKind& kind = *setting.row->kind;
    const std::string printed = kind.Print(value);
    if (!setting.can_set() || IsText(setting) || printed == kNone) {
        return std::nullopt;
    }
    const std::vector<std::string> words = AsWords(setting, printed);
    const Parsed parsed = kind.Parse(words);
    const std::string written = parsed.ok() ? kind.Print(parsed.data) : "";
    if (written == printed || IsSameTime(setting, parsed) || AreAddresses(setting, words)) {
        return std::nullopt;
    }
    Finding about = AboutValue(setting, RefusedWord(kind, words));
    about.severity = SeverityOf(setting);
    about.effect = "has a value that is not valid";
    const std::string fix = "velkctl set " + setting.name() + " ";
    return parsed.ok() ? about.Because(Quoted(printed) + " is short for " + written, fix + written)
                       : about.Because(FirstClause(parsed.problem), fix + "VALUE");
}

Problem NoteOf(const Finding& invalid_value) {
    const std::string location = LocationOf(invalid_value);
    return {.message = invalid_value.subject + ": " + invalid_value.description,
            .setting = invalid_value.subject,
            .detail = location.empty() ? "" : "it is read from " + location,
            .remedy = invalid_value.remedy};
}

Findings CheckValues(const Findings& known, Report& report) {
    const Device device(TimeLimits{.timeout_seconds = kSeconds}, report);
    AffectedSettings settings = Settings();
    std::erase_if(settings, [&](const Setting& setting) { return IsReadWrongly(known, setting); });
    Findings findings = FindingsOfEach(
        settings, [&](const Setting& setting) { return CheckValue(setting, device); });
    Append(findings, NetworkMismatches(PlannedValues(device, {})));
    return findings;
}

}  // namespace velkctl
