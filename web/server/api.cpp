// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// api.cpp - the names that a page can ask for.
#include "web/server/api.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <syslog.h>

#include "lib/base/unique_fd.h"
#include "web/server/jobs.h"
#include "web/server/log.h"
#include "web/server/login_limit.h"
#include "web/server/reached_through.h"
#include "web/server/run_folder.h"
#include "web/server/runs.h"
#include "web/server/sessions.h"
#include "web/server/users.h"
#include "web/server/velkctl_run.h"

namespace velkweb {
namespace {

constexpr int kMostReaders = 32;  // requests that read their body
constexpr int kMostWorkers = 6;   // requests that run velkctl
constexpr int kMostLogins = 2;    // a password takes memory and time on purpose
constexpr int kRunSeconds = 60;

// ---- Answers -----------------------------------------------------------------------------------

Answer WithRetry(Answer answer, int64_t seconds) {
    answer.headers.push_back("Retry-After: " + std::to_string(seconds));
    return answer;
}

Answer TooManyAtOnce() {
    return WithRetry(ErrorAnswer(503, {.message = "too many requests at once",
                                       .remedy = "try again in a moment"}),
                     1);
}

Answer NotLoggedIn() {
    return ErrorAnswer(401, {.message = "not logged in", .remedy = "log in"});
}

Answer Malformed(const Trouble& trouble) {
    return ErrorAnswer(400, trouble);
}

Answer SessionAnswer(const Session& session, const Request& request) {
    const std::string interface = InterfaceTo(request.address);
    Json document;
    document["user"] = session.user;
    document["token"] = TokenOf(session);
    document["reached_through"] = interface.empty() ? Json(nullptr) : Json(interface);
    document["host_name"] = HostName();
    return JsonAnswer(document);
}

std::string Cookie(const std::string& value, std::string_view more) {
    return std::string("Set-Cookie: ")
        .append(kSessionCookie)
        .append("=")
        .append(value)
        .append("; HttpOnly; SameSite=Strict; Path=/cgi-bin/velk")
        .append(more);
}

// ---- Runs of velkctl ---------------------------------------------------------------------------

Answer RunNow(const Planned& planned) {
    if (planned.trouble) {
        return Malformed(*planned.trouble);
    }
    const velk::UniqueFd place = TakePlace("worker", kMostWorkers);
    if (place.get() < 0) {
        return TooManyAtOnce();
    }
    bool is_late = false;
    std::optional<std::string> text = RunVelkctl(planned.run, kRunSeconds, &is_late);
    if (text) {
        return {.body = *std::move(text)};
    }
    if (is_late) {
        return ErrorAnswer(504, {.message = "velkctl has not answered in time",
                                 .remedy = "try again; 'velkctl doctor' finds the cause"});
    }
    return ErrorAnswer(500, {.message = "velkctl could not be run",
                             .remedy = "check the rules for sudo of the user velk-web"});
}

Answer RunAsJob(const Session& session, const Planned& planned) {
    if (planned.trouble) {
        return Malformed(*planned.trouble);
    }
    Log(LOG_NOTICE, session.user + " begins: velkctl " + planned.run.words.front());
    return BeginJob(session.user, planned.run);
}

// ---- Log in and out ----------------------------------------------------------------------------

struct Credentials {
    std::string user;
    std::string password;
};

std::optional<Credentials> CredentialsIn(const Json& body) {
    const bool is_complete = body.size() == 2 && body.contains("user") &&
                             body.contains("password") && body["user"].is_string() &&
                             body["password"].is_string();
    if (!is_complete) {
        return std::nullopt;
    }
    return Credentials{body["user"].get<std::string>(), body["password"].get<std::string>()};
}

// A name that does not exist is not logged: it may be a password in the wrong field.
void LogFailure(const std::vector<User>& users, const Credentials& given, const Request& request) {
    const bool is_user = FindUser(users, given.user) != nullptr;
    const std::string user = is_user ? given.user : "an unknown user";
    Log(LOG_WARNING, "login of " + user + " from " + request.address + " failed");
}

Answer WrongCredentials() {
    return ErrorAnswer(401, {.message = "the user or the password is wrong",
                             .remedy = "check both; the password has small and capital letters"});
}

Answer NoUsers() {
    return ErrorAnswer(401, {.message = "no user can log in",
                             .detail = "no password has been set on this device",
                             .remedy = "as root, on the device: velk-web --set-password admin"});
}

Answer TooManyFailures(int64_t seconds) {
    const std::string time = std::to_string(seconds) + " s";
    return WithRetry(ErrorAnswer(429, {.message = "too many failed logins",
                                       .remedy = "wait " + time + ", then try again"}),
                     seconds);
}

Answer BeginSessionFor(const User& user, const Request& request) {
    const std::optional<Session> session = BeginSession(user);
    if (!session) {
        return ErrorAnswer(500, {.message = "the session could not be written"});
    }
    ForgetFailures(request.address);
    Log(LOG_INFO, user.name + " logged in from " + request.address);
    Answer answer = SessionAnswer(*session, request);
    answer.headers.push_back(Cookie(session->id, ""));
    return answer;
}

Answer TryPassword(const Credentials& given, const Request& request) {
    const std::vector<User> users = ReadUsers().value_or(std::vector<User>());
    if (users.empty()) {
        return NoUsers();
    }
    const velk::UniqueFd place = TakePlace("login", kMostLogins);
    if (place.get() < 0) {
        return TooManyAtOnce();
    }
    if (const int64_t wait = BeginLogin(request.address); wait > 0) {
        return TooManyFailures(wait);
    }
    if (!IsPassword(users, given.user, given.password)) {
        LogFailure(users, given, request);
        return WrongCredentials();
    }
    return BeginSessionFor(*FindUser(users, given.user), request);
}

Answer LogIn(const Request& request, const Json& body) {
    const std::optional<Credentials> given = CredentialsIn(body);
    if (!given) {
        return Malformed({.message = "a login has two texts, user and password"});
    }
    // A password of another form is wrong like any other.
    const bool can_be = IsPasswordForm(given->password);
    return TryPassword(can_be ? *given : Credentials{"", "-"}, request);
}

Answer LogOut(const Session& session) {
    EndSession(session);
    Answer answer = JsonAnswer(Json::object());
    answer.headers.push_back(Cookie("", "; Max-Age=0"));
    return answer;
}

// ---- The table ---------------------------------------------------------------------------------

using Get = Answer (*)(const Session& session, const Request& request);
using Post = Answer (*)(const Session& session, const Json& body);

struct Name {
    std::string_view name;
    Get get = nullptr;    // one of the two
    Post post = nullptr;  // both null: the login
};

constexpr char kReadTime[] = "--timeout=20";

constexpr std::array<Name, 17> kNames{{
    {.name = "login"},
    {.name = "session",
     .get = [](const Session& session,
               const Request& request) { return SessionAnswer(session, request); }},
    {.name = "list",
     .get = [](const Session&, const Request&) { return RunNow({.run = {{"list"}}}); }},
    {.name = "describe",
     .get =
         [](const Session&, const Request& request) {
             return RunNow(PlanDescribe(QueryValue(request.query, "setting")));
         }},
    {.name = "show",
     .get =
         [](const Session&, const Request&) {
             return RunNow({.run = {{"show", kReadTime}}});
         }},
    {.name = "status",
     .get =
         [](const Session&, const Request&) {
             return RunNow({.run = {{"status", kReadTime}}});
         }},
    {.name = "doctor",
     .get = [](const Session&, const Request&) { return RunNow({.run = {{"doctor"}}}); }},
    {.name = "pending",
     .get =
         [](const Session&, const Request&) {
             return RunNow({.run = {{"pending", kReadTime}}});
         }},
    {.name = "history",
     .get = [](const Session&, const Request&) { return RunNow({.run = {{"history"}}}); }},
    {.name = "job",
     .get =
         [](const Session& session, const Request& request) {
             return JobAnswer(session.user, QueryValue(request.query, "id"));
         }},
    {.name = "logout", .post = [](const Session& session, const Json&) { return LogOut(session); }},
    {.name = "check",
     .post = [](const Session&, const Json& body) { return RunNow(PlanCheck(body)); }},
    {.name = "apply",
     .post = [](const Session& session,
                const Json& body) { return RunAsJob(session, PlanApply(body)); }},
    {.name = "confirm",
     .post = [](const Session& session,
                const Json& body) { return RunAsJob(session, PlanConfirm(body)); }},
    {.name = "revert",
     .post = [](const Session& session,
                const Json& body) { return RunAsJob(session, PlanRevert(body)); }},
    {.name = "restart",
     .post = [](const Session& session,
                const Json& body) { return RunAsJob(session, PlanRestart(body)); }},
    {.name = "undo",
     .post = [](const Session& session,
                const Json& body) { return RunAsJob(session, PlanUndo(body)); }},
}};

const Name* FindName(std::string_view name) {
    const auto row = std::ranges::find(kNames, name, &Name::name);
    return row == kNames.end() ? nullptr : row;
}

std::optional<Answer> RefuseMethod(const Name& name, const Request& request) {
    const std::string allowed = name.get != nullptr ? "GET" : "POST";
    if (request.method == allowed) {
        return std::nullopt;
    }
    Answer answer = ErrorAnswer(405, {.message = "this name does not take the method"});
    answer.headers.push_back("Allow: " + allowed);
    return answer;
}

// ---- Requests that change something ------------------------------------------------------------

std::optional<Answer> RefuseToken(const Session& session, const Request& request) {
    if (IsSameSecret(request.token, TokenOf(session))) {
        return std::nullopt;
    }
    return ErrorAnswer(403, {.message = "the request has not the token of this session",
                             .remedy = "load the page again"});
}

Body BodyOf(const Request& request) {
    if (std::optional<Answer> refusal = RefuseBodyForm(request)) {
        return {.refusal = std::move(refusal)};
    }
    const velk::UniqueFd place = TakePlace("reader", kMostReaders);
    return place.get() < 0 ? Body{.refusal = TooManyAtOnce()} : ReadBody(request);
}

Answer AnswerLogin(const Request& request) {
    if (std::optional<Answer> refusal = RefuseOtherOrigin(request)) {
        return *std::move(refusal);
    }
    Body body = BodyOf(request);
    return body.refusal ? *std::move(body.refusal) : LogIn(request, body.value);
}

Answer AnswerPost(const Name& name, const Session& session, const Request& request) {
    for (std::optional<Answer> refusal :
         {RefuseOtherOrigin(request), RefuseToken(session, request)}) {
        if (refusal) {
            return *std::move(refusal);
        }
    }
    Body body = BodyOf(request);
    return body.refusal ? *std::move(body.refusal) : name.post(session, body.value);
}

}  // namespace

Answer AnswerRequest(const Request& request) {
    const Name* name = FindName(request.name);
    if (name == nullptr) {
        return ErrorAnswer(404, {.message = "there is no such name"});
    }
    if (std::optional<Answer> refusal = RefuseMethod(*name, request)) {
        return *std::move(refusal);
    }
    if (!PrepareRunFolder()) {
        return ErrorAnswer(
            500, {.message = "the folder of the sessions cannot be used",
                  .remedy = "make it with mode 700 for the server's user, see velk-web(8)"});
    }
    if (name->get == nullptr && name->post == nullptr) {
        return AnswerLogin(request);
    }
    const std::optional<Session> session = FindSession(CookieOf(request.cookies, kSessionCookie));
    if (!session) {
        return NotLoggedIn();
    }
    return name->get != nullptr ? name->get(*session, request)
                                : AnswerPost(*name, *session, request);
}

}  // namespace velkweb
