// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer.h - the answer to one request of a browser.
#ifndef WEB_SERVER_ANSWER_H_
#define WEB_SERVER_ANSWER_H_

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace velkweb {

using Json = nlohmann::ordered_json;

struct Answer {
    int status = 200;
    std::string body{};
    std::vector<std::string> headers{};  // more header lines
};

// A problem for a person. Texts that are empty become null.
struct Trouble {
    std::string message;
    std::string detail{};
    std::string remedy{};
    std::string setting{};
};

// Returns the document of velkctl for a run without a verb: {"schema": 3, "verb": null, "status":
// 1, "notes": [], "errors": [...]}.
Json ErrorDocument(const Trouble& trouble);

// Returns an answer with such a document.
Answer ErrorAnswer(int status, const Trouble& trouble);

// Returns the document as the answer.
Answer JsonAnswer(const Json& document, int status = 200);

// Returns the text of a document. It has ASCII characters only, and bytes that are no text are
// replaced.
std::string TextOf(const Json& document);

// Returns the answer in the form of RFC 3875, which the web server sends on.
std::string CgiText(const Answer& answer);

}  // namespace velkweb

#endif  // WEB_SERVER_ANSWER_H_
