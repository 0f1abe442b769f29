// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// login_test.cpp - tests of web/server/login_limit.h, web/server/sessions.h and web/server/users.h.
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "web/server/login_limit.h"
#include "web/server/run_folder.h"
#include "web/server/sessions.h"
#include "web/server/users.h"

namespace {

using velkweb::Failures;

TEST(WebLoginLimitTest, MakesOneAddressWaitLongerAndLonger) {
    std::vector<Failures> rows;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.1", 100), 0);
    }
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.1", 100), 2);
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.1", 101), 1);
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.2", 101), 0);
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.1", 102), 0);
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.1", 102), 4);
    EXPECT_EQ(velkweb::WaitAfter(1000, false), 900);
}

TEST(WebLoginLimitTest, MakesAllAddressesWaitAShortTime) {
    std::vector<Failures> rows;
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(velkweb::CountTry(rows, "10.0.1." + std::to_string(i), 100), 0);
    }
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.2.1", 100), 1);
    EXPECT_EQ(velkweb::WaitAfter(1000, true), 15);
}

TEST(WebLoginLimitTest, ForgetsAfterAnHourAndKeepsFewRows) {
    std::vector<Failures> rows{{"10.0.0.1", 9, 100}};
    EXPECT_EQ(velkweb::CountTry(rows, "10.0.0.1", 100 + 3601), 0);
    rows.clear();
    for (int i = 0; i < 2000; ++i) {
        (void)velkweb::CountTry(rows, std::to_string(i), 100 + i * 16);
    }
    EXPECT_LE(rows.size(), 260U);
}

TEST(WebLoginLimitTest, KeepsItsRowsInAFile) {
    const std::vector<Failures> rows{{"", 3, 5}, {"fe80::1", 1, 7}};
    EXPECT_EQ(velkweb::FailuresText(rows), "3 5 \n1 7 fe80::1\n");
    const std::vector<Failures> parsed = velkweb::ParseFailures("3 5 \nx\n1 7 fe80::1\n");
    ASSERT_EQ(parsed.size(), 2U);
    EXPECT_EQ(parsed[1].address, "fe80::1");
    EXPECT_EQ(parsed[1].last, 7);
}

TEST(WebLoginLimitTest, TakesANetworkForOneAddress) {
    EXPECT_EQ(velkweb::AddressGroup("192.168.0.1"), "192.168.0.1");
    EXPECT_EQ(velkweb::AddressGroup("2001:db8:1:2:a:b:c:d"), "2001:db8:1:2");
    EXPECT_EQ(velkweb::AddressGroup("::ffff:10.0.0.1"), "::ffff:10.0.0.1");
    EXPECT_EQ(velkweb::AddressGroup("::1"), "::1");
}

TEST(WebSessionsTest, ReadsAndWritesSessions) {
    const std::string mark(64, 'a');
    const std::optional<velkweb::Session> session =
        velkweb::ParseSession("admin\n" + mark + "\n10\n20\n");
    ASSERT_TRUE(session);
    EXPECT_EQ(velkweb::SessionText(*session), "admin\n" + mark + "\n10\n20\n");
    for (const std::string& text :
         {std::string(), "admin\n" + mark + "\n10\n", "../x\n" + mark + "\n1\n2\n",
          std::string("admin\nb\n1\n2\n"), "admin\n" + mark + "\n1x\n2\n"}) {
        EXPECT_FALSE(velkweb::ParseSession(text)) << text;
    }
}

TEST(WebSessionsTest, EndsIdleAndOldSessions) {
    velkweb::Session session;
    session.began = 1000;
    session.used = 1000;
    EXPECT_FALSE(velkweb::IsExpired(session, 1900));
    EXPECT_TRUE(velkweb::IsExpired(session, 1901));
    session.used = 1000 + 43200;
    EXPECT_FALSE(velkweb::IsExpired(session, 1000 + 43200));
    EXPECT_TRUE(velkweb::IsExpired(session, 1000 + 43201));
}

TEST(WebSessionsTest, HasATokenThatDoesNotRevealTheId) {
    velkweb::Session session;
    session.id = std::string(64, '1');
    const std::string token = velkweb::TokenOf(session);
    EXPECT_TRUE(velkweb::IsHex(token, 64));
    EXPECT_NE(token, session.id);
    session.id.back() = '2';
    EXPECT_NE(velkweb::TokenOf(session), token);
}

TEST(WebUsersTest, ReadsTheFile) {
    const std::vector<velkweb::User> users =
        velkweb::ParseUsers("# a comment\nadmin:$y$x\nbad name:x\nempty:\nb:c:d\n1x:y");
    ASSERT_EQ(users.size(), 2U);
    EXPECT_EQ(users[0].name, "admin");
    EXPECT_EQ(users[0].hash, "$y$x");
    EXPECT_EQ(users[1].hash, "c:d");
    EXPECT_EQ(velkweb::FindUser(users, "nobody"), nullptr);
}

TEST(WebUsersTest, ChecksPasswords) {
    const std::string hash = velkweb::HashOf("correct");
    ASSERT_TRUE(hash.starts_with("$y$")) << hash;
    EXPECT_NE(velkweb::HashOf("correct"), hash);
    const std::vector<velkweb::User> users{{"admin", hash}, {"locked", "!"}};
    EXPECT_TRUE(velkweb::IsPassword(users, "admin", "correct"));
    EXPECT_FALSE(velkweb::IsPassword(users, "admin", "wrong"));
    EXPECT_FALSE(velkweb::IsPassword(users, "nobody", "correct"));
    EXPECT_FALSE(velkweb::IsPassword(users, "locked", "!"));
    EXPECT_FALSE(velkweb::IsPassword({}, "admin", "correct"));
}

TEST(WebUsersTest, KnowsTheFormsOfNamesAndPasswords) {
    EXPECT_TRUE(velkweb::IsUserName("a.b-c_1"));
    for (const char* name : {"", "1a", "a b", "a:b", "../a"}) {
        EXPECT_FALSE(velkweb::IsUserName(name)) << name;
    }
    EXPECT_TRUE(velkweb::IsPasswordForm(std::string(256, 'x')));
    EXPECT_FALSE(velkweb::IsPasswordForm(std::string(257, 'x')));
    EXPECT_FALSE(velkweb::IsPasswordForm(""));
    EXPECT_FALSE(velkweb::IsPasswordForm("a\nb"));
    EXPECT_FALSE(velkweb::IsPasswordForm(std::string("a\0b", 3)));
}

}  // namespace
