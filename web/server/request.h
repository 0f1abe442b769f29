// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request.h - one request of a browser, as the web server hands it over.
#ifndef WEB_SERVER_REQUEST_H_
#define WEB_SERVER_REQUEST_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "web/server/answer.h"

namespace velkweb {

// The longest body of a request, in bytes: the longest document that velkctl reads.
inline constexpr size_t kLongestBody = size_t{64} * 1024;

// The variables of RFC 3875.
using Variables = std::map<std::string, std::string, std::less<>>;

struct Request {
    std::string method;
    std::string name;   // the part of the path after the program: "apply"
    std::string query;  // the part of the address after "?"
    std::string content_type;
    std::string length;         // Content-Length as it came; empty: none
    bool has_encoding = false;  // the body comes in chunks or packed
    std::string cookies;
    std::string token;  // X-Velk-Token
    std::string host;
    std::string origin;      // empty: none
    std::string fetch_site;  // Sec-Fetch-Site; empty: none
    std::string address;     // the browser's
};

// Returns the environment of this process.
Variables OwnVariables();

Request MakeRequest(const Variables& variables);

// Returns the value of a cookie; empty if there is none. The first one of this name counts.
std::string CookieOf(std::string_view cookies, std::string_view name);

// Returns the value of a name in a query: "7" of "id" in "id=7&x=1". Encoded characters stay as
// they are: no value that is valid has one.
std::string QueryValue(std::string_view query, std::string_view name);

// Returns the refusal of a request that a page of another origin has caused, or nothing.
std::optional<Answer> RefuseOtherOrigin(const Request& request);

// Returns the refusal of a body that has another type than JSON, or no valid length, or nothing.
std::optional<Answer> RefuseBodyForm(const Request& request);

// A body that was read, or the refusal.
struct Body {
    std::optional<Answer> refusal{};
    Json value{};  // an object
};

// Reads the body from standard input, within ten seconds, and parses it. Only after
// RefuseBodyForm().
Body ReadBody(const Request& request);

// Parses the text of a body.
Body ParseBody(std::string_view text);

}  // namespace velkweb

#endif  // WEB_SERVER_REQUEST_H_
