// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_conflicts.cpp - values that would have a set change the wrong text of a file.
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/ntp.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/device.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/settings/time_entry.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

std::string TextIn(const Data& data) {
    return {data.data(), strnlen(data.data(), data.size())};
}

// Offers --force beside another way out, if the verb has it.
std::string OrForce(std::string remedy, WayOut way_out, std::string_view alternative) {
    return way_out == WayOut::kOfSet ? remedy.append(alternative) : remedy;
}

// The conflicts have no setting yet, and its name is to precede their messages.
Problem PresentServerConflict(const std::string& line, const std::string& place, WayOut way_out) {
    std::string server;
    (void)GetNtpdate(line, server);
    return {.message = "the present server " + QuotedWhole(Trimmed(server)) + place,
            .detail = "this set would replace it there, in the command that cron runs",
            .remedy = OrForce("write another server into that line with an editor", way_out,
                              ", or give --force")};
}

Problem NewServerConflict(const std::string& server, const std::string& place, WayOut way_out) {
    return {
        .message = QuotedWhole(server) + place,
        .detail = "the next set would replace it there, in the command that cron runs",
        .remedy = OrForce("give the server's address or another name", way_out, ", or --force")};
}

// Nothing if a server can be set on the line, and if the line has no place for one.
std::optional<Problem> ServerConflict(std::string line, const std::string& server, size_t index,
                                      WayOut way_out) {
    const std::string place =
        std::string(" also occurs earlier in ") + velk::kCrontab + ":" + std::to_string(index + 1);
    if (IsServerFoundTooEarly(line)) {
        return PresentServerConflict(line, place, way_out);
    }
    try {
        (void)ChangeNtpdate(line, server);
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
    return IsServerFoundTooEarly(line) ? std::optional(NewServerConflict(server, place, way_out))
                                       : std::nullopt;
}

std::optional<Problem> TimeServerConflict(const std::string& server, WayOut way_out) {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    for (const size_t index : LinesWith(crontab.lines, kTimeClient)) {
        if (std::optional<Problem> conflict =
                ServerConflict(crontab.lines[index], server, index, way_out)) {
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
std::optional<Problem> OtherTextConflict(const SettingLine& own, const SettingLine& other,
                                         const Device& device, WayOut way_out) {
    if (!Holds(other.setting, own, device)) {
        return std::nullopt;
    }
    const std::string name = other.setting.name();
    const std::string force = Holds(own.setting, other, device) ? "--force " : "";
    return Problem{
        .message = "the present " + name + " contains '" + std::string(own.key) + "'",
        .detail = std::string("this set would replace the line from there on; its file is ") +
                  velk::kSnmpFile,
        .remedy = std::string(way_out == WayOut::kOfSet ? "give --force, or " : "") +
                  "first velkctl set " + force + name + " TEXT without that word"};
}

std::optional<Problem> IdentityConflict(const Setting& setting, const std::string& text,
                                        const Device& device, WayOut way_out) {
    const std::vector<SettingLine> directives = LinesOfSettings(velk::kSnmpFile);
    for (const SettingLine& directive : directives) {
        if (velk::Contains(text, directive.key)) {
            return Problem{.message = "the text contains '" + std::string(directive.key) + "'",
                           .detail = "a set of " + directive.setting.name() +
                                     " replaces the line from there on; its file is " +
                                     velk::kSnmpFile,
                           .remedy = OrForce("give other words", way_out, ", or --force")};
        }
    }
    const bool is_first = directives[0].setting.row->id == setting.row->id;
    return OtherTextConflict(directives[is_first ? 0 : 1], directives[is_first ? 1 : 0], device,
                             way_out);
}

std::optional<Problem> FindConflict(const Setting& setting, const std::string& text,
                                    const Device& device, WayOut way_out) {
    if (setting.row->id == VELK_CMD_NTP_SERVER) {
        return TimeServerConflict(text, way_out);
    }
    return setting.row->held_in.second_line.file == velk::kSnmpFile
               ? IdentityConflict(setting, text, device, way_out)
               : std::nullopt;
}

}  // namespace

std::optional<Problem> TextConflict(const SettingChange& change, const Device& device,
                                    WayOut way_out) {
    std::optional<Problem> conflict =
        FindConflict(change.setting, TextIn(change.value), device, way_out);
    if (conflict) {
        conflict->setting = change.setting.name();
        conflict->message.insert(0, conflict->setting + ": ");
    }
    return conflict;
}

}  // namespace velkctl
