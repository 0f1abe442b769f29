// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_conflicts.cpp - values that would have a set change the wrong text of a file.
#include "velkctl/doctor/text_conflicts.h"

#include <cstring>
#include <stdexcept>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/ntp.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/settings/time_entry.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

struct Conflict {
    std::string problem;
    std::string reason;
    std::string remedy;
};

std::string TextIn(const Data& data) {
    return {data.data(), strnlen(data.data(), data.size())};
}

std::string PlaceInCrontab(size_t index) {
    return std::string(velk::kCrontab) + ":" + std::to_string(index + 1);
}

Conflict PresentServerConflict(const std::string& line, size_t index) {
    std::string server;
    (void)GetNtpdate(line, server);
    return Conflict{"the present server " + QuotedWhole(Trimmed(server)) +
                        " also occurs earlier in " + PlaceInCrontab(index),
                    "this set would replace it there, in the command that cron runs",
                    "write another server into that line with an editor, or give --force"};
}

Conflict NewServerConflict(const std::string& server, size_t index) {
    return Conflict{QuotedWhole(server) + " also occurs earlier in " + PlaceInCrontab(index),
                    "the next set would replace it there, in the command that cron runs",
                    "give the server's address or another name, or --force"};
}

// Nothing if a server can be set on the line, and if the line has no place for one.
std::optional<Conflict> ServerConflict(std::string line, const std::string& server, size_t index) {
    if (IsServerFoundTooEarly(line)) {
        return PresentServerConflict(line, index);
    }
    try {
        (void)ChangeNtpdate(line, server);
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
    return IsServerFoundTooEarly(line) ? std::optional(NewServerConflict(server, index))
                                       : std::nullopt;
}

std::optional<Conflict> TimeServerConflict(const std::string& server) {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    for (size_t i = 0; i < crontab.lines.size(); ++i) {
        if (!velk::Contains(crontab.lines[i], kTimeClient)) {
            continue;
        }
        if (std::optional<Conflict> conflict = ServerConflict(crontab.lines[i], server, i)) {
            return conflict;
        }
    }
    return std::nullopt;
}

// True if the setting's present text has the other one's directive in it.
bool Holds(const Setting& setting, const SettingLine& other, const Device& device) {
    const Answer answer = device.Execute({VELK_GET, setting.row->id, ""}, {},
                                         setting.name() + ": looking at the present text");
    return answer.ok() && velk::Contains(TextIn(answer.data), other.key);
}

// Nothing if the set leaves the other setting's line in the agent's file alone.
std::optional<Conflict> OtherTextConflict(const SettingLine& own, const SettingLine& other,
                                          const Device& device) {
    if (!Holds(other.setting, own, device)) {
        return std::nullopt;
    }
    const std::string name = other.setting.name();
    const std::string force = Holds(own.setting, other, device) ? "--force " : "";
    return Conflict{
        "the present " + name + " contains '" + std::string(own.key) + "'",
        std::string("this set would replace the line from there on in ") + velk::kSnmpFile,
        "give --force, or first, without that word: velkctl set " + force + name + " TEXT"};
}

std::optional<Conflict> IdentityConflict(const Setting& setting, const std::string& text,
                                         const Device& device) {
    const std::vector<SettingLine> directives = LinesOfSettings(velk::kSnmpFile);
    for (const SettingLine& directive : directives) {
        if (velk::Contains(text, directive.key)) {
            return Conflict{"the text contains '" + std::string(directive.key) + "'",
                            "a set of " + directive.setting.name() +
                                " replaces the line from there on in " + velk::kSnmpFile,
                            "give other words, or --force"};
        }
    }
    const bool is_first = directives[0].setting.row->id == setting.row->id;
    return OtherTextConflict(directives[is_first ? 0 : 1], directives[is_first ? 1 : 0], device);
}

std::optional<Conflict> FindConflict(const Setting& setting, const std::string& text,
                                     const Device& device) {
    if (setting.row->id == VELK_CMD_NTP_SERVER) {
        return TimeServerConflict(text);
    }
    return setting.row->held_in.second_line.file == velk::kSnmpFile
               ? IdentityConflict(setting, text, device)
               : std::nullopt;
}

}  // namespace

std::optional<Problem> TextConflict(const Setting& setting, const Data& value,
                                    const Device& device) {
    const std::optional<Conflict> conflict = FindConflict(setting, TextIn(value), device);
    if (!conflict) {
        return std::nullopt;
    }
    const std::string name = setting.name();
    return Problem{.message = name + ": " + conflict->problem,
                   .setting = name,
                   .detail = conflict->reason,
                   .remedy = conflict->remedy};
}

}  // namespace velkctl
