// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/words.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace {

using velk::FindWord;
using velk::HasWord;
using velk::IsLetter;
using velk::TakeWord;

TEST(TakeWord, CutsWordsOneByOne) {
    std::string_view text = "nameserver 192.168.0.1 rest";
    EXPECT_EQ(TakeWord(text), "nameserver");
    EXPECT_EQ(TakeWord(text), "192.168.0.1");
    EXPECT_EQ(TakeWord(text), "rest");
    EXPECT_EQ(TakeWord(text), "");
    EXPECT_EQ(TakeWord(text), "");
}

TEST(TakeWord, SkipsEveryKindOfWhiteSpace) {
    std::string_view text = " \t\n\v\f\rword\r\n";
    EXPECT_EQ(TakeWord(text), "word");
    EXPECT_EQ(TakeWord(text), "");
}

TEST(TakeWord, EveryOtherByteBelongsToAWord) {
    const std::string_view ends(" \t\n\v\f\r\0", 7);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string line = std::string("x") + static_cast<char>(byte) + "y";
        std::string_view text = line;
        const bool is_end = ends.find(static_cast<char>(byte)) != std::string_view::npos;
        EXPECT_EQ(TakeWord(text), is_end ? "x" : line) << "byte " << byte;
        std::string_view rest = std::string_view(line).substr(1);
        const bool is_skipped = is_end && byte != 0;
        EXPECT_EQ(TakeWord(rest), is_skipped ? "y" : is_end ? "" : line.substr(1)) << byte;
    }
}

TEST(TakeWord, OtherBlanksBelongToAWord) {
    std::string_view text = "a\xC2\xA0z \x85";  // a no-break space in UTF-8, a next-line in Latin-1
    EXPECT_EQ(TakeWord(text), "a\xC2\xA0z");
    EXPECT_EQ(TakeWord(text), "\x85");
}

TEST(Contains, FindsATextAnywhere) {
    EXPECT_TRUE(velk::Contains("Link detected: yes", "detected"));
    EXPECT_TRUE(velk::Contains("x", ""));
    EXPECT_FALSE(velk::Contains("Link detected: yes", "Detected"));
    EXPECT_FALSE(velk::Contains("", "x"));
}

TEST(TakeWord, StopsAtANul) {
    std::string_view text("one\0two three", 13);
    EXPECT_EQ(TakeWord(text), "one");
    EXPECT_EQ(TakeWord(text), "") << "nothing lies behind the end of a C text";
}

TEST(TakeWord, FindsNoWordInAnEmptyOrBlankText) {
    std::string_view text;
    EXPECT_EQ(TakeWord(text), "");
    text = "   ";
    EXPECT_EQ(TakeWord(text), "");
}

// Returns the position of the word, -1 if it is nowhere a word.
long Place(std::string_view line, std::string_view word, bool comment_aware = true) {
    size_t position = 77;
    return FindWord(line, word, comment_aware, position) ? static_cast<long>(position) : -1;
}

TEST(FindWord, FindsAWordAtTheStartOfTheLine) {
    EXPECT_EQ(Place("fi\n", "fi"), 0);
    EXPECT_EQ(Place("then\n", "then"), 0);
    EXPECT_EQ(Place("request subnet-mask;\n", "request"), 0);
}

TEST(FindWord, ABlankATabACommaOrAHashMayPrecedeAWord) {
    EXPECT_EQ(Place("x fi\n", "fi"), 2);
    EXPECT_EQ(Place("x\tfi\n", "fi"), 2);
    EXPECT_EQ(Place("x,fi\n", "fi"), 2);
    EXPECT_EQ(Place("x#fi\n", "fi", /*comment_aware=*/false), 2);
}

TEST(FindWord, NothingElseMayPrecedeAWord) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool may = c == ' ' || c == '\t' || c == ',' || c == '#';
        const std::string line = std::string("x") + c + "then\n";
        EXPECT_EQ(HasWord(line, "then", /*comment_aware=*/false), may) << "byte " << byte;
    }
}

TEST(FindWord, ABlankATabANewlineASemicolonOrACommaMayFollowAWord) {
    EXPECT_EQ(Place("fi x\n", "fi"), 0);
    EXPECT_EQ(Place("fi\tx\n", "fi"), 0);
    EXPECT_EQ(Place("fi\n", "fi"), 0);
    EXPECT_EQ(Place("fi;\n", "fi"), 0);
    EXPECT_EQ(Place("fi,x\n", "fi"), 0);
}

TEST(FindWord, NothingElseMayFollowAWord) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool may = c == ' ' || c == '\t' || c == '\n' || c == ';' || c == ',';
        const std::string line = std::string("then") + c + "x\n";
        EXPECT_EQ(HasWord(line, "then", /*comment_aware=*/false), may) << "byte " << byte;
    }
}

TEST(FindWord, ACarriageReturnIsNoSeparator) {
    EXPECT_EQ(Place("fi\r\n", "fi"), -1);
}

TEST(FindWord, OnlyTheFirstPlaceIsLookedAt) {
    EXPECT_EQ(Place("eth0x eth0\n", "eth0"), -1);
    EXPECT_EQ(Place("veth0 eth0\n", "eth0"), -1);
    EXPECT_EQ(Place("elif x; if y\n", "if"), -1);
    EXPECT_EQ(Place("eth0 eth0x\n", "eth0"), 0);
    EXPECT_EQ(Place("ifconfig eth0 up; fi\n", "fi"), -1) << "the first one lies in ifconfig";
}

TEST(FindWord, SetsThePositionEvenIfTheTextIsNoWord) {
    size_t position = 77;
    EXPECT_FALSE(FindWord("elif x\n", "if", /*comment_aware=*/true, position));
    EXPECT_EQ(position, 2U);
    EXPECT_FALSE(FindWord("a # if x\n", "if", /*comment_aware=*/true, position));
    EXPECT_EQ(position, 4U);
    EXPECT_FALSE(FindWord("ifs\n", "if", /*comment_aware=*/true, position));
    EXPECT_EQ(position, 0U);
}

TEST(FindWord, AnAbsentWordHasNoPlace) {
    size_t position = 77;
    EXPECT_FALSE(FindWord("then\n", "else", /*comment_aware=*/true, position));
    EXPECT_EQ(position, std::string_view::npos);
    EXPECT_FALSE(FindWord("", "else", /*comment_aware=*/true, position));
    EXPECT_EQ(position, std::string_view::npos);
    EXPECT_FALSE(FindWord("els", "else", /*comment_aware=*/true, position));
    EXPECT_EQ(position, std::string_view::npos);
}

TEST(FindWord, AWordAfterAHashCountsOnlyIfCommentsCount) {
    EXPECT_EQ(Place("# then\n", "then", /*comment_aware=*/true), -1);
    EXPECT_EQ(Place("# then\n", "then", /*comment_aware=*/false), 2);
    EXPECT_EQ(Place("#then\n", "then", /*comment_aware=*/true), -1);
    EXPECT_EQ(Place("#then\n", "then", /*comment_aware=*/false), 1);
    EXPECT_EQ(Place("a#b then\n", "then", /*comment_aware=*/true), -1);
    EXPECT_EQ(Place("a#b then\n", "then", /*comment_aware=*/false), 4);
}

TEST(FindWord, AHashAfterTheWordDoesNotMatter) {
    EXPECT_EQ(Place("then # x\n", "then", /*comment_aware=*/true), 0);
    EXPECT_EQ(Place("then # then\n", "then", /*comment_aware=*/true), 0);
    EXPECT_EQ(Place("then# x\n", "then", /*comment_aware=*/true), -1);
}

TEST(FindWord, AWordThatBeginsWithAHashLiesInItsOwnComment) {
    EXPECT_EQ(Place("#off x\n", "#off", /*comment_aware=*/true), -1);
    EXPECT_EQ(Place("#off x\n", "#off", /*comment_aware=*/false), 0);
}

TEST(FindWord, TheEndOfTheTextIsNoSeparator) {
    for (const char* line : {"fi", "x fi", "x,fi"}) {
        try {
            (void)HasWord(line, "fi", /*comment_aware=*/true);
            ADD_FAILURE() << line;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "basic_string::at");
        }
    }
}

TEST(FindWord, TheOtherTestsAreMadeBeforeTheEndOfTheTextIsChecked) {
    EXPECT_FALSE(HasWord("elif", "if", /*comment_aware=*/true));
    EXPECT_FALSE(HasWord("#fi", "fi", /*comment_aware=*/true));
    EXPECT_THROW((void)HasWord("#fi", "fi", /*comment_aware=*/false), std::out_of_range);
}

TEST(FindWord, TheEmptyWordIsFoundBeforeASeparator) {
    EXPECT_EQ(Place("\n", ""), 0);
    EXPECT_EQ(Place(" x\n", ""), 0);
    EXPECT_EQ(Place("x\n", ""), -1);
    EXPECT_THROW((void)HasWord("", "", /*comment_aware=*/true), std::out_of_range);
}

TEST(IsLetter, KnowsTheLettersOfAsciiAndNoOthers) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        EXPECT_EQ(IsLetter(c), letters.find(c) != std::string::npos) << "byte " << byte;
    }
}

}  // namespace
