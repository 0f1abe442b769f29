// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/coded_values.h"

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/words.h"
#include "unit/velkctl/settings/problem.h"
#include "velkctl/settings/kinds_of_settings.h"
#include <nlohmann/json.hpp>

namespace {

using testkit::Problem;
using testkit::Words;
using velkctl::CodedKind;
using velkctl::CodedValue;
using velkctl::Data;
using velkctl::kChannel;
using velkctl::kEncryption;
using velkctl::kLinkMode;
using velkctl::kOneToFour;
using velkctl::kOneToThree;
using velkctl::kServiceSet;
using velkctl::kStandardsEnabled;
using velkctl::kSwitch;
using velkctl::Parsed;

const std::string kDaemons = "the wireless daemon defines the meaning; see its manual; ";

Data DataOf(int code) {
    Data data{};
    data[0] = static_cast<char>(code);
    return data;
}

struct Spelling {
    const CodedKind& kind;
    std::string word;
    int code;
};

// Without this, a failing test would show the bytes of the record.
void PrintTo(const Spelling& spelling, std::ostream* out) {
    *out << spelling.word;
}

class CodedSpelling : public testing::TestWithParam<Spelling> {};

TEST_P(CodedSpelling, IsParsedToItsCodeAndPrintedAgain) {
    const Parsed parsed = GetParam().kind.Parse(Words{GetParam().word});
    EXPECT_EQ(parsed.problem, "");
    EXPECT_EQ(parsed.data, DataOf(GetParam().code));
    EXPECT_EQ(GetParam().kind.Print(DataOf(GetParam().code)), GetParam().word);
}

INSTANTIATE_TEST_SUITE_P(
    CodedKind, CodedSpelling,
    testing::Values(Spelling{kLinkMode, "auto", 1}, Spelling{kLinkMode, "100-full", 2},
                    Spelling{kLinkMode, "100-half", 3}, Spelling{kLinkMode, "10-full", 4},
                    Spelling{kLinkMode, "10-half", 5}, Spelling{kServiceSet, "infrastructure", 1},
                    Spelling{kServiceSet, "ad-hoc", 2}, Spelling{kEncryption, "1", 1},
                    Spelling{kEncryption, "wep", 2}, Spelling{kEncryption, "3", 3},
                    Spelling{kEncryption, "4", 4}, Spelling{kOneToThree, "1", 1},
                    Spelling{kOneToThree, "3", 3}, Spelling{kOneToFour, "1", 1},
                    Spelling{kOneToFour, "4", 4}, Spelling{kChannel, "1", 1},
                    Spelling{kChannel, "9", 9}, Spelling{kChannel, "10", 10},
                    Spelling{kChannel, "13", 13}, Spelling{kStandardsEnabled, "2", 2},
                    Spelling{kStandardsEnabled, "3", 3}));

TEST(CodedKindTest, TypeOfSwitchesChoicesAndNumbers) {
    EXPECT_EQ(kSwitch.Type(), "switch");
    EXPECT_EQ(kLinkMode.Type(), "choice");
    EXPECT_EQ(kEncryption.Type(), "choice");
    EXPECT_EQ(kChannel.Type(), "number");
}

TEST(CodedKindParse, TakesTheNumberOfANamedCodeIfSomeCodesHaveNoName) {
    EXPECT_EQ(kEncryption.Parse(Words{"2"}).data, DataOf(2));
    EXPECT_TRUE(kEncryption.Parse(Words{"2"}).ok());
}

TEST(CodedKindParse, RefusesNumbersIfAllCodesHaveNames) {
    EXPECT_EQ(Problem(kServiceSet, {"1"}), "'1' is not valid; give infrastructure or ad-hoc");
    EXPECT_EQ(Problem(kLinkMode, {"2"}),
              "'2' is not valid; give auto, 100-full, 100-half, 10-full or 10-half");
}

TEST(CodedKindParse, ListsTheValidValues) {
    EXPECT_EQ(Problem(kChannel, {"14"}), "'14' is not valid; give a number from 1 to 13");
    EXPECT_EQ(Problem(kOneToFour, {"wep"}),
              "'wep' is not valid; " + kDaemons + "give a number from 1 to 4");
    EXPECT_EQ(Problem(kOneToThree, {"4"}), "'4' is not valid; " + kDaemons + "give 1, 2 or 3");
    EXPECT_EQ(Problem(kStandardsEnabled, {"1"}), "'1' is not valid; " + kDaemons + "give 2 or 3");
    EXPECT_EQ(Problem(kEncryption, {"5"}),
              "'5' is not valid; the wireless daemon defines the meaning of 1, 3 and 4; see its "
              "manual; give 1, 2 (wep), 3 or 4");
}

TEST(CodedKindParse, SuggestsACorrectionOfAMisspeltName) {
    EXPECT_EQ(Problem(kLinkMode, {"100-ful"}), "'100-ful' is not valid; did you mean 100-full?");
    EXPECT_EQ(Problem(kServiceSet, {"AdHoc"}), "'AdHoc' is not valid; did you mean ad-hoc?");
}

TEST(CodedKind, DescribesTheMeaningOfItsNames) {
    const auto meanings = kServiceSet.Meanings();
    ASSERT_EQ(meanings.size(), 2U);
    EXPECT_EQ(meanings[1].value, "ad-hoc");
    EXPECT_EQ(meanings[1].words, "a network without one");
    EXPECT_EQ(kChannel.Meanings().size(), 0U);
    EXPECT_EQ(kEncryption.Meanings().size(), 0U);
}

TEST(CodedKindParse, TakesExactlyOneWord) {
    EXPECT_EQ(Problem(kChannel, {}), "no value given; give a number from 1 to 13");
    EXPECT_EQ(Problem(kStandardsEnabled, {"2", "3"}), "2 values given; give 2 or 3");
}

TEST(CodedKindParse, ShowsControlCharactersEscaped) {
    EXPECT_EQ(Problem(kStandardsEnabled, {"\x1b\n"}),
              "'\\x1b\\x0a' is not valid; " + kDaemons + "give 2 or 3");
}

TEST(CodedKindParse, TakesOneSpellingOnly) {
    for (const char* word : {"", " ", "0", "01", "+1", "-1", "1 ", " 1", "1.0", "0x1", "1\n", "257",
                             "one", "999999999999999999999"}) {
        EXPECT_FALSE(kChannel.Parse(Words{word}).ok()) << word;
        EXPECT_EQ(kChannel.Parse(Words{word}).data, Data{}) << word;
    }
    for (const char* word : {"", "Auto", "AUTO", "auto ", "100", "full", "100-ful", "100_full"}) {
        EXPECT_FALSE(kLinkMode.Parse(Words{word}).ok()) << word;
    }
    for (const char* word : {"", "WEP", "0", "2 (wep)"}) {
        EXPECT_FALSE(kEncryption.Parse(Words{word}).ok()) << word;
    }
}

TEST(CodedKindPrint, AnUnknownCodeIsItsNumber) {
    EXPECT_EQ(kLinkMode.Print(DataOf(0)), "0");
    EXPECT_EQ(kLinkMode.Print(DataOf(6)), "6");
    EXPECT_EQ(kChannel.Print(DataOf(14)), "14");
    EXPECT_EQ(kChannel.Print(DataOf(255)), "255");
}

TEST(CodedKind, HasOneJsonTypeForAllItsCodes) {
    EXPECT_EQ(kEncryption.ToJson(DataOf(2)).dump(), "\"wep\"");
    EXPECT_EQ(kEncryption.ToJson(DataOf(3)).dump(), "\"3\"");
    EXPECT_EQ(kEncryption.ToJson(DataOf(9)).dump(), "\"9\"");
    EXPECT_EQ(kLinkMode.ToJson(DataOf(0)).dump(), "\"0\"");
    EXPECT_EQ(kChannel.ToJson(DataOf(6)).dump(), "6");
    EXPECT_EQ(kChannel.ToJson(DataOf(255)).dump(), "255");
}

TEST(CodedKind, SaysThatTheDaemonDefinesItsCodes) {
    EXPECT_EQ(kEncryption.Coding(),
              "the wireless daemon defines the meaning of 1, 3 and 4; see its manual");
    EXPECT_EQ(kOneToFour.Coding(), "the wireless daemon defines the meaning; see its manual");
    EXPECT_EQ(kChannel.Coding(), "");
}

TEST(CodedKindPrint, TheFirstByteCounts) {
    Data data = DataOf(3);
    data[1] = 1;
    EXPECT_EQ(kChannel.Print(data), "3");
}

TEST(CodedKind, WorksWithAnyTable) {
    static constexpr std::array<CodedValue, 2> kTable{{{200, "on"}, {7}}};
    constexpr CodedKind kKind{kTable};
    EXPECT_EQ(kKind.Parse(Words{"on"}).data, DataOf(200));
    EXPECT_EQ(kKind.Print(DataOf(200)), "on");
    EXPECT_EQ(Problem(kKind, {"off"}), "'off' is not valid; give 200 (on) or 7");
}

}  // namespace
