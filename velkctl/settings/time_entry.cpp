// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_entry.cpp - the crontab's lines that run the time client, and the server in them.
#include "velkctl/settings/time_entry.h"

#include "lib/base/words.h"
#include "velk/ntp.h"

namespace velkctl {
namespace {

// Returns the start of the first word after the client that begins with a letter or a digit. Every
// line with a server has one.
size_t ServerPlace(const std::string& line) {
    const size_t rest = line.find(kTimeClient) + kTimeClient.size();
    size_t place = rest;
    while (place < line.size() &&
           !(velk::IsLetterOrDigit(line[place]) && (place == rest || line[place - 1] == ' '))) {
        ++place;
    }
    return place;
}

}  // namespace

bool IsServerFoundTooEarly(const std::string& line) {
    std::string server;
    (void)GetNtpdate(line, server);
    return !server.empty() && line.find(server) < ServerPlace(line);
}

}  // namespace velkctl
