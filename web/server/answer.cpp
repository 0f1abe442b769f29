// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer.cpp - the answer to one request of a browser.
#include "web/server/answer.h"

#include <string_view>

namespace velkweb {
namespace {

// The schema of the documents of velkctl.
constexpr int kSchema = 3;

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

std::string_view ReasonOf(int status) {
    switch (status) {
        case 200:
            return "OK";
        case 202:
            return "Accepted";
        case 400:
            return "Bad Request";
        case 401:
            return "Unauthorized";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 408:
            return "Request Timeout";
        case 411:
            return "Length Required";
        case 413:
            return "Content Too Large";
        case 415:
            return "Unsupported Media Type";
        case 429:
            return "Too Many Requests";
        case 503:
            return "Service Unavailable";
        case 504:
            return "Gateway Timeout";
        default:
            return "Internal Server Error";
    }
}

}  // namespace

Json ErrorDocument(const Trouble& trouble) {
    Json error;
    error["message"] = trouble.message;
    error["detail"] = TextOrNull(trouble.detail);
    error["cause"] = nullptr;
    error["remedy"] = TextOrNull(trouble.remedy);
    error["setting"] = TextOrNull(trouble.setting);
    error["result"] = nullptr;
    Json document;
    document["schema"] = kSchema;
    document["verb"] = nullptr;
    document["status"] = 1;
    document["notes"] = Json::array();
    document["errors"] = Json::array({std::move(error)});
    return document;
}

Answer ErrorAnswer(int status, const Trouble& trouble) {
    return JsonAnswer(ErrorDocument(trouble), status);
}

Answer JsonAnswer(const Json& document, int status) {
    return {.status = status, .body = TextOf(document) + "\n"};
}

std::string TextOf(const Json& document) {
    return document.dump(-1, ' ', true, Json::error_handler_t::replace);
}

std::string CgiText(const Answer& answer) {
    std::string text = "Status: " + std::to_string(answer.status) + " ";
    text.append(ReasonOf(answer.status)).append("\r\n");
    text.append("Content-Type: application/json; charset=utf-8\r\n");
    text.append("Cache-Control: no-store\r\n");
    text.append("X-Content-Type-Options: nosniff\r\n");
    text.append("Content-Length: ").append(std::to_string(answer.body.size())).append("\r\n");
    for (const std::string& header : answer.headers) {
        text.append(header).append("\r\n");
    }
    return text.append("\r\n").append(answer.body);
}

}  // namespace velkweb
