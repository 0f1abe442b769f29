// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Files of the device, read line by line.
#include "velkctl/files/text_file.h"

#include <string>
#include <vector>

#include <sys/stat.h>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;
using velkctl::FileState;
using velkctl::ReadTextFile;

class TextFileTest : public testkit::DeviceTest {};

TEST_F(TextFileTest, ReadsLinesAsTheLibrarySeesThem) {
    WriteFile("/tmp/text", "one\n\n\x01two");
    EXPECT_EQ(ReadTextFile("/tmp/text").lines,
              (std::vector<std::string>{"one\n", "\n", "\x01two\n"}));
    WriteFile("/tmp/text", "");
    EXPECT_EQ(ReadTextFile("/tmp/text").state, FileState::kText);
    EXPECT_TRUE(ReadTextFile("/tmp/text").lines.empty());
}

TEST_F(TextFileTest, DoesNotWaitForAFifoNorReadAFolderOrAHugeFile) {
    ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
    EXPECT_EQ(ReadTextFile("/tmp/fifo").state, FileState::kNotRegular);
    EXPECT_EQ(ReadTextFile("/tmp").state, FileState::kNotRegular);
    EXPECT_EQ(ReadTextFile("/tmp/missing").state, FileState::kMissing);
    WriteFile("/tmp/huge", std::string(1024 * 1024 + 1, 'a'));
    EXPECT_EQ(ReadTextFile("/tmp/huge").state, FileState::kTooLarge);
}

}  // namespace
