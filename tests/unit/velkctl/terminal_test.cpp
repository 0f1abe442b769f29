#include "velkctl/terminal.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::Printable;
using velkctl::Quoted;

TEST(Printable, LeavesTextAlone) {
    EXPECT_EQ(Printable(""), "");
    EXPECT_EQ(Printable("a Z0~'\"%"), "a Z0~'\"%");
}

TEST(Printable, EscapesControlCharactersAndBytesBeyondAscii) {
    EXPECT_EQ(Printable(std::string("\0", 1)), "\\x00");
    EXPECT_EQ(Printable("\a\t\n\r\x1b"), "\\x07\\x09\\x0a\\x0d\\x1b");
    EXPECT_EQ(Printable("\x1f\x7f\x80\x9b\xff"), "\\x1f\\x7f\\x80\\x9b\\xff");
}

TEST(Printable, DoublesBackslashesSoThatEscapesAreUnmistakable) {
    EXPECT_EQ(Printable("\\x1b"), "\\\\x1b");
}

TEST(Quoted, ShowsWhereAWordBeginsAndEnds) {
    EXPECT_EQ(Quoted(""), "''");
    EXPECT_EQ(Quoted(" eth0\n"), "' eth0\\x0a'");
}

}  // namespace
