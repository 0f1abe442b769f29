// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/text_values.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_of.h"
#include "support/words.h"
#include "unit/velkctl/settings/problem.h"
#include "velkctl/settings/kinds_of_settings.h"
#include <nlohmann/json.hpp>

namespace {

using testkit::DataOf;
using testkit::Problem;
using testkit::Words;
using velkctl::Data;
using velkctl::kPsk;
using velkctl::kShownText;
using velkctl::kSsid;
using velkctl::kWepKey;
using velkctl::Parsed;
using velkctl::TextKind;

// The lengths from 0 to 70 that a kind takes.
std::vector<size_t> LengthsTaken(const TextKind& kind) {
    std::vector<size_t> lengths;
    for (size_t length = 0; length <= 70; ++length) {
        if (kind.Parse(Words{std::string(length, 'a')}).ok()) {
            lengths.push_back(length);
        }
    }
    return lengths;
}

TEST(TextKindParse, TheBytesAreThoseOfTheText) {
    const std::string text = " my \"n\xc3\xa4t\" \\n \\xfg \xff";
    const Parsed parsed = kSsid.Parse(Words{text});
    EXPECT_EQ(parsed.problem, "");
    EXPECT_EQ(parsed.data, DataOf(text));
}

TEST(TextKindParse, TakesItsLengthsOnly) {
    EXPECT_EQ(LengthsTaken(kWepKey), (std::vector<size_t>{5, 10, 13, 26}));
    const std::vector<size_t> ssid = LengthsTaken(kSsid);
    EXPECT_EQ(ssid.size(), 33U);
    EXPECT_EQ(ssid.front(), 0U);
    EXPECT_EQ(ssid.back(), 32U);
    const std::vector<size_t> psk = LengthsTaken(kPsk);
    EXPECT_EQ(psk.size(), 64U);
    EXPECT_EQ(psk.front(), 1U);
    EXPECT_EQ(psk.back(), 64U);
}

TEST(TextKindParse, ReportsTheLengthAndTheValidOnes) {
    EXPECT_EQ(Problem(kSsid, {std::string(33, 'x')}),
              "33 bytes given; give a text of at most 32 bytes");
    EXPECT_EQ(Problem(kPsk, {std::string(65, 'x')}),
              "65 bytes given; give a text of 1 to 64 bytes, or none");
    EXPECT_EQ(Problem(kPsk, {""}), "0 bytes given; give a text of 1 to 64 bytes, or none");
    EXPECT_EQ(Problem(kWepKey, {"x"}),
              "1 byte given; give a text of 5 or 13 bytes, 10 or 26 hex digits, or none");
    EXPECT_EQ(Problem(kShownText, {std::string(512, 'x')}),
              "512 bytes given; give a text of at most 511 bytes");
}

TEST(TextKindParse, NamesTheCarriageReturnOfALine) {
    for (const TextKind* kind : {&kSsid, &kPsk, &kWepKey}) {
        EXPECT_TRUE(Problem(*kind, {"abcde\r"})
                        .starts_with("it ends with CR (carriage return), as in a CR LF file; give "
                                     "a text of "));
    }
}

TEST(TextKindParse, LengthsAreCountedInBytes) {
    std::string text;
    for (int i = 0; i < 17; ++i) {
        text += "\xc3\xa4";
    }
    EXPECT_EQ(Problem(kSsid, {text}), "34 bytes given; give a text of at most 32 bytes");
}

TEST(TextKindParse, TakesExactlyOneWord) {
    EXPECT_EQ(Problem(kSsid, {}), "no value given; give a text of at most 32 bytes");
    EXPECT_EQ(Problem(kSsid, {"my", "own", "net"}),
              "3 values given; give a text of at most 32 bytes, in quotes if it has blanks");
}

TEST(TextKindParse, RefusesControlCharacters) {
    for (const std::string text : {"abcd\n", "a\tbcd", "\x1b[31m", "abcd\x7f", "abc\xc2\x85"}) {
        EXPECT_EQ(Problem(kWepKey, {text}),
                  "control characters, such as the end of a line, are not taken; "
                  "give a text of 5 or 13 bytes, 10 or 26 hex digits, or none");
    }
    EXPECT_FALSE(kSsid.Parse(Words{std::string("a\0b", 3)}).ok());
}

TEST(TextKindParse, ARefusedTextLeavesTheDataZero) {
    EXPECT_EQ(kSsid.Parse(Words{"a\n"}).data, Data{});
    EXPECT_EQ(kPsk.Parse(Words{std::string(65, 'x')}).data, Data{});
}

TEST(TextKindParse, TheEmptyTextHasAWord) {
    for (const TextKind* kind : {&kPsk, &kWepKey}) {
        EXPECT_TRUE(kind->Parse(Words{"none"}).ok());
        EXPECT_EQ(kind->Parse(Words{"none"}).data, Data{});
    }
    EXPECT_TRUE(kSsid.Parse(Words{"''"}).ok());
    EXPECT_EQ(kSsid.Parse(Words{"''"}).data, Data{});
    EXPECT_TRUE(kSsid.Parse(Words{""}).ok());
}

TEST(TextKindParse, NoneIsRefusedWhereItWouldBeAText) {
    EXPECT_EQ(Problem(kSsid, {"none"}),
              "'none' would be a text here; give '' to clear the setting");
    EXPECT_EQ(kSsid.Parse(Words{"none"}).or_force, ", or --force to set that text");
    EXPECT_EQ(kSsid.Force(Words{"none"}).data, DataOf("none"));
    EXPECT_EQ(kSsid.Parse(Words{"None"}).data, DataOf("None"));
}

TEST(TextKind, SaysHowToClearATextIfNoneDoesNot) {
    ASSERT_EQ(kSsid.Meanings().size(), 1U);
    EXPECT_EQ(kSsid.Meanings()[0].value, "''");
    EXPECT_EQ(kPsk.Meanings().size(), 0U);
}

TEST(TextKindParse, AWordThatOnlyBeginsLikeTheEmptyOneIsAText) {
    EXPECT_EQ(kPsk.Parse(Words{"None"}).data, DataOf("None"));
    EXPECT_EQ(kWepKey.Parse(Words{"none1"}).data, DataOf("none1"));
}

TEST(TextKindPrint, EndsAtTheNul) {
    EXPECT_EQ(kShownText.Print(DataOf("0A1B2C3D4E5F")), "0A1B2C3D4E5F");
    EXPECT_EQ(kShownText.Print(DataOf(std::string("1.04\0rest", 9))), "1.04");
}

TEST(TextKindPrint, EndsAtTheEndOfTheDataAreaWithoutANul) {
    EXPECT_EQ(kShownText.Print(DataOf(std::string(512, 'x'))), std::string(512, 'x'));
}

TEST(TextKindPrint, TheEmptyTextHasAWord) {
    EXPECT_EQ(kShownText.Print(Data{}), "none");
    EXPECT_EQ(kPsk.Print(Data{}), "none");
    EXPECT_EQ(kSsid.Print(Data{}), "''");
}

TEST(TextKindPrint, EscapesBytesThatAreNoText) {
    EXPECT_EQ(kSsid.Print(DataOf("a\n\x1b[31m\xff\xc2\x9b")), "a\\x0a\\x1b[31m\\xff\\xc2\\x9b");
}

TEST(TextKind, APrintedTextIsParsedToTheSameBytes) {
    for (const std::string text :
         {"a", " a b ", "'\"$\\", "\\x", "\\\\n", "caf\xc3\xa9 \xf0\x9f\x93\xb6"}) {
        const Data data = DataOf(text);
        EXPECT_EQ(kSsid.Print(data), text);
        EXPECT_EQ(kSsid.Parse(Words{kSsid.Print(data)}).data, data);
    }
    EXPECT_EQ(kSsid.Parse(Words{kSsid.Print(Data{})}).data, Data{});
    EXPECT_EQ(kPsk.Parse(Words{kPsk.Print(Data{})}).data, Data{});
}

TEST(TextKind, BytesAndTextsThatLookLikeTheirEscapesDiffer) {
    EXPECT_EQ(kSsid.Print(DataOf("a\xff")), "a\\xff");
    EXPECT_EQ(kSsid.Print(DataOf("a\\xff")), "a\\x5cxff");
    EXPECT_EQ(kSsid.ToJson(DataOf("a\\xff")), "a\\x5cxff");
    for (const std::string text : {"a\xff", "a\\xff", "a\\x5cxff", "\\\\x1b", "\\x5\\x5c"}) {
        const Data data = DataOf(text);
        EXPECT_EQ(kSsid.Parse(Words{kSsid.Print(data)}).data, data) << kSsid.Print(data);
        EXPECT_EQ(kPsk.Parse(Words{kPsk.Print(data)}).data, data) << kPsk.Print(data);
    }
}

TEST(TextKindParse, AnEscapeIsCheckedAsItsByte) {
    EXPECT_EQ(kWepKey.Parse(Words{"abcd\\x65"}).data, DataOf("abcde"));
    EXPECT_EQ(
        Problem(kSsid, {"a\\x0a"}),
        "control characters, such as the end of a line, are not taken; give a text of at most "
        "32 bytes");
}

TEST(TextKindParse, TheMaskIsNoKeyUnlessForced) {
    EXPECT_EQ(Problem(kPsk, {"********"}),
              "this is the mask that is shown in place of a key; give a text of 1 to 64 bytes, or "
              "none");
    EXPECT_EQ(Problem(kWepKey, {"********"}),
              "this is the mask that is shown in place of a key; give a text of 5 or 13 bytes, 10 "
              "or 26 hex digits, or none");
    EXPECT_TRUE(kPsk.Parse(Words{"*******"}).ok());
    EXPECT_TRUE(kSsid.Parse(Words{"********"}).ok());
    EXPECT_EQ(kPsk.Force(Words{"********"}).data, DataOf("********"));
}

TEST(TextKindParse, ALongWepKeyIsOfHexDigits) {
    for (const std::string& key :
         {std::string("zzzzzzzzzz"), std::string(25, '0') + "g", std::string("012345678 ")}) {
        EXPECT_EQ(
            Problem(kWepKey, {key}),
            "a key of 10 or 26 bytes consists of hex digits; give a text of 5 or 13 bytes, 10 "
            "or 26 hex digits, or none");
    }
    EXPECT_TRUE(kWepKey.Parse(Words{"0123456789"}).ok());
    EXPECT_TRUE(kWepKey.Parse(Words{"abcdefABCDEF0123456789abcd"}).ok());
    EXPECT_TRUE(kWepKey.Parse(Words{"zzzzz"}).ok());
    EXPECT_TRUE(kWepKey.Parse(Words{"zzzzzzzzzzzzz"}).ok());
}

}  // namespace
