// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/dhcp/config_blocks.h"

#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "velk/dhcp.h"
#include "velk/request.h"

namespace {

using velk::ConfigBlocks;

// The result of IsNicName() and its flags after the call.
struct Answer {
    bool concerns;
    bool in_block;
    bool other_block;
    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << (answer.concerns ? "concerns" : "does not concern")
         << (answer.in_block ? ", in block" : "") << (answer.other_block ? ", other block" : "");
}

Answer Classify(const std::string& line, const std::string& nic, bool in_block = false,
                bool other_block = false, bool comment_aware = false) {
    const bool concerns = IsNicName(line, nic, in_block, other_block, comment_aware);
    return {concerns, in_block, other_block};
}

constexpr bool kInBlock = true;
constexpr bool kOtherBlock = true;

// ---- IsNicName()

TEST(IsNicName, TheOpeningLineOfAnotherBlockDoesNotApply) {
    EXPECT_EQ(Classify("interface \"eth1\" {\n", "eth0"), (Answer{false, false, true}));
}

TEST(IsNicName, AnotherBlockOnOneLineIsOverAtOnce) {
    EXPECT_EQ(Classify("interface \"eth1\" { }\n", "eth0"), (Answer{false, false, false}));
    EXPECT_EQ(Classify("interface \"eth1\" {}\n", "eth0"), (Answer{false, false, false}));
    EXPECT_EQ(Classify("interface \"eth1\" { # }\n", "eth0", false, false, true),
              (Answer{false, false, false}));
}

TEST(IsNicName, AnotherBlockOnOneLineClearsTheFlagAlsoWhereItWasSet) {
    EXPECT_EQ(Classify("interface \"eth1\" { }\n", "eth0", false, kOtherBlock),
              (Answer{false, false, false}));
}

TEST(IsNicName, TheOpeningLineOfTheWantedBlockSetsItsFlag) {
    EXPECT_EQ(Classify("interface \"eth0\" {\n", "eth0"), (Answer{true, true, false}));
    EXPECT_EQ(Classify("\tinterface \"eth0\" {\n", "eth0"), (Answer{true, true, false}));
    EXPECT_EQ(Classify("interface\n", ""), (Answer{true, true, false}));
}

TEST(IsNicName, AWantedBlockOnOneLineDoesNotEndOnThatLine) {
    EXPECT_EQ(Classify("interface \"eth0\" { }\n", "eth0"), (Answer{true, true, false}));
}

TEST(IsNicName, TheNameMayBeAnywhereOnTheOpeningLine) {
    EXPECT_EQ(Classify("interface \"eth01\" {\n", "eth0"), (Answer{true, true, false}));
    EXPECT_EQ(Classify("interface \"eth1\" { # not eth0\n", "eth0"), (Answer{true, true, false}));
    EXPECT_EQ(Classify("eth0, interface {\n", "eth0"), (Answer{true, true, false}));
}

TEST(IsNicName, GlobalLinesApplyToEveryInterface) {
    EXPECT_EQ(Classify("request subnet-mask;\n", "eth0"), (Answer{true, false, false}));
    EXPECT_EQ(Classify("\n", "eth0"), (Answer{true, false, false}));
    EXPECT_EQ(Classify("}\n", "eth0"), (Answer{true, false, false}));
    EXPECT_EQ(Classify("send host-name \"eth1\";\n", "eth0"), (Answer{true, false, false}));
}

TEST(IsNicName, InterfaceMustBeAWholeWord) {
    EXPECT_EQ(Classify("interfaces \"eth1\" {\n", "eth0"), (Answer{true, false, false}));
    EXPECT_EQ(Classify("my-interface \"eth1\" {\n", "eth0"), (Answer{true, false, false}));
    EXPECT_EQ(Classify("interface\"eth1\" {\n", "eth0"), (Answer{true, false, false}));
    EXPECT_EQ(Classify("interfaces interface \"eth1\" {\n", "eth0"), (Answer{true, false, false}));
}

TEST(IsNicName, ACommentedOpeningLineCountsOnlyIfCommentsCount) {
    EXPECT_EQ(Classify("#interface \"eth1\" {\n", "eth0", false, false, false),
              (Answer{false, false, true}));
    EXPECT_EQ(Classify("#interface \"eth1\" {\n", "eth0", false, false, true),
              (Answer{true, false, false}));
    EXPECT_EQ(Classify("#interface \"eth0\" {\n", "eth0", false, false, false),
              (Answer{true, true, false}));
    EXPECT_EQ(Classify("#interface \"eth0\" {\n", "eth0", false, false, true),
              (Answer{true, false, false}));
}

TEST(IsNicName, TheClosingLineEndsTheBlockAndStillApplies) {
    EXPECT_EQ(Classify("}\n", "eth0", kInBlock), (Answer{true, false, false}));
    EXPECT_EQ(Classify("  } # eth0\n", "eth0", kInBlock), (Answer{true, false, false}));
    EXPECT_EQ(Classify("#}\n", "eth0", kInBlock, false, false), (Answer{true, false, false}));
}

TEST(IsNicName, ACommentedClosingLineEndsNothingWhereCommentsDoNotCount) {
    EXPECT_EQ(Classify("#}\n", "eth0", kInBlock, false, true), (Answer{true, true, false}));
    EXPECT_EQ(Classify("# }\n", "eth0", kInBlock, false, true), (Answer{true, true, false}));
}

TEST(IsNicName, AClosingBraceMustBeAWholeWord) {
    EXPECT_EQ(Classify("request x;}\n", "eth0", kInBlock), (Answer{true, true, false}));
    EXPECT_EQ(Classify("}}\n", "eth0", kInBlock), (Answer{true, true, false}));
    EXPECT_EQ(Classify("}\r\n", "eth0", kInBlock), (Answer{true, true, false}));
    EXPECT_EQ(Classify("x} }\n", "eth0", kInBlock), (Answer{true, true, false}));
    EXPECT_EQ(Classify("};\n", "eth0", kInBlock), (Answer{true, false, false}));
}

TEST(IsNicName, WithinTheBlockAnotherOpeningLineMeansNothing) {
    EXPECT_EQ(Classify("interface \"eth1\" {\n", "eth0", kInBlock), (Answer{true, true, false}));
    EXPECT_EQ(Classify("interface \"eth1\" { }\n", "eth0", kInBlock), (Answer{true, false, false}));
}

TEST(IsNicName, TheOtherBlocksEndIsLeftToTheCaller) {
    EXPECT_EQ(Classify("}\n", "eth0", false, kOtherBlock), (Answer{true, false, true}));
    EXPECT_EQ(Classify("request x;\n", "eth0", false, kOtherBlock), (Answer{true, false, true}));
    EXPECT_EQ(Classify("interface \"eth0\" {\n", "eth0", false, kOtherBlock),
              (Answer{true, true, true}));
}

TEST(IsNicName, TheEmptyNameIsFoundOnEveryOpeningLine) {
    EXPECT_EQ(Classify("interface \"eth1\" {\n", ""), (Answer{true, true, false}));
    EXPECT_EQ(Classify("interface \"eth0\" {\n", ""), (Answer{true, true, false}));
}

// ---- ConfigBlocks

// One character a line: "b" in the interface's block, "+" elsewhere in its scope, "-" not in scope.
std::string Trace(std::string_view nic, std::initializer_list<const char*> lines,
                  bool comment_aware = false) {
    ConfigBlocks blocks(nic, comment_aware);
    std::string trace;
    for (const char* line : lines) {
        const bool is_in_scope = blocks.IsInScope(std::string(line) + "\n");
        trace += !is_in_scope ? '-' : blocks.in_block() ? 'b' : '+';
    }
    return trace;
}

TEST(ConfigBlocks, GlobalLinesAndTheInterfacesBlockApply) {
    const std::initializer_list<const char*> kLines = {
        "send x;", "interface \"eth0\" {", "  request a;", "}", "",
        "send y;", "interface \"eth1\" {", "  request b;", "}", "send z;"};
    EXPECT_EQ(Trace("eth0", kLines), "+bb+++---+");
    EXPECT_EQ(Trace("eth1", kLines), "+---++bb++");
}

TEST(ConfigBlocks, ABlockOfAnotherInterfaceOnOneLineIsOnlyThatLine) {
    EXPECT_EQ(Trace("eth0", {"interface \"eth1\" { request a; }", "request b;"}), "-+");
}

TEST(ConfigBlocks, ABlockOfTheInterfaceOnOneLineReachesToTheNextBrace) {
    EXPECT_EQ(Trace("eth0", {"interface \"eth0\" { request a; }", "request b;", "}", "c"}), "bb++");
}

TEST(ConfigBlocks, AnOpeningLineWithinAnotherBlockIsSkipped) {
    EXPECT_EQ(Trace("eth0", {"interface \"eth1\" {", "interface \"eth0\" {", "a", "}", "b"}),
              "----+");
}

TEST(ConfigBlocks, AnUnfinishedBlockReachesToTheEnd) {
    EXPECT_EQ(Trace("eth0", {"interface \"eth1\" {", "a", "interface \"eth0\" {"}), "---");
    EXPECT_EQ(Trace("eth0", {"interface \"eth0\" {", "a", "interface \"eth1\" {"}), "bbb");
}

TEST(ConfigBlocks, TheEndOfAnotherBlockMustBeAWholeWord) {
    EXPECT_EQ(Trace("eth0", {"interface \"eth1\" {", "a;}", "}x", "};", "b"}), "----+");
}

TEST(ConfigBlocks, ASwitchedOffBlockIsABlockIfCommentsCount) {
    EXPECT_EQ(Trace("eth0", {"#interface \"eth0\" {", "#a", "#}", "b"}), "bb++");
    EXPECT_EQ(Trace("eth0", {"#interface \"eth1\" {", "#a", "#}", "b"}), "---+");
    EXPECT_EQ(Trace("eth0", {"#interface \"eth1\" {", "#a", "#}", "b"}, /*comment_aware=*/true),
              "++++");
}

TEST(ConfigBlocks, ACommentedBraceEndsAnotherBlockOnlyIfCommentsCount) {
    EXPECT_EQ(Trace("eth0", {"interface \"eth1\" {", "#}", "a"}), "--+");
    EXPECT_EQ(Trace("eth0", {"interface \"eth1\" {", "#}", "a", "}", "b"}, /*comment_aware=*/true),
              "----+");
}

TEST(ConfigBlocks, WithoutANameTheFileBeginsInsideABlock) {
    EXPECT_EQ(Trace("", {"a", "b", "}", "c", "interface \"eth1\" {", "d", "}", "e"}), "bb++bb++");
    EXPECT_EQ(Trace("", {"a", "interface \"eth1\" {", "d", "}", "e", "interface x {", "f"}),
              "bbb++bb");
}

}  // namespace
