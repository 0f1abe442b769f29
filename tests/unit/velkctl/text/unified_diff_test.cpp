// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Differences of two texts.
#include "velkctl/text/unified_diff.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velkctl::UnifiedDiff;

using Diff = std::vector<std::string>;

Diff DiffOf(const std::string& before, const std::string& after) {
    return UnifiedDiff({"a", before}, {"b", after});
}

// The numbers 1 to `count`, each on a line.
std::string Numbers(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) {
        text.append(std::to_string(i)).append("\n");
    }
    return text;
}

TEST(UnifiedDiff, IsEmptyForEqualTexts) {
    EXPECT_THAT(DiffOf("", ""), IsEmpty());
    EXPECT_THAT(DiffOf("x\n", "x\n"), IsEmpty());
}

TEST(UnifiedDiff, ShowsThreeLinesAroundAChange) {
    std::string after = Numbers(9);
    after.replace(after.find('5'), 1, "five");
    EXPECT_THAT(DiffOf(Numbers(9), after),
                ElementsAre("--- a", "+++ b", "@@ -2,7 +2,7 @@", " 2", " 3", " 4", "-5", "+five",
                            " 6", " 7", " 8"));
}

TEST(UnifiedDiff, HasOnePieceForNearChangesAndTwoForFarOnes) {
    const std::string near = "x\n2\n3\n4\n5\n6\n7\ny\n";
    EXPECT_THAT(DiffOf(Numbers(8), near),
                ElementsAre("--- a", "+++ b", "@@ -1,8 +1,8 @@", "-1", "+x", " 2", " 3", " 4", " 5",
                            " 6", " 7", "-8", "+y"));
    const std::string far = "x\n2\n3\n4\n5\n6\n7\n8\ny\n";
    EXPECT_THAT(DiffOf(Numbers(9), far),
                ElementsAre("--- a", "+++ b", "@@ -1,4 +1,4 @@", "-1", "+x", " 2", " 3", " 4",
                            "@@ -6,4 +6,4 @@", " 6", " 7", " 8", "-9", "+y"));
}

TEST(UnifiedDiff, ShowsInsertedAndRemovedLines) {
    EXPECT_THAT(DiffOf("a\nb\n", "a\nx\nb\n"),
                ElementsAre("--- a", "+++ b", "@@ -1,2 +1,3 @@", " a", "+x", " b"));
    EXPECT_THAT(DiffOf("a\nx\nb\n", "a\nb\n"),
                ElementsAre("--- a", "+++ b", "@@ -1,3 +1,2 @@", " a", "-x", " b"));
}

TEST(UnifiedDiff, ShowsNewAndRemovedFiles) {
    EXPECT_THAT(DiffOf("", "x\n"), ElementsAre("--- a", "+++ b", "@@ -0,0 +1 @@", "+x"));
    EXPECT_THAT(DiffOf("x\ny\n", ""), ElementsAre("--- a", "+++ b", "@@ -1,2 +0,0 @@", "-x", "-y"));
}

TEST(UnifiedDiff, MarksALastLineWithoutNewline) {
    EXPECT_THAT(DiffOf("x", "x\n"), ElementsAre("--- a", "+++ b", "@@ -1 +1 @@", "-x",
                                                "\\ No newline at end of file", "+x"));
}

TEST(UnifiedDiff, ReplacesTheMiddleOfVeryLongTexts) {
    const std::string before = "first\n" + Numbers(3000) + "last\n";
    std::string after = "first\n";
    for (int i = 0; i < 3000; ++i) {
        after.append("x\n");
    }
    after.append("last\n");
    const Diff diff = DiffOf(before, after);
    EXPECT_EQ(diff.size(), 3U + 1 + 3000 + 3000 + 1);
    EXPECT_EQ(diff[2], "@@ -1,3002 +1,3002 @@");
}

}  // namespace
