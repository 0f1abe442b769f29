// crontab_checks.cpp - whether the crontab's entries are such as the library changes them.
#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>

#include "frame/comment_switch.h"
#include "frame/crontab.h"
#include "frame/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/doctor/text_file.h"
#include "velkctl/library_call.h"

namespace velkctl {
namespace {

constexpr std::string_view kClient = "ntpdate";
constexpr std::string_view kResultLog = "/var/libvelk/ntp.log";
constexpr std::string_view kProperEntry =
    "write: 0 * * * * /usr/bin/ntpdate -u SERVER > /var/libvelk/ntp.log";
constexpr std::string_view kProbe = "192.0.2.1";  // an address that documents may use

// Options of ntpdate with a word of their own behind them.
constexpr std::array<std::string_view, 7> kOptionsWithWord{"-a", "-e", "-k", "-o",
                                                           "-p", "-t", "-U"};

constexpr std::string_view kUpdater = "web_contents_updater";
constexpr std::string_view kUpdateCommand = "perl /usr/bin/web_contents_updater.pl";
constexpr size_t kTimeFields = 5;

Finding FindingAt(Severity severity, std::string_view subject, std::string effect, std::string what,
                  size_t index, std::string_view remedy) {
    return {severity,  std::string(subject), std::move(effect), std::move(what), velk::kCrontab,
            index + 1, std::string(remedy)};
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

Findings CheckEntry(const std::string& line, size_t index) {
    if (IsRemark(line)) {
        return {FindingAt(Severity::kProblem, "ntp", "and ntp-server change a remark",
                          Excerpt(line) + " is taken for an entry", index,
                          "word it without 'ntpdate'")};
    }
    Findings findings;
    if (HasSecondMark(line, line.find(kClient))) {
        findings.push_back(FindingAt(Severity::kProblem, "ntp", "cannot be set to on",
                                     "two '#' stand before the entry, and one is taken away", index,
                                     "leave one '#', in the first column"));
    }
    if (const std::string problem = ServerProblem(line); !problem.empty()) {
        findings.push_back(FindingAt(Severity::kProblem, "ntp-server", "cannot be set", problem,
                                     index, kProperEntry));
    }
    if (const std::string server = FalseServer(line); !server.empty()) {
        findings.push_back(FindingAt(Severity::kProblem, "ntp-server",
                                     "is read and set in the wrong place",
                                     server + " is taken for it", index, kProperEntry));
    }
    if (!velk::Contains(line, kResultLog)) {
        findings.push_back(
            FindingAt(Severity::kWarning, "ntp-result", "does not tell of this entry",
                      "its output does not go to /var/libvelk/ntp.log", index, kProperEntry));
    }
    return findings;
}

// Says whether the library could have written the line: five fields of time and the command, with
// single blanks between them.
bool IsOwnUpdate(std::string_view line) {
    for (size_t i = 0; i < kTimeFields; ++i) {
        const size_t end = line.find(' ');
        if (end == std::string_view::npos || end == 0 ||
            line.substr(0, end).find_first_not_of("0123456789*/,-") != std::string_view::npos) {
            return false;
        }
        line.remove_prefix(end + 1);
    }
    return line == std::string(kUpdateCommand).append("\n");
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
        if (velk::Contains(crontab.lines[i], kClient)) {
            found = true;
            Append(findings, CheckEntry(crontab.lines[i], i));
        }
    }
    if (!found) {
        findings.push_back({Severity::kProblem, "ntp", "and ntp-server cannot be set",
                            "no entry runs ntpdate", velk::kCrontab, 0, std::string(kProperEntry)});
    }
    return findings;
}

Findings CheckWebUpdate() {
    const TextFile crontab = ReadTextFile(velk::kCrontab);
    if (crontab.state != FileState::kText) {
        return {};
    }
    const std::string remedy = "set web-update anew: velkctl set web-update weekly sunday 08:30";
    bool is_first = true;  // the others are not read
    Findings findings;
    for (size_t i = 0; i < crontab.lines.size(); ++i) {
        if (!velk::Contains(crontab.lines[i], kUpdater)) {
            continue;
        }
        const bool is_readable =
            !is_first ||
            CallLibrary({VELK_GET, VELK_CMD_WEB_UPDATE, ""}).result == LIB_VELK_SUCCESS;
        if (!is_readable) {
            findings.push_back(FindingAt(Severity::kProblem, "web-update", "cannot be read",
                                         "the schedule is not one of this library's", i, remedy));
        } else if (!IsOwnUpdate(crontab.lines[i])) {
            findings.push_back(FindingAt(
                Severity::kWarning, "web-update", "is read wrongly, and a set replaces the line",
                Excerpt(crontab.lines[i]) + " is not as the library writes it", i, remedy));
        }
        is_first = false;
    }
    return findings;
}

}  // namespace velkctl
