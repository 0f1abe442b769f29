// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// api.h - the names that a page can ask for.
#ifndef WEB_SERVER_API_H_
#define WEB_SERVER_API_H_

#include "web/server/answer.h"
#include "web/server/request.h"

namespace velkweb {

// Answers a request. Reads its body from standard input only after all other checks.
Answer AnswerRequest(const Request& request);

}  // namespace velkweb

#endif  // WEB_SERVER_API_H_
