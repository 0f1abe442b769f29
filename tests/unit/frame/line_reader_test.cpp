#include "frame/line_reader.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::Pass;
using velk::LineReader;

constexpr char kFile[] = "/var/tmp/lines";

class LineReaderTest : public testkit::DeviceTest {
  protected:
    static std::vector<std::string> Lines() {
        LineReader reader(kFile);
        std::vector<std::string> lines;
        for (std::string_view line; reader.Next(line);) {
            lines.emplace_back(line);
        }
        return lines;
    }
    static std::vector<std::string> LinesOf(std::string_view text) {
        testkit::WriteFile(kFile, text);
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
    EXPECT_FALSE(reader.Next(line));
    EXPECT_EQ(line, "");
}

TEST_F(LineReaderTest, AFolderCountsAsNotOpened) {
    const LineReader reader("/var");
    EXPECT_FALSE(reader.is_open());
    EXPECT_EQ(reader.error(), EISDIR);
}

TEST_F(LineReaderTest, AnEmptyFileIsOpen) {
    testkit::WriteFile(kFile, "");
    errno = EIO;  // of some earlier call
    EXPECT_TRUE(LineReader(kFile).is_open());
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
    for (const size_t size : {65534U, 65535U, 65536U, 65537U}) {
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
    testkit::WriteFile(kFile, "one\ntwo\nthree");
    libc().Script(Call::kRead, {Fail(EINTR), Pass(), Fail(EINTR)});
    EXPECT_THAT(Lines(), ElementsAre("one", "two", "three"));
}

TEST_F(LineReaderTest, AReadErrorBehindTheFirstBlockEndsTheFile) {
    testkit::WriteFile(kFile, "one\ntwo\nthr");
    libc().Script(Call::kRead, {Pass(), Fail(EIO)});
    EXPECT_THAT(Lines(), ElementsAre("one", "two", "thr"));
}

TEST_F(LineReaderTest, ReadsNoFurtherThanNeeded) {
    testkit::WriteFile(kFile, "one\ntwo\n");
    LineReader reader(kFile);
    std::string_view line;
    EXPECT_TRUE(reader.Next(line));
    EXPECT_TRUE(reader.Next(line));
    EXPECT_EQ(libc().Events(Call::kRead).size(), 1U);
}

TEST_F(LineReaderTest, OpensCloseOnExec) {
    testkit::WriteFile(kFile, "");
    { const LineReader reader(kFile); }
    EXPECT_EQ(libc().Events(Call::kOpen)[0].number, O_RDONLY | O_CLOEXEC);
}

}  // namespace
