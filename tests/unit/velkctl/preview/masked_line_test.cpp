// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Lines without their secrets.
#include "velkctl/preview/masked_line.h"

#include <gtest/gtest.h>

namespace {

using velkctl::MaskedLine;

TEST(MaskedLine, MasksTheRestAfterTheNameOfASecret) {
    EXPECT_EQ(MaskedLine("\twpa-psk 0123456789"), "\twpa-psk ********");
    EXPECT_EQ(MaskedLine("# wpa-psk 0123456789"), "# wpa-psk ********");
    EXPECT_EQ(MaskedLine("rocommunity public 10.0.0.0/8"), "rocommunity ********");
    EXPECT_EQ(MaskedLine("PASSWORD=x"), "PASSWORD=********");
    EXPECT_EQ(MaskedLine("createUser bob MD5 secret"), "createUser ********");
}

TEST(MaskedLine, SkipsTheMarkOfADiff) {
    EXPECT_EQ(MaskedLine("+wireless-key1 abc", 1), "+wireless-key1 ********");
    EXPECT_EQ(MaskedLine("-passwd x", 1), "-passwd ********");
}

TEST(MaskedLine, LeavesOtherLinesAlone) {
    for (const char* line : {"", "\taddress 10.0.0.1", "wpa-psk", "ADMINISTRATOR=the secret one"}) {
        EXPECT_EQ(MaskedLine(line), line);
    }
    EXPECT_EQ(MaskedLine("", 1), "");
}

TEST(MaskedLine, EscapesControlCharactersButNoTabs) {
    EXPECT_EQ(MaskedLine("a\tb\x1b[0m"), "a\tb\\x1b[0m");
}

}  // namespace
