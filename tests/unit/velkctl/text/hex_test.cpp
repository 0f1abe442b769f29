// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/text/hex.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "support/data_of.h"

namespace {

using testkit::DataOf;
using velkctl::Data;
using velkctl::Dump;
using velkctl::Parsed;
using velkctl::ParseHex;

std::string Repeat(const std::string& text, int times) {
    std::string repeated;
    for (int i = 0; i < times; ++i) {
        repeated += text;
    }
    return repeated;
}

TEST(ParseHex, ReadsPairsOfDigits) {
    const Parsed parsed = ParseHex("31302e");
    EXPECT_EQ(parsed.problem, "");
    EXPECT_EQ(parsed.data, DataOf("10."));
}

TEST(ParseHex, AllowsBlanksTabsAndColonsBetweenBytes) {
    EXPECT_EQ(ParseHex("31 30:2e\t31").data, DataOf("10.1"));
    EXPECT_EQ(ParseHex("  31: :30 ").data, DataOf("10"));
    EXPECT_TRUE(ParseHex("  31: :30 ").ok());
}

TEST(ParseHex, TakesSmallAndCapitalDigits) {
    EXPECT_EQ(ParseHex("abcdefABCDEF").data, DataOf("\xab\xcd\xef\xab\xcd\xef"));
    EXPECT_EQ(ParseHex("0123456789").data, DataOf("\x01\x23\x45\x67\x89"));
}

TEST(ParseHex, ZeroBytesKeepTheirPlace) {
    EXPECT_EQ(ParseHex("00 41 00 42").data, DataOf(std::string("\0A\0B", 4)));
}

TEST(ParseHex, ATextWithoutDigitsHasNoBytes) {
    EXPECT_TRUE(ParseHex("").ok());
    EXPECT_EQ(ParseHex("").data, Data{});
    EXPECT_TRUE(ParseHex(" : ").ok());
}

TEST(ParseHex, ADigitAloneIsNoByte) {
    EXPECT_EQ(ParseHex("313").problem,
              "odd number of hex digits at character 3; give two hex digits for each byte, such as "
              "31:30");
    EXPECT_EQ(ParseHex("3 1").problem,
              "odd number of hex digits at character 1; give two hex digits for each byte, such as "
              "31:30");
    EXPECT_EQ(ParseHex("31:a").problem,
              "odd number of hex digits at character 4; give two hex digits for each byte, such as "
              "31:30");
}

TEST(ParseHex, HasThePositionOfAWrongDigit) {
    EXPECT_EQ(ParseHex("0x31").problem,
              "character 2 is not a hex digit; "
              "give two hex digits for each byte, such as 31:30");
    EXPECT_EQ(ParseHex("g1").problem,
              "character 1 is not a hex digit; "
              "give two hex digits for each byte, such as 31:30");
    EXPECT_EQ(ParseHex("31-30").problem,
              "character 3 is not a hex digit; "
              "give two hex digits for each byte, such as 31:30");
    EXPECT_EQ(ParseHex("31\n").problem,
              "character 3 is not a hex digit; "
              "give two hex digits for each byte, such as 31:30");
}

TEST(ParseHex, CharactersNextToTheDigitsAreRefused) {
    for (const char* text : {"1/", "1;", "1@", "1G", "1`", "1g"}) {
        EXPECT_FALSE(ParseHex(text).ok()) << text;
    }
}

TEST(ParseHex, FiveHundredAndTwelveBytesFillTheDataArea) {
    const Parsed parsed = ParseHex(Repeat("41", 512));
    EXPECT_TRUE(parsed.ok());
    EXPECT_EQ(parsed.data, DataOf(std::string(512, 'A')));
}

TEST(ParseHex, FiveHundredAndThirteenBytesAreRefused) {
    EXPECT_EQ(ParseHex(Repeat("41:", 513)).problem, "more than 512 bytes; give at most 512");
    EXPECT_EQ(ParseHex(Repeat("00", 513)).problem, "more than 512 bytes; give at most 512");
}

TEST(Dump, AllZeroBytesPrintNothing) {
    EXPECT_EQ(Dump(Data{}), "");
}

TEST(Dump, AShortLineKeepsItsColumns) {
    EXPECT_EQ(Dump(DataOf("a")),
              "00000000  61                                                |a|\n"
              "00000001\n");
    EXPECT_EQ(Dump(DataOf("abcdefgh")),
              "00000000  61 62 63 64 65 66 67 68                           |abcdefgh|\n"
              "00000008\n");
    EXPECT_EQ(Dump(DataOf("abcdefghi")),
              "00000000  61 62 63 64 65 66 67 68  69                       |abcdefghi|\n"
              "00000009\n");
}

TEST(Dump, AFullLineIsFollowedByItsLengthOnly) {
    EXPECT_EQ(Dump(DataOf("0123456789abcdef")),
              "00000000  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
              "00000010\n");
}

TEST(Dump, TheSeventeenthByteBeginsALine) {
    EXPECT_EQ(Dump(DataOf("0123456789abcdefX")),
              "00000000  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
              "00000010  58                                                |X|\n"
              "00000011\n");
}

TEST(Dump, ZerosBeforeTheLastByteAreShown) {
    EXPECT_EQ(Dump(DataOf(std::string("\0\0A", 3))),
              "00000000  00 00 41                                          |..A|\n"
              "00000003\n");
}

TEST(Dump, BytesThatAreNoTextAreDots) {
    EXPECT_EQ(Dump(DataOf("\x1f ~\x7f\x80\xff")),
              "00000000  1f 20 7e 7f 80 ff                                 |. ~...|\n"
              "00000006\n");
}

TEST(Dump, TheLastByteOfTheAreaIsShown) {
    Data data{};
    data.back() = '!';
    const std::string dump = Dump(data);
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 33);
    EXPECT_TRUE(dump.ends_with(
        "000001f0  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 21  |...............!|\n"
        "00000200\n"))
        << dump;
}

}  // namespace
