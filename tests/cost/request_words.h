// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request_words.h - reads a request from the command line.
#ifndef TESTS_COST_REQUEST_WORDS_H_
#define TESTS_COST_REQUEST_WORDS_H_

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "velk.h"

namespace cost {

struct ExpectedCall {
    int result = 0;
    _velk_request request{};
};

// Reads the words RESULT get|set ID INTERFACE [DATA]. The first four are required.
inline ExpectedCall ReadCall(char** words) {
    ExpectedCall call;
    call.result = atoi(words[0]);
    call.request.command_type = std::string_view(words[1]) == "set" ? VELK_SET : VELK_GET;
    call.request.command_id = static_cast<uint32_t>(atoi(words[2]));
    strncpy(call.request.interface, words[3], sizeof(call.request.interface) - 1);
    if (words[4] != nullptr) {
        strncpy(call.request.data, words[4], sizeof(call.request.data) - 1);
    }
    return call;
}

}  // namespace cost

#endif  // TESTS_COST_REQUEST_WORDS_H_
