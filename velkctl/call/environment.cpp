// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// environment.cpp - the environment that velkctl gives the device's tools, and the caller's own.
#include "velkctl/call/environment.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace velkctl {
namespace {

// In their order of precedence.
constexpr std::array kLocaleVariables{"LC_ALL", "LC_CTYPE", "LANG"};

constexpr std::array<std::string_view, 9> kShellVariables{
    "BASHOPTS", "BASH_ENV", "CDPATH", "ENV", "GLOBIGNORE", "IFS", "LANGUAGE", "PS4", "SHELLOPTS"};
constexpr std::string_view kFunctionPrefix = "BASH_FUNC_";
constexpr std::string_view kOldFunctionValue = "() {";

std::string Variable(const char* name) {
    const char* value = getenv(name);
    return value == nullptr ? "" : value;
}

std::optional<std::string>& SavedPath() {
    static std::optional<std::string> path;
    return path;
}

// "utf8" of "de_DE.UTF-8@euro"
std::string EncodingOf(std::string_view locale) {
    const size_t dot = locale.find('.');
    if (dot == std::string_view::npos) {
        return {};
    }
    std::string characters(locale.substr(dot + 1, locale.find('@', dot) - dot - 1));
    std::erase(characters, '-');
    std::ranges::transform(characters, characters.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return characters;
}

bool IsForShells(std::string_view name, std::string_view value) {
    return name.starts_with(kFunctionPrefix) || value.starts_with(kOldFunctionValue) ||
           std::ranges::find(kShellVariables, name) != kShellVariables.end();
}

std::vector<std::string> VariablesForShells() {
    std::vector<std::string> names;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const size_t equals = text.find('=');
        const std::string_view name = text.substr(0, equals);
        if (equals != std::string_view::npos && IsForShells(name, text.substr(equals + 1))) {
            names.emplace_back(name);
        }
    }
    return names;
}

}  // namespace

bool HasUtf8Locale() {
    for (const char* name : kLocaleVariables) {
        if (const std::string locale = Variable(name); !locale.empty()) {
            return EncodingOf(locale) == "utf8";
        }
    }
    return false;
}

void FixEnvironment() {
    SavedPath() = Variable("PATH");
    for (const std::string& name : VariablesForShells()) {
        (void)unsetenv(name.c_str());
    }
    (void)setenv("LC_ALL", "C", 1);
    (void)setenv("PATH", kToolFolders, 1);
}

std::string CallersPath() {
    const std::string path = Variable("PATH");
    return path == kToolFolders ? SavedPath().value_or(path) : path;
}

}  // namespace velkctl
