// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Archives in the format ustar, read by the simulated device's reader.
#include "velkctl/capture/archive.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "sandbox/device/tar_reader.h"

namespace {

using velkctl::Archive;

constexpr char kFile[] = "/tmp/archive.tar";

sandbox::TarReader ReaderOf(const Archive& archive) {
    std::ofstream(kFile, std::ios::binary) << archive.Bytes();
    return sandbox::TarReader(kFile);
}

TEST(Archive, KeepsFactsAndContents) {
    Archive archive;
    archive.AddFile("root/etc/hosts", {.mode = 04711, .owner = 7, .group = 8, .time = 1700000000},
                    std::string("a\0b", 3));
    sandbox::TarReader reader = ReaderOf(archive);
    const auto member = reader.Next();
    ASSERT_TRUE(member.has_value());
    EXPECT_EQ(member->path, "root/etc/hosts");
    EXPECT_EQ(member->type, '0');
    EXPECT_EQ(member->mode, 04711U);
    EXPECT_EQ(member->owner, 7U);
    EXPECT_EQ(member->group, 8U);
    EXPECT_EQ(member->time, 1700000000);
    EXPECT_EQ(reader.Contents(*member), std::string("a\0b", 3));
    EXPECT_FALSE(reader.Next().has_value());
}

TEST(Archive, KeepsFoldersLinksAndFifos) {
    Archive archive;
    archive.AddFolder("root/tmp", {.mode = 01777});
    archive.AddLink("root/var/tmp/x", {}, "/nowhere");
    archive.AddFifo("root/tmp/f", {});
    sandbox::TarReader reader = ReaderOf(archive);
    EXPECT_EQ(reader.Next()->path, "root/tmp");
    const auto link = reader.Next();
    EXPECT_EQ(link->type, '2');
    EXPECT_EQ(link->target, "/nowhere");
    EXPECT_EQ(reader.Next()->type, '6');
}

TEST(Archive, IsAMultipleOfABlockWithTwoEmptyOnesAtItsEnd) {
    Archive archive;
    archive.AddFile("f", {}, std::string(513, 'x'));
    EXPECT_EQ(archive.Bytes().size(), 512U * 5);
    EXPECT_EQ(archive.Bytes().substr(257 + 0, 8), std::string("ustar\00000", 8));
    EXPECT_EQ(archive.Bytes().substr(512U * 3), std::string(1024, '\0'));
}

// The field has room for 7 digits.
TEST(Archive, WritesAnOwnerThatIsTooLargeAsZero) {
    Archive archive;
    archive.AddFile("f", {.owner = 010000000}, "");
    EXPECT_EQ(ReaderOf(archive).Next()->owner, 0U);
}

}  // namespace
