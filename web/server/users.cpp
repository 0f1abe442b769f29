// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// users.cpp - the users of the settings page and their passwords.
#include "web/server/users.h"

#include <algorithm>
#include <memory>

#include <crypt.h>

#include "web/server/run_folder.h"

namespace velkweb {
namespace {

constexpr size_t kLargestFile = size_t{64} * 1024;
constexpr size_t kLongestName = 32;
constexpr char kMethod[] = "$y$";  // yescrypt

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsNameCharacter(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
}

// The hash that crypt(3) makes of the password with the method, cost and salt of another hash;
// empty on failure.
std::string Hashed(const std::string& password, const std::string& settings) {
    const auto data = std::make_unique<crypt_data>();
    const char* hash = crypt_r(password.c_str(), settings.c_str(), data.get());
    return hash == nullptr || *hash == '*' ? "" : hash;
}

std::string NewSettings() {
    std::string buffer(CRYPT_GENSALT_OUTPUT_SIZE, '\0');
    const char* settings =
        crypt_gensalt_rn(kMethod, 0, nullptr, 0, buffer.data(), static_cast<int>(buffer.size()));
    return settings == nullptr ? "" : settings;
}

// An unknown user costs as much as the first one of the file.
std::string SettingsFor(const std::vector<User>& users, const User* user) {
    if (user != nullptr) {
        return user->hash;
    }
    return users.empty() ? NewSettings() : users.front().hash;
}

}  // namespace

std::vector<User> ParseUsers(std::string_view text) {
    std::vector<User> users;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos && IsUserName(line.substr(0, colon)) &&
            colon + 1 < line.size()) {
            users.push_back(
                {std::string(line.substr(0, colon)), std::string(line.substr(colon + 1))});
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return users;
}

std::optional<std::vector<User>> ReadUsers() {
    const std::optional<std::string> text = ReadFileText(kUsersFile, kLargestFile);
    return text ? std::optional(ParseUsers(*text)) : std::nullopt;
}

const User* FindUser(const std::vector<User>& users, std::string_view name) {
    const auto user = std::ranges::find(users, name, &User::name);
    return user == users.end() ? nullptr : &*user;
}

bool IsUserName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName && IsLetter(name.front()) &&
           std::ranges::all_of(name, IsNameCharacter);
}

bool IsPasswordForm(std::string_view password) {
    constexpr std::string_view kRefused{"\0\n\r", 3};
    return !password.empty() && password.size() <= kLongestPassword &&
           password.find_first_of(kRefused) == std::string_view::npos;
}

bool IsPassword(const std::vector<User>& users, std::string_view name,
                const std::string& password) {
    const User* user = FindUser(users, name);
    const std::string hash = Hashed(password, SettingsFor(users, user));
    return user != nullptr && !hash.empty() && IsSameSecret(hash, user->hash);
}

std::string HashOf(const std::string& password) {
    const std::string settings = NewSettings();
    return settings.empty() ? "" : Hashed(password, settings);
}

}  // namespace velkweb
