// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/identity/tool_locale.h"

#include <cstdlib>

#include <gmock/gmock.h>

namespace {

using velk::KeepsEscapes;
using velk::ToolLocale;

class ToolLocaleTest : public testing::Test {
  protected:
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }

  private:
    static void Clear() {
        for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
            unsetenv(variable);
        }
    }
};

TEST_F(ToolLocaleTest, IsCIfTheEnvironmentNamesNone) {
    EXPECT_EQ(ToolLocale(), "C");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(ToolLocale(), "C");
}

TEST_F(ToolLocaleTest, UsesLcAllThenLcCtypeThenLang) {
    setenv("LANG", "ja_JP.SJIS", 1);
    EXPECT_EQ(ToolLocale(), "ja_JP.SJIS");
    setenv("LC_CTYPE", "zh_CN.GBK", 1);
    EXPECT_EQ(ToolLocale(), "zh_CN.GBK");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(ToolLocale(), "C.UTF-8");
}

TEST_F(ToolLocaleTest, EscapesOfEveryTextAreKeptInCAndPosixAndUtf8) {
    for (const char* locale :
         {"C", "POSIX", "C.UTF-8", "C.utf8", "de_DE.UTF-8", "de_DE.Utf-8@euro"}) {
        EXPECT_TRUE(KeepsEscapes(locale, "caf\xe9/x")) << locale;
        EXPECT_TRUE(KeepsEscapes(locale, "\x83/e;#")) << locale;
    }
}

TEST_F(ToolLocaleTest, EscapesOfPlainTextOnlyAreKeptInAnyOtherLocale) {
    for (const char* locale : {"ja_JP.SJIS", "zh_CN.GBK", "zh_TW.BIG5", "zh_TW", "de_DE.ISO-8859-1",
                               "japanese", "UTF-8", "xx.UTF-16", "xx.UTF-8x", "xx@UTF-8"}) {
        EXPECT_TRUE(KeepsEscapes(locale, "O'Neil & Co/IT \x7f\x01")) << locale;
        EXPECT_FALSE(KeepsEscapes(locale, "\x80")) << locale;
        EXPECT_FALSE(KeepsEscapes(locale, "end\xff")) << locale;
    }
}

}  // namespace
