// text_conflicts.cpp - values that would have a set change the wrong text of a file.
#include "velkctl/settings/text_conflicts.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/identity_directives.h"
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
           "cron runs; mend: write another server into that line with an editor, or give --force";
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

bool Holds(const Directive& setting, const Directive& word, const Device& device) {
    const std::string what = std::string(setting.setting) + ": looking at the present text";
    const Answer answer = device.Execute({VELK_GET, setting.id, ""}, {}, what);
    return answer.ok() && velk::Contains(TextIn(answer.data), word.name);
}

// Empty if the set leaves the other setting's line in the agent's file alone.
std::string OtherTextProblem(const Directive& own, const Directive& other, const Device& device) {
    if (!Holds(other, own, device)) {
        return {};
    }
    const std::string name(other.setting);
    return "the present " + name + " holds '" + std::string(own.name) +
           "', from which on this set would replace it in " + velk::kSnmpFile +
           "; mend: velkctl set " + (Holds(own, other, device) ? "--force " : "") + name +
           " TEXT first, without that word, or give --force";
}

std::string IdentityConflict(const Directive& own, const std::string& text, const Device& device) {
    for (const Directive& word : kDirectives) {
        if (velk::Contains(text, word.name)) {
            return "the text holds '" + std::string(word.name) + "', from which on a set of " +
                   std::string(word.setting) + " would replace it in " + velk::kSnmpFile +
                   "; give other words, or --force";
        }
    }
    return OtherTextProblem(own, kDirectives[own.id == kDirectives[0].id ? 1 : 0], device);
}

}  // namespace

std::string TextConflict(const Setting& setting, const Data& value, const Device& device) {
    if (setting.row->id == VELK_CMD_NTP_SERVER) {
        return TimeServerConflict(TextIn(value));
    }
    const auto* directive = std::ranges::find(kDirectives, setting.row->id, &Directive::id);
    return directive == kDirectives.end() ? ""
                                          : IdentityConflict(*directive, TextIn(value), device);
}

}  // namespace velkctl
