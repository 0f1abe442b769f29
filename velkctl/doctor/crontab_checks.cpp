// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// crontab_checks.cpp - checks that the library can read and change the crontab's entries.
#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/ntp.h"
#include "velkctl/call/library_call.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/time_entry.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

constexpr auto kProperEntry =
    velk::JoinText("write: 0 * * * * ", velk::kClockSetter, " -u SERVER > ", velk::kNtpLog);
constexpr std::string_view kProbe = "192.0.2.1";  // reserved for documentation

// Options of ntpdate that take an argument.
constexpr std::array<std::string_view, 7> kOptionsWithWord{"-a", "-e", "-k", "-o",
                                                           "-p", "-t", "-U"};

constexpr auto kUpdateCommand = velk::JoinText("perl ", velk::kWebUpdater);
constexpr int kTimeFields = 5;
constexpr std::string_view kTimeCharacters = "0123456789*/,-";

bool IsTimeField(std::string_view word) {
    return word.find_first_not_of(kTimeCharacters) == std::string_view::npos;
}

Finding AboutEntry(const AffectedSettings& affected) {
    return About(affected, velk::kCrontab, Impact::kSetting).FixedBy(kProperEntry);
}

std::string ServerIn(const std::string& line) {
    std::string server;
    (void)GetNtpdate(line, server);
    return server;
}

// Returns the damage that setting the server does to the line; empty if none.
std::string DamageBySet(const std::string& line) {
    std::string changed = line;
    try {
        (void)ChangeNtpdate(changed, std::string(kProbe));
    } catch (const std::out_of_range&) {
        return "the entry has no server; it has no '>' before which to put one";
    }
    if (!changed.ends_with('\n')) {
        return "the server is the last word of the line; a set joins the entry with the next line";
    }
    return ServerIn(changed) == kProbe ? ""
                                       : "a new server would be joined to another word on the line";
}

// Returns a redirection or the argument of an option that is taken for the server; empty if none.
std::string FalseServer(const std::string& line) {
    const std::string server = ServerIn(line);
    if (velk::Contains(server, ">")) {
        return Excerpt(server);
    }
    const std::vector<std::string> words = WordsOf(line);
    const auto found = std::ranges::find(words, Trimmed(server));
    if (server.empty() || found == words.end() || found == words.begin()) {
        return "";
    }
    const std::string& before = *(found - 1);
    const bool is_argument = std::ranges::find(kOptionsWithWord, before) != kOptionsWithWord.end();
    return is_argument ? "the option " + Excerpt(before + " " + *found) : "";
}

// True for a comment. Without its "#", it is no entry that cron could run.
bool IsCommentText(std::string_view line) {
    const std::string_view text = Trimmed(line);
    const size_t begin = text.find_first_not_of("# \t");
    return text.starts_with('#') && (begin == std::string_view::npos ||
                                     !velk::Contains("0123456789*@", text.substr(begin, 1)));
}

// True if the entry runs on into another one, which begins with fields of time.
bool HasSecondEntry(std::string_view line) {
    int fields = 0;
    return std::ranges::any_of(WordsOf(line.substr(line.find(kTimeClient))),
                               [&fields](const std::string& word) {
                                   fields = IsTimeField(word) ? fields + 1 : 0;
                                   // The first one is joined with the server.
                                   return fields == kTimeFields - 1;
                               });
}

Findings CheckSetOfServer(const Finding& about, const std::string& line) {
    if (IsServerFoundTooEarly(line)) {
        return {about.Problem(
            "cannot be set",
            Excerpt(ServerIn(line)) + " also occurs earlier on the line; a set replaces it there",
            "with an editor, write the server's address or another name in its place")};
    }
    const std::string problem = DamageBySet(line);
    return problem.empty() ? Findings() : Findings{about.Problem("cannot be set", problem)};
}

Findings CheckServerOfEntry(const Finding& about, const std::string& line) {
    Findings findings = CheckSetOfServer(about, line);
    if (const std::string server = FalseServer(line); !server.empty()) {
        findings.push_back(about.With(Impact::kBoth)
                               .Problem("is read and set in the wrong place",
                                        "the library takes " + server + " for the server"));
    }
    if (HasSecondEntry(line)) {
        findings.push_back(about.Problem(
            "is joined with another entry",
            "two entries are on one line; a set of a server at the end of the line joins them",
            std::string("put the second one on a line of its own; ") + kProperEntry.c_str()));
    }
    return findings;
}

// A comment that the library takes for an entry.
Finding CommentAsEntry(Finding about, const std::string& line) {
    about.subject = "a set of " + OneOf(NamesOf(about.affected));
    return about.Problem("would change a comment", Excerpt(line) + " is taken for an entry",
                         "remove the word 'ntpdate' from the comment");
}

// A get reads only the first entry.
Findings CheckEntry(const std::string& line, size_t index, bool is_first) {
    const auto about = [index](const AffectedSettings& settings) {
        return AboutEntry(settings).At(index);
    };
    if (IsCommentText(line)) {
        return {CommentAsEntry(
            about(SettingsWithKey(kTimeClient)).With(is_first ? Impact::kBoth : Impact::kSetting),
            line)};
    }
    Findings findings =
        CheckMarks(about(SettingsOf(VELK_CMD_NTP)), line, line.find(kTimeClient), "entry");
    Append(findings, CheckServerOfEntry(about(SettingsOf(VELK_CMD_NTP_SERVER)), line));
    if (!velk::Contains(line, velk::kNtpLog)) {
        findings.push_back(about(SettingsHeldIn(velk::kNtpLog))
                               .With(Impact::kReading)
                               .Warning("does not show the result of this entry",
                                        std::string("its output does not go to ") + velk::kNtpLog));
    }
    return findings;
}

// True if the library could have written the line: five fields of time and the command, with single
// blanks between them.
bool IsOwnUpdate(std::string_view line) {
    for (int i = 0; i < kTimeFields; ++i) {
        const size_t end = line.find(' ');
        if (end == std::string_view::npos || end == 0 || !IsTimeField(line.substr(0, end))) {
            return false;
        }
        line.remove_prefix(end + 1);
    }
    return WithoutLineEnd(line) == kUpdateCommand;
}

bool IsScheduleReadable() {
    return CallLibrary({VELK_GET, VELK_CMD_WEB_UPDATE, ""}).result == LIB_VELK_SUCCESS;
}

}  // namespace

Findings CheckTimeEntry() {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    if (crontab.state != FileState::kText) {
        return {};
    }
    const std::vector<size_t> entries = LinesWith(crontab.lines, kTimeClient);
    if (entries.empty()) {
        return {AboutEntry(SettingsWithKey(kTimeClient))
                    .Problem("cannot be set", "no entry runs ntpdate")};
    }
    return FindingsOfEach(entries, [&](size_t index) {
        return CheckEntry(crontab.lines[index], index, index == entries.front());
    });
}

Findings CheckWebUpdate() {
    const Setting setting = SettingOf(VELK_CMD_WEB_UPDATE);
    const Finding about = About({setting}, velk::kCrontab, Impact::kReading)
                              .FixedBy("set it again: velkctl set web-update SCHEDULE");
    const Lines lines = ReadTextFile(velk::kCrontab).lines;
    const std::vector<size_t> updates = LinesWith(lines, setting.row->held_in.line.key);
    return FindingsOfEach(updates, [&](size_t index) -> Findings {
        // The library reads the first one alone.
        if (index == updates.front() && !IsScheduleReadable()) {
            return {about.At(index).Problem("cannot be read",
                                            "the library does not write such a schedule")};
        }
        if (IsOwnUpdate(lines[index])) {
            return {};
        }
        return {
            about.At(index).Warning("is read wrongly, and a set replaces the line",
                                    Excerpt(lines[index]) + " is not as the library writes it")};
    });
}

}  // namespace velkctl
