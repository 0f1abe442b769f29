// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// users.h - the users of the settings page and their passwords.
#ifndef WEB_SERVER_USERS_H_
#define WEB_SERVER_USERS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkweb {

// Lines USER:HASH, with the hash of crypt(3). Root writes it, the group of the server reads it.
inline constexpr char kUsersFile[] = "/etc/velk/web-users";

inline constexpr size_t kLongestPassword = 256;

struct User {
    std::string name;
    std::string hash;
};

// Parses the text of the file. Lines of another form are left out.
std::vector<User> ParseUsers(std::string_view text);

// Returns the users of the file; nothing if it cannot be read.
std::optional<std::vector<User>> ReadUsers();

const User* FindUser(const std::vector<User>& users, std::string_view name);

// True for 1 to 32 characters: a letter, then letters, digits, "-", "_" and ".".
bool IsUserName(std::string_view name);

// True for 1 to 256 bytes without NUL and line ends.
bool IsPasswordForm(std::string_view password);

// True if it is the password of the user. The answer takes the same time for a user that does not
// exist.
bool IsPassword(const std::vector<User>& users, std::string_view name, const std::string& password);

// Returns the hash of a password with a new salt; empty on failure.
std::string HashOf(const std::string& password);

}  // namespace velkweb

#endif  // WEB_SERVER_USERS_H_
