// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/shell_blocks.h"

#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using velk::ShellBlocks;

// One character a line: "+" when it runs for the interface, "-" when it does not.
std::string Trace(std::string_view interface, std::initializer_list<const char*> lines,
                  std::string_view variable = "$interface") {
    ShellBlocks blocks(variable, interface);
    std::string trace;
    for (const char* line : lines) {
        trace += blocks.RunsNext(std::string(line) + "\n") ? '+' : '-';
    }
    return trace;
}

constexpr char kIfThen[] = "if [ \"$interface\" = eth0 ]; then";
constexpr char kIf[] = "if [ \"$interface\" = eth0 ]";

TEST(ShellBlocks, AnIfThenElseFiRunsByItsBranches) {
    EXPECT_EQ(Trace("eth0", {"a", kIfThen, "b", "else", "c", "fi", "d"}), "+++--++");
    EXPECT_EQ(Trace("eth1", {"a", kIfThen, "b", "else", "c", "fi", "d"}), "+--++++");
}

TEST(ShellBlocks, ThenMayBeOnALineOfItsOwn) {
    EXPECT_EQ(Trace("eth0", {kIf, "then", "b", "else", "c", "fi", "d"}), "+++--++");
    EXPECT_EQ(Trace("eth1", {kIf, "then", "b", "else", "c", "fi", "d"}), "+--++++");
}

// ---- outside

TEST(ShellBlocks, OutsideBlocksEveryLineRuns) {
    EXPECT_EQ(Trace("eth1", {"a", "", "  b", "# c"}), "++++");
}

TEST(ShellBlocks, AnIfInACommentBeginsNoBlock) {
    EXPECT_EQ(Trace("eth1", {"# if [ \"$interface\" = eth0 ]; then", "a", "then", "b"}), "++++");
    EXPECT_EQ(Trace("eth1", {"a # if [ \"$interface\" = eth0 ]", "then", "b"}), "+++");
}

TEST(ShellBlocks, OutsideBlocksTheOtherKeywordsMeanNothing) {
    EXPECT_EQ(Trace("eth1", {"then", "else", "fi", "a", kIfThen, "b", "fi"}), "++++--+");
}

TEST(ShellBlocks, AnIfWithoutTheVariableBeginsNoBlock) {
    EXPECT_EQ(Trace("eth1", {"if [ -x /bin/a ]; then", "a", "else", "b", "fi"}), "+++++");
    EXPECT_EQ(Trace("eth1", {"if [ eth0 = eth0 ]; then", "a", "fi"}), "+++");
}

TEST(ShellBlocks, TheVariableMustFollowTheIf) {
    EXPECT_EQ(Trace("eth1", {"x=\"$interface\" if [ eth0 ]; then", "a", "fi"}), "+++");
    EXPECT_EQ(Trace("eth1", {"echo $interface; if [ $interface = eth0 ]; then", "a", "fi"}), "--+");
}

TEST(ShellBlocks, AnIfInsideAnotherWordBeginsNoBlock) {
    EXPECT_EQ(Trace("eth1", {"elif [ \"$interface\" = eth0 ]; then", "a", "fi"}), "+++");
    EXPECT_EQ(Trace("eth1", {"ifconfig $interface eth0", "then", "a"}), "+++");
    EXPECT_EQ(Trace("eth1", {"ifup x; if [ \"$interface\" = eth0 ]; then", "a"}), "++")
        << "the first \"if\" of the line is no word";
    EXPECT_EQ(Trace("eth1", {"x;if [ \"$interface\" = eth0 ]; then", "a"}), "++");
}

TEST(ShellBlocks, AnIndentedIfBeginsABlock) {
    EXPECT_EQ(Trace("eth1", {"\t if [ \"$interface\" = eth0 ]; then", "a", "\tfi", "b"}), "--++");
}

TEST(ShellBlocks, AnIfThenFiOnOneLineBeginsNoBlock) {
    EXPECT_EQ(Trace("eth0", {"if [ \"$interface\" = eth0 ]; then a; fi", "b"}), "++");
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" = eth0 ]; then a; fi", "b"}), "++");
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" = eth0 ]; then a; else b; fi", "c"}), "++");
}

TEST(ShellBlocks, AnIfWithItsFiButWithoutThenBeginsNoBlock) {
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" = eth0 ] ; fi", "then", "a"}), "+++");
}

TEST(ShellBlocks, AnElseOnTheIfLineIsNotSeen) {
    EXPECT_EQ(Trace("eth0", {"if [ \"$interface\" = eth0 ]; then a; else", "b", "fi"}), "+++");
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" = eth0 ]; then a; else", "b", "fi"}), "--+");
}

// ---- between "if" and "then"

TEST(ShellBlocks, LinesUpToThenRun) {
    EXPECT_EQ(Trace("eth1", {kIf, "a", "", "b", "then", "c", "fi"}), "++++--+");
    EXPECT_EQ(Trace("eth0", {kIf, "a", "then", "c", "fi"}), "+++++");
}

TEST(ShellBlocks, AFiBeforeThenEndsTheBlock) {
    EXPECT_EQ(Trace("eth1", {kIf, "fi", "then", "a"}), "++++");
}

TEST(ShellBlocks, AThenAndAFiOnOneLineEndTheBlock) {
    EXPECT_EQ(Trace("eth1", {kIf, "then a; fi", "b"}), "+++");
}

TEST(ShellBlocks, AnElseBeforeThenMeansNothing) {
    EXPECT_EQ(Trace("eth1", {kIf, "else", "a", "then", "b", "else", "c", "fi"}), "+++--+++");
    EXPECT_EQ(Trace("eth0", {kIf, "else", "a", "then", "b", "else", "c", "fi"}), "+++++--+");
}

TEST(ShellBlocks, AnIfBeforeThenMeansNothing) {
    EXPECT_EQ(Trace("eth1", {kIf, "if [ \"$interface\" = eth1 ]", "then", "a", "fi"}), "++--+");
}

// ---- between "then" and "else"

TEST(ShellBlocks, AFiAfterThenEndsTheBlock) {
    EXPECT_EQ(Trace("eth0", {kIfThen, "a", "fi", "b"}), "++++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "fi", "b"}), "--++");
}

TEST(ShellBlocks, TheElseLineBelongsToItsBranch) {
    EXPECT_EQ(Trace("eth0", {kIfThen, "else a"}), "+-");
    EXPECT_EQ(Trace("eth1", {kIfThen, "else a"}), "-+");
}

TEST(ShellBlocks, AnElseAndAFiOnOneLineEndTheBlock) {
    EXPECT_EQ(Trace("eth0", {kIfThen, "a", "else b; fi", "c"}), "++++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "else b; fi", "c"}), "--++");
}

TEST(ShellBlocks, ASecondThenMeansNothing) {
    EXPECT_EQ(Trace("eth0", {kIfThen, "then", "a", "else", "b", "fi"}), "+++--+");
    EXPECT_EQ(Trace("eth1", {kIfThen, "then", "a", "else", "b", "fi"}), "---+++");
}

TEST(ShellBlocks, AnIfWithinAThenBranchIsALineLikeAnyOther) {
    EXPECT_EQ(Trace("eth0", {kIfThen, "if [ \"$interface\" = eth1 ]; then", "a", "fi", "b", "fi"}),
              "++++++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "if [ \"$interface\" = eth1 ]; then", "a", "fi", "b", "fi"}),
              "---+++")
        << "the first \"fi\" ends the block";
    EXPECT_EQ(Trace("eth1",
                    {kIfThen, "if [ -x a ]; then", "a", "else", "b", "fi", "c", "else", "d", "fi"}),
              "---+++++++");
    EXPECT_EQ(Trace("eth0",
                    {kIfThen, "if [ -x a ]; then", "a", "else", "b", "fi", "c", "else", "d", "fi"}),
              "+++--+++++");
}

TEST(ShellBlocks, AnElifIsALineLikeAnyOther) {
    EXPECT_EQ(Trace("eth0",
                    {kIfThen, "a", "elif [ \"$interface\" = eth1 ]; then", "b", "else", "c", "fi"}),
              "++++--+");
    EXPECT_EQ(Trace("eth1",
                    {kIfThen, "a", "elif [ \"$interface\" = eth1 ]; then", "b", "else", "c", "fi"}),
              "----+++");
}

// ---- after "else"

TEST(ShellBlocks, OnlyAFiEndsAnElseBranch) {
    EXPECT_EQ(Trace("eth0", {kIfThen, "else", "a", "then", "b", "else", "c", "fi", "d"}),
              "+------++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "else", "a", "then", "b", "else", "c", "fi", "d"}),
              "-++++++++");
}

TEST(ShellBlocks, AnIfWithinAnElseBranchIsALineLikeAnyOther) {
    EXPECT_EQ(Trace("eth0",
                    {kIfThen, "else", "if [ \"$interface\" = eth0 ]; then", "a", "fi", "b", "fi"}),
              "+---+++");
    EXPECT_EQ(Trace("eth1",
                    {kIfThen, "else", "if [ \"$interface\" = eth0 ]; then", "a", "fi", "b", "fi"}),
              "-++++++");
}

// ---- one block after another

TEST(ShellBlocks, EveryBlockHasAConditionOfItsOwn) {
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "fi", "if [ \"$interface\" = eth1 ]; then", "b", "else",
                             "c", "fi", kIfThen, "d", "else", "e", "fi"}),
              "--+++--+--+++");
}

TEST(ShellBlocks, ABlockWithoutAnEndReachesToTheEndOfTheScript) {
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "b", "c"}), "----");
    EXPECT_EQ(Trace("eth0", {kIfThen, "else", "b", "c"}), "+---");
}

// ---- keywords

TEST(ShellBlocks, KeywordsInCommentsDoNotCount) {
    EXPECT_EQ(Trace("eth1", {"#if [ \"$interface\" = eth0 ]; then", "a"}), "++");
    EXPECT_EQ(Trace("eth1", {"# if [ \"$interface\" = eth0 ]; then", "a"}), "++");
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" = eth0 ] # then", "a", "then", "b"}), "++--");
    EXPECT_EQ(Trace("eth1", {kIfThen, "#else", "a", "# fi", "b", "fi"}), "-----+");
    EXPECT_EQ(Trace("eth1", {kIfThen, "a # fi", "b", "a # else", "c"}), "-----");
}

TEST(ShellBlocks, TheVariableAndTheNameCountAlsoInAComment) {
    EXPECT_EQ(Trace("eth0", {"if [ x ]; then # $interface eth0", "a", "else", "b", "fi"}), "++--+");
    EXPECT_EQ(Trace("eth1", {"if [ x ]; then # $interface eth0", "a", "else", "b", "fi"}), "--+++");
}

TEST(ShellBlocks, KeywordsAreWholeWords) {
    EXPECT_EQ(Trace("eth1", {kIfThen, "elsewhere", "profile", "a;fi", "fix", "(fi)", "b"}),
              "-------");
    EXPECT_EQ(Trace("eth1", {kIf, "thenx", "a;then", "b"}), "++++");
}

TEST(ShellBlocks, AKeywordInsideAnEarlierWordHidesItself) {
    EXPECT_EQ(Trace("eth1", {kIfThen, "ifconfig eth0 up; fi", "a"}), "---");
    EXPECT_EQ(Trace("eth1", {kIf, "authenticate; then", "a"}), "+++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "elsewhere else", "a"}), "---");
}

TEST(ShellBlocks, KeywordsMayBeFollowedByASemicolon) {
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "fi;", "b"}), "--++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "else;", "b"}), "--++");
}

TEST(ShellBlocks, ACarriageReturnAfterAKeywordHidesIt) {
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" = eth0 ]; then\r", "a\r", "fi\r", "b\r"}),
              "++++");
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "fi\r", "b"}), "----");
}

// ---- condition

TEST(ShellBlocks, TheComparisonIsNotLookedAt) {
    EXPECT_EQ(Trace("eth0", {"if [ \"$interface\" != eth0 ]; then", "a", "else", "b", "fi"}),
              "++--+");
    EXPECT_EQ(Trace("eth1", {"if [ \"$interface\" != eth0 ]; then", "a", "else", "b", "fi"}),
              "--+++");
}

TEST(ShellBlocks, TheInterfaceMayBeNamedAnywhereAfterTheIf) {
    EXPECT_EQ(Trace("eth0", {"if [ eth0 = \"$interface\" ]; then", "a", "fi"}), "+++");
    EXPECT_EQ(Trace("eth0", {"if [ \"$interface\" = x ]; then echo eth0", "a", "fi"}), "+++");
    EXPECT_EQ(Trace("eth0", {"if [ x\"$interface\" = xeth0 ]; then", "a", "fi"}), "+++");
    EXPECT_EQ(Trace("eth0", {"if [ \"$interface\" = eth01 ]; then", "a", "fi"}), "+++");
}

TEST(ShellBlocks, AnInterfaceNamedBeforeTheIfDoesNotCount) {
    EXPECT_EQ(Trace("eth0", {"eth0 if [ \"$interface\" = eth1 ]; then", "a", "else", "b", "fi"}),
              "--+++");
}

TEST(ShellBlocks, AnInterfaceNamedOnALaterLineDoesNotCount) {
    EXPECT_EQ(Trace("eth0", {"if [ \"$interface\" = \\", "eth0 ]; then", "a", "fi"}), "+--+");
}

TEST(ShellBlocks, BothInterfacesInOneConditionMatchBoth) {
    constexpr char kBoth[] = "if [ \"$interface\" = eth0 -o \"$interface\" = eth1 ]; then";
    EXPECT_EQ(Trace("eth0", {kBoth, "a", "else", "b", "fi"}), "++--+");
    EXPECT_EQ(Trace("eth1", {kBoth, "a", "else", "b", "fi"}), "++--+");
}

TEST(ShellBlocks, TheEmptyInterfaceMatchesEveryCondition) {
    EXPECT_EQ(Trace("", {kIfThen, "a", "else", "b", "fi"}), "++--+");
}

TEST(ShellBlocks, TheConditionBeginsAfterTheWordIf) {
    EXPECT_EQ(Trace("if", {"if [ \"$interface\" = eth0 ]; then", "a", "else", "b", "fi"}), "--+++");
}

// ---- variable

TEST(ShellBlocks, TheVariableMayBeLookedForWithoutItsDollar) {
    EXPECT_EQ(Trace("eth1", {kIfThen, "a", "fi"}, "interface"), "--+");
    EXPECT_EQ(Trace("eth1", {"if [ x${interface} = xeth0 ]; then", "a", "fi"}, "interface"), "--+");
    EXPECT_EQ(Trace("eth1", {"if [ x${interface} = xeth0 ]; then", "a", "fi"}, "$interface"),
              "+++");
    EXPECT_EQ(Trace("eth1", {"if [ -n interfaces ]; then", "a", "fi"}, "interface"), "--+");
}

TEST(ShellBlocks, ALongerVariableThatBeginsSoCountsToo) {
    EXPECT_EQ(Trace("eth1", {"if [ $interface_name = eth0 ]; then", "a", "fi"}), "--+");
}

}  // namespace
