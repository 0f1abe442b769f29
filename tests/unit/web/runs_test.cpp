// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// runs_test.cpp - tests of web/server/runs.h and web/server/velkctl_run.h.
#include "web/server/runs.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "web/server/answer.h"
#include "web/server/velkctl_run.h"

namespace {

using testing::ElementsAre;
using velkweb::Json;

std::vector<std::string> WordsOf(const velkweb::Planned& planned) {
    EXPECT_FALSE(planned.trouble);
    return planned.run.words;
}

TEST(WebRunsTest, HasTheValuesOnStandardInputAlone) {
    const velkweb::Planned planned =
        velkweb::PlanApply(Json{{"settings", {{"eth1.psk", "very secret"}}}, {"restart", true}});
    EXPECT_THAT(WordsOf(planned), ElementsAre("apply", "-", "--restart=auto"));
    EXPECT_EQ(planned.run.input, R"({"schema":1,"settings":{"eth1.psk":"very secret"}})");
}

TEST(WebRunsTest, HasTheWordsOfEachRequest) {
    EXPECT_THAT(WordsOf(velkweb::PlanApply(Json{
                    {"settings", Json::object()}, {"confirm_within", 60U}, {"dry_run", true}})),
                ElementsAre("apply", "-", "--restart=never", "--confirm-within=60", "--dry-run"));
    EXPECT_THAT(WordsOf(velkweb::PlanCheck(Json{{"settings", Json::object()}})),
                ElementsAre("apply", "-", "--check", "--timeout=20"));
    EXPECT_THAT(WordsOf(velkweb::PlanConfirm(Json::object())), ElementsAre("confirm"));
    EXPECT_THAT(WordsOf(velkweb::PlanRevert(Json{{"id", "97gq"}})), ElementsAre("revert", "97gq"));
    EXPECT_THAT(WordsOf(velkweb::PlanUndo(Json{{"entry", nullptr}})), ElementsAre("undo"));
    EXPECT_THAT(WordsOf(velkweb::PlanRestart(Json{{"interface", "eth1"}})),
                ElementsAre("restart", "eth1"));
    EXPECT_THAT(WordsOf(velkweb::PlanDescribe("eth0.dns")), ElementsAre("describe", "eth0.dns"));
}

TEST(WebRunsTest, RefusesWordsOfOtherForms) {
    for (const char* id : {"", "abc", "abcde", "ab-1", "--ab", "AB12", "a b1"}) {
        EXPECT_TRUE(velkweb::PlanUndo(Json{{"entry", id}}).trouble) << id;
    }
    for (const char* name : {"", "-x", "a b", "a/b", "A", "a;b"}) {
        EXPECT_TRUE(velkweb::PlanDescribe(name).trouble) << name;
    }
    for (const Json& seconds : {Json(-1), Json("10"), Json(1.5), Json(86401), Json(true)}) {
        EXPECT_TRUE(
            velkweb::PlanApply(Json{{"settings", Json::object()}, {"confirm_within", seconds}})
                .trouble)
            << seconds;
    }
    EXPECT_TRUE(velkweb::PlanApply(Json{{"settings", Json::object()}, {"more", 1}}).trouble);
    EXPECT_TRUE(velkweb::PlanApply(Json{{"settings", 1}}).trouble);
    EXPECT_TRUE(velkweb::PlanRestart(Json{{"interface", "lo"}}).trouble);
    EXPECT_TRUE(velkweb::PlanRestart(Json{{"interface", "eth0"}, {"confirm_within", 60}}).trouble);
}

TEST(WebRunsTest, RunsVelkctlThroughSudoUnlessItIsRoot) {
    EXPECT_THAT(velkweb::CommandOf({.words = {"list"}}, false),
                ElementsAre("/usr/bin/sudo", "-n", "--", "/usr/bin/velkctl", "list", "--json"));
    EXPECT_THAT(velkweb::CommandOf({.words = {"list"}}, true),
                ElementsAre(testing::EndsWith("/velkctl"), "list", "--json"));
}

TEST(WebRunsTest, TakesDocumentsAlone) {
    EXPECT_TRUE(velkweb::IsDocument("{\"schema\": 3}\n"));
    for (const char* text : {"", "[]", "{", "velkctl: error", "{} x"}) {
        EXPECT_FALSE(velkweb::IsDocument(text)) << text;
    }
}

}  // namespace
