// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// server_lines.cpp - the crontab's lines after a set of the time server.
#include "fuzz/kit/server_lines.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string_view>

#include "fuzz/kit/fuzz_device.h"

namespace fuzz {
namespace {

constexpr std::string_view kClient = "ntpdate";

// Removes the first word and its blank from the text and returns the word.
std::string_view TakeWord(std::string_view& text) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    return word;
}

// The server is the first word after the client's name that begins with a letter or a digit.
bool EndsWithServer(std::string_view line) {
    const size_t client = line.find(kClient);
    if (client == std::string_view::npos) {
        return false;
    }
    std::string_view rest = line.substr(client + kClient.size());
    while (!rest.empty()) {
        const bool is_last = !Has(rest, " ");
        const std::string_view word = TakeWord(rest);
        if (!word.empty() && isalnum(static_cast<unsigned char>(word[0])) != 0) {
            return is_last;
        }
        if (Has(word, ">")) {
            return false;
        }
    }
    return false;
}

// True if `text` is in the new line in the place of another word, or of none.
bool IsPutIn(std::string_view old_line, std::string_view new_line, std::string_view text) {
    for (size_t at = 0; at + text.size() <= new_line.size(); ++at) {
        const std::string_view front = new_line.substr(0, at);
        const std::string_view end = new_line.substr(at + text.size());
        const size_t kept = front.size() + end.size();
        if (new_line.substr(at, text.size()) == text && kept <= old_line.size() &&
            old_line.starts_with(front) && old_line.ends_with(end) &&
            !Has(old_line.substr(at, old_line.size() - kept), " ")) {
            return true;
        }
    }
    return false;
}

}  // namespace

Texts WithJoins(const Texts& lines) {
    Texts joined;
    bool is_open = false;
    for (const std::string& line : lines) {
        if (is_open) {
            joined.back() += "\n" + line;
        } else {
            joined.push_back(line);
        }
        is_open = EndsWithServer(line);
    }
    return joined;
}

void CheckServerLine(const std::string& old_line, const std::string& new_line,
                     const std::string& server) {
    const size_t join = old_line.rfind('\n');
    if (join == std::string::npos) {
        Check(IsPutIn(old_line, new_line, server), "the server alone is put in");
        return;
    }
    const std::string last = old_line.substr(join + 1);
    Check(Has(last, kClient) || new_line.ends_with(last), "a joined line is as it was");
}

}  // namespace fuzz
