// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/line_reader.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::Pass;
using velk::LineReader;

constexpr char kLinesFile[] = "/var/tmp/lines";

class LineReaderTest : public testkit::DeviceTest {
  protected:
    static std::vector<std::string> Lines() {
        LineReader reader(kLinesFile);
        std::vector<std::string> lines;
        for (std::string_view line; reader.ReadLine(line);) {
            lines.emplace_back(line);
        }
        return lines;
    }
    static std::vector<std::string> LinesOf(std::string_view text) {
        testkit::WriteFile(kLinesFile, text);
        return Lines();
    }
};

TEST_F(LineReaderTest, StripsTheTerminatorAndNothingElse) {
    EXPECT_THAT(LinesOf("one\n two \n\tthree\n"), ElementsAre("one", " two ", "\tthree"));
}

TEST_F(LineReaderTest, TakesALastLineWithoutATerminator) {
    EXPECT_THAT(LinesOf("one\ntwo"), ElementsAre("one", "two"));
}

TEST_F(LineReaderTest, KeepsEmptyLines) {
    EXPECT_THAT(LinesOf("\n\none\n\n"), ElementsAre("", "", "one", ""));
}

TEST_F(LineReaderTest, KeepsCarriageReturnsAndNuls) {
    EXPECT_THAT(LinesOf(std::string_view("a\r\nb\0c\n", 7)),
                ElementsAre("a\r", std::string("b\0c", 3)));
}

TEST_F(LineReaderTest, AnEmptyFileHasNoLines) {
    EXPECT_THAT(LinesOf(""), IsEmpty());
}

TEST_F(LineReaderTest, SaysWhyAFileCannotBeOpened) {
    const LineReader reader("/var/tmp/missing");
    EXPECT_FALSE(reader.is_open());
    EXPECT_EQ(reader.error(), ENOENT);
}

TEST_F(LineReaderTest, AFileThatIsNotOpenHasNoLines) {
    LineReader reader("/var/tmp/missing");
    std::string_view line;
    EXPECT_FALSE(reader.ReadLine(line));
    EXPECT_EQ(line, "");
    EXPECT_THAT(libc().Events(testkit::Call::kRead), testing::IsEmpty());
}

TEST_F(LineReaderTest, AFolderCountsAsNotOpened) {
    const LineReader reader("/var");
    EXPECT_FALSE(reader.is_open());
    EXPECT_EQ(reader.error(), EISDIR);
}

TEST_F(LineReaderTest, AnEmptyFileIsOpen) {
    testkit::WriteFile(kLinesFile, "");
    errno = EIO;  // left by an earlier call
    EXPECT_TRUE(LineReader(kLinesFile).is_open());
}

TEST_F(LineReaderTest, LinesAcrossBlocksStayWhole) {
    std::string text;
    std::vector<std::string> expected;
    for (int i = 0; i < 30000; ++i) {
        expected.push_back("line " + std::to_string(i) +
                           std::string(static_cast<size_t>(i) % 97, '.'));
        text += expected.back() + "\n";
    }
    EXPECT_EQ(LinesOf(text), expected);
}

TEST_F(LineReaderTest, ALineOfExactlyOneBlockIsALine) {
    for (const size_t size :
         {4094U, 4095U, 4096U, 4097U, 8192U, 65534U, 65535U, 65536U, 65537U, 131072U}) {
        const std::string line(size, 'x');
        EXPECT_THAT(LinesOf(line + "\nnext\n"), ElementsAre(line, "next")) << size;
        EXPECT_THAT(LinesOf(line), ElementsAre(line)) << size;
    }
}

TEST_F(LineReaderTest, ALineLongerThanAnyBlockIsALine) {
    const std::string line(1000 * 1000, 'x');
    EXPECT_THAT(LinesOf("a\n" + line + "\nb"), ElementsAre("a", line, "b"));
}

TEST_F(LineReaderTest, ASignalWhileReadingMakesNoDifference) {
    testkit::WriteFile(kLinesFile, "one\ntwo\nthree");
    libc().Script(Call::kRead, {Fail(EINTR), Pass(), Fail(EINTR)});
    EXPECT_THAT(Lines(), ElementsAre("one", "two", "three"));
}

TEST_F(LineReaderTest, AReadErrorAfterTheFirstBlockEndsTheFile) {
    testkit::WriteFile(kLinesFile, "one\ntwo\nthr");
    libc().Script(Call::kRead, {Pass(), Fail(EIO)});
    EXPECT_THAT(Lines(), ElementsAre("one", "two", "thr"));
}

TEST_F(LineReaderTest, ReadsNoFurtherThanNeeded) {
    testkit::WriteFile(kLinesFile, "one\ntwo\n");
    LineReader reader(kLinesFile);
    std::string_view line;
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(libc().Events(Call::kRead).size(), 1U);
}

TEST_F(LineReaderTest, ALongFileIsReadInBlocksOfOneSize) {
    std::string text;
    while (text.size() < 1'000'000) {
        text += "a line of a file that goes on and on\n";
    }
    testkit::WriteFile(kLinesFile, text);
    LineReader reader(kLinesFile);
    for (std::string_view line; reader.ReadLine(line);) {
    }
    EXPECT_GE(libc().Events(Call::kRead).size(), text.size() / 65536);
}

TEST_F(LineReaderTest, TakesBufferedLinesOnlyWhileACompleteOneIsLeft) {
    const std::string first(4090, 'x');
    testkit::WriteFile(kLinesFile, first + "\nthe block ends within this line\n");
    LineReader reader(kLinesFile);
    std::string_view held;
    EXPECT_TRUE(reader.TakeBufferedLine(held));
    EXPECT_EQ(held, first + "\n");
    std::string_view line;
    EXPECT_FALSE(reader.TakeBufferedLine(line));
    EXPECT_EQ(held, first + "\n") << "what was handed out stays valid";
    EXPECT_TRUE(reader.ReadFullLine(line));
    EXPECT_EQ(line, "the block ends within this line\n");
    EXPECT_FALSE(reader.TakeBufferedLine(line));
}

TEST_F(LineReaderTest, BufferedLinesAreTakenUpToALineWithTheGivenStart) {
    testkit::WriteFile(kLinesFile, "one\n two\ntwofold\ntwo\nlast");
    LineReader reader(kLinesFile);
    std::string_view line;
    EXPECT_EQ(reader.TakeBufferedLinesBefore("two"), "one\n two\n");
    EXPECT_EQ(reader.TakeBufferedLinesBefore("two"), "") << "the next line is such a line";
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "twofold");
    EXPECT_EQ(reader.TakeBufferedLinesBefore("twofold"), "two\n") << "whole lines only";
    EXPECT_EQ(reader.TakeBufferedLinesBefore("twofold"), "");
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "last");
    EXPECT_EQ(reader.TakeBufferedLinesBefore("two"), "");
}

TEST_F(LineReaderTest, AFileThatIsNotOpenHasNoBufferedLines) {
    unlink(kLinesFile);
    LineReader reader(kLinesFile);
    EXPECT_EQ(reader.TakeBufferedLinesBefore("two"), "");
}

TEST_F(LineReaderTest, OpensCloseOnExec) {
    testkit::WriteFile(kLinesFile, "");
    { const LineReader reader(kLinesFile); }
    EXPECT_EQ(libc().Events(Call::kOpen)[0].number, O_RDONLY | O_CLOEXEC);
}

// Every line with the newline that it is handed out with.
std::vector<std::string> LinesWithNewline(std::string_view text) {
    testkit::WriteFile(kLinesFile, text);
    LineReader reader(kLinesFile);
    std::vector<std::string> lines;
    for (std::string_view line; reader.ReadFullLine(line);) {
        lines.emplace_back(line);
    }
    return lines;
}

TEST_F(LineReaderTest, HandsOutTheNewlineWhenAsked) {
    EXPECT_THAT(LinesWithNewline("one\n two \n\n\tthree\n"),
                ElementsAre("one\n", " two \n", "\n", "\tthree\n"));
}

TEST_F(LineReaderTest, ALastLineWithoutANewlineIsGivenOne) {
    EXPECT_THAT(LinesWithNewline("one\ntwo"), ElementsAre("one\n", "two\n"));
    EXPECT_THAT(LinesWithNewline("x"), ElementsAre("x\n"));
}

TEST_F(LineReaderTest, NoLineIsMadeUpForAnEmptyFile) {
    EXPECT_THAT(LinesWithNewline(""), IsEmpty());
    EXPECT_THAT(LinesWithNewline("\n"), ElementsAre("\n"));
}

TEST_F(LineReaderTest, CarriageReturnsAndNulsStayInFrontOfTheNewline) {
    using std::string_literals::operator""s;
    EXPECT_THAT(LinesWithNewline("a\r\nb\0c\n\0\n\r"s),
                ElementsAre("a\r\n", "b\0c\n"s, "\0\n"s, "\r\n"));
}

TEST_F(LineReaderTest, ALastLineThatFillsTheBlockHasRoomForItsNewline) {
    for (const size_t size : {65534U, 65535U, 65536U, 65537U, 131071U, 131072U, 131073U}) {
        const std::string line(size, 'x');
        EXPECT_THAT(LinesWithNewline(line), ElementsAre(line + "\n")) << size;
        EXPECT_THAT(LinesWithNewline(line + "\n"), ElementsAre(line + "\n")) << size;
        EXPECT_THAT(LinesWithNewline("a\n" + line), ElementsAre("a\n", line + "\n")) << size;
        EXPECT_THAT(LinesWithNewline(line + "\nb"), ElementsAre(line + "\n", "b\n")) << size;
    }
}

TEST_F(LineReaderTest, ALineLongerThanAnyBlockKeepsItsNewline) {
    const std::string line(1000 * 1000, 'x');
    EXPECT_THAT(LinesWithNewline("a\n" + line + "\nb"), ElementsAre("a\n", line + "\n", "b\n"));
    EXPECT_THAT(LinesWithNewline(line), ElementsAre(line + "\n"));
}

TEST_F(LineReaderTest, LinesWithAndWithoutTheNewlineMayBeMixed) {
    testkit::WriteFile(kLinesFile, "one\ntwo\n\nfour\nfive");
    LineReader reader(kLinesFile);
    std::string_view line;
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "one");
    ASSERT_TRUE(reader.ReadFullLine(line));
    EXPECT_EQ(line, "two\n");
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "");
    ASSERT_TRUE(reader.ReadFullLine(line));
    EXPECT_EQ(line, "four\n");
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "five");
    EXPECT_FALSE(reader.ReadFullLine(line));
    EXPECT_FALSE(reader.ReadLine(line));
}

TEST_F(LineReaderTest, TheEndOfTheFileStaysTheEnd) {
    testkit::WriteFile(kLinesFile, "one");
    LineReader reader(kLinesFile);
    std::string_view line;
    ASSERT_TRUE(reader.ReadFullLine(line));
    EXPECT_FALSE(reader.ReadFullLine(line));
    const size_t reads = libc().Events(Call::kRead).size();
    EXPECT_FALSE(reader.ReadFullLine(line));
    EXPECT_EQ(libc().Events(Call::kRead).size(), reads) << "it is not asked for again";
}

TEST_F(LineReaderTest, AFileThatIsNotOpenHasNoLinesWithANewlineEither) {
    LineReader reader("/var/tmp/missing");
    std::string_view line;
    EXPECT_FALSE(reader.ReadFullLine(line));
}

TEST_F(LineReaderTest, AReadErrorInTheMiddleOfALineEndsIt) {
    testkit::WriteFile(kLinesFile, "one\ntwo\nthr");
    libc().Script(Call::kRead, {Pass(), Fail(EIO)});
    LineReader reader(kLinesFile);
    std::string_view line;
    ASSERT_TRUE(reader.ReadFullLine(line));
    ASSERT_TRUE(reader.ReadFullLine(line));
    ASSERT_TRUE(reader.ReadFullLine(line));
    EXPECT_EQ(line, "thr\n");
    EXPECT_FALSE(reader.ReadFullLine(line));
}

TEST_F(LineReaderTest, CloseGivesTheDescriptorBackEarly) {
    testkit::WriteFile(kLinesFile, "one\ntwo\n");
    const std::vector<int> before = testkit::OpenDescriptors();
    LineReader reader(kLinesFile);
    std::string_view line;
    ASSERT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(testkit::OpenDescriptors().size(), before.size() + 1);
    reader.Close();
    EXPECT_EQ(testkit::OpenDescriptors(), before);
    reader.Close();
    EXPECT_EQ(testkit::OpenDescriptors(), before);
    EXPECT_TRUE(reader.is_open()) << "it still tells how the opening went";
}

}  // namespace
