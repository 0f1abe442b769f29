#include "frame/words.h"

#include <gtest/gtest.h>

namespace {

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

TEST(TakeWord, HasNoWordsInNothing) {
    std::string_view text;
    EXPECT_EQ(TakeWord(text), "");
    text = "   ";
    EXPECT_EQ(TakeWord(text), "");
}

}  // namespace
