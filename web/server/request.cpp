// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request.cpp - one request of a browser, as the web server hands it over.
#include "web/server/request.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>

#include <poll.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "velkctl/documents/json_text.h"

namespace velkweb {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kBodyTime{10};

std::string ValueOf(const Variables& variables, std::string_view name) {
    const auto variable = variables.find(name);
    return variable == variables.end() ? "" : variable->second;
}

std::string WithoutBlanks(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t");
    const size_t last = text.find_last_not_of(" \t");
    return first == std::string_view::npos ? "" : std::string(text.substr(first, last - first + 1));
}

std::string InLowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

// Returns the value of a name in a list of NAME=VALUE between separators.
std::string ValueInList(std::string_view list, char separator, std::string_view name) {
    while (!list.empty()) {
        const size_t end = list.find(separator);
        const std::string item = WithoutBlanks(list.substr(0, end));
        if (item.starts_with(name) && item.size() > name.size() && item[name.size()] == '=') {
            return item.substr(name.size() + 1);
        }
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
    return {};
}

// True for "application/json", also with "charset=utf-8" after it.
bool IsJson(const std::string& content_type) {
    const std::string type = InLowerCase(content_type);
    const size_t end = type.find(';');
    if (WithoutBlanks(type.substr(0, end)) != "application/json") {
        return false;
    }
    return end == std::string::npos || WithoutBlanks(type.substr(end + 1)) == "charset=utf-8";
}

// Returns the number in a Content-Length of digits alone; nothing for another text. A number that
// is too long counts as the largest one.
std::optional<size_t> LengthIn(const std::string& text) {
    constexpr std::string_view kDigits = "0123456789";
    if (text.empty() || text.find_first_not_of(kDigits) != std::string::npos) {
        return std::nullopt;
    }
    size_t length = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), length);
    return parsed.ec == std::errc() ? length : SIZE_MAX;
}

bool WaitForInput(Clock::time_point deadline) {
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) {
            return false;
        }
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int count = poll(&input, 1, static_cast<int>(left.count()));
        if (count != -1 || errno != EINTR) {
            return count == 1;
        }
    }
}

Body Refused(int status, const Trouble& trouble) {
    return {.refusal = ErrorAnswer(status, trouble)};
}

Body NotJson(const velkctl::TextPlace& place) {
    return Refused(400,
                   {.message = "the request is not JSON at line " + std::to_string(place.line) +
                               ", column " + std::to_string(place.column)});
}

}  // namespace

Variables OwnVariables() {
    Variables variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const size_t equals = text.find('=');
        if (equals != std::string_view::npos) {
            variables.try_emplace(std::string(text.substr(0, equals)), text.substr(equals + 1));
        }
    }
    return variables;
}

Request MakeRequest(const Variables& variables) {
    Request request;
    request.method = ValueOf(variables, "REQUEST_METHOD");
    const std::string path = ValueOf(variables, "PATH_INFO");
    request.name = path.starts_with('/') ? path.substr(1) : path;
    request.query = ValueOf(variables, "QUERY_STRING");
    request.content_type = ValueOf(variables, "CONTENT_TYPE");
    request.length = WithoutBlanks(ValueOf(variables, "CONTENT_LENGTH"));
    request.has_encoding =
        variables.contains("HTTP_TRANSFER_ENCODING") || variables.contains("HTTP_CONTENT_ENCODING");
    request.cookies = ValueOf(variables, "HTTP_COOKIE");
    request.token = ValueOf(variables, "HTTP_X_VELK_TOKEN");
    request.host = ValueOf(variables, "HTTP_HOST");
    request.origin = ValueOf(variables, "HTTP_ORIGIN");
    request.fetch_site = ValueOf(variables, "HTTP_SEC_FETCH_SITE");
    request.address = ValueOf(variables, "REMOTE_ADDR");
    return request;
}

std::string CookieOf(std::string_view cookies, std::string_view name) {
    return ValueInList(cookies, ';', name);
}

std::string QueryValue(std::string_view query, std::string_view name) {
    return ValueInList(query, '&', name);
}

std::optional<Answer> RefuseOtherOrigin(const Request& request) {
    const bool is_same_origin = request.origin.empty() ||
                                request.origin == "http://" + request.host ||
                                request.origin == "https://" + request.host;
    const bool is_same_site = request.fetch_site.empty() || request.fetch_site == "same-origin" ||
                              request.fetch_site == "none";
    if (is_same_origin && is_same_site) {
        return std::nullopt;
    }
    return ErrorAnswer(403, {.message = "the request comes from a page of another address",
                             .remedy = "open the settings page of this device"});
}

std::optional<Answer> RefuseBodyForm(const Request& request) {
    if (!IsJson(request.content_type)) {
        return ErrorAnswer(415, {.message = "the request has another type than application/json"});
    }
    if (request.has_encoding || request.length.empty()) {
        return ErrorAnswer(411, {.message = "the request has no Content-Length"});
    }
    const std::optional<size_t> length = LengthIn(request.length);
    if (!length) {
        return ErrorAnswer(400, {.message = "the Content-Length of the request is no number"});
    }
    if (*length > kLongestBody) {
        return ErrorAnswer(413, {.message = "the request is longer than 64 KiB"});
    }
    return std::nullopt;
}

Body ReadBody(const Request& request) {
    const auto deadline = Clock::now() + kBodyTime;
    std::string text(LengthIn(request.length).value_or(0), '\0');
    size_t length = 0;
    while (length < text.size()) {
        if (!WaitForInput(deadline)) {
            return Refused(408, {.message = "the request did not come within 10 s"});
        }
        const ssize_t count = velk::ReadSome(STDIN_FILENO, &text[length], text.size() - length);
        if (count <= 0) {
            return Refused(400, {.message = "the request is shorter than its Content-Length"});
        }
        length += static_cast<size_t>(count);
    }
    return ParseBody(text);
}

Body ParseBody(std::string_view text) {
    velkctl::JsonText parsed = velkctl::ReadJsonText(text);
    if (parsed.error) {
        return NotJson(*parsed.error);
    }
    if (!parsed.doubled.empty()) {
        return Refused(400, {.message = "a member of the request is given twice"});
    }
    if (!parsed.value || !parsed.value->is_object()) {
        return Refused(400, {.message = "the request is no JSON object"});
    }
    return {.value = std::move(*parsed.value)};
}

}  // namespace velkweb
