// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sessions.cpp - who is logged in.
#include "web/server/sessions.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "web/server/run_folder.h"

namespace velkweb {
namespace {

constexpr size_t kIdBytes = 32;
constexpr size_t kLargestFile = 1024;
constexpr int64_t kUseStep = 5;  // seconds between two notes of a use

std::string PathOf(const std::string& id) {
    return RunPath("sessions/" + id);
}

// Removes the line from the text and returns it.
std::string_view TakeLine(std::string_view& text) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

std::optional<int64_t> NumberIn(std::string_view text) {
    int64_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_number = parsed.ec == std::errc() && parsed.ptr == text.data() + text.size();
    return is_number ? std::optional(number) : std::nullopt;
}

std::optional<Session> ReadSession(const std::string& path) {
    const std::optional<std::string> text = ReadFileText(path, kLargestFile);
    return text ? ParseSession(*text) : std::nullopt;
}

struct KeptSession {
    std::string path;
    int64_t used;
};

// Removes expired and damaged sessions. Returns the others, the least recently used one first.
std::vector<KeptSession> SweepSessions() {
    std::vector<KeptSession> kept;
    const int64_t now = SecondsSinceBoot();
    for (const std::string& name : NamesIn(RunPath("sessions"))) {
        const std::string path = PathOf(name);
        const std::optional<Session> session = ReadSession(path);
        if (!session || IsExpired(*session, now)) {
            (void)unlink(path.c_str());
        } else {
            kept.push_back({path, session->used});
        }
    }
    std::ranges::sort(kept, {}, &KeptSession::used);
    return kept;
}

bool HasPasswordOf(const Session& session) {
    const std::optional<std::vector<User>> users = ReadUsers();
    const User* user = users ? FindUser(*users, session.user) : nullptr;
    return user != nullptr && user->hash == session.password_hash;
}

}  // namespace

std::string SessionText(const Session& session) {
    std::string text;
    for (const std::string& line : {session.token, session.user, session.password_hash,
                                    std::to_string(session.began), std::to_string(session.used)}) {
        text.append(line).append("\n");
    }
    return text;
}

std::optional<Session> ParseSession(std::string_view text) {
    Session session;
    session.token = TakeLine(text);
    session.user = TakeLine(text);
    session.password_hash = TakeLine(text);
    const std::optional<int64_t> began = NumberIn(TakeLine(text));
    const std::optional<int64_t> used = NumberIn(TakeLine(text));
    if (!began || !used || !IsUserName(session.user) || session.password_hash.empty() ||
        !IsHex(session.token, kIdBytes * 2)) {
        return std::nullopt;
    }
    session.began = *began;
    session.used = *used;
    return session;
}

bool IsExpired(const Session& session, int64_t now) {
    return now - session.used > kIdleSeconds || now - session.began > kLongestSessionSeconds;
}

std::optional<Session> BeginSession(const User& user) {
    const velk::UniqueFd lock = AwaitLock(RunPath("sessions.lock"));
    std::vector<KeptSession> kept = SweepSessions();
    for (size_t i = 0; i + kMostSessions <= kept.size(); ++i) {
        (void)unlink(kept[i].path.c_str());
    }
    const int64_t now = SecondsSinceBoot();
    const Session session{.id = RandomHex(kIdBytes),
                          .token = RandomHex(kIdBytes),
                          .user = user.name,
                          .password_hash = user.hash,
                          .began = now,
                          .used = now};
    return ReplaceFile(PathOf(session.id), SessionText(session)) ? std::optional(session)
                                                                 : std::nullopt;
}

// Under the lock, so that the note of a use does not bring back a session that has ended.
std::optional<Session> FindSession(const std::string& id) {
    if (!IsHex(id, kIdBytes * 2)) {
        return std::nullopt;
    }
    const velk::UniqueFd lock = AwaitLock(RunPath("sessions.lock"));
    const std::string path = PathOf(id);
    std::optional<Session> session = ReadSession(path);
    if (!session) {
        return std::nullopt;
    }
    const int64_t now = SecondsSinceBoot();
    if (IsExpired(*session, now) || !HasPasswordOf(*session)) {
        (void)unlink(path.c_str());
        return std::nullopt;
    }
    session->id = id;
    if (now - session->used >= kUseStep) {
        session->used = now;
        (void)ReplaceFile(path, SessionText(*session));
    }
    return session;
}

void EndSession(const Session& session) {
    const velk::UniqueFd lock = AwaitLock(RunPath("sessions.lock"));
    (void)unlink(PathOf(session.id).c_str());
}

}  // namespace velkweb
