// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ipv4.cpp - IPv4 addresses in dotted decimal form.
#include "velkctl/text/ipv4.h"

#include <arpa/inet.h>
#include <netinet/in.h>

namespace velkctl {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Returns the word without leading zeros; a number of zeros keeps one.
std::string WithoutLeadingZeros(std::string_view word) {
    std::string text;
    for (size_t i = 0; i < word.size(); ++i) {
        const bool begins_number = text.empty() || text.back() == '.';
        const bool goes_on = i + 1 < word.size() && IsDigit(word[i + 1]);
        if (word[i] != '0' || !begins_number || !goes_on) {
            text.push_back(word[i]);
        }
    }
    return text;
}

}  // namespace

std::optional<uint32_t> ParseIpv4(const std::string& word) {
    in_addr address{};
    if (word.find('\0') != std::string::npos || inet_pton(AF_INET, word.c_str(), &address) != 1) {
        return std::nullopt;
    }
    return ntohl(address.s_addr);
}

std::string Dotted(uint32_t address) {
    std::string text;
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        text.append(text.empty() ? "" : ".").append(std::to_string(address >> (shift - 8) & 0xffU));
    }
    return text;
}

std::string NotIpv4Problem(const std::string& word, std::string_view wanted) {
    return ParseIpv4(WithoutLeadingZeros(word))
               ? "has a number with a leading zero; other programs read it as octal"
               : std::string("is not ").append(wanted);
}

std::string_view HostAddressProblem(uint32_t address) {
    const uint32_t first = address >> 24U;
    if (first == 0) {
        return "is not the address of a host, as it begins with 0";
    }
    if (IsLoopback(address)) {
        return "is a loopback address; the device reaches only itself there";
    }
    if (address == INADDR_BROADCAST) {
        return "is the broadcast address";
    }
    if (first >= 240) {
        return "is a reserved address";
    }
    return first >= 224 ? "is a multicast address" : "";
}

}  // namespace velkctl
