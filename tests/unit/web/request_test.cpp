// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// request_test.cpp - tests of web/server/request.h.
#include "web/server/request.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

using velkweb::Request;

int StatusOf(const std::optional<velkweb::Answer>& refusal) {
    return refusal ? refusal->status : 0;
}

Request JsonRequest(const std::string& length) {
    Request request;
    request.content_type = "application/json";
    request.length = length;
    return request;
}

TEST(WebRequestTest, TakesTheVariablesOfTheWebServer) {
    const Request request = velkweb::MakeRequest({{"REQUEST_METHOD", "POST"},
                                                  {"PATH_INFO", "/apply"},
                                                  {"QUERY_STRING", "a=b"},
                                                  {"CONTENT_TYPE", "application/json"},
                                                  {"CONTENT_LENGTH", " 12 "},
                                                  {"HTTP_COOKIE", "x=1"},
                                                  {"HTTP_X_VELK_TOKEN", "t"},
                                                  {"HTTP_HOST", "h"},
                                                  {"HTTP_ORIGIN", "http://h"},
                                                  {"REMOTE_ADDR", "10.0.0.1"}});
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.name, "apply");
    EXPECT_EQ(request.query, "a=b");
    EXPECT_EQ(request.length, "12");
    EXPECT_EQ(request.cookies, "x=1");
    EXPECT_EQ(request.token, "t");
    EXPECT_EQ(request.address, "10.0.0.1");
    EXPECT_FALSE(request.has_encoding);
    EXPECT_TRUE(velkweb::MakeRequest({{"HTTP_TRANSFER_ENCODING", "chunked"}}).has_encoding);
}

TEST(WebRequestTest, FindsCookies) {
    EXPECT_EQ(velkweb::CookieOf("a=1; velk_session=22;b=3", "velk_session"), "22");
    EXPECT_EQ(velkweb::CookieOf("velk_session=1; velk_session=2", "velk_session"), "1");
    EXPECT_EQ(velkweb::CookieOf("velk_session2=1; x", "velk_session"), "");
    EXPECT_EQ(velkweb::CookieOf("velk_session", "velk_session"), "");
    EXPECT_EQ(velkweb::CookieOf("", "velk_session"), "");
    EXPECT_EQ(velkweb::QueryValue("a=1&id=2&id=3", "id"), "2");
}

TEST(WebRequestTest, RefusesOtherOrigins) {
    Request request;
    request.host = "192.168.0.10";
    EXPECT_EQ(StatusOf(velkweb::RefuseOtherOrigin(request)), 0);
    for (const char* origin : {"http://192.168.0.10", "https://192.168.0.10"}) {
        request.origin = origin;
        EXPECT_EQ(StatusOf(velkweb::RefuseOtherOrigin(request)), 0) << origin;
    }
    for (const char* origin : {"null", "http://192.168.0.1", "http://192.168.0.10:81", "x"}) {
        request.origin = origin;
        EXPECT_EQ(StatusOf(velkweb::RefuseOtherOrigin(request)), 403) << origin;
    }
    request.origin = "";
    request.fetch_site = "cross-site";
    EXPECT_EQ(StatusOf(velkweb::RefuseOtherOrigin(request)), 403);
}

TEST(WebRequestTest, RefusesOtherTypesAndLengths) {
    EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(JsonRequest("2"))), 0);
    EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(JsonRequest("65536"))), 0);
    EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(JsonRequest("65537"))), 413);
    EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(JsonRequest("99999999999999999999999"))), 413);
    EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(JsonRequest(""))), 411);
    for (const char* length : {"-1", "+1", "1 2", "0x2", "a"}) {
        EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(JsonRequest(length))), 400) << length;
    }
    Request request = JsonRequest("2");
    for (const char* type : {"Application/JSON", "application/json; charset=UTF-8"}) {
        request.content_type = type;
        EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(request)), 0) << type;
    }
    for (const char* type :
         {"", "text/plain", "application/json; charset=x", "application/jsonp"}) {
        request.content_type = type;
        EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(request)), 415) << type;
    }
    request = JsonRequest("2");
    request.has_encoding = true;
    EXPECT_EQ(StatusOf(velkweb::RefuseBodyForm(request)), 411);
}

TEST(WebRequestTest, ParsesObjectsAlone) {
    EXPECT_EQ(velkweb::ParseBody("{\"a\": 1}").value["a"], 1);
    for (const char* text : {"", "[]", "1", "{", "{\"a\":1,\"a\":2}", "\"x\"", "null"}) {
        EXPECT_EQ(StatusOf(velkweb::ParseBody(text).refusal), 400) << text;
    }
}

}  // namespace
