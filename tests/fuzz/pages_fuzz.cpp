// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pages_fuzz.cpp - the requests of the settings page: one that is refused runs and changes nothing,
// and only runs of velkctl that the rules for sudo have are made.
//
// An input is "METHOD /NAME?QUERY", lines NAME: VALUE, an empty line, then the body. $session and
// $token become those of a user who is logged in, $password the user's password.
#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <crypt.h>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/kit/check.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/started_programs.h"
#include "fuzz/kit/tool_device.h"
#include "fuzz/kit/tool_run.h"
#include "support/device_test.h"
#include "web/server/api.h"
#include "web/server/log.h"
#include "web/server/request.h"
#include "web/server/run_folder.h"
#include "web/server/sessions.h"
#include "web/server/users.h"

namespace fuzz {
namespace {

using velkweb::Answer;
using velkweb::Json;
using velkweb::Session;
using velkweb::Variables;

constexpr char kPassword[] = "a9c4e1b7";
constexpr char kUser[] = "admin";
constexpr char kRuns[] = "/tmp/runs";
constexpr char kInput[] = "/tmp/input-of-run";
constexpr char kDocument[] = "{\"schema\": 3, \"verb\": \"list\", \"status\": 0}\n";

const std::map<std::string, std::string, std::less<>> kVariables = {
    {"type", "CONTENT_TYPE"},        {"length", "CONTENT_LENGTH"},
    {"cookie", "HTTP_COOKIE"},       {"token", "HTTP_X_VELK_TOKEN"},
    {"host", "HTTP_HOST"},           {"origin", "HTTP_ORIGIN"},
    {"site", "HTTP_SEC_FETCH_SITE"}, {"encoding", "HTTP_CONTENT_ENCODING"},
    {"address", "REMOTE_ADDR"},
};

// ---- The stand-in for velkctl ------------------------------------------------------------------

// Runs in the process of the run: it notes its words and its input, and answers.
int StandIn(const Words& words) {
    std::ofstream runs(kRuns, std::ios::app | std::ios::binary);
    for (const std::string& word : words) {
        runs << word << '\0';
    }
    runs << '\n';
    std::ofstream input(kInput, std::ios::binary);
    char block[4096];
    for (ssize_t size = 0; (size = read(STDIN_FILENO, block, sizeof(block))) > 0;) {
        input.write(block, size);
    }
    input.flush();
    runs.flush();
    constexpr size_t kSize = sizeof(kDocument) - 1;
    return write(STDOUT_FILENO, kDocument, kSize) == static_cast<ssize_t>(kSize) ? 0 : 1;
}

// The arguments that the rules for sudo allow.
std::vector<std::regex> ReadRules() {
    std::vector<std::regex> rules;
    std::ifstream file(VELK_SOURCE_DIR "/packaging/sudoers.d/velk-web");
    static const std::regex kRule(R"(\^/usr/bin/velkctl\$ (\^.*\$))");
    for (std::string line; std::getline(file, line);) {
        std::smatch parts;
        if (std::regex_search(line, parts, kRule)) {
            rules.emplace_back(parts[1].str());
        }
    }
    Check(rules.size() >= 7, "there are rules for sudo");
    return rules;
}

bool IsAllowed(const std::string& arguments) {
    static const std::vector<std::regex> kRules = ReadRules();
    return std::ranges::any_of(
        kRules, [&](const std::regex& rule) { return std::regex_match(arguments, rule); });
}

std::string Joined(const std::string& run) {
    std::string words = run;
    std::ranges::replace(words, '\0', ' ');
    words.pop_back();
    return words;
}

// The document on the standard input of a run has its two members alone.
void CheckInput(const std::string& words) {
    const std::string text = testkit::ReadFile(kInput);
    if (!words.starts_with("apply")) {
        Check(text.empty(), "a run without a document has no input");
        return;
    }
    const Json document = Json::parse(text, nullptr, false);
    Check(document.is_object() && document.size() == 2 && document.value("schema", 0) == 1 &&
              document.contains("settings") && document["settings"].is_object(),
          "a run gets one document");
}

// Returns the number of runs.
size_t CheckRuns() {
    size_t count = 0;
    const std::string runs = testkit::Exists(kRuns) ? testkit::ReadFile(kRuns) : "";
    for (const std::string& run : Lines(runs)) {
        const std::string line = Joined(run);
        const size_t blank = std::min(line.find(' '), line.size());
        Check(line.substr(0, blank).ends_with("/velkctl"), "velkctl alone is run");
        const std::string words = line.substr(std::min(blank + 1, line.size()));
        Check(IsAllowed(words), "a run is one that the rules for sudo have: " + words);
        CheckInput(words);
        ++count;
    }
    return count;
}

// ---- The request -------------------------------------------------------------------------------

// Replaces each name by its value. The values are chosen anew in each run.
void Replace(std::string& text, const std::string& name, const std::string& value) {
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at)) {
        text.replace(at, name.size(), value);
        at += value.size();
    }
}

struct Input {
    Variables variables;
    std::string body;
};

Input InputIn(std::string text, const Session& session) {
    Replace(text, "$session", session.id);
    Replace(text, "$token", session.token);
    Replace(text, "$password", kPassword);
    Input input;
    std::string_view rest = text;
    const std::string first = TakeLine(rest);
    const size_t blank = std::min(first.find(' '), first.size());
    const std::string target = first.substr(std::min(blank + 1, first.size()));
    const size_t query = std::min(target.find('?'), target.size());
    input.variables["REQUEST_METHOD"] = first.substr(0, blank);
    input.variables["PATH_INFO"] = target.substr(0, query);
    input.variables["QUERY_STRING"] = target.substr(std::min(query + 1, target.size()));
    for (std::string line = TakeLine(rest); !line.empty(); line = TakeLine(rest)) {
        const size_t colon = std::min(line.find(": "), line.size());
        const auto name = kVariables.find(line.substr(0, colon));
        if (name != kVariables.end()) {
            input.variables[name->second] = line.substr(std::min(colon + 2, line.size()));
        }
    }
    input.body = rest;
    input.variables.try_emplace("CONTENT_LENGTH", std::to_string(input.body.size()));
    return input;
}

// During its lifetime, standard input has the body.
class BodyOnInput {
  public:
    explicit BodyOnInput(const std::string& body) : before_(dup(STDIN_FILENO)) {
        const int file = memfd_create("body", 0);
        Check(write(file, body.data(), body.size()) == static_cast<ssize_t>(body.size()) &&
                  lseek(file, 0, SEEK_SET) == 0 && dup2(file, STDIN_FILENO) == STDIN_FILENO,
              "there is a body");
        close(file);
    }
    ~BodyOnInput() {
        dup2(before_, STDIN_FILENO);
        close(before_);
    }
    BodyOnInput(const BodyOnInput&) = delete;
    BodyOnInput& operator=(const BodyOnInput&) = delete;

  private:
    const int before_;
};

// ---- The rules ---------------------------------------------------------------------------------

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7F; });
}

void CheckForm(const Answer& answer) {
    static const std::vector<int> kStatuses = {200, 202, 400, 401, 403, 404, 405,
                                               408, 411, 413, 415, 429, 503};
    Check(std::ranges::find(kStatuses, answer.status) != kStatuses.end(),
          "the status is one of the page's: " + std::to_string(answer.status));
    Check(Json::parse(answer.body, nullptr, false).is_object(), "the body is a document");
    const std::string text = CgiText(answer);
    const size_t end = text.find("\r\n\r\n");
    Check(end != std::string::npos && text.substr(end + 4) == answer.body,
          "the body comes after the headers");
    std::string headers = text.substr(0, end);
    Replace(headers, "\r\n", "|");
    Check(IsAscii(headers), "a header is one line");
    Check(
        std::ranges::count(headers, '|') == static_cast<std::ptrdiff_t>(4 + answer.headers.size()),
        "no text of the request becomes a header");
}

// The sessions' files without the second of their use, and the jobs.
std::vector<std::string> StateOfServer() {
    std::vector<std::string> names = velkweb::NamesIn(velkweb::RunPath("sessions"));
    std::ranges::move(velkweb::NamesIn(velkweb::RunPath("jobs")), std::back_inserter(names));
    std::ranges::sort(names);
    return names;
}

bool IsRefused(int status) {
    return status >= 400;
}

struct Facts {
    bool is_logged_in;
    bool has_token;
    bool is_post;
};

Facts FactsOf(const velkweb::Request& request, const Session& session) {
    return {velkweb::CookieOf(request.cookies, velkweb::kSessionCookie) == session.id,
            request.token == session.token, request.method == "POST"};
}

void CheckRights(const Answer& answer, const velkweb::Request& request, const Facts& facts,
                 size_t runs) {
    const bool is_login = request.name == "login";
    const bool may_run = facts.is_logged_in && (!facts.is_post || facts.has_token);
    Check(runs == 0 || may_run, "only a user who is logged in runs velkctl");
    Check(runs == 0 || !RefuseOtherOrigin(request) || !facts.is_post,
          "a page of another address changes nothing");
    Check(is_login || may_run || IsRefused(answer.status), "the others get no answer");
    Check(answer.status != 202 || runs == 1, "a job is one run");
    Check(!is_login || runs == 0, "a login runs nothing");
}

// A job has ended, and its document is kept for its user.
void CheckJob(const Answer& answer, const Session& session) {
    const std::string id = Json::parse(answer.body)["job"].get<std::string>();
    const Answer done = velkweb::AnswerRequest(velkweb::MakeRequest(
        {{"REQUEST_METHOD", "GET"},
         {"PATH_INFO", "/job"},
         {"QUERY_STRING", "id=" + id},
         {"HTTP_COOKIE", std::string(velkweb::kSessionCookie) + "=" + session.id}}));
    const Json document = Json::parse(done.body);
    Check(done.status == 200 && document["done"] == true && document["answer"]["schema"] == 3,
          "a job keeps its document");
}

Session LogIn() {
    static const std::string kHash = crypt(kPassword, "$1$abcdefgh$");
    testkit::WriteFile(velkweb::kUsersFile, std::string(kUser) + ":" + kHash + "\n");
    Check(velkweb::PrepareRunFolder(), "the server has its folder");
    const std::optional<Session> session = velkweb::BeginSession({kUser, kHash});
    Check(session.has_value(), "a session begins");
    return *session;
}

void Run(const std::string& text) {
    const Session session = LogIn();
    const Input input = InputIn(text, session);
    const velkweb::Request request = velkweb::MakeRequest(input.variables);
    const std::vector<std::string> before = StateOfServer();
    Answer answer;
    {
        const BodyOnInput body(input.body);
        answer = velkweb::AnswerRequest(request);
    }
    AwaitEnds();
    const size_t runs = CheckRuns();
    CheckForm(answer);
    CheckRights(answer, request, FactsOf(request, session), runs);
    if (IsRefused(answer.status)) {
        Check(runs == 0 && StateOfServer() == before, "a request that is refused changes nothing");
    }
    Check(answer.body.find(kPassword) == std::string::npos, "an answer has no password");
    if (answer.status == 202) {
        CheckJob(answer, session);
    }
    velkweb::WriteLog();
    for (const std::string& line : testkit::LibcRecorder::Get().Logs()) {
        Check(
            line.find(kPassword) == std::string::npos && line.find(session.id) == std::string::npos,
            "the log has no secret");
    }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::SetStandIn(fuzz::StandIn);
    fuzz::PlaceDevice();
    const fuzz::ToolTurn turn;
    fuzz::Run(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
