// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/host_value.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_of.h"
#include "support/words.h"
#include "unit/velkctl/settings/problem.h"
#include "velkctl/settings/kinds_of_settings.h"

namespace {

using testkit::DataOf;
using testkit::Problem;
using testkit::Words;
using velkctl::Data;
using velkctl::kHost;
using velkctl::Parsed;

TEST(HostKindParse, TakesNamesAndAddresses) {
    for (const std::string word :
         {"192.168.0.1", "pool.ntp.org", "a", "Z", "0.a", "9.x", "ntp-1_b.example.", "fe80::1",
          "a-", "2001:db8::10", "x--y.z", "1and1.com", "None", "none.", "NONE"}) {
        const Parsed parsed = kHost.Parse(Words{word});
        EXPECT_EQ(parsed.problem, "") << word;
        EXPECT_EQ(parsed.data, DataOf(word)) << word;
    }
}

TEST(HostKindParse, NoneIsTheEmptyText) {
    const Parsed parsed = kHost.Parse(Words{"none"});
    EXPECT_TRUE(parsed.ok());
    EXPECT_EQ(parsed.data, Data{});
}

TEST(HostKindParse, RefusesTextThatIsNoName) {
    EXPECT_EQ(Problem(kHost, {"time server"}),
              "'time server' is not a host name; "
              "give a host name or address such as 192.168.0.1, or none");
    EXPECT_EQ(Problem(kHost, {""}),
              "'' is not a host name; give a host name or address such as 192.168.0.1, or none");
    EXPECT_EQ(Problem(kHost, {"a\n"}),
              "'a\\x0a' is not a host name; "
              "give a host name or address such as 192.168.0.1, or none");
}

TEST(HostKindParse, RefusesOffAsAName) {
    EXPECT_EQ(Problem(kHost, {"off"}),
              "'off' would be a host name here; give none to clear the setting");
    EXPECT_EQ(kHost.Parse(Words{"off"}).or_force, ", or --force to set that name");
    EXPECT_TRUE(kHost.Force(Words{"off"}).ok());
}

TEST(HostKindParse, SaysTooLongWithTheBeginningOfTheName) {
    const std::string start = "'" + std::string(40, 'x') + "...' is too long; ";
    const std::string end = "; give a host name or address such as 192.168.0.1, or none";
    EXPECT_EQ(Problem(kHost, {std::string(1000, 'x')}),
              start + "it has 1000 of at most 253 characters" + end);
    EXPECT_EQ(Problem(kHost, {std::string(64, 'x') + ".b"}),
              start + "a part without a dot has 64 of at most 63 characters" + end);
}

TEST(HostKindParse, RefusesEmptyAndLongLabels) {
    for (const std::string word : {"foo..bar", "foo..", "a.", "a.b."}) {
        EXPECT_EQ(kHost.Parse(Words{word}).ok(), word == "a." || word == "a.b.") << word;
    }
    EXPECT_TRUE(kHost.Parse(Words{std::string(63, 'x') + ".b"}).ok());
    EXPECT_FALSE(kHost.Parse(Words{std::string(64, 'x') + ".b"}).ok());
    EXPECT_FALSE(kHost.Parse(Words{"a." + std::string(64, 'x')}).ok());
}

TEST(HostKindParse, TextThatLooksLikeAnAddressMustBeAnAddress) {
    const std::string wanted = "; give a host name or address such as 192.168.0.1, or none";
    for (const std::string word :
         {"300.1.1.1", "999", "0", "1.2.3", "1.2.3.4.5", "192.168.0.1.", "ntp.1"}) {
        EXPECT_EQ(Problem(kHost, {word}), "'" + word + "' is not an IPv4 address" + wanted);
    }
    for (const std::string word : {"a:b", "fe80:", "1::2::3", "1.2.3.4:123"}) {
        EXPECT_EQ(Problem(kHost, {word}), "'" + word + "' is not a host name" + wanted);
    }
    EXPECT_EQ(
        Problem(kHost, {"10.0.0.01"}),
        "'10.0.0.01' has a number with a leading zero; other programs read it as octal" + wanted);
    EXPECT_EQ(Problem(kHost, {"127.0.0.1"}),
              "'127.0.0.1' is a loopback address; the device reaches only itself there" + wanted);
    EXPECT_EQ(Problem(kHost, {"255.255.255.255"}),
              "'255.255.255.255' is the broadcast address" + wanted);
}

TEST(HostKindParse, TakesExactlyOneWord) {
    EXPECT_EQ(Problem(kHost, {}),
              "no value given; give a host name or address such as 192.168.0.1, or none");
    EXPECT_EQ(Problem(kHost, {"a", "b"}),
              "2 values given; give a host name or address such as 192.168.0.1, or none");
    EXPECT_EQ(Problem(kHost, {"none", "none", "none"}),
              "3 values given; give a host name or address such as 192.168.0.1, or none");
}

TEST(HostKindParse, EveryOtherCharacterIsRefusedAnywhere) {
    const std::string taken = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        const bool is_taken = taken.find(character) != std::string::npos;
        for (const std::string& word :
             {std::string("a") + character, std::string("a") + character + "b"}) {
            EXPECT_EQ(kHost.Parse(Words{word}).ok(), is_taken) << code;
            EXPECT_EQ(kHost.Parse(Words{word}).data, is_taken ? DataOf(word) : Data{}) << code;
        }
    }
}

TEST(HostKindParse, ANameBeginsWithALetterOrDigit) {
    for (const char* word : {"-u", "-", ".a", ":a", "::1", "_a", "-4.pool.ntp.org"}) {
        EXPECT_FALSE(kHost.Parse(Words{word}).ok()) << word;
        EXPECT_EQ(kHost.Parse(Words{word}).data, Data{}) << word;
    }
}

TEST(HostKindParse, ANameHasAtMost253Characters) {
    std::string longest(253, 'x');
    longest[63] = longest[127] = longest[191] = '.';
    EXPECT_TRUE(kHost.Parse(Words{longest}).ok());
    EXPECT_EQ(kHost.Parse(Words{longest}).data, DataOf(longest));
    EXPECT_EQ(Problem(kHost, {std::string(254, 'x')}),
              "'" + std::string(40, 'x') +
                  "...' is too long; it has 254 of at most 253 characters; "
                  "give a host name or address such as 192.168.0.1, or none");
    EXPECT_FALSE(kHost.Parse(Words{std::string(5000, 'x')}).ok());
}

TEST(HostKindPrint, ShowsTheValueOfTheDevice) {
    EXPECT_EQ(kHost.Print(DataOf("192.168.0.1")), "192.168.0.1");
    EXPECT_EQ(kHost.Print(DataOf(std::string("a\0b", 3))), "a");
    EXPECT_EQ(kHost.Print(Data{}), "none");
    EXPECT_EQ(kHost.Print(DataOf("2>&1")), "2>&1");
    EXPECT_EQ(kHost.Print(DataOf("a\r\x1b[31m\xff")), "a\\x0d\\x1b[31m\\xff");
    EXPECT_EQ(kHost.Print(DataOf(std::string(512, 'x'))), std::string(512, 'x'));
}

TEST(HostKind, APrintedValueIsParsedToTheSameBytes) {
    for (const std::string& text :
         {std::string("192.168.0.1"), std::string("pool.ntp.org"), std::string("fe80::1"),
          std::string("A_b-c."), std::string(63, '9') + ".x", std::string()}) {
        const Data data = DataOf(text);
        EXPECT_EQ(kHost.Parse(Words{kHost.Print(data)}).data, data) << text;
        EXPECT_TRUE(kHost.Parse(Words{kHost.Print(data)}).ok()) << text;
    }
}

}  // namespace
