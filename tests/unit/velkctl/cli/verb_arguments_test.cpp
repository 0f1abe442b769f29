// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/cli/verb_arguments.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>

#include "support/words.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Words;
using velkctl::Arguments;
using velkctl::Verb;

const Verb& VerbOf(std::string_view name) {
    return *std::ranges::find(velkctl::Verbs(), name, &Verb::name);
}

Arguments Read(std::string_view verb, const Words& words) {
    return velkctl::ReadArguments(VerbOf(verb), words);
}

TEST(Arguments, AreOptionsAndWordsInAnyOrder) {
    const Arguments read =
        Read("call", {"--show-secrets", "set", "--text", "10.0.0.1", "108", "--json", "eth0"});
    EXPECT_EQ(read.problem, "");
    EXPECT_THAT(read.unknown, IsEmpty());
    EXPECT_EQ(read.invocation.text, "10.0.0.1");
    EXPECT_EQ(read.invocation.hex, std::nullopt);
    EXPECT_TRUE(read.invocation.show_secrets);
    EXPECT_TRUE(read.invocation.json);
    EXPECT_FALSE(read.invocation.help);
    EXPECT_THAT(read.invocation.words, ElementsAre("set", "108", "eth0"));
}

TEST(Arguments, AreTakenInAnyOrderInAPosixEnvironmentToo) {
    ASSERT_EQ(setenv("POSIXLY_CORRECT", "1", 1), 0);
    const Arguments read = Read("get", {"eth0.dns", "--value", "ntp"});
    ASSERT_EQ(unsetenv("POSIXLY_CORRECT"), 0);
    EXPECT_TRUE(read.invocation.bare_value);
    EXPECT_THAT(read.invocation.words, ElementsAre("eth0.dns", "ntp"));
}

TEST(Arguments, AreWordsAfterTwoDashes) {
    const Arguments read = Read("set", {"--force", "--", "location", "--json", "--", "-hello"});
    EXPECT_EQ(read.problem, "");
    EXPECT_THAT(read.unknown, IsEmpty());
    EXPECT_TRUE(read.invocation.force);
    EXPECT_FALSE(read.invocation.json);
    EXPECT_THAT(read.invocation.words, ElementsAre("location", "--json", "--", "-hello"));
    EXPECT_THAT(Read("call", {"--", "set", "108", "--text="}).invocation.words,
                ElementsAre("set", "108", "--text="));
    EXPECT_THAT(Read("get", {"--"}).invocation.words, IsEmpty());
}

TEST(Arguments, AreWordsIfADigitFollowsTheDash) {
    const Arguments read = Read("set", {"ntp", "-5", "-52", "-5x", "-", ""});
    EXPECT_THAT(read.unknown, IsEmpty());
    EXPECT_THAT(read.invocation.words, ElementsAre("ntp", "-5", "-52", "-5x", "-", ""));
}

TEST(Arguments, AreUnknownIfAnOptionIsAbbreviated) {
    for (const char* word : {"--jso", "--no", "-json", "--j", "-j", "---json", "--JSON", "-w",
                             "--wai=5", "--=5", "-=", "-:x", "-Wjson"}) {
        const Arguments read = Read("set", {"ntp", word, "on"});
        EXPECT_EQ(read.problem, "");
        EXPECT_THAT(read.unknown, ElementsAre(word));
        EXPECT_FALSE(read.invocation.json);
        EXPECT_EQ(read.invocation.wait, std::nullopt);
        EXPECT_THAT(read.invocation.words, ElementsAre("ntp", "on"));
    }
}

TEST(Arguments, AreNotTakenAsTheValueOfAnAbbreviatedOption) {
    const Arguments read = Read("get", {"--timeou", "eth1.psk", "--json"});
    EXPECT_THAT(read.unknown, ElementsAre("--timeou"));
    EXPECT_EQ(read.invocation.timeout, std::nullopt);
    EXPECT_TRUE(read.invocation.json);
    EXPECT_THAT(read.invocation.words, ElementsAre("eth1.psk"));
    EXPECT_EQ(Read("get", {"--timeou"}).problem, "");
    EXPECT_THAT(Read("get", {"--timeou"}).unknown, ElementsAre("--timeou"));
}

TEST(Arguments, ReportAllUnknownOptions) {
    const Arguments read = Read("get", {"-x", "--help", "--bogus=1", "--", "-y"});
    EXPECT_THAT(read.unknown, ElementsAre("-x", "--bogus=1"));
    EXPECT_TRUE(read.invocation.help);
    EXPECT_THAT(read.invocation.words, ElementsAre("-y"));
}

TEST(Arguments, AskForHelpInTwoWays) {
    EXPECT_TRUE(Read("list", {"eth0", "--help"}).invocation.help);
    EXPECT_TRUE(Read("list", {"-h", "eth0"}).invocation.help);
    EXPECT_FALSE(Read("list", {"--", "-h"}).invocation.help);
}

TEST(Arguments, RefuseAValueForAFlag) {
    const auto problem = [](const char* word) { return Read("get", {"ntp", word}).problem; };
    EXPECT_EQ(problem("--json=no"), "option '--json' takes no value; leave it out");
    EXPECT_EQ(problem("--json="), "option '--json' takes no value; leave it out");
    EXPECT_EQ(problem("--help=no"), "option '--help' takes no value; leave it out");
    EXPECT_EQ(problem("--value=x"), "option '--value' takes no value; leave it out");
    EXPECT_EQ(problem("-h=x"), "option '-h' takes no value; leave it out");
}

TEST(Arguments, DoNotCombineFlagsInOneWord) {
    for (const char* word : {"-hello", "-hq", "-help", "-hh", "-qh"}) {
        const Arguments read = Read("get", {"ntp", word});
        EXPECT_EQ(read.problem, "");
        EXPECT_THAT(read.unknown, ElementsAre(word));
        EXPECT_FALSE(read.invocation.help);
    }
}

TEST(Arguments, TakeTheValueOfAnOptionFromTheNextWordOrAfterAnEqualsSign) {
    const auto text = [](const Words& words) { return Read("call", words).invocation.text; };
    EXPECT_EQ(text({"--text", "a"}), "a");
    EXPECT_EQ(text({"--text=a"}), "a");
    EXPECT_EQ(text({"--text=a=b"}), "a=b");
    EXPECT_EQ(text({"--text", "a=b"}), "a=b");
    EXPECT_EQ(text({"--text=", "a"}), "");
    EXPECT_EQ(text({"--text", ""}), "");
    EXPECT_EQ(text({"--text", "--hex"}), "--hex");
    EXPECT_EQ(text({"--text", "--"}), "--");
    EXPECT_EQ(text({"--text", "-hello"}), "-hello");
    EXPECT_THAT(Read("call", {"--text=", "a"}).invocation.words, ElementsAre("a"));
}

TEST(Arguments, ReportAMissingValueOfTheLastOption) {
    EXPECT_EQ(Read("call", {"set", "--text"}).problem,
              "option '--text' needs a value; write --text=VALUE");
    EXPECT_EQ(Read("get", {"--timeout"}).problem,
              "option '--timeout' needs a value; write --timeout=VALUE");
    EXPECT_EQ(Read("set", {"ntp", "--wait"}).problem, "");
}

TEST(Arguments, HaveADefaultForTheSecondsOfWait) {
    const auto wait = [](const char* word) {
        return Read("set", {"ntp", word, "on"}).invocation.wait;
    };
    EXPECT_EQ(wait("--wait"), "30");
    EXPECT_EQ(wait("--wait="), "30");
    EXPECT_EQ(wait("--wait=5"), "5");
    EXPECT_EQ(wait("--wait=soon"), "soon");
}

TEST(Arguments, RefuseTheSecondsOfWaitAsASeparateWord) {
    const std::string problem = "--wait takes its seconds after '='; write --wait=SECONDS";
    EXPECT_EQ(Read("restart", {"eth0", "--wait", "5"}).problem, problem);
    EXPECT_EQ(Read("set", {"--wait", "5", "ntp", "on"}).problem, problem);
    EXPECT_EQ(Read("set", {"eth1.channel", "6", "--wait", "5"}).problem, problem);
    // The second word of these may be a number.
    EXPECT_EQ(Read("set", {"eth1.channel", "--wait", "5"}).problem, "");
    EXPECT_EQ(Read("call", {"get", "--wait", "108"}).problem, "");
    EXPECT_EQ(Read("set", {"--", "--wait", "5"}).problem, "");
}

TEST(Arguments, TakeNoNumberAfterANameWithItsValue) {
    EXPECT_EQ(Read("set", {"ntp=on", "--wait", "5"}).problem,
              "--wait takes its seconds after '='; write --wait=SECONDS");
}

TEST(Arguments, MayHoldASecretNextToItsName) {
    const auto beside_secret = [](const Words& words) {
        return Read("set", words).invocation.beside_secret;
    };
    EXPECT_TRUE(beside_secret({"psk", "x"}));
    EXPECT_TRUE(beside_secret({"ntp=on", "eth1.psk=x"}));
    EXPECT_TRUE(beside_secret({"eth1.pks=x", "ntp=on"}));
    EXPECT_FALSE(beside_secret({"ntp=on", "ssid=x"}));
}

TEST(Arguments, ReportAnOptionThatIsGivenTwice) {
    EXPECT_THAT(Read("get", {"--timeout", "1", "--timeout=1"}).twice, ElementsAre("--timeout"));
    EXPECT_THAT(Read("set", {"--wait", "--wait"}).twice, ElementsAre("--wait"));
    EXPECT_THAT(Read("get", {"--json", "--json"}).twice, IsEmpty());
}

TEST(Arguments, AreReadIndependentlyEveryTime) {
    EXPECT_NE(Read("call", {"-h=x", "get", "108", "--json"}).problem, "");
    EXPECT_THAT(Read("get", {"--", "a", "b", "c"}).invocation.words, ElementsAre("a", "b", "c"));
    const Arguments read = Read("get", {"ntp", "--json"});
    EXPECT_TRUE(read.invocation.json);
    EXPECT_THAT(read.invocation.words, ElementsAre("ntp"));
    EXPECT_THAT(Read("list", {}).invocation.words, IsEmpty());
}

TEST(Option, IsKnownByItsWholeName) {
    EXPECT_TRUE(velkctl::HasOption(VerbOf("call"), "--text"));
    EXPECT_TRUE(velkctl::HasOption(VerbOf("call"), "--json"));
    EXPECT_FALSE(velkctl::HasOption(VerbOf("call"), "--tex"));
    EXPECT_FALSE(velkctl::HasOption(VerbOf("list"), "--text"));
}

}  // namespace
