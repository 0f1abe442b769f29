// crontab_checks.cpp - whether the crontab's entries are such as the library changes them.
#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/call/library_call.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/time_entry.h"

namespace velkctl {
namespace {

constexpr char kSwitchAndServer[] = "ntp and ntp-server";
constexpr char kProperEntry[] =
    "write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log";
constexpr std::string_view kProbe = "192.0.2.1";  // an address that documents may use

// Options of ntpdate with a word of their own behind them.
constexpr std::array<std::string_view, 7> kOptionsWithWord{"-a", "-e", "-k", "-o",
                                                           "-p", "-t", "-U"};

constexpr std::string_view kUpdater = "web_contents_updater";
constexpr std::string_view kUpdateCommand = "perl /usr/bin/web_contents_updater.pl";
constexpr int kTimeFields = 5;
constexpr std::string_view kTimeCharacters = "0123456789*/,-";

// What every finding on a line has in common.
Finding At(size_t index, Concerns concerns) {
    return {.file = velk::kCrontab,
            .line = index + 1,
            .remedy = kProperEntry,
            .concerns = std::move(concerns),
            .hinders = Hinders::kSetting};
}

// What becomes of the line when the server is set; empty when it is as it should be.
std::string ServerProblem(const std::string& line) {
    std::string changed = line;
    try {
        (void)ChangeNtpdate(changed, std::string(kProbe));
    } catch (const std::out_of_range&) {
        return "it has neither a server nor a '>' to put one before";
    }
    if (!changed.ends_with('\n')) {
        return "the server is its last word; setting it joins the entry with the next line";
    }
    std::string server;
    (void)GetNtpdate(changed, server);
    if (server != kProbe) {
        return "a new server would be joined with another word of it";
    }
    return "";
}

// What passes for the server and is none: a redirection, the argument of an option. Empty when
// there is no such thing.
std::string FalseServer(const std::string& line) {
    std::string server;
    (void)GetNtpdate(line, server);
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

// A line that runs nothing, were its "#" taken away.
bool IsRemark(std::string_view line) {
    const std::string_view text = Trimmed(line);
    if (!text.starts_with('#')) {
        return false;
    }
    const size_t begin = text.find_first_not_of("# \t");
    return begin == std::string_view::npos ||
           !velk::Contains("0123456789*@", text.substr(begin, 1));
}

Finding Remark(const std::string& line, size_t index) {
    Finding finding = At(index, {{.id = VELK_CMD_NTP}, {.id = VELK_CMD_NTP_SERVER}});
    finding.subject = kSwitchAndServer;
    finding.effect = "change a remark";
    finding.what = Excerpt(line) + " is taken for an entry";
    finding.remedy = "word it without 'ntpdate'";
    return finding;
}

// Says whether the entry runs on into another one, which begins with fields of time.
bool HasSecondEntry(std::string_view line) {
    const std::vector<std::string> words = WordsOf(line.substr(line.find(kTimeClient)));
    int fields = 0;
    for (const std::string& word : words) {
        const bool is_field = word.find_first_not_of(kTimeCharacters) == std::string::npos;
        fields = is_field ? fields + 1 : 0;
        if (fields == kTimeFields - 1) {  // the first one sticks to the server
            return true;
        }
    }
    return false;
}

Finding EarlierText(const std::string& line, size_t index) {
    std::string server;
    (void)GetNtpdate(line, server);
    Finding finding = At(index, {{.id = VELK_CMD_NTP_SERVER}});
    finding.subject = "ntp-server";
    finding.effect = "cannot be set";
    finding.what = Excerpt(server) + " stands in front of the server, too, and is replaced there";
    finding.remedy =
        "write the server's address in its place with an editor, or a name that does not stand "
        "further in front on the line";
    return finding;
}

Findings CheckServer(const std::string& line, size_t index) {
    Finding finding = At(index, {{.id = VELK_CMD_NTP_SERVER}});
    finding.subject = "ntp-server";
    Findings findings;
    if (IsServerFoundTooEarly(line)) {
        findings.push_back(EarlierText(line, index));
    } else if (const std::string problem = ServerProblem(line); !problem.empty()) {
        finding.effect = "cannot be set";
        finding.what = problem;
        findings.push_back(finding);
    }
    if (const std::string server = FalseServer(line); !server.empty()) {
        finding.effect = "is read and set in the wrong place";
        finding.what = server + " is taken for it";
        findings.push_back(finding);
    }
    if (HasSecondEntry(line)) {
        finding.effect = "is joined with another entry";
        finding.what =
            "two entries stand on one line, as a set makes of a server that is the last "
            "word of its line";
        finding.remedy =
            std::string("put the second one on a line of its own, and ") + kProperEntry;
        findings.push_back(finding);
    }
    return findings;
}

Findings CheckEntry(const std::string& line, size_t index) {
    if (IsRemark(line)) {
        return {Remark(line, index)};
    }
    Findings findings;
    if (HasSecondMark(line, line.find(kTimeClient))) {
        Finding finding = SecondMark("entry", velk::kCrontab, index);
        finding.subject = "ntp";
        finding.concerns = {{.id = VELK_CMD_NTP}};
        findings.push_back(finding);
    }
    Append(findings, CheckServer(line, index));
    if (!velk::Contains(line, velk::kNtpLog)) {
        Finding finding = At(index, {{.id = VELK_CMD_NTP_RESULT}});
        finding.severity = Severity::kWarning;
        finding.subject = "ntp-result";
        finding.effect = "does not tell of this entry";
        finding.what = std::string("its output does not go to ") + velk::kNtpLog;
        finding.hinders = Hinders::kReading;
        findings.push_back(finding);
    }
    return findings;
}

// Says whether the library could have written the line: five fields of time and the command, with
// single blanks between them.
bool IsOwnUpdate(std::string_view line) {
    for (int i = 0; i < kTimeFields; ++i) {
        const size_t end = line.find(' ');
        if (end == std::string_view::npos || end == 0 ||
            line.substr(0, end).find_first_not_of(kTimeCharacters) != std::string_view::npos) {
            return false;
        }
        line.remove_prefix(end + 1);
    }
    return WithoutLineEnd(line) == kUpdateCommand;
}

}  // namespace

Findings CheckTimeEntry() {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    if (crontab.state != FileState::kText) {
        return {};
    }
    Findings findings;
    bool found = false;
    for (size_t i = 0; i < crontab.lines.size(); ++i) {
        if (velk::Contains(crontab.lines[i], kTimeClient)) {
            found = true;
            Append(findings, CheckEntry(crontab.lines[i], i));
        }
    }
    if (!found) {
        findings.push_back({.subject = kSwitchAndServer,
                            .effect = "cannot be set",
                            .what = "no entry runs ntpdate",
                            .file = velk::kCrontab,
                            .remedy = kProperEntry,
                            .concerns = {{.id = VELK_CMD_NTP}, {.id = VELK_CMD_NTP_SERVER}},
                            .hinders = Hinders::kSetting});
    }
    return findings;
}

Findings CheckWebUpdate() {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    if (crontab.state != FileState::kText) {
        return {};
    }
    bool is_first = true;  // the others are not read, by a get that never logs
    Findings findings;
    for (size_t i = 0; i < crontab.lines.size(); ++i) {
        if (!velk::Contains(crontab.lines[i], kUpdater)) {
            continue;
        }
        Finding finding = At(i, {{.id = VELK_CMD_WEB_UPDATE}});
        finding.subject = "web-update";
        finding.remedy = "set web-update anew: velkctl set web-update weekly sunday 08:30";
        finding.hinders = Hinders::kReading;
        const bool is_readable =
            !is_first ||
            CallLibrary({VELK_GET, VELK_CMD_WEB_UPDATE, ""}).result == LIB_VELK_SUCCESS;
        if (!is_readable) {
            finding.effect = "cannot be read";
            finding.what = "the schedule is not one of this library's";
            findings.push_back(finding);
        } else if (!IsOwnUpdate(crontab.lines[i])) {
            finding.severity = Severity::kWarning;
            finding.effect = "is read wrongly, and a set replaces the line";
            finding.what = Excerpt(crontab.lines[i]) + " is not as the library writes it";
            findings.push_back(finding);
        }
        is_first = false;
    }
    return findings;
}

}  // namespace velkctl
