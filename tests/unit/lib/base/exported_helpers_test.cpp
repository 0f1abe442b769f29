// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "velk/frame.h"
#include "velk/ipconf.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::kCrontab;
using testkit::kCrontabCopy;
using testkit::Pass;
using testkit::ReadFile;
using testkit::WriteFile;

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

constexpr uint32_t kNowhere = 0xffffffff;

// The result of a search and the position after it.
struct Answer {
    bool found;
    uint32_t position;
    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << (answer.found ? "found at " : "not found, at ") << answer.position;
}

Answer SearchString(const std::string& line, const char* word, bool comment_flag) {
    uint32_t position = 77;
    const bool found = IsSearchString(line, word, position, comment_flag);
    return {found, position};
}

Answer SearchWord(const std::string& line, const char* word) {
    uint32_t position = 77;
    const bool found = IsSearchWord(line, word, position);
    return {found, position};
}

TEST(IsSearchString, FindsAKeywordAfterASemicolonAndABlank) {
    EXPECT_EQ(SearchString("if [ \"$interface\" = eth0 ]; then\n", "then", true),
              (Answer{true, 28}));
    EXPECT_EQ(SearchString("if [ \"$interface\" = eth0 ]; then\n", "if", true), (Answer{true, 0}));
}

TEST(IsSearchString, ACommentedCommandIsFoundOnlyWithoutTheFlag) {
    const std::string line = "#/usr/bin/ntpdate -b ntp\n";
    EXPECT_EQ(SearchString(line, "/usr/bin/ntpdate", true), (Answer{false, 1}));
    EXPECT_EQ(SearchString(line, "/usr/bin/ntpdate", false), (Answer{true, 1}));
}

TEST(IsSearchString, TheEndOfALongerWordIsNoWord) {
    EXPECT_EQ(SearchString("elif x\n", "if", true), (Answer{false, 2}));
    EXPECT_EQ(SearchString("elif x\n", "if", false), (Answer{false, 2}));
}

TEST(IsSearchString, TheNewlineEndsAWord) {
    EXPECT_EQ(SearchString("fi\n", "fi", true), (Answer{true, 0}));
    EXPECT_EQ(SearchString("fi\n", "fi", false), (Answer{true, 0}));
}

TEST(IsSearchString, AWordAtTheVeryEndIsOutOfRange) {
    for (const bool comment_flag : {true, false}) {
        uint32_t position = 77;
        try {
            (void)IsSearchString("x fi", "fi", position, comment_flag);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "basic_string::at");
        }
        EXPECT_EQ(position, 2U);
    }
    uint32_t position = 77;
    EXPECT_THROW((void)IsSearchString("fi", "fi", position, true), std::out_of_range);
}

TEST(IsSearchString, AWordBetweenACommaAndASemicolonIsAWord) {
    EXPECT_EQ(SearchString("request routers,ntp-servers;\n", "ntp-servers", true),
              (Answer{true, 16}));
    EXPECT_EQ(SearchString("request routers,ntp-servers;\n", "ntp-servers", false),
              (Answer{true, 16}));
}

TEST(IsSearchString, BlanksTabsAndCommasSeparateOnBothSides) {
    for (const char* line : {"a b c\n", "a\tb\tc\n", "a,b,c\n", "a b,c\n", "a\tb;c\n", "a b\n"}) {
        EXPECT_EQ(SearchString(line, "b", true), (Answer{true, 2})) << line;
    }
}

TEST(IsSearchString, OtherCharactersDoNotSeparate) {
    for (const char* line : {"a;b c\n", "a\rb c\n", "a\vb c\n", "a\"b c\n", "a=b c\n", "a\nb c\n",
                             "a b\r\n", "a b#\n", "a b.\n", "a b\"\n", "a b}\n", "a b\f\n"}) {
        EXPECT_EQ(SearchString(line, "b", false), (Answer{false, 2})) << line;
    }
}

TEST(IsSearchString, OnlyTheFirstPlaceIsLookedAt) {
    EXPECT_EQ(SearchString("eth0x eth0\n", "eth0", true), (Answer{false, 0}));
    EXPECT_EQ(SearchString("eth0x eth0\n", "eth0", false), (Answer{false, 0}));
}

TEST(IsSearchString, AHashInFrontOfRequestDoesNotHideIt) {
    EXPECT_EQ(SearchString("#request subnet-mask;\n", "request", false), (Answer{true, 1}));
    EXPECT_EQ(SearchString("  #request subnet-mask;\n", "request", false), (Answer{true, 3}));
    EXPECT_EQ(SearchString("##request subnet-mask;\n", "request", false), (Answer{true, 2}));
    EXPECT_EQ(SearchString("#request subnet-mask;\n", "request", true), (Answer{false, 1}));
}

TEST(IsSearchString, AHashFurtherLeftHidesAWordFromTheFlagAlone) {
    EXPECT_EQ(SearchString("a # b request x\n", "request", true), (Answer{false, 6}));
    EXPECT_EQ(SearchString("a # b request x\n", "request", false), (Answer{true, 6}));
}

TEST(IsSearchString, AHashAfterTheWordHidesNothing) {
    EXPECT_EQ(SearchString("request x # y\n", "request", true), (Answer{true, 0}));
}

TEST(IsSearchString, AWordThatBeginsWithAHashIsItsOwnComment) {
    EXPECT_EQ(SearchString("#x y\n", "#x", true), (Answer{false, 0}));
    EXPECT_EQ(SearchString("#x y\n", "#x", false), (Answer{true, 0}));
    EXPECT_EQ(SearchString("a #x y\n", "#x", true), (Answer{false, 2}));
}

TEST(IsSearchString, ANullWordLeavesThePositionAlone) {
    EXPECT_EQ(SearchString("fi\n", nullptr, true), (Answer{false, 77}));
    EXPECT_EQ(SearchString("", nullptr, false), (Answer{false, 77}));
}

TEST(IsSearchString, AnAbsentWordIsNowhere) {
    EXPECT_EQ(SearchString("then\n", "else", true), (Answer{false, kNowhere}));
    EXPECT_EQ(SearchString("", "else", false), (Answer{false, kNowhere}));
    EXPECT_EQ(SearchString("Then\n", "then", true), (Answer{false, kNowhere}));
}

TEST(IsSearchString, ANulByteIsACharacterOfTheLine) {
    const std::string line("a\0then x\n", 9);
    EXPECT_EQ(SearchString(line, "then", false), (Answer{false, 2}));
    EXPECT_EQ(SearchString(std::string("then\0x\n", 7), "then", false), (Answer{false, 0}));
    EXPECT_EQ(SearchString(std::string("a\0 then\n", 8), "then", false), (Answer{true, 3}));
}

TEST(IsSearchWord, FindsAWordInsideALongerOne) {
    EXPECT_EQ(SearchWord("printdhc", "tdhc"), (Answer{true, 4}));
    EXPECT_EQ(SearchWord("xxethxyy", "eth"), (Answer{true, 2}));
}

TEST(IsSearchWord, FindsAWordAtTheStartAndAtTheVeryEnd) {
    EXPECT_EQ(SearchWord("fi", "fi"), (Answer{true, 0}));
    EXPECT_EQ(SearchWord("x fi", "fi"), (Answer{true, 2}));
    EXPECT_EQ(SearchWord("fi\n", "fi"), (Answer{true, 0}));
}

TEST(IsSearchWord, AHashInFrontHidesTheWord) {
    EXPECT_EQ(SearchWord("# fi\n", "fi"), (Answer{false, 2}));
    EXPECT_EQ(SearchWord("#fi\n", "fi"), (Answer{false, 1}));
    EXPECT_EQ(SearchWord("a#b fi\n", "fi"), (Answer{false, 4}));
}

TEST(IsSearchWord, AHashAfterTheWordHidesNothing) {
    EXPECT_EQ(SearchWord("fi # x\n", "fi"), (Answer{true, 0}));
    EXPECT_EQ(SearchWord("fi#\n", "fi"), (Answer{true, 0}));
    EXPECT_EQ(SearchWord("fi # fi\n", "fi"), (Answer{true, 0}));
}

TEST(IsSearchWord, AWordThatBeginsWithTheFirstHashIsFound) {
    EXPECT_EQ(SearchWord("#x\n", "#x"), (Answer{true, 0}));
    EXPECT_EQ(SearchWord("a #x\n", "#x"), (Answer{true, 2}));
    EXPECT_EQ(SearchWord("a # #x\n", "#x"), (Answer{false, 4}));
}

TEST(IsSearchWord, ANullWordLeavesThePositionAlone) {
    EXPECT_EQ(SearchWord("fi\n", nullptr), (Answer{false, 77}));
}

TEST(IsSearchWord, AnAbsentWordIsNowhere) {
    EXPECT_EQ(SearchWord("then\n", "else"), (Answer{false, kNowhere}));
    EXPECT_EQ(SearchWord("", "else"), (Answer{false, kNowhere}));
}

TEST(IsSearchWord, TheEmptyWordIsFoundAtTheStart) {
    EXPECT_EQ(SearchWord("", ""), (Answer{true, 0}));
    EXPECT_EQ(SearchWord("#", ""), (Answer{true, 0}));
}

class FileCopyAndDeleteTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        (void)!system("rm -f /var/cron/tabs/root");
        DeviceTest::TearDown();
    }
};

TEST_F(FileCopyAndDeleteTest, RunsTheTwoLines) {
    WriteFile(kCrontabCopy, "new\n");
    EXPECT_EQ(FileCopyAndDelete(kCrontabCopy, kCrontab), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("cat /var/tmp/root > /var/cron/tabs/root", "rm /var/tmp/root"));
    EXPECT_EQ(ReadFile(kCrontab), "new\n");
    EXPECT_FALSE(testkit::Exists(kCrontabCopy));
}

TEST_F(FileCopyAndDeleteTest, KeepsTheTargetsInodeAndMode) {
    WriteFile(kCrontab, "old, and longer than the new text\n");
    chmod(kCrontab, 0640);
    struct stat before {};
    stat(kCrontab, &before);
    WriteFile(kCrontabCopy, "new\n");
    EXPECT_EQ(FileCopyAndDelete(kCrontabCopy, kCrontab), 0);
    struct stat after {};
    stat(kCrontab, &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(ReadFile(kCrontab), "new\n");
}

TEST_F(FileCopyAndDeleteTest, AMissingSourceLeavesTheTargetEmpty) {
    WriteFile(kCrontab, "old\n");
    EXPECT_EQ(FileCopyAndDelete("/var/tmp/missing", kCrontab), 0);
    EXPECT_EQ(ReadFile(kCrontab), "");
}

TEST_F(FileCopyAndDeleteTest, AFailedCopyIsNotSeen) {
    WriteFile(kCrontabCopy, "new\n");
    libc().Script(Call::kSystem, {Fail(ENOMEM), Pass()});
    EXPECT_EQ(FileCopyAndDelete(kCrontabCopy, kCrontab), 0);
    EXPECT_FALSE(testkit::Exists(kCrontabCopy));
}

TEST_F(FileCopyAndDeleteTest, GivesTheResultOfTheRemoval) {
    WriteFile(kCrontabCopy, "new\n");
    libc().Script(Call::kSystem, {Pass(), Fail(ENOMEM)});
    EXPECT_EQ(FileCopyAndDelete(kCrontabCopy, kCrontab), -1);
    EXPECT_EQ(ReadFile(kCrontab), "new\n");
    EXPECT_TRUE(testkit::Exists(kCrontabCopy));
}

TEST_F(FileCopyAndDeleteTest, PathsThatDoNotFitAreRefusedAndNothingIsRemoved) {
    const std::string source = "/var/tmp/" + std::string(120, 's');
    WriteFile(source, "edit");
    const std::string target = "/var/tmp/" + std::string(120, 't');
    EXPECT_EQ(FileCopyAndDelete(source, target), LIB_VELK_INVALID_PARAMETER);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_EQ(ReadFile(source), "edit");
}

}  // namespace
