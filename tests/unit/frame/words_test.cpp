#include "frame/words.h"

#include <clocale>

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
