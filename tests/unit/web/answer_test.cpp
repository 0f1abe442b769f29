// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer_test.cpp - tests of web/server/answer.h.
#include "web/server/answer.h"

#include <gtest/gtest.h>

namespace {

TEST(WebAnswerTest, HasTheFormOfVelkctlsErrors) {
    EXPECT_EQ(velkweb::ErrorAnswer(403, {.message = "no", .remedy = "yes"}).body,
              R"({"schema":3,"verb":null,"status":1,"notes":[],"errors":[{"message":"no",)"
              R"("detail":null,"cause":null,"remedy":"yes","setting":null,"result":null}]})"
              "\n");
}

TEST(WebAnswerTest, IsHandedToTheWebServer) {
    velkweb::Answer answer = velkweb::JsonAnswer(velkweb::Json::object(), 429);
    answer.headers.emplace_back("Retry-After: 2");
    EXPECT_EQ(velkweb::CgiText(answer),
              "Status: 429 Too Many Requests\r\n"
              "Content-Type: application/json; charset=utf-8\r\n"
              "Cache-Control: no-store\r\n"
              "X-Content-Type-Options: nosniff\r\n"
              "Content-Length: 3\r\n"
              "Retry-After: 2\r\n"
              "\r\n"
              "{}\n");
}

TEST(WebAnswerTest, ReplacesBytesThatAreNoText) {
    EXPECT_EQ(velkweb::TextOf(velkweb::Json{{"a", "\xff\xc3\xa4"}}), R"({"a":"\ufffd\u00e4"})");
}

}  // namespace
