// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// JSON texts and the places of their errors.
#include "velkctl/documents/json_text.h"

#include <string>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velkctl::MemberPointer;
using velkctl::ReadJsonText;

// "LINE:COLUMN" of the error, or the value.
std::string Read(const std::string& text) {
    const velkctl::JsonText read = ReadJsonText(text);
    return read.error ? std::to_string(read.error->line) + ":" + std::to_string(read.error->column)
                      : read.value->dump();
}

TEST(JsonText, IsReadAsItsValue) {
    EXPECT_EQ(Read(R"({"b": [1, -2, 1.5, null, true, "x"], "a": {}})"),
              R"({"b":[1,-2,1.5,null,true,"x"],"a":{}})");
    EXPECT_EQ(Read("3"), "3");
    EXPECT_EQ(Read(" [] \n"), "[]");
}

TEST(JsonText, HasThePlaceOfItsError) {
    EXPECT_EQ(Read(""), "1:1");
    EXPECT_EQ(Read("{"), "1:2");
    EXPECT_EQ(Read("x"), "1:1");
    EXPECT_EQ(Read("{\n  \"a\": tru,\n}"), "2:11");
    EXPECT_EQ(Read("{\n  \"a\": 1,\n}"), "3:1");
    EXPECT_EQ(Read("[1] 2"), "1:5");
    EXPECT_EQ(Read("[\"\xC3\xA4\xC3\xB6\" x]"), "1:7") << "a character of two bytes is one column";
    EXPECT_EQ(Read("[\n1e999\n]"), "2:5") << "a number that is too large";
    EXPECT_EQ(Read("[\"\xFF\"]"), "1:3") << "not UTF-8";
}

TEST(JsonText, ReportsMembersThatOccurTwiceAndKeepsTheFirst) {
    const velkctl::JsonText read = ReadJsonText(
        R"({"a": 1, "b": {"x/y": 1, "x/y": [2, {"z": 1}], "~": {"x": 1, "x": 2}}, "a": 3})");
    EXPECT_EQ(read.value->dump(), R"({"a":1,"b":{"x/y":1,"~":{"x":1}}})");
    EXPECT_THAT(read.doubled, ElementsAre("/b/x~1y", "/a"));
    EXPECT_THAT(ReadJsonText(R"([{"a": 1, "a": 2}])").doubled, IsEmpty());
}

TEST(JsonText, MayBeNestedAsDeepAsItIsLong) {
    const std::string opened(30000, '[');
    EXPECT_EQ(Read(opened), "1:30001");
    EXPECT_EQ(Read(opened + std::string(30000, ']')), "[[[[[[[[]]]]]]]]");
    EXPECT_EQ(Read("[1,[2,[3,[4,[5,[6,[7,[8,[9]]]]]]]]]"), "[1,[2,[3,[4,[5,[6,[7,[]]]]]]]]");
}

TEST(MemberPointer, EscapesTheTwoCharactersThatSeparate) {
    EXPECT_EQ(MemberPointer("", "settings"), "/settings");
    EXPECT_EQ(MemberPointer("/settings", "a/b~c"), "/settings/a~1b~0c");
}

}  // namespace
