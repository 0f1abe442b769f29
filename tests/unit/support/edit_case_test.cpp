// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_case_test.cpp - tests of the reader of edit cases.
#include "edits/edit_case.h"

#include <stdexcept>

#include <gmock/gmock.h>

namespace edits {
namespace {

using ::testing::StartsWith;

std::string MistakeIn(const std::string& text) {
    try {
        (void)ParseEditCase("case", text);
    } catch (const std::runtime_error& mistake) {
        return mistake.what();
    }
    return "no mistake";
}

CaseFile InterfacesIn(const std::string& sections) {
    return ParseEditCase("case", "set 106 eth0\n" + sections).files.at(0);
}

std::string DataIn(const std::string& lines, size_t size) {
    const EditCase edit = ParseEditCase("case", "set 106 eth0\n" + lines);
    return {edit.request.data, size};
}

TEST(EditCaseTest, ReadsTheRequest) {
    const EditCase edit = ParseEditCase("case", "# Why.\nset 106 eth0\n10.0.0.1\nresult -1\n");
    EXPECT_EQ(edit.request.command_type, VELK_SET);
    EXPECT_EQ(edit.request.command_id, 106u);
    EXPECT_STREQ(edit.request.interface, "eth0");
    EXPECT_STREQ(edit.request.data, "10.0.0.1");
    EXPECT_EQ(edit.result, -1);
}

TEST(EditCaseTest, ReadsARequestWithoutAnInterface) {
    EXPECT_STREQ(ParseEditCase("case", "set 3 -\n").request.interface, "");
}

TEST(EditCaseTest, AddsBytesAndTextsInTheirOrder) {
    EXPECT_EQ(DataIn("bytes 2 255\nab\nbytes 0\nc\n", 9), std::string("\x02\xff"
                                                                      "ab\0\0c\0\0",
                                                                      9));
}

TEST(EditCaseTest, ReadsEscapesInATextOfTheRequest) {
    EXPECT_EQ(DataIn("\\x62ytes 1\\\\\\x20\n", 10), std::string("bytes 1\\ \0", 10));
}

TEST(EditCaseTest, ReadsAFileBeforeAndAfterAndItsCopy) {
    const CaseFile file = InterfacesIn(
        "--- interfaces\na\n\tb\n--- interfaces.after\n\nc\n"
        "--- interfaces.copy\n");
    EXPECT_EQ(file.path, "/etc/network/interfaces");
    EXPECT_EQ(file.before, "a\n\tb\n");
    EXPECT_EQ(file.after, "\nc\n");
    EXPECT_EQ(file.copy, "");
}

TEST(EditCaseTest, TakesAFileWithoutAnAfterAsUnchanged) {
    EXPECT_EQ(InterfacesIn("--- interfaces\na\n").after, "a\n");
}

TEST(EditCaseTest, TakesAFileWithoutASectionAsMissing) {
    EXPECT_EQ(InterfacesIn("").before, std::nullopt);
    EXPECT_EQ(InterfacesIn("").after, std::nullopt);
}

TEST(EditCaseTest, ReadsThatAFileIsGone) {
    EXPECT_EQ(InterfacesIn("--- interfaces\na\n--- interfaces.gone\n").after, std::nullopt);
}

TEST(EditCaseTest, ReadsAMissingLastNewline) {
    EXPECT_EQ(InterfacesIn("--- interfaces\na\nb\\c\n").before, "a\nb");
}

TEST(EditCaseTest, ReadsEscapesInAFile) {
    EXPECT_EQ(InterfacesIn("--- interfaces\n\\x2d-- a\\x0d\n\\\\c\n").before, "--- a\r\n\\c\n");
}

TEST(EditCaseTest, RefusesACaseWithoutASetLine) {
    EXPECT_EQ(MistakeIn("# Why.\n"), "case:1: no set line so far");
    EXPECT_EQ(MistakeIn("# Why.\ngte 106 eth0\n"), "case:2: no set line so far");
    EXPECT_EQ(MistakeIn("--- interfaces\n"), "case:1: no set line so far");
}

TEST(EditCaseTest, RefusesAWrongSetLine) {
    EXPECT_EQ(MistakeIn("set 106\n"), "case:1: a case takes one line: set ID INTERFACE");
    EXPECT_EQ(MistakeIn("set 106 eth0\nset 3 -\n"),
              "case:2: a case takes one line: set ID INTERFACE");
    EXPECT_EQ(MistakeIn("set 106x eth0\n"), "case:1: not a number that fits here: 106x");
}

TEST(EditCaseTest, RefusesWrongData) {
    EXPECT_EQ(MistakeIn("set 3 -\nbytes 256\n"), "case:2: not a number that fits here: 256");
    EXPECT_EQ(MistakeIn("set 3 -\nbytes x\n"), "case:2: not a number that fits here: x");
    EXPECT_EQ(MistakeIn("set 3 -\nresult\n"),
              "case:2: a result line without a number, or an empty line");
    EXPECT_EQ(MistakeIn("set 3 -\n\n"), "case:2: a result line without a number, or an empty line");
    EXPECT_EQ(MistakeIn("set 3 -\na\\c\n"), "case:2: \\c in the request");
    EXPECT_EQ(MistakeIn("set 3 -\n" + std::string(VELK_DATA_SIZE, 'a') + "\n"),
              "case:2: more data than a request holds");
}

TEST(EditCaseTest, RefusesAWrongSection) {
    EXPECT_EQ(MistakeIn("set 3 -\n--- interface\n"), "case:2: unknown section: interface");
    EXPECT_EQ(MistakeIn("set 3 -\n--- root.before\n"), "case:2: unknown section: root.before");
    EXPECT_EQ(MistakeIn("set 3 -\n--- root\n--- root\n"), "case:3: section given twice: root");
    EXPECT_EQ(MistakeIn("set 3 -\n--- root.gone\n--- root.after\n"),
              "case:3: a text after the request for a file that is gone: root");
}

TEST(EditCaseTest, RefusesTextInAFileThatHasEnded) {
    EXPECT_EQ(MistakeIn("set 3 -\n--- root\na\\c\nb\n"),
              "case:4: text after \\c, or in a file that is gone");
    EXPECT_EQ(MistakeIn("set 3 -\n--- root.gone\na\n"),
              "case:3: text after \\c, or in a file that is gone");
}

TEST(EditCaseTest, RefusesAnUnknownEscape) {
    EXPECT_EQ(MistakeIn("set 3 -\n--- root\na\\n\n"), "case:3: unknown escape: \\n");
    EXPECT_EQ(MistakeIn("set 3 -\na\\x0g\n"), "case:2: unknown escape: \\x0g");
    EXPECT_EQ(MistakeIn("set 3 -\na\\x0\n"), "case:2: unknown escape: \\x0");
    EXPECT_EQ(MistakeIn("set 3 -\na\\cb\n"), "case:2: unknown escape: \\cb");
}

TEST(EditCaseTest, RefusesBytesThatCannotBeSeen) {
    const std::string mistake = ": a byte that cannot be seen: write it as \\xNN";
    EXPECT_EQ(MistakeIn("set 3 -\n--- root\na\r\n"), "case:3" + mistake);
    EXPECT_EQ(MistakeIn("set 3 -\na \n"), "case:2" + mistake);
    EXPECT_EQ(MistakeIn("set 3 -\n--- root\n\t\n"), "case:3" + mistake);
}

TEST(EditCaseTest, NamesTheFile) {
    EXPECT_THAT(MistakeIn("set\n"), StartsWith("case:1: "));
    EXPECT_THROW((void)ReadEditCase("/var/tmp/no-such-case"), std::runtime_error);
}

}  // namespace
}  // namespace edits
