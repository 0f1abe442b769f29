// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sessions.h - who is logged in.
#ifndef WEB_SERVER_SESSIONS_H_
#define WEB_SERVER_SESSIONS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "web/server/users.h"

namespace velkweb {

inline constexpr char kSessionCookie[] = "velk_session";
inline constexpr int64_t kIdleSeconds = int64_t{15} * 60;
inline constexpr int64_t kLongestSessionSeconds = int64_t{12} * 60 * 60;
inline constexpr size_t kMostSessions = 16;

struct Session {
    std::string id;     // random; the name of its file, which only this program's user can list
    std::string token;  // random; a page sends it with each change
    std::string user;
    std::string password_hash;  // the user's at the login: a new password ends the session
    int64_t began = 0;          // seconds since the start of the device
    int64_t used = 0;
};

// The text of a session's file, and the session in a text; nothing if it is damaged. The text has
// no id.
std::string SessionText(const Session& session);
std::optional<Session> ParseSession(std::string_view text);

bool IsExpired(const Session& session, int64_t now);

// Begins a session. Ends expired ones, and the one that was used least recently if there are too
// many. Returns nothing if it cannot be written.
std::optional<Session> BeginSession(const User& user);

// Returns the session with the id, and notes its use. Nothing if there is none, if it has expired,
// or if its user is gone or has another password.
std::optional<Session> FindSession(const std::string& id);

void EndSession(const Session& session);

}  // namespace velkweb

#endif  // WEB_SERVER_SESSIONS_H_
