// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// crontab_checks.cpp - checks that the library can read and change the crontab's entries.
#include <algorithm>
#include <array>
#include <stdexcept>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/ntp.h"
#include "velkctl/call/library_call.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/settings/time_entry.h"

namespace velkctl {
namespace {

constexpr auto kProperEntry =
    velk::JoinText("write: 0 * * * * ", velk::kClockSetter, " -u SERVER > ", velk::kNtpLog);
constexpr std::string_view kProbe = "192.0.2.1";  // an address that documents may use

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
    Finding about = About(affected, velk::kCrontab, Impact::kSetting);
    about.remedy = kProperEntry.c_str();
    return about;
}

std::string ServerIn(const std::string& line) {
    std::string server;
    (void)GetNtpdate(line, server);
    return server;
}

// Returns the damage that setting the server does to the line; empty if none.
std::string ServerProblem(const std::string& line) {
    std::string changed = line;
    try {
        (void)ChangeNtpdate(changed, std::string(kProbe));
    } catch (const std::out_of_range&) {
        return "it has no server, and no '>' before which one could be put";
    }
    if (!changed.ends_with('\n')) {
        return "the server is its last word; setting it joins the entry with the next line";
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

// True for a line that would run nothing without its "#".
bool IsRemark(std::string_view line) {
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

Findings CheckServer(const std::string& line, size_t index) {
    const Finding about = AboutEntry(SettingsOf(VELK_CMD_NTP_SERVER)).At(index);
    Findings findings;
    if (IsServerFoundTooEarly(line)) {
        findings.push_back(about.Problem(
            "cannot be set",
            Excerpt(ServerIn(line)) +
                " also occurs earlier on the line, and a set replaces it there",
            "write the server's address in its place with an editor, or a name that does not occur "
            "earlier on the line"));
    } else if (const std::string problem = ServerProblem(line); !problem.empty()) {
        findings.push_back(about.Problem("cannot be set", problem));
    }
    if (const std::string server = FalseServer(line); !server.empty()) {
        findings.push_back(
            about.With(Impact::kBoth)
                .Problem("is read and set in the wrong place", server + " is taken for it"));
    }
    if (HasSecondEntry(line)) {
        findings.push_back(about.Problem(
            "is joined with another entry",
            "two entries are on one line, as after a set of a server that is the last word of its "
            "line",
            std::string("put the second one on a line of its own, and ") + kProperEntry.c_str()));
    }
    return findings;
}

// The first entry is the one that is read.
Findings CheckEntry(const std::string& line, size_t index, bool is_first) {
    if (IsRemark(line)) {
        return {AboutEntry(SettingsWithKey(kTimeClient))
                    .At(index)
                    .With(is_first ? Impact::kBoth : Impact::kSetting)
                    .Problem("would change a comment", Excerpt(line) + " is taken for an entry",
                             "remove the word 'ntpdate' from the comment")};
    }
    Findings findings = CheckMarks(AboutEntry(SettingsOf(VELK_CMD_NTP)).At(index), line,
                                   line.find(kTimeClient), "entry");
    Append(findings, CheckServer(line, index));
    if (!velk::Contains(line, velk::kNtpLog)) {
        findings.push_back(AboutEntry(SettingsHeldIn(velk::kNtpLog))
                               .At(index)
                               .With(Impact::kReading)
                               .Warning("does not see this entry's result",
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

// Returns the indexes of the crontab's lines with this text.
std::vector<size_t> LinesWith(const Lines& lines, std::string_view text) {
    return IndexesOf(lines, [text](std::string_view line) { return velk::Contains(line, text); });
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
    const AffectedSettings settings = SettingsOf(VELK_CMD_WEB_UPDATE);
    Finding about = About(settings.front(), velk::kCrontab, Impact::kReading);
    about.remedy = "set it again: velkctl set web-update SCHEDULE";
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    const std::vector<size_t> updates =
        LinesWith(crontab.lines, settings.front().row->held_in.line.key);
    // The library reads the first one alone.
    const bool is_readable =
        updates.empty() ||
        CallLibrary({VELK_GET, VELK_CMD_WEB_UPDATE, ""}).result == LIB_VELK_SUCCESS;
    return FindingsOfEach(updates, [&](size_t index) -> Findings {
        if (index == updates.front() && !is_readable) {
            return {about.At(index).Problem("cannot be read",
                                            "the schedule is not one of this library's")};
        }
        const std::string& line = crontab.lines[index];
        return IsOwnUpdate(line) ? Findings()
                                 : Findings{about.At(index).Warning(
                                       "is read wrongly, and a set replaces the line",
                                       Excerpt(line) + " is not as the library writes it")};
    });
}

}  // namespace velkctl
