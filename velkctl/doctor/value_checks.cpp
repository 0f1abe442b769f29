// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// value_checks.cpp - checks the values that the device has with the checks of a set.
#include "velkctl/doctor/value_checks.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/device.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/kinds_of_settings.h"
#include "velkctl/settings/value_kind.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

// Returns the printed value as the words of a set, without escapes.
std::vector<std::string> AsWords(const Setting& setting, const std::string& printed) {
    const bool is_list = setting.row->id == VELK_CMD_DNS;
    std::vector<std::string> words = is_list ? WordsOf(printed) : std::vector<std::string>{printed};
    std::ranges::transform(words, words.begin(), UnprintedValue);
    return words;
}

// Returns the reason with the word as it is: the text of a finding is escaped when it is shown.
std::string Unescaped(std::string_view reason, const std::string& word) {
    const std::string quoted = Quoted(word);
    return reason.starts_with(quoted) ? Excerpt(word).append(reason.substr(quoted.size()))
                                      : std::string(reason);
}

// Returns the first word that is refused; the first of all if the words are refused together.
std::string RefusedWord(const ValueKind& kind, const std::vector<std::string>& words) {
    const auto word = std::ranges::find_if(words, [&](const std::string& one) {
        return !kind.Parse({&one, 1}).ok();
    });
    return word == words.end() ? words.front() : *word;
}

// Returns the file that the setting is held in; empty if none.
std::string_view FileOf(const Setting& setting) {
    const char* file = setting.row->held_in.line.file;
    return file == nullptr ? "" : file;
}

// Returns the number of the line that the value is read from; 0 if unknown.
size_t LineOf(const Setting& setting, const std::string& refused) {
    const HeldIn& held_in = setting.row->held_in;
    if (held_in.is_of_lease) {
        const Findings line = ValueLineOf(setting);
        const bool has_value = !line.empty() && velk::Contains(line.front().description, refused);
        return has_value ? line.front().line : 0;  // 0 if it is of a lease
    }
    const std::string_view text = held_in.line.key.empty() ? refused : held_in.line.key;
    const TextFile file = ReadTextFile(std::string(FileOf(setting)));
    const std::vector<size_t> lines = LinesWith(file.lines, text);
    return lines.empty() ? 0 : lines.front() + 1;
}

// True for DNS servers that are addresses. CheckDnsServer() in network_check warns of an address of
// the device itself, which `set` takes with --force.
bool AreAddresses(const Setting& setting, const std::vector<std::string>& words) {
    return setting.row->id == VELK_CMD_DNS &&
           std::ranges::all_of(words,
                               [](const std::string& word) { return ParseIpv4(word).has_value(); });
}

bool IsSchedule(const Setting& setting) {
    return setting.row->id == VELK_CMD_WEB_UPDATE;
}

// Cron accepts a minute of one digit, a set only two: 5:5 in the crontab is 05:05.
bool IsScheduleOfCron(const Setting& setting, std::string printed) {
    if (!IsSchedule(setting)) {
        return false;
    }
    const size_t colon = printed.find(':');
    if (colon != std::string::npos && colon + 2 == printed.size()) {
        printed.insert(colon + 1, "0");
    }
    return setting.row->kind->Parse({&printed, 1}).ok();
}

// True for a value that is read from a file, and not from a lease.
bool IsInFile(const Setting& setting, const Device& device) {
    const HeldIn& held_in = setting.row->held_in;
    return held_in.holder == Holder::kFile && setting.can_get() && setting.can_set() &&
           (!held_in.is_of_lease || device.HasStaticMethod(setting.interface));
}

// True for values with any bytes; they are not checked.
bool IsText(const Setting& setting) {
    const ValueKind* kind = setting.row->kind;
    return kind == &kFreeText || kind == &kSsid || setting.row->secret;
}

// True if the fix of the finding comes before that of the value: a set may change another line, or
// join two.
bool ComesFirst(const Finding& finding) {
    return HindersReading(finding.impact) || (HindersSetting(finding.impact) && finding.line != 0);
}

bool AreReadOrSetWrongly(const AffectedSettings& settings, const Findings& known) {
    const auto affects = [&](const Finding& finding) {
        return ComesFirst(finding) && std::ranges::any_of(settings, [&](const Setting& setting) {
                   return Includes(finding.affected, setting);
               });
    };
    return std::ranges::any_of(known, affects);
}

Findings CheckLinesOf(const Setting& setting) {
    const std::string_view file = FileOf(setting);
    if (file == velk::kInterfacesFile) {
        return CheckInterfacesFor(setting, "");
    }
    if (file == velk::kCrontab) {
        return IsSchedule(setting) ? CheckWebUpdate() : CheckTimeEntry();
    }
    return {};
}

// Returns the first finding about the line of the setting's value: a set may then change another
// line. A problem comes before a warning. Nothing if the value is read and set in its own line.
std::optional<Finding> LineFinding(const Setting& setting) {
    Findings findings = CheckLinesOf(setting);
    std::erase_if(findings, [&](const Finding& finding) {
        return !AreReadOrSetWrongly({setting}, {finding});
    });
    const auto first = std::ranges::min_element(findings, {}, &Finding::severity);
    return first == findings.end() ? std::nullopt : std::optional(*first);
}

// eth0 and eth1 have one list of servers.
bool IsSecondView(const Setting& setting) {
    return setting.row->id == VELK_CMD_DNS && setting.interface == VELK_WIRELESS_INTERFACE;
}

Problem NoteOfLine(const Setting& setting, const Finding& of_line) {
    return {.message = Printable(of_line.subject + " " + of_line.effect),
            .setting = setting.name(),
            .detail = Printable(LocationOf(of_line) + ": " + of_line.description),
            .remedy = Printable(of_line.remedy)};
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
    const std::string_view file = FileOf(setting);
    const size_t line = file.empty() ? 0 : LineOf(setting, text);
    Finding about = About({setting}, line == 0 ? "" : file, Impact::kNothing);
    about.line = line;
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
    if (written == printed || IsScheduleOfCron(setting, printed) || AreAddresses(setting, words)) {
        return std::nullopt;
    }
    const std::string refused = RefusedWord(kind, words);
    const Severity severity = IsSchedule(setting) ? Severity::kWarning : Severity::kProblem;
    const Finding about =
        AboutValue(setting, refused).Of(severity, "has a value that is not valid");
    const std::string fix = "velkctl set " + setting.name() + " ";
    return parsed.ok() ? about.Because(Quoted(printed) + " is short for " + written, fix + written)
                       : about.Because(Unescaped(FirstClause(parsed.problem), refused),
                                       fix + (IsSchedule(setting) ? "SCHEDULE" : "VALUE"));
}

std::optional<Problem> NoteAboutValue(const Setting& setting, const Data& value,
                                      const Device& device) {
    const std::optional<Finding> invalid = InvalidValue(setting, value);
    const std::optional<Finding> of_line =
        IsInFile(setting, device) ? LineFinding(setting) : std::nullopt;
    if (of_line && (invalid || HindersReading(of_line->impact))) {
        return NoteOfLine(setting, *of_line);
    }
    return invalid ? std::optional(NoteOf(*invalid)) : std::nullopt;
}

std::optional<Finding> OwnLineFinding(const Setting& setting) {
    if (FileOf(setting) != velk::kInterfacesFile) {
        return std::nullopt;
    }
    const Findings findings = CheckInterfacesFor(setting, "");
    const auto found = std::ranges::find_if(findings, [&](const Finding& finding) {
        return finding.affected.size() == 1 && Includes(finding.affected, setting);
    });
    return found == findings.end() ? std::nullopt : std::optional(*found);
}

std::optional<Problem> NoteAfterSet(const Setting& setting, const Data& value) {
    const std::optional<Finding> of_line =
        setting.row->kind->Print(value) == kNone ? std::nullopt : OwnLineFinding(setting);
    return of_line ? std::optional(NoteOfLine(setting, *of_line)) : std::nullopt;
}

Problem NoteOf(const Finding& invalid_value) {
    const std::string location = LocationOf(invalid_value);
    return {.message = Printable(invalid_value.subject + ": " + invalid_value.description),
            .setting = invalid_value.subject,
            .detail = location.empty() ? "" : Printable("it is read from " + location),
            .remedy = Printable(invalid_value.remedy)};
}

Findings CheckValues(const Findings& known, Report& report) {
    const Device device(TimeLimits{.timeout_seconds = kLongestGet}, report);
    AffectedSettings settings = Settings();
    std::erase_if(settings,
                  [&](const Setting& setting) { return AreReadOrSetWrongly({setting}, known); });
    Findings findings = FindingsOfEach(
        settings, [&](const Setting& setting) { return CheckValue(setting, device); });
    Findings mismatches = NetworkMismatches(PlannedValues(device, {}));
    std::erase_if(mismatches, [&](const Finding& mismatch) {
        return AreReadOrSetWrongly(mismatch.affected, known);
    });
    Append(findings, std::move(mismatches));
    return findings;
}

}  // namespace velkctl
