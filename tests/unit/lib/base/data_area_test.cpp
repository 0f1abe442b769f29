#include "lib/base/data_area.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velk::FieldText;
using velk::PutFieldText;

TEST(FieldText, EndsAtTheNul) {
    const char field[8] = "ab";
    EXPECT_EQ(FieldText(field), "ab");
}

TEST(FieldText, EndsAtTheFieldWhenThereIsNoNul) {
    struct {
        char field[4] = {'a', 'b', 'c', 'd'};
        char behind[4] = {'x', 'x', 'x', 'x'};
    } record;
    EXPECT_EQ(FieldText(record.field), "abcd");
}

TEST(FieldText, IsEmptyInAnEmptyField) {
    const char field[4] = {};
    EXPECT_EQ(FieldText(field), "");
}

TEST(PutFieldText, EndsTheTextWithANul) {
    char field[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
    PutFieldText(field, "ab");
    EXPECT_EQ(std::string(field, 6), std::string("ab\0xxx", 6));
}

TEST(PutFieldText, CutsTheTextSoThatANulFits) {
    char field[4] = {'x', 'x', 'x', 'x'};
    PutFieldText(field, "abcdef");
    EXPECT_EQ(std::string(field, 4), std::string("abc\0", 4));
}

}  // namespace
