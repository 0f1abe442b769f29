// text_conflicts.cpp - values that would have a set change the wrong text of a file.
#include "velkctl/call/text_conflicts.h"

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

std::string TextIn(const Data& data) {
    return {data.data(), strnlen(data.data(), data.size())};
}

std::string PlaceInCrontab(size_t index) {
    return std::string(velk::kCrontab) + ":" + std::to_string(index + 1);
}

std::string PresentServerProblem(const std::string& line, size_t index) {
    std::string server;
    (void)GetNtpdate(line, server);
    return "the present server " + Quoted(Trimmed(server)) + " occurs earlier on the line " +
           PlaceInCrontab(index) + ", too, where this set would replace it, in the command that " +
           "cron runs; fix: write another server into that line with an editor, or give --force";
}

std::string NewServerProblem(const std::string& server, size_t index) {
    return Quoted(server) + " occurs earlier on the line " + PlaceInCrontab(index) +
           ", too, where the next set would replace it, in the command that cron runs; give the " +
           "server's address or another name, or --force";
}

// Empty if a server can be set on the line, and if the line has no place for one.
std::string ServerConflict(std::string line, const std::string& server, size_t index) {
    if (IsServerFoundTooEarly(line)) {
        return PresentServerProblem(line, index);
    }
    try {
        (void)ChangeNtpdate(line, server);
    } catch (const std::out_of_range&) {
        return {};
    }
    return IsServerFoundTooEarly(line) ? NewServerProblem(server, index) : "";
}

std::string TimeServerConflict(const std::string& server) {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    for (size_t i = 0; i < crontab.lines.size(); ++i) {
        if (!velk::Contains(crontab.lines[i], kTimeClient)) {
            continue;
        }
        if (std::string problem = ServerConflict(crontab.lines[i], server, i); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

// True if the setting's present text has the other one's directive in it.
bool Holds(const Setting& setting, const SettingLine& other, const Device& device) {
    const Answer answer = device.Execute({VELK_GET, setting.row->id, ""}, {},
                                         setting.name() + ": looking at the present text");
    return answer.ok() && velk::Contains(TextIn(answer.data), other.key);
}

// Empty if the set leaves the other setting's line in the agent's file alone.
std::string OtherTextProblem(const SettingLine& own, const SettingLine& other,
                             const Device& device) {
    if (!Holds(other.setting, own, device)) {
        return {};
    }
    const std::string name = other.setting.name();
    return "the present " + name + " holds '" + std::string(own.key) +
           "', from which on this set would replace it in " + velk::kSnmpFile +
           "; fix: velkctl set " + (Holds(own.setting, other, device) ? "--force " : "") + name +
           " TEXT first, without that word, or give --force";
}

std::string IdentityConflict(const Setting& setting, const std::string& text,
                             const Device& device) {
    const std::vector<SettingLine> directives = LinesOfSettings(velk::kSnmpFile);
    for (const SettingLine& directive : directives) {
        if (velk::Contains(text, directive.key)) {
            return "the text holds '" + std::string(directive.key) + "', from which on a set of " +
                   directive.setting.name() + " would replace it in " + velk::kSnmpFile +
                   "; give other words, or --force";
        }
    }
    const bool is_first = directives[0].setting.row->id == setting.row->id;
    return OtherTextProblem(directives[is_first ? 0 : 1], directives[is_first ? 1 : 0], device);
}

}  // namespace

std::string TextConflict(const Setting& setting, const Data& value, const Device& device) {
    if (setting.row->id == VELK_CMD_NTP_SERVER) {
        return TimeServerConflict(TextIn(value));
    }
    return setting.row->held_in.second_line.file == velk::kSnmpFile
               ? IdentityConflict(setting, TextIn(value), device)
               : "";
}

}  // namespace velkctl
