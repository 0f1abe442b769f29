// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// counted_calls.cpp - repeats one request, so that its cost can be counted. Fails if the result is
// not the expected one: the cost of a failing call is of no interest.
//
// counted_calls COUNT RESULT get|set ID INTERFACE [DATA]
#include "cost/request_words.h"

int main(int argc, char** argv) {
    if (argc < 6) {
        return 2;
    }
    const cost::ExpectedCall call = cost::ReadCall(argv + 2);
    _velk_request response;
    for (int count = atoi(argv[1]); count > 0; --count) {
        if (execute_velk_command(&call.request, &response) != call.result) {
            return 1;
        }
    }
    return 0;
}
