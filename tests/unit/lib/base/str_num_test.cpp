#include <gtest/gtest.h>

#include "velk.h"

namespace {

TEST(IsStrNum, ANullPointerAndTheEmptyTextCount) {
    EXPECT_EQ(isStrNum(nullptr), 1U);
    EXPECT_EQ(isStrNum(""), 1U);
}

TEST(IsStrNum, OnlyDigitsCount) {
    EXPECT_EQ(isStrNum("007"), 1U);
    EXPECT_EQ(isStrNum("0123456789"), 1U);
    EXPECT_EQ(isStrNum("12a"), 0U);
    EXPECT_EQ(isStrNum("a12"), 0U);
    EXPECT_EQ(isStrNum("-1"), 0U);
    EXPECT_EQ(isStrNum("+1"), 0U);
    EXPECT_EQ(isStrNum("1 "), 0U);
    EXPECT_EQ(isStrNum("1.5"), 0U);
}

TEST(IsStrNum, TheCharactersBesideTheDigitsDoNotCount) {
    EXPECT_EQ(isStrNum("/"), 0U);
    EXPECT_EQ(isStrNum(":"), 0U);
    EXPECT_EQ(isStrNum("\xB2"), 0U);  // superscript two in Latin-1
}

}  // namespace
