// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The environment that velkctl gives the device's tools.
#include "velkctl/call/environment.h"

#include <cstdlib>
#include <map>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using velkctl::FixEnvironment;
using velkctl::HasUtf8Locale;

using Variables = std::map<std::string, std::string>;

Variables Environment() {
    Variables variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string text = *entry;
        variables[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
    }
    return variables;
}

void Replace(const Variables& variables) {
    ASSERT_EQ(clearenv(), 0);
    for (const auto& [name, value] : variables) {
        ASSERT_EQ(setenv(name.c_str(), value.c_str(), 1), 0);
    }
}

class EnvironmentTest : public testing::Test {
  protected:
    ~EnvironmentTest() override { Replace(before_); }

  private:
    const Variables before_ = Environment();
};

constexpr char kPath[] = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

TEST_F(EnvironmentTest, HasOneLocaleAndOneSearchPath) {
    Replace({{"LC_ALL", "ja_JP.SJIS"}, {"PATH", "/tmp:/bin"}, {"TERM", "linux"}});
    FixEnvironment();
    EXPECT_EQ(Environment(), (Variables{{"LC_ALL", "C"}, {"PATH", kPath}, {"TERM", "linux"}}));
    Replace({});
    FixEnvironment();
    EXPECT_EQ(Environment(), (Variables{{"LC_ALL", "C"}, {"PATH", kPath}}));
}

TEST_F(EnvironmentTest, HasNothingThatShellsTakeCodeOrRulesFrom) {
    Replace({{"BASH_ENV", "/tmp/x"},
             {"ENV", "/tmp/x"},
             {"IFS", "/"},
             {"CDPATH", "/tmp"},
             {"GLOBIGNORE", "*"},
             {"SHELLOPTS", "xtrace"},
             {"BASHOPTS", "extdebug"},
             {"PS4", "$(id)"},
             {"LANGUAGE", "ja"},
             {"BASH_FUNC_cat%%", "() { id; }"},
             {"BASH_FUNC_rm()", "() { id; }"},
             {"sed", "() { id; }"},
             {"BASH", "/bin/bash"},
             {"ENVIRONMENT", "() no function"}});
    FixEnvironment();
    EXPECT_EQ(Environment(), (Variables{{"BASH", "/bin/bash"},
                                        {"ENVIRONMENT", "() no function"},
                                        {"LC_ALL", "C"},
                                        {"PATH", kPath}}));
}

TEST_F(EnvironmentTest, KeepsTheCallersPathForAdvice) {
    Replace({{"PATH", "/opt/bin:/bin"}});
    FixEnvironment();
    EXPECT_EQ(velkctl::CallersPath(), "/opt/bin:/bin");
}

TEST_F(EnvironmentTest, KnowsALocaleWithUtf8) {
    for (const char* locale :
         {"de_DE.UTF-8", "C.utf8", "C.UTF8", "en_US.utf-8", "de_DE.UTF-8@euro"}) {
        Replace({{"LANG", locale}});
        EXPECT_TRUE(HasUtf8Locale()) << locale;
    }
    for (const char* locale : {"", "C", "POSIX", "de_DE", "de_DE@euro", "de_DE.ISO-8859-1", "UTF-8",
                               "ja_JP.SJIS", "zh_CN.GBK", "x.UTF-16"}) {
        Replace({{"LANG", locale}});
        EXPECT_FALSE(HasUtf8Locale()) << locale;
    }
    Replace({});
    EXPECT_FALSE(HasUtf8Locale());
}

TEST_F(EnvironmentTest, TheLocaleOfCharactersCounts) {
    Replace({{"LC_ALL", "C"}, {"LC_CTYPE", "C.UTF-8"}, {"LANG", "C.UTF-8"}});
    EXPECT_FALSE(HasUtf8Locale());
    Replace({{"LC_ALL", ""}, {"LC_CTYPE", "C.UTF-8"}, {"LANG", "C"}});
    EXPECT_TRUE(HasUtf8Locale());
    Replace({{"LC_CTYPE", "C"}, {"LANG", "C.UTF-8"}});
    EXPECT_FALSE(HasUtf8Locale());
}

}  // namespace
