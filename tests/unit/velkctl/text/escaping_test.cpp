// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/text/escaping.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::HasControls;
using velkctl::Printable;
using velkctl::PrintableValue;
using velkctl::Quoted;
using velkctl::QuotedWhole;
using velkctl::UnprintedValue;

TEST(Printable, LeavesTextAlone) {
    EXPECT_EQ(Printable(""), "");
    EXPECT_EQ(Printable("a Z0~'\"%"), "a Z0~'\"%");
}

TEST(Quoted, CutsALongWordBetweenCharacters) {
    EXPECT_EQ(Quoted(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
    EXPECT_EQ(Quoted(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
    EXPECT_EQ(Quoted(std::string(39, 'x') + "\xc3\xa4\xc3\xa4"),
              "'" + std::string(39, 'x') + "...'");
}

TEST(QuotedWhole, CutsAWordLongerThanAnyValue) {
    EXPECT_EQ(QuotedWhole(std::string(512, 'x')), "'" + std::string(512, 'x') + "'");
    EXPECT_EQ(QuotedWhole(std::string(513, 'x')), "'" + std::string(512, 'x') + "...'");
}

TEST(Printable, LeavesTextInUtf8Alone) {
    for (const char* text : {"\xc2\xa0", "\xc3\xa4", "\xdf\xbf", "\xe0\xa0\x80", "\xe2\x82\xac",
                             "\xed\x9f\xbf", "\xee\x80\x80", "\xef\xbf\xbf", "\xf0\x90\x80\x80",
                             "\xf4\x8f\xbf\xbf", "caf\xc3\xa9 \xf0\x9f\x93\xb6!"}) {
        EXPECT_EQ(Printable(text), text);
    }
}

TEST(Printable, EscapesControlCharactersOfUtf8) {
    EXPECT_EQ(Printable("\xc2\x80"), "\\xc2\\x80");
    EXPECT_EQ(Printable("\xc2\x9b\x31m"), "\\xc2\\x9b1m");
    EXPECT_EQ(Printable("\xc2\x9f\xc2\xa0"), "\\xc2\\x9f\xc2\xa0");
}

TEST(Printable, EscapesCharactersThatChangeTheDirection) {
    EXPECT_EQ(Printable("a\xe2\x80\xae z"), "a\\xe2\\x80\\xae z");  // U+202E
    for (const char* text : {"\xd8\x9c", "\xe2\x80\x8e", "\xe2\x80\x8f", "\xe2\x80\xaa",
                             "\xe2\x80\xae", "\xe2\x81\xa6", "\xe2\x81\xa9"}) {
        EXPECT_EQ(Printable(text).substr(0, 2), "\\x") << Printable(text);
    }
}

TEST(Printable, EscapesInvisibleCharacters) {
    EXPECT_EQ(Printable("a\xe2\x80\x8b z"), "a\\xe2\\x80\\x8b z");  // U+200B
    for (const char* text :
         {"\xc2\xad", "\xcd\x8f", "\xe1\xa0\x8e", "\xe2\x80\x8b", "\xe2\x80\x8d", "\xe2\x80\xa8",
          "\xe2\x81\xa0", "\xe3\x85\xa4", "\xef\xb8\x8f", "\xef\xbb\xbf", "\xef\xbf\xbb",
          "\xf0\x9d\x85\xb3", "\xf3\xa0\x81\x81", "\xf3\xa0\xbf\xbf"}) {
        EXPECT_EQ(Printable(text).substr(0, 2), "\\x") << Printable(text);
    }
    for (const char* text : {"\xc2\xac", "\xc2\xae", "\xe2\x80\x8a", "\xe2\x80\x90", "\xe2\x80\xaf",
                             "\xe2\x81\xb0", "\xef\xbf\xbc", "\xf3\xb0\x80\x80"}) {
        EXPECT_EQ(Printable(text), text) << "next to one";
    }
}

class PrintableInAscii : public testing::Test {
  protected:
    PrintableInAscii() { velkctl::ShowUtf8(false); }
    ~PrintableInAscii() override { velkctl::ShowUtf8(true); }
};

// Their bytes would be others there: the second one of U+00DB begins a command on 8-bit terminals.
TEST_F(PrintableInAscii, EscapesEveryOtherCharacter) {
    EXPECT_EQ(Printable("caf\xc3\xa9 \xc3\x9b\x31m~"), "caf\\xc3\\xa9 \\xc3\\x9b1m~");
    EXPECT_EQ(PrintableValue("\xf0\x9f\x93\xb6"), "\\xf0\\x9f\\x93\\xb6");
    EXPECT_EQ(UnprintedValue(PrintableValue("caf\xc3\xa9 \\xc3")), "caf\xc3\xa9 \\xc3");
}

TEST(Printable, EscapesBytesThatAreNoUtf8) {
    EXPECT_EQ(Printable("\xc3"), "\\xc3");                             // cut off
    EXPECT_EQ(Printable("\xe2\x82"), "\\xe2\\x82");                    // cut off
    EXPECT_EQ(Printable("\xc3z"), "\\xc3z");                           // no second byte
    EXPECT_EQ(Printable("\xe2\x82\xc3\xa4"), "\\xe2\\x82\xc3\xa4");    // begins anew
    EXPECT_EQ(Printable("\xa4"), "\\xa4");                             // no first byte
    EXPECT_EQ(Printable("\xc0\xaf\xc1\xbf"), "\\xc0\\xaf\\xc1\\xbf");  // written too long
    EXPECT_EQ(Printable("\xe0\x9f\xbf"), "\\xe0\\x9f\\xbf");
    EXPECT_EQ(Printable("\xf0\x8f\xbf\xbf"), "\\xf0\\x8f\\xbf\\xbf");
    EXPECT_EQ(Printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");  // half of a pair of UTF-16
    EXPECT_EQ(Printable("\xed\xbf\xbf"), "\\xed\\xbf\\xbf");
    EXPECT_EQ(Printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // beyond the last one
    EXPECT_EQ(Printable("\xf8\x88\x80\x80\x80"), "\\xf8\\x88\\x80\\x80\\x80");
}

TEST(Printable, EscapesControlCharactersAndStrayBytes) {
    EXPECT_EQ(Printable(std::string("\0", 1)), "\\x00");
    EXPECT_EQ(Printable("\a\t\n\r\x1b"), "\\x07\\x09\\x0a\\x0d\\x1b");
    EXPECT_EQ(Printable("\x1f\x7f\x80\x9b\xff"), "\\x1f\\x7f\\x80\\x9b\\xff");
}

TEST(Printable, DoublesBackslashesSoThatEscapesAreUnmistakable) {
    EXPECT_EQ(Printable("\\x1b"), "\\\\x1b");
}

TEST(PrintableValue, WritesABackslashOnce) {
    EXPECT_EQ(PrintableValue("a\\b\\x1\\xg0\\"), "a\\b\\x1\\xg0\\");
    EXPECT_EQ(PrintableValue("\x1b\xc3\xa4\xff"), "\\x1b\xc3\xa4\\xff");
}

TEST(PrintableValue, EscapesABackslashThatLooksLikeAByte) {
    EXPECT_EQ(PrintableValue("\\x1b\\xFF"), "\\x5cx1b\\x5cxFF");
}

TEST(UnprintedValue, ReturnsEveryByte) {
    EXPECT_EQ(UnprintedValue("\\x41\\xfF\\x5cx41\\x4"), "A\xff\\x41\\x4");
    for (const std::string bytes : {"", "\\", "\\x5c", "\\\\x1b\x1b", "\xff\\xff", "caf\xc3\xa9"}) {
        EXPECT_EQ(UnprintedValue(PrintableValue(bytes)), bytes);
    }
}

TEST(HasControls, FindsThemAnywhere) {
    for (const char* text : {"\n", "a\n", "\tb", "a\x1b[m", "\x7f", "\x1f", "\xc2\x80", "a\xc2\x9f",
                             "\xc2\xc2\x85", "\xc2\xa0\xc2\x85"}) {
        EXPECT_TRUE(HasControls(text)) << Printable(text);
    }
    EXPECT_TRUE(HasControls(std::string("a\0b", 3)));
}

TEST(HasControls, TextHasNone) {
    for (const char* text :
         {"", " ", "a ~", "\xc2\xa0", "\xc3\x84\xe2\x82\xac", "\xc2", "\xff\x80"}) {
        EXPECT_FALSE(HasControls(text)) << Printable(text);
    }
}

TEST(Quoted, ShowsWhereAWordBeginsAndEnds) {
    EXPECT_EQ(Quoted(""), "''");
    EXPECT_EQ(Quoted(" eth0\n"), "' eth0\\x0a'");
}

}  // namespace
